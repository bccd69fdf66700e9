#include "DlgSndPlayCtlty.h"

IMPLEMENT_DYNAMIC(CDlgSndPlayCtlty, CDialog)

CDlgSndPlayCtlty::CDlgSndPlayCtlty(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgSndPlayCtlty::IDD, pParent),
      m_pDSBuffer(NULL),
      m_lPanNew(0),
      m_lPanOriginal(0),
      m_lVolumeNew(0),
      m_lVolumeOriginal(0),
      m_dwFrequencyNew(0),
      m_dwFrequencyOriginal(0)
{
}

CDlgSndPlayCtlty::~CDlgSndPlayCtlty()
{
}

void CDlgSndPlayCtlty::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_SLIDER_FREQUENCY, m_sliderFrequency);
    DDX_Control(pDX, IDC_SLIDER_VOLUME, m_sliderVolume);
    DDX_Control(pDX, IDC_RADIO_PAN_CENTRE, m_btnCentre);
    DDX_Control(pDX, IDC_SLIDER_PAN, m_sliderPan);
    DDX_Text(pDX, IDC_EDIT_PAN_NEW, m_lPanNew);
    DDX_Text(pDX, IDC_EDIT_PAN_ORIGINAL, m_lPanOriginal);
    DDX_Text(pDX, IDC_EDIT_VOLUME_NEW, m_lVolumeNew);
    DDX_Text(pDX, IDC_EDIT_VOLUME_ORIGINAL, m_lVolumeOriginal);
    DDX_Text(pDX, IDC_EDIT_FREQUENCY_NEW, m_dwFrequencyNew);
    DDX_Text(pDX, IDC_EDIT_FREQUENCY_ORIGINAL, m_dwFrequencyOriginal);
}

BEGIN_MESSAGE_MAP(CDlgSndPlayCtlty, CDialog)
    ON_WM_HSCROLL()
    ON_BN_CLICKED(IDC_RADIO_PAN_LEFT, &CDlgSndPlayCtlty::OnBnClickedLeft)
    ON_BN_CLICKED(IDC_RADIO_PAN_CENTRE, &CDlgSndPlayCtlty::OnBnClickedCentre)
    ON_BN_CLICKED(IDC_RADIO_PAN_RIGHT, &CDlgSndPlayCtlty::OnBnClickedRight)
    ON_BN_CLICKED(IDOK, &CDlgSndPlayCtlty::OnBnClickedOk)
END_MESSAGE_MAP()

namespace
{
// DirectSound's own frequency limits before version 8 raised the top to 200000 Hz.
const int kFrequencyLowest = 100;
const int kFrequencyHighest = 100000;

// Wine moves a trackbar's thumb only when its position changes, so a range set around an
// unchanged position leaves the thumb where the old range put it. Stepping off and back
// places it; TBM_SETPOS sends no notification, so nothing else sees the step.
void setRangeShown(CSliderCtrl& slider, int nMin, int nMax)
{
    slider.SetRange(nMin, nMax, TRUE);
    const int nPos = slider.GetPos();
    slider.SetPos(nPos == nMax ? nMin : nMax);
    slider.SetPos(nPos);
}

// The buffer's control flags; 0 when there is no buffer or it cannot tell.
DWORD bufferCapsFlags(IDirectSoundBuffer* pBuffer)
{
    DSBCAPS caps;
    ZeroMemory(&caps, sizeof(caps));
    caps.dwSize = sizeof(caps);
    if (pBuffer == NULL)
        return 0;
    if (FAILED(pBuffer->GetCaps(&caps)))
    {
        AfxMessageBox(_T("Failed to get sound buffer capability"), MB_OK, 0);
        return 0;
    }
    return caps.dwFlags;
}
}

// Each slider is enabled only when the buffer was made with that control; the figures
// stay 0 for a setting the buffer cannot report.
BOOL CDlgSndPlayCtlty::OnInitDialog()
{
    CDialog::OnInitDialog();

    const DWORD dwFlags = bufferCapsFlags(m_pDSBuffer);
    setUpPan(dwFlags);
    setUpVolume(dwFlags);
    setUpFrequency(dwFlags);

    UpdateData(FALSE);
    return TRUE;
}

void CDlgSndPlayCtlty::setUpPan(DWORD dwFlags)
{
    setRangeShown(m_sliderPan, DSBPAN_LEFT, DSBPAN_RIGHT);
    m_sliderPan.SetPageSize(1000);
    if (m_pDSBuffer == NULL || !(dwFlags & DSBCAPS_CTRLPAN))
    {
        m_sliderPan.EnableWindow(FALSE);
        return;
    }
    LONG lPan = 0;
    if (FAILED(m_pDSBuffer->GetPan(&lPan)))
        return;
    m_sliderPan.SetPos(lPan);
    m_lPanOriginal = lPan;
    if (lPan == DSBPAN_CENTER)
        m_btnCentre.SetCheck(BST_CHECKED);
}

void CDlgSndPlayCtlty::setUpVolume(DWORD dwFlags)
{
    setRangeShown(m_sliderVolume, DSBVOLUME_MIN, DSBVOLUME_MAX);
    m_sliderVolume.SetPageSize(500);
    if (m_pDSBuffer == NULL || !(dwFlags & DSBCAPS_CTRLVOLUME))
    {
        m_sliderVolume.EnableWindow(FALSE);
        return;
    }
    LONG lVolume = 0;
    if (FAILED(m_pDSBuffer->GetVolume(&lVolume)))
        return;
    m_lVolumeOriginal = lVolume;
    m_sliderVolume.SetPos(lVolume);
    m_lVolumeNew = lVolume;
}

void CDlgSndPlayCtlty::setUpFrequency(DWORD dwFlags)
{
    setRangeShown(m_sliderFrequency, kFrequencyLowest, kFrequencyHighest);
    m_sliderFrequency.SetPageSize(10000);
    if (m_pDSBuffer == NULL || !(dwFlags & DSBCAPS_CTRLFREQUENCY))
    {
        m_sliderFrequency.EnableWindow(FALSE);
        return;
    }
    DWORD dwFrequency = 0;
    if (FAILED(m_pDSBuffer->GetFrequency(&dwFrequency)))
        return;
    m_dwFrequencyOriginal = dwFrequency;
    m_sliderFrequency.SetPos(static_cast<int>(dwFrequency));
    m_dwFrequencyNew = dwFrequency;
}

// Only the "New" figures follow the sliders; the buffer itself is never changed here.
void CDlgSndPlayCtlty::OnHScroll(UINT nSBCode, UINT nPos, CScrollBar* pScrollBar)
{
    m_lPanNew = m_sliderPan.GetPos();
    m_lVolumeNew = m_sliderVolume.GetPos();
    m_dwFrequencyNew = static_cast<DWORD>(m_sliderFrequency.GetPos());
    UpdateData(FALSE);
    CWnd::OnHScroll(nSBCode, nPos, pScrollBar);
}

// The presets move the slider only; the "New" pan follows at the next slider message.
void CDlgSndPlayCtlty::OnBnClickedLeft()
{
    m_sliderPan.SetPos(DSBPAN_LEFT);
}

void CDlgSndPlayCtlty::OnBnClickedCentre()
{
    m_sliderPan.SetPos(DSBPAN_CENTER);
}

void CDlgSndPlayCtlty::OnBnClickedRight()
{
    m_sliderPan.SetPos(DSBPAN_RIGHT);
}

void CDlgSndPlayCtlty::OnBnClickedOk()
{
    OnOK();
}
