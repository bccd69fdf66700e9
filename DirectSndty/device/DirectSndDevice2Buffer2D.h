#pragma once
// Hands out secondary buffers made from a caller's buffer description.

#include "DirectSndDevice1BufferPrimary.h"

class AFX_EXT_CLASS CDirectSndDevice2Buffer2D : public CDirectSndDevice1BufferPrimary
{
public:
    CDirectSndDevice2Buffer2D();
    virtual ~CDirectSndDevice2Buffer2D();

    // The caller owns the returned reference.
    int getDSndBuff2Std(DSBUFFERDESC dsbd, IDirectSoundBuffer8*& pBuffer);

protected:
    // Creates the buffer the caller described into a temporary IDirectSoundBuffer.
    int createTemporaryBuffer(DSBUFFERDESC& dsbd, IDirectSoundBuffer*& pTemporary);
    int queryBuffer8(IDirectSoundBuffer* pTemporary, IDirectSoundBuffer8*& pBuffer);
};
