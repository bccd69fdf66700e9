#pragma once
// Root of the capture chain: the one DirectSound capture device object of the process,
// shared by every capture instance, and the device's capabilities.

#include "../foundation/DirectSndBasicty.h"
#include <dsound.h>

class AFX_EXT_CLASS CDSndCapturety : public CDirectSndBasicty
{
public:
    CDSndCapturety();
    virtual ~CDSndCapturety();

    static IDirectSoundCapture* m_lpDSndCpt;

protected:
    int _freeDSndCpt();
    int createDSndCaptureObject(GUID* pGuidDevice);
    DSCCAPS getDSndCptCap();
    int isDSCsupport2c4kh16b();

    DSCCAPS m_dsccaps;
};
