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
    TapObject(std::shared_ptr<TapState> state, IUnknown* real, const char* interfaceName, const void* parent);
    virtual ~TapObject() = default;
    TapObject(const TapObject&) = delete;
    TapObject& operator=(const TapObject&) = delete;

    virtual void* self() = 0; // the interface pointer the library holds
    IUnknown* realUnknown() const { return real_; }
    const char* interfaceName() const { return interface_; }
    const void* parent() const { return parent_; } // the object this one was asked of
    LONG count() const { return count_; }
    // The library has taken one more platform reference through this interface.
    void adoptReference() { ++count_; }

protected:
    ULONG addRef();
    ULONG release();
    // QueryInterface: the platform's answer, tapped.
    HRESULT query(REFIID riid, void** out);

    template <class Work, class... A>
    HRESULT forward(const std::string& method, Work&& work, A... args)
    {
        return forwardWith(method, {}, std::forward<Work>(work), args...);
    }

    // As forward, logging a copy of the structure(s) the call was given.
    template <class Work, class... A>
    HRESULT forwardWith(const std::string& method, std::vector<BYTE> data, Work&& work, A... args)
    {
        if (count_ <= 0) {
            state_->fault("call through released " + std::string(interface_) + ": " + method);
            return E_UNEXPECTED;
        }
        return state_->run(method, self(), {toArg(args)...}, std::move(data), std::forward<Work>(work));
    }

    std::shared_ptr<TapState> state_;

private:
    IUnknown* real_;
    const char* interface_;
    const void* parent_;
    std::atomic<LONG> count_{1};
};

// The platform's interface behind a tapped one, for arguments that name another interface.
IUnknown* untapped(const std::shared_ptr<TapState>& state, const void* maybeTapped);

// Hands the library a tapped interface for a platform reference it has just been given (on
// success; a failed call leaves *out null). `riid` chooses the tap's kind.
HRESULT tapResult(const std::shared_ptr<TapState>& state, REFIID riid, HRESULT hr, void** out,
                  const void* parent);

template <class T>
std::vector<BYTE> bytesOf(const T* value, size_t count = 1)
{
    if (!value)
        return {};
    const auto* first = reinterpret_cast<const BYTE*>(value);
    return std::vector<BYTE>(first, first + count * sizeof(T));
}

// The boilerplate of a tapped interface: IUnknown, and one macro per forwarded method.
#define DSTAP_IUNKNOWN(INTERFACE)                                                                \
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override                   \
    {                                                                                            \
        return query(riid, out);                                                                 \
    }                                                                                            \
    ULONG STDMETHODCALLTYPE AddRef() override { return addRef(); }                               \
    ULONG STDMETHODCALLTYPE Release() override { return release(); }                             \
    void* self() override { return static_cast<INTERFACE*>(this); }

#define DSTAP_CALL(NAME, METHOD, PARAMS, ...)                                                     \
    HRESULT STDMETHODCALLTYPE METHOD PARAMS override                                             \
    {                                                                                            \
        return forward(NAME "::" #METHOD, [&] { return real_->METHOD(__VA_ARGS__); }, __VA_ARGS__); \
    }

#define DSTAP_CALL0(NAME, METHOD)                                                                 \
    HRESULT STDMETHODCALLTYPE METHOD() override                                                  \
    {                                                                                            \
        return forward(NAME "::" #METHOD, [&] { return real_->METHOD(); });                      \
    }

} // namespace dstap
