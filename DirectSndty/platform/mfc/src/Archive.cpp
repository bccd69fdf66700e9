// CArchive: MFC's binary serialisation, little-endian and unpadded, buffered both ways.
#include "afx.h"
#include <cstring>

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void*)
    : m_pFile(pFile), m_strFileName(pFile != NULL ? pFile->GetFilePath() : CString()),
      m_bLoading((nMode & load) != 0), m_nMode(nMode), m_readPos(0),
      m_nBufSize(nBufSize > 0 ? (UINT)nBufSize : 4096)
{
}

CArchive::~CArchive()
{
    // A destructor must not throw: a failed final write is dropped, as the caller chose
    // not to Close and see it.
    if (m_pFile != NULL && !(m_nMode & bNoFlushOnDelete))
    {
        try
        {
            Close();
        }
        catch (CException* e)
        {
            e->Delete();
        }
    }
    Abort();
}

BOOL CArchive::IsLoading() const
{
    return m_bLoading;
}

BOOL CArchive::IsStoring() const
{
    return !m_bLoading;
}

CFile* CArchive::GetFile() const
{
    return m_pFile;
}

void CArchive::requireStoring()
{
    if (m_bLoading)
        AfxThrowArchiveException(CArchiveException::readOnly, m_strFileName);
}

void CArchive::requireLoading()
{
    if (!m_bLoading)
        AfxThrowArchiveException(CArchiveException::writeOnly, m_strFileName);
}

size_t CArchive::readAheadLeft() const
{
    return m_readAhead.size() - m_readPos;
}

bool CArchive::fillReadAhead(size_t nCount)
{
    if (readAheadLeft() >= nCount)
        return true;
    m_readAhead.erase(0, m_readPos);
    m_readPos = 0;
    while (m_readAhead.size() < nCount && m_pFile != NULL)
    {
        size_t nOld = m_readAhead.size();
        size_t nWant = nCount - nOld > m_nBufSize ? nCount - nOld : m_nBufSize;
        m_readAhead.resize(nOld + nWant);
        UINT nGot = m_pFile->Read(&m_readAhead[nOld], (UINT)nWant);
        m_readAhead.resize(nOld + nGot);
        if (nGot == 0)
            break;
    }
    return m_readAhead.size() >= nCount;
}

void CArchive::readExactly(void* lpBuf, UINT nCount)
{
    // A field is read whole or not at all: fields read before keep their values.
    requireLoading();
    if (!fillReadAhead(nCount))
        AfxThrowArchiveException(CArchiveException::endOfFile, m_strFileName);
    memcpy(lpBuf, m_readAhead.data() + m_readPos, nCount);
    m_readPos += nCount;
}

UINT CArchive::Read(void* lpBuf, UINT nMax)
{
    requireLoading();
    BYTE* pOut = static_cast<BYTE*>(lpBuf);
    UINT nDone = 0;
    while (nDone < nMax)
    {
        if (readAheadLeft() == 0 && !fillReadAhead(1))
            break; // the end of the file: a short count, no exception
        size_t nTake = readAheadLeft() < nMax - nDone ? readAheadLeft() : nMax - nDone;
        memcpy(pOut + nDone, m_readAhead.data() + m_readPos, nTake);
        m_readPos += nTake;
        nDone += (UINT)nTake;
    }
    return nDone;
}

void CArchive::Write(const void* lpBuf, UINT nMax)
{
    requireStoring();
    m_pending.append(static_cast<const char*>(lpBuf), nMax);
    if (m_pending.size() >= m_nBufSize)
        Flush();
}

void CArchive::Flush()
{
    if (m_pFile == NULL)
        return;
    if (!m_bLoading)
    {
        if (m_pending.empty())
            return;
        m_pFile->Write(m_pending.data(), (UINT)m_pending.size());
        m_pending.clear();
        return;
    }
    // A loading archive gives back what it read ahead, so the file stands where the
    // archive's reader stopped.
    if (readAheadLeft() > 0)
        m_pFile->Seek(-(LONGLONG)readAheadLeft(), CFile::current);
    m_readAhead.clear();
    m_readPos = 0;
}

void CArchive::Close()
{
    Flush();
    m_pFile = NULL;
}

void CArchive::Abort()
{
    m_pFile = NULL;
    m_pending.clear();
    m_readAhead.clear();
    m_readPos = 0;
}

// Every value is written as its little-endian bytes, which on x86-64 is its memory image.
CArchive& CArchive::operator<<(BYTE by)
{
    Write(&by, sizeof(by));
    return *this;
}

CArchive& CArchive::operator<<(WORD w)
{
    Write(&w, sizeof(w));
    return *this;
}

CArchive& CArchive::operator<<(LONG l)
{
    Write(&l, sizeof(l));
    return *this;
}

CArchive& CArchive::operator<<(DWORD dw)
{
    Write(&dw, sizeof(dw));
    return *this;
}

CArchive& CArchive::operator<<(float f)
{
    Write(&f, sizeof(f));
    return *this;
}

CArchive& CArchive::operator<<(double d)
{
    Write(&d, sizeof(d));
    return *this;
}

CArchive& CArchive::operator<<(LONGLONG dwdw)
{
    Write(&dwdw, sizeof(dwdw));
    return *this;
}

CArchive& CArchive::operator<<(ULONGLONG dwdw)
{
    Write(&dwdw, sizeof(dwdw));
    return *this;
}

CArchive& CArchive::operator<<(int i)
{
    Write(&i, sizeof(i));
    return *this;
}

CArchive& CArchive::operator<<(short w)
{
    Write(&w, sizeof(w));
    return *this;
}

CArchive& CArchive::operator<<(char ch)
{
    Write(&ch, sizeof(ch));
    return *this;
}

CArchive& CArchive::operator<<(unsigned u)
{
    Write(&u, sizeof(u));
    return *this;
}

CArchive& CArchive::operator<<(bool b)
{
    return *this << (BYTE)(b ? 1 : 0);
}

CArchive& CArchive::operator>>(BYTE& by)
{
    readExactly(&by, sizeof(by));
    return *this;
}

CArchive& CArchive::operator>>(WORD& w)
{
    readExactly(&w, sizeof(w));
    return *this;
}

CArchive& CArchive::operator>>(LONG& l)
{
    readExactly(&l, sizeof(l));
    return *this;
}

CArchive& CArchive::operator>>(DWORD& dw)
{
    readExactly(&dw, sizeof(dw));
    return *this;
}

CArchive& CArchive::operator>>(float& f)
{
    readExactly(&f, sizeof(f));
    return *this;
}

CArchive& CArchive::operator>>(double& d)
{
    readExactly(&d, sizeof(d));
    return *this;
}

CArchive& CArchive::operator>>(LONGLONG& dwdw)
{
    readExactly(&dwdw, sizeof(dwdw));
    return *this;
}

CArchive& CArchive::operator>>(ULONGLONG& dwdw)
{
    readExactly(&dwdw, sizeof(dwdw));
    return *this;
}

CArchive& CArchive::operator>>(int& i)
{
    readExactly(&i, sizeof(i));
    return *this;
}

CArchive& CArchive::operator>>(short& w)
{
    readExactly(&w, sizeof(w));
    return *this;
}

CArchive& CArchive::operator>>(char& ch)
{
    readExactly(&ch, sizeof(ch));
    return *this;
}

CArchive& CArchive::operator>>(unsigned& u)
{
    readExactly(&u, sizeof(u));
    return *this;
}

CArchive& CArchive::operator>>(bool& b)
{
    BYTE by = 0;
    readExactly(&by, sizeof(by));
    b = by != 0;
    return *this;
}
