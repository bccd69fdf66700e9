#pragma once
// The buffer as a positioned DirectSound 3D source, with working and committed copies of
// the buffer's and the listener's 3D parameters.

#include "DirectSnd2DBuffty.h"

class AFX_EXT_CLASS CDirectSnd3DBuff : public CDirectSnd2DBuffty
{
public:
    CDirectSnd3DBuff();
    virtual ~CDirectSnd3DBuff();

    int resetDSBDesc3DBuff();
    // Stereo data are made mono in the caller's container: 3D buffers take mono only.
    int setSndData2DS3Dbuff2(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice);
    int setNewD3DSnd(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice);
    int getDS3DBuffPara();
    int releaseDirectSnd3DBuff();
    int stopAudioStimDS3D();
    int showDirectSnd3DInfo();

    DS3DBUFFER m_ds3dBufferSaved;
    DS3DBUFFER m_ds3dBuffer;
    IDirectSound3DBuffer8* m_pDS3DBuffer;
    DS3DLISTENER m_ds3dListenerSaved;
    DS3DLISTENER m_ds3dListener;

protected:
    // Seconds after a load; a moving play turns it into milliseconds.
    float m_fPlayLength;
    float m_fElapsedTime; // milliseconds since a moving play began
    int m_nPlaying;       // nonzero while a 3D stimulus plays
    // Held by a release of the 3D interface and by each step of a moving play, so the motion
    // worker never calls through an interface the host's thread has just released.
    CRITICAL_SECTION m_interfaceLock;

private:
    CString composeDirectSnd3DInfo(IDirectSound3DListener* pListener);
};
