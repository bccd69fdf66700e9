#pragma once
// The library's one route to DirectSound's entry functions and the millisecond clock.
// The DLL binds these to the system (DirectSoundSeam.cpp); the unit tests bind them to a
// tap that logs and scripts every call on its way to the system. Interfaces obtained
// through them are used directly.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>

namespace DSndPlatform
{
HRESULT createSound8(LPCGUID device, LPDIRECTSOUND8* sound, LPUNKNOWN outer);
HRESULT createCapture8(LPCGUID device, LPDIRECTSOUNDCAPTURE8* capture, LPUNKNOWN outer);
HRESULT enumerateSound(LPDSENUMCALLBACKA callback, LPVOID context);
HRESULT enumerateCapture(LPDSENUMCALLBACKA callback, LPVOID context);
DWORD milliseconds();
}
