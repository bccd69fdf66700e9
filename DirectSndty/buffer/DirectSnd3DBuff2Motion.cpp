#include "DirectSnd3DBuff2Motion.h"
#include "../device/DirectSndDevicety.h"
#include "../foundation/SectionLock.h"
#include "../foundation/ThreadJoin.h"
#include "../platform/DirectSoundSeam.h"

namespace
{
// Pause between motion steps: positions stay a function of the elapsed time, and a
// moving stimulus does not take a whole processor.
const DWORD kMotionStepMs = 2;

float velocitySum(const D3DVECTOR& v)
{
    return v.x + v.y + v.z;
}

// Position after t milliseconds, single precision, multiplied first and divided last.
D3DVECTOR travelled(const D3DVECTOR& start, const D3DVECTOR& velocity, float t)
{
    D3DVECTOR at;
    at.x = start.x + velocity.x * t / 1000.0f;
    at.y = start.y + velocity.y * t / 1000.0f;
    at.z = start.z + velocity.z * t / 1000.0f;
    return at;
}
}

CDirectSnd3DBuff2Motion::CDirectSnd3DBuff2Motion()
    : m_pMoveThread(NULL),
      m_moveStartTime(0.0f),
      m_hMotionWake(CreateEventW(NULL, TRUE, FALSE, NULL))
{
}

CDirectSnd3DBuff2Motion::~CDirectSnd3DBuff2Motion()
{
    endMotion();
    if (m_hMotionWake != NULL)
        CloseHandle(m_hMotionWake);
}

int CDirectSnd3DBuff2Motion::isMovingSound()
{
    float sum = velocitySum(m_ds3dBuffer.vVelocity) + velocitySum(m_ds3dListener.vVelocity);
    return sum > 0.000001f ? 1 : 0;
}

// Ends a running motion and waits for its thread, so the object may be stopped,
// restarted or destroyed safely.
void CDirectSnd3DBuff2Motion::endMotion()
{
    m_nPlaying = 0;
    if (m_pMoveThread == NULL)
        return;
    if (m_hMotionWake != NULL)
        SetEvent(m_hMotionWake);
    joinHandlingSentMessages(m_pMoveThread->m_hThread);
    delete m_pMoveThread;
    m_pMoveThread = NULL;
    if (m_hMotionWake != NULL)
        ResetEvent(m_hMotionWake);
}

int CDirectSnd3DBuff2Motion::stopAudioStim()
{
    endMotion();
    return CDirectSnd3DBuff::stopAudioStim();
}

int CDirectSnd3DBuff2Motion::stopAudioStimDS3D()
{
    return stopAudioStim();
}

// The commit's own result is not kept, so its failure goes unreported; kept as built.
int CDirectSnd3DBuff2Motion::applyParametersAndPlay()
{
    IDirectSound3DListener* pListener = m_pDSndDevice->getDirectSnd3DListener(false);
    m_hr = m_pDS3DBuffer->SetAllParameters(&m_ds3dBuffer, DS3D_DEFERRED);
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Direct sound buffer 3D set all parameters error"), MB_OK, 0);
        return 0;
    }
    m_hr = pListener->SetAllParameters(&m_ds3dListener, DS3D_DEFERRED);
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Direct sound 3D listener set all parameters error"), MB_OK, 0);
        return 0;
    }
    pListener->CommitDeferredSettings();
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Commit Direct sound 3D listener set all parameters error"), MB_OK, 0);
        return 0;
    }

    m_pDSBuffer->SetCurrentPosition(0);
    m_hr = m_pDSBuffer->Play(0, 0, 0);
    if (m_hr == DSERR_BUFFERLOST && FAILED(m_pDSBuffer->Restore()))
        return 0;
    m_hr = m_pDSBuffer->Play(0, 0, 0);
    if (FAILED(m_hr))
        return 0;
    m_nPlaying = 1;
    return 1;
}

