#include "DSndCapturetyStream.h"
#include "SndWaveWriteStreamty.h"
#include "../foundation/ComRelease.h"
#include "../foundation/SectionLock.h"

CDSndCapturetyStream::CDSndCapturetyStream()
    : m_pSndWaveWriteStream(NULL),
      m_ulStreamBytesWritten(0),
      m_ulStreamOffset(0)
{
    ZeroMemory(m_streamNotify, sizeof(m_streamNotify));
    ZeroMemory(m_hStreamEvent, sizeof(m_hStreamEvent));
    InitializeCriticalSection(&m_streamLock);
}

// The writer is the caller's: a capture still running is stopped without finishing the file.
CDSndCapturetyStream::~CDSndCapturetyStream()
{
    m_pSndWaveWriteStream = NULL;
    if (m_bCapturing)
        stopCaptureStream();
    closeStreamEvents();
    DeleteCriticalSection(&m_streamLock);
}

void CDSndCapturetyStream::closeStreamEvents()
{
    for (int i = 0; i < kStreamEvents; i++)
    {
        if (m_hStreamEvent[i] != NULL)
            CloseHandle(m_hStreamEvent[i]);
        m_hStreamEvent[i] = NULL;
        m_streamNotify[i].hEventNotify = NULL;
    }
}

// Buffer and notify interface go before the shared device is made again.
void CDSndCapturetyStream::releaseCapture()
{
    if (m_pDSCBuffer != NULL)
        m_pDSCBuffer->Stop();
    m_bCapturing = 0;
    _freeNotify();
    _freeDSndCptBuff();
}

// The position events are set up here too: they must be registered before capture starts.
int CDSndCapturetyStream::initCapture2stream(tWAVEFORMATEX wfx, unsigned long ulBytes)
{
    SectionLock hold(m_streamLock);
    releaseCapture();
    m_wfxCurrent = wfx;
    if (!createDSndCaptureObject(NULL))
        return 0;
    unsigned long ulHalf = wfx.nBlockAlign == 0 ? 0 : ulBytes / 2 - (ulBytes / 2) % wfx.nBlockAlign;
    if (!createDSndCptBuff(wfx, 2 * ulHalf, 0))
        return 0;
    m_ulStreamBytesWritten = 0;
    m_ulStreamOffset = 0;
    return initNotifyEvtStreamRecord();
}

int CDSndCapturetyStream::initNotifyEvtStreamRecord()
{
    if (!initNotify())
        return 0;
    closeStreamEvents();
    for (int i = 0; i < kStreamEvents; i++)
    {
        m_hStreamEvent[i] = CreateEventW(NULL, TRUE, FALSE, NULL);
        if (m_hStreamEvent[i] == NULL)
        {
            AfxMessageBox(_T("Init stream record event error"), MB_OK, 0);
            return 0;
        }
        m_streamNotify[i].hEventNotify = m_hStreamEvent[i];
    }
    m_streamNotify[0].dwOffset = m_wfxCurrent.nAvgBytesPerSec / 2 - 1;
    m_streamNotify[1].dwOffset = m_wfxCurrent.nAvgBytesPerSec - 1;
    m_streamNotify[2].dwOffset = DSBPN_OFFSETSTOP;
    m_hr = m_pDSNotify->SetNotificationPositions(kStreamEvents, m_streamNotify);
    if (SUCCEEDED(m_hr))
        return 1;
    _freeNotify();
    return 0;
}

int CDSndCapturetyStream::startCaptureStream()
{
    SectionLock hold(m_streamLock);
    if (m_pDSCBuffer == NULL)
        return 0;
    m_ulStreamOffset = 0;
    m_hr = m_pDSCBuffer->Start(DSCBSTART_LOOPING);
    if (!traceHR())
        return 0;
    m_bCapturing = 1;
    return 1;
}

