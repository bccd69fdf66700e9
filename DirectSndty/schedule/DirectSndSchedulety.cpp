#include "DirectSndSchedulety.h"
#include "SndDatatyx.h"
#include "../device/DirectSndDevicety.h"
#include "../foundation/ComRelease.h"
#include "../foundation/SectionLock.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace
{
const unsigned long kShortestLeadMs = 10;
const unsigned long kLongestLeadMs = 5000;
const DWORD kLeadsPerBuffer = 4; // the buffer holds this many leads, and at least a second
const DWORD kPollsPerLead = 4;
const DWORD kStartWaitMs = 200; // for the platform's first period, which may commit several at once

LONGLONG counterNow()
{
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    return counter.QuadPart;
}

LONGLONG counterHz()
{
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

// Adds `in` to `out` sample by sample, clipping at full scale.
void mixSaturating(BYTE* out, const BYTE* in, size_t bytes, WORD wBits)
{
    if (wBits == 8)
    {
        for (size_t i = 0; i < bytes; i++)
            out[i] = static_cast<BYTE>(std::min(255, std::max(0, out[i] + in[i] - 128)));
        return;
    }
    for (size_t i = 0; i + 1 < bytes; i += 2)
    {
        short a, b;
        std::memcpy(&a, out + i, 2);
        std::memcpy(&b, in + i, 2);
        const short sum = static_cast<short>(std::min(32767, std::max(-32768, a + b)));
        std::memcpy(out + i, &sum, 2);
    }
}
}

CDirectSndSchedulety::CDirectSndSchedulety()
    : m_pDSBuffer(NULL),
      m_dwBufferFrames(0),
      m_dwLeadFrames(0),
      m_dwPollMs(1),
      m_dwLastPlayCursor(0),
      m_llPlayFrame(0),
      m_llWriteCursorFrame(0),
      m_llWrittenFrame(0),
      m_llSilencedFrame(0),
      m_llDirtyEnd(0),
      m_llLatencyFrames(0),
      m_llSkippedFrames(0),
      m_dwWriteAheadFrames(0),
      m_nLateStims(0),
      m_nextStimId(1),
      m_hStopWorker(CreateEventW(NULL, TRUE, FALSE, NULL)),
      m_pWorker(NULL)
{
    ZeroMemory(&m_wfx, sizeof(m_wfx));
    InitializeCriticalSection(&m_lock);
}

CDirectSndSchedulety::~CDirectSndSchedulety()
{
    closeSchedule();
    if (m_hStopWorker != NULL)
        CloseHandle(m_hStopWorker);
    DeleteCriticalSection(&m_lock);
}

bool CDirectSndSchedulety::isSchedulableWfx(const tWAVEFORMATEX& wfx)
{
    if (wfx.wFormatTag != WAVE_FORMAT_PCM || (wfx.wBitsPerSample != 8 && wfx.wBitsPerSample != 16))
        return false;
    if (wfx.nChannels < 1 || wfx.nSamplesPerSec == 0)
        return false;
    return wfx.nBlockAlign == wfx.nChannels * wfx.wBitsPerSample / 8;
}

int CDirectSndSchedulety::openSchedule(CDirectSndDevicety* pDevice, tWAVEFORMATEX wfx, unsigned long ulLeadMs)
{
    closeSchedule();
    if (pDevice == NULL || m_hStopWorker == NULL)
    {
        m_hr = DSERR_UNINITIALIZED;
        return 0;
    }
    if (!isSchedulableWfx(wfx) || ulLeadMs < kShortestLeadMs || ulLeadMs > kLongestLeadMs)
    {
        m_hr = DSERR_INVALIDPARAM;
        return 0;
    }
    m_wfx = wfx;
    m_dwLeadFrames = static_cast<DWORD>(static_cast<ULONGLONG>(wfx.nSamplesPerSec) * ulLeadMs / 1000);
    m_dwBufferFrames = std::max<DWORD>(wfx.nSamplesPerSec, kLeadsPerBuffer * m_dwLeadFrames);
    m_dwPollMs = std::max<DWORD>(1, ulLeadMs / kPollsPerLead);
    forgetStims();
    if (!createLoopBuffer(pDevice) || !fillWithSilence() || !startPlaying() || !startWorker())
    {
        closeSchedule();
        return 0;
    }
    return 1;
}

void CDirectSndSchedulety::forgetStims()
{
    SectionLock hold(m_lock);
    m_settled.clear();
    m_nLateStims = 0;
    m_llSkippedFrames = 0;
}

int CDirectSndSchedulety::createLoopBuffer(CDirectSndDevicety* pDevice)
{
    DSBUFFERDESC dsbd;
    ZeroMemory(&dsbd, sizeof(dsbd));
    dsbd.dwSize = sizeof(DSBUFFERDESC);
    dsbd.dwFlags = DSBCAPS_GETCURRENTPOSITION2 | DSBCAPS_GLOBALFOCUS;
    dsbd.dwBufferBytes = m_dwBufferFrames * m_wfx.nBlockAlign;
    dsbd.lpwfxFormat = reinterpret_cast<LPWAVEFORMATEX>(&m_wfx);
    if (pDevice->getDSndBuff2Std(dsbd, m_pDSBuffer))
        return 1;
    m_hr = DSERR_GENERIC;
    return 0;
}

int CDirectSndSchedulety::fillWithSilence()
{
    void* pAudio = NULL;
    DWORD dwBytes = 0;
    m_hr = m_pDSBuffer->Lock(0, 0, &pAudio, &dwBytes, NULL, NULL, DSBLOCK_ENTIREBUFFER);
    if (m_hr != DS_OK)
        return 0;
    FillMemory(pAudio, dwBytes, silenceByte());
    m_hr = m_pDSBuffer->Unlock(pAudio, dwBytes, NULL, 0);
    return m_hr == DS_OK ? 1 : 0;
}

BYTE CDirectSndSchedulety::silenceByte() const
{
    return m_wfx.wBitsPerSample == 8 ? 128 : 0;
}

// The first reading is taken before the worker runs, so that the clock and the platform's
// write-ahead are known as soon as the schedule is open. What lies before the write cursor
// then is the silence the buffer was filled with, not frames skipped.
int CDirectSndSchedulety::startPlaying()
{
    m_hr = m_pDSBuffer->Play(0, 0, DSBPLAY_LOOPING);
    if (m_hr != DS_OK)
        return 0;
    awaitFirstPeriod();
    SectionLock hold(m_lock);
    m_dwLastPlayCursor = 0;
    m_llPlayFrame = 0;
    m_dwWriteAheadFrames = 0;
    m_clock.restart(counterHz(), m_wfx.nSamplesPerSec, counterNow());
    readCursor();
    if (m_hr != DS_OK)
        return 0;
    if (m_dwWriteAheadFrames + m_dwLeadFrames > m_dwBufferFrames / 2)
    {
        m_hr = DSERR_UNSUPPORTED;
        return 0;
    }
    m_llWrittenFrame = m_llWriteCursorFrame;
    m_llSilencedFrame = m_llWriteCursorFrame;
    m_llDirtyEnd = m_llWriteCursorFrame;
    refill();
    return 1;
}

// Wine's mixer, starting for the first buffer of a process, commits some 60 ms at once; a
// stimulus at the earliest frame promised before that would be cut.
void CDirectSndSchedulety::awaitFirstPeriod()
{
    for (DWORD dwWaited = 0; dwWaited < kStartWaitMs; dwWaited++)
    {
        DWORD dwPlay = 0;
        if (FAILED(m_pDSBuffer->GetCurrentPosition(&dwPlay, NULL)) || dwPlay != 0)
            return;
        Sleep(1);
    }
}

int CDirectSndSchedulety::startWorker()
{
    ResetEvent(m_hStopWorker);
    m_pWorker = AfxBeginThread(workerProc, this, THREAD_PRIORITY_TIME_CRITICAL, 0, CREATE_SUSPENDED);
    if (m_pWorker == NULL)
    {
        m_hr = E_OUTOFMEMORY;
        return 0;
    }
    m_pWorker->m_bAutoDelete = FALSE;
    m_pWorker->ResumeThread();
    return 1;
}

UINT AFX_CDECL CDirectSndSchedulety::workerProc(LPVOID pParam)
{
    static_cast<CDirectSndSchedulety*>(pParam)->runWorker();
    return 0;
}

// A timer period of 1 ms lets the worker poll as often as its lead needs.
void CDirectSndSchedulety::runWorker()
{
    timeBeginPeriod(1);
    while (WaitForSingleObject(m_hStopWorker, m_dwPollMs) == WAIT_TIMEOUT)
    {
        SectionLock hold(m_lock);
        readCursor();
        refill();
    }
    timeEndPeriod(1);
}

// The worker never waits on the host, so ending it cannot deadlock the host's thread.
void CDirectSndSchedulety::stopWorker()
{
    if (m_pWorker == NULL)
        return;
    SetEvent(m_hStopWorker);
    WaitForSingleObject(m_pWorker->m_hThread, INFINITE);
    delete m_pWorker;
    m_pWorker = NULL;
}

int CDirectSndSchedulety::closeSchedule()
{
    stopWorker();
    SectionLock hold(m_lock);
    if (m_pDSBuffer != NULL)
        m_pDSBuffer->Stop();
    releaseInterface(m_pDSBuffer);
    m_stims.clear();
    m_mix.clear();
    m_llPlayFrame = 0;
    m_llWrittenFrame = 0;
    m_dwWriteAheadFrames = 0;
    return 1;
}

// Counts the frames played since the last reading; readings come far more often than once
// per buffer length, so a wrap is never missed.
void CDirectSndSchedulety::readCursor()
{
    if (m_pDSBuffer == NULL)
        return;
    DWORD dwPlay = 0;
    DWORD dwWrite = 0;
    const LONGLONG llBefore = counterNow();
    m_hr = m_pDSBuffer->GetCurrentPosition(&dwPlay, &dwWrite);
    const LONGLONG llAfter = counterNow();
    if (m_hr != DS_OK)
        return;
    const DWORD dwBufferBytes = m_dwBufferFrames * m_wfx.nBlockAlign;
    dwPlay %= dwBufferBytes;
    dwWrite %= dwBufferBytes;
    m_llPlayFrame += ((dwPlay + dwBufferBytes - m_dwLastPlayCursor) % dwBufferBytes) / m_wfx.nBlockAlign;
    m_dwLastPlayCursor = dwPlay;
    const DWORD dwAhead = ((dwWrite + dwBufferBytes - dwPlay) % dwBufferBytes) / m_wfx.nBlockAlign;
    m_dwWriteAheadFrames = std::max(m_dwWriteAheadFrames, dwAhead);
    m_llWriteCursorFrame = m_llPlayFrame + dwAhead;
    m_clock.observe(llBefore + (llAfter - llBefore) / 2, m_llPlayFrame);
}

// Writes from the last written frame to the lead beyond the platform's write cursor, never
// over frames not yet played. A write cursor past the last written frame means the worker
// woke too late: what lies between is skipped, and nothing is ever written behind it.
void CDirectSndSchedulety::refill()
{
    if (m_pDSBuffer == NULL)
        return;
    if (m_llWriteCursorFrame > m_llWrittenFrame)
        skipTo(m_llWriteCursorFrame);
    const LONGLONG llTarget =
        std::min(m_llWriteCursorFrame + m_dwLeadFrames, m_llPlayFrame + m_dwBufferFrames - 1);
    silencePlayed(llTarget - m_dwBufferFrames);
    if (llTarget <= m_llWrittenFrame)
        return;
    if (!writeFrames(m_llWrittenFrame, static_cast<DWORD>(llTarget - m_llWrittenFrame), true))
        return;
    m_llWrittenFrame = llTarget;
    settleWrittenStims();
}

void CDirectSndSchedulety::skipTo(LONGLONG llFrame)
{
    const DWORD dwAlign = m_wfx.nBlockAlign;
    for (Stim& stim : m_stims)
    {
        const LONGLONG llStimEnd = stim.llFrame + static_cast<LONGLONG>(stim.pcm.size() / dwAlign);
        if (stim.bLate || stim.llFrame >= llFrame || llStimEnd <= m_llWrittenFrame)
            continue;
        stim.bLate = true;
        m_nLateStims++;
    }
    m_llSkippedFrames += llFrame - m_llWrittenFrame;
    m_llWrittenFrame = llFrame;
}

// Played frames that held a stimulus are silenced, so that frames skipped one lap later
// play silence rather than the stimulus again. Frames from llFloor on share their place in
// the buffer with frames about to be written, and are left to that write.
void CDirectSndSchedulety::silencePlayed(LONGLONG llFloor)
{
    const LONGLONG llFrom = std::max(m_llSilencedFrame, llFloor);
    const LONGLONG llTo = std::min(m_llPlayFrame, m_llDirtyEnd);
    if (llTo > llFrom && !writeFrames(llFrom, static_cast<DWORD>(llTo - llFrom), false))
        return;
    m_llSilencedFrame = std::max(m_llSilencedFrame, m_llPlayFrame);
}

int CDirectSndSchedulety::writeFrames(LONGLONG llFirst, DWORD dwFrames, bool bMixStims)
{
    const DWORD dwBytes = dwFrames * m_wfx.nBlockAlign;
    m_mix.assign(dwBytes, silenceByte());
    if (bMixStims && mixStims(llFirst, dwFrames))
        m_llDirtyEnd = std::max(m_llDirtyEnd, llFirst + dwFrames);

    const DWORD dwOffset = static_cast<DWORD>(llFirst % m_dwBufferFrames) * m_wfx.nBlockAlign;
    void* pPart1 = NULL;
    void* pPart2 = NULL;
    DWORD dwPart1 = 0;
    DWORD dwPart2 = 0;
    m_hr = m_pDSBuffer->Lock(dwOffset, dwBytes, &pPart1, &dwPart1, &pPart2, &dwPart2, 0);
    if (m_hr != DS_OK)
        return 0;
    std::memcpy(pPart1, m_mix.data(), std::min(dwPart1, dwBytes));
    if (pPart2 != NULL && dwPart1 < dwBytes)
        std::memcpy(pPart2, m_mix.data() + dwPart1, std::min(dwPart2, dwBytes - dwPart1));
    m_hr = m_pDSBuffer->Unlock(pPart1, dwPart1, pPart2, dwPart2);
    return m_hr == DS_OK ? 1 : 0;
}

// True when some stimulus sounds in these frames.
bool CDirectSndSchedulety::mixStims(LONGLONG llFirst, DWORD dwFrames)
{
    const LONGLONG llEnd = llFirst + dwFrames;
    const DWORD dwAlign = m_wfx.nBlockAlign;
    bool bMixed = false;
    for (const Stim& stim : m_stims)
    {
        const LONGLONG llStimEnd = stim.llFrame + static_cast<LONGLONG>(stim.pcm.size() / dwAlign);
        const LONGLONG llFrom = std::max(llFirst, stim.llFrame);
        const LONGLONG llTo = std::min(llEnd, llStimEnd);
        if (llFrom >= llTo)
            continue;
        mixSaturating(m_mix.data() + (llFrom - llFirst) * dwAlign, stim.pcm.data() + (llFrom - stim.llFrame) * dwAlign,
                      static_cast<size_t>(llTo - llFrom) * dwAlign, m_wfx.wBitsPerSample);
        bMixed = true;
    }
    return bMixed;
}

// A stimulus written whole leaves the pending list; what became of it is kept for the host.
void CDirectSndSchedulety::settleWrittenStims()
{
    const DWORD dwAlign = m_wfx.nBlockAlign;
    auto written = [this, dwAlign](const Stim& stim) {
        return stim.llFrame + static_cast<LONGLONG>(stim.pcm.size() / dwAlign) <= m_llWrittenFrame;
    };
    for (const Stim& stim : m_stims)
    {
        if (written(stim))
            m_settled[stim.id] = stim.bLate ? kStimLate : kStimOnTime;
    }
    m_stims.erase(std::remove_if(m_stims.begin(), m_stims.end(), written), m_stims.end());
}

LONGLONG CDirectSndSchedulety::getPlayFrame()
{
    SectionLock hold(m_lock);
    readCursor();
    return m_llPlayFrame;
}

LONGLONG CDirectSndSchedulety::getEarliestFrame()
{
    SectionLock hold(m_lock);
    readCursor();
    refill();
    return m_llWrittenFrame;
}

int CDirectSndSchedulety::scheduleStim(CSndDatatyx* pData, LONGLONG llFrame)
{
    if (pData == NULL || !pData->hasAudioWaveData())
    {
        m_hr = DSERR_INVALIDPARAM;
        return 0;
    }
    SectionLock hold(m_lock);
    if (m_pDSBuffer == NULL)
    {
        m_hr = DSERR_UNINITIALIZED;
        return 0;
    }
    readCursor();
    refill();
    if (!isSoundFormatSame(pData->getAudioWaveDataWfx(), m_wfx) || llFrame < m_llWrittenFrame)
    {
        m_hr = DSERR_INVALIDPARAM;
        return 0;
    }
    const unsigned long ulBytes = pData->getDataSize() / m_wfx.nBlockAlign * m_wfx.nBlockAlign;
    const BYTE* pFirst = reinterpret_cast<const BYTE*>(pData->getDataPointer());
    const int id = m_nextStimId;
    m_nextStimId = id == INT_MAX ? 1 : id + 1;
    m_stims.push_back({id, llFrame, std::vector<BYTE>(pFirst, pFirst + ulBytes), false});
    m_hr = DS_OK;
    return id;
}

int CDirectSndSchedulety::cancelStim(int id)
{
    SectionLock hold(m_lock);
    const auto found =
        std::find_if(m_stims.begin(), m_stims.end(), [id](const Stim& stim) { return stim.id == id; });
    if (found == m_stims.end())
        return 0;
    m_stims.erase(found);
    return 1;
}

CDirectSndSchedulety::StimState CDirectSndSchedulety::getStimState(int id)
{
    SectionLock hold(m_lock);
    for (const Stim& stim : m_stims)
    {
        if (stim.id == id)
            return kStimPending;
    }
    const auto settled = m_settled.find(id);
    return settled == m_settled.end() ? kStimUnknown : settled->second;
}

int CDirectSndSchedulety::getLateStimCount()
{
    SectionLock hold(m_lock);
    return m_nLateStims;
}

LONGLONG CDirectSndSchedulety::getSkippedFrames()
{
    SectionLock hold(m_lock);
    return m_llSkippedFrames;
}

DWORD CDirectSndSchedulety::getWriteAheadFrames()
{
    SectionLock hold(m_lock);
    return m_dwWriteAheadFrames;
}

DWORD CDirectSndSchedulety::getEffectiveLeadFrames()
{
    SectionLock hold(m_lock);
    return m_pDSBuffer == NULL ? 0 : m_dwWriteAheadFrames + m_dwLeadFrames;
}

LONGLONG CDirectSndSchedulety::timeToFrame(LONGLONG llCounter)
{
    SectionLock hold(m_lock);
    if (m_pDSBuffer == NULL || !m_clock.isKnown())
        return -1;
    return m_clock.frameAt(llCounter) - m_llLatencyFrames;
}

LONGLONG CDirectSndSchedulety::frameToTime(LONGLONG llFrame)
{
    SectionLock hold(m_lock);
    if (m_pDSBuffer == NULL || !m_clock.isKnown())
        return -1;
    return m_clock.counterAt(llFrame + m_llLatencyFrames);
}

void CDirectSndSchedulety::setOutputLatencyFrames(LONGLONG llFrames)
{
    SectionLock hold(m_lock);
    m_llLatencyFrames = llFrames;
}
