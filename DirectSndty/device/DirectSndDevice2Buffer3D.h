#pragma once
// Hands out 3D secondary buffers and owns the device's 3D listener.

#include "DirectSndDevice2Buffer2D.h"

class AFX_EXT_CLASS CDirectSndDevice2Buffer3D : public CDirectSndDevice2Buffer2D
{
public:
    CDirectSndDevice2Buffer3D();
    virtual ~CDirectSndDevice2Buffer3D();

    // The caller owns the returned references.
    int getDirectSnd3DBuffer(DSBUFFERDESC dsbd, IDirectSoundBuffer8*& pBuffer,
                             IDirectSound3DBuffer*& pBuffer3D);

    IDirectSound3DListener* initializeDSndListener();
    IDirectSound3DListener* getDirectSnd3DListener(bool bReinitialise);
    int getDS3DListenerPara();
    // Sets the parameters deferred: they take effect at the next commit.
    int setCommitDS3DListenerParam();
    int commitDS3DListenerDeferredSettings();
    int _closeDirectSndListener();

    IDirectSound3DListener* m_pDS3DListener;
    DS3DLISTENER m_ds3dListener; // filled by callers before a set
};
