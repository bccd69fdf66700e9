// Buffers handed out by the device really sound: recorded back through the sink's monitor.

#include "DeviceHarness.h"
#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <algorithm>
#include <cstring>

using namespace dsty_test;

namespace
{
DSBUFFERDESC describe(WAVEFORMATEX& format, size_t bytes, DWORD flags)
{
    DSBUFFERDESC desc{};
    desc.dwSize = sizeof desc;
    desc.dwFlags = flags | DSBCAPS_GLOBALFOCUS;
    desc.dwBufferBytes = static_cast<DWORD>(bytes);
    desc.lpwfxFormat = &format;
    return desc;
}

bool fill(IDirectSoundBuffer8* buffer, const std::vector<int16_t>& pcm)
{
    void* data = nullptr;
    DWORD bytes = 0;
    if (FAILED(buffer->Lock(0, 0, &data, &bytes, nullptr, nullptr, DSBLOCK_ENTIREBUFFER)))
        return false;
    std::memcpy(data, pcm.data(), std::min<size_t>(bytes, pcm.size() * sizeof(int16_t)));
    return SUCCEEDED(buffer->Unlock(data, bytes, nullptr, 0));
}

class DeviceLoopback : public DeviceTest
{
protected:
    // What the sink carries for `ms`; `toPlay`, when given, starts once recording runs.
    std::vector<int16_t> record(DWORD ms, IDirectSoundBuffer8* toPlay = nullptr, DWORD playFlags = 0)
    {
        LoopbackRecorder recorder;
        EXPECT_TRUE(recorder.start()) << std::hex << recorder.lastResult();
        if (toPlay)
        {
            EXPECT_EQ(toPlay->Play(0, 0, playFlags), DS_OK);
        }
        Sleep(ms);
        recorder.stop();
        return recorder.samples();
    }

    // The steady middle of a recorded tone: a quarter of a second from 100 ms after it began.
    // A view into `recorded`, which must outlive it.
    static PcmView steadyPart(const std::vector<int16_t>& recorded)
    {
        const PcmView all = view(recorded, 2);
        const long long onset = onsetFrame(all, -40.0);
        EXPECT_GE(onset, 0) << "nothing was heard";
        return slice(all, static_cast<size_t>(onset < 0 ? 0 : onset) + 4410, 11025);
    }

    static double leftOverRightDb(const std::vector<int16_t>& recorded)
    {
        const PcmView steady = steadyPart(recorded);
        return rmsDbfs(steady, 0) - rmsDbfs(steady, 1);
    }

    IDirectSoundBuffer8* buffer = nullptr;
    IDirectSound3DBuffer* buffer3D = nullptr;

    void TearDown() override
    {
        if (buffer3D)
            buffer3D->Release();
        if (buffer)
            buffer->Release();
        DeviceTest::TearDown();
    }
};
}

TEST_F(DeviceLoopback, SecondaryBufferSoundsItsTone)
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    WAVEFORMATEX format = pcmFormat(44100, 2);
    const auto tone = sineTone(1000.0, -6.0, 0.6, 44100, ToneChannels::Both);
    ASSERT_EQ(device.getDSndBuff2Std(describe(format, tone.size() * 2, 0), buffer), 1);
    ASSERT_NE(buffer, nullptr);
    ASSERT_TRUE(fill(buffer, tone));

    const auto recorded = record(900, buffer);
    const PcmView steady = steadyPart(recorded);
    EXPECT_NEAR(dominantFrequency(steady, 0, 44100), 1000.0, 5.0);
    EXPECT_NEAR(rmsDbfs(steady, 0), -6.0, 3.0);
    EXPECT_NEAR(rmsDbfs(steady, 1), -6.0, 3.0);
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(DeviceLoopback, BufferPlaysInTheFormatItWasDescribedWith)
{
    // A mono 22050 Hz buffer: played at any other rate the tone would shift in pitch.
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    WAVEFORMATEX format = pcmFormat(22050, 1);
    const auto tone = sineTone(1000.0, -6.0, 0.6, 22050, ToneChannels::Mono);
    ASSERT_EQ(device.getDSndBuff2Std(describe(format, tone.size() * 2, 0), buffer), 1);
    ASSERT_TRUE(fill(buffer, tone));

    const auto recorded = record(900, buffer);
    const PcmView steady = steadyPart(recorded);
    EXPECT_NEAR(dominantFrequency(steady, 0, 44100), 1000.0, 5.0);
    EXPECT_NEAR(rmsDbfs(steady, 0), rmsDbfs(steady, 1), 1.0);  // mono reaches both sides
}

TEST_F(DeviceLoopback, LeftChannelStaysLeft)
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    WAVEFORMATEX format = pcmFormat(44100, 2);
    const auto tone = sineTone(500.0, -6.0, 0.6, 44100, ToneChannels::LeftOnly);
    ASSERT_EQ(device.getDSndBuff2Std(describe(format, tone.size() * 2, 0), buffer), 1);
    ASSERT_TRUE(fill(buffer, tone));

    const auto recorded = record(900, buffer);
    const PcmView steady = steadyPart(recorded);
    EXPECT_GT(rmsDbfs(steady, 0) - rmsDbfs(steady, 1), 20.0);
}

TEST_F(DeviceLoopback, ImpossibleDescriptionGivesNoBufferAndNoMessage)
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    WAVEFORMATEX format = pcmFormat(44100, 2);
    buffer = reinterpret_cast<IDirectSoundBuffer8*>(&format);  // must be overwritten
    EXPECT_EQ(device.getDSndBuff2Std(describe(format, 0, 0), buffer), 0);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(DeviceLoopback, ThreeDSourceIsHeardWhereTheCommittedListenerPutsIt)
{
    bringUpAtPriority();
    ASSERT_NE(device.initializeDSndListener(), nullptr);
    WAVEFORMATEX format = pcmFormat(44100, 1);
    const auto tone = sineTone(1000.0, -6.0, 0.5, 44100, ToneChannels::Mono);
    ASSERT_EQ(device.getDirectSnd3DBuffer(describe(format, tone.size() * 2, DSBCAPS_CTRL3D), buffer, buffer3D), 1);
    ASSERT_NE(buffer3D, nullptr);
    ASSERT_TRUE(fill(buffer, tone));
    ASSERT_EQ(buffer3D->SetPosition(5.0f, 0.0f, 0.0f, DS3D_IMMEDIATE), DS_OK);

    // The listener at the origin hears the source on its right.
    EXPECT_LT(leftOverRightDb(record(700, buffer, DSBPLAY_LOOPING)), -20.0);

    // Moved past the source, but only deferred: nothing changes yet.
    ASSERT_EQ(device.getDS3DListenerPara(), 1);
    device.m_ds3dListener.vPosition = {10.0f, 0.0f, 0.0f};
    ASSERT_EQ(device.setCommitDS3DListenerParam(), 1);
    EXPECT_LT(leftOverRightDb(record(500)), -20.0);

    // Committed: the source is now on the listener's left.
    ASSERT_EQ(device.commitDS3DListenerDeferredSettings(), 1);
    Sleep(300);
    EXPECT_GT(leftOverRightDb(record(500)), 20.0);
    EXPECT_TRUE(shownMessages().empty());
}
