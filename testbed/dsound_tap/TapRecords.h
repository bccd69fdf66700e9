#pragma once
// What the tap remembers of the calls the library made through it, and the copies of
// structured arguments a test reads afterwards.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

namespace dstap
{

// One call as the library made it.
struct Call
{
    std::string method;               // "Interface::Method", or the entry function's name
    const void* object = nullptr;     // interface the call came through; null for entry functions
    std::vector<std::uintptr_t> args; // in order; pointers as addresses, floats as their bit pattern
    std::vector<BYTE> data;           // copy of the structure(s) the call was given, where logged
    HRESULT result = S_OK;            // what the library got back (AddRef/Release: the new count)

    // The pointer argument at `index`, for an answer that writes the call's out-values.
    template <class T>
    T* out(size_t index) const { return reinterpret_cast<T*>(args.at(index)); }
};

// A test's replacement for the platform's work in one call: it writes the out-values through
// the call's pointer arguments and gives the result.
using Answer = std::function<HRESULT(const Call&)>;

// A device as enumeration offers it.
struct DeviceEntry
{
    bool hasGuid;
    GUID guid;
    std::string description;
    std::string module;
};

// IDirectSound8::CreateSoundBuffer or IDirectSoundCapture::CreateCaptureBuffer.
template <class Desc>
struct CreationRequest
{
    const void* device;
    Desc desc;
    bool hasFormat;
    WAVEFORMATEX format; // copied during the call
    HRESULT result;
};
using BufferRequest = CreationRequest<DSBUFFERDESC>;
using CaptureBufferRequest = CreationRequest<DSCBUFFERDESC>;

// IDirectSoundNotify::SetNotificationPositions, on a playback or a capture buffer.
struct NotificationSet
{
    const void* object; // the notify interface
    std::vector<DSBPOSITIONNOTIFY> positions;
    HRESULT result;
};

// IDirectSound3DBuffer::SetAllParameters.
struct Buffer3DSet
{
    const void* object;
    DS3DBUFFER parameters;
    DWORD apply;
    HRESULT result;
};

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

} // namespace dstap
