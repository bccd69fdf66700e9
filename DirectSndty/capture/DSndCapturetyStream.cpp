#include "DSndCapturetyStream.h"
#include "SndWaveWriteStreamty.h"
#include "../foundation/ComRelease.h"
#include "../foundation/SectionLock.h"
#include "../platform/DirectSoundSeam.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{
const unsigned long kSilencePiece = 65536;

// How the writer's reason reads as a platform result.
HRESULT writeFailureResult(WaveFileResult result)
{
    switch (result)
    {
    case WAVEFILE_ERR_TOO_LARGE: return HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE);
    case WAVEFILE_ERR_NOT_OPEN: return HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE);
    default: return HRESULT_FROM_WIN32(ERROR_WRITE_FAULT);
    }
}
}

CDSndCapturetyStream::CDSndCapturetyStream()
    : m_pSndWaveWriteStream(NULL),
      m_ullStreamBytesWritten(0),
      m_ulStreamOffset(0),
      m_ullLostBytes(0),
      m_dwTakenAtMs(0),
      m_hrStream(S_OK),
      m_streamWriteResult(WAVEFILE_OK)
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
    m_ullStreamBytesWritten = 0;
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
    m_ullLostBytes = 0;
    m_hrStream = S_OK;
    m_streamWriteResult = WAVEFILE_OK;
    m_hr = m_pDSCBuffer->Start(DSCBSTART_LOOPING);
    if (!traceHR())
        return 0;
    m_dwTakenAtMs = DSndPlatform::milliseconds();
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

// The read position tells where in the ring capture stands, the clock how many whole laps
// it went round since the last take. Those laps were overwritten before they could be taken:
// they are lost, and the bytes from the stream offset to the read position are the newest.
// A reading a little behind the last one (Wine's cursor jitters) is nothing new, never a lap.
int CDSndCapturetyStream::readArrival(Arrival& arrival)
{
    DWORD dwCapture = 0;
    DWORD dwRead = 0;
    m_hr = m_pDSCBuffer->GetCurrentPosition(&dwCapture, &dwRead);
    if (!traceHR())
        return 0;
    const unsigned long ulRing = m_dscbd.dwBufferBytes;
    if (ulRing == 0 || dwRead >= ulRing)
        return 0;
    arrival.dwAtMs = DSndPlatform::milliseconds();
    arrival.ulFrom = m_ulStreamOffset;
    arrival.ulTake = (dwRead + ulRing - m_ulStreamOffset) % ulRing;
    const double dElapsed = (arrival.dwAtMs - m_dwTakenAtMs) * (m_wfxCurrent.nAvgBytesPerSec / 1000.0);
    const double dLaps = std::floor((dElapsed - arrival.ulTake) / ulRing + 0.5);
    if (dLaps < 0.0)
        return 0;
    arrival.ullLost = static_cast<ULONGLONG>(dLaps) * ulRing;
    return arrival.ulTake > 0 || arrival.ullLost > 0 ? 1 : 0;
}

// Counts what reached the file; anything short of the whole ends the recording.
int CDSndCapturetyStream::writeToFile(const void* pData, unsigned long ulBytes)
{
    if (pData == NULL || ulBytes == 0)
        return 1;
    unsigned int uWritten = 0;
    const int nWrote = m_pSndWaveWriteStream->Write(ulBytes, static_cast<unsigned char*>(const_cast<void*>(pData)),
                                                    &uWritten);
    m_ullStreamBytesWritten += uWritten;
    if (nWrote && uWritten == ulBytes)
        return 1;
    endOnWriteFailure();
    return 0;
}

// The file's time axis stays true: what the ring lost becomes silence of the same length.
int CDSndCapturetyStream::writeSilence(ULONGLONG ullBytes)
{
    if (ullBytes == 0)
        return 1;
    const std::vector<BYTE> silence(std::min<ULONGLONG>(ullBytes, kSilencePiece),
                                    m_wfxCurrent.wBitsPerSample == 8 ? 0x80 : 0x00);
    for (ULONGLONG ullLeft = ullBytes; ullLeft > 0;)
    {
        const unsigned long ulPiece = static_cast<unsigned long>(std::min<ULONGLONG>(ullLeft, silence.size()));
        if (!writeToFile(silence.data(), ulPiece))
            return 0;
        ullLeft -= ulPiece;
    }
    return 1;
}

// Capture stops where the file stopped taking data; the file keeps what it holds.
void CDSndCapturetyStream::endOnWriteFailure()
{
    m_streamWriteResult = m_pSndWaveWriteStream->GetResult();
    m_hrStream = writeFailureResult(m_streamWriteResult);
    m_hr = m_hrStream;
    m_bCapturing = 0;
    if (m_pDSCBuffer != NULL)
        m_pDSCBuffer->Stop();
    finishFile();
}

