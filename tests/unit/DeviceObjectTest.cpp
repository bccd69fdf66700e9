#include "DeviceTestSupport.h"

namespace
{
const HWND kWindow = reinterpret_cast<HWND>(0x1234);

class DeviceObjectTest : public DeviceTest
{
protected:
    TestDevice device;
};

TEST_F(DeviceObjectTest, NewDeviceStartsClosedAtNormalLevel)
{
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
    EXPECT_EQ(0, device.getReferenceNumber());
    EXPECT_EQ(nullptr, device.getSndDeviceHwnd());
    EXPECT_EQ(nullptr, device.getDirectSnd());
    EXPECT_EQ(0u, device.getFreeHwMixingStaticBufferSize());
    EXPECT_EQ(-1, device.removeReference());
    EXPECT_EQ(0, device.addReference());
}

TEST_F(DeviceObjectTest, OpensTheDefaultDeviceAndReleasesAFailedOne)
{
    ASSERT_EQ(1, device.createDSndObject(NULL));
    ASSERT_EQ(1, fake.count("DirectSoundCreate8"));
    EXPECT_EQ(0u, fake.callsTo("DirectSoundCreate8")[0].args[0]);
    EXPECT_NE(nullptr, device.getDirectSnd());

    fake.failAlways("DirectSoundCreate8", DSERR_NODRIVER);
    EXPECT_EQ(0, device.createDSndObject(NULL));
    EXPECT_EQ(nullptr, device.getDirectSnd());
    EXPECT_EQ(DSERR_NODRIVER, device.m_hr);
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(0, fake.liveObjects()) << fake.leakReport();
}

TEST_F(DeviceObjectTest, CooperativeLevelReachesThePlatformOneCallLate)
{
    openDevice(device);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_EXCLUSIVE));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_EXCLUSIVE), device.m_dwCoopLevel);
    EXPECT_EQ(kWindow, device.getSndDeviceHwnd());

    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    auto calls = fake.callsTo("IDirectSound8::SetCooperativeLevel");
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(kWindow), calls[0].args[0]);
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_NORMAL), calls[0].args[1]);
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_EXCLUSIVE), calls[1].args[1]);
}

TEST_F(DeviceObjectTest, FailedCooperativeLevelFallsBackToNormalAndKeepsTheWindow)
{
    openDevice(device);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_EXCLUSIVE));
    fake.failAlways("IDirectSound8::SetCooperativeLevel", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(reinterpret_cast<HWND>(0x99), DSSCL_PRIORITY));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
    EXPECT_EQ(kWindow, device.getSndDeviceHwnd());
    EXPECT_TRUE(messages.saw(L"Set direct sound cooperative level error"));
}

