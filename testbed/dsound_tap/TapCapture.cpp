// The tapped capture interfaces: the capture device and its buffers.

#include "TapObject.h"

namespace dstap
{

namespace
{

class CaptureTap final : public Tap<IDirectSoundCapture8>
{
public:
    using Tap::Tap;

    HRESULT STDMETHODCALLTYPE CreateCaptureBuffer(LPCDSCBUFFERDESC desc, LPDIRECTSOUNDCAPTUREBUFFER* out,
                                                  LPUNKNOWN outer) override
    {
        if (out)
            *out = nullptr;
        const auto work = [&] {
            return tapResult(state_, IID_IDirectSoundCaptureBuffer, real_->CreateCaptureBuffer(desc, out, outer),
                             reinterpret_cast<void**>(out));
        };
        return forwardWith("::CreateCaptureBuffer", descriptionBytes(desc), work, desc, out, outer);
    }

    DSTAP_CALL(GetCaps, (LPDSCCAPS caps), caps)
    DSTAP_CALL(Initialize, (LPCGUID guid), guid)
};

class CaptureBufferTap final : public Tap<IDirectSoundCaptureBuffer8>
{
public:
    using Tap::Tap;

    HRESULT STDMETHODCALLTYPE Initialize(LPDIRECTSOUNDCAPTURE device, LPCDSCBUFFERDESC desc) override
    {
        const auto work = [&] {
            return real_->Initialize(static_cast<IDirectSoundCapture*>(untapped(state_, device)), desc);
        };
        return forward("::Initialize", work, device, desc);
    }

    HRESULT STDMETHODCALLTYPE GetObjectInPath(REFGUID object, DWORD index, REFGUID iid, LPVOID* out) override
    {
        const auto work = [&] { return real_->GetObjectInPath(object, index, iid, out); };
        return forward("8::GetObjectInPath", work, &object, index, &iid, out);
    }

    DSTAP_CALL(GetCaps, (LPDSCBCAPS caps), caps)
    DSTAP_CALL(GetCurrentPosition, (LPDWORD capture, LPDWORD read), capture, read)
    DSTAP_CALL(GetFormat, (LPWAVEFORMATEX format, DWORD size, LPDWORD written), format, size, written)
    DSTAP_CALL(GetStatus, (LPDWORD status), status)
    DSTAP_CALL(Lock, (DWORD at, DWORD bytes, LPVOID* first, LPDWORD firstBytes, LPVOID* second, LPDWORD secondBytes,
                      DWORD flags), at, bytes, first, firstBytes, second, secondBytes, flags)
    DSTAP_CALL(Start, (DWORD flags), flags)
    DSTAP_CALL(Stop, ())
    DSTAP_CALL(Unlock, (LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes), first, firstBytes, second,
               secondBytes)
    DSTAP_CALL8(GetFXStatus, (DWORD count, LPDWORD status), count, status)
};

} // namespace

TapObject* newCaptureTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real)
{
    if (IsEqualIID(riid, IID_IDirectSoundCapture))
        return new CaptureTap(state, real, "IDirectSoundCapture");
    if (IsEqualIID(riid, IID_IDirectSoundCaptureBuffer8) || IsEqualIID(riid, IID_IDirectSoundCaptureBuffer))
        return new CaptureBufferTap(state, real, "IDirectSoundCaptureBuffer");
    return nullptr;
}

} // namespace dstap
