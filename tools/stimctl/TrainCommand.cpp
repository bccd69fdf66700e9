// stimctl train: a train of stimuli placed on the output stream by the scheduler, each onset
// planned to the frame and printed before it plays; any stimulus the platform got too late is
// named at the end, and the run then fails.

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
    "Prints the platform's write-ahead and the lead in effect, then each planned onset as a\n"
    "stream frame and in seconds from the first; exits 1 when a stimulus was late (cut or lost).\n"
    "  --lead MS  how far beyond the platform's write cursor the stream is written\n"
    "             (10 to 5000, default 50)";

const double kPlanAheadSeconds = 1.0; // stimuli are handed to the scheduler this far ahead
const double kPlayOutSeconds = 0.2;   // the stream runs on this long after the last stimulus

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

double framesToMs(LONGLONG frames, unsigned long rate)
{
    return 1000.0 * static_cast<double>(frames) / rate;
}

void sayLatency(CDirectSndSchedulety& schedule, unsigned long rate)
{
    const DWORD ahead = schedule.getWriteAheadFrames();
    const DWORD lead = schedule.getEffectiveLeadFrames();
    say("write-ahead %lu frames (%.1f ms), lead in effect %lu frames (%.1f ms) ahead of the play cursor",
        static_cast<unsigned long>(ahead), framesToMs(ahead, rate), static_cast<unsigned long>(lead),
        framesToMs(lead, rate));
}

// Names every stimulus not written whole and on time, and the frames skipped, which may have
// fallen between stimuli; kExitFailed when a stimulus was late.
int reportLateness(CDirectSndSchedulety& schedule, const std::vector<int>& ids, unsigned long rate)
{
    for (size_t k = 0; k < ids.size(); k++)
    {
        if (schedule.getStimState(ids[k]) != CDirectSndSchedulety::kStimOnTime)
            say("stimulus %zu was late: cut or lost", k + 1);
    }
    const LONGLONG skipped = schedule.getSkippedFrames();
    if (skipped > 0)
        say("%lld frames (%.1f ms) of the stream were not written in time", static_cast<long long>(skipped),
            framesToMs(skipped, rate));
    const int late = schedule.getLateStimCount();
    if (late == 0)
        return kExitOk;
    return failRun("train", std::to_string(late) + " of " + std::to_string(ids.size()) + " stimuli late");
}

int playTrain(const TrainRequest& request, CSndDatatyx& data, CDirectSndDevicety& device)
{
    const tWAVEFORMATEX wfx = data.getAudioWaveDataWfx();
    CDirectSndSchedulety schedule;
    if (!schedule.openSchedule(&device, wfx, request.leadMs))
    {
        if (schedule.getLastResult() == DSERR_UNSUPPORTED)
            return failRun("train", "the platform writes too far ahead to keep a lead of " +
                                        std::to_string(request.leadMs) + " ms");
        return failRun("train", "the output stream could not be started");
    }
    sayLatency(schedule, wfx.nSamplesPerSec);
    const std::vector<LONGLONG> onsets = planOnsets(request, wfx.nSamplesPerSec);
    std::vector<int> ids;
    const LONGLONG first = schedule.getEarliestFrame() + wfx.nSamplesPerSec / 10;
    const LONGLONG planAhead = static_cast<LONGLONG>(kPlanAheadSeconds * wfx.nSamplesPerSec);
    // The play cursor tells what has been mixed; the platform's buffers still hold some of it,
    // and the device goes when the program ends, so silence runs on for a while.
    const LONGLONG end = first + onsets.back() + data.getDataSize() / wfx.nBlockAlign +
                         static_cast<LONGLONG>(kPlayOutSeconds * wfx.nSamplesPerSec);
    size_t next = 0;
    while (schedule.getPlayFrame() < end)
    {
        for (; next < onsets.size() && first + onsets[next] < schedule.getPlayFrame() + planAhead; next++)
        {
            const int id = schedule.scheduleStim(&data, first + onsets[next]);
            if (id == 0)
                return failRun("train", "stimulus " + std::to_string(next + 1) + " came too late to place");
            ids.push_back(id);
            say("onset %zu: frame %lld, %.6f s", next + 1, static_cast<long long>(first + onsets[next]),
                static_cast<double>(onsets[next]) / wfx.nSamplesPerSec);
        }
        Sleep(20);
    }
    const int result = reportLateness(schedule, ids, wfx.nSamplesPerSec);
    schedule.closeSchedule();
    say("played %lu stimuli", request.count);
    return result;
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
