#pragma once
// The base of every simulated COM object: its reference count, and the gate each COM method
// passes through (lock, log, scripted result).

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace fakeds
{

class FakeState;

// Opened at the top of every COM method; holds the fake's lock until the method returns.
//   Entry call = enter("IDirectSoundBuffer::Play", args(...));
//   if (call.refused()) return call.refusal();
//   return call.finish(play(...));
class Entry
{
public:
    Entry(FakeState& state, const char* method, const void* object, bool objectAlive,
          std::vector<std::uintptr_t> arguments);

    // A scripted failure, or a call through an interface already released: skip the work.
    bool refused() const;
    HRESULT refusal();
    // The simulated result, replaced by a scripted success code when the work succeeded.
    HRESULT finish(HRESULT result);

private:
    std::unique_lock<std::recursive_mutex> lock_;
    FakeState& state_;
    size_t index_;
    std::optional<HRESULT> scripted_;
    bool dead_;
};

class FakeObject
{
public:
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;
    virtual ~FakeObject() = default;

    const void* address() const { return address_; }
    LONG references() const { return refs_; }
    bool alive() const { return refs_ > 0; }
    // A reference the fake hands out itself: on creation (which starts at 1) or QueryInterface.
    void grab() { ++refs_; }

    virtual std::string describe() const = 0;
    // The object whose state this interface shows: itself, or for a tear-off interface
    // (3D, notify, listener) the buffer behind it.
    virtual FakeObject& owner() { return *this; }

protected:
    FakeObject(FakeState& state, const void* address, const char* interfaceName);

    ULONG addRef();
    ULONG release();
    Entry enter(const char* method, std::vector<std::uintptr_t> arguments) const;
    template <class Resolve>
    HRESULT queryThrough(const char* method, REFIID riid, void** out, Resolve resolve);

    virtual void onLastRelease() {}

    FakeState& state_;

private:
    const void* address_;
    std::string interface_;
    LONG refs_ = 1;
};

template <class Resolve>
HRESULT FakeObject::queryThrough(const char* method, REFIID riid, void** out, Resolve resolve)
{
    Entry call = enter(method, {reinterpret_cast<std::uintptr_t>(&riid),
                                reinterpret_cast<std::uintptr_t>(out)});
    if (out)
        *out = nullptr;
    if (call.refused())
        return call.refusal();
    if (!out)
        return call.finish(E_POINTER);
    return call.finish(resolve(riid, out));
}

// Owns every object made during a test. Objects are never freed while the test runs, so a
// Release through a stale pointer is caught and counted instead of corrupting memory.
class ObjectRegistry
{
public:
    template <class T>
    T* adopt(std::unique_ptr<T> object)
    {
        T* raw = object.get();
        byAddress_[raw->address()] = raw;
        owned_.push_back(std::move(object));
        return raw;
    }

    FakeObject* find(const void* address) const;

    template <class T>
    std::vector<T*> all() const
    {
        std::vector<T*> found;
        for (const auto& object : owned_) {
            if (T* match = dynamic_cast<T*>(object.get()))
                found.push_back(match);
        }
        return found;
    }

    template <class T>
    T* last() const
    {
        const auto found = all<T>();
        return found.empty() ? nullptr : found.back();
    }

    int live() const;
    std::string report() const;

private:
    std::vector<std::unique_ptr<FakeObject>> owned_;
    std::map<const void*, FakeObject*> byAddress_;
};

} // namespace fakeds