// The events are manual-reset: the one that woke this wait is reset before the data is
// taken, or every later wait would return at once. A stop clears the flag before it sets
// the events, so a stop is never missed.
int CDSndCapturetyStream::waitRecordStreamEvt()
{
    if (!m_bCapturing)
        return 0;
    DWORD dwWoken = MsgWaitForMultipleObjects(kStreamEvents, m_hStreamEvent, FALSE, INFINITE, QS_ALLINPUT);
    if (dwWoken >= WAIT_OBJECT_0 + kStreamEvents)
        return 0;
    ResetEvent(m_hStreamEvent[dwWoken - WAIT_OBJECT_0]);
    if (!m_bCapturing)
        return 0;
    return streamData2File(dwWoken - WAIT_OBJECT_0);
}

// Wine's capture cursor can read a few milliseconds behind where it stood a moment ago; taken
// as a wrap, that would write the whole buffer again. A real wrap is never that close, as the
// positions come at least every 1.5 s of a two-second buffer.
unsigned long CDSndCapturetyStream::bytesCapturedSinceOffset(unsigned long ulPosition)
{
    if (ulPosition >= m_ulStreamOffset)
        return ulPosition - m_ulStreamOffset;
    if (m_ulStreamOffset - ulPosition < m_wfxCurrent.nAvgBytesPerSec / 4)
        return 0;
    return ulPosition + m_dscbd.dwBufferBytes - m_ulStreamOffset;
}

int CDSndCapturetyStream::writeRegion(void* pRegion, DWORD dwBytes)
{
    if (pRegion == NULL || dwBytes == 0)
        return 1;
    unsigned int uWritten = 0;
    int nWrote = m_pSndWaveWriteStream->Write(dwBytes, static_cast<unsigned char*>(pRegion), &uWritten);
    m_ulStreamBytesWritten += uWritten;
    return nWrote ? 1 : 0;
}

// Up to the capture position. A failed write leaves the offset, so the same bytes are
// offered again at the next position.
int CDSndCapturetyStream::streamData2File(unsigned long /*ulEvent*/)
{
    SectionLock hold(m_streamLock);
    if (!m_bCapturing)
        return 0;
    return takeToFile();
}

int CDSndCapturetyStream::takeToFile()
{
    if (m_pSndWaveWriteStream == NULL || m_pDSCBuffer == NULL)
        return 0;
    DWORD dwCapture = 0;
    m_hr = m_pDSCBuffer->GetCurrentPosition(&dwCapture, NULL);
    if (FAILED(m_hr))
        return 0;
    unsigned long ulNew = bytesCapturedSinceOffset(dwCapture);
    if (ulNew == 0)
        return 0;

    void* pRegion1 = NULL;
    void* pRegion2 = NULL;
    DWORD dwBytes1 = 0;
    DWORD dwBytes2 = 0;
    m_hr = m_pDSCBuffer->Lock(m_ulStreamOffset, ulNew, &pRegion1, &dwBytes1, &pRegion2, &dwBytes2, 0);
    if (FAILED(m_hr))
        return 0;
    int nWrote = writeRegion(pRegion1, dwBytes1) && writeRegion(pRegion2, dwBytes2);
    m_pDSCBuffer->Unlock(pRegion1, dwBytes1, pRegion2, dwBytes2);
    if (!nWrote)
        return 0;
    m_ulStreamOffset += ulNew;
    if (m_ulStreamOffset >= m_dscbd.dwBufferBytes)
        m_ulStreamOffset -= m_dscbd.dwBufferBytes;
    return 1;
}

