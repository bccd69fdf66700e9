// Binds the library's DirectSound seam to the simulated card a test has installed. Without
// one, DirectSound behaves like a machine without a sound card and time stands still.

#include "DirectSoundSeam.h"

#include "FakeEntry.h"

#include <mutex>
#include <stdexcept>

namespace
{

std::mutex g_mutex;
std::shared_ptr<fakeds::FakeState> g_installed;

// A copy, so that a call in progress on a worker thread keeps the state alive.
std::shared_ptr<fakeds::FakeState> installed()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_installed;
}

} // namespace

namespace fakeds
{

void install(std::shared_ptr<FakeState> state)
{
    std::lock_guard<std::mutex> lock(g_mutex);
    if (g_installed)
        throw std::logic_error("a FakeDirectSound is already installed");
    g_installed = std::move(state);
}

void uninstall()
{
    std::lock_guard<std::mutex> lock(g_mutex);
    g_installed.reset();
}

} // namespace fakeds

namespace DSndPlatform
{

HRESULT createSound8(LPCGUID device, LPDIRECTSOUND8* sound, LPUNKNOWN outer)
{
    if (const auto state = installed())
        return fakeds::createSound8(*state, device, sound, outer);
    if (sound)
        *sound = nullptr;
    return DSERR_NODRIVER;
}

HRESULT createCapture8(LPCGUID device, LPDIRECTSOUNDCAPTURE8* capture, LPUNKNOWN outer)
{
    if (const auto state = installed())
        return fakeds::createCapture8(*state, device, capture, outer);
    if (capture)
        *capture = nullptr;
    return DSERR_NODRIVER;
}

HRESULT enumerateSound(LPDSENUMCALLBACKA callback, LPVOID context)
{
    if (const auto state = installed())
        return fakeds::enumerateSound(*state, callback, context);
    return DS_OK;
}

HRESULT enumerateCapture(LPDSENUMCALLBACKA callback, LPVOID context)
{
    if (const auto state = installed())
        return fakeds::enumerateCapture(*state, callback, context);
    return DS_OK;
}

DWORD milliseconds()
{
    if (const auto state = installed())
        return fakeds::milliseconds(*state);
    return 0;
}

} // namespace DSndPlatform
