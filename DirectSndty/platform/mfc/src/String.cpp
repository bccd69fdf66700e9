// CString: MFC's wide string over std::wstring.
#include "afx.h"
#include <cstdio>
#include <cwchar>
#include <cwctype>

namespace
{
// A resource id in a string pointer (MAKEINTRESOURCE) carries no text for this subset.
std::wstring fromWide(LPCWSTR psz)
{
    if (IS_INTRESOURCE(psz))
        return std::wstring();
    return std::wstring(psz);
}

std::wstring fromAnsi(LPCSTR psz)
{
    if (IS_INTRESOURCE(psz) || *psz == '\0')
        return std::wstring();
    int nChars = ::MultiByteToWideChar(CP_ACP, 0, psz, -1, NULL, 0);
    if (nChars <= 1)
        return std::wstring();
    std::wstring result(nChars, L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, psz, -1, &result[0], nChars);
    result.resize(nChars - 1); // without the terminator
    return result;
}

// msvcrt's printf family, so that %s, %hs and mismatched arguments behave as MFC's do.
std::wstring formatV(LPCWSTR pszFormat, va_list args)
{
    va_list counting;
    va_copy(counting, args);
    int nLength = _vscwprintf(pszFormat, counting);
    va_end(counting);
    if (nLength <= 0)
        return std::wstring();
    std::wstring result(nLength + 1, L'\0');
    _vsnwprintf(&result[0], nLength + 1, pszFormat, args);
    result.resize(nLength);
    return result;
}
} // namespace

CString::CString() {}

CString::CString(const CString& stringSrc) : m_str(stringSrc.m_str) {}

CString::CString(LPCWSTR psz) : m_str(fromWide(psz)) {}

CString::CString(LPCWSTR pch, int nLength)
{
    if (pch != NULL && nLength > 0)
        m_str.assign(pch, nLength);
}

CString::CString(LPCSTR psz) : m_str(fromAnsi(psz)) {}

CString::CString(wchar_t ch, int nRepeat)
{
    if (nRepeat > 0)
        m_str.assign(nRepeat, ch);
}

CString& CString::operator=(const CString& stringSrc)
{
    m_str = stringSrc.m_str;
    return *this;
}

CString& CString::operator=(LPCWSTR psz)
{
    m_str = fromWide(psz);
    return *this;
}

CString& CString::operator=(LPCSTR psz)
{
    m_str = fromAnsi(psz);
    return *this;
}

CString& CString::operator=(wchar_t ch)
{
    m_str.assign(1, ch);
    return *this;
}

int CString::GetLength() const
{
    return (int)m_str.size();
}

BOOL CString::IsEmpty() const
{
    return m_str.empty();
}

void CString::Empty()
{
    m_str.clear();
}

wchar_t CString::GetAt(int iChar) const
{
    // Index GetLength() gives the terminator, as in MFC.
    if (iChar < 0 || iChar > GetLength())
        return L'\0';
    return m_str.c_str()[iChar];
}

wchar_t CString::operator[](int iChar) const
{
    return GetAt(iChar);
}

void CString::SetAt(int iChar, wchar_t ch)
{
    if (iChar >= 0 && iChar < GetLength())
        m_str[iChar] = ch;
}

CString::operator LPCWSTR() const
{
    return m_str.c_str();
}

LPCWSTR CString::GetString() const
{
    return m_str.c_str();
}

CString& CString::operator+=(const CString& str)
{
    m_str += str.m_str;
    return *this;
}

CString& CString::operator+=(LPCWSTR psz)
{
    m_str += fromWide(psz);
    return *this;
}

CString& CString::operator+=(wchar_t ch)
{
    m_str += ch;
    return *this;
}

CString operator+(const CString& str1, const CString& str2)
{
    CString result(str1);
    result += str2;
    return result;
}

CString operator+(const CString& str1, LPCWSTR psz2)
{
    CString result(str1);
    result += psz2;
    return result;
}

CString operator+(LPCWSTR psz1, const CString& str2)
{
    CString result(psz1);
    result += str2;
    return result;
}

CString operator+(const CString& str1, wchar_t ch2)
{
    CString result(str1);
    result += ch2;
    return result;
}

int CString::Compare(LPCWSTR psz) const
{
    return wcscmp(m_str.c_str(), fromWide(psz).c_str());
}

int CString::CompareNoCase(LPCWSTR psz) const
{
    return _wcsicmp(m_str.c_str(), fromWide(psz).c_str());
}

CString CString::Mid(int iFirst) const
{
    return Mid(iFirst, GetLength() - iFirst);
}

