// Recording from the default capture device: streamed into a wave file for as long as it
// runs, by a worker of this layer's, or a given number of bytes into the caller's memory.

#include "DstyHandles.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace
{
bool isCaptureFormat(const dsty_format* format, tWAVEFORMATEX& wfx)
{
    return toWaveFormat(format, wfx) && (wfx.wBitsPerSample == 8 || wfx.wBitsPerSample == 16);
}

int streamResult(const dsty_recording* recording)
{
    if (recording->capture.getStreamResult() == S_OK)
        return DSTY_OK;
    return CDstyHost::instance().fail(
        DSTY_E_WRITE, "the file stopped taking the recording: " +
                          utf8Of(describeWaveFileResult(recording->capture.getStreamWriteResult())));
}
}

int dsty_record_start(const dsty_format* format, const char* wav_path, dsty_recording** out)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    if (out == nullptr || wav_path == nullptr)
        return host.fail(DSTY_E_ARGUMENT);
    *out = nullptr;
    tWAVEFORMATEX wfx;
    if (!isCaptureFormat(format, wfx))
        return host.fail(DSTY_E_FORMAT, "a recording takes 8- or 16-bit PCM of one or two channels");
    std::unique_ptr<dsty_recording> recording(new (std::nothrow) dsty_recording);
    if (!recording)
        return host.fail(DSTY_E_MEMORY);
    if (!recording->writer.Open(CString(wideOf(wav_path).c_str()), &wfx, TRUE))
        return host.fail(DSTY_E_WRITE, utf8Of(describeWaveFileResult(recording->writer.GetResult())));
    CDSndCapturetyStream& capture = recording->capture;
    capture.m_pSndWaveWriteStream = &recording->writer;
    if (!capture.initCapture2stream(wfx, 2 * wfx.nAvgBytesPerSec) || !capture.startCaptureStream())
    {
        capture.stopCaptureStream();
        DeleteFileW(wideOf(wav_path).c_str()); // no recording, no file
        return host.fail(DSTY_E_DEVICE, "the capture device could not be opened");
    }
    dsty_recording* pRecording = recording.get();
    pRecording->worker = std::thread([pRecording] {
        while (pRecording->recording && pRecording->capture.getStreamResult() == S_OK)
            pRecording->capture.waitRecordStreamEvt();
    });
    host.open(pRecording, DstyKind::Recording);
    *out = recording.release();
    return DSTY_OK;
}

int dsty_record_status(dsty_recording* recording)
{
    DstyCall call;
    const int checked = checkHandle(recording, DstyKind::Recording);
    return checked != DSTY_OK ? checked : streamResult(recording);
}

long long dsty_record_lost_frames(dsty_recording* recording)
{
    DstyCall call;
    const int checked = checkHandle(recording, DstyKind::Recording);
    return checked != DSTY_OK ? checked : static_cast<long long>(recording->capture.getLostFrames());
}

// The stop wakes the worker, writes the tail and finishes the file.
int dsty_record_stop(dsty_recording* recording)
{
    DstyCall call;
    const int checked = checkHandle(recording, DstyKind::Recording);
    if (checked != DSTY_OK)
        return checked;
    CDstyHost::instance().close(recording);
    recording->recording = false;
    recording->capture.stopCaptureStream();
    recording->worker.join();
    const int result = streamResult(recording);
    delete recording;
    return result;
}

// Through the streamed capture's ring copy, which shows no message while nothing has arrived
// yet: each take lands in a ring of a second and is moved on into the caller's memory.
int dsty_record_into(const dsty_format* format, void* pcm, size_t bytes)
{
    CDstyHost& host = CDstyHost::instance();
    tWAVEFORMATEX wfx;
    if (!isCaptureFormat(format, wfx))
        return host.fail(DSTY_E_FORMAT, "a recording takes 8- or 16-bit PCM of one or two channels");
    bytes -= bytes % wfx.nBlockAlign;
    if (pcm == nullptr || bytes == 0)
        return host.fail(DSTY_E_ARGUMENT);
    std::unique_ptr<CDSndCapturetyStream> capture(new (std::nothrow) CDSndCapturetyStream);
    std::vector<char> ring(wfx.nAvgBytesPerSec);
    {
        DstyCall call;
        if (!capture || !capture->initCapture2stream(wfx, 2 * wfx.nAvgBytesPerSec) || !capture->startCaptureStream())
            return host.fail(DSTY_E_DEVICE, "the capture device could not be opened");
    }
    char* pOut = static_cast<char*>(pcm);
    const ULONGLONG ullDeadline = GetTickCount64() + 2000 + bytes * 1000ull / wfx.nAvgBytesPerSec;
    size_t got = 0;
    for (int nPosition = 0; got < bytes && GetTickCount64() < ullDeadline;)
    {
        Sleep(20);
        const int nFrom = nPosition;
        if (!capture->getRecordNewStreamData(ring.data(), static_cast<unsigned long>(ring.size()), nPosition, false))
            continue;
        for (size_t k = nFrom, n = (nPosition - nFrom + ring.size()) % ring.size(); n > 0 && got < bytes; n--)
        {
            pOut[got++] = ring[k];
            k = (k + 1) % ring.size();
        }
    }
    const ULONGLONG ullLost = capture->getLostFrames();
    {
        DstyCall call;
        capture->stopCaptureStream();
        capture.reset();
    }
    if (got < bytes)
        return host.fail(DSTY_E_TIMEOUT, "the capture device delivered too little");
    return ullLost == 0 ? DSTY_OK : host.fail(DSTY_E_DEVICE, "the recording was held up and lost frames");
}
