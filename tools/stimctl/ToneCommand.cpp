// stimctl tone: plays a generated sine tone through the library's record/play object.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "Pcm.h"
#include "SoundSession.h"

namespace
{
const char kUsage[] =
    "usage: stimctl tone HZ SECONDS [--level DBFS]\n"
    "Plays a sine tone of HZ (20 to 20000) for SECONDS (0.01 to 600) on both channels,\n"
    "44100 Hz 16-bit, through the default device.\n"
    "  --level DBFS  peak level, -96 to 0 (default -6)";

struct ToneRequest
{
    double hz = 0.0;
    double seconds = 0.0;
    double dbfs = -6.0;
};

bool readRequest(const Arguments& args, ToneRequest& request, std::string& reason)
{
    if (args.positional.size() < 2)
    {
        reason = args.positional.empty() ? "no frequency and no length" : "no length in seconds";
        return false;
    }
    if (!parseNumber(args.positional[0], "HZ", 20.0, 20000.0, request.hz, reason) ||
        !parseNumber(args.positional[1], "SECONDS", 0.01, 600.0, request.seconds, reason))
        return false;
    if (args.has(L"--level"))
        return parseNumber(args.value(L"--level"), "--level", -96.0, 0.0, request.dbfs, reason);
    return true;
}
}

int runTone(const Words& words)
{
    Arguments args;
    std::string reason;
    ToneRequest request;
    if (!splitArguments(words, {L"--level"}, 2, args, reason))
        return failUsage("tone", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }
    if (!readRequest(args, request, reason))
        return failUsage("tone", reason);

    const std::vector<short> pcm = stereoTone(request.hz, request.seconds, request.dbfs);
    CSndDatatyx data;
    if (!data.setNewSndData(reinterpret_cast<const char*>(pcm.data()),
                            static_cast<unsigned long>(pcm.size() * sizeof(short)), stereo16Format(kToneRate)))
        return failRun("tone", "the tone could not be held");

    SoundSession session;
    if (!session.open(reason))
        return failRun("tone", reason);
    CSndDataRecordPlaytyx player;
    player.setSndData(&data);
    say("tone %g Hz at %g dBFS for %g s", request.hz, request.dbfs, request.seconds);
    if (!player.playBegin(NULL, 0, 0))
        return failRun("tone", "the tone could not be played");
    waitShowingProgress("playing", request.seconds);
    player.playStop();
    say("played");
    return kExitOk;
}
