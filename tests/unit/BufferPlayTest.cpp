#include "BufferTestSupport.h"

namespace
{
class BufferPlayTest : public BufferTest
{
protected:
    void SetUp() override
    {
        BufferTest::SetUp();
        data = rampData(pcmFormat(2, 22050, 16), 8000);
        ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
        fake.clearLog();
    }

    int plays() { return fake.count("IDirectSoundBuffer::Play"); }

    std::unique_ptr<CSndDatatyx> data;
    TestBuffer buffer;
};

TEST_F(BufferPlayTest, StimulusPlaysTwiceFromTheStartAndLoopsWhenAsked)
{
    ASSERT_EQ(1, buffer.sendAudioStim());
    EXPECT_EQ(2, plays());
    EXPECT_EQ(1, buffer.isDSndBufferPlaying());
    EXPECT_EQ(0, buffer.isDSndBufferLooping());
    ASSERT_EQ(1, buffer.sendAudioStimLoop());
    EXPECT_EQ(1, buffer.isDSndBufferLooping());
    auto calls = fake.callsTo("IDirectSoundBuffer::Play");
    EXPECT_EQ(static_cast<std::uintptr_t>(DSBPLAY_LOOPING), calls.back().args[2]);
    EXPECT_EQ(2, fake.count("IDirectSoundBuffer::SetCurrentPosition"));
    EXPECT_EQ(1, buffer.stopAudioStim());
    EXPECT_EQ(0, buffer.isDSndBufferPlaying());
}

TEST_F(BufferPlayTest, StimulusRestoresALostBufferAndFailsIfItCannot)
{
    fake.setLost(buffer.m_pDSBuffer, true);
    ASSERT_EQ(1, buffer.sendAudioStim());
    EXPECT_EQ(1, fake.count("IDirectSoundBuffer::Restore"));
    EXPECT_EQ(2, plays());

    fake.setLost(buffer.m_pDSBuffer, true);
    fake.failAlways("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
    EXPECT_EQ(0, buffer.sendAudioStim());
    EXPECT_EQ(3, plays());
    EXPECT_EQ(1, buffer.isDSndBufferLost());
}

TEST_F(BufferPlayTest, FacadePlayCountsAFailedFirstPlayAsPlayed)
{
    fake.failNth("IDirectSoundBuffer::Play", 1, DSERR_INVALIDCALL);
    EXPECT_EQ(1, buffer.playDSnd2ndBuf());
    EXPECT_EQ(DSERR_INVALIDCALL, buffer.m_hr);
    EXPECT_EQ(1, plays());

    fake.setLost(buffer.m_pDSBuffer, true);
    EXPECT_EQ(1, buffer.playDSnd2ndBufLoop()); // restored, then played once more
    EXPECT_EQ(3, plays());
    EXPECT_EQ(1, buffer.isDSndBufferLooping());
    EXPECT_EQ(1, buffer.stopDSnd2ndBuf());
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

TEST_F(BufferPlayTest, PlaySetUpGivesTheDeviceTheNormalLevel)
{
    ASSERT_EQ(1, buffer.initDSndPlayStd(reinterpret_cast<HWND>(0x1234)));
    EXPECT_EQ(reinterpret_cast<HWND>(0x1234), device.getSndDeviceHwnd());
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
}

TEST_F(BufferPlayTest, PanMutesOneSideAndRefusesCentreOnA3DBuffer)
{
    ASSERT_EQ(1, buffer.panMuteLeft());
    EXPECT_EQ(DSBPAN_RIGHT, fake.bufferInfo(buffer.m_pDSBuffer).pan);
    ASSERT_EQ(1, buffer.panMuteRight());
    EXPECT_EQ(DSBPAN_LEFT, fake.bufferInfo(buffer.m_pDSBuffer).pan);
    ASSERT_EQ(1, buffer.panCenter());
    EXPECT_EQ(0, fake.bufferInfo(buffer.m_pDSBuffer).pan);

    auto mono = rampData(pcmFormat(1, 22050, 16), 1000);
    TestBuffer buffer3D;
    ASSERT_EQ(1, buffer3D.setSndData2DS3Dbuff2(mono.get(), &device));
    fake.clearLog();
    EXPECT_EQ(0, buffer3D.panCenter());
    EXPECT_TRUE(messages.saw(L"This is 3D sound, pan cannot be set!"));
    EXPECT_EQ(0, buffer3D.panMuteLeft()); // the platform refuses pan on a 3D buffer
    EXPECT_EQ(1, fake.count("IDirectSoundBuffer::SetPan"));
}

TEST_F(BufferPlayTest, ControlValuesAreClampedToThePlatformsLimits)
{
    for (unsigned long hz : {50ul, 300000ul, 44100ul})
        buffer.setFrequency(hz);
    for (long volume : {500l, -20000l})
        buffer.setVolume(volume);
    auto frequencies = fake.callsTo("IDirectSoundBuffer::SetFrequency");
    ASSERT_EQ(3u, frequencies.size());
    EXPECT_EQ(100u, frequencies[0].args[0]);
    EXPECT_EQ(200000u, frequencies[1].args[0]);
    EXPECT_EQ(44100u, frequencies[2].args[0]);
    auto volumes = fake.callsTo("IDirectSoundBuffer::SetVolume");
    ASSERT_EQ(2u, volumes.size());
    EXPECT_EQ(0, volumes[0].argLong(0));
    EXPECT_EQ(-10000, volumes[1].argLong(0));
    // The library's buffers have no frequency or volume control, so the platform refuses,
    // reading as well as setting.
    EXPECT_EQ(0, buffer.setFrequency(44100));
    EXPECT_EQ(0, buffer.getVolume());
    EXPECT_EQ(0u, buffer.getFrequency());
    EXPECT_EQ(DSERR_CONTROLUNAVAIL, buffer.m_hr);
}

TEST_F(BufferPlayTest, PlayPositionFollowsThePlayCursor)
{
    ASSERT_EQ(1, buffer.sendAudioStim());
    fake.advancePlay(buffer.m_pDSBuffer, 4000);
    unsigned long play = 0, write = 0;
    ASSERT_EQ(1, buffer.getPlayPosition(&play, &write));
    EXPECT_EQ(4000u, play);
    fake.failAlways("IDirectSoundBuffer::GetCurrentPosition", DSERR_GENERIC);
    EXPECT_EQ(0, buffer.getPlayPosition(&play, &write));
}

// --- notifications ---

class BufferNotifyTest : public BufferTest
{
protected:
    // A buffer that accepts notifications, as a streaming buffer would be made.
    void makeNotifiable(TestBuffer& target, unsigned long bytes)
    {
        target.m_wfx = pcmFormat(2, 22050, 16);
        target.m_dsbd.dwFlags = DSBCAPS_CTRLPOSITIONNOTIFY;
        target.m_dsbd.dwBufferBytes = bytes;
        target.m_pDSndDevice = &device;
        ASSERT_EQ(bytes, target.createDSndBuff2ndStd());
        ASSERT_EQ(1, target.quaryNotify());
    }

    TestBuffer buffer;
};

TEST_F(BufferNotifyTest, RegistersTheStopEntryAndAllButTheLastPosition)
{
    makeNotifiable(buffer, 200000);
    tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
    ASSERT_EQ(1, buffer.initNotifyEvt(1000000, 1000, wfx));
    EXPECT_EQ(174000u, buffer.m_posNotify[29].dwOffset);
    auto sets = fake.notificationSets();
    ASSERT_EQ(1u, sets.size());
    ASSERT_EQ(29u, sets[0].positions.size());
    EXPECT_EQ(DSBPN_OFFSETSTOP, sets[0].positions[0].dwOffset);
    EXPECT_EQ(6000u, sets[0].positions[1].dwOffset);
    EXPECT_EQ(168000u, sets[0].positions[28].dwOffset);

    // The stop event resets itself once waited for; position events stay signalled.
    SetEvent(buffer.m_posNotify[0].hEventNotify);
    SetEvent(buffer.m_posNotify[1].hEventNotify);
    WaitForSingleObject(buffer.m_posNotify[0].hEventNotify, 0);
    WaitForSingleObject(buffer.m_posNotify[1].hEventNotify, 0);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(buffer.m_posNotify[0].hEventNotify, 0));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(buffer.m_posNotify[1].hEventNotify, 0));
}

TEST_F(BufferNotifyTest, ShortTotalsRegisterNoPositionAndZeroSpacingNothing)
{
    makeNotifiable(buffer, 20000);
    tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
    ASSERT_EQ(1, buffer.initNotifyEvt(5999, 1000, wfx));
    ASSERT_EQ(1u, fake.notificationSets().size());
    EXPECT_TRUE(fake.notificationSets()[0].positions.empty());
    EXPECT_EQ(0, buffer.initNotifyEvt(100000, 0, wfx));
    EXPECT_EQ(1u, fake.notificationSets().size());
}

TEST_F(BufferNotifyTest, StopEntryAloneIsManualResetAndSignalledOnStop)
{
    makeNotifiable(buffer, 20000);
    ASSERT_EQ(1, buffer.initStopEvt());
    ASSERT_EQ(1, buffer.playDSnd2ndBuf());
    ASSERT_EQ(1, buffer.stopDSnd2ndBuf());
    HANDLE stop = buffer.m_posNotify[0].hEventNotify;
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(stop, 0));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(stop, 0));
}

TEST_F(BufferNotifyTest, QueryFailureLeavesNoInterfaceAndEventsCloseWithTheBuffer)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 1000);
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    EXPECT_EQ(0, buffer.quaryNotify()); // made without notification control
    EXPECT_EQ(nullptr, buffer.m_pDSNotify);
    {
        TestBuffer notifiable;
        makeNotifiable(notifiable, 200000);
        tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
        ASSERT_EQ(1, notifiable.initNotifyEvt(1000000, 1000, wfx));
        ASSERT_EQ(1, notifiable.initNotifyEvt(1000000, 1000, wfx)); // the first table's events go
        EXPECT_EQ(29, fake.openNotificationHandles());
    }
    EXPECT_EQ(0, fake.openNotificationHandles());
}
}
