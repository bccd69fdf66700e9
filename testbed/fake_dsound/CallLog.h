#pragma once
// The record of every call the library makes on the simulated DirectSound, and the names a
// test may use for them.

#include "FakeRecords.h"

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace fakeds
{

class CallLog
{
public:
    size_t append(Call call);
    void setResult(size_t index, HRESULT result);
    void clear();

    const std::vector<Call>& calls() const { return calls_; }
    std::vector<Call> callsTo(const std::string& method) const;
    int count(const std::string& method) const;
    int count(const std::string& method, const void* object) const;

private:
    std::vector<Call> calls_;
};

// Every name the fake logs: the entry functions, and "Interface::Method" for the COM methods
// (QueryInterface under the object's main interface, AddRef/Release under the interface itself).
bool isKnownMethod(const std::string& method);
// AddRef and Release are logged but cannot be given scripted results.
bool isScriptable(const std::string& method);

// Converts one COM argument to its logged form.
template <class T>
std::uintptr_t toArg(T value)
{
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<std::uintptr_t>(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        const float narrow = static_cast<float>(value);
        std::uint32_t bits = 0;
        std::memcpy(&bits, &narrow, sizeof bits);
        return bits;
    } else {
        return static_cast<std::uintptr_t>(value);
    }
}

template <class... A>
std::vector<std::uintptr_t> args(A... values)
{
    return {toArg(values)...};
}

} // namespace fakeds
