#pragma once
// Places stimuli on a running output stream to the frame. A looping secondary buffer plays
// from the moment the schedule opens until it closes; a worker keeps it filled, a fixed lead
// ahead of the play cursor, with silence and whatever has been scheduled for those frames.
// An onset thus falls on the stream's own clock instead of wherever the mixer's next period
// happens to fall after a Play(). The performance counter, the host's own time base, is
// mapped onto that clock from the worker's readings of the play cursor.
//
// Every operation may be called from the host's thread while the worker refills.

#include <afxwin.h>
#include <mmsystem.h>
#include <dsound.h>
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

    // Starts a silent looping buffer on the device (whose cooperative level the host has
    // set) in an 8- or 16-bit PCM format, refilled ulLeadMs (10 to 5000) ahead of its play
    // cursor. An open schedule is closed first. 1, or 0 with m_hr telling why.
    int openSchedule(CDirectSndDevicety* pDevice, tWAVEFORMATEX wfx, unsigned long ulLeadMs);
    // Frames played since the schedule opened, counted across the buffer's wraps.
    LONGLONG getPlayFrame();
    // The first frame not yet written to the buffer: the earliest that can be scheduled.
    LONGLONG getEarliestFrame();
    // Mixes a copy of the container's PCM (saturating, so stimuli may overlap) so that its
    // first frame plays at stream frame llFrame. An id above 0, or 0 for a frame already
    // written, a format other than the schedule's, an empty container or a closed schedule.
    int scheduleStim(CSndDatatyx* pData, LONGLONG llFrame);
    // Drops what of a stimulus has not been written yet; 0 for an id not pending.
    int cancelStim(int id);
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
    };

    static bool isSchedulableWfx(const tWAVEFORMATEX& wfx);
    int createLoopBuffer(CDirectSndDevicety* pDevice);
    int fillWithSilence();
    int startWorker();
    void stopWorker();
    static UINT AFX_CDECL workerProc(LPVOID pParam);
    void runWorker();

    // Called with m_lock held.
    void readCursor();
    void refill();
    void writeFrames(LONGLONG llFirst, DWORD dwFrames);
    void mixStims(LONGLONG llFirst, DWORD dwFrames);
    void dropWrittenStims();
    BYTE silenceByte() const;

    DWORD m_dwLeadFrames;
    DWORD m_dwPollMs;
    DWORD m_dwLastPlayCursor;
    LONGLONG m_llPlayFrame;
    LONGLONG m_llWriteCursorFrame;
    LONGLONG m_llWrittenFrame;
    LONGLONG m_llLatencyFrames;
    std::vector<Stim> m_stims;
    std::vector<BYTE> m_mix;
    int m_nextStimId;
    CStreamClockty m_clock;
    CRITICAL_SECTION m_lock;
    HANDLE m_hStopWorker;
    CWinThread* m_pWorker;
};
