#include "DlgSpeakerConfig.h"
#include <dsound.h>

namespace
{
constexpr DWORD stereo(DWORD dwGeometry)
{
    return DSSPEAKER_COMBINED(DSSPEAKER_STEREO, dwGeometry);
}

// The configurations offered, in the order of the radio buttons.
constexpr DWORD kConfigs[] = {
    DSSPEAKER_HEADPHONE,
    DSSPEAKER_MONO,
    DSSPEAKER_QUAD,
    DSSPEAKER_SURROUND,
    stereo(DSSPEAKER_GEOMETRY_MIN),
    stereo(DSSPEAKER_GEOMETRY_NARROW),
    stereo(DSSPEAKER_GEOMETRY_WIDE),
    stereo(DSSPEAKER_GEOMETRY_MAX),
};
constexpr int kConfigCount = sizeof(kConfigs) / sizeof(kConfigs[0]);

// Stereo values are told apart by their geometry alone; bits beyond the configuration
// byte and the geometry byte carry nothing the choice depends on.
bool sameConfig(DWORD dwOffered, DWORD dwCurrent)
{
    if (DSSPEAKER_CONFIG(dwOffered) != DSSPEAKER_STEREO)
        return dwOffered == dwCurrent;
    return DSSPEAKER_CONFIG(dwCurrent) == DSSPEAKER_STEREO &&
           DSSPEAKER_GEOMETRY(dwCurrent) == DSSPEAKER_GEOMETRY(dwOffered);
}

// Index of the radio button for a configuration, or -1 when none is offered for it.
int radioOf(DWORD dwConfig)
{
    for (int i = 0; i < kConfigCount; i++)
    {
        if (sameConfig(kConfigs[i], dwConfig))
            return i;
    }
    return -1;
}
}

IMPLEMENT_DYNAMIC(CDlgSpeakerConfig, CDialog)

CDlgSpeakerConfig::CDlgSpeakerConfig(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgSpeakerConfig::IDD, pParent),
      m_dwSpeakerConfig(stereo(DSSPEAKER_GEOMETRY_WIDE)),
      m_nConfigRadio(-1)
{
}

CDlgSpeakerConfig::~CDlgSpeakerConfig()
{
}

void CDlgSpeakerConfig::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Radio(pDX, IDC_RADIO_SPEAKER_HEADPHONE, m_nConfigRadio);
}

BEGIN_MESSAGE_MAP(CDlgSpeakerConfig, CDialog)
    ON_BN_CLICKED(IDOK, &CDlgSpeakerConfig::OnBnClickedOk)
END_MESSAGE_MAP()

BOOL CDlgSpeakerConfig::OnInitDialog()
{
    CDialog::OnInitDialog();

    m_nConfigRadio = radioOf(m_dwSpeakerConfig);
    UpdateData(FALSE);
    return TRUE;
}

// With no button checked the configuration given by the opener is handed back as it was.
void CDlgSpeakerConfig::OnOK()
{
    if (!UpdateData(TRUE))
        return;
    if (m_nConfigRadio >= 0 && m_nConfigRadio < kConfigCount)
        m_dwSpeakerConfig = kConfigs[m_nConfigRadio];
    CDialog::OnOK();
}

void CDlgSpeakerConfig::OnBnClickedOk()
{
    OnOK();
}
