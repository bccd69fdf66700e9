#pragma once
// The interactive bring-up of a device, and the play state of its primary buffer.

#include "DirectSndDevice5Notify.h"

class AFX_EXT_CLASS CDirectSndDevice6Play : public CDirectSndDevice5Notify
{
public:
    CDirectSndDevice6Play();
    virtual ~CDirectSndDevice6Play();

    int setUpHardwarePlayer(HWND hWnd);
    int playDSnd1PrimaryBuf();
    int stopDSnd1PrimaryBuf();

protected:
    int compactDSmem();
};
