#include "TapObject.h"

namespace dstap
{

ULONG TapObject::addRef()
{
    if (count_ <= 0) {
        state_->fault("AddRef on released " + std::string(interface_));
        return 0;
    }
    real_->AddRef();
    const ULONG count = static_cast<ULONG>(++count_);
    state_->logCount(std::string(interface_) + "::AddRef", self(), count);
    return count;
}

ULONG TapObject::release()
{
    if (count_ <= 0) {
        state_->fault("Release past zero of " + std::string(interface_));
        return 0;
    }
    const ULONG count = static_cast<ULONG>(--count_);
    real_->Release();
    state_->logCount(std::string(interface_) + "::Release", self(), count);
    return count;
}

HRESULT TapObject::query(REFIID riid, void** out)
{
    if (out)
        *out = nullptr;
    const auto work = [&]() -> HRESULT {
        if (!out)
            return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown)) {
            real_->AddRef();
            adoptReference();
            *out = self();
            return S_OK;
        }
        return tapResult(state_, riid, real_->QueryInterface(riid, out), out);
    };
    return forwardWith("::QueryInterface", bytesOf(&riid), work, &riid, out);
}

IUnknown* untapped(const std::shared_ptr<TapState>& state, const void* maybeTapped)
{
    if (TapObject* tap = state->find(maybeTapped))
        return tap->realUnknown();
    return static_cast<IUnknown*>(const_cast<void*>(maybeTapped));
}

HRESULT tapResult(const std::shared_ptr<TapState>& state, REFIID riid, HRESULT hr, void** out)
{
    if (FAILED(hr) || !out || !*out)
        return hr;
    auto* real = static_cast<IUnknown*>(*out);
    TapObject* made = newPlaybackTap(state, riid, real);
    if (!made)
        made = newCaptureTap(state, riid, real);
    if (!made) {
        real->Release();
        *out = nullptr;
        return E_NOINTERFACE;
    }
    std::lock_guard<std::mutex> lock(state->mutex);
    // The platform hands out one pointer per interface: keep one tap for it too.
    for (TapObject* known : state->objects) {
        if (known->realUnknown() == real && known->count() > 0 &&
            std::string(known->interfaceName()) == made->interfaceName()) {
            delete made;
            known->adoptReference();
            *out = known->self();
            return hr;
        }
    }
    state->objects.push_back(made);
    *out = made->self();
    return hr;
}

} // namespace dstap
