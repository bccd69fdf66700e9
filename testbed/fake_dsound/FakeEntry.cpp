#include "FakeEntry.h"

#include "FakeCapture.h"
#include "FakeDevice.h"
#include "FakeState.h"

namespace fakeds
{

namespace
{

// A null GUID or a default-device GUID picks the default device, which exists as long as
// any device is listed; any other GUID must be one of the listed devices.
bool isListed(const std::vector<DeviceEntry>& devices, LPCGUID device, const GUID& byDefault,
              const GUID& voiceDefault)
{
    if (devices.empty())
        return false;
    if (!device || *device == byDefault || *device == voiceDefault)
        return true;
    for (const DeviceEntry& entry : devices) {
        if (entry.hasGuid && entry.guid == *device)
            return true;
    }
    return false;
}

template <class Interface, class Device>
HRESULT create(FakeState& state, const char* method, std::vector<CreateRequest>& records,
               bool listed, LPCGUID device, Interface** out, LPUNKNOWN outer)
{
    Entry call(state, method, nullptr, true, args(device, out, outer));
    CreateRequest record{device, device ? *device : GUID{}, S_OK, nullptr};
    if (out)
        *out = nullptr;
    if (call.refused()) {
        record.result = call.refusal();
    } else if (!out) {
        record.result = call.finish(DSERR_INVALIDPARAM);
    } else if (outer) {
        record.result = call.finish(DSERR_NOAGGREGATION);
    } else if (!listed) {
        record.result = call.finish(DSERR_NODRIVER);
    } else {
        Device* made = state.objects.adopt(std::make_unique<Device>(state));
        *out = made;
        record.object = made;
        record.result = call.finish(DS_OK);
    }
    records.push_back(record);
    return record.result;
}

HRESULT enumerate(FakeState& state, const char* method, std::vector<DeviceEntry> Settings::*list,
                  LPDSENUMCALLBACKA callback, LPVOID context)
{
    std::vector<DeviceEntry> devices;
    HRESULT result;
    {
        Entry call(state, method, nullptr, true, args(callback, context));
        if (call.refused())
            return call.refusal();
        if (!callback)
            return call.finish(DSERR_INVALIDPARAM);
        devices = state.settings.*list;
        result = call.finish(DS_OK);
    }
    // Called without the lock held: the callback is the library's and may call back in.
    for (DeviceEntry& entry : devices) {
        if (!callback(entry.hasGuid ? &entry.guid : nullptr, entry.description.c_str(),
                      entry.module.c_str(), context))
            break;
    }
    return result;
}

} // namespace

HRESULT createSound8(FakeState& state, LPCGUID device, LPDIRECTSOUND8* sound, LPUNKNOWN outer)
{
    std::lock_guard<std::recursive_mutex> lock(state.mutex);
    const bool listed = isListed(state.settings.playbackDevices, device, DSDEVID_DefaultPlayback,
                                 DSDEVID_DefaultVoicePlayback);
    return create<IDirectSound8, FakeDevice>(state, "DirectSoundCreate8", state.records.soundCreates,
                                             listed, device, sound, outer);
}

HRESULT createCapture8(FakeState& state, LPCGUID device, LPDIRECTSOUNDCAPTURE8* capture, LPUNKNOWN outer)
{
    std::lock_guard<std::recursive_mutex> lock(state.mutex);
    const bool listed = isListed(state.settings.captureDevices, device, DSDEVID_DefaultCapture,
                                 DSDEVID_DefaultVoiceCapture);
    return create<IDirectSoundCapture, FakeCaptureDevice>(state, "DirectSoundCaptureCreate8",
                                                          state.records.captureCreates, listed,
                                                          device, capture, outer);
}

HRESULT enumerateSound(FakeState& state, LPDSENUMCALLBACKA callback, LPVOID context)
{
    return enumerate(state, "DirectSoundEnumerateA", &Settings::playbackDevices, callback, context);
}

HRESULT enumerateCapture(FakeState& state, LPDSENUMCALLBACKA callback, LPVOID context)
{
    return enumerate(state, "DirectSoundCaptureEnumerateA", &Settings::captureDevices, callback, context);
}

DWORD milliseconds(FakeState& state)
{
    std::lock_guard<std::recursive_mutex> lock(state.mutex);
    return state.clock.read();
}

} // namespace fakeds
