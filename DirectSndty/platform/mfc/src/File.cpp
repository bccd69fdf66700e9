// CFile: an unbuffered Win32 file handle.
#include "afx.h"

IMPLEMENT_DYNAMIC(CFile, CObject)

const HANDLE CFile::hFileNull = INVALID_HANDLE_VALUE;

namespace
{
DWORD desiredAccess(UINT nOpenFlags)
{
    switch (nOpenFlags & 3)
    {
    case CFile::modeWrite:
        return GENERIC_WRITE;
    case CFile::modeReadWrite:
        return GENERIC_READ | GENERIC_WRITE;
    default:
        return GENERIC_READ;
    }
}

// shareCompat has no 32-bit meaning and is taken as exclusive, as MFC does.
DWORD shareMode(UINT nOpenFlags)
{
    switch (nOpenFlags & 0x70)
    {
    case CFile::shareDenyWrite:
        return FILE_SHARE_READ;
    case CFile::shareDenyRead:
        return FILE_SHARE_WRITE;
    case CFile::shareDenyNone:
        return FILE_SHARE_READ | FILE_SHARE_WRITE;
    default:
        return 0;
    }
}

DWORD creationDisposition(UINT nOpenFlags)
{
    if (!(nOpenFlags & CFile::modeCreate))
        return OPEN_EXISTING;
    return (nOpenFlags & CFile::modeNoTruncate) ? OPEN_ALWAYS : CREATE_ALWAYS;
}

CString fullPath(LPCTSTR lpszFileName)
{
    wchar_t szPath[MAX_PATH];
    DWORD nLength = ::GetFullPathNameW(lpszFileName, MAX_PATH, szPath, NULL);
    if (nLength == 0 || nLength >= MAX_PATH)
        return CString(lpszFileName);
    return CString(szPath);
}
} // namespace

CFile::CFile() : m_hFile(hFileNull), m_bCloseOnDelete(FALSE) {}

CFile::CFile(HANDLE hFile) : m_hFile(hFile), m_bCloseOnDelete(FALSE) {}

CFile::CFile(LPCTSTR lpszFileName, UINT nOpenFlags) : m_hFile(hFileNull), m_bCloseOnDelete(FALSE)
{
    CFileException error;
    if (!Open(lpszFileName, nOpenFlags, &error))
        AfxThrowFileException(error.m_cause, error.m_lOsError, error.m_strFileName);
}

CFile::~CFile()
{
    if (m_hFile != hFileNull && m_bCloseOnDelete)
        Abort();
}

BOOL CFile::Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError)
{
    m_strFileName = fullPath(lpszFileName);
    SECURITY_ATTRIBUTES sa = {sizeof(sa), NULL, (nOpenFlags & modeNoInherit) ? FALSE : TRUE};
    HANDLE hFile = ::CreateFileW(lpszFileName, desiredAccess(nOpenFlags), shareMode(nOpenFlags), &sa,
                                 creationDisposition(nOpenFlags), FILE_ATTRIBUTE_NORMAL, NULL);
    if (hFile == INVALID_HANDLE_VALUE)
    {
        LONG lOsError = (LONG)::GetLastError();
        if (pError != NULL)
        {
            pError->m_lOsError = lOsError;
            pError->m_cause = CFileException::OsErrorToException(lOsError);
            pError->m_strFileName = lpszFileName;
        }
        m_strFileName.Empty();
        return FALSE;
    }
    m_hFile = hFile;
    m_bCloseOnDelete = TRUE;
    return TRUE;
}

UINT CFile::Read(void* lpBuf, UINT nCount)
{
    if (nCount == 0)
        return 0;
    DWORD nRead = 0;
    if (!::ReadFile(m_hFile, lpBuf, nCount, &nRead, NULL))
        CFileException::ThrowOsError((LONG)::GetLastError(), m_strFileName);
    return nRead; // fewer than asked, or 0, at the end of the file
}

void CFile::Write(const void* lpBuf, UINT nCount)
{
    if (nCount == 0)
        return;
    DWORD nWritten = 0;
    if (!::WriteFile(m_hFile, lpBuf, nCount, &nWritten, NULL))
        CFileException::ThrowOsError((LONG)::GetLastError(), m_strFileName);
    if (nWritten != nCount)
        AfxThrowFileException(CFileException::diskFull, -1, m_strFileName);
}

ULONGLONG CFile::Seek(LONGLONG lOff, UINT nFrom)
{
    LARGE_INTEGER distance;
    distance.QuadPart = lOff;
    LARGE_INTEGER position;
    if (!::SetFilePointerEx(m_hFile, distance, &position, nFrom))
        CFileException::ThrowOsError((LONG)::GetLastError(), m_strFileName);
    return (ULONGLONG)position.QuadPart;
}

ULONGLONG CFile::SeekToEnd()
{
    return Seek(0, end);
}

void CFile::SeekToBegin()
{
    Seek(0, begin);
}

ULONGLONG CFile::GetPosition() const
{
    LARGE_INTEGER distance = {};
    LARGE_INTEGER position;
    if (!::SetFilePointerEx(m_hFile, distance, &position, FILE_CURRENT))
        CFileException::ThrowOsError((LONG)::GetLastError(), m_strFileName);
    return (ULONGLONG)position.QuadPart;
}

ULONGLONG CFile::GetLength() const
{
    LARGE_INTEGER size;
    if (!::GetFileSizeEx(m_hFile, &size))
        CFileException::ThrowOsError((LONG)::GetLastError(), m_strFileName);
    return (ULONGLONG)size.QuadPart;
}

void CFile::SetLength(ULONGLONG dwNewLen)
{
    Seek((LONGLONG)dwNewLen, begin);
    if (!::SetEndOfFile(m_hFile))
        CFileException::ThrowOsError((LONG)::GetLastError(), m_strFileName);
}

void CFile::Flush()
{
    if (m_hFile == hFileNull)
        return;
    if (!::FlushFileBuffers(m_hFile))
        CFileException::ThrowOsError((LONG)::GetLastError(), m_strFileName);
}

void CFile::Close()
{
    BOOL bClosed = TRUE;
    if (m_hFile != hFileNull)
        bClosed = ::CloseHandle(m_hFile);
    m_hFile = hFileNull;
    m_bCloseOnDelete = FALSE;
    m_strFileName.Empty();
    if (!bClosed)
        CFileException::ThrowOsError((LONG)::GetLastError(), NULL);
}

void CFile::Abort()
{
    // Closes without reporting: used on error paths and by the destructor.
    if (m_hFile != hFileNull)
        ::CloseHandle(m_hFile);
    m_hFile = hFileNull;
    m_bCloseOnDelete = FALSE;
    m_strFileName.Empty();
}

CString CFile::GetFilePath() const
{
    return m_strFileName;
}

CFile::operator HANDLE() const
{
    return m_hFile;
}
