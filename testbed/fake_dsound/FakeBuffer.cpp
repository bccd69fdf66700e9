#include "FakeBuffer.h"

#include "Fake3D.h"
#include "FakeDevice.h"
#include "FakeState.h"
#include "WaveFormat.h"

#include <algorithm>
#include <sstream>

namespace fakeds
{

namespace
{

constexpr DWORD kPlayBits = DSBSTATUS_PLAYING | DSBSTATUS_LOOPING;

// DirectSound reports a buffer created without a location as a software buffer.
DWORD withLocation(DWORD flags)
{
    if (flags & (DSBCAPS_LOCHARDWARE | DSBCAPS_LOCSOFTWARE | DSBCAPS_LOCDEFER))
        return flags;
    return flags | DSBCAPS_LOCSOFTWARE;
}

template <class T>
HRESULT report(bool available, T* out, T value)
{
    if (!available)
        return DSERR_CONTROLUNAVAIL;
    if (!out)
        return DSERR_INVALIDPARAM;
    *out = value;
    return DS_OK;
}

HRESULT adjust(bool available, LONG value, LONG low, LONG high, LONG& target)
{
    if (!available)
        return DSERR_CONTROLUNAVAIL;
    if (value < low || value > high)
        return DSERR_INVALIDPARAM;
    target = value;
    return DS_OK;
}

} // namespace

std::unique_ptr<FakeBuffer> FakeBuffer::makePrimary(FakeState& state, FakeDevice& device, DWORD flags)
{
    auto memory = BufferMemory::allocate(kPrimaryBytes);
    if (!memory)
        return nullptr;
    return std::unique_ptr<FakeBuffer>(
        new FakeBuffer(state, device, flags, true, state.settings.primaryFormat, std::move(memory)));
}

FakeBuffer::FakeBuffer(FakeState& state, FakeDevice& device, DWORD flags,
                       const WAVEFORMATEX& format, std::shared_ptr<BufferMemory> memory)
    : FakeBuffer(state, device, flags, false, format, std::move(memory))
{
}

FakeBuffer::FakeBuffer(FakeState& state, FakeDevice& device, DWORD flags, bool primary,
                       const WAVEFORMATEX& format, std::shared_ptr<BufferMemory> memory)
    : FakeObject(state, static_cast<IDirectSoundBuffer8*>(this), "IDirectSoundBuffer"),
      device_(device),
      flags_(withLocation(flags)),
      primary_(primary),
      format_(format),
      memory_(std::move(memory)),
      bytes_(memory_->size()),
      frequency_(format.nSamplesPerSec),
      spatial_(defaultBuffer3D())
{
}

HRESULT FakeBuffer::QueryInterface(REFIID riid, void** out)
{
    return queryThrough(queryMethod(), riid, out,
                        [this](REFIID id, void** result) { return query(id, result); });
}

HRESULT FakeBuffer::query(REFIID riid, void** out)
{
    const bool self = riid == IID_IUnknown || riid == IID_IDirectSoundBuffer ||
                      (riid == IID_IDirectSoundBuffer8 && !primary_);
    if (self) {
        grab();
        *out = static_cast<IDirectSoundBuffer8*>(this);
        return S_OK;
    }
    if (riid == IID_IDirectSound3DBuffer && !primary_ && has(DSBCAPS_CTRL3D))
        return handOut<Fake3DBuffer, IDirectSound3DBuffer>(state_, threeD_, out, *this);
    if (riid == IID_IDirectSound3DListener && primary_ && has(DSBCAPS_CTRL3D))
        return handOut<Fake3DListener, IDirectSound3DListener>(state_, listener_, out, *this);
    if (riid == IID_IDirectSoundNotify && !primary_ && has(DSBCAPS_CTRLPOSITIONNOTIFY))
        return handOut<FakeNotify, IDirectSoundNotify>(state_, notify_, out, static_cast<NotifyOwner&>(*this));
    return E_NOINTERFACE;
}

ULONG FakeBuffer::AddRef()
{
    return addRef();
}

ULONG FakeBuffer::Release()
{
    return release();
}

HRESULT FakeBuffer::GetCaps(LPDSBCAPS caps)
{
    Entry call = enter("IDirectSoundBuffer::GetCaps", args(caps));
    if (call.refused())
        return call.refusal();
    if (!caps || caps->dwSize != sizeof(DSBCAPS))
        return call.finish(DSERR_INVALIDPARAM);
    caps->dwFlags = flags_;
    caps->dwBufferBytes = bytes_;
    caps->dwUnlockTransferRate = 0;
    caps->dwPlayCpuOverhead = 0;
    return call.finish(DS_OK);
}

HRESULT FakeBuffer::GetCurrentPosition(LPDWORD play, LPDWORD write)
{
    Entry call = enter("IDirectSoundBuffer::GetCurrentPosition", args(play, write));
    if (call.refused())
        return call.refusal();
    if (play)
        *play = play_;
    if (write)
        *write = writeCursor();
    return call.finish(DS_OK);
}

HRESULT FakeBuffer::GetFormat(LPWAVEFORMATEX format, DWORD sizeAllocated, LPDWORD sizeWritten)
{
    Entry call = enter("IDirectSoundBuffer::GetFormat", args(format, sizeAllocated, sizeWritten));
    if (call.refused())
        return call.refusal();
    return call.finish(copyFormatOut(this->format(), format, sizeAllocated, sizeWritten));
}

HRESULT FakeBuffer::GetVolume(LPLONG volume)
{
    Entry call = enter("IDirectSoundBuffer::GetVolume", args(volume));
    if (call.refused())
        return call.refusal();
    return call.finish(report(has(DSBCAPS_CTRLVOLUME), volume, volume_));
}

HRESULT FakeBuffer::GetPan(LPLONG pan)
{
    Entry call = enter("IDirectSoundBuffer::GetPan", args(pan));
    if (call.refused())
        return call.refusal();
    return call.finish(report(has(DSBCAPS_CTRLPAN), pan, pan_));
}

HRESULT FakeBuffer::GetFrequency(LPDWORD frequency)
{
    Entry call = enter("IDirectSoundBuffer::GetFrequency", args(frequency));
    if (call.refused())
        return call.refusal();
    return call.finish(report(!primary_ && has(DSBCAPS_CTRLFREQUENCY), frequency, frequency_));
}

HRESULT FakeBuffer::GetStatus(LPDWORD status)
{
    Entry call = enter("IDirectSoundBuffer::GetStatus", args(status));
    if (call.refused())
        return call.refusal();
    return call.finish(report(true, status, this->status()));
}

HRESULT FakeBuffer::Initialize(LPDIRECTSOUND sound, LPCDSBUFFERDESC desc)
{
    Entry call = enter("IDirectSoundBuffer::Initialize", args(sound, desc));
    if (call.refused())
        return call.refusal();
    return call.finish(DSERR_ALREADYINITIALIZED);
}

HRESULT FakeBuffer::Lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes,
                         LPVOID* second, LPDWORD secondBytes, DWORD flags)
{
    Entry call = enter("IDirectSoundBuffer::Lock",
                       args(offset, bytes, first, firstBytes, second, secondBytes, flags));
    clearLockOutputs(first, firstBytes, second, secondBytes);
    if (call.refused())
        return call.refusal();
    return call.finish(lock(offset, bytes, first, firstBytes, second, secondBytes, flags));
}

