// The standard controls: thin wrappers over their window messages.
#include "afxwin.h"

IMPLEMENT_DYNAMIC(CStatic, CWnd)
IMPLEMENT_DYNAMIC(CButton, CWnd)
IMPLEMENT_DYNAMIC(CEdit, CWnd)
IMPLEMENT_DYNAMIC(CComboBox, CWnd)
IMPLEMENT_DYNAMIC(CScrollBar, CWnd)

CStatic::CStatic() {}

CButton::CButton() {}

int CButton::GetCheck() const
{
    return (int)SendMessage(BM_GETCHECK);
}

void CButton::SetCheck(int nCheck)
{
    SendMessage(BM_SETCHECK, (WPARAM)nCheck);
}

UINT CButton::GetState() const
{
    return (UINT)SendMessage(BM_GETSTATE);
}

void CButton::SetState(BOOL bHighlight)
{
    SendMessage(BM_SETSTATE, (WPARAM)bHighlight);
}

CEdit::CEdit() {}

void CEdit::SetSel(int nStartChar, int nEndChar, BOOL bNoScroll)
{
    SendMessage(EM_SETSEL, (WPARAM)nStartChar, (LPARAM)nEndChar);
    if (!bNoScroll)
        SendMessage(EM_SCROLLCARET);
}

void CEdit::ReplaceSel(LPCTSTR lpszNewText, BOOL bCanUndo)
{
    SendMessage(EM_REPLACESEL, (WPARAM)bCanUndo, reinterpret_cast<LPARAM>(lpszNewText));
}

void CEdit::LimitText(int nChars)
{
    SendMessage(EM_LIMITTEXT, (WPARAM)nChars);
}

BOOL CEdit::SetReadOnly(BOOL bReadOnly)
{
    return (BOOL)SendMessage(EM_SETREADONLY, (WPARAM)bReadOnly);
}

int CEdit::GetLineCount() const
{
    return (int)SendMessage(EM_GETLINECOUNT);
}

CComboBox::CComboBox() {}

int CComboBox::GetCount() const
{
    return (int)SendMessage(CB_GETCOUNT);
}

int CComboBox::GetCurSel() const
{
    return (int)SendMessage(CB_GETCURSEL);
}

int CComboBox::SetCurSel(int nSelect)
{
    return (int)SendMessage(CB_SETCURSEL, (WPARAM)nSelect);
}

int CComboBox::AddString(LPCTSTR lpszString)
{
    return (int)SendMessage(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(lpszString));
}

int CComboBox::InsertString(int nIndex, LPCTSTR lpszString)
{
    return (int)SendMessage(CB_INSERTSTRING, (WPARAM)nIndex, reinterpret_cast<LPARAM>(lpszString));
}

int CComboBox::DeleteString(UINT nIndex)
{
    return (int)SendMessage(CB_DELETESTRING, (WPARAM)nIndex);
}

void CComboBox::ResetContent()
{
    SendMessage(CB_RESETCONTENT);
}

int CComboBox::GetLBText(int nIndex, LPTSTR lpszText) const
{
    return (int)SendMessage(CB_GETLBTEXT, (WPARAM)nIndex, reinterpret_cast<LPARAM>(lpszText));
}

void CComboBox::GetLBText(int nIndex, CString& rString) const
{
    int nLength = GetLBTextLen(nIndex);
    if (nLength == CB_ERR)
    {
        rString.Empty();
        return;
    }
    GetLBText(nIndex, rString.GetBuffer(nLength));
    rString.ReleaseBuffer();
}

int CComboBox::GetLBTextLen(int nIndex) const
{
    return (int)SendMessage(CB_GETLBTEXTLEN, (WPARAM)nIndex);
}

int CComboBox::FindStringExact(int nIndexStart, LPCTSTR lpszFind) const
{
    return (int)SendMessage(CB_FINDSTRINGEXACT, (WPARAM)nIndexStart, reinterpret_cast<LPARAM>(lpszFind));
}

int CComboBox::SelectString(int nStartAfter, LPCTSTR lpszString)
{
    return (int)SendMessage(CB_SELECTSTRING, (WPARAM)nStartAfter, reinterpret_cast<LPARAM>(lpszString));
}

DWORD_PTR CComboBox::GetItemData(int nIndex) const
{
    return (DWORD_PTR)SendMessage(CB_GETITEMDATA, (WPARAM)nIndex);
}

int CComboBox::SetItemData(int nIndex, DWORD_PTR dwItemData)
{
    return (int)SendMessage(CB_SETITEMDATA, (WPARAM)nIndex, (LPARAM)dwItemData);
}

CScrollBar::CScrollBar() {}

int CScrollBar::GetScrollPos() const
{
    return ::GetScrollPos(m_hWnd, SB_CTL);
}

int CScrollBar::SetScrollPos(int nPos, BOOL bRedraw)
{
    return ::SetScrollPos(m_hWnd, SB_CTL, nPos, bRedraw);
}

void CScrollBar::GetScrollRange(LPINT lpMinPos, LPINT lpMaxPos) const
{
    ::GetScrollRange(m_hWnd, SB_CTL, lpMinPos, lpMaxPos);
}

void CScrollBar::SetScrollRange(int nMinPos, int nMaxPos, BOOL bRedraw)
{
    ::SetScrollRange(m_hWnd, SB_CTL, nMinPos, nMaxPos, bRedraw);
}
