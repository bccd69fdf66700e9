#include "DirectSoundSeam.h"

namespace DSndPlatform
{
HRESULT createSound8(LPCGUID device, LPDIRECTSOUND8* sound, LPUNKNOWN outer)
{
    return DirectSoundCreate8(device, sound, outer);
}

HRESULT createCapture8(LPCGUID device, LPDIRECTSOUNDCAPTURE8* capture, LPUNKNOWN outer)
{
    return DirectSoundCaptureCreate8(device, capture, outer);
}

HRESULT enumerateSound(LPDSENUMCALLBACKA callback, LPVOID context)
{
    return DirectSoundEnumerateA(callback, context);
}

HRESULT enumerateCapture(LPDSENUMCALLBACKA callback, LPVOID context)
{
    return DirectSoundCaptureEnumerateA(callback, context);
}

DWORD milliseconds()
{
    return timeGetTime();
}
}
