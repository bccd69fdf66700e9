// The tapped playback interfaces: the device, its buffers, their 3D and notification
// interfaces, and the listener.

#include "TapObject.h"

namespace dstap
{

namespace
{

class DeviceTap final : public Tap<IDirectSound8>
{
public:
    using Tap::Tap;

    HRESULT STDMETHODCALLTYPE CreateSoundBuffer(LPCDSBUFFERDESC desc, LPDIRECTSOUNDBUFFER* out,
                                                IUnknown* outer) override
    {
        if (out)
            *out = nullptr;
        const auto work = [&] {
            return tapResult(state_, IID_IDirectSoundBuffer, real_->CreateSoundBuffer(desc, out, outer),
                             reinterpret_cast<void**>(out));
        };
        return forwardWith("::CreateSoundBuffer", descriptionBytes(desc), work, desc, out, outer);
    }

    HRESULT STDMETHODCALLTYPE DuplicateSoundBuffer(LPDIRECTSOUNDBUFFER original, LPDIRECTSOUNDBUFFER* out) override
    {
        if (out)
            *out = nullptr;
        const auto work = [&] {
            auto* source = static_cast<IDirectSoundBuffer*>(untapped(state_, original));
            return tapResult(state_, IID_IDirectSoundBuffer, real_->DuplicateSoundBuffer(source, out),
                             reinterpret_cast<void**>(out));
        };
        return forward("::DuplicateSoundBuffer", work, original, out);
    }

    DSTAP_CALL(GetCaps, (LPDSCAPS caps), caps)
    DSTAP_CALL(SetCooperativeLevel, (HWND window, DWORD level), window, level)
    DSTAP_CALL(Compact, ())
    DSTAP_CALL(GetSpeakerConfig, (LPDWORD config), config)
    DSTAP_CALL(SetSpeakerConfig, (DWORD config), config)
    DSTAP_CALL(Initialize, (LPCGUID guid), guid)
    DSTAP_CALL(VerifyCertification, (LPDWORD certified), certified)
};

// Secondary buffers and the primary buffer alike; the library calls the IDirectSoundBuffer8
// methods on secondary buffers only.
class BufferTap final : public Tap<IDirectSoundBuffer8>
{
public:
    using Tap::Tap;

    HRESULT STDMETHODCALLTYPE Initialize(LPDIRECTSOUND device, LPCDSBUFFERDESC desc) override
    {
        const auto work = [&] {
            return real_->Initialize(static_cast<IDirectSound*>(untapped(state_, device)), desc);
        };
        return forward("::Initialize", work, device, desc);
    }

    HRESULT STDMETHODCALLTYPE SetFormat(LPCWAVEFORMATEX format) override
    {
        return forwardWith("::SetFormat", bytesOf(format), [&] { return real_->SetFormat(format); }, format);
    }

    HRESULT STDMETHODCALLTYPE GetObjectInPath(REFGUID object, DWORD index, REFGUID iid, LPVOID* out) override
    {
        const auto work = [&] { return real_->GetObjectInPath(object, index, iid, out); };
        return forward("8::GetObjectInPath", work, &object, index, &iid, out);
    }

    DSTAP_CALL(GetCaps, (LPDSBCAPS caps), caps)
    DSTAP_CALL(GetCurrentPosition, (LPDWORD play, LPDWORD write), play, write)
    DSTAP_CALL(GetFormat, (LPWAVEFORMATEX format, DWORD size, LPDWORD written), format, size, written)
    DSTAP_CALL(GetVolume, (LPLONG volume), volume)
    DSTAP_CALL(GetPan, (LPLONG pan), pan)
    DSTAP_CALL(GetFrequency, (LPDWORD frequency), frequency)
    DSTAP_CALL(GetStatus, (LPDWORD status), status)
    DSTAP_CALL(Lock, (DWORD at, DWORD bytes, LPVOID* first, LPDWORD firstBytes, LPVOID* second, LPDWORD secondBytes,
                      DWORD flags), at, bytes, first, firstBytes, second, secondBytes, flags)
    DSTAP_CALL(Play, (DWORD reserved, DWORD priority, DWORD flags), reserved, priority, flags)
    DSTAP_CALL(SetCurrentPosition, (DWORD position), position)
    DSTAP_CALL(SetVolume, (LONG volume), volume)
    DSTAP_CALL(SetPan, (LONG pan), pan)
    DSTAP_CALL(SetFrequency, (DWORD frequency), frequency)
    DSTAP_CALL(Stop, ())
    DSTAP_CALL(Unlock, (LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes), first, firstBytes, second,
               secondBytes)
    DSTAP_CALL(Restore, ())
    DSTAP_CALL8(SetFX, (DWORD count, LPDSEFFECTDESC effects, LPDWORD results), count, effects, results)
    DSTAP_CALL8(AcquireResources, (DWORD flags, DWORD count, LPDWORD results), flags, count, results)
};

class Buffer3DTap final : public Tap<IDirectSound3DBuffer8>
{
public:
    using Tap::Tap;

    HRESULT STDMETHODCALLTYPE SetAllParameters(LPCDS3DBUFFER parameters, DWORD apply) override
    {
        const auto work = [&] { return real_->SetAllParameters(parameters, apply); };
        return forwardWith("::SetAllParameters", bytesOf(parameters), work, parameters, apply);
    }

