#pragma once
// Root of the capture chain: the process's current DirectSound capture device object, shared
// by every capture instance for the device's capabilities, and the one each recorder makes
// for its buffer. A recorder keeps a reference of its own to the object it made, so another
// recorder's set-up or stop, which moves or releases the current object, never pulls the
// device from under a recording of the same host; an object goes when its recorder has let
// go of it and it is no longer the current one.

#include "../foundation/DirectSndBasicty.h"
#include <dsound.h>

class AFX_EXT_CLASS CDSndCapturety : public CDirectSndBasicty
{
public:
    CDSndCapturety();
    virtual ~CDSndCapturety();

    static IDirectSoundCapture* m_lpDSndCpt;

protected:
    // Lets go of the object this instance made, and of the current one if that is it.
    int _freeDSndCpt();
    int createDSndCaptureObject(GUID* pGuidDevice);
    DSCCAPS getDSndCptCap();
    int isDSCsupport2c4kh16b();
    // The object this instance made, or the current one if it made none.
    IDirectSoundCapture* captureDevice() const;

    DSCCAPS m_dsccaps;

private:
    IDirectSoundCapture* m_pDSndCptMade; // with a reference of this instance's own
};
