#include "DSoundTap.h"

#include "TapObject.h"
#include "TapSeam.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace dstap
{

namespace
{

void requireScriptable(const std::string& method)
{
    if (!isScriptable(method))
        throw std::invalid_argument("no scriptable DirectSound call is named " + method);
}

template <class T>
T leading(const std::vector<BYTE>& data, size_t offset = 0)
{
    T value{};
    if (data.size() >= offset + sizeof(T))
        std::memcpy(&value, data.data() + offset, sizeof(T));
    return value;
}

// CreateSoundBuffer and CreateCaptureBuffer log the description, then the format if any.
template <class Request, class Desc>
std::vector<Request> creations(const std::vector<Call>& calls, const std::string& method)
{
    std::vector<Request> requests;
    for (const Call& call : calls) {
        if (call.method != method)
            continue;
        Request request{};
        request.device = call.object;
        request.desc = leading<Desc>(call.data);
        request.hasFormat = call.data.size() >= sizeof(Desc) + sizeof(PCMWAVEFORMAT);
        request.format = leading<WAVEFORMATEX>(call.data, sizeof(Desc));
        request.result = call.result;
        requests.push_back(request);
    }
    return requests;
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
    requireScriptable(method);
    state_->script(method, std::nullopt, hr);
}

void DSoundTap::failNth(const std::string& method, int nth, HRESULT hr)
{
    requireScriptable(method);
    state_->script(method, nth, hr);
}

void DSoundTap::failNext(const std::string& method, HRESULT hr)
{
    failNth(method, state_->seen(method) + 1, hr);
}

void DSoundTap::answer(const std::string& method, Answer answer)
{
    requireScriptable(method);
    state_->answer(method, std::move(answer));
}

void DSoundTap::clearScript()
{
    state_->clearScript();
}

std::vector<Call> DSoundTap::calls() const
{
    return state_->calls();
}

std::vector<Call> DSoundTap::callsTo(const std::string& method) const
{
    std::vector<Call> matching;
    for (const Call& call : calls()) {
        if (call.method == method)
            matching.push_back(call);
    }
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
    state_->clearLog();
}

std::vector<BufferRequest> DSoundTap::bufferRequests() const
{
    return creations<BufferRequest, DSBUFFERDESC>(calls(), "IDirectSound8::CreateSoundBuffer");
}

std::vector<CaptureBufferRequest> DSoundTap::captureBufferRequests() const
{
    return creations<CaptureBufferRequest, DSCBUFFERDESC>(calls(), "IDirectSoundCapture::CreateCaptureBuffer");
}

std::vector<NotificationSet> DSoundTap::notificationSets() const
{
    std::vector<NotificationSet> sets;
    for (const Call& call : callsTo("IDirectSoundNotify::SetNotificationPositions")) {
        const TapObject* notify = state_->find(call.object);
        const auto* positions = reinterpret_cast<const DSBPOSITIONNOTIFY*>(call.data.data());
        sets.push_back({call.object, notify ? notify->parent() : nullptr,
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
    state_->setDevices(false, std::move(devices));
}

void DSoundTap::setCaptureDevices(std::vector<DeviceEntry> devices)
{
    state_->setDevices(true, std::move(devices));
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
    std::vector<BYTE> copy;
    if (std::string(tap->interfaceName()) == "IDirectSoundCaptureBuffer") {
        auto* real = static_cast<IDirectSoundCaptureBuffer*>(tap->realUnknown());
        DSCBCAPS caps{};
        caps.dwSize = sizeof caps;
        if (FAILED(real->GetCaps(&caps)) || FAILED(real->Lock(0, caps.dwBufferBytes, &first, &bytes, nullptr, nullptr, 0)))
            throw std::logic_error("the capture buffer cannot be read");
        copy.assign(static_cast<BYTE*>(first), static_cast<BYTE*>(first) + bytes);
        real->Unlock(first, bytes, nullptr, 0);
        return copy;
    }
    auto* real = static_cast<IDirectSoundBuffer*>(tap->realUnknown());
    if (FAILED(real->Lock(0, 0, &first, &bytes, nullptr, nullptr, DSBLOCK_ENTIREBUFFER)))
        throw std::logic_error("the buffer cannot be read");
    copy.assign(static_cast<BYTE*>(first), static_cast<BYTE*>(first) + bytes);
    real->Unlock(first, bytes, nullptr, 0);
    return copy;
}

void DSoundTap::setClock(DWORD ms)
{
    state_->setClock(ms);
}

void DSoundTap::advanceClock(DWORD ms)
{
    state_->advanceClock(ms);
}

void DSoundTap::setClockStep(DWORD ms)
{
    state_->setClock(state_->clock(), ms);
}

DWORD DSoundTap::clock() const
{
    return state_->clock();
}

int DSoundTap::liveObjects() const
{
    const auto objects = state_->objects();
    return static_cast<int>(
        std::count_if(objects.begin(), objects.end(), [](const TapObject* object) { return object->count() > 0; }));
}

std::string DSoundTap::leakReport() const
{
    std::ostringstream report;
    for (TapObject* object : state_->objects()) {
        if (object->count() > 0)
            report << object->interfaceName() << " at " << object->self() << " held " << object->count() << "\n";
    }
    for (const std::string& fault : state_->faults())
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
    const auto faults = state_->faults();
    return static_cast<int>(std::count_if(faults.begin(), faults.end(), [](const std::string& fault) {
        return fault.rfind("Release past zero", 0) == 0;
    }));
}

int DSoundTap::deadObjectCalls() const
{
    const auto faults = state_->faults();
    return static_cast<int>(std::count_if(faults.begin(), faults.end(), [](const std::string& fault) {
        return fault.rfind("call through released", 0) == 0;
    }));
}

int DSoundTap::openNotificationHandles() const
{
    return state_->openEvents();
}

} // namespace dstap
