#include "FakeCapture.h"

#include "FakeState.h"
#include "WaveFormat.h"

#include <algorithm>
#include <sstream>

namespace fakeds
{

// ---- IDirectSoundCapture -------------------------------------------------------------------

FakeCaptureDevice::FakeCaptureDevice(FakeState& state)
    : FakeObject(state, static_cast<IDirectSoundCapture*>(this), "IDirectSoundCapture")
{
}

HRESULT FakeCaptureDevice::QueryInterface(REFIID riid, void** out)
{
    return queryThrough("IDirectSoundCapture::QueryInterface", riid, out, [this](REFIID id, void** result) {
        if (id != IID_IUnknown && id != IID_IDirectSoundCapture)
            return E_NOINTERFACE;
        grab();
        *result = static_cast<IDirectSoundCapture*>(this);
        return S_OK;
    });
}

ULONG FakeCaptureDevice::AddRef()
{
    return addRef();
}

ULONG FakeCaptureDevice::Release()
{
    return release();
}

HRESULT FakeCaptureDevice::CreateCaptureBuffer(LPCDSCBUFFERDESC desc, LPDIRECTSOUNDCAPTUREBUFFER* buffer,
                                               LPUNKNOWN outer)
{
    Entry call = enter("IDirectSoundCapture::CreateCaptureBuffer", args(desc, buffer, outer));
    const DSCBUFFERDESC copy = copyDeclared(desc);
    const bool hasFormat = desc && copy.lpwfxFormat;
    CaptureBufferRequest record{address(), copy, hasFormat,
                                hasFormat ? *copy.lpwfxFormat : WAVEFORMATEX{}, S_OK, nullptr};
    if (buffer)
        *buffer = nullptr;
    IDirectSoundCaptureBuffer* made = nullptr;
    record.result = call.refused() ? call.refusal()
                                   : call.finish(makeBuffer(desc, buffer == nullptr, outer, made));
    if (made)
        *buffer = record.buffer = made;
    state_.records.captureBufferRequests.push_back(record);
    return record.result;
}

HRESULT FakeCaptureDevice::makeBuffer(LPCDSCBUFFERDESC desc, bool outMissing, LPUNKNOWN outer,
                                      IDirectSoundCaptureBuffer*& made)
{
    if (!desc || outMissing)
        return DSERR_INVALIDPARAM;
    if (outer)
        return DSERR_NOAGGREGATION;
    if (desc->dwSize != sizeof(DSCBUFFERDESC) && desc->dwSize != sizeof(DSCBUFFERDESC1))
        return DSERR_INVALIDPARAM;
    const DSCBUFFERDESC copy = copyDeclared(desc);
    if (!copy.lpwfxFormat || copy.dwBufferBytes == 0)
        return DSERR_INVALIDPARAM;
    const WAVEFORMATEX& format = *copy.lpwfxFormat;
    const WORD channels = static_cast<WORD>(std::max<DWORD>(1, state_.settings.captureCaps.dwChannels));
    if (!isValidPcm(format, channels, DSBFREQUENCY_MIN, 200000))
        return DSERR_BADFORMAT;
    if (copy.dwBufferBytes < format.nBlockAlign)
        return DSERR_INVALIDPARAM;
    auto memory = BufferMemory::allocate(copy.dwBufferBytes);
    if (!memory)
        return DSERR_OUTOFMEMORY;
    made = state_.objects.adopt(
        std::make_unique<FakeCaptureBuffer>(state_, copy.dwFlags, format, std::move(memory)));
    return DS_OK;
}

HRESULT FakeCaptureDevice::GetCaps(LPDSCCAPS caps)
{
    Entry call = enter("IDirectSoundCapture::GetCaps", args(caps));
    if (call.refused())
        return call.refusal();
    if (!caps || caps->dwSize != sizeof(DSCCAPS))
        return call.finish(DSERR_INVALIDPARAM);
    *caps = state_.settings.captureCaps;
    caps->dwSize = sizeof(DSCCAPS);
    return call.finish(DS_OK);
}

HRESULT FakeCaptureDevice::Initialize(LPCGUID device)
{
    Entry call = enter("IDirectSoundCapture::Initialize", args(device));
    if (call.refused())
        return call.refusal();
    return call.finish(DSERR_ALREADYINITIALIZED);
}

std::string FakeCaptureDevice::describe() const
{
    return "IDirectSoundCapture";
}

// ---- IDirectSoundCaptureBuffer8 ------------------------------------------------------------

FakeCaptureBuffer::FakeCaptureBuffer(FakeState& state, DWORD flags, const WAVEFORMATEX& format,
                                     std::shared_ptr<BufferMemory> memory)
    : FakeObject(state, static_cast<IDirectSoundCaptureBuffer8*>(this), "IDirectSoundCaptureBuffer"),
      flags_(flags),
      format_(format),
      memory_(std::move(memory)),
      bytes_(memory_->size())
{
    format_.cbSize = 0;
}

HRESULT FakeCaptureBuffer::QueryInterface(REFIID riid, void** out)
{
    return queryThrough(queryMethod(), riid, out,
                        [this](REFIID id, void** result) { return query(id, result); });
}

HRESULT FakeCaptureBuffer::query(REFIID riid, void** out)
{
    if (riid == IID_IUnknown || riid == IID_IDirectSoundCaptureBuffer ||
        riid == IID_IDirectSoundCaptureBuffer8) {
        grab();
        *out = static_cast<IDirectSoundCaptureBuffer8*>(this);
        return S_OK;
    }
    if (riid == IID_IDirectSoundNotify)
        return handOut<FakeNotify, IDirectSoundNotify>(state_, notify_, out, static_cast<NotifyOwner&>(*this));
    return E_NOINTERFACE;
}

ULONG FakeCaptureBuffer::AddRef()
{
    return addRef();
}

ULONG FakeCaptureBuffer::Release()
{
    return release();
}

HRESULT FakeCaptureBuffer::GetCaps(LPDSCBCAPS caps)
{
    Entry call = enter("IDirectSoundCaptureBuffer::GetCaps", args(caps));
    if (call.refused())
        return call.refusal();
    if (!caps || caps->dwSize != sizeof(DSCBCAPS))
        return call.finish(DSERR_INVALIDPARAM);
    caps->dwFlags = flags_;
    caps->dwBufferBytes = bytes_;
    caps->dwReserved = 0;
    return call.finish(DS_OK);
}

HRESULT FakeCaptureBuffer::GetCurrentPosition(LPDWORD capture, LPDWORD read)
{
    Entry call = enter("IDirectSoundCaptureBuffer::GetCurrentPosition", args(capture, read));
    if (call.refused())
        return call.refusal();
    if (capture)
        *capture = capturePosition();
    if (read)
        *read = read_;
    return call.finish(DS_OK);
}

HRESULT FakeCaptureBuffer::GetFormat(LPWAVEFORMATEX format, DWORD sizeAllocated, LPDWORD sizeWritten)
{
    Entry call = enter("IDirectSoundCaptureBuffer::GetFormat", args(format, sizeAllocated, sizeWritten));
    if (call.refused())
        return call.refusal();
    return call.finish(copyFormatOut(format_, format, sizeAllocated, sizeWritten));
}

HRESULT FakeCaptureBuffer::GetStatus(LPDWORD status)
{
    Entry call = enter("IDirectSoundCaptureBuffer::GetStatus", args(status));
    if (call.refused())
        return call.refusal();
    if (!status)
        return call.finish(DSERR_INVALIDPARAM);
    *status = status_;
    return call.finish(DS_OK);
}

HRESULT FakeCaptureBuffer::Initialize(LPDIRECTSOUNDCAPTURE device, LPCDSCBUFFERDESC desc)
{
    Entry call = enter("IDirectSoundCaptureBuffer::Initialize", args(device, desc));
    if (call.refused())
        return call.refusal();
    return call.finish(DSERR_ALREADYINITIALIZED);
}

HRESULT FakeCaptureBuffer::Lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes,
                                LPVOID* second, LPDWORD secondBytes, DWORD flags)
{
    Entry call = enter("IDirectSoundCaptureBuffer::Lock",
                       args(offset, bytes, first, firstBytes, second, secondBytes, flags));
    clearLockOutputs(first, firstBytes, second, secondBytes);
    if (call.refused())
        return call.refusal();
    return call.finish(lock(offset, bytes, first, firstBytes, second, secondBytes, flags));
}

