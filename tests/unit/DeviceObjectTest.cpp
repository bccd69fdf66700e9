#include "DeviceTestSupport.h"

#include "DialogDriver.h"

#include <thread>
#include <utility>

namespace
{
const HWND kWindow = reinterpret_cast<HWND>(0x1234);

// initDSndStim is private and nothing in the library calls it; an explicit instantiation is
// the one place the language lets a test name it.
using StimSetUp = int (CDirectSndDevice8Stim::*)(HWND, tWAVEFORMATEX*);
StimSetUp plainStimSetUp();
template <StimSetUp Member> struct Reach
{
    friend StimSetUp plainStimSetUp() { return Member; }
};
template struct Reach<&CDirectSndDevice8Stim::initDSndStim>;

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

// A closed device sets no level; a failed level falls back to normal and keeps the window.
TEST_F(DeviceObjectTest, CooperativeLevelReachesThePlatformOneCallLate)
{
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    openDevice(device);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_EXCLUSIVE));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_EXCLUSIVE), device.m_dwCoopLevel);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    auto calls = tap.callsTo("IDirectSound8::SetCooperativeLevel");
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(kWindow), calls[0].args[0]);
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_NORMAL), calls[0].args[1]);
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_EXCLUSIVE), calls[1].args[1]);
    EXPECT_TRUE(messages.texts().empty());

    tap.failAlways("IDirectSound8::SetCooperativeLevel", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(reinterpret_cast<HWND>(0x99), DSSCL_PRIORITY));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
    EXPECT_EQ(kWindow, device.getSndDeviceHwnd());
    EXPECT_EQ((std::vector<std::wstring>{L"Set direct sound cooperative level error"}), messages.texts());
}

// Answers prefer stereo and eight bits; a positive success counts as failure; the static
// buffer count is the cached one; a failed report shows its message and zeroes the record.
TEST_F(DeviceObjectTest, CapabilityAnswers)
{
    openDevice(device);
    const struct { DWORD flags; int channels, bits; } rows[] = {
        {DSCAPS_SECONDARYMONO | DSCAPS_SECONDARYSTEREO | DSCAPS_SECONDARY8BIT | DSCAPS_SECONDARY16BIT, 2, 8},
        {DSCAPS_SECONDARYMONO | DSCAPS_SECONDARY16BIT, 1, 16},
        {0, 0, 0}};
    for (const auto& row : rows)
    {
        answerCaps(row.flags, 100, 200000);
        EXPECT_EQ(row.channels, device.get2ndChannels()) << row.flags;
        EXPECT_EQ(row.bits, device.get2ndSampleBits()) << row.flags;
    }
    DWORD minRate = 7, maxRate = 8;
    ASSERT_EQ(1, device.getDSnd2ndBufSmpRat(minRate, maxRate));
    EXPECT_EQ(std::make_pair(100ul, 200000ul), std::make_pair(minRate, maxRate));
    caps.dwFreeHwMixingStaticBuffers = 12;
    answerCaps(DSCAPS_SECONDARYSTEREO);
    EXPECT_EQ(0u, device.getFreeHwMixingStaticBufferSize());
    device.getDSCAPS();
    EXPECT_EQ(12u, device.getFreeHwMixingStaticBufferSize());

    tap.clearScript();
    tap.failAlways("IDirectSound8::GetCaps", S_FALSE);
    minRate = 7;
    EXPECT_EQ(0, device.getDSnd2ndBufSmpRat(minRate, maxRate));
    EXPECT_EQ(7u, minRate);
    EXPECT_EQ(0, device.get2ndChannels());
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

TEST_F(DeviceObjectTest, DefaultDeviceHasAZeroGuidAndIsMarkedPrimary)
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

TEST_F(DeviceObjectTest, EmptyOrFailedEnumerationsGiveNoList)
{
    tap.setPlaybackDevices({});
    tap.setCaptureDevices({});
    CEnumerateDirectSndDevice enumerator;
    EXPECT_EQ(nullptr, enumerator.getDSndDeviceInfo());
    EXPECT_EQ(0, enumerator.getDSndDeviceNumber());
    EXPECT_EQ(nullptr, enumerator.getDSndDeviceCaptureInfo());

    tap.failAlways("DirectSoundCaptureEnumerateA", DSERR_NODRIVER);
    EXPECT_EQ(-1, enumerator.getDSndDeviceCaptureNumber());

    EXPECT_EQ(nullptr, device.enumerateDirectSndDeviceInfo());
    EXPECT_TRUE(messages.saw(L"Enumerating audio devices error"));
}

TEST_F(DeviceObjectTest, StoresNoMoreThanTheListHolds)
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

// --- speakers ---

// A closed device asks nothing; the stereo tests read configuration and geometry, the plain
// tests the whole value.
TEST_F(DeviceObjectTest, StereoTestsReadConfigurationAndGeometryButPlainTestsTheWholeValue)
{
    EXPECT_EQ(0u, device.getSpeakerConfig());
    EXPECT_EQ(0, device.isHeadPhone());
    EXPECT_EQ(0, tap.count("IDirectSound8::GetSpeakerConfig"));
    openDevice(device);
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0x140004});
    EXPECT_EQ(1, device.isStereoWide());
    EXPECT_EQ(0, device.isStereMax());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0x140005});
    EXPECT_EQ(0, device.isStereoWide());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0xFF140004}); // bits above the geometry are ignored
    EXPECT_EQ(1, device.isStereoWide());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0x10001});
    EXPECT_EQ(0, device.isHeadPhone());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{1});
    EXPECT_EQ(1, device.isHeadPhone());
    EXPECT_EQ(0x140004u, device.m_dwSpeakerConfig);
}

