#pragma once
// Common dialogs of the MFC subset.
#include "afxwin.h"
#include <commdlg.h>

class AFX_SUBSET_API CFileDialog : public CDialog
{
    DECLARE_DYNAMIC(CFileDialog)
public:
    // lpszFilter takes MFC's form: pairs separated by '|', ended by "||".
    explicit CFileDialog(BOOL bOpenFileDialog, LPCTSTR lpszDefExt = NULL,
                         LPCTSTR lpszFileName = NULL,
                         DWORD dwFlags = OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                         LPCTSTR lpszFilter = NULL, CWnd* pParentWnd = NULL,
                         DWORD dwSize = 0, BOOL bVistaStyle = TRUE);
    virtual ~CFileDialog();

    virtual INT_PTR DoModal();
    CString GetPathName() const;
    CString GetFileName() const;
    CString GetFileExt() const;
    CString GetFileTitle() const;

    OPENFILENAMEW m_ofn;

protected:
    BOOL m_bOpenFileDialog;
    CString m_strFilter;   // the filter with '|' turned into NULs
    CString m_strDefExt;
    wchar_t m_szFileName[_MAX_PATH];
    wchar_t m_szFileTitle[_MAX_PATH];
};