HRESULT FakeCaptureBuffer::lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes,
                                LPVOID* second, LPDWORD secondBytes, DWORD flags)
{
    if (!first || !firstBytes)
        return DSERR_INVALIDPARAM;
    if (flags & DSCBLOCK_ENTIREBUFFER)
        bytes = bytes_;
    const HRESULT result = memory_->lock(offset, bytes, first, firstBytes, second, secondBytes);
    if (SUCCEEDED(result))
        ++locks_;
    return result;
}

HRESULT FakeCaptureBuffer::Start(DWORD flags)
{
    Entry call = enter("IDirectSoundCaptureBuffer::Start", args(flags));
    if (call.refused())
        return call.refusal();
    const DWORD looping = (flags & DSCBSTART_LOOPING) ? DSCBSTATUS_LOOPING : 0;
    if (!running()) {
        // A fresh start captures from the beginning of the buffer.
        read_ = 0;
        captured_ = 0;
    }
    status_ = DSCBSTATUS_CAPTURING | looping;
    return call.finish(DS_OK);
}

HRESULT FakeCaptureBuffer::Stop()
{
    Entry call = enter("IDirectSoundCaptureBuffer::Stop", args());
    if (call.refused())
        return call.refusal();
    if (running()) {
        status_ = 0;
        notes_.signalStop(state_, address());
    }
    return call.finish(DS_OK);
}

