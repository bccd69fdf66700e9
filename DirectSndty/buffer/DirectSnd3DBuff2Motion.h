#pragma once
// Plays a loaded 3D buffer as a static or a moving source: a worker thread recomputes the
// source and listener positions from the elapsed time until the play length has passed.

#include "DirectSnd3DBuff.h"

class AFX_EXT_CLASS CDirectSnd3DBuff2Motion : public CDirectSnd3DBuff
{
public:
    CDirectSnd3DBuff2Motion();
    virtual ~CDirectSnd3DBuff2Motion();

    int isMovingSound();
    int sendAudStim3DSndStatic();
    int sendAudioStimMovingSnd();
    // One motion step; nonzero while the motion goes on.
    int moveDS3DSnd();

    // Stopping also ends and joins a running motion.
    int stopAudioStim();
    int stopAudioStimDS3D();

protected:
    void endMotion();

    CWinThread* m_pMoveThread;
    float m_moveStartTime;

private:
    static UINT AFX_CDECL moveThreadProc(LPVOID pParam);
    int applyParametersAndPlay();
    int moveOneStep(LPCTSTR& pszFailure);
    int startMoveThread();

    HANDLE m_hMotionWake; // set to end the motion's pauses at once
};
