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
    {"IDirectSound8", "QueryInterface CreateSoundBuffer GetCaps DuplicateSoundBuffer SetCooperativeLevel Compact "
                      "GetSpeakerConfig SetSpeakerConfig Initialize VerifyCertification"},
    {"IDirectSoundBuffer", "QueryInterface GetCaps GetCurrentPosition GetFormat GetVolume GetPan GetFrequency "
                           "GetStatus Initialize Lock Play SetCurrentPosition SetFormat SetVolume SetPan "
                           "SetFrequency Stop Unlock Restore"},
    {"IDirectSoundBuffer8", "SetFX AcquireResources GetObjectInPath"},
    {"IDirectSound3DBuffer", "QueryInterface GetAllParameters GetConeAngles GetConeOrientation GetConeOutsideVolume "
                             "GetMaxDistance GetMinDistance GetMode GetPosition GetVelocity SetAllParameters "
                             "SetConeAngles SetConeOrientation SetConeOutsideVolume SetMaxDistance SetMinDistance "
                             "SetMode SetPosition SetVelocity"},
    {"IDirectSound3DListener", "QueryInterface GetAllParameters GetDistanceFactor GetDopplerFactor GetOrientation "
                               "GetPosition GetRolloffFactor GetVelocity SetAllParameters SetDistanceFactor "
                               "SetDopplerFactor SetOrientation SetPosition SetRolloffFactor SetVelocity "
                               "CommitDeferredSettings"},
    {"IDirectSoundNotify", "QueryInterface SetNotificationPositions"},
    {"IDirectSoundCapture", "QueryInterface CreateCaptureBuffer GetCaps Initialize"},
    {"IDirectSoundCaptureBuffer", "QueryInterface GetCaps GetCurrentPosition GetFormat GetStatus Initialize Lock "
                                  "Start Stop Unlock"},
    {"IDirectSoundCaptureBuffer8", "GetObjectInPath GetFXStatus"},
    // The entry functions go by their own names.
    {"", "DirectSoundCreate8 DirectSoundCaptureCreate8 DirectSoundEnumerateA DirectSoundCaptureEnumerateA"},
};

} // namespace

bool isScriptable(const std::string& method)
{
    const size_t separator = method.find("::");
    const std::string interfaceName = separator == std::string::npos ? "" : method.substr(0, separator);
    const std::string name = separator == std::string::npos ? method : method.substr(separator + 2);
    for (const InterfaceMethods& entry : kInterfaces) {
        if (interfaceName != entry.interfaceName)
            continue;
        std::istringstream words(entry.methods);
        for (std::string word; words >> word;) {
            if (word == name)
                return true;
        }
    }
    return false;
}

} // namespace dstap