HRESULT FakeCaptureBuffer::Unlock(LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes)
{
    Entry call = enter("IDirectSoundCaptureBuffer::Unlock", args(first, firstBytes, second, secondBytes));
    if (call.refused())
        return call.refusal();
    const HRESULT result = memory_->checkUnlock(first, firstBytes, second, secondBytes);
    if (SUCCEEDED(result))
        locks_ = std::max(0, locks_ - 1);
    return call.finish(result);
}

HRESULT FakeCaptureBuffer::GetObjectInPath(REFGUID object, DWORD index, REFGUID iface, LPVOID* out)
{
    Entry call = enter("IDirectSoundCaptureBuffer8::GetObjectInPath", args(&object, index, &iface, out));
    if (out)
        *out = nullptr;
    if (call.refused())
        return call.refusal();
    return call.finish((flags_ & DSCBCAPS_CTRLFX) ? DSERR_OBJECTNOTFOUND : DSERR_CONTROLUNAVAIL);
}

HRESULT FakeCaptureBuffer::GetFXStatus(DWORD count, LPDWORD status)
{
    Entry call = enter("IDirectSoundCaptureBuffer8::GetFXStatus", args(count, status));
    if (call.refused())
        return call.refusal();
    if (!(flags_ & DSCBCAPS_CTRLFX))
        return call.finish(DSERR_CONTROLUNAVAIL);
    return call.finish(count == 0 ? DS_OK : DSERR_INVALIDPARAM);
}

std::string FakeCaptureBuffer::describe() const
{
    std::ostringstream text;
    text << "IDirectSoundCaptureBuffer8 (" << bytes_ << " bytes, flags 0x" << std::hex << flags_ << ")";
    return text.str();
}

CaptureInfo FakeCaptureBuffer::info() const
{
    return CaptureInfo{flags_, bytes_, format_, status_, capturePosition(), read_, captured_, locks_};
}

void FakeCaptureBuffer::advance(DWORD bytes, const SampleSource& sample)
{
    if (!running())
        return;
    const Travel step = travel(read_, bytes, bytes_, (status_ & DSCBSTATUS_LOOPING) != 0);
    BYTE* data = memory_->data();
    for (DWORD i = 0; i < step.moved; ++i)
        data[(step.from + i) % bytes_] = sample ? sample(captured_ + i) : 0;
    captured_ += step.moved;
    read_ = step.to;
    notes_.signalPassed(state_, address(), step.from, step.moved, bytes_);
    if (!step.ended)
        return;
    status_ = 0;
    notes_.signalStop(state_, address());
}

DWORD FakeCaptureBuffer::capturePosition() const
{
    if (!running())
        return read_;
    return (read_ + state_.settings.captureLead % bytes_) % bytes_;
}

void FakeCaptureBuffer::settle()
{
    const bool notifyLive = notify_ && notify_->alive();
    if (alive() || notifyLive)
        return;
    status_ = 0;
    memory_.reset();
}

} // namespace fakeds
