#include "NumbersDialog.h"

BEGIN_MESSAGE_MAP(CNumbersDialog, CDialog)
    ON_BN_CLICKED(IDC_PING, &CNumbersDialog::OnPing)
    ON_CBN_SELCHANGE(IDC_COMBO, &CNumbersDialog::OnComboSelChange)
    ON_WM_HSCROLL()
    ON_WM_TIMER()
END_MESSAGE_MAP()

const UINT_PTR kTimerId = 7;

void CNumbersDialog::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_COMBO, m_combo);
    DDX_Control(pDX, IDC_SLIDER, m_slider);
    DDX_Text(pDX, IDC_INT, m_nInt);
    DDX_Text(pDX, IDC_FLOAT, m_fFloat);
    DDV_MinMaxFloat(pDX, m_fFloat, 0.0f, 10.0f);
    DDX_Text(pDX, IDC_UINT, m_nUint);
    DDX_Text(pDX, IDC_TEXT, m_strText);
    DDX_Radio(pDX, IDC_RADIO_A, m_nRadio);
    DDX_CBIndex(pDX, IDC_COMBO, m_nCombo);
    DDX_Slider(pDX, IDC_SLIDER, m_nSlider);
}

BOOL CNumbersDialog::OnInitDialog()
{
    // The list is filled before the base class shows the members in the controls.
    for (const wchar_t* item : {L"zero", L"one", L"two"})
        ::SendDlgItemMessageW(m_hWnd, IDC_COMBO, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
    CDialog::OnInitDialog();
    SetTimer(kTimerId, 20, NULL);
    return TRUE;
}

void CNumbersDialog::OnOK()
{
    ++m_nOkCalls;
    CDialog::OnOK();
}

void CNumbersDialog::OnPing()
{
    ++m_nPings;
}

void CNumbersDialog::OnComboSelChange()
{
    ++m_nSelChanges;
}

void CNumbersDialog::OnHScroll(UINT, UINT nPos, CScrollBar* pScrollBar)
{
    m_nScrollPosArg = nPos;
    m_bScrollBarIsMember = static_cast<CWnd*>(pScrollBar) == &m_slider;
    m_nSliderPosSeen = m_slider.GetPos();
    ++m_nScrolls;
}

void CNumbersDialog::OnTimer(UINT_PTR nIDEvent)
{
    if (nIDEvent != kTimerId)
        return;
    KillTimer(kTimerId);
    ++m_nTimers;
}
