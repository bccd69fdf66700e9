#pragma once
// The sound buffer a host instantiates: 2D or 3D, static or moving.

#include "DirectSnd3DBuff9File.h"

class AFX_EXT_CLASS CDirectSnd3DBuffty : public CDirectSnd3DBuff9File
{
public:
    CDirectSnd3DBuffty();
    virtual ~CDirectSnd3DBuffty();

    int setDirectSnd3Dparameters();
    // Always 0, which is not a failure.
    int release3DBuffers();
    int releaseRelatedBuffers(CDirectSndDevicety* pDevice);
    int sendAudioStimDS3D();
};
