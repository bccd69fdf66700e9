// Binds the library's DirectSound seam to the tap a test has installed, and straight to the
// system's DirectSound (and clock) while none is.

#include "DirectSoundSeam.h"

#include "TapObject.h"
#include "TapSeam.h"

#include <stdexcept>

namespace
{

std::mutex g_mutex;
std::shared_ptr<dstap::TapState> g_installed;

// A copy, so that a call in progress on a worker thread keeps the state alive.
std::shared_ptr<dstap::TapState> installed()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_installed;
}


HRESULT enumerate(const std::shared_ptr<dstap::TapState>& state, bool capture, LPDSENUMCALLBACKA callback,
                  LPVOID context)
{
    const auto work = [&]() -> HRESULT {
        const auto devices = capture ? state->captureDevices() : state->playbackDevices();
        if (!devices)
            return capture ? DirectSoundCaptureEnumerateA(callback, context) : DirectSoundEnumerateA(callback, context);
        for (const dstap::DeviceEntry& device : *devices) {
            GUID guid = device.guid;
            if (!callback(device.hasGuid ? &guid : nullptr, device.description.c_str(), device.module.c_str(), context))
                break;
        }
        return DS_OK;
    };
    return state->run(capture ? "DirectSoundCaptureEnumerateA" : "DirectSoundEnumerateA", nullptr,
                      {dstap::toArg(callback), dstap::toArg(context)}, {}, work);
}

} // namespace

namespace dstap
{

void install(std::shared_ptr<TapState> state)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_installed)
        throw std::logic_error("a DSoundTap is already installed");
    g_installed = std::move(state);
}

void uninstall()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_installed.reset();
}

} // namespace dstap

namespace DSndPlatform
{

HRESULT createSound8(LPCGUID device, LPDIRECTSOUND8* sound, LPUNKNOWN outer)
{
    const auto state = installed();
    if (!state)
        return DirectSoundCreate8(device, sound, outer);
    if (sound)
        *sound = nullptr;
    const auto work = [&] {
        return dstap::tapResult(state, IID_IDirectSound8, DirectSoundCreate8(device, sound, outer),
                                reinterpret_cast<void**>(sound), nullptr);
    };
    return state->run("DirectSoundCreate8", nullptr, {dstap::toArg(device), dstap::toArg(sound), dstap::toArg(outer)},
                      dstap::bytesOf(device), work);
}

HRESULT createCapture8(LPCGUID device, LPDIRECTSOUNDCAPTURE8* capture, LPUNKNOWN outer)
{
    const auto state = installed();
    if (!state)
        return DirectSoundCaptureCreate8(device, capture, outer);
    if (capture)
        *capture = nullptr;
    const auto work = [&] {
        return dstap::tapResult(state, IID_IDirectSoundCapture, DirectSoundCaptureCreate8(device, capture, outer),
                                reinterpret_cast<void**>(capture), nullptr);
    };
    return state->run("DirectSoundCaptureCreate8", nullptr,
                      {dstap::toArg(device), dstap::toArg(capture), dstap::toArg(outer)}, dstap::bytesOf(device), work);
}

HRESULT enumerateSound(LPDSENUMCALLBACKA callback, LPVOID context)
{
    const auto state = installed();
    return state ? enumerate(state, false, callback, context) : DirectSoundEnumerateA(callback, context);
}

HRESULT enumerateCapture(LPDSENUMCALLBACKA callback, LPVOID context)
{
    const auto state = installed();
    return state ? enumerate(state, true, callback, context) : DirectSoundCaptureEnumerateA(callback, context);
}

DWORD milliseconds()
{
    const auto state = installed();
    return state ? state->readClock() : timeGetTime();
}

} // namespace DSndPlatform
