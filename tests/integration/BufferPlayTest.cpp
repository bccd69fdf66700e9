// A loaded sound buffer really sounds: once, looped, panned to one side, in the data's
// own format; and its status answers agree with what is heard.

#include "BufferHarness.h"

using namespace dsty_test;

namespace
{
struct OnceEntry
{
    const char* name;
    int (TestBuffer::*play)();
};

struct LoopEntry
{
    const char* name;
    int (TestBuffer::*play)();
    int (TestBuffer::*stop)();
};

struct PanCase
{
    const char* name;
    int (TestBuffer::*pan)();
    double leftMinusRightAtLeast;  // lower bound of left minus right, dB
    double leftMinusRightAtMost;   // upper bound
};

class BufferOnce : public BufferLoopback, public ::testing::WithParamInterface<OnceEntry>
{
};

class BufferLoop : public BufferLoopback, public ::testing::WithParamInterface<LoopEntry>
{
};

class BufferPan : public BufferLoopback, public ::testing::WithParamInterface<PanCase>
{
};

template <class Case> std::string caseName(const ::testing::TestParamInfo<Case>& info)
{
    return info.param.name;
}
}

// Heard at its frequency and level for its length, then silence: a one-shot play does not loop.
TEST_P(BufferOnce, ToneSoundsOnceAtItsFrequencyAndLevel)
{
    loadTone(1000.0, -6.0, 0.4);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);

    unsigned long playCursor = 0, writeCursor = 0;
    const auto recorded = recordWhile(1100, [&] {
        EXPECT_EQ((stim.*GetParam().play)(), 1);
        EXPECT_EQ(stim.isDSndBufferPlaying(), 1);
        EXPECT_EQ(stim.isDSndBufferLooping(), 0);
        Sleep(150);
        EXPECT_EQ(stim.getPlayPosition(&playCursor, &writeCursor), 1);
    });
    EXPECT_EQ(stim.isDSndBufferPlaying(), 0) << "still playing after its length";
    EXPECT_GT(playCursor, 0u) << "the play cursor did not move";

    const PcmView all = view(recorded, 2);
    const PcmView steady = afterOnset(all, 0.1, 0.25);
    for (unsigned channel : {0u, 1u})
    {
        EXPECT_NEAR(toneFrequency(steady, channel), 1000.0, 5.0) << "channel " << channel;
        EXPECT_NEAR(rmsDbfs(steady, channel), -6.0, 3.0) << "channel " << channel;
    }
    const PcmView after = slice(all, onset(all) + static_cast<size_t>(0.5 * kRate), all.frames);
    EXPECT_GT(after.frames, 0.2 * kRate) << "too little recorded after the tone";
    EXPECT_LT(rmsDbfs(after, 0), kSilentDbfs) << "sound after the tone's end";
    EXPECT_LT(rmsDbfs(after, 1), kSilentDbfs) << "sound after the tone's end";
    EXPECT_TRUE(shownMessages().empty());
}

INSTANTIATE_TEST_SUITE_P(Entries, BufferOnce,
                         ::testing::Values(OnceEntry{"sendAudioStim", &TestBuffer::sendAudioStim},
                                           OnceEntry{"playDSnd2ndBuf", &TestBuffer::playDSnd2ndBuf}),
                         caseName<OnceEntry>);

// Still sounding two lengths after the start; silent once stopped.
TEST_P(BufferLoop, LoopOutlastsItsLengthAndEndsOnStop)
{
    loadTone(1000.0, -6.0, 0.25);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);

    startRecording();
    EXPECT_EQ((stim.*GetParam().play)(), 1);
    EXPECT_EQ(stim.isDSndBufferPlaying(), 1);
    EXPECT_EQ(stim.isDSndBufferLooping(), 1);
    Sleep(900);
    EXPECT_EQ(stim.isDSndBufferPlaying(), 1) << "a loop ended by itself";
    EXPECT_EQ((stim.*GetParam().stop)(), 1);
    EXPECT_EQ(stim.isDSndBufferPlaying(), 0);
    EXPECT_EQ(stim.isDSndBufferLooping(), 0);
    Sleep(600);
    const auto recorded = finishRecording();

    const PcmView all = view(recorded, 2);
    const PcmView looped = afterOnset(all, 0.55, 0.2);
    EXPECT_NEAR(rmsDbfs(looped, 0), -6.0, 3.0);
    EXPECT_NEAR(toneFrequency(looped, 0), 1000.0, 5.0);
    const PcmView stopped = tail(all, 0.3);
    EXPECT_LT(rmsDbfs(stopped, 0), kSilentDbfs);
    EXPECT_LT(rmsDbfs(stopped, 1), kSilentDbfs);
    EXPECT_TRUE(shownMessages().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Entries, BufferLoop,
    ::testing::Values(LoopEntry{"sendAudioStimLoop", &TestBuffer::sendAudioStimLoop, &TestBuffer::stopAudioStim},
                      LoopEntry{"playDSnd2ndBufLoop", &TestBuffer::playDSnd2ndBufLoop, &TestBuffer::stopDSnd2ndBuf}),
    caseName<LoopEntry>);

TEST_P(BufferPan, PanDecidesWhichSideIsHeard)
{
    loadTone(1000.0, -6.0, 0.6);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);
    ASSERT_EQ((stim.*GetParam().pan)(), 1);

    const auto recorded = recordWhile(900, [&] { EXPECT_EQ(stim.sendAudioStim(), 1); });
    const double balance = leftMinusRightDb(afterOnset(view(recorded, 2), 0.1, 0.25));
    EXPECT_GE(balance, GetParam().leftMinusRightAtLeast);
    EXPECT_LE(balance, GetParam().leftMinusRightAtMost);
    EXPECT_TRUE(shownMessages().empty());
}

INSTANTIATE_TEST_SUITE_P(Sides, BufferPan,
                         ::testing::Values(PanCase{"panMuteLeft", &TestBuffer::panMuteLeft, -300.0, -20.0},
                                           PanCase{"panMuteRight", &TestBuffer::panMuteRight, 20.0, 300.0},
                                           PanCase{"panCenter", &TestBuffer::panCenter, -1.0, 1.0}),
                         caseName<PanCase>);

// Mono data at half the sink's rate: a wrong rate would shift the pitch, a wrong channel
// count would halve it.
TEST_F(BufferLoopback, BufferTakesTheFormatOfItsData)
{
    loadTone(1000.0, -6.0, 0.6, 22050, ToneChannels::Mono);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);

    const auto recorded = recordWhile(900, [&] { EXPECT_EQ(stim.sendAudioStim(), 1); });
    const PcmView steady = afterOnset(view(recorded, 2), 0.1, 0.25);
    EXPECT_NEAR(toneFrequency(steady, 0), 1000.0, 5.0);
    EXPECT_NEAR(leftMinusRightDb(steady), 0.0, 1.0);
}
