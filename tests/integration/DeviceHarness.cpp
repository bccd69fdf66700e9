#include "DeviceHarness.h"

std::vector<std::wstring>& shownMessages()
{
    static std::vector<std::wstring> messages;
    return messages;
}

void DeviceTest::SetUp()
{
    shownMessages().clear();
    window = CreateWindowExW(0, L"STATIC", L"integration host", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100,
                             nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(window, nullptr);
}

void DeviceTest::TearDown()
{
    device.releaseDSndty(&device);
    DestroyWindow(window);
}

void DeviceTest::bringUpAtPriority()
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    ASSERT_EQ(device.setDSndCooperatLevelStd(window, DSSCL_PRIORITY), 1);
}

bool sameFormat(const WAVEFORMATEX& a, const WAVEFORMATEX& b)
{
    return a.wFormatTag == b.wFormatTag && a.nChannels == b.nChannels && a.nSamplesPerSec == b.nSamplesPerSec &&
           a.nAvgBytesPerSec == b.nAvgBytesPerSec && a.nBlockAlign == b.nBlockAlign &&
           a.wBitsPerSample == b.wBitsPerSample && a.cbSize == b.cbSize;
}
