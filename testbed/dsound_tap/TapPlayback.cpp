// The tapped playback interfaces: the device, its buffers, their 3D and notification
// interfaces, and the listener.

#include "TapFactories.h"

namespace dstap
{

namespace
{

class DeviceTap final : public IDirectSound8, public TapObject
{
public:
    DeviceTap(std::shared_ptr<TapState> state, IUnknown* real, const void* parent)
        : TapObject(std::move(state), real, "IDirectSound8", parent), real_(static_cast<IDirectSound8*>(real))
    {
    }
    DSTAP_IUNKNOWN(IDirectSound8)

    HRESULT STDMETHODCALLTYPE CreateSoundBuffer(LPCDSBUFFERDESC desc, LPDIRECTSOUNDBUFFER* out, IUnknown* outer) override
    {
        if (out)
            *out = nullptr;
        std::vector<BYTE> data = bytesOf(desc);
        if (desc && desc->lpwfxFormat) {
            const std::vector<BYTE> format = bytesOf(desc->lpwfxFormat);
            data.insert(data.end(), format.begin(), format.end());
        }
        const auto work = [&] {
            return tapResult(state_, IID_IDirectSoundBuffer, real_->CreateSoundBuffer(desc, out, outer),
                             reinterpret_cast<void**>(out), self());
        };
        return forwardWith("IDirectSound8::CreateSoundBuffer", std::move(data), work, desc, out, outer);
    }

    HRESULT STDMETHODCALLTYPE DuplicateSoundBuffer(LPDIRECTSOUNDBUFFER original, LPDIRECTSOUNDBUFFER* out) override
    {
        if (out)
            *out = nullptr;
        const auto work = [&] {
            auto* source = static_cast<IDirectSoundBuffer*>(untapped(state_, original));
            return tapResult(state_, IID_IDirectSoundBuffer, real_->DuplicateSoundBuffer(source, out),
                             reinterpret_cast<void**>(out), self());
        };
        return forward("IDirectSound8::DuplicateSoundBuffer", work, original, out);
    }

    DSTAP_CALL("IDirectSound8", GetCaps, (LPDSCAPS caps), caps)
    DSTAP_CALL("IDirectSound8", SetCooperativeLevel, (HWND window, DWORD level), window, level)
    DSTAP_CALL0("IDirectSound8", Compact)
    DSTAP_CALL("IDirectSound8", GetSpeakerConfig, (LPDWORD config), config)
    DSTAP_CALL("IDirectSound8", SetSpeakerConfig, (DWORD config), config)
    DSTAP_CALL("IDirectSound8", Initialize, (LPCGUID guid), guid)
    DSTAP_CALL("IDirectSound8", VerifyCertification, (LPDWORD certified), certified)

private:
    IDirectSound8* real_;
};

// Secondary buffers and the primary buffer alike; the library calls the IDirectSoundBuffer8
// methods on secondary buffers only.
class BufferTap final : public IDirectSoundBuffer8, public TapObject
{
public:
    BufferTap(std::shared_ptr<TapState> state, IUnknown* real, const void* parent)
        : TapObject(std::move(state), real, "IDirectSoundBuffer", parent),
          real_(static_cast<IDirectSoundBuffer8*>(real))
    {
    }
    DSTAP_IUNKNOWN(IDirectSoundBuffer8)

    HRESULT STDMETHODCALLTYPE Initialize(LPDIRECTSOUND device, LPCDSBUFFERDESC desc) override
    {
        const auto work = [&] {
            return real_->Initialize(static_cast<IDirectSound*>(untapped(state_, device)), desc);
        };
        return forward("IDirectSoundBuffer::Initialize", work, device, desc);
    }

    HRESULT STDMETHODCALLTYPE SetFormat(LPCWAVEFORMATEX format) override
    {
        return forwardWith("IDirectSoundBuffer::SetFormat", bytesOf(format),
                           [&] { return real_->SetFormat(format); }, format);
    }

    HRESULT STDMETHODCALLTYPE GetObjectInPath(REFGUID object, DWORD index, REFGUID iid, LPVOID* out) override
    {
        return forward("IDirectSoundBuffer8::GetObjectInPath",
                       [&] { return real_->GetObjectInPath(object, index, iid, out); }, &object, index, &iid, out);
    }

