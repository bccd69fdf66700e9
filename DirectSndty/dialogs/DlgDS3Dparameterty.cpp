#include "DlgDS3Dparameterty.h"
#include "../buffer/DirectSnd3DBuffty.h"

IMPLEMENT_DYNAMIC(CDlgDS3Dparameterty, CDialog)

namespace
{
// The mode list, in the order of DS3DMODE_NORMAL, DS3DMODE_HEADRELATIVE, DS3DMODE_DISABLE.
const LPCTSTR kModeNames[] = {_T("Normal"), _T("Head relative"), _T("Disable")};
const DWORD kModes[] = {DS3DMODE_NORMAL, DS3DMODE_HEADRELATIVE, DS3DMODE_DISABLE};
const int kModeCount = sizeof(kModes) / sizeof(kModes[0]);
}

CDlgDS3Dparameterty::CDlgDS3Dparameterty(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDS3Dparameterty::IDD, pParent),
      m_fPositionX(0.0f), m_fPositionY(0.0f), m_fPositionZ(0.0f),
      m_fVelocityX(0.0f), m_fVelocityY(0.0f), m_fVelocityZ(0.0f),
      m_fMaxDistance(0.0f),
      m_fMinDistance(0.0f),
      m_dwInsideConeAngle(0),
      m_dwOutsideConeAngle(0),
      m_fConeX(0.0f), m_fConeY(0.0f), m_fConeZ(0.0f),
      m_lConeOutsideVolume(0),
      m_fListenerPositionX(0.0f), m_fListenerPositionY(0.0f), m_fListenerPositionZ(0.0f),
      m_fListenerVelocityX(0.0f), m_fListenerVelocityY(0.0f), m_fListenerVelocityZ(0.0f),
      m_fRolloffFactor(0.0f),
      m_fFrontX(0.0f), m_fFrontY(0.0f), m_fFrontZ(0.0f),
      m_fTopX(0.0f), m_fTopY(0.0f), m_fTopZ(0.0f),
      m_fDistanceFactor(0.0f),
      m_fDopplerFactor(0.0f),
      m_fUnused(30.0f),
      m_pDevice(NULL),
      m_pSnd3DBuff(NULL),
      m_nReserved(0),
      m_bTestPlaying(0)
{
}

CDlgDS3Dparameterty::~CDlgDS3Dparameterty()
{
}

void CDlgDS3Dparameterty::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CMB_DS3D_MODE, m_cmbMode);
    DDX_Text(pDX, IDC_EDIT_DS3D_POS_X, m_fPositionX);
    DDX_Text(pDX, IDC_EDIT_DS3D_POS_Y, m_fPositionY);
    DDX_Text(pDX, IDC_EDIT_DS3D_POS_Z, m_fPositionZ);
    DDX_Text(pDX, IDC_EDIT_DS3D_VEL_X, m_fVelocityX);
    DDX_Text(pDX, IDC_EDIT_DS3D_VEL_Y, m_fVelocityY);
    DDX_Text(pDX, IDC_EDIT_DS3D_VEL_Z, m_fVelocityZ);
    DDX_Text(pDX, IDC_EDIT_DS3D_MAX_DISTANCE, m_fMaxDistance);
    DDX_Text(pDX, IDC_EDIT_DS3D_MIN_DISTANCE, m_fMinDistance);
    DDX_Text(pDX, IDC_EDIT_DS3D_CONE_INSIDE, m_dwInsideConeAngle);
    DDX_Text(pDX, IDC_EDIT_DS3D_CONE_OUTSIDE, m_dwOutsideConeAngle);
    DDX_Text(pDX, IDC_EDIT_DS3D_CONE_X, m_fConeX);
    DDX_Text(pDX, IDC_EDIT_DS3D_CONE_Y, m_fConeY);
    DDX_Text(pDX, IDC_EDIT_DS3D_CONE_Z, m_fConeZ);
    DDX_Text(pDX, IDC_EDIT_DS3D_CONE_VOLUME, m_lConeOutsideVolume);
    DDX_Text(pDX, IDC_EDIT_LISTENER_POS_X, m_fListenerPositionX);
    DDX_Text(pDX, IDC_EDIT_LISTENER_POS_Y, m_fListenerPositionY);
    DDX_Text(pDX, IDC_EDIT_LISTENER_POS_Z, m_fListenerPositionZ);
    DDX_Text(pDX, IDC_EDIT_LISTENER_VEL_X, m_fListenerVelocityX);
    DDX_Text(pDX, IDC_EDIT_LISTENER_VEL_Y, m_fListenerVelocityY);
    DDX_Text(pDX, IDC_EDIT_LISTENER_VEL_Z, m_fListenerVelocityZ);
    DDX_Text(pDX, IDC_EDIT_LISTENER_ROLLOFF, m_fRolloffFactor);
    DDX_Text(pDX, IDC_EDIT_LISTENER_FRONT_X, m_fFrontX);
    DDX_Text(pDX, IDC_EDIT_LISTENER_FRONT_Y, m_fFrontY);
    DDX_Text(pDX, IDC_EDIT_LISTENER_FRONT_Z, m_fFrontZ);
    DDX_Text(pDX, IDC_EDIT_LISTENER_TOP_X, m_fTopX);
    DDX_Text(pDX, IDC_EDIT_LISTENER_TOP_Y, m_fTopY);
    DDX_Text(pDX, IDC_EDIT_LISTENER_TOP_Z, m_fTopZ);
    DDX_Text(pDX, IDC_EDIT_LISTENER_DISTANCE, m_fDistanceFactor);
    DDX_Text(pDX, IDC_EDIT_LISTENER_DOPPLER, m_fDopplerFactor);
    DDV_MinMaxFloat(pDX, m_fDopplerFactor, 0.0f, 10.0f);
}

