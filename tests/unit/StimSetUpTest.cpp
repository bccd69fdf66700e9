#include "DeviceTestSupport.h"

namespace
{
const HWND kWindow = reinterpret_cast<HWND>(0x1234);

class StimSetUpTest : public DeviceTest
{
protected:
    TestDevice device;
};

TEST_F(StimSetUpTest, WithoutAWindowNoLevelIsSetAndHeadphonesDecide)
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

TEST_F(StimSetUpTest, ExclusiveLevelCompactsTheDevice)
{
    ASSERT_EQ(1, device.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_EXCLUSIVE), device.m_dwCoopLevel);
    EXPECT_EQ(1, tap.count("IDirectSound8::Compact"));
    EXPECT_EQ(static_cast<std::uintptr_t>(DSSCL_NORMAL),
              tap.callsTo("IDirectSound8::SetCooperativeLevel")[0].args[1]);
}

TEST_F(StimSetUpTest, FormatWithoutPrimaryBufferEndsTheSetUp)
{
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    EXPECT_EQ(0, device.initDSndStimX(kWindow, &wfx, DSSCL_PRIORITY));
    EXPECT_EQ((std::vector<std::wstring>{L"Primary sound buffer is not initialized"}), messages.texts());
    EXPECT_EQ(0, tap.count("IDirectSound8::SetSpeakerConfig"));
    EXPECT_NE(nullptr, device.getDirectSnd()); // what was opened stays open
}

TEST_F(StimSetUpTest, FailuresStopAtTheFirstRequiredStep)
{
    tap.failAlways("DirectSoundCreate8", DSERR_NODRIVER);
    EXPECT_EQ(0, device.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE));
    EXPECT_EQ(0, tap.count("IDirectSound8::SetCooperativeLevel"));

    tap.clearScript();
    tap.failAlways("IDirectSound8::SetCooperativeLevel", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, device.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE));
    EXPECT_EQ(0, tap.count("IDirectSound8::SetSpeakerConfig"));
}

TEST_F(StimSetUpTest, CompactsOnlyAtExactlyExclusive)
{
    openDevice(device);
    bringLevel(device, DSSCL_EXCLUSIVE);
    for (DWORD level : {DSSCL_NORMAL, DSSCL_PRIORITY, DSSCL_WRITEPRIMARY})
    {
        device.m_dwCoopLevel = level;
        EXPECT_EQ(0, device.compactDSmem()) << level;
    }
    EXPECT_EQ(0, tap.count("IDirectSound8::Compact"));
    device.m_dwCoopLevel = DSSCL_EXCLUSIVE;
    EXPECT_EQ(1, device.compactDSmem());
    tap.failAlways("IDirectSound8::Compact", DSERR_PRIOLEVELNEEDED);
    EXPECT_EQ(0, device.compactDSmem());
}

TEST_F(StimSetUpTest, ReleaseTouchesOnlyItsOwnDevice)
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