TEST_F(DeviceObjectTest, ClosedDeviceSetsNoLevel)
{
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    EXPECT_EQ(0, fake.count("IDirectSound8::SetCooperativeLevel"));
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(DeviceObjectTest, CapabilityAnswersPreferStereoAndEightBits)
{
    openDevice(device);
    fake.caps().dwFlags = DSCAPS_SECONDARYMONO | DSCAPS_SECONDARYSTEREO | DSCAPS_SECONDARY8BIT |
                          DSCAPS_SECONDARY16BIT;
    EXPECT_EQ(2, device.get2ndChannels());
    EXPECT_EQ(8, device.get2ndSampleBits());
    fake.caps().dwFlags = DSCAPS_SECONDARYMONO | DSCAPS_SECONDARY16BIT;
    EXPECT_EQ(1, device.get2ndChannels());
    EXPECT_EQ(16, device.get2ndSampleBits());
    fake.caps().dwFlags = 0;
    EXPECT_EQ(0, device.get2ndChannels());
    EXPECT_EQ(0, device.get2ndSampleBits());
}

TEST_F(DeviceObjectTest, CapabilityAnswersTreatPositiveSuccessAsFailure)
{
    openDevice(device);
    fake.caps().dwMinSecondarySampleRate = 100;
    fake.caps().dwMaxSecondarySampleRate = 200000;
    DWORD minRate = 7, maxRate = 8;
    ASSERT_EQ(1, device.getDSnd2ndBufSmpRat(minRate, maxRate));
    EXPECT_EQ(100u, minRate);
    EXPECT_EQ(200000u, maxRate);

    fake.failAlways("IDirectSound8::GetCaps", S_FALSE);
    minRate = 7;
    maxRate = 8;
    EXPECT_EQ(0, device.getDSnd2ndBufSmpRat(minRate, maxRate));
    EXPECT_EQ(7u, minRate);
    EXPECT_EQ(8u, maxRate);
    EXPECT_EQ(0, device.get2ndChannels());
    // The plain field getters answer whatever the refresh gave.
    fake.caps().dwTotalHwMemBytes = 4096;
    EXPECT_EQ(4096u, device.getTotalHwMemBytes());
}

TEST_F(DeviceObjectTest, StaticBufferCountIsTheCachedOneWithoutARefresh)
{
    openDevice(device);
    fake.caps().dwFreeHwMixingStaticBuffers = 12;
    EXPECT_EQ(0u, device.getFreeHwMixingStaticBufferSize());
    device.getDSCAPS();
    EXPECT_EQ(12u, device.getFreeHwMixingStaticBufferSize());
    EXPECT_EQ(1, fake.count("IDirectSound8::GetCaps"));
}

TEST_F(DeviceObjectTest, FailedCapabilityReportShowsItsMessageAndZeroesTheRecord)
{
    openDevice(device);
    device.getDSCAPS();
    fake.failAlways("IDirectSound8::GetCaps", DSERR_GENERIC);
    EXPECT_EQ(0, device.getDSCAPSPro());
    EXPECT_TRUE(messages.saw(L"Get sound device capability  error"));
    EXPECT_EQ(96u, device.m_dsCaps.dwSize);
    EXPECT_EQ(0u, device.m_dsCaps.dwFlags);
}

TEST_F(DeviceObjectTest, DestructionReleasesEverything)
{
    {
        TestDevice local;
        ASSERT_EQ(1, local.createDSndObject(NULL));
        local.createDSndBuff1Primary();
        local.initializeDSndListener();
        local.createDSndBuff1Primary();
        ASSERT_NE(nullptr, local.enumerateDirectSndDeviceInfo());
        ASSERT_NE(nullptr, local.enumerateDirectSndDeviceInfo());
    }
    EXPECT_EQ(0, fake.liveObjects()) << fake.leakReport();
    EXPECT_EQ(0, fake.overReleases());
}

// --- enumeration ---

class EnumerationTest : public DeviceTest
{
};

TEST_F(EnumerationTest, DefaultDeviceHasAZeroGuidAndIsMarkedPrimary)
{
    fake.clearPlaybackDevices();
    fake.clearCaptureDevices();
    fake.addPlaybackDevice(nullptr, "Primary Sound Driver", "");
    GUID card = {0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};
    fake.addPlaybackDevice(&card, "Null Output", "stim");

    CEnumerateDirectSndDevice enumerator;
    CDSndDeviceInfoty* pInfo = enumerator.getDSndDeviceInfo();
    ASSERT_NE(nullptr, pInfo);
    EXPECT_EQ(2, pInfo->m_nDeviceNumber);
    EXPECT_EQ(0, pInfo->m_nPrimaryDevice);
    EXPECT_TRUE(IsEqualGUID(GUID_NULL, pInfo->m_guidDevice[0]));
    EXPECT_TRUE(IsEqualGUID(card, pInfo->m_guidDevice[1]));
    EXPECT_STREQ(L"Null Output", pInfo->m_strDescription[1]);
    EXPECT_STREQ(L"stim", pInfo->m_strModule[1]);
    EXPECT_STREQ(L" ", pInfo->m_strDescription[2]);
    delete pInfo;
    EXPECT_EQ(2, enumerator.getDSndDeviceNumber());
}

TEST_F(EnumerationTest, EmptyOrFailedEnumerationsGiveNoList)
{
    fake.clearPlaybackDevices();
    fake.clearCaptureDevices();
    CEnumerateDirectSndDevice enumerator;
    EXPECT_EQ(nullptr, enumerator.getDSndDeviceInfo());
    EXPECT_EQ(0, enumerator.getDSndDeviceNumber());
    EXPECT_EQ(nullptr, enumerator.getDSndDeviceCaptureInfo());

    fake.failAlways("DirectSoundCaptureEnumerateA", DSERR_NODRIVER);
    EXPECT_EQ(-1, enumerator.getDSndDeviceCaptureNumber());

    TestDevice device;
    EXPECT_EQ(nullptr, device.enumerateDirectSndDeviceInfo());
    EXPECT_TRUE(messages.saw(L"Enumerating audio devices error"));
}

TEST_F(EnumerationTest, StoresNoMoreThanTheListHolds)
{
    fake.clearPlaybackDevices();
    fake.clearCaptureDevices();
    for (int i = 0; i < 95; i++)
    {
        GUID guid = {static_cast<unsigned long>(i + 1), 0, 0, {0}};
        fake.addPlaybackDevice(&guid, "card " + std::to_string(i), "module");
    }
    CEnumerateDirectSndDevice enumerator;
    CDSndDeviceInfoty* pInfo = enumerator.getDSndDeviceInfo();
    ASSERT_NE(nullptr, pInfo);
    EXPECT_EQ(90, pInfo->m_nDeviceNumber);
    EXPECT_STREQ(L"card 89", pInfo->m_strDescription[89]);
    delete pInfo;
}

TEST_F(EnumerationTest, ResetEmptiesToSingleBlanks)
{
    CDSndDeviceInfoty info;
    info.m_nDeviceNumber = 3;
    info.m_strDescription[0] = L"x";
    info.resetDeviceInfo();
    EXPECT_EQ(0, info.m_nDeviceNumber);
    EXPECT_EQ(-1, info.m_nPrimaryDevice);
    EXPECT_STREQ(L" ", info.m_strDescription[0]);
    EXPECT_STREQ(L" ", info.m_strModule[89]);
    CObject* pCreated = RUNTIME_CLASS(CDSndDeviceInfoty)->CreateObject();
    EXPECT_TRUE(pCreated->IsKindOf(RUNTIME_CLASS(CDSndDeviceInfoty)));
    delete pCreated;
}
}