BEGIN_MESSAGE_MAP(CDlgDS3Dparameterty, CDialog)
    ON_WM_TIMER()
    ON_BN_CLICKED(IDC_BTN_DS3D_TEST, &CDlgDS3Dparameterty::OnBnClickedTest)
    ON_BN_CLICKED(IDC_BTN_DS3D_STOP, &CDlgDS3Dparameterty::OnBnClickedStop)
    ON_BN_CLICKED(IDOK, &CDlgDS3Dparameterty::OnBnClickedOk)
    ON_CBN_SELCHANGE(IDC_CMB_DS3D_MODE, &CDlgDS3Dparameterty::OnCbnSelchangeMode)
END_MESSAGE_MAP()

// The list always opens on "Normal", whatever mode the buffer has: OK without touching
// it sets the normal mode. That is how the dialog has always behaved.
BOOL CDlgDS3Dparameterty::OnInitDialog()
{
    CDialog::OnInitDialog();

    readWorkingRecords();
    for (int i = 0; i < kModeCount; ++i)
        m_cmbMode.InsertString(i, kModeNames[i]);
    m_cmbMode.SetCurSel(0);

    UpdateData(FALSE);
    return TRUE;
}

void CDlgDS3Dparameterty::readWorkingRecords()
{
    if (m_pSnd3DBuff == NULL)
        return;
    const DS3DBUFFER& buffer = m_pSnd3DBuff->m_ds3dBuffer;
    m_fPositionX = buffer.vPosition.x;
    m_fPositionY = buffer.vPosition.y;
    m_fPositionZ = buffer.vPosition.z;
    m_fVelocityX = buffer.vVelocity.x;
    m_fVelocityY = buffer.vVelocity.y;
    m_fVelocityZ = buffer.vVelocity.z;
    m_fMaxDistance = buffer.flMaxDistance;
    m_fMinDistance = buffer.flMinDistance;
    m_fConeX = buffer.vConeOrientation.x;
    m_fConeY = buffer.vConeOrientation.y;
    m_fConeZ = buffer.vConeOrientation.z;
    m_dwInsideConeAngle = buffer.dwInsideConeAngle;
    m_dwOutsideConeAngle = buffer.dwOutsideConeAngle;
    m_lConeOutsideVolume = buffer.lConeOutsideVolume;

    const DS3DLISTENER& listener = m_pSnd3DBuff->m_ds3dListener;
    m_fListenerPositionX = listener.vPosition.x;
    m_fListenerPositionY = listener.vPosition.y;
    m_fListenerPositionZ = listener.vPosition.z;
    m_fListenerVelocityX = listener.vVelocity.x;
    m_fListenerVelocityY = listener.vVelocity.y;
    m_fListenerVelocityZ = listener.vVelocity.z;
    m_fFrontX = listener.vOrientFront.x;
    m_fFrontY = listener.vOrientFront.y;
    m_fFrontZ = listener.vOrientFront.z;
    m_fTopX = listener.vOrientTop.x;
    m_fTopY = listener.vOrientTop.y;
    m_fTopZ = listener.vOrientTop.z;
    m_fDistanceFactor = listener.flDistanceFactor;
    m_fRolloffFactor = listener.flRolloffFactor;
    m_fDopplerFactor = listener.flDopplerFactor;
}

