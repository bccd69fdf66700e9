// stimctl caps: what the default playback device and the default capture device can do.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "SoundSession.h"

#include <cstdio>

namespace
{
const char kUsage[] =
    "usage: stimctl caps\n"
    "Brings up the default playback device and prints its capabilities and speaker\n"
    "configuration, and the format the default capture device records in.";

const char* speakerName(DWORD config)
{
    switch (DSSPEAKER_CONFIG(config))
    {
    case DSSPEAKER_HEADPHONE: return "headphones";
    case DSSPEAKER_MONO: return "mono";
    case DSSPEAKER_QUAD: return "quadraphonic";
    case DSSPEAKER_STEREO: return "stereo";
    case DSSPEAKER_SURROUND: return "surround";
    case DSSPEAKER_5POINT1: return "5.1";
    case DSSPEAKER_7POINT1: return "7.1";
    default: return "other";
    }
}

std::string describe(const tWAVEFORMATEX& wfx)
{
    char text[96];
    std::snprintf(text, sizeof text, "%lu Hz, %u channels, %u bits", (unsigned long)wfx.nSamplesPerSec,
                  wfx.nChannels, wfx.wBitsPerSample);
    return text;
}

void printPlayback(CDirectSndDevicety& device)
{
    DSCAPS caps = {};
    caps.dwSize = sizeof caps;
    device.getDirectSnd()->GetCaps(&caps);
    DWORD minRate = 0, maxRate = 0;
    device.getDSnd2ndBufSmpRat(minRate, maxRate);
    say("playback: flags 0x%lX, secondary rates %lu..%lu Hz, primary buffers %lu", (unsigned long)caps.dwFlags,
        (unsigned long)minRate, (unsigned long)maxRate, (unsigned long)caps.dwPrimaryBuffers);
    const DWORD speakers = device.getSpeakerConfig();
    say("speaker configuration: 0x%lX (%s)", (unsigned long)speakers, speakerName(speakers));
}

bool printCapture()
{
    CDSndCapturetyx capture;
    tWAVEFORMATEX wfx = {};
    if (!capture.getDefaultWFX(&wfx))
        return false;
    say("capture default format: %s", describe(wfx).c_str());
    return true;
}
}

int runCaps(const Words& words)
{
    Arguments args;
    std::string reason;
    if (!splitArguments(words, {}, 0, args, reason))
        return failUsage("caps", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }

    SoundSession session;
    if (!session.open(reason))
        return failRun("caps", reason);
    printPlayback(session.device());
    if (!printCapture())
        return failRun("caps", "the capture device has no usable default format");
    return kExitOk;
}
