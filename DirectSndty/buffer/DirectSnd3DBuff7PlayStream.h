#pragma once
// Plays a wave file of any length through a two-second buffer refilled half by half from
// the wave-file stream reader, on a worker thread that calls waitStreamEvt until it gives 0.
// The end of the file is padded with silence and the stream stops itself once that half
// has played. Refill, play and release are serialised, so a stop from another thread can
// never release the buffer under a refill; a stop also wakes the waiting worker.

#include "DirectSnd3DBuff6Play.h"

class CSndDataReadtyStream;

class AFX_EXT_CLASS CDirectSnd3DBuff7PlayStream : public CDirectSnd3DBuff6Play
{
public:
    enum
    {
        kStreamNotEnded = 65535
    };

    CDirectSnd3DBuff7PlayStream();
    // Closes the stream's events; the buffer itself goes with the lower layers.
    virtual ~CDirectSnd3DBuff7PlayStream();

    // The reader must be open on the file (initStream2Read) before this is called.
    int initPlayStream(HWND hWnd, tWAVEFORMATEX wfx);
    int playDSnd2ndBufLargeFileStream();
    // Waits for the next half to be due and refills it; 0 once the stream is over or stopped.
    int waitStreamEvt();
    // Always 1; harmless when nothing plays.
    int stopDSnd2ndBufLargeFileStream();

    CSndDataReadtyStream* m_pSndDataReadStream; // set by the caller, not owned

protected:
    int initNotifyEvtStreamPlay();
    int streamData2Buffer(unsigned long ulHalf);

    unsigned long m_streamEndHalf; // event index whose half holds the end of the file
    DSBPOSITIONNOTIFY m_streamNotify[2];
    HANDLE m_hStreamEvent[2];

private:
    int create2DSndBuffStreamPlay(unsigned long ulBytes, tWAVEFORMATEX wfx);
    void closeStreamEvents();
    void refillRegion(unsigned long ulHalf, void* pRegion, DWORD dwRegionBytes);

    CRITICAL_SECTION m_streamLock; // held around every use of the buffer by this layer
    HANDLE m_hStreamStopped;       // set by a stop, so a waiting worker ends
};
