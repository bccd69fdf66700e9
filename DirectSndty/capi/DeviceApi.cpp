// Playback devices: the list, and one opened ready for every kind of play.

#include "DstyHandles.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace
{
// The list as the library enumerates it; `holder` keeps it.
CDSndDeviceInfoty* enumerate(CDirectSndDevicety& holder)
{
    return holder.enumerateDirectSndDeviceInfo();
}

// The default device by a null GUID, as the library opens a chosen "Primary Sound Driver".
int deviceGuid(int index, GUID& guid, GUID*& pGuid)
{
    pGuid = nullptr;
    if (index == -1)
        return DSTY_OK;
    CDirectSndDevicety holder;
    const CDSndDeviceInfoty* list = enumerate(holder);
    if (list == nullptr || index < 0 || index >= list->m_nDeviceNumber)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT, "no playback device of that number");
    if (index == list->m_nPrimaryDevice)
        return DSTY_OK;
    guid = list->m_guidDevice[index];
    pGuid = &guid;
    return DSTY_OK;
}
}

// The cooperative level reaches DirectSound one call late: the second call gives it the
// priority level, at which the primary buffer's format may be set.
int CDstyDevicety::bringUp(HWND hWnd, GUID* pGuid)
{
    if (!createDSndObject(pGuid))
        return 0;
    if (!setDSndCooperatLevelStd(hWnd, DSSCL_PRIORITY) || !setDSndCooperatLevelStd(hWnd, DSSCL_PRIORITY))
        return 0;
    return createDSndBuff1Primary();
}

int dsty_device_count(void)
{
    DstyCall call;
    CDirectSndDevicety holder;
    const CDSndDeviceInfoty* list = enumerate(holder);
    return list != nullptr ? list->m_nDeviceNumber : CDstyHost::instance().fail(DSTY_E_DEVICE, "no device list");
}

int dsty_device_name(int index, char* utf8, size_t size)
{
    DstyCall call;
    if (utf8 == nullptr || size == 0)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT);
    CDirectSndDevicety holder;
    const CDSndDeviceInfoty* list = enumerate(holder);
    if (list == nullptr || index < 0 || index >= list->m_nDeviceNumber)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT, "no playback device of that number");
    const std::string name = utf8Of(list->m_strDescription[index].GetString());
    const size_t copied = std::min(name.size(), size - 1);
    std::memcpy(utf8, name.data(), copied);
    utf8[copied] = '\0';
    return DSTY_OK;
}

int dsty_device_open(int index, dsty_device** out)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    if (out == nullptr)
        return host.fail(DSTY_E_ARGUMENT);
    *out = nullptr;
    GUID guid;
    GUID* pGuid = nullptr;
    const int found = deviceGuid(index, guid, pGuid);
    if (found != DSTY_OK)
        return found;
    std::unique_ptr<dsty_device> device(new (std::nothrow) dsty_device);
    if (!device)
        return host.fail(DSTY_E_MEMORY);
    const HWND hWnd = host.attachWindow();
    if (hWnd == NULL || !device->device.bringUp(hWnd, pGuid))
    {
        device->device.releaseDSndty(&device->device);
        device.reset();
        if (hWnd != NULL)
            host.detachWindow();
        return host.fail(DSTY_E_DEVICE, "the playback device could not be brought up");
    }
    host.open(device.get(), DstyKind::Device);
    *out = device.release();
    return DSTY_OK;
}

// What was made on the device goes first; the device lets go of DirectSound while its
// window still exists.
void dsty_device_close(dsty_device* device)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    if (checkHandle(device, DstyKind::Device) != DSTY_OK)
        return;
    while (!device->schedules.empty())
        freeSchedule(device->schedules.back());
    while (!device->streams.empty())
        freeStream(device->streams.back());
    while (!device->sounds.empty())
        freeSound(device->sounds.back());
    host.close(device);
    device->device.releaseDSndty(&device->device);
    delete device;
    host.detachWindow();
}

int dsty_device_caps(dsty_device* device, dsty_caps* out)
{
    DstyCall call;
    const int checked = checkHandle(device, DstyKind::Device);
    if (checked != DSTY_OK)
        return checked;
    if (out == nullptr)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT);
    DWORD dwMin = 0, dwMax = 0;
    if (!device->device.getDSnd2ndBufSmpRat(dwMin, dwMax))
        return CDstyHost::instance().fail(DSTY_E_DEVICE, "the device's capabilities could not be read");
    out->min_rate = dwMin;
    out->max_rate = dwMax;
    out->speaker_config = device->device.getSpeakerConfig();
    return DSTY_OK;
}