CString CString::Mid(int iFirst, int nCount) const
{
    // Out-of-range arguments are clamped, never refused.
    if (iFirst < 0)
        iFirst = 0;
    if (nCount < 0 || iFirst >= GetLength())
        return CString();
    if (nCount > GetLength() - iFirst)
        nCount = GetLength() - iFirst;
    return CString(m_str.c_str() + iFirst, nCount);
}

CString CString::Left(int nCount) const
{
    return Mid(0, nCount);
}

CString CString::Right(int nCount) const
{
    if (nCount < 0)
        nCount = 0;
    if (nCount > GetLength())
        nCount = GetLength();
    return Mid(GetLength() - nCount, nCount);
}

int CString::Find(wchar_t ch, int iStart) const
{
    if (iStart < 0 || iStart >= GetLength())
        return -1;
    size_t nPos = m_str.find(ch, iStart);
    return nPos == std::wstring::npos ? -1 : (int)nPos;
}

int CString::Find(LPCWSTR pszSub, int iStart) const
{
    if (iStart < 0 || iStart > GetLength())
        return -1;
    size_t nPos = m_str.find(fromWide(pszSub), iStart);
    return nPos == std::wstring::npos ? -1 : (int)nPos;
}

int CString::ReverseFind(wchar_t ch) const
{
    size_t nPos = m_str.rfind(ch);
    return nPos == std::wstring::npos ? -1 : (int)nPos;
}

int CString::Replace(LPCWSTR pszOld, LPCWSTR pszNew)
{
    const std::wstring strOld = fromWide(pszOld);
    const std::wstring strNew = fromWide(pszNew);
    if (strOld.empty())
        return 0;
    int nCount = 0;
    for (size_t nPos = m_str.find(strOld); nPos != std::wstring::npos;
         nPos = m_str.find(strOld, nPos + strNew.size()))
    {
        m_str.replace(nPos, strOld.size(), strNew);
        ++nCount;
    }
    return nCount;
}

CString& CString::MakeUpper()
{
    for (wchar_t& ch : m_str)
        ch = (wchar_t)towupper(ch);
    return *this;
}

CString& CString::MakeLower()
{
    for (wchar_t& ch : m_str)
        ch = (wchar_t)towlower(ch);
    return *this;
}

CString& CString::Trim()
{
    return TrimRight().TrimLeft();
}

CString& CString::TrimLeft()
{
    size_t nFirst = 0;
    while (nFirst < m_str.size() && iswspace(m_str[nFirst]))
        ++nFirst;
    m_str.erase(0, nFirst);
    return *this;
}

CString& CString::TrimRight()
{
    size_t nEnd = m_str.size();
    while (nEnd > 0 && iswspace(m_str[nEnd - 1]))
        --nEnd;
    m_str.resize(nEnd);
    return *this;
}

void AFX_CDECL CString::Format(LPCWSTR pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

void AFX_CDECL CString::AppendFormat(LPCWSTR pszFormat, ...)
{
    va_list args;
    va_start(args, pszFormat);
    AppendFormatV(pszFormat, args);
    va_end(args);
}

void CString::FormatV(LPCWSTR pszFormat, va_list args)
{
    m_str = formatV(pszFormat, args);
}

void CString::AppendFormatV(LPCWSTR pszFormat, va_list args)
{
    m_str += formatV(pszFormat, args);
}

LPWSTR CString::GetBuffer()
{
    return &m_str[0];
}

LPWSTR CString::GetBuffer(int nMinBufferLength)
{
    // The slot after the last character holds the terminator, so a caller may write
    // nMinBufferLength characters and a NUL.
    if (nMinBufferLength > GetLength())
        m_str.resize(nMinBufferLength);
    return &m_str[0];
}

LPWSTR CString::GetBufferSetLength(int nLength)
{
    m_str.resize(nLength < 0 ? 0 : nLength);
    return &m_str[0];
}

void CString::ReleaseBuffer(int nNewLength)
{
    if (nNewLength < 0)
        nNewLength = (int)wcsnlen(m_str.c_str(), m_str.size());
    if (nNewLength < GetLength())
        m_str.resize(nNewLength);
}

bool operator==(const CString& str1, const CString& str2)
{
    return str1.Compare(str2) == 0 && str1.GetLength() == str2.GetLength();
}

bool operator==(const CString& str1, LPCWSTR psz2)
{
    return str1.Compare(psz2) == 0;
}

bool operator==(LPCWSTR psz1, const CString& str2)
{
    return str2.Compare(psz1) == 0;
}

bool operator!=(const CString& str1, const CString& str2)
{
    return !(str1 == str2);
}

bool operator!=(const CString& str1, LPCWSTR psz2)
{
    return !(str1 == psz2);
}

bool operator!=(LPCWSTR psz1, const CString& str2)
{
    return !(psz1 == str2);
}

bool operator<(const CString& str1, const CString& str2)
{
    return str1.Compare(str2) < 0;
}
