// A loaded sound buffer really sounds: once, looped and panned, and as a moving 3D source.

#include "Loopback.h"

using namespace dsty_test;

// Heard at its pitch and level for its length, then silence: a one-shot play does not loop.
TEST_F(Loopback, ToneSoundsOnceAtItsPitchAndLevel)
{
    openDevice();
    loadTone(1000.0, 0.4, ToneChannels::Both);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);
    startRecording();
    EXPECT_EQ(stim.sendAudioStim(), 1);
    Sleep(1100);
    EXPECT_EQ(stim.isDSndBufferPlaying(), 0) << "still playing after its length";
    finishRecording();

    const PcmView steady = heardAt(0.1, 0.25);
    const PcmView after = heardAt(0.5, 0.3);
    for (unsigned channel : {0u, 1u})
    {
        EXPECT_NEAR(toneFrequency(steady, channel), 1000.0, 5.0) << "channel " << channel;
        EXPECT_NEAR(rmsDbfs(steady, channel), -6.0, 3.0) << "channel " << channel;
        EXPECT_LT(rmsDbfs(after, channel), kSilentDbfs) << "sound after the tone's end";
    }
    EXPECT_TRUE(shownMessages().empty());
}

// A quarter-second tone looped for two seconds while the pan moves it left, right and back to
// the centre; silent once stopped.
TEST_F(Loopback, LoopOutlastsItsLengthFollowsThePanAndEndsOnStop)
{
    // At least, at most: left minus right, dB.
    const struct { const char* side; int (CDirectSnd3DBuffty::*pan)(); double atLeast, atMost; } sides[] = {
        {"left", &CDirectSnd3DBuffty::panMuteRight, 20.0, 300.0},
        {"right", &CDirectSnd3DBuffty::panMuteLeft, -300.0, -20.0},
        {"centre", &CDirectSnd3DBuffty::panCenter, -1.0, 1.0},
    };
    openDevice();
    loadTone(1000.0, 0.25, ToneChannels::Both);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);
    startRecording();
    const LONGLONG played = performanceCounter();
    ASSERT_EQ(stim.sendAudioStimLoop(), 1);
    std::vector<double> panned;  // seconds after the play call
    for (const auto& side : sides)
    {
        panned.push_back(counterSeconds(played, performanceCounter()));
        EXPECT_EQ((stim.*side.pan)(), 1) << side.side;
        Sleep(600);
    }
    EXPECT_EQ(stim.isDSndBufferLooping(), 1) << "a loop ended by itself";
    EXPECT_EQ(stim.stopAudioStim(), 1);
    Sleep(500);
    finishRecording();

    // The pan reaches the sink as late as the start did, so both count from the first sound.
    for (size_t i = 0; i < panned.size(); ++i)
    {
        const PcmView part = heardAt(panned[i] + 0.2, 0.3);
        const double balance = leftMinusRightDb(part);
        EXPECT_GE(balance, sides[i].atLeast) << sides[i].side;
        EXPECT_LE(balance, sides[i].atMost) << sides[i].side;
        EXPECT_NEAR(toneFrequency(part, balance >= 0.0 ? 0 : 1), 1000.0, 5.0) << sides[i].side;
    }
    EXPECT_LT(rmsDbfs(heardLast(0.3), 0), kSilentDbfs) << "sound after the stop";
    EXPECT_LT(rmsDbfs(heardLast(0.3), 1), kSilentDbfs) << "sound after the stop";
    EXPECT_TRUE(shownMessages().empty());
}

// Stereo data, made mono for 3D, from (-5,0,1) at 10 units a second for one second: far left,
// past the front halfway, far right at last, at the tone's own pitch throughout.
TEST_F(Loopback, MovingSourceCrossesFromLeftToRight)
{
    openDevice();
    loadTone(1000.0, 1.0, ToneChannels::Both);
    ASSERT_EQ(stim.setSndData2DS3Dbuff2(&data, &device), 1);
    stim.m_ds3dBuffer.vPosition = {-5.0f, 0.0f, 1.0f};
    stim.m_ds3dBuffer.vVelocity = {10.0f, 0.0f, 0.0f};
    startRecording();
    EXPECT_EQ(stim.sendAudioStimDS3D(), 1);
    Sleep(1500);
    finishRecording();
    EXPECT_EQ(stim.isDSndBufferPlaying(), 0);
    EXPECT_GT(stim.m_ds3dBufferSaved.vPosition.x, 4.0f) << "the motion stopped short";

    EXPECT_GT(leftMinusRightDb(heardAt(0.0, 0.3)), 6.0) << "not on the left at first";
    EXPECT_NEAR(leftMinusRightDb(heardAt(0.4, 0.2)), 0.0, 3.0) << "not in front halfway through";
    EXPECT_LT(leftMinusRightDb(heardAt(0.7, 0.3)), -6.0) << "not on the right at last";
    EXPECT_NEAR(toneFrequency(heardAt(0.4, 0.2), 0), 1000.0, 5.0);
    EXPECT_TRUE(shownMessages().empty());
}