int CDirectSnd3DBuff2Motion::sendAudStim3DSndStatic()
{
    stopAudioStim();
    m_nPlaying = 0;
    if (m_pDSBuffer == NULL || m_pDS3DBuffer == NULL || m_pDSndDevice == NULL)
        return 0;
    if (m_pDSndDevice->getDirectSnd3DListener(false) == NULL)
        return 0;
    return applyParametersAndPlay();
}

int CDirectSnd3DBuff2Motion::sendAudioStimMovingSnd()
{
    if (!sendAudStim3DSndStatic())
        return 0;

    m_ds3dBufferSaved = m_ds3dBuffer;
    m_ds3dListenerSaved = m_ds3dListener;
    m_moveStartTime = (float)DSndPlatform::milliseconds();
    m_fElapsedTime = 0.0f;
    m_fPlayLength = m_wfx.nAvgBytesPerSec == 0
                        ? 0.0f
                        : (float)((ULONGLONG)m_dsbd.dwBufferBytes * 1000) / (float)m_wfx.nAvgBytesPerSec;
    if (!startMoveThread())
        return 0;
    m_nPlaying = 1;
    return 1;
}

// The thread object is kept (not self-deleting) so that it can be joined.
int CDirectSnd3DBuff2Motion::startMoveThread()
{
    m_pMoveThread = AfxBeginThread(moveThreadProc, this, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    if (m_pMoveThread == NULL)
        return 0;
    m_pMoveThread->m_bAutoDelete = FALSE;
    m_pMoveThread->ResumeThread();
    return 1;
}

UINT AFX_CDECL CDirectSnd3DBuff2Motion::moveThreadProc(LPVOID pParam)
{
    CDirectSnd3DBuff2Motion* pBuffer = static_cast<CDirectSnd3DBuff2Motion*>(pParam);
    if (pBuffer == NULL)
    {
        AfxMessageBox(_T("move 3D sound function pass parameters error"), MB_OK, 0);
        return 0;
    }
    while (pBuffer->moveDS3DSnd())
        WaitForSingleObject(pBuffer->m_hMotionWake, kMotionStepMs);
    return 1;
}

int CDirectSnd3DBuff2Motion::moveDS3DSnd()
{
    LPCTSTR pszFailure = NULL;
    int nGoingOn = moveOneStep(pszFailure);
    if (pszFailure != NULL)
        AfxMessageBox(pszFailure, MB_OK, 0);
    return nGoingOn;
}

// Under the lock a release takes, with the interface read once; a failure is shown by the
// caller once the lock is free, so a host releasing the buffer never waits on a message box.
int CDirectSnd3DBuff2Motion::moveOneStep(LPCTSTR& pszFailure)
{
    SectionLock hold(m_interfaceLock);
    IDirectSound3DBuffer8* p3DBuffer = m_pDS3DBuffer;
    if (p3DBuffer == NULL || m_pDSndDevice == NULL)
        return 0;

    float t = (float)DSndPlatform::milliseconds() - m_moveStartTime;
    m_fElapsedTime = t;
    if (t > m_fPlayLength || m_nPlaying == 0)
        return 0;

    m_ds3dBufferSaved.vPosition = travelled(m_ds3dBuffer.vPosition, m_ds3dBuffer.vVelocity, t);
    m_ds3dListenerSaved.vPosition = travelled(m_ds3dListener.vPosition, m_ds3dListener.vVelocity, t);

    m_hr = p3DBuffer->SetAllParameters(&m_ds3dBufferSaved, DS3D_DEFERRED);
    if (FAILED(m_hr))
    {
        pszFailure = _T("Direct sound buffer 3D set all parameters error");
        return 0;
    }
    IDirectSound3DListener* pListener = m_pDSndDevice->getDirectSnd3DListener(false);
    if (pListener == NULL)
        return 0;
    m_hr = pListener->SetAllParameters(&m_ds3dListenerSaved, DS3D_DEFERRED);
    if (SUCCEEDED(m_hr))
        m_hr = pListener->CommitDeferredSettings();
    if (FAILED(m_hr))
    {
        pszFailure = _T("Direct sound listener 3D set all parameters error");
        return 0;
    }
    return 1;
}
