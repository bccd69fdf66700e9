#pragma once
// The play entry points the record/play facade uses.

#include "DirectSnd3DBuff5Notify.h"

class AFX_EXT_CLASS CDirectSnd3DBuff6Play : public CDirectSnd3DBuff5Notify
{
public:
    CDirectSnd3DBuff6Play();
    virtual ~CDirectSnd3DBuff6Play();

    int initDSndPlayStd(HWND hWnd);
    int playDSnd2ndBuf();
    int playDSnd2ndBufLoop();
    int stopDSnd2ndBuf();

private:
    int playOnce(DWORD dwFlags);
};
