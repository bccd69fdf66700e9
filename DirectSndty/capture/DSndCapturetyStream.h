#pragma once
// Records without a length limit: capture loops over a short buffer and, each time the
// platform signals a position, what is new goes to a wave file through the wave-file
// writer, or into a caller's ring. Set up, start, wait in a loop, stop; the stop writes
// the tail captured since the last signal and finishes the file. The writer belongs to
// the caller, who opens it before recording and deletes it after the stop.

#include "DSndCapturety4RecordPro.h"

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
    // Blocks until the next position; writes what is new to the file. 0 once stopped, and
    // when a window message arrives, so that the caller can pump it.
    int waitRecordStreamEvt();
    // Copies what is new into the caller's ring at nRingPosition, wrapping at ulRingBytes,
    // and writes it to the file too when bWriteFile. 1 when something was taken.
    int getRecordNewStreamData(void* pRing, unsigned long ulRingBytes, int& nRingPosition, bool bWriteFile);
    // Always 1: stops capture, writes the tail, finishes the file with the bytes written.
    int stopCaptureStream();

    CSndWaveWriteStreamty* m_pSndWaveWriteStream; // set by the caller, not owned

protected:
    int initNotifyEvtStreamRecord();
    int streamData2File(unsigned long ulEvent);

    unsigned long m_ulStreamBytesWritten;
    unsigned long m_ulStreamOffset; // capture-buffer offset up to which data has been taken
    DSBPOSITIONNOTIFY m_streamNotify[kStreamEvents];
    HANDLE m_hStreamEvent[kStreamEvents];

private:
    void closeStreamEvents();
    void releaseCapture();
    int takeToFile();
    int writeRegion(void* pRegion, DWORD dwBytes);
    void copyToRing(const void* pRegion, DWORD dwBytes, char* pRing, unsigned long ulRingBytes, int& nRingPosition);
    unsigned long bytesCapturedSinceOffset(unsigned long ulPosition);

    CRITICAL_SECTION m_streamLock; // held around every use of the buffer by this layer
};