    DSTAP_CALL("IDirectSoundBuffer", GetCaps, (LPDSBCAPS caps), caps)
    DSTAP_CALL("IDirectSoundBuffer", GetCurrentPosition, (LPDWORD play, LPDWORD write), play, write)
    DSTAP_CALL("IDirectSoundBuffer", GetFormat, (LPWAVEFORMATEX format, DWORD size, LPDWORD written), format, size,
               written)
    DSTAP_CALL("IDirectSoundBuffer", GetVolume, (LPLONG volume), volume)
    DSTAP_CALL("IDirectSoundBuffer", GetPan, (LPLONG pan), pan)
    DSTAP_CALL("IDirectSoundBuffer", GetFrequency, (LPDWORD frequency), frequency)
    DSTAP_CALL("IDirectSoundBuffer", GetStatus, (LPDWORD status), status)
    DSTAP_CALL("IDirectSoundBuffer", Lock,
               (DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes, LPVOID* second, LPDWORD secondBytes,
                DWORD flags),
               offset, bytes, first, firstBytes, second, secondBytes, flags)
    DSTAP_CALL("IDirectSoundBuffer", Play, (DWORD reserved, DWORD priority, DWORD flags), reserved, priority, flags)
    DSTAP_CALL("IDirectSoundBuffer", SetCurrentPosition, (DWORD position), position)
    DSTAP_CALL("IDirectSoundBuffer", SetVolume, (LONG volume), volume)
    DSTAP_CALL("IDirectSoundBuffer", SetPan, (LONG pan), pan)
    DSTAP_CALL("IDirectSoundBuffer", SetFrequency, (DWORD frequency), frequency)
    DSTAP_CALL0("IDirectSoundBuffer", Stop)
    DSTAP_CALL("IDirectSoundBuffer", Unlock, (LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes),
               first, firstBytes, second, secondBytes)
    DSTAP_CALL0("IDirectSoundBuffer", Restore)
    DSTAP_CALL("IDirectSoundBuffer8", SetFX, (DWORD count, LPDSEFFECTDESC effects, LPDWORD results), count, effects,
               results)
    DSTAP_CALL("IDirectSoundBuffer8", AcquireResources, (DWORD flags, DWORD count, LPDWORD results), flags, count,
               results)

private:
    IDirectSoundBuffer8* real_;
};

class Buffer3DTap final : public IDirectSound3DBuffer8, public TapObject
{
public:
    Buffer3DTap(std::shared_ptr<TapState> state, IUnknown* real, const void* parent)
        : TapObject(std::move(state), real, "IDirectSound3DBuffer", parent),
          real_(static_cast<IDirectSound3DBuffer8*>(real))
    {
    }
    DSTAP_IUNKNOWN(IDirectSound3DBuffer8)

    HRESULT STDMETHODCALLTYPE SetAllParameters(LPCDS3DBUFFER parameters, DWORD apply) override
    {
        return forwardWith("IDirectSound3DBuffer::SetAllParameters", bytesOf(parameters),
                           [&] { return real_->SetAllParameters(parameters, apply); }, parameters, apply);
    }

    DSTAP_CALL("IDirectSound3DBuffer", GetAllParameters, (LPDS3DBUFFER parameters), parameters)
    DSTAP_CALL("IDirectSound3DBuffer", GetConeAngles, (LPDWORD inside, LPDWORD outside), inside, outside)
    DSTAP_CALL("IDirectSound3DBuffer", GetConeOrientation, (LPD3DVECTOR orientation), orientation)
    DSTAP_CALL("IDirectSound3DBuffer", GetConeOutsideVolume, (LPLONG volume), volume)
    DSTAP_CALL("IDirectSound3DBuffer", GetMaxDistance, (LPD3DVALUE distance), distance)
    DSTAP_CALL("IDirectSound3DBuffer", GetMinDistance, (LPD3DVALUE distance), distance)
    DSTAP_CALL("IDirectSound3DBuffer", GetMode, (LPDWORD mode), mode)
    DSTAP_CALL("IDirectSound3DBuffer", GetPosition, (LPD3DVECTOR position), position)
    DSTAP_CALL("IDirectSound3DBuffer", GetVelocity, (LPD3DVECTOR velocity), velocity)
    DSTAP_CALL("IDirectSound3DBuffer", SetConeAngles, (DWORD inside, DWORD outside, DWORD apply), inside, outside,
               apply)
    DSTAP_CALL("IDirectSound3DBuffer", SetConeOrientation, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y,
               z, apply)
    DSTAP_CALL("IDirectSound3DBuffer", SetConeOutsideVolume, (LONG volume, DWORD apply), volume, apply)
    DSTAP_CALL("IDirectSound3DBuffer", SetMaxDistance, (D3DVALUE distance, DWORD apply), distance, apply)
    DSTAP_CALL("IDirectSound3DBuffer", SetMinDistance, (D3DVALUE distance, DWORD apply), distance, apply)
    DSTAP_CALL("IDirectSound3DBuffer", SetMode, (DWORD mode, DWORD apply), mode, apply)
    DSTAP_CALL("IDirectSound3DBuffer", SetPosition, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z, apply)
    DSTAP_CALL("IDirectSound3DBuffer", SetVelocity, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z, apply)

private:
    IDirectSound3DBuffer8* real_;
};

class ListenerTap final : public IDirectSound3DListener8, public TapObject
{
public:
    ListenerTap(std::shared_ptr<TapState> state, IUnknown* real, const void* parent)
        : TapObject(std::move(state), real, "IDirectSound3DListener", parent),
          real_(static_cast<IDirectSound3DListener8*>(real))
    {
    }
    DSTAP_IUNKNOWN(IDirectSound3DListener8)

