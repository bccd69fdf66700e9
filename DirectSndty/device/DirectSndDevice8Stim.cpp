#include "DirectSndDevice8Stim.h"

CDirectSndDevice8Stim::CDirectSndDevice8Stim()
{
}

CDirectSndDevice8Stim::~CDirectSndDevice8Stim()
{
}

// Opens the default card at the exclusive level. No primary buffer exists yet, so a
// format given here is refused with a message and the set-up goes on.
int CDirectSndDevice8Stim::initDSndStim(HWND hWnd, tWAVEFORMATEX* pWfx)
{
    if (!createDSndObject(NULL))
        return 0;
    if (!setDSndCooperatLevelStd(hWnd, DSSCL_EXCLUSIVE))
        return 0;
    if (pWfx != NULL)
        setDSndPrimaryWfx(*pWfx);
    return finishStimSetUp();
}

// Without a window no level is set; a format that cannot be set ends the set-up.
int CDirectSndDevice8Stim::initDSndStimX(HWND hWnd, tWAVEFORMATEX* pWfx, DWORD dwCoopLevel)
{
    if (!createDSndObject(NULL))
        return 0;
    if (hWnd != NULL && !setDSndCooperatLevelStd(hWnd, dwCoopLevel))
        return 0;
    if (pWfx != NULL && !setDSndPrimaryWfx(*pWfx))
        return 0;
    return finishStimSetUp();
}

int CDirectSndDevice8Stim::finishStimSetUp()
{
    if (m_dwCoopLevel >= DSSCL_EXCLUSIVE)
        compactDSmem();
    return setHeadPhone() ? 1 : 0;
}
