// A small host of the library: lists the playback devices, brings up the default one,
// prints what it can do, plays its primary buffer briefly, plays a tone as a stimulus in
// several ways while recording it back (StimulusDemo.cpp), and saves and reloads the
// device settings. Message boxes are printed instead of shown, as a console host should.

#include "DirectSndty.h"
#include "StimulusDemo.h"
#include <cstdio>

namespace
{
int CALLBACK printMessage(LPCTSTR lpszText, UINT /*nType*/, UINT /*nIDHelp*/)
{
    std::printf("  [library message] %ls\n", lpszText);
    return IDOK;
}

void listDevices()
{
    CEnumerateDirectSndDevice enumerator;
    CDSndDeviceInfoty* pInfo = enumerator.getDSndDeviceInfo();
    if (pInfo == NULL)
    {
        std::printf("no playback devices\n");
        return;
    }
    std::printf("playback devices: %d\n", pInfo->m_nDeviceNumber);
    for (int i = 0; i < pInfo->m_nDeviceNumber; i++)
        std::printf("  %d%s %ls (%ls)\n", i, i == pInfo->m_nPrimaryDevice ? " default" : "",
                    (LPCWSTR)pInfo->m_strDescription[i], (LPCWSTR)pInfo->m_strModule[i]);
    delete pInfo;
    std::printf("capture devices: %d\n", enumerator.getDSndDeviceCaptureNumber());
}

void printCapabilities(CDirectSndDevicety& device)
{
    DSCAPS caps = {};
    caps.dwSize = sizeof(caps);
    device.getDirectSnd()->GetCaps(&caps);
    DWORD minRate = 0, maxRate = 0;
    device.getDSnd2ndBufSmpRat(minRate, maxRate);
    std::printf("capabilities: flags 0x%lX, secondary rates %lu..%lu Hz, primary buffers %lu\n",
                caps.dwFlags, minRate, maxRate, caps.dwPrimaryBuffers);
    std::printf("speaker configuration: 0x%lX\n", device.getSpeakerConfig());
}

void playPrimaryBriefly(CDirectSndDevicety& device, HWND hWnd)
{
    // The level passed to the device reaches the platform at the next call: ask twice.
    device.setDSndCooperatLevelStd(hWnd, DSSCL_PRIORITY);
    device.setDSndCooperatLevelStd(hWnd, DSSCL_PRIORITY);
    std::printf("play primary buffer: %d\n", device.playDSnd1PrimaryBuf());
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
    std::printf("primary format 44100 Hz stereo 16-bit: %d\n", device.setDSndPrimaryWfx(wfx));
    Sleep(300);
    std::printf("stop primary buffer: %d\n", device.stopDSnd1PrimaryBuf());
}

void saveAndLoad(CDirectSndDevicety& device, LPCTSTR path)
{
    {
        CFile file(path, CFile::modeCreate | CFile::modeWrite);
        CArchive ar(&file, CArchive::store);
        device.serialize(ar);
    }
    CDirectSndDevicety reloaded;
    CFile file(path, CFile::modeRead);
    CArchive ar(&file, CArchive::load);
    int loaded = reloaded.serialize(ar);
    std::printf("settings saved to %ls (%llu bytes) and loaded back: %d\n", path, file.GetLength(), loaded);
}
}

int main()
{
    AfxSetMessageBoxAnswerer(printMessage);
    HWND hWnd = CreateWindowExW(0, L"STATIC", L"DirectSndty demo", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                GetModuleHandleW(NULL), NULL);

    listDevices();
    CDirectSndDevicety device;
    if (!device.initDSndStimX(hWnd, NULL, DSSCL_PRIORITY))
    {
        std::printf("the default device could not be brought up\n");
        return 1;
    }
    std::printf("default device up\n");
    printCapabilities(device);
    playPrimaryBriefly(device, hWnd);
    playStimuli(device);
    try
    {
        saveAndLoad(device, L"dsty-device-settings.bin");
    }
    catch (CException* e)
    {
        std::printf("settings file error\n");
        e->Delete();
        return 1;
    }
    DestroyWindow(hWnd);
    return 0;
}
