#include "FakeDevice.h"

#include "FakeBuffer.h"
#include "FakeState.h"
#include "WaveFormat.h"

namespace fakeds
{

namespace
{

bool hasDeclaredSize(const DSBUFFERDESC& desc)
{
    return desc.dwSize == sizeof(DSBUFFERDESC) || desc.dwSize == sizeof(DSBUFFERDESC1);
}

DWORD roundUp(DWORD bytes, DWORD block)
{
    return (bytes + block - 1) / block * block;
}

} // namespace

FakeDevice::FakeDevice(FakeState& state)
    : FakeObject(state, static_cast<IDirectSound8*>(this), "IDirectSound8"),
      listener_(defaultListener())
{
}

HRESULT FakeDevice::QueryInterface(REFIID riid, void** out)
{
    return queryThrough("IDirectSound8::QueryInterface", riid, out, [this](REFIID id, void** result) {
        if (id != IID_IUnknown && id != IID_IDirectSound && id != IID_IDirectSound8)
            return E_NOINTERFACE;
        grab();
        *result = static_cast<IDirectSound8*>(this);
        return S_OK;
    });
}

ULONG FakeDevice::AddRef()
{
    return addRef();
}

ULONG FakeDevice::Release()
{
    return release();
}

HRESULT FakeDevice::CreateSoundBuffer(LPCDSBUFFERDESC desc, LPLPDIRECTSOUNDBUFFER buffer, IUnknown* outer)
{
    Entry call = enter("IDirectSound8::CreateSoundBuffer", args(desc, buffer, outer));
    const DSBUFFERDESC copy = copyDeclared(desc);
    const bool hasFormat = desc && copy.lpwfxFormat;
    BufferRequest record{address(), copy, hasFormat, hasFormat ? *copy.lpwfxFormat : WAVEFORMATEX{},
                         S_OK, nullptr};
    if (buffer)
        *buffer = nullptr;
    FakeBuffer* made = nullptr;
    record.result = call.refused() ? call.refusal()
                                   : call.finish(makeBuffer(desc, buffer == nullptr, outer, made));
    if (made) {
        record.buffer = made->asBuffer();
        *buffer = record.buffer;
    }
    state_.records.bufferRequests.push_back(record);
    return record.result;
}

HRESULT FakeDevice::makeBuffer(LPCDSBUFFERDESC desc, bool outMissing, IUnknown* outer, FakeBuffer*& made)
{
    if (!desc || outMissing)
        return DSERR_INVALIDPARAM;
    if (outer)
        return DSERR_NOAGGREGATION;
    if (!hasDeclaredSize(*desc))
        return DSERR_INVALIDPARAM;
    const DSBUFFERDESC copy = copyDeclared(desc);
    if (copy.dwFlags & DSBCAPS_PRIMARYBUFFER)
        return makePrimary(copy, made);
    return makeSecondary(copy, made);
}

// One primary buffer per device: asking again hands out the same object with one more reference.
HRESULT FakeDevice::makePrimary(const DSBUFFERDESC& desc, FakeBuffer*& made)
{
    if (desc.dwBufferBytes != 0 || desc.lpwfxFormat)
        return DSERR_INVALIDPARAM;
    if (primary_ && !primary_->gone()) {
        primary_->reopen(desc.dwFlags);
        made = primary_;
        return DS_OK;
    }
    auto primary = FakeBuffer::makePrimary(state_, *this, desc.dwFlags);
    if (!primary)
        return DSERR_OUTOFMEMORY;
    primary_ = state_.objects.adopt(std::move(primary));
    made = primary_;
    return DS_OK;
}

HRESULT FakeDevice::makeSecondary(const DSBUFFERDESC& desc, FakeBuffer*& made)
{
    const DSCAPS& caps = state_.settings.caps;
    const WAVEFORMATEX* format = desc.lpwfxFormat;
    if (!format || !isValidPcm(*format, 8, caps.dwMinSecondarySampleRate, caps.dwMaxSecondarySampleRate))
        return DSERR_INVALIDPARAM;
    if (desc.dwBufferBytes < DSBSIZE_MIN || desc.dwBufferBytes > DSBSIZE_MAX)
        return DSERR_INVALIDPARAM;
    const DWORD flags = desc.dwFlags;
    // A 3D source is a point: mono only, and its placement replaces panning.
    if ((flags & DSBCAPS_CTRL3D) && (format->nChannels != 1 || (flags & DSBCAPS_CTRLPAN)))
        return DSERR_INVALIDPARAM;
    if ((flags & DSBCAPS_LOCHARDWARE) && (flags & DSBCAPS_LOCSOFTWARE))
        return DSERR_INVALIDPARAM;
    if ((flags & DSBCAPS_CTRLFX) &&
        desc.dwBufferBytes < static_cast<ULONGLONG>(format->nAvgBytesPerSec) * DSBSIZE_FX_MIN / 1000)
        return DSERR_BUFFERTOOSMALL;
    // DirectSound rounds the size up to whole sample frames.
    auto memory = BufferMemory::allocate(roundUp(desc.dwBufferBytes, format->nBlockAlign));
    if (!memory)
        return DSERR_OUTOFMEMORY;
    made = state_.objects.adopt(std::make_unique<FakeBuffer>(state_, *this, flags, *format, std::move(memory)));
    buffers_.push_back(made);
    return DS_OK;
}

HRESULT FakeDevice::GetCaps(LPDSCAPS caps)
{
    Entry call = enter("IDirectSound8::GetCaps", args(caps));
    if (call.refused())
        return call.refusal();
    if (!caps || caps->dwSize != sizeof(DSCAPS))
        return call.finish(DSERR_INVALIDPARAM);
    *caps = state_.settings.caps;
    caps->dwSize = sizeof(DSCAPS);
    return call.finish(DS_OK);
}

HRESULT FakeDevice::DuplicateSoundBuffer(LPDIRECTSOUNDBUFFER original, LPLPDIRECTSOUNDBUFFER duplicate)
{
    Entry call = enter("IDirectSound8::DuplicateSoundBuffer", args(original, duplicate));
    if (duplicate)
        *duplicate = nullptr;
    if (call.refused())
        return call.refusal();
    if (!original || !duplicate)
        return call.finish(DSERR_INVALIDPARAM);
    FakeBuffer* made = nullptr;
    const HRESULT result = call.finish(this->duplicate(original, made));
    if (made)
        *duplicate = made->asBuffer();
    return result;
}

// The copy shares the original's sample memory but plays on its own.
HRESULT FakeDevice::duplicate(LPDIRECTSOUNDBUFFER original, FakeBuffer*& made)
{
    FakeObject* found = state_.objects.find(original);
    auto* source = dynamic_cast<FakeBuffer*>(found);
    if (!source || source->gone())
        return DSERR_INVALIDPARAM;
    if (source->isPrimary())
        return DSERR_INVALIDCALL;
    made = state_.objects.adopt(std::make_unique<FakeBuffer>(state_, *this, source->flags(),
                                                             source->format(), source->memory()));
    buffers_.push_back(made);
    return DS_OK;
}

HRESULT FakeDevice::SetCooperativeLevel(HWND window, DWORD level)
{
    Entry call = enter("IDirectSound8::SetCooperativeLevel", args(window, level));
    if (call.refused())
        return call.refusal();
    if (level < DSSCL_NORMAL || level > DSSCL_WRITEPRIMARY)
        return call.finish(DSERR_INVALIDPARAM);
    level_ = level;
    window_ = window;
    return call.finish(DS_OK);
}

HRESULT FakeDevice::Compact()
{
    Entry call = enter("IDirectSound8::Compact", args());
    if (call.refused())
        return call.refusal();
    return call.finish(level_ >= DSSCL_PRIORITY ? DS_OK : DSERR_PRIOLEVELNEEDED);
}

HRESULT FakeDevice::GetSpeakerConfig(LPDWORD config)
{
    Entry call = enter("IDirectSound8::GetSpeakerConfig", args(config));
    if (call.refused())
        return call.refusal();
    if (!config)
        return call.finish(DSERR_INVALIDPARAM);
    *config = state_.settings.speakerConfig;
    return call.finish(DS_OK);
}

HRESULT FakeDevice::SetSpeakerConfig(DWORD config)
{
    Entry call = enter("IDirectSound8::SetSpeakerConfig", args(config));
    if (call.refused())
        return call.refusal();
    state_.settings.speakerConfig = config;
    return call.finish(DS_OK);
}

HRESULT FakeDevice::Initialize(LPCGUID device)
{
    Entry call = enter("IDirectSound8::Initialize", args(device));
    if (call.refused())
        return call.refusal();
    return call.finish(DSERR_ALREADYINITIALIZED);
}

HRESULT FakeDevice::VerifyCertification(LPDWORD certified)
{
    Entry call = enter("IDirectSound8::VerifyCertification", args(certified));
    if (call.refused())
        return call.refusal();
    if (!certified)
        return call.finish(DSERR_INVALIDPARAM);
    *certified = (state_.settings.caps.dwFlags & DSCAPS_CERTIFIED) ? DS_CERTIFIED : DS_UNCERTIFIED;
    return call.finish(DS_OK);
}

std::string FakeDevice::describe() const
{
    return "IDirectSound8";
}

void FakeDevice::commitDeferred()
{
    listener_.commit();
    for (FakeBuffer* buffer : buffers_)
        buffer->spatial().commit();
    pendingDeferred_ = 0;
}

} // namespace fakeds