    HRESULT STDMETHODCALLTYPE SetAllParameters(LPCDS3DLISTENER parameters, DWORD apply) override
    {
        return forwardWith("IDirectSound3DListener::SetAllParameters", bytesOf(parameters),
                           [&] { return real_->SetAllParameters(parameters, apply); }, parameters, apply);
    }

    DSTAP_CALL("IDirectSound3DListener", GetAllParameters, (LPDS3DLISTENER parameters), parameters)
    DSTAP_CALL("IDirectSound3DListener", GetDistanceFactor, (LPD3DVALUE factor), factor)
    DSTAP_CALL("IDirectSound3DListener", GetDopplerFactor, (LPD3DVALUE factor), factor)
    DSTAP_CALL("IDirectSound3DListener", GetOrientation, (LPD3DVECTOR front, LPD3DVECTOR top), front, top)
    DSTAP_CALL("IDirectSound3DListener", GetPosition, (LPD3DVECTOR position), position)
    DSTAP_CALL("IDirectSound3DListener", GetRolloffFactor, (LPD3DVALUE factor), factor)
    DSTAP_CALL("IDirectSound3DListener", GetVelocity, (LPD3DVECTOR velocity), velocity)
    DSTAP_CALL("IDirectSound3DListener", SetDistanceFactor, (D3DVALUE factor, DWORD apply), factor, apply)
    DSTAP_CALL("IDirectSound3DListener", SetDopplerFactor, (D3DVALUE factor, DWORD apply), factor, apply)
    DSTAP_CALL("IDirectSound3DListener", SetOrientation,
               (D3DVALUE xFront, D3DVALUE yFront, D3DVALUE zFront, D3DVALUE xTop, D3DVALUE yTop, D3DVALUE zTop,
                DWORD apply),
               xFront, yFront, zFront, xTop, yTop, zTop, apply)
    DSTAP_CALL("IDirectSound3DListener", SetPosition, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z,
               apply)
    DSTAP_CALL("IDirectSound3DListener", SetRolloffFactor, (D3DVALUE factor, DWORD apply), factor, apply)
    DSTAP_CALL("IDirectSound3DListener", SetVelocity, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z,
               apply)
    DSTAP_CALL0("IDirectSound3DListener", CommitDeferredSettings)

private:
    IDirectSound3DListener8* real_;
};

// Asked of a playback or a capture buffer; its parent is that buffer.
class NotifyTap final : public IDirectSoundNotify, public TapObject
{
public:
    NotifyTap(std::shared_ptr<TapState> state, IUnknown* real, const void* parent)
        : TapObject(std::move(state), real, "IDirectSoundNotify", parent), real_(static_cast<IDirectSoundNotify*>(real))
    {
    }
    DSTAP_IUNKNOWN(IDirectSoundNotify)

    HRESULT STDMETHODCALLTYPE SetNotificationPositions(DWORD count, LPCDSBPOSITIONNOTIFY positions) override
    {
        for (DWORD i = 0; positions && i < count; ++i)
            state_->trackEvent(positions[i].hEventNotify);
        return forwardWith("IDirectSoundNotify::SetNotificationPositions", bytesOf(positions, positions ? count : 0),
                           [&] { return real_->SetNotificationPositions(count, positions); }, count, positions);
    }

private:
    IDirectSoundNotify* real_;
};

template <class Tap>
TapObject* make(const std::shared_ptr<TapState>& state, IUnknown* real, const void* parent)
{
    return new Tap(state, real, parent);
}

} // namespace

TapObject* newPlaybackTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real, const void* parent)
{
    if (IsEqualIID(riid, IID_IDirectSound8) || IsEqualIID(riid, IID_IDirectSound))
        return make<DeviceTap>(state, real, parent);
    if (IsEqualIID(riid, IID_IDirectSoundBuffer8) || IsEqualIID(riid, IID_IDirectSoundBuffer))
        return make<BufferTap>(state, real, parent);
    if (IsEqualIID(riid, IID_IDirectSound3DBuffer))
        return make<Buffer3DTap>(state, real, parent);
    if (IsEqualIID(riid, IID_IDirectSound3DListener))
        return make<ListenerTap>(state, real, parent);
    if (IsEqualIID(riid, IID_IDirectSoundNotify))
        return make<NotifyTap>(state, real, parent);
    return nullptr;
}

} // namespace dstap
