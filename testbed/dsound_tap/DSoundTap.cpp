#include "DSoundTap.h"

#include "TapObject.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace dstap
{

namespace
{

template <class T>
T leading(const std::vector<BYTE>& data, size_t offset = 0)
{
    T value{};
    if (data.size() >= offset + sizeof(T))
        std::memcpy(&value, data.data() + offset, sizeof(T));
    return value;
}

// CreateSoundBuffer and CreateCaptureBuffer log the description, then the format if any.
template <class Desc>
std::vector<CreationRequest<Desc>> creations(const std::vector<Call>& calls)
{
    std::vector<CreationRequest<Desc>> requests;
    for (const Call& call : calls) {
        const bool hasFormat = call.data.size() >= sizeof(Desc) + sizeof(PCMWAVEFORMAT);
        requests.push_back({call.object, leading<Desc>(call.data), hasFormat,
                            leading<WAVEFORMATEX>(call.data, sizeof(Desc)), call.result});
    }
    return requests;
}

// A test's names are checked: scripting a misspelt one would script nothing.
void changeScript(TapState& state, const std::string& method, const std::function<void(Script&)>& change)
{
    if (!isScriptable(method))
        throw std::invalid_argument("no scriptable DirectSound call is named " + method);
    std::lock_guard<std::mutex> lock(state.mutex);
    change(state.scripts[method]);
}

int faultsStartingWith(const TapState& state, const std::string& start)
{
    std::lock_guard<std::mutex> lock(state.mutex);
    return static_cast<int>(std::count_if(state.faults.begin(), state.faults.end(),
                                          [&](const std::string& fault) { return fault.rfind(start, 0) == 0; }));
}

} // namespace

DSoundTap::DSoundTap() : state_(std::make_shared<TapState>())
{
    install(state_);
}

DSoundTap::~DSoundTap()
{
    uninstall();
    state_->retire();
}

void DSoundTap::failAlways(const std::string& method, HRESULT hr)
{
    changeScript(*state_, method, [&](Script& script) { script.always = hr; });
}

void DSoundTap::failNth(const std::string& method, int nth, HRESULT hr)
{
    changeScript(*state_, method, [&](Script& script) { script.nth[nth] = hr; });
}

void DSoundTap::failNext(const std::string& method, HRESULT hr)
{
    changeScript(*state_, method, [&](Script& script) { script.nth[script.seen + 1] = hr; });
}

void DSoundTap::answer(const std::string& method, Answer answer)
{
    changeScript(*state_, method, [&](Script& script) { script.answer = std::move(answer); });
}

void DSoundTap::clearScript()
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    for (auto& [method, script] : state_->scripts)
        script = Script{{}, {}, {}, script.seen};
}

std::vector<Call> DSoundTap::calls() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    return state_->log;
}

std::vector<Call> DSoundTap::callsTo(const std::string& method) const
{
    std::vector<Call> matching = calls();
    const auto other = [&](const Call& call) { return call.method != method; };
    matching.erase(std::remove_if(matching.begin(), matching.end(), other), matching.end());
    return matching;
}

int DSoundTap::count(const std::string& method) const
{
    return static_cast<int>(callsTo(method).size());
}

int DSoundTap::count(const std::string& method, const void* object) const
{
    const std::vector<Call> matching = callsTo(method);
    return static_cast<int>(
        std::count_if(matching.begin(), matching.end(), [object](const Call& call) { return call.object == object; }));
}

void DSoundTap::clearLog()
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->logBase += state_->log.size();
    state_->log.clear();
}

std::vector<BufferRequest> DSoundTap::bufferRequests() const
{
    return creations<DSBUFFERDESC>(callsTo("IDirectSound8::CreateSoundBuffer"));
}

std::vector<CaptureBufferRequest> DSoundTap::captureBufferRequests() const
{
    return creations<DSCBUFFERDESC>(callsTo("IDirectSoundCapture::CreateCaptureBuffer"));
}