HRESULT FakeBuffer::lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes,
                         LPVOID* second, LPDWORD secondBytes, DWORD flags)
{
    if (lost_)
        return DSERR_BUFFERLOST;
    if (primary_ && device_.cooperativeLevel() != DSSCL_WRITEPRIMARY)
        return DSERR_PRIOLEVELNEEDED;
    if (!first || !firstBytes)
        return DSERR_INVALIDPARAM;
    if (flags & DSBLOCK_FROMWRITECURSOR)
        offset = writeCursor();
    if (flags & DSBLOCK_ENTIREBUFFER)
        bytes = bytes_;
    const HRESULT result = memory_->lock(offset, bytes, first, firstBytes, second, secondBytes);
    if (SUCCEEDED(result))
        ++locks_;
    return result;
}

HRESULT FakeBuffer::Play(DWORD reserved, DWORD priority, DWORD flags)
{
    Entry call = enter("IDirectSoundBuffer::Play", args(reserved, priority, flags));
    if (call.refused())
        return call.refusal();
    return call.finish(play(reserved, priority, flags));
}

HRESULT FakeBuffer::play(DWORD reserved, DWORD priority, DWORD flags)
{
    if (reserved != 0)
        return DSERR_INVALIDPARAM;
    if (lost_)
        return DSERR_BUFFERLOST;
    const bool looping = (flags & DSBPLAY_LOOPING) != 0;
    if (primary_) {
        // The primary buffer only ever plays round and round.
        if (!looping)
            return DSERR_INVALIDPARAM;
        state_.settings.primaryStatus |= kPlayBits;
        return DS_OK;
    }
    if (priority != 0 && !has(DSBCAPS_LOCDEFER))
        return DSERR_INVALIDPARAM;
    status_ = DSBSTATUS_PLAYING | (looping ? DSBSTATUS_LOOPING : 0);
    return DS_OK;
}

