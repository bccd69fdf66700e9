#pragma once
// Records without a length limit: capture loops over a short buffer and, each time the
// platform signals a position, what is new goes to a wave file through the wave-file
// writer, or into a caller's ring. Set up, start, wait in a loop, stop; the stop writes
// the tail captured since the last signal and finishes the file. The writer belongs to
// the caller, who opens it before recording and deletes it after the stop.
//
// New data ends at the platform's read position: bytes between it and the capture position
// are not valid yet. What arrived is judged by that position and the time passed together,
// so a worker kept from taking for longer than the buffer (a stalled host, a loaded
// machine) loses the laps the buffer could not hold, but never silently: the frames lost
// are counted and the file receives silence of exactly that length, so its time axis stays
// true. A write that does not reach the file ends the recording: capture stops, the file
// keeps everything written so far, and why stays readable here.

#include "DSndCapturety4RecordPro.h"
#include "WaveFileResult.h"

class CSndWaveWriteStreamty;

class AFX_EXT_CLASS CDSndCapturetyStream : public CDSndCapturety4RecordPro
{
public:
    enum
    {
        kStreamEvents = 3
    };

    CDSndCapturetyStream();
    // Stops a capture still running and closes the stream's events; the writer is not touched.
    virtual ~CDSndCapturetyStream();

    // Makes the looping capture buffer (ulBytes rounded down to an even number of blocks)
    // and its three position events. 1 on success.
    int initCapture2stream(tWAVEFORMATEX wfx, unsigned long ulBytes);
    int startCaptureStream();
    // Blocks until the next position; writes what is new to the file. 0 once stopped or
    // ended by a failed write, and when a window message arrives, so that the caller can
    // pump it.
    int waitRecordStreamEvt();
    // Copies what is new into the caller's ring at nRingPosition, wrapping at ulRingBytes,
    // and writes it to the file too when bWriteFile. 1 when something was taken.
    int getRecordNewStreamData(void* pRing, unsigned long ulRingBytes, int& nRingPosition, bool bWriteFile);
    // Always 1: stops capture, writes the tail, finishes the file with the bytes written.
    int stopCaptureStream();

    // Frames lost to laps the capture buffer could not hold since the start; the file holds
    // silence in their place.
    ULONGLONG getLostFrames() const;
    // S_OK, or why the recording ended by itself since the start: a write that did not reach
    // the file, with the writer's result at that moment.
    HRESULT getStreamResult() const;
    WaveFileResult getStreamWriteResult() const;

    CSndWaveWriteStreamty* m_pSndWaveWriteStream; // set by the caller, not owned

protected:
    int initNotifyEvtStreamRecord();
    int streamData2File(unsigned long ulEvent);

    ULONGLONG m_ullStreamBytesWritten;
    unsigned long m_ulStreamOffset; // capture-buffer offset up to which data has been taken
    DSBPOSITIONNOTIFY m_streamNotify[kStreamEvents];
    HANDLE m_hStreamEvent[kStreamEvents];

private:
    // What arrived since the last take: ulTake bytes of the ring from ulFrom, after ullLost
    // bytes that the ring no longer holds.
    struct Arrival
    {
        unsigned long ulFrom;
        unsigned long ulTake;
        ULONGLONG ullLost;
        DWORD dwAtMs; // when the read position was read
    };
    struct LockedRegions
    {
        void* pData[2] = {NULL, NULL};
        DWORD dwBytes[2] = {0, 0};
    };

    void closeStreamEvents();
    void releaseCapture();
    int readArrival(Arrival& arrival);
    int lockArrival(const Arrival& arrival, LockedRegions& regions);
    void unlockArrival(const LockedRegions& regions);
    void advanceOffset(const Arrival& arrival, unsigned long ulTaken, bool bCaughtUp);
    int takeToFile();
    int writeToFile(const void* pData, unsigned long ulBytes);
    int writeSilence(ULONGLONG ullBytes);
    void endOnWriteFailure();
    void finishFile();
    void copyToRing(const void* pRegion, DWORD dwBytes, char* pRing, unsigned long ulRingBytes, int& nRingPosition);

    ULONGLONG m_ullLostBytes;
    DWORD m_dwTakenAtMs; // when the stream offset last caught up with the read position
    HRESULT m_hrStream;
    WaveFileResult m_streamWriteResult;
    CRITICAL_SECTION m_streamLock; // held around every use of the buffer by this layer
};
