// stimctl record: records from the default capture device into a wave file, through the
// library's record/play object.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "Recording.h"
#include "WaveFileIo.h"

namespace
{
const char kUsage[] =
    "usage: stimctl record OUT.wav (--seconds N | --bytes N)\n"
    "Records from the default capture device into OUT.wav, in the device's default format\n"
    "(44100 Hz 16-bit stereo on most devices).\n"
    "  --seconds N  record N seconds, 0.1 to 44\n"
    "  --bytes N    record N bytes, rounded down to whole sample frames, up to 7800000";

const double kMaxSeconds = 44.0;

struct RecordRequest
{
    std::wstring file;
    double seconds = 0.0; // 0: by bytes
    unsigned long bytes = 0;
};

bool readRequest(const Arguments& args, RecordRequest& request, std::string& reason)
{
    if (args.positional.empty())
    {
        reason = "no output file";
        return false;
    }
    request.file = args.positional[0];
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
}

int runRecord(const Words& words)
{
    Arguments args;
    std::string reason;
    RecordRequest request;
    if (!splitArguments(words, {L"--seconds", L"--bytes"}, 1, args, reason))
        return failUsage("record", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }
    if (!readRequest(args, request, reason))
        return failUsage("record", reason);

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
