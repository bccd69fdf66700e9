#include "DirectSnd3DBuff6Play.h"
#include "../device/DirectSndDevicety.h"

CDirectSnd3DBuff6Play::CDirectSnd3DBuff6Play()
{
}

CDirectSnd3DBuff6Play::~CDirectSnd3DBuff6Play()
{
}

int CDirectSnd3DBuff6Play::initDSndPlayStd(HWND hWnd)
{
    if (m_pDSndDevice == NULL)
    {
        AfxMessageBox(_T("Please setup DirectSound Device first!"), MB_OK, 0);
        return 0;
    }
    return m_pDSndDevice->setDSndCooperatLevelStd(hWnd, DSSCL_NORMAL) ? 1 : 0;
}

// Unlike a stimulus, a failed first play that is not a lost buffer counts as played,
// and so does a lost buffer that cannot be restored.
int CDirectSnd3DBuff6Play::playOnce(DWORD dwFlags)
{
    if (m_pDSBuffer == NULL)
    {
        AfxMessageBox(_T("Please make the second direct sound buffer initialized"), MB_OK, 0);
        return 0;
    }
    m_pDSBuffer->SetCurrentPosition(0);
    m_hr = m_pDSBuffer->Play(0, 0, dwFlags);
    if (m_hr != DSERR_BUFFERLOST)
        return 1;
    if (FAILED(m_pDSBuffer->Restore()))
        return 1;
    m_hr = m_pDSBuffer->Play(0, 0, dwFlags);
    if (SUCCEEDED(m_hr))
        return 1;
    traceHR();
    return 0;
}

int CDirectSnd3DBuff6Play::playDSnd2ndBuf()
{
    return playOnce(0);
}

int CDirectSnd3DBuff6Play::playDSnd2ndBufLoop()
{
    return playOnce(DSBPLAY_LOOPING);
}

int CDirectSnd3DBuff6Play::stopDSnd2ndBuf()
{
    if (m_pDSBuffer == NULL)
    {
        AfxMessageBox(_T("Stop null direct buffer"), MB_OK, 0);
        return 0;
    }
    endMotion();
    m_hr = m_pDSBuffer->Stop();
    if (SUCCEEDED(m_hr))
        return 1;
    traceHR();
    return 0;
}
