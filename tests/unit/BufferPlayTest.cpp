#include "BufferTestSupport.h"

namespace
{
const DWORD kWait = 5000; // Wine plays in real time: generous on a loaded machine

class BufferPlayTest : public BufferTest
{
protected:
    void SetUp() override
    {
        BufferTest::SetUp();
        data = rampData(pcmFormat(2, 22050, 16), 88200); // one second
        ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
        tap.clearLog();
    }
    std::vector<std::string> starts()
    {
        return sequence(tap, {"IDirectSoundBuffer::SetCurrentPosition", "IDirectSoundBuffer::Play",
                              "IDirectSoundBuffer::Restore"});
    }
    LONG pan()
    {
        LONG value = 1;
        tap.real<IDirectSoundBuffer>(buffer.m_pDSBuffer)->GetPan(&value);
        return value;
    }

    std::unique_ptr<CSndDatatyx> data;
    TestBuffer buffer;
};

TEST_F(BufferPlayTest, StimulusPlaysTwiceFromTheStartRestoringALostBuffer)
{
    ASSERT_EQ(1, buffer.sendAudioStim());
    EXPECT_EQ(1, buffer.isDSndBufferPlaying());
    EXPECT_EQ(0, buffer.isDSndBufferLooping());
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    ASSERT_EQ(1, buffer.sendAudioStimLoop());
    EXPECT_EQ(1, buffer.isDSndBufferLooping());
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    tap.failNext("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
    EXPECT_EQ(0, buffer.sendAudioStim());
    EXPECT_EQ((std::vector<std::string>{"SetCurrentPosition(0)", "Play(0)", "Play(0)", "SetCurrentPosition(0)",
                                        "Play(1)", "Restore", "Play(1)", "SetCurrentPosition(0)", "Play(0)",
                                        "Restore"}),
              starts());
    EXPECT_EQ(1, buffer.stopAudioStim());
    EXPECT_EQ(0, buffer.isDSndBufferPlaying());
    tap.answerWith("IDirectSoundBuffer::GetStatus", 0, DWORD{DSBSTATUS_BUFFERLOST});
    EXPECT_EQ(1, buffer.isDSndBufferLost());
}

TEST_F(BufferPlayTest, FacadePlayRewindsAndCountsAFailedFirstPlayAsPlayed)
{
    tap.failNext("IDirectSoundBuffer::Play", DSERR_INVALIDCALL);
    EXPECT_EQ(1, buffer.playDSnd2ndBuf());
    EXPECT_EQ(DSERR_INVALIDCALL, buffer.m_hr);
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    EXPECT_EQ(1, buffer.playDSnd2ndBufLoop()); // restored, then played once more
    EXPECT_EQ((std::vector<std::string>{"SetCurrentPosition(0)", "Play(0)", "SetCurrentPosition(0)", "Play(1)",
                                        "Restore", "Play(1)"}),
              starts());
    EXPECT_EQ(1, buffer.stopDSnd2ndBuf());
    ASSERT_EQ(1, buffer.initDSndPlayStd(reinterpret_cast<HWND>(0x1234)));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
}

TEST_F(BufferPlayTest, EmptyObjectRefusesPlayAndStop)
{
    TestBuffer empty;
    EXPECT_EQ(0, empty.sendAudioStim());
    EXPECT_EQ(0, empty.stopAudioStim());
    EXPECT_EQ(0, empty.panMuteLeft());
    EXPECT_EQ(0, empty.setSndPlayCtl());
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(0, empty.playDSnd2ndBuf());
    EXPECT_EQ(0, empty.stopDSnd2ndBuf());
    EXPECT_EQ(0, empty.initDSndPlayStd(reinterpret_cast<HWND>(0x1234)));
    EXPECT_EQ((std::vector<std::wstring>{L"Please make the second direct sound buffer initialized",
                                         L"Stop null direct buffer", L"Please setup DirectSound Device first!"}),
              messages.texts());
}

TEST_F(BufferPlayTest, PanMutesOneSideAndRefusesCentreOnA3DBuffer)
{
    ASSERT_EQ(1, buffer.panMuteLeft());
    EXPECT_EQ(DSBPAN_RIGHT, pan());
    ASSERT_EQ(1, buffer.panMuteRight());
    EXPECT_EQ(DSBPAN_LEFT, pan());
    ASSERT_EQ(1, buffer.panCenter());
    EXPECT_EQ(DSBPAN_CENTER, pan());

    auto mono = rampData(pcmFormat(1, 22050, 16), 1000);
    TestBuffer buffer3D;
    ASSERT_EQ(1, buffer3D.setSndData2DS3Dbuff2(mono.get(), &device));
    tap.clearLog();
    EXPECT_EQ(0, buffer3D.panCenter());
    EXPECT_TRUE(messages.saw(L"This is 3D sound, pan cannot be set!"));
    EXPECT_EQ(0, buffer3D.panMuteLeft()); // the platform refuses pan on a 3D buffer
    EXPECT_EQ(1, tap.count("IDirectSoundBuffer::SetPan"));
}

TEST_F(BufferPlayTest, ControlValuesAreClampedToThePlatformsLimits)
{
    for (unsigned long hz : {50ul, 300000ul, 44100ul})
        buffer.setFrequency(hz);
    for (long volume : {500l, -20000l})
        buffer.setVolume(volume);
    EXPECT_EQ((std::vector<std::string>{"SetFrequency(100)", "SetFrequency(200000)", "SetFrequency(44100)",
                                        "SetVolume(0)", "SetVolume(-10000)"}),
              sequence(tap, {"IDirectSoundBuffer::SetFrequency", "IDirectSoundBuffer::SetVolume"}));
    // Without frequency control Windows refuses the read (Wine answers the rate).
    tap.failNext("IDirectSoundBuffer::GetFrequency", DSERR_CONTROLUNAVAIL);
    EXPECT_EQ(0u, buffer.getFrequency());
    EXPECT_EQ(DSERR_CONTROLUNAVAIL, buffer.m_hr);
}

class BufferNotifyTest : public BufferTest
{
protected:
    // A buffer that accepts notifications, as a streaming buffer would be made.
    void makeNotifiable(TestBuffer& target, unsigned long bytes)
    {
        target.m_wfx = wfx;
        target.m_dsbd.dwFlags = DSBCAPS_CTRLPOSITIONNOTIFY;
        target.m_dsbd.dwBufferBytes = bytes;
        target.m_pDSndDevice = &device;
        ASSERT_EQ(bytes, target.createDSndBuff2ndStd());
        ASSERT_EQ(1, target.quaryNotify());
    }
    DWORD waitFor(int entry, DWORD timeout) { return WaitForSingleObject(buffer.m_posNotify[entry].hEventNotify, timeout); }

    const tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
    TestBuffer buffer;
};

TEST_F(BufferNotifyTest, RegistersTheStopEntryAndAllButTheLastPositionAndThePlatformSignalsThem)
{
    makeNotifiable(buffer, 200000);
    EXPECT_EQ(0, buffer.initNotifyEvt(100000, 0, wfx)); // no spacing: nothing registered
    ASSERT_EQ(1, buffer.initNotifyEvt(5999, 1000, wfx)); // shorter than one step: the stop entry alone
    ASSERT_EQ(1, buffer.initNotifyEvt(1000000, 1000, wfx));
    EXPECT_EQ(174000u, buffer.m_posNotify[29].dwOffset);
    auto sets = tap.notificationSets();
    ASSERT_EQ(2u, sets.size());
    EXPECT_TRUE(sets[0].positions.empty());
    ASSERT_EQ(29u, sets[1].positions.size());
    EXPECT_EQ(DSBPN_OFFSETSTOP, sets[1].positions[0].dwOffset);
    EXPECT_EQ(6000u, sets[1].positions[1].dwOffset);
    EXPECT_EQ(168000u, sets[1].positions[28].dwOffset);

    // Position events stay signalled once passed; the stop event resets itself once waited for.
    ASSERT_EQ(1, buffer.playDSnd2ndBuf());
    ASSERT_EQ(WAIT_OBJECT_0, waitFor(1, kWait));
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(1, 0));
    ASSERT_EQ(1, buffer.stopDSnd2ndBuf());
    ASSERT_EQ(WAIT_OBJECT_0, waitFor(0, kWait));
    EXPECT_EQ(WAIT_TIMEOUT, waitFor(0, 0));
}

TEST_F(BufferNotifyTest, StopEntryAloneIsManualResetAndSignalledOnStop)
{
    makeNotifiable(buffer, 20000);
    ASSERT_EQ(1, buffer.initStopEvt());
    ASSERT_EQ(1, buffer.playDSnd2ndBufLoop());
    EXPECT_EQ(WAIT_TIMEOUT, waitFor(0, 0));
    ASSERT_EQ(1, buffer.stopDSnd2ndBuf());
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(0, kWait));
    EXPECT_EQ(WAIT_OBJECT_0, waitFor(0, 0));
}

TEST_F(BufferNotifyTest, QueryFailureLeavesNoInterfaceAndEventsCloseWithTheBuffer)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 1000);
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    EXPECT_EQ(0, buffer.quaryNotify()); // made without notification control
    EXPECT_EQ(nullptr, buffer.m_pDSNotify);
    auto notifiable = std::make_unique<TestBuffer>();
    makeNotifiable(*notifiable, 200000);
    ASSERT_EQ(1, notifiable->initNotifyEvt(1000000, 1000, wfx));
    ASSERT_EQ(1, notifiable->initNotifyEvt(1000000, 1000, wfx)); // the first table's events go
    EXPECT_EQ(29, tap.openNotificationHandles());
    notifiable.reset();
    EXPECT_EQ(0, tap.openNotificationHandles());
}
}
