// stimctl devices: the playback and capture devices DirectSound offers.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "DirectSndty.h"

#include <memory>

namespace
{
const char kUsage[] =
    "usage: stimctl devices\n"
    "Lists the playback and the capture devices; \"default\" marks the one used when no\n"
    "device is named (the entry without a GUID).";

void list(const char* kind, const CDSndDeviceInfoty& info)
{
    say("%s devices: %d", kind, info.m_nDeviceNumber);
    for (int i = 0; i < info.m_nDeviceNumber; ++i)
    {
        const std::string module = toUtf8((LPCWSTR)info.m_strModule[i]);
        say("  %d %-7s %s%s", i, i == info.m_nPrimaryDevice ? "default" : "",
            toUtf8((LPCWSTR)info.m_strDescription[i]).c_str(), module.empty() ? "" : (" (" + module + ")").c_str());
    }
}
}

int runDevices(const Words& words)
{
    Arguments args;
    std::string reason;
    if (!splitArguments(words, {}, 0, args, reason))
        return failUsage("devices", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }

    CEnumerateDirectSndDevice enumerator;
    std::unique_ptr<CDSndDeviceInfoty> playback(enumerator.getDSndDeviceInfo());
    std::unique_ptr<CDSndDeviceInfoty> capture(enumerator.getDSndDeviceCaptureInfo());
    if (!playback)
        return failRun("devices", "the playback devices could not be listed");
    list("playback", *playback);
    if (!capture)
        return failRun("devices", "the capture devices could not be listed");
    list("capture", *capture);
    return kExitOk;
}