// The 32-bit count closes a file of up to 4 GiB as it always has; a larger file is closed
// with all that reached it.
void CDSndCapturetyStream::finishFile()
{
    if (m_pSndWaveWriteStream == NULL || !m_pSndWaveWriteStream->IsOpen())
        return;
    if (m_ullStreamBytesWritten <= 0xFFFFFFFFull)
        m_pSndWaveWriteStream->Close(static_cast<unsigned long>(m_ullStreamBytesWritten));
    else
        m_pSndWaveWriteStream->Close();
}

// Up to the read position. The offset advances by exactly what reached the file.
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
    Arrival arrival = {};
    LockedRegions regions;
    if (!readArrival(arrival) || !lockArrival(arrival, regions))
        return 0;
    m_ullLostBytes += arrival.ullLost;
    const int nSilenced = writeSilence(arrival.ullLost);
    const ULONGLONG ullBefore = m_ullStreamBytesWritten;
    const int nWrote = nSilenced && writeToFile(regions.pData[0], regions.dwBytes[0]) &&
                       writeToFile(regions.pData[1], regions.dwBytes[1]);
    unlockArrival(regions);
    advanceOffset(arrival, static_cast<unsigned long>(m_ullStreamBytesWritten - ullBefore), nWrote != 0);
    return nWrote;
}

// Locked before anything is written, so that a refused lock leaves the offset where it was.
int CDSndCapturetyStream::lockArrival(const Arrival& arrival, LockedRegions& regions)
{
    if (arrival.ulTake == 0)
        return 1;
    m_hr = m_pDSCBuffer->Lock(arrival.ulFrom, arrival.ulTake, &regions.pData[0], &regions.dwBytes[0],
                              &regions.pData[1], &regions.dwBytes[1], 0);
    return SUCCEEDED(m_hr) ? 1 : 0;
}

void CDSndCapturetyStream::unlockArrival(const LockedRegions& regions)
{
    if (regions.pData[0] != NULL)
        m_pDSCBuffer->Unlock(regions.pData[0], regions.dwBytes[0], regions.pData[1], regions.dwBytes[1]);
}

// By exactly what was taken; the clock's mark moves only once the offset has caught up with
// the read position it was read with.
void CDSndCapturetyStream::advanceOffset(const Arrival& arrival, unsigned long ulTaken, bool bCaughtUp)
{
    m_ulStreamOffset = (arrival.ulFrom + ulTaken) % m_dscbd.dwBufferBytes;
    if (bCaughtUp)
        m_dwTakenAtMs = arrival.dwAtMs;
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
    Arrival arrival = {};
    LockedRegions regions;
    if (!readArrival(arrival) || !lockArrival(arrival, regions))
        return 0;
    m_ullLostBytes += arrival.ullLost;
    if (nRingPosition < 0 || static_cast<unsigned long>(nRingPosition) >= ulRingBytes)
        nRingPosition = 0;
    char* pRingBytes = static_cast<char*>(pRing);
    copyToRing(regions.pData[0], regions.dwBytes[0], pRingBytes, ulRingBytes, nRingPosition);
    copyToRing(regions.pData[1], regions.dwBytes[1], pRingBytes, ulRingBytes, nRingPosition);
    int nWrote = 1;
    unsigned long ulTaken = arrival.ulTake;
    if (bWriteFile && m_pSndWaveWriteStream != NULL)
    {
        nWrote = writeSilence(arrival.ullLost);
        const ULONGLONG ullBefore = m_ullStreamBytesWritten;
        nWrote = nWrote && writeToFile(regions.pData[0], regions.dwBytes[0]) &&
                 writeToFile(regions.pData[1], regions.dwBytes[1]);
        ulTaken = static_cast<unsigned long>(m_ullStreamBytesWritten - ullBefore);
    }
    unlockArrival(regions);
    advanceOffset(arrival, ulTaken, nWrote != 0);
    return nWrote;
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
    finishFile();
    return 1;
}

ULONGLONG CDSndCapturetyStream::getLostFrames() const
{
    return m_wfxCurrent.nBlockAlign == 0 ? 0 : m_ullLostBytes / m_wfxCurrent.nBlockAlign;
}

HRESULT CDSndCapturetyStream::getStreamResult() const
{
    return m_hrStream;
}

WaveFileResult CDSndCapturetyStream::getStreamWriteResult() const
{
    return m_streamWriteResult;
}
