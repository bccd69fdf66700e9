#pragma once
// The dialog under test: every exchange the library uses, and a handler of each kind.

#include <afxcmn.h>
#include <atomic>
#include "MfcTestIds.h"

class CNumbersDialog : public CDialog
{
public:
    CNumbersDialog() : CDialog(IDD_NUMBERS) {}

    int m_nInt = 5;
    float m_fFloat = 2.5f;
    UINT m_nUint = 7;
    CString m_strText = L"abc";
    int m_nRadio = 1;
    int m_nCombo = 2;
    int m_nSlider = 30;
    CComboBox m_combo;
    CSliderCtrl m_slider;

    // What the handlers saw, read by the driving thread.
    std::atomic<int> m_nPings{0};
    std::atomic<int> m_nSelChanges{0};
    std::atomic<int> m_nTimers{0};
    std::atomic<int> m_nOkCalls{0};
    std::atomic<int> m_nScrolls{0};
    std::atomic<UINT> m_nScrollPosArg{0};
    std::atomic<int> m_nSliderPosSeen{-1};
    std::atomic<bool> m_bScrollBarIsMember{false};

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;

    afx_msg void OnPing();
    afx_msg void OnComboSelChange();
    afx_msg void OnHScroll(UINT nSBCode, UINT nPos, CScrollBar* pScrollBar);
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    DECLARE_MESSAGE_MAP()
};
