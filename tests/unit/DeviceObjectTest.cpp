#include "DeviceTestSupport.h"

#include "DialogDriver.h"

#include <thread>

namespace
{
const HWND kWindow = reinterpret_cast<HWND>(0x1234);

class DeviceObjectTest : public DeviceTest
{
protected:
    // The device's capability report from now on.
    void answerCaps(DWORD flags, DWORD minRate = 0, DWORD maxRate = 0)
    {
        caps.dwSize = sizeof caps;
        caps.dwFlags = flags;
        caps.dwMinSecondarySampleRate = minRate;
        caps.dwMaxSecondarySampleRate = maxRate;
        tap.answerWith("IDirectSound8::GetCaps", 0, caps);
    }

    TestDevice device;
    DSCAPS caps = {};
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
    ASSERT_EQ(1, tap.count("DirectSoundCreate8"));
    EXPECT_EQ(0u, tap.callsTo("DirectSoundCreate8")[0].args[0]);
    EXPECT_NE(nullptr, device.getDirectSnd());

    tap.failAlways("DirectSoundCreate8", DSERR_NODRIVER);
    EXPECT_EQ(0, device.createDSndObject(NULL));
    EXPECT_EQ(nullptr, device.getDirectSnd());
    EXPECT_EQ(DSERR_NODRIVER, device.m_hr);
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
}

TEST_F(DeviceObjectTest, CooperativeLevelReachesThePlatformOneCallLate)
{
    openDevice(device);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_EXCLUSIVE));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_EXCLUSIVE), device.m_dwCoopLevel);
    EXPECT_EQ(kWindow, device.getSndDeviceHwnd());

    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    auto calls = tap.callsTo("IDirectSound8::SetCooperativeLevel");
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(kWindow), calls[0].args[0]);
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_NORMAL), calls[0].args[1]);
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_EXCLUSIVE), calls[1].args[1]);
}

TEST_F(DeviceObjectTest, FailedCooperativeLevelFallsBackToNormalAndKeepsTheWindow)
{
    openDevice(device);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_EXCLUSIVE));
    tap.failAlways("IDirectSound8::SetCooperativeLevel", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(reinterpret_cast<HWND>(0x99), DSSCL_PRIORITY));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
    EXPECT_EQ(kWindow, device.getSndDeviceHwnd());
    EXPECT_TRUE(messages.saw(L"Set direct sound cooperative level error"));
}

