#pragma once
// Lists the system's playback or capture devices into a CDSndDeviceInfoty and counts them.

#include "DSndDeviceInfoty.h"

class AFX_EXT_CLASS CEnumerateDirectSndDevice : public CObject
{
public:
    CEnumerateDirectSndDevice();
    virtual ~CEnumerateDirectSndDevice();

    // Lists are owned by the caller.
    CDSndDeviceInfoty* getDSndDeviceInfo();
    CDSndDeviceInfoty* getDSndDeviceCaptureInfo();
    int getDSndDeviceNumber();
    int getDSndDeviceCaptureNumber();

private:
    static BOOL CALLBACK enumerateCallback(LPGUID lpGuid, LPCSTR lpcstrDescription,
                                           LPCSTR lpcstrModule, LPVOID lpContext);
};
