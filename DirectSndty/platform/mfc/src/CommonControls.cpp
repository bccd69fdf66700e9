// Trackbar, progress bar and rich edit: thin wrappers over their window messages.
#include "afxcmn.h"
#include <richedit.h>

IMPLEMENT_DYNAMIC(CSliderCtrl, CWnd)
IMPLEMENT_DYNAMIC(CProgressCtrl, CWnd)
IMPLEMENT_DYNAMIC(CRichEditCtrl, CWnd)

CSliderCtrl::CSliderCtrl() {}

int CSliderCtrl::GetPos() const
{
    return (int)SendMessage(TBM_GETPOS);
}

void CSliderCtrl::SetPos(int nPos)
{
    SendMessage(TBM_SETPOS, TRUE, nPos);
}

int CSliderCtrl::GetRangeMin() const
{
    return (int)SendMessage(TBM_GETRANGEMIN);
}

int CSliderCtrl::GetRangeMax() const
{
    return (int)SendMessage(TBM_GETRANGEMAX);
}

void CSliderCtrl::GetRange(int& nMin, int& nMax) const
{
    nMin = GetRangeMin();
    nMax = GetRangeMax();
}

// The two ends are set one by one: TBM_SETRANGE packs them in 16 bits each, too few for
// ranges such as 100 to 100000.
void CSliderCtrl::SetRange(int nMin, int nMax, BOOL bRedraw)
{
    SetRangeMin(nMin, FALSE);
    SetRangeMax(nMax, bRedraw);
}

void CSliderCtrl::SetRangeMin(int nMin, BOOL bRedraw)
{
    SendMessage(TBM_SETRANGEMIN, (WPARAM)bRedraw, nMin);
}

void CSliderCtrl::SetRangeMax(int nMax, BOOL bRedraw)
{
    SendMessage(TBM_SETRANGEMAX, (WPARAM)bRedraw, nMax);
}

void CSliderCtrl::SetTicFreq(int nFreq)
{
    SendMessage(TBM_SETTICFREQ, (WPARAM)nFreq);
}

int CSliderCtrl::SetPageSize(int nSize)
{
    return (int)SendMessage(TBM_SETPAGESIZE, 0, nSize);
}

int CSliderCtrl::SetLineSize(int nSize)
{
    return (int)SendMessage(TBM_SETLINESIZE, 0, nSize);
}

CProgressCtrl::CProgressCtrl() {}

void CProgressCtrl::SetRange32(int nLower, int nUpper)
{
    SendMessage(PBM_SETRANGE32, (WPARAM)nLower, (LPARAM)nUpper);
}

int CProgressCtrl::SetPos(int nPos)
{
    return (int)SendMessage(PBM_SETPOS, (WPARAM)nPos);
}

int CProgressCtrl::GetPos() const
{
    return (int)SendMessage(PBM_GETPOS);
}

CRichEditCtrl::CRichEditCtrl() {}

BOOL CRichEditCtrl::SetReadOnly(BOOL bReadOnly)
{
    return (BOOL)SendMessage(EM_SETOPTIONS, bReadOnly ? ECOOP_OR : ECOOP_AND,
                             bReadOnly ? ECO_READONLY : ~(LPARAM)ECO_READONLY);
}

void CRichEditCtrl::ReplaceSel(LPCTSTR lpszNewText, BOOL bCanUndo)
{
    SendMessage(EM_REPLACESEL, (WPARAM)bCanUndo, reinterpret_cast<LPARAM>(lpszNewText));
}

void CRichEditCtrl::SetSel(long nStartChar, long nEndChar)
{
    CHARRANGE range = {nStartChar, nEndChar};
    SendMessage(EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

int CRichEditCtrl::GetLineCount() const
{
    return (int)SendMessage(EM_GETLINECOUNT);
}
