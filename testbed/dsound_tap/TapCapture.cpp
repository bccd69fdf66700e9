// The tapped capture interfaces: the capture device and its buffers.

#include "TapFactories.h"

namespace dstap
{

namespace
{

class CaptureTap final : public IDirectSoundCapture8, public TapObject
{
public:
    CaptureTap(std::shared_ptr<TapState> state, IUnknown* real, const void* parent)
        : TapObject(std::move(state), real, "IDirectSoundCapture", parent),
          real_(static_cast<IDirectSoundCapture8*>(real))
    {
    }
    DSTAP_IUNKNOWN(IDirectSoundCapture8)

    HRESULT STDMETHODCALLTYPE CreateCaptureBuffer(LPCDSCBUFFERDESC desc, LPDIRECTSOUNDCAPTUREBUFFER* out,
                                                  LPUNKNOWN outer) override
    {
        if (out)
            *out = nullptr;
        std::vector<BYTE> data = bytesOf(desc);
        if (desc && desc->lpwfxFormat) {
            const std::vector<BYTE> format = bytesOf(desc->lpwfxFormat);
            data.insert(data.end(), format.begin(), format.end());
        }
        const auto work = [&] {
            return tapResult(state_, IID_IDirectSoundCaptureBuffer, real_->CreateCaptureBuffer(desc, out, outer),
                             reinterpret_cast<void**>(out), self());
        };
        return forwardWith("IDirectSoundCapture::CreateCaptureBuffer", std::move(data), work, desc, out, outer);
    }

    DSTAP_CALL("IDirectSoundCapture", GetCaps, (LPDSCCAPS caps), caps)
    DSTAP_CALL("IDirectSoundCapture", Initialize, (LPCGUID guid), guid)

private:
    IDirectSoundCapture8* real_;
};

class CaptureBufferTap final : public IDirectSoundCaptureBuffer8, public TapObject
{
public:
    CaptureBufferTap(std::shared_ptr<TapState> state, IUnknown* real, const void* parent)
        : TapObject(std::move(state), real, "IDirectSoundCaptureBuffer", parent),
          real_(static_cast<IDirectSoundCaptureBuffer8*>(real))
    {
    }
    DSTAP_IUNKNOWN(IDirectSoundCaptureBuffer8)

    HRESULT STDMETHODCALLTYPE Initialize(LPDIRECTSOUNDCAPTURE device, LPCDSCBUFFERDESC desc) override
    {
        const auto work = [&] {
            return real_->Initialize(static_cast<IDirectSoundCapture*>(untapped(state_, device)), desc);
        };
        return forward("IDirectSoundCaptureBuffer::Initialize", work, device, desc);
    }

    HRESULT STDMETHODCALLTYPE GetObjectInPath(REFGUID object, DWORD index, REFGUID iid, LPVOID* out) override
    {
        return forward("IDirectSoundCaptureBuffer8::GetObjectInPath",
                       [&] { return real_->GetObjectInPath(object, index, iid, out); }, &object, index, &iid, out);
    }

    DSTAP_CALL("IDirectSoundCaptureBuffer", GetCaps, (LPDSCBCAPS caps), caps)
    DSTAP_CALL("IDirectSoundCaptureBuffer", GetCurrentPosition, (LPDWORD capture, LPDWORD read), capture, read)
    DSTAP_CALL("IDirectSoundCaptureBuffer", GetFormat, (LPWAVEFORMATEX format, DWORD size, LPDWORD written), format,
               size, written)
    DSTAP_CALL("IDirectSoundCaptureBuffer", GetStatus, (LPDWORD status), status)
    DSTAP_CALL("IDirectSoundCaptureBuffer", Lock,
               (DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes, LPVOID* second, LPDWORD secondBytes,
                DWORD flags),
               offset, bytes, first, firstBytes, second, secondBytes, flags)
    DSTAP_CALL("IDirectSoundCaptureBuffer", Start, (DWORD flags), flags)
    DSTAP_CALL0("IDirectSoundCaptureBuffer", Stop)
    DSTAP_CALL("IDirectSoundCaptureBuffer", Unlock, (LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes),
               first, firstBytes, second, secondBytes)
    DSTAP_CALL("IDirectSoundCaptureBuffer8", GetFXStatus, (DWORD count, LPDWORD status), count, status)

private:
    IDirectSoundCaptureBuffer8* real_;
};

} // namespace

TapObject* newCaptureTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real, const void* parent)
{
    if (IsEqualIID(riid, IID_IDirectSoundCapture))
        return new CaptureTap(state, real, parent);
    if (IsEqualIID(riid, IID_IDirectSoundCaptureBuffer8) || IsEqualIID(riid, IID_IDirectSoundCaptureBuffer))
        return new CaptureBufferTap(state, real, parent);
    return nullptr;
}

} // namespace dstap
