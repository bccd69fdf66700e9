#pragma once
// Places stimuli on a running output stream to the frame. A looping secondary buffer plays
// from the moment the schedule opens until it closes; a worker keeps it filled, a fixed lead
// beyond the platform's write cursor, with silence and whatever has been scheduled for those
// frames. An onset thus falls on the stream's own clock instead of wherever the mixer's next
// period happens to fall after a Play(). The performance counter, the host's own time base,
// is mapped onto that clock from the worker's readings of the play cursor.
//
// Frames between the play and the write cursor are committed: writing them changes nothing
// that is heard. How far the write cursor runs ahead is the platform's (10 ms under Wine,
// each machine its own on Windows), so it is measured at every reading and the lead counts
// from it. When the worker wakes too late and the write cursor has passed what was written,
// the frames in between are skipped: they are counted, and every stimulus that fell there is
// marked late, so that an experiment can discard the trial.
//
// Every operation may be called from the host's thread while the worker refills.

#include <afxwin.h>
#include <mmsystem.h>
#include <dsound.h>
#include <map>
#include <vector>

#include "../foundation/DirectSndBasicty.h"
#include "StreamClockty.h"

class CDirectSndDevicety;
class CSndDatatyx;

class AFX_EXT_CLASS CDirectSndSchedulety : public CDirectSndBasicty
{
public:
    CDirectSndSchedulety();
    virtual ~CDirectSndSchedulety();

    // What became of a scheduled stimulus (getStimState).
    enum StimState
    {
        kStimUnknown = 0, // never scheduled, cancelled, or dropped by a close before it was written
        kStimPending,     // not yet written whole
        kStimOnTime,      // written whole, every frame before the platform committed it
        kStimLate         // some of its frames were skipped: cut or lost
    };

    // Starts a silent looping buffer on the device (whose cooperative level the host has
    // set) in an 8- or 16-bit PCM format, refilled ulLeadMs (10 to 5000) beyond the
    // platform's write cursor. An open schedule is closed first. 1, or 0 with m_hr telling
    // why: DSERR_UNSUPPORTED when the platform's write cursor runs so far ahead that the lead
    // does not fit in half the buffer.
    int openSchedule(CDirectSndDevicety* pDevice, tWAVEFORMATEX wfx, unsigned long ulLeadMs);
    // Frames played since the schedule opened, counted across the buffer's wraps.
    LONGLONG getPlayFrame();
    // The first frame not yet written to the buffer, after a refill from the cursors read
    // now: the earliest that can be scheduled, a lead beyond what is committed.
    LONGLONG getEarliestFrame();
    // Mixes a copy of the container's PCM (saturating, so stimuli may overlap) so that its
    // first frame plays at stream frame llFrame. An id above 0, or 0 for a frame before the
    // earliest, a format other than the schedule's, an empty container or a closed schedule.
    int scheduleStim(CSndDatatyx* pData, LONGLONG llFrame);
    // Drops what of a stimulus has not been written yet; 0 for an id not pending.
    int cancelStim(int id);
    // Whether a stimulus was written whole and on time. Kept until the schedule opens again.
    StimState getStimState(int id);
    // Stimuli marked late, and frames skipped, since the schedule opened.
    int getLateStimCount();
    LONGLONG getSkippedFrames();
    // How far the platform's write cursor has run ahead of the play cursor (the most seen),
    // and how far ahead of the play cursor the earliest frame therefore stands: the lead a
    // host must allow for. 0 while closed.
    DWORD getWriteAheadFrames();
    DWORD getEffectiveLeadFrames();
    // The result of the schedule's last platform call or refusal (m_hr), for a host to tell why.
    HRESULT getLastResult() const { return m_hr; }
    // The stream frame heard at a QueryPerformanceCounter value, and back; -1 while closed.
    LONGLONG timeToFrame(LONGLONG llCounter);
    LONGLONG frameToTime(LONGLONG llFrame);
    // The fixed delay from the buffer to the speaker, measured once by the user.
    void setOutputLatencyFrames(LONGLONG llFrames);
    // Stops the worker and the buffer and releases everything; always 1.
    int closeSchedule();

protected:
    IDirectSoundBuffer8* m_pDSBuffer;
    tWAVEFORMATEX m_wfx;
    DWORD m_dwBufferFrames;

private:
    struct Stim
    {
        int id;
        LONGLONG llFrame;
        std::vector<BYTE> pcm;
        bool bLate;
    };

    static bool isSchedulableWfx(const tWAVEFORMATEX& wfx);
    void forgetStims();
    int createLoopBuffer(CDirectSndDevicety* pDevice);
    int fillWithSilence();
    int startPlaying();
    void awaitFirstPeriod();
    int startWorker();
    void stopWorker();
    static UINT AFX_CDECL workerProc(LPVOID pParam);
    void runWorker();

    // Called with m_lock held.
    void readCursor();
    void refill();
    void skipTo(LONGLONG llFrame);
    void silencePlayed(LONGLONG llFrom);
    int writeFrames(LONGLONG llFirst, DWORD dwFrames, bool bMixStims);
    bool mixStims(LONGLONG llFirst, DWORD dwFrames);
    void settleWrittenStims();
    BYTE silenceByte() const;

    DWORD m_dwLeadFrames;
    DWORD m_dwPollMs;
    DWORD m_dwLastPlayCursor;
    LONGLONG m_llPlayFrame;
    LONGLONG m_llWriteCursorFrame;
    LONGLONG m_llWrittenFrame;
    LONGLONG m_llSilencedFrame; // played frames before this hold silence again
    LONGLONG m_llDirtyEnd;      // no stimulus was written at or after this frame
    LONGLONG m_llLatencyFrames;
    LONGLONG m_llSkippedFrames;
    DWORD m_dwWriteAheadFrames;
    int m_nLateStims;
    std::vector<Stim> m_stims;
    std::map<int, StimState> m_settled;
    std::vector<BYTE> m_mix;
    int m_nextStimId;
    CStreamClockty m_clock;
    CRITICAL_SECTION m_lock;
    HANDLE m_hStopWorker;
    CWinThread* m_pWorker;
};
