#include "DlgDSndCooperativeLevel.h"
#include "../device/DirectSndDevice.h"

namespace
{
// The radio buttons in their order in the group. DSSCL_EXCLUSIVE has no button.
const DWORD kRadioLevels[] = {DSSCL_NORMAL, DSSCL_PRIORITY, DSSCL_WRITEPRIMARY};
const int kRadioCount = sizeof(kRadioLevels) / sizeof(kRadioLevels[0]);
}

IMPLEMENT_DYNAMIC(CDlgDSndCooperativeLevel, CDialog)

CDlgDSndCooperativeLevel::CDlgDSndCooperativeLevel(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDSndCooperativeLevel::IDD, pParent),
      m_dwCoopLevel(DSSCL_NORMAL),
      m_nLevelRadio(0),
      m_pDevice(NULL),
      m_pContext(NULL),
      m_hWndCoop(NULL)
{
}

CDlgDSndCooperativeLevel::~CDlgDSndCooperativeLevel()
{
}

void CDlgDSndCooperativeLevel::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Radio(pDX, IDC_RADIO_COOP_NORMAL, m_nLevelRadio);
    DDX_Control(pDX, IDC_BTN_COOP_APPLY, m_btnApply);
    DDX_Control(pDX, IDC_BTN_COOP_PLAY, m_btnPlay);
}

// "Play" has no handler on purpose: it only shows whether the opener gave a context.
BEGIN_MESSAGE_MAP(CDlgDSndCooperativeLevel, CDialog)
    ON_BN_CLICKED(IDC_BTN_COOP_APPLY, &CDlgDSndCooperativeLevel::OnBnClickedApply)
    ON_BN_CLICKED(IDOK, &CDlgDSndCooperativeLevel::OnBnClickedOk)
END_MESSAGE_MAP()

BOOL CDlgDSndCooperativeLevel::OnInitDialog()
{
    CDialog::OnInitDialog();

    if (m_pDevice == NULL)
        m_btnApply.EnableWindow(FALSE);
    if (m_pContext == NULL)
        m_btnPlay.EnableWindow(FALSE);

    levelToRadio();
    UpdateData(FALSE);
    return TRUE;
}

// A level without a button leaves the index as it was.
void CDlgDSndCooperativeLevel::levelToRadio()
{
    for (int i = 0; i < kRadioCount; i++)
    {
        if (kRadioLevels[i] == m_dwCoopLevel)
        {
            m_nLevelRadio = i;
            return;
        }
    }
}

// No button checked leaves the level as it was.
void CDlgDSndCooperativeLevel::radioToLevel()
{
    if (m_nLevelRadio < 0 || m_nLevelRadio >= kRadioCount)
        return;
    m_dwCoopLevel = kRadioLevels[m_nLevelRadio];
}

// Sets the chosen level on the device while the dialog stays open.
void CDlgDSndCooperativeLevel::OnBnClickedApply()
{
    if (!UpdateData(TRUE))
        return;
    radioToLevel();
    if (m_pDevice != NULL)
        m_pDevice->setDSndCooperatLevelStd(m_hWndCoop, m_dwCoopLevel);
}

void CDlgDSndCooperativeLevel::OnOK()
{
    if (!UpdateData(TRUE))
        return;
    radioToLevel();
    CDialog::OnOK();
}

void CDlgDSndCooperativeLevel::OnBnClickedOk()
{
    OnOK();
}
