// Streamed playback of a wave file of any length: the library's streaming buffer refilled by
// a worker of this layer's until the file has played out or the stream is stopped.

#include "DstyHandles.h"

#include <algorithm>
#include <memory>

namespace
{
int checkStream(const dsty_stream* stream)
{
    return checkHandle(stream, DstyKind::Stream);
}

// The worker's refills end once the stream is over; the handle's lock is not taken here, as
// the streaming layer serialises refill, play and stop itself.
void joinWorker(dsty_stream* stream)
{
    stream->buffer.stopDSnd2ndBufLargeFileStream();
    if (stream->worker.joinable())
        stream->worker.join();
}

// A load of four silent bytes gives the streaming buffer its device.
bool placeOnDevice(dsty_stream* stream, const tWAVEFORMATEX& wfx)
{
    const char silence[4] = {};
    return stream->silence.setNewSndData(silence, sizeof silence, wfx) &&
           stream->buffer.setSndData2DSndBuf2ndStd(&stream->silence, &stream->owner->device);
}

// The file from its start into a new streaming buffer. Making one sets the device's level to
// normal before it asks for the file's primary format, which the normal level refuses with a
// message: expected, and shown to no one.
bool prepare(dsty_stream* stream)
{
    DstyQuietMessage normalLevel(
        L"To change primary sound buffer formate, direct sound cooperative level at least priority");
    unsigned long ulBytes = 0;
    tWAVEFORMATEX wfx = {};
    return stream->reader.initStream2Read(CString(stream->path.c_str()), &ulBytes, &wfx) &&
           stream->buffer.initPlayStream(CDstyHost::instance().window(), stream->wfx);
}
}

void freeStream(dsty_stream* stream)
{
    CDstyHost::instance().close(stream);
    auto& list = stream->owner->streams;
    list.erase(std::remove(list.begin(), list.end(), stream), list.end());
    joinWorker(stream);
    CloseHandle(stream->ended);
    delete stream;
}

int dsty_stream_open(dsty_device* device, const char* wav_path, dsty_stream** out)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    const int begun = beginMaking(device, out, wav_path != nullptr);
    if (begun != DSTY_OK)
        return begun;
    std::unique_ptr<dsty_stream> stream(new (std::nothrow) dsty_stream);
    if (!stream)
        return host.fail(DSTY_E_MEMORY);
    stream->owner = device;
    stream->ended = CreateEventW(NULL, TRUE, TRUE, NULL);
    unsigned long ulBytes = 0;
    tWAVEFORMATEX wfx = {};
    if (stream->ended == NULL)
        return host.fail(DSTY_E_MEMORY);
    if (!stream->reader.initStream2Read(CString(wideOf(wav_path).c_str()), &ulBytes, &wfx))
    {
        CloseHandle(stream->ended);
        return host.fail(DSTY_E_FILE, utf8Of(describeWaveFileResult(stream->reader.getSndFileResult())));
    }
    if (wfx.wFormatTag != WAVE_FORMAT_PCM || (wfx.wBitsPerSample != 8 && wfx.wBitsPerSample != 16) ||
        wfx.nChannels < 1 || wfx.nChannels > 2)
    {
        CloseHandle(stream->ended);
        return host.fail(DSTY_E_FORMAT, "a stream plays 8- or 16-bit PCM of one or two channels");
    }
    stream->path = wideOf(wav_path);
    stream->wfx = wfx;
    stream->buffer.m_pSndDataReadStream = &stream->reader;
    if (!placeOnDevice(stream.get(), wfx))
    {
        CloseHandle(stream->ended);
        return host.fail(DSTY_E_DEVICE, "the streaming buffer could not be placed on the device");
    }
    device->streams.push_back(stream.get());
    host.open(stream.get(), DstyKind::Stream);
    *out = stream.release();
    return DSTY_OK;
}

// A play starts the file again: the refills of the play before have ended first.
int dsty_stream_play(dsty_stream* stream)
{
    DstyCall call;
    const int checked = checkStream(stream);
    if (checked != DSTY_OK)
        return checked;
    joinWorker(stream);
    if (!prepare(stream))
        return CDstyHost::instance().fail(DSTY_E_DEVICE, "the streaming buffer could not be made");
    ResetEvent(stream->ended);
    stream->worker = std::thread([stream] {
        while (stream->buffer.waitStreamEvt())
        {
        }
        SetEvent(stream->ended);
    });
    if (stream->buffer.playDSnd2ndBufLargeFileStream())
        return DSTY_OK;
    joinWorker(stream);
    return CDstyHost::instance().fail(DSTY_E_DEVICE, "the stream did not play");
}

int dsty_stream_stop(dsty_stream* stream)
{
    DstyCall call;
    const int checked = checkStream(stream);
    if (checked != DSTY_OK)
        return checked;
    joinWorker(stream);
    return DSTY_OK;
}

int dsty_stream_is_playing(dsty_stream* stream)
{
    DstyCall call;
    const int checked = checkStream(stream);
    if (checked != DSTY_OK)
        return checked;
    return WaitForSingleObject(stream->ended, 0) == WAIT_OBJECT_0 ? 0 : 1;
}

// Waits without the lock, so that other threads' calls (a stop among them) go on meanwhile;
// the event is duplicated, as the handle may be closed during the wait.
int dsty_stream_wait(dsty_stream* stream, unsigned timeout_ms)
{
    HANDLE ended = NULL;
    {
        DstyCall call;
        const int checked = checkStream(stream);
        if (checked != DSTY_OK)
            return checked;
        if (!DuplicateHandle(GetCurrentProcess(), stream->ended, GetCurrentProcess(), &ended, 0, FALSE,
                             DUPLICATE_SAME_ACCESS))
            return CDstyHost::instance().fail(DSTY_E_MEMORY);
    }
    const DWORD dwWoken = WaitForSingleObject(ended, timeout_ms);
    CloseHandle(ended);
    return dwWoken == WAIT_OBJECT_0 ? DSTY_OK : CDstyHost::instance().fail(DSTY_E_TIMEOUT);
}

void dsty_stream_close(dsty_stream* stream)
{
    DstyCall call;
    if (checkStream(stream) == DSTY_OK)
        freeStream(stream);
}
