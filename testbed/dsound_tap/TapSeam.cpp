// Binds the library's DirectSound seam to the tap a test has installed, and straight to the
// system's DirectSound (and clock) while none is.

#include "DirectSoundSeam.h"

#include "TapObject.h"

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

template <class I>
HRESULT create(const char* name, HRESULT(WINAPI* platform)(LPCGUID, I**, LPUNKNOWN), REFIID riid, LPCGUID device,
               I** out, LPUNKNOWN outer)
{
    const auto state = installed();
    if (!state)
        return platform(device, out, outer);
    if (out)
        *out = nullptr;
    const auto work = [&] {
        return dstap::tapResult(state, riid, platform(device, out, outer), reinterpret_cast<void**>(out));
    };
    return state->run(name, nullptr, {dstap::toArg(device), dstap::toArg(out), dstap::toArg(outer)},
                      dstap::bytesOf(device), work);
}

// Offers the test's device list, if it set one, instead of the system's.
HRESULT enumerate(bool capture, LPDSENUMCALLBACKA callback, LPVOID context)
{
    const auto platform = capture ? DirectSoundCaptureEnumerateA : DirectSoundEnumerateA;
    const auto state = installed();
    if (!state)
        return platform(callback, context);
    const auto work = [&]() -> HRESULT {
        std::unique_lock<std::mutex> lock(state->mutex);
        const auto devices = capture ? state->captureDevices : state->playbackDevices;
        lock.unlock();
        if (!devices)
            return platform(callback, context);
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
    return create("DirectSoundCreate8", DirectSoundCreate8, IID_IDirectSound8, device, sound, outer);
}

HRESULT createCapture8(LPCGUID device, LPDIRECTSOUNDCAPTURE8* capture, LPUNKNOWN outer)
{
    return create("DirectSoundCaptureCreate8", DirectSoundCaptureCreate8, IID_IDirectSoundCapture, device, capture,
                  outer);
}

HRESULT enumerateSound(LPDSENUMCALLBACKA callback, LPVOID context)
{
    return enumerate(false, callback, context);
}

HRESULT enumerateCapture(LPDSENUMCALLBACKA callback, LPVOID context)
{
    return enumerate(true, callback, context);
}

DWORD milliseconds()
{
    const auto state = installed();
    if (!state)
        return timeGetTime();
    std::lock_guard<std::mutex> lock(state->mutex);
    const DWORD now = state->clock;
    state->clock += state->clockStep;
    return now;
}

} // namespace DSndPlatform
