#include "DirectSnd3DBuff7PlayStream.h"
#include "SndDataReadtyStream.h"
#include "../device/DirectSndDevicety.h"
#include "../foundation/ComRelease.h"
#include "../foundation/SectionLock.h"

namespace
{
const unsigned long kBufferSeconds = 2;
}

CDirectSnd3DBuff7PlayStream::CDirectSnd3DBuff7PlayStream()
    : m_pSndDataReadStream(NULL),
      m_streamEndHalf(kStreamNotEnded),
      m_hStreamStopped(CreateEventW(NULL, TRUE, FALSE, NULL))
{
    ZeroMemory(m_streamNotify, sizeof(m_streamNotify));
    ZeroMemory(m_hStreamEvent, sizeof(m_hStreamEvent));
    InitializeCriticalSection(&m_streamLock);
}

// The buffer and the notification interface go with the lower layers; a worker still
// waiting is woken first.
CDirectSnd3DBuff7PlayStream::~CDirectSnd3DBuff7PlayStream()
{
    if (m_hStreamStopped != NULL)
    {
        SetEvent(m_hStreamStopped);
        CloseHandle(m_hStreamStopped);
    }
    closeStreamEvents();
    DeleteCriticalSection(&m_streamLock);
}

void CDirectSnd3DBuff7PlayStream::closeStreamEvents()
{
    for (int i = 0; i < 2; i++)
    {
        if (m_hStreamEvent[i] != NULL)
            CloseHandle(m_hStreamEvent[i]);
        m_hStreamEvent[i] = NULL;
        m_streamNotify[i].hEventNotify = NULL;
    }
}

// The end marker is brought back to "not ended": a stream stopped by hand after its file
// ended would otherwise stop the next one at its first refill.
int CDirectSnd3DBuff7PlayStream::initPlayStream(HWND hWnd, tWAVEFORMATEX wfx)
{
    if (m_pDSndDevice == NULL)
        return 0;
    if (!isSupportWfx(wfx))
    {
        AfxMessageBox(_T("Unsupported sound wave format"), MB_OK, 0);
        return 0;
    }
    SectionLock hold(m_streamLock);
    stopDSnd2ndBufLargeFileStream();
    m_streamEndHalf = kStreamNotEnded;
    ResetEvent(m_hStreamStopped);
    if (!m_pDSndDevice->setDSndCooperatLevelStd(hWnd, DSSCL_NORMAL))
        return 0;
    m_pDSndDevice->setDSndPrimaryWfx(wfx);
    if (!create2DSndBuffStreamPlay(kBufferSeconds * wfx.nAvgBytesPerSec, wfx) || !initNotifyEvtStreamPlay())
        return 0;
    streamData2Buffer(1);
    return 1;
}

int CDirectSnd3DBuff7PlayStream::create2DSndBuffStreamPlay(unsigned long ulBytes, tWAVEFORMATEX wfx)
{
    releaseInterface(m_pDSBuffer);
    ulBytes = clampPlayBufferBytes(ulBytes);
    m_wfx = wfx;
    ZeroMemory(&m_dsbd, sizeof(m_dsbd));
    m_dsbd.dwSize = sizeof(DSBUFFERDESC);
    m_dsbd.dwFlags = DSBCAPS_CTRLPOSITIONNOTIFY | DSBCAPS_GETCURRENTPOSITION2;
    m_dsbd.dwBufferBytes = ulBytes;
    m_dsbd.lpwfxFormat = reinterpret_cast<LPWAVEFORMATEX>(&m_wfx);
    return m_pDSndDevice->getDSndBuff2Std(m_dsbd, m_pDSBuffer) ? 1 : 0;
}

// Auto-reset events: each passage of a position wakes one wait once.
int CDirectSnd3DBuff7PlayStream::initNotifyEvtStreamPlay()
{
    closeStreamEvents();
    for (int i = 0; i < 2; i++)
    {
        m_hStreamEvent[i] = CreateEventW(NULL, FALSE, FALSE, NULL);
        if (m_hStreamEvent[i] == NULL)
            return 0;
    }
    m_streamNotify[0].dwOffset = 0;
    m_streamNotify[0].hEventNotify = m_hStreamEvent[0];
    m_streamNotify[1].dwOffset = m_dsbd.dwBufferBytes / 2;
    m_streamNotify[1].hEventNotify = m_hStreamEvent[1];

    if (!quaryNotify())
        return 0;
    m_hr = m_pDSNotify->SetNotificationPositions(2, m_streamNotify);
    if (SUCCEEDED(m_hr))
        return 1;
    releaseInterface(m_pDSNotify);
    return 0;
}

