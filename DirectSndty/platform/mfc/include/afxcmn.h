#pragma once
// Common controls of the MFC subset.
#include "afxwin.h"

class AFX_SUBSET_API CSliderCtrl : public CWnd
{
    DECLARE_DYNAMIC(CSliderCtrl)
public:
    CSliderCtrl();
    int GetPos() const;
    void SetPos(int nPos);
    int GetRangeMin() const;
    int GetRangeMax() const;
    void GetRange(int& nMin, int& nMax) const;
    void SetRange(int nMin, int nMax, BOOL bRedraw = FALSE);
    void SetRangeMin(int nMin, BOOL bRedraw = FALSE);
    void SetRangeMax(int nMax, BOOL bRedraw = FALSE);
    void SetTicFreq(int nFreq);
    int SetPageSize(int nSize);
    int SetLineSize(int nSize);
};

class AFX_SUBSET_API CProgressCtrl : public CWnd
{
    DECLARE_DYNAMIC(CProgressCtrl)
public:
    CProgressCtrl();
    void SetRange32(int nLower, int nUpper);
    int SetPos(int nPos);
    int GetPos() const;
};

class AFX_SUBSET_API CRichEditCtrl : public CWnd
{
    DECLARE_DYNAMIC(CRichEditCtrl)
public:
    CRichEditCtrl();
    BOOL SetReadOnly(BOOL bReadOnly = TRUE);
    void ReplaceSel(LPCTSTR lpszNewText, BOOL bCanUndo = FALSE);
    void SetSel(long nStartChar, long nEndChar);
    int GetLineCount() const;
};