    DSTAP_CALL(GetAllParameters, (LPDS3DBUFFER parameters), parameters)
    DSTAP_CALL(GetConeAngles, (LPDWORD inside, LPDWORD outside), inside, outside)
    DSTAP_CALL(GetConeOrientation, (LPD3DVECTOR orientation), orientation)
    DSTAP_CALL(GetConeOutsideVolume, (LPLONG volume), volume)
    DSTAP_CALL(GetMaxDistance, (LPD3DVALUE distance), distance)
    DSTAP_CALL(GetMinDistance, (LPD3DVALUE distance), distance)
    DSTAP_CALL(GetMode, (LPDWORD mode), mode)
    DSTAP_CALL(GetPosition, (LPD3DVECTOR position), position)
    DSTAP_CALL(GetVelocity, (LPD3DVECTOR velocity), velocity)
    DSTAP_CALL(SetConeAngles, (DWORD inside, DWORD outside, DWORD apply), inside, outside, apply)
    DSTAP_CALL(SetConeOrientation, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z, apply)
    DSTAP_CALL(SetConeOutsideVolume, (LONG volume, DWORD apply), volume, apply)
    DSTAP_CALL(SetMaxDistance, (D3DVALUE distance, DWORD apply), distance, apply)
    DSTAP_CALL(SetMinDistance, (D3DVALUE distance, DWORD apply), distance, apply)
    DSTAP_CALL(SetMode, (DWORD mode, DWORD apply), mode, apply)
    DSTAP_CALL(SetPosition, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z, apply)
    DSTAP_CALL(SetVelocity, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z, apply)
};

class ListenerTap final : public Tap<IDirectSound3DListener8>
{
public:
    using Tap::Tap;

    HRESULT STDMETHODCALLTYPE SetAllParameters(LPCDS3DLISTENER parameters, DWORD apply) override
    {
        const auto work = [&] { return real_->SetAllParameters(parameters, apply); };
        return forwardWith("::SetAllParameters", bytesOf(parameters), work, parameters, apply);
    }

    DSTAP_CALL(GetAllParameters, (LPDS3DLISTENER parameters), parameters)
    DSTAP_CALL(GetDistanceFactor, (LPD3DVALUE factor), factor)
    DSTAP_CALL(GetDopplerFactor, (LPD3DVALUE factor), factor)
    DSTAP_CALL(GetOrientation, (LPD3DVECTOR front, LPD3DVECTOR top), front, top)
    DSTAP_CALL(GetPosition, (LPD3DVECTOR position), position)
    DSTAP_CALL(GetRolloffFactor, (LPD3DVALUE factor), factor)
    DSTAP_CALL(GetVelocity, (LPD3DVECTOR velocity), velocity)
    DSTAP_CALL(SetDistanceFactor, (D3DVALUE factor, DWORD apply), factor, apply)
    DSTAP_CALL(SetDopplerFactor, (D3DVALUE factor, DWORD apply), factor, apply)
    DSTAP_CALL(SetOrientation, (D3DVALUE xFront, D3DVALUE yFront, D3DVALUE zFront, D3DVALUE xTop, D3DVALUE yTop,
                                D3DVALUE zTop, DWORD apply), xFront, yFront, zFront, xTop, yTop, zTop, apply)
    DSTAP_CALL(SetPosition, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z, apply)
    DSTAP_CALL(SetRolloffFactor, (D3DVALUE factor, DWORD apply), factor, apply)
    DSTAP_CALL(SetVelocity, (D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply), x, y, z, apply)
    DSTAP_CALL(CommitDeferredSettings, ())
};

// Asked of a playback or a capture buffer. The events it is given are watched for leaks.
class NotifyTap final : public Tap<IDirectSoundNotify>
{
public:
    using Tap::Tap;

    HRESULT STDMETHODCALLTYPE SetNotificationPositions(DWORD count, LPCDSBPOSITIONNOTIFY positions) override
    {
        for (DWORD i = 0; positions && i < count; ++i)
            state_->trackEvent(positions[i].hEventNotify);
        const auto work = [&] { return real_->SetNotificationPositions(count, positions); };
        return forwardWith("::SetNotificationPositions", bytesOf(positions, positions ? count : 0), work, count,
                           positions);
    }
};

} // namespace

TapObject* newPlaybackTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real)
{
    if (IsEqualIID(riid, IID_IDirectSound8) || IsEqualIID(riid, IID_IDirectSound))
        return new DeviceTap(state, real, "IDirectSound8");
    if (IsEqualIID(riid, IID_IDirectSoundBuffer8) || IsEqualIID(riid, IID_IDirectSoundBuffer))
        return new BufferTap(state, real, "IDirectSoundBuffer");
    if (IsEqualIID(riid, IID_IDirectSound3DBuffer))
        return new Buffer3DTap(state, real, "IDirectSound3DBuffer");
    if (IsEqualIID(riid, IID_IDirectSound3DListener))
        return new ListenerTap(state, real, "IDirectSound3DListener");
    if (IsEqualIID(riid, IID_IDirectSoundNotify))
        return new NotifyTap(state, real, "IDirectSoundNotify");
    return nullptr;
}

} // namespace dstap
