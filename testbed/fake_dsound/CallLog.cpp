#include "CallLog.h"

#include <algorithm>
#include <set>

namespace fakeds
{

LONG Call::argLong(size_t index) const
{
    return static_cast<LONG>(args.at(index));
}

float Call::argFloat(size_t index) const
{
    const auto bits = static_cast<std::uint32_t>(args.at(index));
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

size_t CallLog::append(Call call)
{
    calls_.push_back(std::move(call));
    return calls_.size() - 1;
}

void CallLog::setResult(size_t index, HRESULT result)
{
    if (index < calls_.size())
        calls_[index].result = result;
}

void CallLog::clear()
{
    calls_.clear();
}

std::vector<Call> CallLog::callsTo(const std::string& method) const
{
    std::vector<Call> found;
    std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(found),
                 [&](const Call& c) { return c.method == method; });
    return found;
}

int CallLog::count(const std::string& method) const
{
    return static_cast<int>(std::count_if(calls_.begin(), calls_.end(),
                                          [&](const Call& c) { return c.method == method; }));
}

int CallLog::count(const std::string& method, const void* object) const
{
    return static_cast<int>(std::count_if(calls_.begin(), calls_.end(), [&](const Call& c) {
        return c.method == method && c.object == object;
    }));
}

namespace
{

void addMethods(std::set<std::string>& names, const std::string& iface,
                std::initializer_list<const char*> methods)
{
    for (const char* method : methods)
        names.insert(iface + "::" + method);
}

const std::set<std::string>& knownMethods()
{
    static const std::set<std::string> names = [] {
        std::set<std::string> n{"DirectSoundCreate8", "DirectSoundCaptureCreate8",
                                "DirectSoundEnumerateA", "DirectSoundCaptureEnumerateA"};
        addMethods(n, "IDirectSound8",
                   {"QueryInterface", "AddRef", "Release", "CreateSoundBuffer", "GetCaps",
                    "DuplicateSoundBuffer", "SetCooperativeLevel", "Compact", "GetSpeakerConfig",
                    "SetSpeakerConfig", "Initialize", "VerifyCertification"});
        addMethods(n, "IDirectSoundBuffer",
                   {"QueryInterface", "AddRef", "Release", "GetCaps", "GetCurrentPosition",
                    "GetFormat", "GetVolume", "GetPan", "GetFrequency", "GetStatus", "Initialize",
                    "Lock", "Play", "SetCurrentPosition", "SetFormat", "SetVolume", "SetPan",
                    "SetFrequency", "Stop", "Unlock", "Restore"});
        addMethods(n, "IDirectSoundBuffer8", {"SetFX", "AcquireResources", "GetObjectInPath"});
        addMethods(n, "IDirectSound3DBuffer",
                   {"AddRef", "Release", "GetAllParameters", "GetConeAngles",
                    "GetConeOrientation", "GetConeOutsideVolume", "GetMaxDistance",
                    "GetMinDistance", "GetMode", "GetPosition", "GetVelocity", "SetAllParameters",
                    "SetConeAngles", "SetConeOrientation", "SetConeOutsideVolume",
                    "SetMaxDistance", "SetMinDistance", "SetMode", "SetPosition", "SetVelocity"});
        addMethods(n, "IDirectSound3DListener",
                   {"AddRef", "Release", "GetAllParameters", "GetDistanceFactor",
                    "GetDopplerFactor", "GetOrientation", "GetPosition", "GetRolloffFactor",
                    "GetVelocity", "SetAllParameters", "SetDistanceFactor", "SetDopplerFactor",
                    "SetOrientation", "SetPosition", "SetRolloffFactor", "SetVelocity",
                    "CommitDeferredSettings"});
        addMethods(n, "IDirectSoundNotify", {"AddRef", "Release", "SetNotificationPositions"});
        addMethods(n, "IDirectSoundCapture",
                   {"QueryInterface", "AddRef", "Release", "CreateCaptureBuffer", "GetCaps",
                    "Initialize"});
        addMethods(n, "IDirectSoundCaptureBuffer",
                   {"QueryInterface", "AddRef", "Release", "GetCaps", "GetCurrentPosition",
                    "GetFormat", "GetStatus", "Initialize", "Lock", "Start", "Stop", "Unlock"});
        addMethods(n, "IDirectSoundCaptureBuffer8", {"GetObjectInPath", "GetFXStatus"});
        return n;
    }();
    return names;
}

bool endsWith(const std::string& text, const std::string& tail)
{
    return text.size() >= tail.size() &&
           text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

} // namespace

bool isKnownMethod(const std::string& method)
{
    return knownMethods().count(method) != 0;
}

bool isScriptable(const std::string& method)
{
    return isKnownMethod(method) && !endsWith(method, "::AddRef") &&
           !endsWith(method, "::Release");
}

} // namespace fakeds