TEST_F(DeviceObjectTest, SettersRecordWhatThePlatformTook)
{
    openDevice(device);
    // Wine takes a configuration without keeping it: read back what was set last.
    tap.answer("IDirectSound8::GetSpeakerConfig", [this](const dstap::Call& call) {
        *call.out<DWORD>(0) = static_cast<DWORD>(tap.callsTo("IDirectSound8::SetSpeakerConfig").back().args[0]);
        return DS_OK;
    });
    ASSERT_EQ(1, device.setStereMax());
    EXPECT_EQ(0xB40004u, device.m_dwSpeakerConfig);
    EXPECT_EQ(0xB40004u, device.getSpeakerConfig());
    ASSERT_EQ(1, device.setHeadPhone());
    EXPECT_EQ(1u, device.m_dwSpeakerConfig);
}

TEST_F(DeviceObjectTest, OnlyHeadphoneSetterAcceptsPositiveSuccessAndReportsFailure)
{
    openDevice(device);
    tap.failAlways("IDirectSound8::SetSpeakerConfig", S_FALSE);
    EXPECT_EQ(0, device.setMonoSpeaker());
    EXPECT_EQ(0x140004u, device.m_dwSpeakerConfig);
    EXPECT_EQ(1, device.setHeadPhone());

    tap.failAlways("IDirectSound8::SetSpeakerConfig", DSERR_GENERIC);
    EXPECT_EQ(0, device.setMonoSpeaker());
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(0, device.setHeadPhone());
    EXPECT_TRUE(messages.saw(L"Set speaker configuration error"));
}

// --- the stimulus set-up ---

TEST_F(DeviceObjectTest, WithoutAWindowNoLevelIsSetAndHeadphonesDecide)
{
    ASSERT_EQ(1, device.initDSndStimX(NULL, NULL, DSSCL_EXCLUSIVE));
    EXPECT_EQ(0, tap.count("IDirectSound8::SetCooperativeLevel"));
    EXPECT_EQ(0, tap.count("IDirectSound8::Compact"));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
    auto sets = tap.callsTo("IDirectSound8::SetSpeakerConfig");
    ASSERT_EQ(1u, sets.size());
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSPEAKER_HEADPHONE), sets[0].args[0]);

    TestDevice second;
    tap.failAlways("IDirectSound8::SetSpeakerConfig", DSERR_GENERIC);
    EXPECT_EQ(0, second.initDSndStimX(NULL, NULL, DSSCL_EXCLUSIVE));
    EXPECT_TRUE(messages.saw(L"Set speaker configuration error"));
}

