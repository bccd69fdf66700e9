// MFC's archive encoding of strings: a length prefix with escapes for long texts and a
// 0xFFFE marker for UTF-16 text. Strings are always stored as UTF-16; either form loads.
#include "afx.h"
#include <climits>
#include <string>

void AFXAPI AfxWriteStringLength(CArchive& ar, UINT_PTR nLength, BOOL bUnicode)
{
    if (bUnicode)
    {
        ar << (BYTE)0xFF;
        ar << (WORD)0xFFFE;
    }
    if (nLength < 0xFF)
    {
        ar << (BYTE)nLength;
        return;
    }
    ar << (BYTE)0xFF;
    if (nLength < 0xFFFE)
    {
        ar << (WORD)nLength;
        return;
    }
    ar << (WORD)0xFFFF;
    if (nLength < 0xFFFFFFFF)
    {
        ar << (DWORD)nLength;
        return;
    }
    ar << (DWORD)0xFFFFFFFF;
    ar << (ULONGLONG)nLength;
}

UINT_PTR AFXAPI AfxReadStringLength(CArchive& ar, int& nCharSize)
{
    nCharSize = 1;
    BYTE bLength = 0;
    ar >> bLength;
    if (bLength < 0xFF)
        return bLength;
    WORD wLength = 0;
    ar >> wLength;
    if (wLength == 0xFFFE)
    {
        // The marker of UTF-16 text; the real length follows with the same escapes.
        nCharSize = 2;
        ar >> bLength;
        if (bLength < 0xFF)
            return bLength;
        ar >> wLength;
    }
    if (wLength < 0xFFFF)
        return wLength;
    DWORD dwLength = 0;
    ar >> dwLength;
    if (dwLength < 0xFFFFFFFF)
        return dwLength;
    ULONGLONG qwLength = 0;
    ar >> qwLength;
    return (UINT_PTR)qwLength;
}

CArchive& AFXAPI operator<<(CArchive& ar, const CString& str)
{
    AfxWriteStringLength(ar, (UINT_PTR)str.GetLength(), TRUE);
    ar.Write(str.GetString(), (UINT)str.GetLength() * sizeof(wchar_t));
    return ar;
}

namespace
{
[[noreturn]] void throwEndOfFile(const CArchive& ar)
{
    AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
}

// Reads nBytes in bounded chunks, so that a hostile length costs no more memory than
// the file really holds: the end of the data is met before a large buffer is made.
std::string readText(CArchive& ar, ULONGLONG nBytes)
{
    const size_t nChunk = 64 * 1024;
    std::string bytes;
    while (bytes.size() < nBytes)
    {
        size_t nOld = bytes.size();
        size_t nWant = nBytes - nOld < nChunk ? (size_t)(nBytes - nOld) : nChunk;
        bytes.resize(nOld + nWant);
        if (ar.Read(&bytes[nOld], (UINT)nWant) != nWant)
            throwEndOfFile(ar);
    }
    return bytes;
}

CString fromAnsiBytes(const std::string& bytes)
{
    if (bytes.empty())
        return CString();
    int nChars = ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), (int)bytes.size(), NULL, 0);
    std::wstring text(nChars, L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), (int)bytes.size(), &text[0], nChars);
    return CString(text.data(), nChars);
}
} // namespace

CArchive& AFXAPI operator>>(CArchive& ar, CString& str)
{
    int nCharSize = 1;
    UINT_PTR nLength = AfxReadStringLength(ar, nCharSize);
    // A CString holds at most INT_MAX characters; anything longer cannot be in a sane file.
    if (nLength > INT_MAX / 2)
        throwEndOfFile(ar);
    std::string bytes = readText(ar, (ULONGLONG)nLength * nCharSize);
    if (nCharSize == 2)
        str = CString(reinterpret_cast<LPCWSTR>(bytes.data()), (int)nLength);
    else
        str = fromAnsiBytes(bytes);
    return ar;
}
