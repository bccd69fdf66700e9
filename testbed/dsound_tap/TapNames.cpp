// The names the tap logs, so that a test scripting a misspelt one fails instead of passing
// without scripting anything.

#include "TapState.h"

#include <sstream>

namespace dstap
{

namespace
{

struct InterfaceMethods
{
    const char* interfaceName;
    const char* methods; // separated by blanks
};

constexpr InterfaceMethods kInterfaces[] = {
    {"IDirectSound8", "QueryInterface AddRef Release CreateSoundBuffer GetCaps DuplicateSoundBuffer "
                      "SetCooperativeLevel Compact GetSpeakerConfig SetSpeakerConfig Initialize VerifyCertification"},
    {"IDirectSoundBuffer", "QueryInterface AddRef Release GetCaps GetCurrentPosition GetFormat GetVolume GetPan "
                           "GetFrequency GetStatus Initialize Lock Play SetCurrentPosition SetFormat SetVolume "
                           "SetPan SetFrequency Stop Unlock Restore"},
    {"IDirectSoundBuffer8", "SetFX AcquireResources GetObjectInPath"},
    {"IDirectSound3DBuffer", "QueryInterface AddRef Release GetAllParameters GetConeAngles GetConeOrientation "
                             "GetConeOutsideVolume GetMaxDistance GetMinDistance GetMode GetPosition GetVelocity "
                             "SetAllParameters SetConeAngles SetConeOrientation SetConeOutsideVolume "
                             "SetMaxDistance SetMinDistance SetMode SetPosition SetVelocity"},
    {"IDirectSound3DListener", "QueryInterface AddRef Release GetAllParameters GetDistanceFactor GetDopplerFactor "
                               "GetOrientation GetPosition GetRolloffFactor GetVelocity SetAllParameters "
                               "SetDistanceFactor SetDopplerFactor SetOrientation SetPosition SetRolloffFactor "
                               "SetVelocity CommitDeferredSettings"},
    {"IDirectSoundNotify", "QueryInterface AddRef Release SetNotificationPositions"},
    {"IDirectSoundCapture", "QueryInterface AddRef Release CreateCaptureBuffer GetCaps Initialize"},
    {"IDirectSoundCaptureBuffer", "QueryInterface AddRef Release GetCaps GetCurrentPosition GetFormat GetStatus "
                                  "Initialize Lock Start Stop Unlock"},
    {"IDirectSoundCaptureBuffer8", "GetObjectInPath GetFXStatus"},
};

constexpr const char* kEntryFunctions[] = {"DirectSoundCreate8", "DirectSoundCaptureCreate8",
                                           "DirectSoundEnumerateA", "DirectSoundCaptureEnumerateA"};

bool listed(const std::string& interfaceName, const std::string& method)
{
    for (const InterfaceMethods& entry : kInterfaces) {
        if (interfaceName != entry.interfaceName)
            continue;
        std::istringstream words(entry.methods);
        for (std::string word; words >> word;) {
            if (word == method)
                return true;
        }
    }
    return false;
}

} // namespace

bool isKnownMethod(const std::string& method)
{
    for (const char* entry : kEntryFunctions) {
        if (method == entry)
            return true;
    }
    const size_t separator = method.find("::");
    return separator != std::string::npos && listed(method.substr(0, separator), method.substr(separator + 2));
}

bool isScriptable(const std::string& method)
{
    const auto endsWith = [&method](const std::string& tail) {
        return method.size() >= tail.size() && method.compare(method.size() - tail.size(), tail.size(), tail) == 0;
    };
    return isKnownMethod(method) && !endsWith("::AddRef") && !endsWith("::Release");
}

} // namespace dstap
