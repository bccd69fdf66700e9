// stimctl playrec: plays a wave file through one record/play object of the library while
// another records what the default capture device hears, writes the recording, and reports
// the level heard and the delay from the play call to the sound's onset. On a machine whose
// capture device hears the output (a loopback), this measures the library end to end.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "Pcm.h"
#include "Recording.h"
#include "SoundSession.h"
#include "WaveFileIo.h"

namespace
{
const char kUsage[] =
    "usage: stimctl playrec IN.wav OUT.wav [--pad SECONDS]\n"
    "Records from the default capture device while IN.wav plays once through the default\n"
    "device, writes the recording to OUT.wav, and prints the level heard on each channel and\n"
    "the delay from the play call to the sound's onset (as the capture clock counts it).\n"
    "  --pad SECONDS  go on recording this long after the sound's end (0 to 10, default 0.5)";

// Capture runs this long before the sound starts, so that the onset is measured on steady capture.
const double kLeadSeconds = 0.3;
// The onset is the first sample at least this loud.
const double kOnsetDbfs = -40.0;

struct PlayRecRequest
{
    std::wstring input;
    std::wstring output;
    double padSeconds = 0.5;
};

bool readRequest(const Arguments& args, PlayRecRequest& request, std::string& reason)
{
    if (args.positional.size() < 2)
    {
        reason = args.positional.empty() ? "no input and no output file" : "no output file";
        return false;
    }
    request.input = args.positional[0];
    request.output = args.positional[1];
    if (args.has(L"--pad"))
        return parseNumber(args.value(L"--pad"), "--pad", 0.0, 10.0, request.padSeconds, reason);
    return true;
}

// Where the recording starts to hold the sound, and how loud it is there.
bool report(const CSndDatatyx& recorded, unsigned long markBytes, double stimulusSeconds)
{
    const tWAVEFORMATEX wfx = recorded.getAudioWaveDataWfx();
    if (wfx.wBitsPerSample != 16)
    {
        say("level and onset are measured on 16-bit recordings only");
        return true;
    }
    const Frames pcm = {reinterpret_cast<const short*>(recorded.getDataPointer()),
                        recorded.getDataSize() / wfx.nBlockAlign, wfx.nChannels};
    const size_t mark = markBytes / wfx.nBlockAlign;
    // The sound cannot start before the play call; anything louder earlier is someone else's.
    const long long onset = firstLoudFrame(pcm, mark, kOnsetDbfs);
    if (onset < 0)
        return false;
    const size_t span = static_cast<size_t>(stimulusSeconds * wfx.nSamplesPerSec);
    for (unsigned channel = 0; channel < wfx.nChannels; ++channel)
    {
        const Level level = levelOf(pcm, channel, static_cast<size_t>(onset), span);
        say("level %s: peak %.1f dBFS, rms %.1f dBFS", channel == 0 ? "left" : "right", level.peakDbfs,
            level.rmsDbfs);
    }
    const double delayMs = 1000.0 * (static_cast<double>(onset) - static_cast<double>(mark)) / wfx.nSamplesPerSec;
    say("onset: %.1f ms after the play call", delayMs);
    return true;
}
}

int runPlayRec(const Words& words)
{
    Arguments args;
    std::string reason;
    PlayRecRequest request;
    if (!splitArguments(words, {L"--pad"}, 2, args, reason))
        return failUsage("playrec", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }
    if (!readRequest(args, request, reason))
        return failUsage("playrec", reason);

    CSndDatatyx stimulus;
    if (!readWaveFile(request.input, stimulus, reason))
        return failRun("playrec", reason);
    if (!isPlayableFormat(stimulus.getAudioWaveDataWfx(), reason))
        return failRun("playrec", toUtf8(request.input) + ": " + reason);
    const double stimulusSeconds = secondsOf(stimulus.getDataSize(), stimulus.getAudioWaveDataWfx());

    if (!createEmptyWaveFile(request.output, reason))
        return failRun("playrec", reason);
    SoundSession session;
    if (!session.open(reason))
        return failRun("playrec", reason);
    // Two record/play objects: they share the one capture object, so both live to the end.
    CSndDatatyx recorded;
    CSndDataRecordPlaytyx recorder, player;
    recorder.setSndData(&recorded);
    player.setSndData(&stimulus);
    if (!startRecording(recorder, recorded, reason))
        return failRun("playrec", reason);

    recordFor(recorder, kLeadSeconds);
    const unsigned long mark = recorded.getDataSize();
    const tWAVEFORMATEX wfx = recorded.getAudioWaveDataWfx();
    const unsigned long total = mark + wholeFrames((stimulusSeconds + request.padSeconds) * wfx.nAvgBytesPerSec, wfx);
    if (total > kMaxRecordBytes)
    {
        recorder.recordStop();
        return failRun("playrec", toUtf8(request.input) + ": too long to be recorded back (7800000 bytes at most)");
    }
    say("playing %s (%.3f s) while recording %s", toUtf8(request.input).c_str(), stimulusSeconds,
        toUtf8(request.output).c_str());
    if (!player.playBegin(NULL, 0, 0))
    {
        recorder.recordStop();
        return failRun("playrec", "the sound could not be played");
    }
    ProgressLine progress("recording", secondsOf(total, wfx));
    const bool complete = recordUntil(recorder, recorded, total, progress, reason);
    player.playStop();
    if (!complete)
        return failRun("playrec", reason);
    if (!writeWaveFile(request.output, recorded, recorded.getDataSize(), reason))
        return failRun("playrec", reason);
    say("recorded %.3f s to %s", secondsOf(recorded.getDataSize(), wfx), toUtf8(request.output).c_str());
    if (!report(recorded, mark, stimulusSeconds))
        return failRun("playrec", "nothing was heard in the recording");
    return kExitOk;
}
