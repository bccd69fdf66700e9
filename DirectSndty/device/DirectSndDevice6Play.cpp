#include "DirectSndDevice6Play.h"

CDirectSndDevice6Play::CDirectSndDevice6Play()
{
}

CDirectSndDevice6Play::~CDirectSndDevice6Play()
{
}

// Asks the user for the card, the level, the primary format and the speakers in turn.
// A primary buffer or format that cannot be had is reported but does not stop the set-up.
int CDirectSndDevice6Play::setUpHardwarePlayer(HWND hWnd)
{
    if (!selectSoundCards())
        return 0;
    getDSCAPSPro();
    if (!setDsndCoopLevelPro(hWnd))
        return 0;

    if (m_dwCoopLevel >= DSSCL_PRIORITY)
    {
        if (!createDSndBuff1Primary())
            AfxMessageBox(_T("Create direct sound primary buffer failed \n"), MB_OK, 0);
        if (!setDSndPrimaryWfxPro())
            AfxMessageBox(_T("Set direct sound primary sound formate failed \n"), MB_OK, 0);
    }
    if (m_dwCoopLevel >= DSSCL_EXCLUSIVE)
        compactDSmem();

    return setSpeakerPro() ? 1 : 0;
}

int CDirectSndDevice6Play::compactDSmem()
{
    if (m_dwCoopLevel != DSSCL_EXCLUSIVE || m_pDirectSound == NULL)
        return 0;

    m_hr = m_pDirectSound->Compact();
    return SUCCEEDED(m_hr) ? 1 : 0;
}

// Only a lost buffer counts as a failure to play; it is restored and tried once more.
int CDirectSndDevice6Play::playDSnd1PrimaryBuf()
{
    if (m_pDSBufferPrimary == NULL)
        createDSndBuff1Primary();
    if (m_pDSBufferPrimary == NULL)
        return 0;

    m_pDSBufferPrimary->SetCurrentPosition(0);
    m_hr = m_pDSBufferPrimary->Play(0, 0, 0);
    if (m_hr != DSERR_BUFFERLOST)
        return 1;

    if (FAILED(m_pDSBufferPrimary->Restore()))
        return 1;
    m_hr = m_pDSBufferPrimary->Play(0, 0, 0);
    return SUCCEEDED(m_hr) ? 1 : 0;
}

int CDirectSndDevice6Play::stopDSnd1PrimaryBuf()
{
    if (m_pDSBufferPrimary == NULL)
        return 0;

    m_hr = m_pDSBufferPrimary->Stop();
    return SUCCEEDED(m_hr) ? 1 : 0;
}