// Plays on from wherever the cursor stands.
int CDirectSnd3DBuff7PlayStream::playDSnd2ndBufLargeFileStream()
{
    SectionLock hold(m_streamLock);
    if (m_pDSBuffer == NULL)
        return 0;
    m_hr = m_pDSBuffer->Play(0, 0, DSBPLAY_LOOPING);
    if (m_hr != DSERR_BUFFERLOST)
        return 1;
    m_pDSBuffer->Restore();
    m_pDSBuffer->Play(0, 0, DSBPLAY_LOOPING);
    return 1;
}

int CDirectSnd3DBuff7PlayStream::waitStreamEvt()
{
    HANDLE waitFor[3] = {m_hStreamEvent[0], m_hStreamEvent[1], m_hStreamStopped};
    DWORD dwWoken = WaitForMultipleObjects(3, waitFor, FALSE, INFINITE);
    if (dwWoken != WAIT_OBJECT_0 && dwWoken != WAIT_OBJECT_0 + 1)
        return 0;
    return streamData2Buffer(dwWoken - WAIT_OBJECT_0);
}

// Event 0 (the cursor back at the start) refills the second half, event 1 the first. A
// stream already stopped has nothing left to refill.
int CDirectSnd3DBuff7PlayStream::streamData2Buffer(unsigned long ulHalf)
{
    SectionLock hold(m_streamLock);
    if (ulHalf > 1)
        return 0;
    if (m_streamEndHalf == ulHalf)
    {
        stopDSnd2ndBufLargeFileStream();
        m_streamEndHalf = kStreamNotEnded;
        return 0;
    }
    if (m_streamEndHalf != kStreamNotEnded)
        return 1;
    if (m_pDSBuffer == NULL)
        return 0;

    DWORD dwStart = m_streamNotify[1 - ulHalf].dwOffset;
    long lBytes = static_cast<long>(m_streamNotify[ulHalf].dwOffset) - static_cast<long>(dwStart);
    if (lBytes < 0)
        lBytes += static_cast<long>(m_dsbd.dwBufferBytes);
    void* pRegion1 = NULL;
    void* pRegion2 = NULL;
    DWORD dwBytes1 = 0;
    DWORD dwBytes2 = 0;
    m_pDSBuffer->Lock(dwStart, static_cast<DWORD>(lBytes), &pRegion1, &dwBytes1, &pRegion2, &dwBytes2, 0);
    refillRegion(ulHalf, pRegion1, dwBytes1);
    m_pDSBuffer->Unlock(pRegion1, dwBytes1, pRegion2, dwBytes2);
    return 1;
}

// The reader writes straight into the locked memory; what it cannot give is silence, and
// marks the end of the file. A missing reader counts as a file with nothing left.
void CDirectSnd3DBuff7PlayStream::refillRegion(unsigned long ulHalf, void* pRegion, DWORD dwRegionBytes)
{
    if (pRegion == NULL)
        return;
    unsigned long ulRead = 0;
    if (m_pSndDataReadStream != NULL)
    {
        ulRead = dwRegionBytes;
        m_pSndDataReadStream->readNewData(pRegion, ulRead);
    }
    if (ulRead >= dwRegionBytes)
        return;
    if (m_pSndDataReadStream != NULL)
        m_pSndDataReadStream->closeSndFileMmio();
    const BYTE silence = m_wfx.wBitsPerSample == 8 ? 128 : 0;
    FillMemory(static_cast<BYTE*>(pRegion) + ulRead, dwRegionBytes - ulRead, silence);
    m_streamEndHalf = ulHalf;
}

int CDirectSnd3DBuff7PlayStream::stopDSnd2ndBufLargeFileStream()
{
    SectionLock hold(m_streamLock);
    if (m_pDSBuffer != NULL)
    {
        m_pDSBuffer->Stop();
        releaseInterface(m_pDSBuffer);
    }
    releaseInterface(m_pDSNotify);
    if (m_hStreamStopped != NULL)
        SetEvent(m_hStreamStopped);
    return 1;
}
