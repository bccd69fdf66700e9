// The measuring tools themselves, on tones whose answers are known by construction:
// a fault here would let the sound tests pass on silence or on the wrong pitch.

#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <gtest/gtest.h>

using namespace dsty_test;

TEST(SignalAnalysis, LevelOfAToneIsItsPeakInDbfs)
{
    const auto tone = sineTone(1000.0, -6.0, 0.5, 44100, ToneChannels::LeftOnly);
    const PcmView pcm = view(tone, 2);
    EXPECT_EQ(pcm.frames, 22050u);
    EXPECT_NEAR(rmsDbfs(pcm, 0), -6.0, 0.05);
    EXPECT_LT(rmsDbfs(pcm, 1), -150.0);
    EXPECT_NEAR(goertzelAmplitude(pcm, 0, 1000.0, 44100), dbfsToAmplitude(-6.0), 0.01);
    EXPECT_LT(goertzelAmplitude(pcm, 0, 1300.0, 44100), 0.01);
}

TEST(SignalAnalysis, FrequencyIsFoundAtEveryRate)
{
    for (const unsigned rate : {11025u, 22050u, 44100u})
        for (const double hz : {125.0, 440.0, 1000.0, 3150.0})
        {
            const auto tone = sineTone(hz, -20.0, 0.25, rate);
            EXPECT_NEAR(dominantFrequency(view(tone, 1), 0, rate), hz, hz * 0.002) << rate << " Hz rate";
        }
    const std::vector<int16_t> silence(4410, 0);
    EXPECT_EQ(dominantFrequency(view(silence, 1), 0, 44100), 0.0);
}

TEST(SignalAnalysis, OnsetIsTheFirstLoudBlockOnAnyChannel)
{
    std::vector<int16_t> pcm(2 * 1000, 0);
    const auto tone = sineTone(1000.0, -10.0, 0.1, 44100, ToneChannels::RightOnly);
    pcm.insert(pcm.end(), tone.begin(), tone.end());
    EXPECT_EQ(onsetFrame(view(pcm, 2), -30.0, 50), 1000);
    EXPECT_EQ(onsetFrame(view(pcm, 2), -3.0, 50), -1);
}

TEST(SignalAnalysis, SeriesFollowsALevelChange)
{
    auto pcm = sineTone(500.0, -20.0, 0.1, 44100);
    const auto louder = sineTone(500.0, -5.0, 0.1, 44100);
    pcm.insert(pcm.end(), louder.begin(), louder.end());
    const auto series = rmsSeries(view(pcm, 1), 0, 2205);
    ASSERT_EQ(series.size(), 4u);
    EXPECT_NEAR(series[0], -20.0, 0.2);
    EXPECT_NEAR(series[1], -20.0, 0.2);
    EXPECT_NEAR(series[2], -5.0, 0.2);
    EXPECT_NEAR(series[3], -5.0, 0.2);
}

TEST(SignalAnalysis, SliceClipsToTheRecording)
{
    const std::vector<int16_t> pcm(2 * 100, 1);
    const PcmView part = slice(view(pcm, 2), 90, 50);
    EXPECT_EQ(part.frames, 10u);
    EXPECT_EQ(slice(view(pcm, 2), 200, 5).frames, 0u);
    EXPECT_EQ(rmsDbfs(slice(view(pcm, 2), 200, 5), 0), -200.0);
}
