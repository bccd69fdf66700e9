#include "DirectSndDevice3Speak.h"
#include "../dialogs/DlgSpeakerConfig.h"

namespace
{
DWORD stereo(DWORD dwGeometry)
{
    return DSSPEAKER_COMBINED(DSSPEAKER_STEREO, dwGeometry);
}
}

CDirectSndDevice3Speak::CDirectSndDevice3Speak()
    : m_dwSpeakerConfig(DSSPEAKER_COMBINED(DSSPEAKER_STEREO, DSSPEAKER_GEOMETRY_WIDE))
{
}

CDirectSndDevice3Speak::~CDirectSndDevice3Speak()
{
}

// The tests read the platform's value afresh and leave m_dwSpeakerConfig alone.
DWORD CDirectSndDevice3Speak::readSpeakerConfig()
{
    DWORD dwConfig = 0;
    if (m_pDirectSound != NULL)
        m_pDirectSound->GetSpeakerConfig(&dwConfig);
    return dwConfig;
}

int CDirectSndDevice3Speak::isConfig(DWORD dwConfig)
{
    return readSpeakerConfig() == dwConfig ? 1 : 0;
}

int CDirectSndDevice3Speak::isStereoGeometry(DWORD dwGeometry)
{
    DWORD dwConfig = readSpeakerConfig();
    if (DSSPEAKER_CONFIG(dwConfig) != DSSPEAKER_STEREO)
        return 0;
    return DSSPEAKER_GEOMETRY(dwConfig) == dwGeometry ? 1 : 0;
}

int CDirectSndDevice3Speak::isHeadPhone() { return isConfig(DSSPEAKER_HEADPHONE); }
int CDirectSndDevice3Speak::isMonoSpeaker() { return isConfig(DSSPEAKER_MONO); }
int CDirectSndDevice3Speak::isQuadPhone() { return isConfig(DSSPEAKER_QUAD); }
int CDirectSndDevice3Speak::isSurroundPhone() { return isConfig(DSSPEAKER_SURROUND); }
int CDirectSndDevice3Speak::isStereoMin() { return isStereoGeometry(DSSPEAKER_GEOMETRY_MIN); }
int CDirectSndDevice3Speak::isStereoNarrow() { return isStereoGeometry(DSSPEAKER_GEOMETRY_NARROW); }
int CDirectSndDevice3Speak::isStereoWide() { return isStereoGeometry(DSSPEAKER_GEOMETRY_WIDE); }
int CDirectSndDevice3Speak::isStereMax() { return isStereoGeometry(DSSPEAKER_GEOMETRY_MAX); }

// The only setter that shows a message and accepts any non-negative result.
int CDirectSndDevice3Speak::setHeadPhone()
{
    if (m_pDirectSound == NULL)
        return 0;

    m_hr = m_pDirectSound->SetSpeakerConfig(DSSPEAKER_HEADPHONE);
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Set speaker configuration error"), MB_OK, 0);
        return 0;
    }
    m_dwSpeakerConfig = DSSPEAKER_HEADPHONE;
    return 1;
}

// The other setters are silent and accept only S_OK.
int CDirectSndDevice3Speak::setConfig(DWORD dwConfig)
{
    if (m_pDirectSound == NULL)
        return 0;

    m_hr = m_pDirectSound->SetSpeakerConfig(dwConfig);
    if (!traceHR())
        return 0;
    m_dwSpeakerConfig = dwConfig;
    return 1;
}

int CDirectSndDevice3Speak::setMonoSpeaker() { return setConfig(DSSPEAKER_MONO); }
int CDirectSndDevice3Speak::setQuadPhone() { return setConfig(DSSPEAKER_QUAD); }
int CDirectSndDevice3Speak::setSurroundPhone() { return setConfig(DSSPEAKER_SURROUND); }
int CDirectSndDevice3Speak::setStereoMin() { return setConfig(stereo(DSSPEAKER_GEOMETRY_MIN)); }
int CDirectSndDevice3Speak::setStereoNarrow() { return setConfig(stereo(DSSPEAKER_GEOMETRY_NARROW)); }
int CDirectSndDevice3Speak::setStereoWide() { return setConfig(stereo(DSSPEAKER_GEOMETRY_WIDE)); }
int CDirectSndDevice3Speak::setStereMax() { return setConfig(stereo(DSSPEAKER_GEOMETRY_MAX)); }

DWORD CDirectSndDevice3Speak::getSpeakerConfig()
{
    if (m_pDirectSound == NULL)
        return 0;

    m_hr = m_pDirectSound->GetSpeakerConfig(&m_dwSpeakerConfig);
    if (FAILED(m_hr))
        return 0;
    return m_dwSpeakerConfig;
}

int CDirectSndDevice3Speak::setSpeakerPro()
{
    if (m_pDirectSound == NULL)
        return 0;
    m_hr = m_pDirectSound->GetSpeakerConfig(&m_dwSpeakerConfig);
    if (FAILED(m_hr))
        return 0;

    CDlgSpeakerConfig dlg;
    dlg.m_dwSpeakerConfig = m_dwSpeakerConfig;
    if (dlg.DoModal() != IDOK)
        return 0;

    m_hr = m_pDirectSound->SetSpeakerConfig(dlg.m_dwSpeakerConfig);
    if (FAILED(m_hr))
        return 0;
    m_dwSpeakerConfig = dlg.m_dwSpeakerConfig;
    return 1;
}
