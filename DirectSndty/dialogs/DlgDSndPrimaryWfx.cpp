#include "DlgDSndPrimaryWfx.h"

namespace
{
// The combo's text as a number; text that is not a number counts as 0.
int comboNumber(const CComboBox& combo)
{
    TCHAR szText[256] = {0};
    combo.GetWindowText(szText, 256);
    int nValue = 0;
    if (_stscanf(szText, _T("%d"), &nValue) != 1)
        return 0;
    return nValue;
}

// A rate that is not offered selects the highest one.
int rateIndex(DWORD dwSamplesPerSec)
{
    if (dwSamplesPerSec == 11025)
        return 0;
    if (dwSamplesPerSec == 22050)
        return 1;
    return 2;
}
}

IMPLEMENT_DYNAMIC(CDlgDSndPrimaryWfx, CDialog)

CDlgDSndPrimaryWfx::CDlgDSndPrimaryWfx(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDSndPrimaryWfx::IDD, pParent)
{
    ZeroMemory(&m_wfxPrimary, sizeof(m_wfxPrimary));
}

CDlgDSndPrimaryWfx::~CDlgDSndPrimaryWfx()
{
}

void CDlgDSndPrimaryWfx::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CMB_PRIMARY_CHANNEL, m_cmbChannel);
    DDX_Control(pDX, IDC_CMB_PRIMARY_SAMPLING_RATE, m_cmbSamplingRate);
    DDX_Control(pDX, IDC_CMB_PRIMARY_BITS_PER_SAMPLE, m_cmbBitsPerSample);
}

BEGIN_MESSAGE_MAP(CDlgDSndPrimaryWfx, CDialog)
    ON_BN_CLICKED(IDOK, &CDlgDSndPrimaryWfx::OnBnClickedOk)
END_MESSAGE_MAP()

// The items are inserted at fixed places, so the selections below are by position.
BOOL CDlgDSndPrimaryWfx::OnInitDialog()
{
    CDialog::OnInitDialog();

    m_cmbBitsPerSample.InsertString(0, _T("8"));
    m_cmbBitsPerSample.InsertString(1, _T("16"));
    m_cmbBitsPerSample.SetCurSel(m_wfxPrimary.wBitsPerSample == 16 ? 1 : 0);

    m_cmbChannel.InsertString(0, _T("1"));
    m_cmbChannel.InsertString(1, _T("2"));
    m_cmbChannel.SetCurSel(m_wfxPrimary.nChannels == 2 ? 1 : 0);

    m_cmbSamplingRate.InsertString(0, _T("11025"));
    m_cmbSamplingRate.InsertString(1, _T("22050"));
    m_cmbSamplingRate.InsertString(2, _T("44100"));
    m_cmbSamplingRate.SetCurSel(rateIndex(m_wfxPrimary.nSamplesPerSec));

    return TRUE;
}

// The format is rebuilt from the combos' texts, so a value typed by hand counts too.
void CDlgDSndPrimaryWfx::OnOK()
{
    int nChannels = comboNumber(m_cmbChannel);
    int nSamplesPerSec = comboNumber(m_cmbSamplingRate);
    int nBitsPerSample = comboNumber(m_cmbBitsPerSample);

    m_wfxPrimary.wFormatTag = WAVE_FORMAT_PCM;
    m_wfxPrimary.nChannels = (WORD)nChannels;
    m_wfxPrimary.nSamplesPerSec = (DWORD)nSamplesPerSec;
    m_wfxPrimary.wBitsPerSample = (WORD)nBitsPerSample;
    m_wfxPrimary.nBlockAlign = (WORD)((m_wfxPrimary.wBitsPerSample * m_wfxPrimary.nChannels) / 8);
    m_wfxPrimary.nAvgBytesPerSec = m_wfxPrimary.nBlockAlign * m_wfxPrimary.nSamplesPerSec;
    m_wfxPrimary.cbSize = 0;

    CDialog::OnOK();
}

void CDlgDSndPrimaryWfx::OnBnClickedOk()
{
    OnOK();
}