// A region longer than the ring keeps only its last ring's worth, so nothing is written
// outside the ring.
void CDSndCapturetyStream::copyToRing(const void* pRegion, DWORD dwBytes, char* pRing, unsigned long ulRingBytes,
                                      int& nRingPosition)
{
    if (pRegion == NULL || dwBytes == 0)
        return;
    const char* pFrom = static_cast<const char*>(pRegion);
    if (dwBytes > ulRingBytes)
    {
        pFrom += dwBytes - ulRingBytes;
        nRingPosition = static_cast<int>((nRingPosition + dwBytes - ulRingBytes) % ulRingBytes);
        dwBytes = ulRingBytes;
    }
    unsigned long ulRoom = ulRingBytes - static_cast<unsigned long>(nRingPosition);
    if (dwBytes <= ulRoom)
    {
        CopyMemory(pRing + nRingPosition, pFrom, dwBytes);
        nRingPosition += static_cast<int>(dwBytes);
        return;
    }
    CopyMemory(pRing + nRingPosition, pFrom, ulRoom);
    CopyMemory(pRing, pFrom + ulRoom, dwBytes - ulRoom);
    nRingPosition = static_cast<int>(dwBytes - ulRoom);
}

// Up to the read position, the end of what is safe to read.
int CDSndCapturetyStream::getRecordNewStreamData(void* pRing, unsigned long ulRingBytes, int& nRingPosition,
                                                 bool bWriteFile)
{
    SectionLock hold(m_streamLock);
    if (!m_bCapturing || m_pDSCBuffer == NULL || pRing == NULL || ulRingBytes == 0)
        return 0;
    DWORD dwRead = 0;
    m_hr = m_pDSCBuffer->GetCurrentPosition(NULL, &dwRead);
    if (!traceHR())
        return 0;
    unsigned long ulNew = bytesCapturedSinceOffset(dwRead);
    if (ulNew < 1)
        return 0;

    void* pRegion1 = NULL;
    void* pRegion2 = NULL;
    DWORD dwBytes1 = 0;
    DWORD dwBytes2 = 0;
    m_hr = m_pDSCBuffer->Lock(m_ulStreamOffset, ulNew, &pRegion1, &dwBytes1, &pRegion2, &dwBytes2, 0);
    if (FAILED(m_hr))
        return 0;
    if (nRingPosition < 0 || static_cast<unsigned long>(nRingPosition) >= ulRingBytes)
        nRingPosition = 0;
    char* pRingBytes = static_cast<char*>(pRing);
    bool bWriteFailed = false;
    copyToRing(pRegion1, dwBytes1, pRingBytes, ulRingBytes, nRingPosition);
    if (bWriteFile && m_pSndWaveWriteStream != NULL)
        bWriteFailed = !writeRegion(pRegion1, dwBytes1);
    if (!bWriteFailed)
    {
        copyToRing(pRegion2, dwBytes2, pRingBytes, ulRingBytes, nRingPosition);
        if (bWriteFile && m_pSndWaveWriteStream != NULL)
            bWriteFailed = !writeRegion(pRegion2, dwBytes2);
    }
    m_pDSCBuffer->Unlock(pRegion1, dwBytes1, pRegion2, dwBytes2);
    if (bWriteFailed)
        return 0;
    unsigned long ulBufferBytes = m_dscbd.dwBufferBytes;
    m_ulStreamOffset = ((m_ulStreamOffset + dwBytes1) % ulBufferBytes + dwBytes2) % ulBufferBytes;
    return 1;
}

// Capture is halted first, so that the tail since the last position can be written
// before the buffer goes; then the file is finished with what it holds.
int CDSndCapturetyStream::stopCaptureStream()
{
    SectionLock hold(m_streamLock);
    bool bWasCapturing = m_bCapturing != 0;
    m_bCapturing = 0;
    for (int i = 0; i < kStreamEvents; i++)
    {
        if (m_hStreamEvent[i] != NULL)
            SetEvent(m_hStreamEvent[i]);
    }
    if (bWasCapturing && m_pDSCBuffer != NULL)
    {
        m_pDSCBuffer->Stop();
        takeToFile();
    }
    recordStop();
    if (m_pSndWaveWriteStream != NULL)
        m_pSndWaveWriteStream->Close(m_ulStreamBytesWritten);
    return 1;
}