std::vector<NotificationSet> DSoundTap::notificationSets() const
{
    std::vector<NotificationSet> sets;
    for (const Call& call : callsTo("IDirectSoundNotify::SetNotificationPositions")) {
        const auto* positions = reinterpret_cast<const DSBPOSITIONNOTIFY*>(call.data.data());
        sets.push_back({call.object,
                        std::vector<DSBPOSITIONNOTIFY>(positions, positions + call.data.size() / sizeof *positions),
                        call.result});
    }
    return sets;
}

std::vector<Buffer3DSet> DSoundTap::buffer3DSets() const
{
    std::vector<Buffer3DSet> sets;
    for (const Call& call : callsTo("IDirectSound3DBuffer::SetAllParameters"))
        sets.push_back({call.object, leading<DS3DBUFFER>(call.data), static_cast<DWORD>(call.args.at(1)), call.result});
    return sets;
}

void DSoundTap::setPlaybackDevices(std::vector<DeviceEntry> devices)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->playbackDevices = std::move(devices);
}

void DSoundTap::setCaptureDevices(std::vector<DeviceEntry> devices)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->captureDevices = std::move(devices);
}

IUnknown* DSoundTap::real(const void* tapped) const
{
    const TapObject* tap = state_->find(tapped);
    return tap ? tap->realUnknown() : nullptr;
}

std::vector<BYTE> DSoundTap::contents(const void* buffer) const
{
    const TapObject* tap = state_->find(buffer);
    if (!tap)
        throw std::invalid_argument("not a buffer the tap handed out");
    void* first = nullptr;
    DWORD bytes = 0;
    HRESULT hr;
    const auto unlock = [&](auto* real) {
        std::vector<BYTE> copy(static_cast<BYTE*>(first), static_cast<BYTE*>(first) + bytes);
        real->Unlock(first, bytes, nullptr, 0);
        return copy;
    };
    if (std::string(tap->interfaceName()) == "IDirectSoundCaptureBuffer") {
        auto* real = static_cast<IDirectSoundCaptureBuffer*>(tap->realUnknown());
        DSCBCAPS caps{};
        caps.dwSize = sizeof caps;
        hr = real->GetCaps(&caps);
        if (SUCCEEDED(hr))
            hr = real->Lock(0, caps.dwBufferBytes, &first, &bytes, nullptr, nullptr, 0);
        if (FAILED(hr))
            throw std::logic_error("the capture buffer cannot be read");
        return unlock(real);
    }
    auto* real = static_cast<IDirectSoundBuffer*>(tap->realUnknown());
    if (FAILED(real->Lock(0, 0, &first, &bytes, nullptr, nullptr, DSBLOCK_ENTIREBUFFER)))
        throw std::logic_error("the buffer cannot be read");
    return unlock(real);
}

void DSoundTap::setClock(DWORD ms)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->clock = ms;
}

void DSoundTap::setClockStep(DWORD ms)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->clockStep = ms;
}

int DSoundTap::liveObjects() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    const auto& objects = state_->objects;
    return static_cast<int>(
        std::count_if(objects.begin(), objects.end(), [](const TapObject* object) { return object->count() > 0; }));
}

std::string DSoundTap::leakReport() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    std::ostringstream report;
    for (TapObject* object : state_->objects) {
        if (object->count() > 0)
            report << object->interfaceName() << " at " << object->self() << " held " << object->count() << "\n";
    }
    for (const std::string& fault : state_->faults)
        report << fault << "\n";
    return report.str();
}

LONG DSoundTap::refCount(const void* tapped) const
{
    const TapObject* tap = state_->find(tapped);
    return tap ? tap->count() : -1;
}

int DSoundTap::overReleases() const
{
    return faultsStartingWith(*state_, "Release past zero");
}

int DSoundTap::deadObjectCalls() const
{
    return faultsStartingWith(*state_, "call through released");
}

int DSoundTap::openNotificationHandles() const
{
    return state_->openEvents();
}

} // namespace dstap