TEST_F(DeviceObjectTest, ClosedDeviceSetsNoLevel)
{
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    EXPECT_EQ(0, tap.count("IDirectSound8::SetCooperativeLevel"));
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(DeviceObjectTest, CapabilityAnswersPreferStereoAndEightBits)
{
    openDevice(device);
    answerCaps(DSCAPS_SECONDARYMONO | DSCAPS_SECONDARYSTEREO | DSCAPS_SECONDARY8BIT | DSCAPS_SECONDARY16BIT);
    EXPECT_EQ(2, device.get2ndChannels());
    EXPECT_EQ(8, device.get2ndSampleBits());
    answerCaps(DSCAPS_SECONDARYMONO | DSCAPS_SECONDARY16BIT);
    EXPECT_EQ(1, device.get2ndChannels());
    EXPECT_EQ(16, device.get2ndSampleBits());
    answerCaps(0);
    EXPECT_EQ(0, device.get2ndChannels());
    EXPECT_EQ(0, device.get2ndSampleBits());
}

TEST_F(DeviceObjectTest, CapabilityAnswersTreatPositiveSuccessAsFailure)
{
    openDevice(device);
    answerCaps(0, 100, 200000);
    DWORD minRate = 7, maxRate = 8;
    ASSERT_EQ(1, device.getDSnd2ndBufSmpRat(minRate, maxRate));
    EXPECT_EQ(100u, minRate);
    EXPECT_EQ(200000u, maxRate);

    tap.clearScript();
    tap.failAlways("IDirectSound8::GetCaps", S_FALSE);
    minRate = 7;
    maxRate = 8;
    EXPECT_EQ(0, device.getDSnd2ndBufSmpRat(minRate, maxRate));
    EXPECT_EQ(7u, minRate);
    EXPECT_EQ(8u, maxRate);
    EXPECT_EQ(0, device.get2ndChannels());
    // The plain field getters answer whatever the refresh gave.
    tap.clearScript();
    caps.dwTotalHwMemBytes = 4096;
    tap.answerWith("IDirectSound8::GetCaps", 0, caps);
    EXPECT_EQ(4096u, device.getTotalHwMemBytes());
}

TEST_F(DeviceObjectTest, StaticBufferCountIsTheCachedOneWithoutARefresh)
{
    openDevice(device);
    caps.dwSize = sizeof caps;
    caps.dwFreeHwMixingStaticBuffers = 12;
    tap.answerWith("IDirectSound8::GetCaps", 0, caps);
    EXPECT_EQ(0u, device.getFreeHwMixingStaticBufferSize());
    device.getDSCAPS();
    EXPECT_EQ(12u, device.getFreeHwMixingStaticBufferSize());
    EXPECT_EQ(1, tap.count("IDirectSound8::GetCaps"));
}

TEST_F(DeviceObjectTest, FailedCapabilityReportShowsItsMessageAndZeroesTheRecord)
{
    openDevice(device);
    device.getDSCAPS();
    tap.failAlways("IDirectSound8::GetCaps", DSERR_GENERIC);
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
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
    EXPECT_EQ(0, tap.overReleases());
}

TEST_F(DeviceObjectTest, ChosenDefaultCardInAnyLetterCaseOpensWithoutAGuid)
{
    const GUID unknownCard = {0xDEADBEEF, 1, 2, {3}};
    tap.setPlaybackDevices({{true, unknownCard, "primary SOUND driver", ""}});
    std::thread user([] {
        if (HWND dialog = dsty_test::waitForWindow(L"Direct sound device information"))
            dsty_test::pressButton(dialog, IDOK);
    });
    const int opened = device.selectSoundCards();
    user.join();
    EXPECT_EQ(1, opened);
    ASSERT_EQ(1, tap.count("DirectSoundCreate8"));
    EXPECT_EQ(0u, tap.callsTo("DirectSoundCreate8")[0].args[0]);
}

// --- enumeration ---

class EnumerationTest : public DeviceTest
{
};

TEST_F(EnumerationTest, DefaultDeviceHasAZeroGuidAndIsMarkedPrimary)
{
    GUID card = {0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};
    tap.setPlaybackDevices({{false, GUID_NULL, "Primary Sound Driver", ""}, {true, card, "Null Output", "stim"}});

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
    tap.setPlaybackDevices({});
    tap.setCaptureDevices({});
    CEnumerateDirectSndDevice enumerator;
    EXPECT_EQ(nullptr, enumerator.getDSndDeviceInfo());
    EXPECT_EQ(0, enumerator.getDSndDeviceNumber());
    EXPECT_EQ(nullptr, enumerator.getDSndDeviceCaptureInfo());

    tap.failAlways("DirectSoundCaptureEnumerateA", DSERR_NODRIVER);
    EXPECT_EQ(-1, enumerator.getDSndDeviceCaptureNumber());

    TestDevice device;
    EXPECT_EQ(nullptr, device.enumerateDirectSndDeviceInfo());
    EXPECT_TRUE(messages.saw(L"Enumerating audio devices error"));
}

TEST_F(EnumerationTest, StoresNoMoreThanTheListHolds)
{
    std::vector<dstap::DeviceEntry> cards;
    for (int i = 0; i < 95; i++)
        cards.push_back({true, GUID{static_cast<unsigned long>(i + 1), 0, 0, {0}}, "card " + std::to_string(i), "module"});
    tap.setPlaybackDevices(cards);
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
