#pragma once
// The common part of every tapped interface: its reference count (kept apart from the
// platform's, so that the library's own references can be accounted), and the forwarding of a
// call through the log and the script to the platform.

#include "TapState.h"

#include <atomic>
#include <memory>

namespace dstap
{

class TapObject
{
public:
    TapObject(std::shared_ptr<TapState> state, IUnknown* real, const char* interfaceName)
        : state_(std::move(state)), real_(real), interface_(interfaceName)
    {
    }
    virtual ~TapObject() = default;
    TapObject(const TapObject&) = delete;
    TapObject& operator=(const TapObject&) = delete;

    virtual void* self() = 0; // the interface pointer the library holds
    IUnknown* realUnknown() const { return real_; }
    const char* interfaceName() const { return interface_; }
    LONG count() const { return count_; }
    // The library has taken one more platform reference through this interface.
    void adoptReference() { ++count_; }

protected:
    ULONG addRef();
    ULONG release();
    HRESULT query(REFIID riid, void** out); // the platform's answer, tapped

    // Logs the call as the interface's name followed by `suffix` ("::Play"), with its arguments
    // and a copy of the structure(s) in `data`, and answers it through the script or `work`.
    template <class... A>
    HRESULT forwardWith(const char* suffix, std::vector<BYTE> data, const std::function<HRESULT()>& work, A... args)
    {
        const std::string method = interface_ + std::string(suffix);
        if (count_ <= 0) {
            state_->fault("call through released " + std::string(interface_) + ": " + method);
            return E_UNEXPECTED;
        }
        return state_->run(method, self(), {toArg(args)...}, std::move(data), work);
    }
    template <class... A>
    HRESULT forward(const char* suffix, const std::function<HRESULT()>& work, A... args)
    {
        return forwardWith(suffix, {}, work, args...);
    }

    std::shared_ptr<TapState> state_;

private:
    IUnknown* real_;
    const char* interface_;
    std::atomic<LONG> count_{1};
};

// A tapped interface of type I, logged under `interfaceName`.
template <class I>
class Tap : public I, public TapObject
{
public:
    Tap(std::shared_ptr<TapState> state, IUnknown* real, const char* interfaceName)
        : TapObject(std::move(state), real, interfaceName), real_(static_cast<I*>(real))
    {
    }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override { return query(riid, out); }
    ULONG STDMETHODCALLTYPE AddRef() override { return addRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return release(); }
    void* self() override { return static_cast<I*>(this); }

protected:
    I* const real_;
};

// One forwarded method: logged with its arguments, then scripted or passed to the platform.
// Out-values are written by the platform, or by a test's answer through the pointer arguments.
#define DSTAP_CALL(METHOD, PARAMS, ...)                                                            \
    HRESULT STDMETHODCALLTYPE METHOD PARAMS override                                              \
    {                                                                                             \
        return forward("::" #METHOD, [&] { return real_->METHOD(__VA_ARGS__); }, ##__VA_ARGS__);  \
    }
// A method the "8" version of the interface adds, logged under that name.
#define DSTAP_CALL8(METHOD, PARAMS, ...)                                                           \
    HRESULT STDMETHODCALLTYPE METHOD PARAMS override                                              \
    {                                                                                             \
        return forward("8::" #METHOD, [&] { return real_->METHOD(__VA_ARGS__); }, __VA_ARGS__);   \
    }

// The platform's interface behind a tapped one, for arguments that name another interface.
IUnknown* untapped(const std::shared_ptr<TapState>& state, const void* maybeTapped);

// Hands the library a tapped interface for a platform reference it has just been given (on
// success; a failed call leaves *out null). `riid` chooses the tap's kind.
HRESULT tapResult(const std::shared_ptr<TapState>& state, REFIID riid, HRESULT hr, void** out);

// The tapped interfaces of each side, made for a platform interface of the kind `riid` names;
// null for an interface of the other side.
TapObject* newPlaybackTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real);
TapObject* newCaptureTap(const std::shared_ptr<TapState>& state, REFIID riid, IUnknown* real);

template <class T>
std::vector<BYTE> bytesOf(const T* value, size_t count = 1)
{
    if (!value)
        return {};
    const auto* first = reinterpret_cast<const BYTE*>(value);
    return std::vector<BYTE>(first, first + count * sizeof(T));
}

// A buffer description followed by the format it points to, if any.
template <class Desc>
std::vector<BYTE> descriptionBytes(const Desc* desc)
{
    std::vector<BYTE> data = bytesOf(desc);
    const std::vector<BYTE> format = bytesOf(desc ? desc->lpwfxFormat : nullptr);
    data.insert(data.end(), format.begin(), format.end());
    return data;
}

} // namespace dstap
