// stimctl train: a train of stimuli placed on the output stream by the scheduler, each onset
// planned to the frame and printed before it plays.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "SoundSession.h"
#include "WaveFileIo.h"

#include <random>

namespace
{
const char kUsage[] =
    "usage: stimctl train FILE.wav --every MS --count N [--jitter MS] [--lead MS]\n"
    "Plays the wave file N times (1 to 100000), onsets MS apart (1 to 600000), each spacing\n"
    "varied at random by up to +-JITTER ms, placed to the frame on a running output stream.\n"
    "Prints each planned onset as a stream frame and in seconds from the first.\n"
    "  --lead MS  how far ahead of the play cursor the stream is written (10 to 5000, default 50)";

const double kPlanAheadSeconds = 1.0; // stimuli are handed to the scheduler this far ahead

struct TrainRequest
{
    std::wstring file;
    double everyMs = 0.0;
    unsigned long count = 0;
    double jitterMs = 0.0;
    unsigned long leadMs = 50;
};

bool readRequest(const Arguments& args, TrainRequest& request, std::string& reason)
{
    if (args.positional.empty() || !args.has(L"--every") || !args.has(L"--count"))
    {
        reason = args.positional.empty() ? "no wave file" : "--every and --count are both needed";
        return false;
    }
    request.file = args.positional[0];
    if (!parseNumber(args.value(L"--every"), "--every", 1.0, 600000.0, request.everyMs, reason) ||
        !parseWhole(args.value(L"--count"), "--count", 1, 100000, request.count, reason))
        return false;
    if (args.has(L"--jitter") &&
        !parseNumber(args.value(L"--jitter"), "--jitter", 0.0, request.everyMs, request.jitterMs, reason))
        return false;
    return !args.has(L"--lead") || parseWhole(args.value(L"--lead"), "--lead", 10, 5000, request.leadMs, reason);
}

// Onsets in frames from the first, spacings drawn around --every.
std::vector<LONGLONG> planOnsets(const TrainRequest& request, unsigned long rate)
{
    std::mt19937 random(std::random_device{}());
    std::uniform_real_distribution<double> jitter(-request.jitterMs, request.jitterMs);
    std::vector<LONGLONG> onsets(1, 0);
    while (onsets.size() < request.count)
    {
        const double spacingMs = request.everyMs + (request.jitterMs > 0.0 ? jitter(random) : 0.0);
        onsets.push_back(onsets.back() + static_cast<LONGLONG>(spacingMs * rate / 1000.0 + 0.5));
    }
    return onsets;
}

int playTrain(const TrainRequest& request, CSndDatatyx& data, CDirectSndDevicety& device)
{
    const tWAVEFORMATEX wfx = data.getAudioWaveDataWfx();
    CDirectSndSchedulety schedule;
    if (!schedule.openSchedule(&device, wfx, request.leadMs))
        return failRun("train", "the output stream could not be started");
    const std::vector<LONGLONG> onsets = planOnsets(request, wfx.nSamplesPerSec);
    const LONGLONG first = schedule.getEarliestFrame() + wfx.nSamplesPerSec / 10;
    const LONGLONG planAhead = static_cast<LONGLONG>(kPlanAheadSeconds * wfx.nSamplesPerSec);
    const LONGLONG end = first + onsets.back() + data.getDataSize() / wfx.nBlockAlign;
    size_t next = 0;
    while (schedule.getPlayFrame() < end)
    {
        for (; next < onsets.size() && first + onsets[next] < schedule.getPlayFrame() + planAhead; next++)
        {
            if (!schedule.scheduleStim(&data, first + onsets[next]))
                return failRun("train", "stimulus " + std::to_string(next + 1) + " came too late to place");
            say("onset %zu: frame %lld, %.6f s", next + 1, static_cast<long long>(first + onsets[next]),
                static_cast<double>(onsets[next]) / wfx.nSamplesPerSec);
        }
        Sleep(20);
    }
    schedule.closeSchedule();
    say("played %lu stimuli", request.count);
    return kExitOk;
}
}

int runTrain(const Words& words)
{
    Arguments args;
    std::string reason;
    TrainRequest request;
    if (!splitArguments(words, {L"--every", L"--count", L"--jitter", L"--lead"}, 1, args, reason))
        return failUsage("train", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }
    if (!readRequest(args, request, reason))
        return failUsage("train", reason);

    CSndDatatyx data;
    if (!readWaveFile(request.file, data, reason))
        return failRun("train", reason);
    if (!isPlayableFormat(data.getAudioWaveDataWfx(), reason))
        return failRun("train", toUtf8(request.file) + ": " + reason);
    SoundSession session;
    if (!session.open(reason))
        return failRun("train", reason);
    return playTrain(request, data, session.device());
}
