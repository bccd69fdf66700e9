#include "FakeDirectSound.h"

#include "FakeBuffer.h"
#include "FakeCapture.h"
#include "FakeDevice.h"
#include "FakeEntry.h"
#include "FakeState.h"

#include <sstream>
#include <stdexcept>

namespace fakeds
{

namespace
{

using Lock = std::lock_guard<std::recursive_mutex>;

// The buffer behind `object` (the buffer itself or one of its tear-off interfaces).
template <class Buffer>
Buffer& resolve(FakeState& state, IUnknown* object, const char* what)
{
    FakeObject* found = object ? state.objects.find(object) : nullptr;
    Buffer* buffer = found ? dynamic_cast<Buffer*>(&found->owner()) : nullptr;
    if (!buffer)
        throw std::invalid_argument(std::string("not a ") + what + " of this FakeDirectSound");
    return *buffer;
}

template <class Record>
std::vector<Record> copyLocked(FakeState& state, const std::vector<Record>& records)
{
    Lock lock(state.mutex);
    return records;
}

std::vector<BYTE> copyOf(const std::shared_ptr<BufferMemory>& memory)
{
    if (!memory)
        throw std::logic_error("the buffer has been destroyed");
    return memory->copy();
}

// Objects still held when a test ends keep their state alive for the rest of the process, so
// a late Release by the library (a static, a stray thread) lands somewhere harmless.
void keepForever(std::shared_ptr<FakeState> state)
{
    static std::mutex mutex;
    static auto* kept = new std::vector<std::shared_ptr<FakeState>>();
    std::lock_guard<std::mutex> lock(mutex);
    kept->push_back(std::move(state));
}

DeviceEntry entry(const GUID* guid, std::string description, std::string module)
{
    return DeviceEntry{guid != nullptr, guid ? *guid : GUID{}, std::move(description), std::move(module)};
}

} // namespace

FakeDirectSound::FakeDirectSound() : state_(std::make_shared<FakeState>())
{
    install(state_);
}

FakeDirectSound::~FakeDirectSound()
{
    uninstall();
    Lock lock(state_->mutex);
    state_->detached = true;
    state_->handles.closeWitnesses();
    if (state_->objects.live() > 0)
        keepForever(state_);
}

// ---- Scripted results ----------------------------------------------------------------------

void FakeDirectSound::failAlways(const std::string& method, HRESULT hr)
{
    Lock lock(state_->mutex);
    state_->script.failAlways(method, hr);
}

void FakeDirectSound::failNth(const std::string& method, int nth, HRESULT hr)
{
    Lock lock(state_->mutex);
    state_->script.failNth(method, nth, hr);
}

void FakeDirectSound::clearScript()
{
    Lock lock(state_->mutex);
    state_->script.clear();
}

// ---- Call log ------------------------------------------------------------------------------

const std::vector<Call>& FakeDirectSound::calls() const
{
    return state_->log.calls();
}

std::vector<Call> FakeDirectSound::callsTo(const std::string& method) const
{
    Lock lock(state_->mutex);
    return state_->log.callsTo(method);
}

int FakeDirectSound::count(const std::string& method) const
{
    Lock lock(state_->mutex);
    return state_->log.count(method);
}

int FakeDirectSound::count(const std::string& method, const void* object) const
{
    Lock lock(state_->mutex);
    return state_->log.count(method, object);
}

void FakeDirectSound::clearLog()
{
    Lock lock(state_->mutex);
    state_->log.clear();
}

// ---- Copies of structured arguments ----------------------------------------------------------

std::vector<CreateRequest> FakeDirectSound::soundCreates() const
{
    return copyLocked(*state_, state_->records.soundCreates);
}

std::vector<CreateRequest> FakeDirectSound::captureCreates() const
{
    return copyLocked(*state_, state_->records.captureCreates);
}

std::vector<BufferRequest> FakeDirectSound::bufferRequests() const
{
    return copyLocked(*state_, state_->records.bufferRequests);
}

std::vector<FormatRequest> FakeDirectSound::formatRequests() const
{
    return copyLocked(*state_, state_->records.formatRequests);
}

std::vector<Buffer3DSet> FakeDirectSound::buffer3DSets() const
{
    return copyLocked(*state_, state_->records.buffer3DSets);
}

std::vector<ListenerSet> FakeDirectSound::listenerSets() const
{
    return copyLocked(*state_, state_->records.listenerSets);
}

std::vector<NotificationSet> FakeDirectSound::notificationSets() const
{
    return copyLocked(*state_, state_->records.notificationSets);
}

std::vector<CaptureBufferRequest> FakeDirectSound::captureBufferRequests() const
{
    return copyLocked(*state_, state_->records.captureBufferRequests);
}

std::vector<Signal> FakeDirectSound::signals() const
{
    return copyLocked(*state_, state_->records.signals);
}

// ---- Device settings -----------------------------------------------------------------------

DSCAPS& FakeDirectSound::caps()
{
    return state_->settings.caps;
}

DSCCAPS& FakeDirectSound::captureCaps()
{
    return state_->settings.captureCaps;
}

WAVEFORMATEX& FakeDirectSound::primaryFormat()
{
    return state_->settings.primaryFormat;
}

DWORD FakeDirectSound::speakerConfig() const
{
    Lock lock(state_->mutex);
    return state_->settings.speakerConfig;
}

void FakeDirectSound::setSpeakerConfig(DWORD config)
{
    Lock lock(state_->mutex);
    state_->settings.speakerConfig = config;
}

DWORD FakeDirectSound::primaryStatus() const
{
    Lock lock(state_->mutex);
    return state_->settings.primaryStatus;
}

void FakeDirectSound::setPrimaryStatus(DWORD status)
{
    Lock lock(state_->mutex);
    state_->settings.primaryStatus = status;
}

DWORD FakeDirectSound::cooperativeLevel() const
{
    Lock lock(state_->mutex);
    const FakeDevice* device = state_->objects.last<FakeDevice>();
    return device ? device->cooperativeLevel() : 0;
}

HWND FakeDirectSound::cooperativeWindow() const
{
    Lock lock(state_->mutex);
    const FakeDevice* device = state_->objects.last<FakeDevice>();
    return device ? device->window() : nullptr;
}

void FakeDirectSound::addPlaybackDevice(const GUID* guidOrNull, std::string description, std::string module)
{
    Lock lock(state_->mutex);
    state_->settings.playbackDevices.push_back(entry(guidOrNull, std::move(description), std::move(module)));
}

void FakeDirectSound::addCaptureDevice(const GUID* guidOrNull, std::string description, std::string module)
{
    Lock lock(state_->mutex);
    state_->settings.captureDevices.push_back(entry(guidOrNull, std::move(description), std::move(module)));
}

void FakeDirectSound::clearPlaybackDevices()
{
    Lock lock(state_->mutex);
    state_->settings.playbackDevices.clear();
}

void FakeDirectSound::clearCaptureDevices()
{
    Lock lock(state_->mutex);
    state_->settings.captureDevices.clear();
}

void FakeDirectSound::setWriteLead(DWORD bytes)
{
    Lock lock(state_->mutex);
    state_->settings.writeLead = bytes;
}

void FakeDirectSound::setCaptureLead(DWORD bytes)
{
    Lock lock(state_->mutex);
    state_->settings.captureLead = bytes;
}

void FakeDirectSound::setStrictNotifyOffsets(bool strict)
{
    Lock lock(state_->mutex);
    state_->settings.strictNotifyOffsets = strict;
}

// ---- Objects handed out --------------------------------------------------------------------

IDirectSound8* FakeDirectSound::device() const
{
    Lock lock(state_->mutex);
    return state_->objects.last<FakeDevice>();
}

IDirectSoundBuffer* FakeDirectSound::primaryBuffer() const
{
    Lock lock(state_->mutex);
    const FakeDevice* device = state_->objects.last<FakeDevice>();
    FakeBuffer* primary = device ? device->primary() : nullptr;
    return primary ? primary->asBuffer() : nullptr;
}

IDirectSoundCapture* FakeDirectSound::captureDevice() const
{
    Lock lock(state_->mutex);
    return state_->objects.last<FakeCaptureDevice>();
}

IDirectSoundCaptureBuffer8* FakeDirectSound::captureBuffer() const
{
    Lock lock(state_->mutex);
    return state_->objects.last<FakeCaptureBuffer>();
}

BufferInfo FakeDirectSound::bufferInfo(IUnknown* buffer) const
{
    Lock lock(state_->mutex);
    return resolve<FakeBuffer>(*state_, buffer, "sound buffer").info();
}

CaptureInfo FakeDirectSound::captureInfo(IUnknown* captureBuffer) const
{
    Lock lock(state_->mutex);
    return resolve<FakeCaptureBuffer>(*state_, captureBuffer, "capture buffer").info();
}

std::vector<BYTE> FakeDirectSound::contents(IUnknown* buffer) const
{
    Lock lock(state_->mutex);
    FakeObject* found = buffer ? state_->objects.find(buffer) : nullptr;
    FakeObject* owner = found ? &found->owner() : nullptr;
    if (auto* playback = dynamic_cast<FakeBuffer*>(owner))
        return copyOf(playback->memory());
    if (auto* capture = dynamic_cast<FakeCaptureBuffer*>(owner))
        return copyOf(capture->memory());
    throw std::invalid_argument("not a buffer of this FakeDirectSound");
}

void FakeDirectSound::setLost(IUnknown* buffer, bool lost)
{
    Lock lock(state_->mutex);
    resolve<FakeBuffer>(*state_, buffer, "sound buffer").setLost(lost);
}

// ---- Simulation ----------------------------------------------------------------------------

void FakeDirectSound::advancePlay(IUnknown* buffer, DWORD bytes)
{
    Lock lock(state_->mutex);
    FakeBuffer& target = resolve<FakeBuffer>(*state_, buffer, "sound buffer");
    if (target.isPrimary())
        throw std::invalid_argument("the primary buffer has no simulated play cursor");
    target.advance(bytes);
}

void FakeDirectSound::advanceCapture(DWORD bytes, const SampleSource& sample)
{
    Lock lock(state_->mutex);
    for (FakeCaptureBuffer* buffer : state_->objects.all<FakeCaptureBuffer>())
        buffer->advance(bytes, sample);
}

void FakeDirectSound::advanceCapture(IUnknown* captureBuffer, DWORD bytes, const SampleSource& sample)
{
    Lock lock(state_->mutex);
    resolve<FakeCaptureBuffer>(*state_, captureBuffer, "capture buffer").advance(bytes, sample);
}

DS3DBUFFER FakeDirectSound::parameters3D(IUnknown* buffer, Stage stage) const
{
    Lock lock(state_->mutex);
    FakeBuffer& target = resolve<FakeBuffer>(*state_, buffer, "sound buffer");
    if (!(target.flags() & DSBCAPS_CTRL3D))
        throw std::invalid_argument("the buffer was made without DSBCAPS_CTRL3D");
    return stage == Stage::Set ? target.spatial().set : target.spatial().applied;
}

DS3DLISTENER FakeDirectSound::listenerParameters(Stage stage) const
{
    Lock lock(state_->mutex);
    FakeDevice* device = state_->objects.last<FakeDevice>();
    if (!device)
        throw std::logic_error("no device has been made");
    return stage == Stage::Set ? device->listener().set : device->listener().applied;
}

int FakeDirectSound::pendingDeferred() const
{
    Lock lock(state_->mutex);
    const FakeDevice* device = state_->objects.last<FakeDevice>();
    return device ? device->pendingDeferred() : 0;
}

// ---- Clock ---------------------------------------------------------------------------------

void FakeDirectSound::setClock(DWORD ms)
{
    Lock lock(state_->mutex);
    state_->clock.now = ms;
}

void FakeDirectSound::advanceClock(DWORD ms)
{
    Lock lock(state_->mutex);
    state_->clock.now += ms;
}

void FakeDirectSound::setClockStep(DWORD ms)
{
    Lock lock(state_->mutex);
    state_->clock.step = ms;
}

DWORD FakeDirectSound::clock() const
{
    Lock lock(state_->mutex);
    return state_->clock.now;
}

// ---- Accounting ----------------------------------------------------------------------------

int FakeDirectSound::liveObjects() const
{
    Lock lock(state_->mutex);
    return state_->objects.live();
}

std::string FakeDirectSound::leakReport() const
{
    Lock lock(state_->mutex);
    std::ostringstream text;
    text << state_->objects.report();
    if (state_->overReleases > 0)
        text << "Release past zero: " << state_->overReleases << "\n";
    if (state_->deadCalls > 0)
        text << "calls through released interfaces: " << state_->deadCalls << "\n";
    return text.str();
}

LONG FakeDirectSound::refCount(IUnknown* object) const
{
    Lock lock(state_->mutex);
    const FakeObject* found = state_->objects.find(object);
    return found ? found->references() : -1;
}

int FakeDirectSound::overReleases() const
{
    Lock lock(state_->mutex);
    return state_->overReleases;
}

int FakeDirectSound::deadObjectCalls() const
{
    Lock lock(state_->mutex);
    return state_->deadCalls;
}

int FakeDirectSound::openNotificationHandles() const
{
    Lock lock(state_->mutex);
    return state_->handles.open();
}

DWORD FakeDirectSound::processHandleCount()
{
    return NotifyHandles::processHandleCount();
}

} // namespace fakeds