HRESULT FakeBuffer::SetCurrentPosition(DWORD position)
{
    Entry call = enter("IDirectSoundBuffer::SetCurrentPosition", args(position));
    if (call.refused())
        return call.refusal();
    if (primary_)
        return call.finish(DSERR_INVALIDCALL);
    if (position >= bytes_)
        return call.finish(DSERR_INVALIDPARAM);
    play_ = position - position % format_.nBlockAlign;
    return call.finish(DS_OK);
}

HRESULT FakeBuffer::SetFormat(LPCWAVEFORMATEX format)
{
    Entry call = enter("IDirectSoundBuffer::SetFormat", args(format));
    FormatRequest record{address(), format != nullptr, format ? *format : WAVEFORMATEX{}, S_OK};
    record.result = call.refused() ? call.refusal() : call.finish(setFormat(format));
    state_.records.formatRequests.push_back(record);
    return record.result;
}

HRESULT FakeBuffer::setFormat(LPCWAVEFORMATEX format)
{
    if (!primary_)
        return DSERR_INVALIDCALL;
    if (!format)
        return DSERR_INVALIDPARAM;
    const DWORD level = device_.cooperativeLevel();
    if (level < DSSCL_PRIORITY)
        return DSERR_PRIOLEVELNEEDED;
    // At the write-primary level the application owns the mixing and must stop first.
    if (level == DSSCL_WRITEPRIMARY && running())
        return DSERR_INVALIDCALL;
    if (!isValidPcm(*format, 2, DSBFREQUENCY_MIN, 200000))
        return DSERR_BADFORMAT;
    state_.settings.primaryFormat = *format;
    state_.settings.primaryFormat.cbSize = 0;
    return DS_OK;
}

HRESULT FakeBuffer::SetVolume(LONG volume)
{
    Entry call = enter("IDirectSoundBuffer::SetVolume", args(volume));
    if (call.refused())
        return call.refusal();
    return call.finish(adjust(has(DSBCAPS_CTRLVOLUME), volume, DSBVOLUME_MIN, DSBVOLUME_MAX, volume_));
}

HRESULT FakeBuffer::SetPan(LONG pan)
{
    Entry call = enter("IDirectSoundBuffer::SetPan", args(pan));
    if (call.refused())
        return call.refusal();
    return call.finish(adjust(has(DSBCAPS_CTRLPAN), pan, DSBPAN_LEFT, DSBPAN_RIGHT, pan_));
}

HRESULT FakeBuffer::SetFrequency(DWORD frequency)
{
    Entry call = enter("IDirectSoundBuffer::SetFrequency", args(frequency));
    if (call.refused())
        return call.refusal();
    return call.finish(setFrequency(frequency));
}

HRESULT FakeBuffer::setFrequency(DWORD frequency)
{
    if (primary_ || !has(DSBCAPS_CTRLFREQUENCY))
        return DSERR_CONTROLUNAVAIL;
    if (frequency == DSBFREQUENCY_ORIGINAL) {
        frequency_ = format_.nSamplesPerSec;
        return DS_OK;
    }
    const DSCAPS& caps = state_.settings.caps;
    if (frequency < caps.dwMinSecondarySampleRate || frequency > caps.dwMaxSecondarySampleRate)
        return DSERR_INVALIDPARAM;
    frequency_ = frequency;
    return DS_OK;
}

HRESULT FakeBuffer::Stop()
{
    Entry call = enter("IDirectSoundBuffer::Stop", args());
    if (call.refused())
        return call.refusal();
    stop();
    return call.finish(DS_OK);
}

void FakeBuffer::stop()
{
    if (primary_) {
        state_.settings.primaryStatus &= ~kPlayBits;
        return;
    }
    if (!(status_ & DSBSTATUS_PLAYING))
        return;
    status_ = 0;
    notes_.signalStop(state_, address());
}

