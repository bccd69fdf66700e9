// stimctl record: records from the default capture device into a wave file, through the
// library's record/play object, or streamed straight to the file for any length.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "Recording.h"
#include "WaveFileIo.h"
#include "SndWaveWriteStreamty.h"

#include <atomic>
#include <thread>

namespace
{
const char kUsage[] =
    "usage: stimctl record OUT.wav (--seconds N | --bytes N)\n"
    "       stimctl record OUT.wav --stream [--seconds N]\n"
    "Records from the default capture device into OUT.wav, in the device's default format\n"
    "(44100 Hz 16-bit stereo on most devices).\n"
    "  --seconds N  record N seconds, 0.1 to 44 (with --stream: any length from 0.1)\n"
    "  --bytes N    record N bytes, rounded down to whole sample frames, up to 7800000\n"
    "  --stream     write to the file while recording, 44100 Hz 16-bit stereo, until\n"
    "               --seconds have passed or Ctrl+C; past 4 GiB the file becomes RF64.\n"
    "               Frames lost while the recording was held up are reported, and the\n"
    "               file holds silence in their place; a file that cannot be written\n"
    "               ends the recording, keeps what was written, and stimctl exits 1";

const double kMaxSeconds = 44.0;

struct RecordRequest
{
    std::wstring file;
    double seconds = 0.0; // 0: by bytes
    unsigned long bytes = 0;
    bool stream = false;
};

bool readRequest(const Arguments& args, RecordRequest& request, std::string& reason)
{
    if (args.positional.empty())
    {
        reason = "no output file";
        return false;
    }
    request.file = args.positional[0];
    request.stream = args.has(L"--stream");
    if (request.stream && args.has(L"--bytes"))
    {
        reason = "--stream cannot be combined with --bytes";
        return false;
    }
    if (request.stream)
        return !args.has(L"--seconds") ||
               parseNumber(args.value(L"--seconds"), "--seconds", 0.1, 1.0e9, request.seconds, reason);
    if (args.has(L"--seconds") == args.has(L"--bytes"))
    {
        reason = "give either --seconds or --bytes";
        return false;
    }
    if (args.has(L"--seconds"))
        return parseNumber(args.value(L"--seconds"), "--seconds", 0.1, kMaxSeconds, request.seconds, reason);
    return parseWhole(args.value(L"--bytes"), "--bytes", 1, kMaxRecordBytes, request.bytes, reason);
}

// The byte count in the format the capture device records in; 0 when it is less than a frame.
unsigned long targetBytes(const RecordRequest& request, const tWAVEFORMATEX& wfx)
{
    const double bytes = request.seconds > 0.0 ? request.seconds * wfx.nAvgBytesPerSec : request.bytes;
    return wholeFrames(bytes, wfx);
}

std::atomic<bool> g_interrupted(false);

// Ctrl+C and Ctrl+Break end a streamed recording as its time would: the file is finished.
BOOL WINAPI onConsoleControl(DWORD dwType)
{
    if (dwType != CTRL_C_EVENT && dwType != CTRL_BREAK_EVENT)
        return FALSE;
    g_interrupted = true;
    return TRUE;
}

// What the recording lost to a stall, and why it ended early if it did; kExitFailed then.
int reportStreamed(const CDSndCapturetyStream& capture, const RecordRequest& request, const tWAVEFORMATEX& wfx)
{
    const ULONGLONG lost = capture.getLostFrames();
    if (lost > 0)
        say("lost %llu frames (%.3f s) while the recording was held up; the file holds silence there", lost,
            static_cast<double>(lost) / wfx.nSamplesPerSec);
    if (capture.getStreamResult() == S_OK)
        return kExitOk;
    return failRun("record", toUtf8(request.file) + ": the recording ended early: " +
                                 toUtf8(describeWaveFileResult(capture.getStreamWriteResult())));
}

// A worker services the capture's positions while this thread keeps time and stops the
// capture, which wakes the worker, writes the tail and finishes the file. A write the file
// refuses ends the recording by itself, and both threads then stop.
int recordStreamed(const RecordRequest& request)
{
    const tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
    CSndWaveWriteStreamty writer;
    if (!writer.Open(CString(request.file.c_str()), const_cast<tWAVEFORMATEX*>(&wfx), TRUE))
        return failRun("record", toUtf8(request.file) + " cannot be opened for writing");
    CDSndCapturetyStream capture;
    capture.m_pSndWaveWriteStream = &writer;
    if (!capture.initCapture2stream(wfx, 2 * wfx.nAvgBytesPerSec) || !capture.startCaptureStream())
        return failRun("record", "the capture device could not be opened");
    SetConsoleCtrlHandler(onConsoleControl, TRUE);
    say("recording %s: %lu Hz, %u channels, %u bits, streamed", toUtf8(request.file).c_str(),
        (unsigned long)wfx.nSamplesPerSec, wfx.nChannels, wfx.wBitsPerSample);

    std::atomic<bool> recording(true);
    std::thread worker([&] {
        while (recording && capture.getStreamResult() == S_OK)
            capture.waitRecordStreamEvt();
    });
    const double start = secondsNow();
    long shown = 0;
    for (double elapsed = 0.0; !g_interrupted && capture.getStreamResult() == S_OK &&
                               (request.seconds <= 0.0 || elapsed < request.seconds);
         elapsed = secondsNow() - start)
    {
        Sleep(20);
        if (static_cast<long>(elapsed) > shown)
            say("recording %ld s", shown = static_cast<long>(elapsed));
    }
    recording = false;
    capture.stopCaptureStream();
    worker.join();
    SetConsoleCtrlHandler(onConsoleControl, FALSE);
    const ULONGLONG bytes = writer.GetDataBytesWritten64();
    say("recorded %.3f s (%llu bytes) to %s", static_cast<double>(bytes) / wfx.nAvgBytesPerSec, bytes,
        toUtf8(request.file).c_str());
    return reportStreamed(capture, request, wfx);
}
}

int runRecord(const Words& words)
{
    Arguments args;
    std::string reason;
    RecordRequest request;
    if (!splitArguments(words, {L"--seconds", L"--bytes"}, 1, args, reason, {L"--stream"}))
        return failUsage("record", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }
    if (!readRequest(args, request, reason))
        return failUsage("record", reason);

    if (request.stream)
        return recordStreamed(request);

    if (!createEmptyWaveFile(request.file, reason))
        return failRun("record", reason);
    CSndDatatyx data;
    CSndDataRecordPlaytyx recorder;
    recorder.setSndData(&data);
    if (!startRecording(recorder, data, reason))
        return failRun("record", reason);

    const tWAVEFORMATEX wfx = data.getAudioWaveDataWfx();
    const unsigned long bytes = targetBytes(request, wfx);
    if (bytes == 0 || bytes > kMaxRecordBytes)
    {
        recorder.recordStop();
        return failUsage("record", bytes == 0 ? "less than one sample frame to record"
                                              : "longer than a recording can hold (7800000 bytes)");
    }
    say("recording %s: %lu Hz, %u channels, %u bits", toUtf8(request.file).c_str(),
        (unsigned long)wfx.nSamplesPerSec, wfx.nChannels, wfx.wBitsPerSample);
    ProgressLine progress("recording", secondsOf(bytes, wfx));
    if (!recordUntil(recorder, data, bytes, progress, reason))
        return failRun("record", reason);
    if (!writeWaveFile(request.file, data, bytes, reason))
        return failRun("record", reason);
    say("recorded %.3f s (%lu bytes) to %s", secondsOf(bytes, wfx), bytes, toUtf8(request.file).c_str());
    return kExitOk;
}