// The exchange's verdict is not consulted: a refused entry has been reported to the user,
// and whatever the members hold by then is written, as the dialog always did.
void CDlgDS3Dparameterty::applyToWorkingRecords()
{
    UpdateData(TRUE);
    if (m_pSnd3DBuff == NULL)
        return;

    DS3DBUFFER& buffer = m_pSnd3DBuff->m_ds3dBuffer;
    buffer.vPosition.x = m_fPositionX;
    buffer.vPosition.y = m_fPositionY;
    buffer.vPosition.z = m_fPositionZ;
    buffer.vVelocity.x = m_fVelocityX;
    buffer.vVelocity.y = m_fVelocityY;
    buffer.vVelocity.z = m_fVelocityZ;
    buffer.flMaxDistance = m_fMaxDistance;
    buffer.flMinDistance = m_fMinDistance;
    buffer.vConeOrientation.x = m_fConeX;
    buffer.vConeOrientation.y = m_fConeY;
    buffer.vConeOrientation.z = m_fConeZ;
    buffer.dwInsideConeAngle = m_dwInsideConeAngle;
    buffer.dwOutsideConeAngle = m_dwOutsideConeAngle;
    buffer.lConeOutsideVolume = m_lConeOutsideVolume;
    applyMode(buffer);

    DS3DLISTENER& listener = m_pSnd3DBuff->m_ds3dListener;
    listener.vPosition.x = m_fListenerPositionX;
    listener.vPosition.y = m_fListenerPositionY;
    listener.vPosition.z = m_fListenerPositionZ;
    listener.vVelocity.x = m_fListenerVelocityX;
    listener.vVelocity.y = m_fListenerVelocityY;
    listener.vVelocity.z = m_fListenerVelocityZ;
    listener.vOrientFront.x = m_fFrontX;
    listener.vOrientFront.y = m_fFrontY;
    listener.vOrientFront.z = m_fFrontZ;
    listener.vOrientTop.x = m_fTopX;
    listener.vOrientTop.y = m_fTopY;
    listener.vOrientTop.z = m_fTopZ;
    listener.flDistanceFactor = m_fDistanceFactor;
    listener.flRolloffFactor = m_fRolloffFactor;
    listener.flDopplerFactor = m_fDopplerFactor;
}

// The mode is taken from the combo's text, so a name typed in any case counts; text that
// names no mode leaves the buffer's mode as it was.
void CDlgDS3Dparameterty::applyMode(DS3DBUFFER& buffer)
{
    CString strMode;
    m_cmbMode.GetWindowText(strMode);
    for (int i = 0; i < kModeCount; ++i)
    {
        if (strMode.CompareNoCase(kModeNames[i]) == 0)
        {
            buffer.dwMode = kModes[i];
            return;
        }
    }
}

void CDlgDS3Dparameterty::OnTimer(UINT_PTR nIDEvent)
{
    CDialog::OnTimer(nIDEvent);
}

// A test sound plays the values on screen; the previous one is stopped first.
void CDlgDS3Dparameterty::OnBnClickedTest()
{
    OnBnClickedStop();
    applyToWorkingRecords();
    if (m_pSnd3DBuff != NULL)
        m_pSnd3DBuff->sendAudioStimDS3D();
}

void CDlgDS3Dparameterty::OnBnClickedStop()
{
    if (m_pSnd3DBuff == NULL)
        return;
    if (m_pSnd3DBuff->stopAudioStim() != 0)
        m_bTestPlaying = 0;
}

void CDlgDS3Dparameterty::OnBnClickedOk()
{
    applyToWorkingRecords();
    OnOK();
}

// Choosing a mode takes effect only when the values are applied.
void CDlgDS3Dparameterty::OnCbnSelchangeMode()
{
}
