#pragma once
// Everything one simulated sound card knows during a test: its settings, the call log and
// script, the structured records, the objects made, the clock and the faults seen.
// Shared by the test's FakeDirectSound and every object it hands out; all access happens
// under `mutex`.

#include "CallLog.h"
#include "CallScript.h"
#include "FakeObject.h"
#include "FakeRecords.h"
#include "NotifyHandles.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace fakeds
{

struct DeviceEntry
{
    bool hasGuid; // false: offered without a GUID, as the default device is
    GUID guid;
    std::string description;
    std::string module;
};

// Device properties a test may change before (or while) the library runs.
// Defaults are those of Wine's DirectSound on a PulseAudio null sink.
struct Settings
{
    Settings();

    DSCAPS caps;
    DSCCAPS captureCaps;
    DWORD speakerConfig;
    WAVEFORMATEX primaryFormat;
    DWORD primaryStatus;
    std::vector<DeviceEntry> playbackDevices;
    std::vector<DeviceEntry> captureDevices;
    DWORD writeLead = 0;   // write cursor ahead of the play cursor while playing
    DWORD captureLead = 0; // capture position ahead of the read position while capturing
    bool strictNotifyOffsets = true;
};

struct Records
{
    std::vector<CreateRequest> soundCreates;
    std::vector<CreateRequest> captureCreates;
    std::vector<BufferRequest> bufferRequests;
    std::vector<FormatRequest> formatRequests;
    std::vector<Buffer3DSet> buffer3DSets;
    std::vector<ListenerSet> listenerSets;
    std::vector<NotificationSet> notificationSets;
    std::vector<CaptureBufferRequest> captureBufferRequests;
    std::vector<Signal> signals;
};

struct Clock
{
    DWORD now = 0;
    DWORD step = 0;

    DWORD read()
    {
        const DWORD value = now;
        now += step;
        return value;
    }
};

class FakeState
{
public:
    std::recursive_mutex mutex;
    CallLog log;
    CallScript script;
    Settings settings;
    Records records;
    NotifyHandles handles;
    ObjectRegistry objects;
    Clock clock;
    int overReleases = 0;
    int deadCalls = 0;
    bool detached = false; // the test has ended; objects left over no longer signal events
};

// Hands out the tear-off interface kept in `slot` (a 3D, listener or notify interface), making a
// new object when there is none yet or the last one was released.
template <class TearOff, class Interface, class Owner>
HRESULT handOut(FakeState& state, TearOff*& slot, void** out, Owner& owner)
{
    if (slot && slot->alive())
        slot->grab();
    else
        slot = state.objects.adopt(std::make_unique<TearOff>(state, owner));
    *out = static_cast<Interface*>(slot);
    return S_OK;
}

} // namespace fakeds
