#include "EnumerateDirectSndDevice.h"
#include "../platform/DirectSoundSeam.h"

CEnumerateDirectSndDevice::CEnumerateDirectSndDevice()
{
}

CEnumerateDirectSndDevice::~CEnumerateDirectSndDevice()
{
}

// Called once per device; always goes on to the end of the enumeration, but stores
// no more entries than the list can hold.
BOOL CALLBACK CEnumerateDirectSndDevice::enumerateCallback(LPGUID lpGuid, LPCSTR lpcstrDescription,
                                                           LPCSTR lpcstrModule, LPVOID lpContext)
{
    CDSndDeviceInfoty* pInfo = static_cast<CDSndDeviceInfoty*>(lpContext);
    int i = pInfo->m_nDeviceNumber;
    if (i >= CDSndDeviceInfoty::kCapacity)
        return TRUE;

    if (lpGuid == NULL)
    {
        ZeroMemory(&pInfo->m_guidDevice[i], sizeof(GUID));
        pInfo->m_nPrimaryDevice = i;
    }
    else
    {
        pInfo->m_guidDevice[i] = *lpGuid;
    }
    pInfo->m_strDescription[i].Format(_T("%hs"), lpcstrDescription);
    pInfo->m_strModule[i].Format(_T("%hs"), lpcstrModule);
    pInfo->m_nDeviceNumber++;
    return TRUE;
}

CDSndDeviceInfoty* CEnumerateDirectSndDevice::getDSndDeviceInfo()
{
    CDSndDeviceInfoty* pInfo = new CDSndDeviceInfoty;
    pInfo->resetDeviceInfo();
    HRESULT hr = DSndPlatform::enumerateSound(enumerateCallback, pInfo);
    if (hr == DS_OK && pInfo->m_nDeviceNumber > 0)
        return pInfo;

    delete pInfo;
    return NULL;
}

CDSndDeviceInfoty* CEnumerateDirectSndDevice::getDSndDeviceCaptureInfo()
{
    CDSndDeviceInfoty* pInfo = new CDSndDeviceInfoty;
    pInfo->m_nDeviceNumber = 0;
    HRESULT hr = DSndPlatform::enumerateCapture(enumerateCallback, pInfo);
    if (hr == DS_OK && pInfo->m_nDeviceNumber > 0)
        return pInfo;

    delete pInfo;
    return NULL;
}

int CEnumerateDirectSndDevice::getDSndDeviceNumber()
{
    CDSndDeviceInfoty info;
    info.m_nDeviceNumber = 0;
    DSndPlatform::enumerateSound(enumerateCallback, &info);
    return info.m_nDeviceNumber < 0 ? 0 : info.m_nDeviceNumber;
}

int CEnumerateDirectSndDevice::getDSndDeviceCaptureNumber()
{
    CDSndDeviceInfoty info;
    info.m_nDeviceNumber = 0;
    HRESULT hr = DSndPlatform::enumerateCapture(enumerateCallback, &info);
    if (hr != DS_OK)
        return -1;
    return info.m_nDeviceNumber;
}
