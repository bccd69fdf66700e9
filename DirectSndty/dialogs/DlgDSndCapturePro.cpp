#include "DlgDSndCapturePro.h"
#include "FormatCombos.h"

namespace
{
int isChecked(const CButton& button)
{
    return button.GetCheck() != 0 ? 1 : 0;
}
}

IMPLEMENT_DYNAMIC(CDlgDSndCapturePro, CDialog)

CDlgDSndCapturePro::CDlgDSndCapturePro(CWnd* pParent)
    : CDialog(CDlgDSndCapturePro::IDD, pParent),
      m_dwRecordBytes(0)
{
}

CDlgDSndCapturePro::~CDlgDSndCapturePro()
{
}

void CDlgDSndCapturePro::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CHECK_RECORD_NEW, m_btnRecordNew);
    DDX_Control(pDX, IDC_CHECK_DIRECT_RECORD, m_btnDirectRecord);
    DDX_Control(pDX, IDC_CHECK_TIME_RECORD, m_btnTimeLimited);
    DDX_Control(pDX, IDC_CMB_RECORD_BITS_PER_SAMPLE, m_cmbBitsPerSample);
    DDX_Control(pDX, IDC_CMB_RECORD_SAMPLING_RATE, m_cmbSamplingRate);
    DDX_Control(pDX, IDC_CMB_RECORD_CHANNEL, m_cmbChannel);
    DDX_Control(pDX, IDC_CHECK_SIZE_RECORD, m_btnSizeLimited);
    DDX_Control(pDX, IDC_CHECK_TIME_CRITICAL, m_btnTimeCritical);
    DDX_Text(pDX, IDC_EDIT_RECORD_BYTES, m_dwRecordBytes);
    DDX_Text(pDX, IDC_EDIT_RECORD_SECONDS, m_dwRecordSeconds);
}

BEGIN_MESSAGE_MAP(CDlgDSndCapturePro, CDialog)
    ON_BN_CLICKED(IDC_CHECK_TIME_RECORD, &CDlgDSndCapturePro::OnCheckTimeRecord)
    ON_BN_CLICKED(IDC_CHECK_SIZE_RECORD, &CDlgDSndCapturePro::OnCheckSizeRecord)
    ON_BN_CLICKED(IDC_CHECK_DIRECT_RECORD, &CDlgDSndCapturePro::OnCheckDirectRecord)
    ON_BN_CLICKED(IDOK, &CDlgDSndCapturePro::OnBnClickedOk)
END_MESSAGE_MAP()

// Every opening starts again from these defaults.
BOOL CDlgDSndCapturePro::OnInitDialog()
{
    CDialog::OnInitDialog();

    m_btnSizeLimited.SetCheck(1);
    m_bSizeLimited = 1;
    m_dwRecordBytes = 4000000;
    OnCheckSizeRecord();
    m_dwRecordSeconds = 180;

    fillFormatCombos(m_cmbBitsPerSample, m_cmbChannel, m_cmbSamplingRate);
    m_nBitsPerSample = 16;
    m_nChannel = 2;
    m_nSamplingRate = 44100;

    m_btnDirectRecord.SetCheck(1);
    m_bDirectRecord = 1;
    m_btnRecordNew.SetCheck(0);
    m_bRecordNew = 0;

    UpdateData(FALSE);
    return TRUE;
}

// The two rules are deliberately not mirror images: unchecking leaves the other's edit alone.
void CDlgDSndCapturePro::OnCheckSizeRecord()
{
    if (m_btnSizeLimited.GetCheck() != 0)
    {
        GetDlgItem(IDC_EDIT_RECORD_SECONDS)->EnableWindow(FALSE);
        m_btnTimeLimited.EnableWindow(FALSE);
        GetDlgItem(IDC_EDIT_RECORD_BYTES)->EnableWindow(TRUE);
        return;
    }
    m_btnTimeLimited.EnableWindow(TRUE);
    GetDlgItem(IDC_EDIT_RECORD_BYTES)->EnableWindow(FALSE);
}

void CDlgDSndCapturePro::OnCheckTimeRecord()
{
    if (m_btnTimeLimited.GetCheck() != 0)
    {
        GetDlgItem(IDC_EDIT_RECORD_SECONDS)->EnableWindow(TRUE);
        GetDlgItem(IDC_EDIT_RECORD_BYTES)->EnableWindow(FALSE);
        m_btnSizeLimited.EnableWindow(FALSE);
        return;
    }
    GetDlgItem(IDC_EDIT_RECORD_SECONDS)->EnableWindow(FALSE);
    m_btnSizeLimited.EnableWindow(TRUE);
}

void CDlgDSndCapturePro::OnCheckDirectRecord()
{
}

void CDlgDSndCapturePro::OnBnClickedOk()
{
    OnOK();
}

void CDlgDSndCapturePro::OnOK()
{
    UpdateData(TRUE);
    m_bSizeLimited = isChecked(m_btnSizeLimited);
    m_bDirectRecord = isChecked(m_btnDirectRecord);
    m_bRecordNew = isChecked(m_btnRecordNew);

    readComboNumber(m_cmbBitsPerSample, m_nBitsPerSample);
    readComboNumber(m_cmbChannel, m_nChannel);
    readComboNumber(m_cmbSamplingRate, m_nSamplingRate);

    m_wfxRecord = pcmFormatOf(m_nChannel, m_nSamplingRate, m_nBitsPerSample);

    CDialog::OnOK();
}