// Both set-ups at the exclusive level record it and compact the device.
TEST_F(DeviceObjectTest, ExclusiveLevelCompactsTheDevice)
{
    TestDevice plain;
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    ASSERT_EQ(1, (plain.*plainStimSetUp())(kWindow, &wfx)); // the format is refused: no primary buffer yet
    EXPECT_EQ((std::vector<std::wstring>{L"Primary sound buffer is not initialized"}), messages.texts());
    ASSERT_EQ(1, device.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE));
    for (TestDevice* made : {&plain, &device})
        EXPECT_EQ(static_cast<DWORD>(DSSCL_EXCLUSIVE), made->m_dwCoopLevel);
    EXPECT_EQ(2, tap.count("IDirectSound8::Compact"));
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_NORMAL),
              tap.callsTo("IDirectSound8::SetCooperativeLevel")[0].args[1]);
}

TEST_F(DeviceObjectTest, FormatWithoutPrimaryBufferEndsTheSetUp)
{
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    EXPECT_EQ(0, device.initDSndStimX(kWindow, &wfx, DSSCL_PRIORITY));
    EXPECT_EQ((std::vector<std::wstring>{L"Primary sound buffer is not initialized"}), messages.texts());
    EXPECT_EQ(0, tap.count("IDirectSound8::SetSpeakerConfig"));
    EXPECT_NE(nullptr, device.getDirectSnd()); // what was opened stays open
}

TEST_F(DeviceObjectTest, FailuresStopAtTheFirstRequiredStep)
{
    tap.failAlways("DirectSoundCreate8", DSERR_NODRIVER);
    EXPECT_EQ(0, device.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE));
    EXPECT_EQ(0, tap.count("IDirectSound8::SetCooperativeLevel"));

    tap.clearScript();
    tap.failAlways("IDirectSound8::SetCooperativeLevel", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, device.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE));
    EXPECT_EQ(0, tap.count("IDirectSound8::SetSpeakerConfig"));
}

TEST_F(DeviceObjectTest, CompactsOnlyAtExactlyExclusive)
{
    openDevice(device);
    bringLevel(device, DSSCL_EXCLUSIVE);
    for (DWORD level : {DSSCL_NORMAL, DSSCL_PRIORITY, DSSCL_WRITEPRIMARY, DSSCL_EXCLUSIVE})
    {
        device.m_dwCoopLevel = level;
        EXPECT_EQ(level == DSSCL_EXCLUSIVE ? 1 : 0, device.compactDSmem()) << level;
    }
    EXPECT_EQ(1, tap.count("IDirectSound8::Compact"));
    tap.failAlways("IDirectSound8::Compact", DSERR_PRIOLEVELNEEDED);
    EXPECT_EQ(0, device.compactDSmem());
}

TEST_F(DeviceObjectTest, ReleaseTouchesOnlyItsOwnDevice)
{
    openDevice(device);
    device.createDSndBuff1Primary();
    TestDevice other;
    EXPECT_EQ(0, device.releaseDSndty(&other));
    EXPECT_NE(nullptr, device.getDirectSnd());
    EXPECT_NE(nullptr, device.m_pDSBufferPrimary);

    ASSERT_NE(nullptr, device.enumerateDirectSndDeviceInfo());
    device.m_dwCoopLevel = DSSCL_PRIORITY;
    EXPECT_EQ(0, device.releaseDSndty(&device));
    EXPECT_EQ(nullptr, device.getDirectSnd());
    EXPECT_EQ(nullptr, device.m_pDSBufferPrimary);
    EXPECT_EQ(static_cast<DWORD>(DSSCL_PRIORITY), device.m_dwCoopLevel);
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
}
}
