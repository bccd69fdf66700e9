#pragma once
// The silent bring-up used when sounds are presented as stimuli without asking the user.

#include "DirectSndDevice7PlayStream.h"

class AFX_EXT_CLASS CDirectSndDevice8Stim : public CDirectSndDevice7PlayStream
{
public:
    CDirectSndDevice8Stim();
    virtual ~CDirectSndDevice8Stim();

    int initDSndStimX(HWND hWnd, tWAVEFORMATEX* pWfx, DWORD dwCoopLevel);

private:
    int initDSndStim(HWND hWnd, tWAVEFORMATEX* pWfx);
    int finishStimSetUp();
};