HRESULT FakeBuffer::Unlock(LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes)
{
    Entry call = enter("IDirectSoundBuffer::Unlock", args(first, firstBytes, second, secondBytes));
    if (call.refused())
        return call.refusal();
    const HRESULT result = memory_->checkUnlock(first, firstBytes, second, secondBytes);
    if (SUCCEEDED(result))
        locks_ = std::max(0, locks_ - 1);
    return call.finish(result);
}

HRESULT FakeBuffer::Restore()
{
    Entry call = enter("IDirectSoundBuffer::Restore", args());
    if (call.refused())
        return call.refusal();
    lost_ = false;
    return call.finish(DS_OK);
}

HRESULT FakeBuffer::SetFX(DWORD count, LPDSEFFECTDESC effects, LPDWORD results)
{
    Entry call = enter("IDirectSoundBuffer8::SetFX", args(count, effects, results));
    if (call.refused())
        return call.refusal();
    if (!has(DSBCAPS_CTRLFX))
        return call.finish(DSERR_CONTROLUNAVAIL);
    if (running())
        return call.finish(DSERR_INVALIDCALL);
    // Removing all effects works; the simulated card has none to add.
    return call.finish(count == 0 ? DS_OK : DSERR_UNSUPPORTED);
}

HRESULT FakeBuffer::AcquireResources(DWORD flags, DWORD count, LPDWORD results)
{
    Entry call = enter("IDirectSoundBuffer8::AcquireResources", args(flags, count, results));
    if (call.refused())
        return call.refusal();
    return call.finish(has(DSBCAPS_LOCDEFER) ? DS_OK : DSERR_INVALIDCALL);
}

HRESULT FakeBuffer::GetObjectInPath(REFGUID object, DWORD index, REFGUID iface, LPVOID* out)
{
    Entry call = enter("IDirectSoundBuffer8::GetObjectInPath", args(&object, index, &iface, out));
    if (out)
        *out = nullptr;
    if (call.refused())
        return call.refusal();
    return call.finish(has(DSBCAPS_CTRLFX) ? DSERR_OBJECTNOTFOUND : DSERR_CONTROLUNAVAIL);
}

std::string FakeBuffer::describe() const
{
    std::ostringstream text;
    if (primary_)
        text << "IDirectSoundBuffer (primary";
    else
        text << "IDirectSoundBuffer8 (secondary, " << bytes_ << " bytes";
    text << ", flags 0x" << std::hex << flags_ << ")";
    return text.str();
}

bool FakeBuffer::gone() const
{
    const auto liveTearOff = [](const FakeObject* tearOff) { return tearOff && tearOff->alive(); };
    return !alive() && !liveTearOff(threeD_) && !liveTearOff(listener_) && !liveTearOff(notify_);
}

// Once no interface holds the buffer it is destroyed: it stops and its memory goes.
void FakeBuffer::settle()
{
    if (!gone())
        return;
    status_ = 0;
    memory_.reset();
}

void FakeBuffer::reopen(DWORD flags)
{
    grab();
    flags_ = withLocation(flags);
}

const WAVEFORMATEX& FakeBuffer::format() const
{
    return primary_ ? state_.settings.primaryFormat : format_;
}

DWORD FakeBuffer::status() const
{
    const DWORD status = primary_ ? state_.settings.primaryStatus : status_;
    return lost_ ? status | DSBSTATUS_BUFFERLOST : status;
}

DWORD FakeBuffer::writeCursor() const
{
    if (!running() || primary_)
        return play_;
    return (play_ + state_.settings.writeLead % bytes_) % bytes_;
}

BufferInfo FakeBuffer::info() const
{
    return BufferInfo{primary_, flags_, bytes_,   format(),   status(), play_,  writeCursor(),
                      pan_,     volume_, frequency_, lost_, locks_};
}

void FakeBuffer::setLost(bool lost)
{
    lost_ = lost;
    if (!lost)
        return;
    // Losing its memory stops a buffer.
    status_ = 0;
    if (primary_)
        state_.settings.primaryStatus &= ~kPlayBits;
}

void FakeBuffer::advance(DWORD bytes)
{
    if (primary_ || !(status_ & DSBSTATUS_PLAYING))
        return;
    const Travel step = travel(play_, bytes, bytes_, (status_ & DSBSTATUS_LOOPING) != 0);
    play_ = step.to;
    notes_.signalPassed(state_, address(), step.from, step.moved, bytes_);
    if (!step.ended)
        return;
    status_ = 0;
    notes_.signalStop(state_, address());
}

} // namespace fakeds
