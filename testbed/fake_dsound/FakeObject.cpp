#include "FakeObject.h"

#include "FakeState.h"

#include <cassert>
#include <sstream>

namespace fakeds
{

Entry::Entry(FakeState& state, const char* method, const void* object, bool objectAlive,
             std::vector<std::uintptr_t> arguments)
    : lock_(state.mutex), state_(state), dead_(!objectAlive)
{
    assert(isScriptable(method));
    index_ = state.log.append(Call{method, object, std::move(arguments)});
    scripted_ = state.script.next(method);
    if (dead_)
        ++state.deadCalls;
}

bool Entry::refused() const
{
    return dead_ || (scripted_ && FAILED(*scripted_));
}

HRESULT Entry::refusal()
{
    const HRESULT result = dead_ ? E_UNEXPECTED : *scripted_;
    state_.log.setResult(index_, result);
    return result;
}

HRESULT Entry::finish(HRESULT result)
{
    if (SUCCEEDED(result) && scripted_)
        result = *scripted_;
    state_.log.setResult(index_, result);
    return result;
}

FakeObject::FakeObject(FakeState& state, const void* address, const char* interfaceName)
    : state_(state), address_(address), interface_(interfaceName)
{
}

ULONG FakeObject::addRef()
{
    std::lock_guard<std::recursive_mutex> lock(state_.mutex);
    const size_t index = state_.log.append(Call{interface_ + "::AddRef", address_, {}});
    if (refs_ <= 0) {
        // Reviving a released interface is a fault in the caller, not a new reference.
        ++state_.deadCalls;
        return 0;
    }
    state_.log.setResult(index, ++refs_);
    return static_cast<ULONG>(refs_);
}

ULONG FakeObject::release()
{
    std::lock_guard<std::recursive_mutex> lock(state_.mutex);
    const size_t index = state_.log.append(Call{interface_ + "::Release", address_, {}});
    if (refs_ <= 0) {
        ++state_.overReleases;
        return 0;
    }
    state_.log.setResult(index, --refs_);
    if (refs_ == 0)
        onLastRelease();
    return static_cast<ULONG>(refs_);
}

Entry FakeObject::enter(const char* method, std::vector<std::uintptr_t> arguments) const
{
    return Entry(state_, method, address_, alive(), std::move(arguments));
}

FakeObject* ObjectRegistry::find(const void* address) const
{
    const auto hit = byAddress_.find(address);
    return hit == byAddress_.end() ? nullptr : hit->second;
}

int ObjectRegistry::live() const
{
    int count = 0;
    for (const auto& object : owned_)
        count += object->alive() ? 1 : 0;
    return count;
}

std::string ObjectRegistry::report() const
{
    std::ostringstream text;
    for (const auto& object : owned_) {
        if (!object->alive())
            continue;
        const LONG refs = object->references();
        text << object->describe() << " at " << object->address() << ": " << refs
             << (refs == 1 ? " reference\n" : " references\n");
    }
    return text.str();
}

} // namespace fakeds
