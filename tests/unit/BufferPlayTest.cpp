#include "UnitFixtures.h"

namespace
{
class BufferPlayTest : public BufferTest
{
protected:
    void SetUp() override
    {
        BufferTest::SetUp();
        ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
        tap.clearLog();
    }
    DWORD waitFor(int entry, DWORD ms) { return WaitForSingleObject(notifiable->m_posNotify[entry].hEventNotify, ms); }

    const tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
    std::unique_ptr<CSndDatatyx> data = rampData(wfx, 88200); // one second
    TestBuffer buffer;
    std::unique_ptr<TestBuffer> notifiable = std::make_unique<TestBuffer>();
};

TEST_F(BufferPlayTest, StimulusPlaysTwiceFromTheStartRestoringALostBuffer)
{
    ASSERT_EQ(1, buffer.sendAudioStim());
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    ASSERT_EQ(1, buffer.sendAudioStimLoop());
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    tap.failNext("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
    EXPECT_EQ(0, buffer.sendAudioStim());
    EXPECT_EQ((Names{"SetCurrentPosition(0)", "Play(0)", "Play(0)", "SetCurrentPosition(0)", "Play(1)", "Restore",
                     "Play(1)", "SetCurrentPosition(0)", "Play(0)", "Restore"}),
              starts(tap));
    auto statuses = [&] {
        return std::vector<int>{buffer.isDSndBufferPlaying(), buffer.isDSndBufferLost(), buffer.isDSndBufferLooping()};
    };
    tap.answerWith("IDirectSoundBuffer::GetStatus", 0, DWORD{DSBSTATUS_PLAYING});
    EXPECT_EQ((std::vector<int>{1, 0, 0}), statuses());
    tap.answerWith("IDirectSoundBuffer::GetStatus", 0, DWORD{DSBSTATUS_BUFFERLOST | DSBSTATUS_LOOPING});
    EXPECT_EQ((std::vector<int>{0, 1, 1}), statuses());
}

// The facade's play rewinds first; a lost buffer is restored and played once more.
TEST_F(BufferPlayTest, FacadePlayRewindsAndRestoresALostBuffer)
{
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    EXPECT_EQ(1, buffer.playDSnd2ndBufLoop());
    EXPECT_EQ((Names{"SetCurrentPosition(0)", "Play(1)", "Restore", "Play(1)"}), starts(tap));
    ASSERT_EQ(1, buffer.initDSndPlayStd(kWindow));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
}

TEST_F(BufferPlayTest, EmptyObjectRefusesPlayAndStop)
{
    TestBuffer empty;
    EXPECT_EQ(0, empty.sendAudioStim());
    EXPECT_EQ(0, empty.stopAudioStim());
    EXPECT_EQ(0, empty.panMuteLeft());
    EXPECT_EQ(0, empty.setSndPlayCtl());
    EXPECT_EQ(0, empty.playDSnd2ndBuf());
    EXPECT_EQ(0, empty.stopDSnd2ndBuf());
    EXPECT_EQ(0, empty.initDSndPlayStd(kWindow));
    EXPECT_EQ((Texts{L"Please make the second direct sound buffer initialized", L"Stop null direct buffer",
                     L"Please setup DirectSound Device first!"}), messages.texts());
}

TEST_F(BufferPlayTest, PanMutesOneSideAndRefusesCentreOnA3DBuffer)
{
    const std::pair<int (TestBuffer::*)(), LONG> pans[] = {{&TestBuffer::panMuteLeft, DSBPAN_RIGHT},
                                                           {&TestBuffer::panMuteRight, DSBPAN_LEFT},
                                                           {&TestBuffer::panCenter, DSBPAN_CENTER}};
    for (const auto& [setPan, expected] : pans)
    {
        LONG pan = 1;
        ASSERT_EQ(1, (buffer.*setPan)());
        tap.real<IDirectSoundBuffer>(buffer.m_pDSBuffer)->GetPan(&pan);
        EXPECT_EQ(expected, pan);
    }
    auto mono = rampData(pcmFormat(1, 22050, 16), 1000);
    TestBuffer buffer3D;
    ASSERT_EQ(1, buffer3D.setSndData2DS3Dbuff2(mono.get(), &device));
    EXPECT_EQ(0, buffer3D.panCenter());
    EXPECT_EQ(0, buffer3D.panMuteLeft()); // the platform refuses pan on a 3D buffer
    EXPECT_EQ((Texts{L"This is 3D sound, pan cannot be set!"}), messages.texts());
}

TEST_F(BufferPlayTest, ControlValuesAreClampedToThePlatformsLimits)
{
    for (unsigned long hz : {50ul, 300000ul, 44100ul})
        buffer.setFrequency(hz);
    for (long volume : {500l, -20000l})
        buffer.setVolume(volume);
    EXPECT_EQ((Names{"SetFrequency(100)", "SetFrequency(200000)", "SetFrequency(44100)", "SetVolume(0)",
                     "SetVolume(-10000)"}),
              sequence(tap, {"IDirectSoundBuffer::SetFrequency", "IDirectSoundBuffer::SetVolume"}));
}

TEST_F(BufferPlayTest, NotificationsRegisterTheStopEntryAndAllButTheLastPositionAndCloseTheirEvents)
{
    EXPECT_EQ(0, buffer.quaryNotify()); // made without notification control
    notifiable->makeNotifiable(device, wfx, 200000);
    EXPECT_EQ(0, notifiable->initNotifyEvt(100000, 0, wfx)); // no spacing: nothing registered
    ASSERT_EQ(1, notifiable->initNotifyEvt(5999, 1000, wfx)); // shorter than one step: the stop entry alone
    ASSERT_EQ(1, notifiable->initNotifyEvt(1000000, 1000, wfx));
    EXPECT_EQ(174000u, notifiable->m_posNotify[29].dwOffset);
    auto sets = tap.notificationSets();
    ASSERT_EQ(2u, sets.size());
    EXPECT_TRUE(sets[0].positions.empty());
    ASSERT_EQ(29u, sets[1].positions.size());
    EXPECT_EQ(DSBPN_OFFSETSTOP, sets[1].positions[0].dwOffset);
    EXPECT_EQ(6000u, sets[1].positions[1].dwOffset);
    EXPECT_EQ(168000u, sets[1].positions[28].dwOffset);
    EXPECT_EQ(29, tap.openNotificationHandles()); // the earlier tables' events are closed

    // Position events stay signalled once passed; this stop event resets itself once waited for.
    ASSERT_EQ(1, notifiable->playDSnd2ndBuf());
    ASSERT_EQ(WAIT_OBJECT_0, waitFor(1, kWait));
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(1, 0));
    ASSERT_EQ(1, notifiable->stopDSnd2ndBuf());
    ASSERT_EQ(WAIT_OBJECT_0, waitFor(0, kWait));
    EXPECT_EQ(WAIT_TIMEOUT, waitFor(0, 0));

    ASSERT_EQ(1, notifiable->initStopEvt()); // the stop entry alone stays signalled
    ASSERT_EQ(1, notifiable->playDSnd2ndBufLoop());
    ASSERT_EQ(1, notifiable->stopDSnd2ndBuf());
    ASSERT_EQ(WAIT_OBJECT_0, waitFor(0, kWait));
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(0, 0));
    tap.failNext("IDirectSoundNotify::SetNotificationPositions", DSERR_GENERIC);
    EXPECT_EQ(0, notifiable->initNotifyEvt(1000000, 1000, wfx));
    EXPECT_EQ(1 + 29, tap.openNotificationHandles()); // refused: the platform still signals the stop event
    notifiable.reset();
    EXPECT_EQ(0, tap.openNotificationHandles());
}
}
