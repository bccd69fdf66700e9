#pragma once
// The DirectSound entry functions as the simulated card answers them.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>

#include <memory>

namespace fakeds
{

class FakeState;

HRESULT createSound8(FakeState& state, LPCGUID device, LPDIRECTSOUND8* sound, LPUNKNOWN outer);
HRESULT createCapture8(FakeState& state, LPCGUID device, LPDIRECTSOUNDCAPTURE8* capture, LPUNKNOWN outer);
HRESULT enumerateSound(FakeState& state, LPDSENUMCALLBACKA callback, LPVOID context);
HRESULT enumerateCapture(FakeState& state, LPDSENUMCALLBACKA callback, LPVOID context);
DWORD milliseconds(FakeState& state);

// Makes `state` the target of the library's DirectSound seam (FakeSeam.cpp). Throws
// std::logic_error if another is installed: one simulated card at a time.
void install(std::shared_ptr<FakeState> state);
void uninstall();

} // namespace fakeds
