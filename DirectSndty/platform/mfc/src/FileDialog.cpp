// CFileDialog over the classic open and save dialogs.
#include "afxdlgs.h"
#include <cstring>

IMPLEMENT_DYNAMIC(CFileDialog, CDialog)

namespace
{
// MFC's filter "Text (*.txt)|*.txt||" becomes the system's NUL-separated list, ended by
// two NULs whether or not the caller wrote the closing "||".
CString systemFilter(LPCTSTR lpszFilter)
{
    if (lpszFilter == NULL || *lpszFilter == L'\0')
        return CString();
    std::wstring filter(lpszFilter);
    for (wchar_t& ch : filter)
    {
        if (ch == L'|')
            ch = L'\0';
    }
    filter.append(2, L'\0');
    return CString(filter.data(), (int)filter.size());
}

void copyPath(wchar_t* pszTarget, LPCTSTR lpszSource)
{
    pszTarget[0] = L'\0';
    if (lpszSource != NULL)
        lstrcpynW(pszTarget, lpszSource, _MAX_PATH);
}
} // namespace

CFileDialog::CFileDialog(BOOL bOpenFileDialog, LPCTSTR lpszDefExt, LPCTSTR lpszFileName, DWORD dwFlags,
                         LPCTSTR lpszFilter, CWnd* pParentWnd, DWORD dwSize, BOOL)
    : m_bOpenFileDialog(bOpenFileDialog), m_strFilter(systemFilter(lpszFilter)), m_strDefExt(lpszDefExt)
{
    m_pParentWnd = pParentWnd;
    copyPath(m_szFileName, lpszFileName);
    m_szFileTitle[0] = L'\0';
    memset(&m_ofn, 0, sizeof(m_ofn));
    m_ofn.lStructSize = dwSize != 0 ? dwSize : sizeof(m_ofn);
    m_ofn.Flags = dwFlags | OFN_EXPLORER;
    m_ofn.lpstrFile = m_szFileName;
    m_ofn.nMaxFile = _MAX_PATH;
    m_ofn.lpstrFileTitle = m_szFileTitle;
    m_ofn.nMaxFileTitle = _MAX_PATH;
    m_ofn.lpstrDefExt = lpszDefExt != NULL ? m_strDefExt.GetString() : NULL;
    m_ofn.lpstrFilter = m_strFilter.IsEmpty() ? NULL : m_strFilter.GetString();
}

CFileDialog::~CFileDialog() {}

INT_PTR CFileDialog::DoModal()
{
    m_ofn.hwndOwner = m_pParentWnd->GetSafeHwnd();
    if (m_ofn.hwndOwner == NULL)
        m_ofn.hwndOwner = ::GetActiveWindow();
    BOOL bChosen = m_bOpenFileDialog ? ::GetOpenFileNameW(&m_ofn) : ::GetSaveFileNameW(&m_ofn);
    return bChosen ? IDOK : IDCANCEL;
}

CString CFileDialog::GetPathName() const
{
    return CString(m_ofn.lpstrFile);
}

CString CFileDialog::GetFileName() const
{
    CString strPath = GetPathName();
    int nSeparator = strPath.GetLength() - 1;
    while (nSeparator >= 0 && strPath[nSeparator] != L'\\' && strPath[nSeparator] != L'/' &&
           strPath[nSeparator] != L':')
        --nSeparator;
    return strPath.Mid(nSeparator + 1);
}

CString CFileDialog::GetFileExt() const
{
    CString strName = GetFileName();
    int nDot = strName.ReverseFind(L'.');
    return nDot < 0 ? CString() : strName.Mid(nDot + 1);
}

CString CFileDialog::GetFileTitle() const
{
    CString strName = GetFileName();
    int nDot = strName.ReverseFind(L'.');
    return nDot < 0 ? strName : strName.Left(nDot);
}
