// A buffer as a 3D source: heard on the side where it stands, and moving across while
// a moving play runs.

#include "BufferHarness.h"

using namespace dsty_test;

namespace
{
struct SourceData
{
    const char* name;
    ToneChannels channels;
};

class Buffer3DStatic : public BufferLoopback, public ::testing::WithParamInterface<SourceData>
{
};

double mean(const std::vector<double>& values, size_t first, size_t count)
{
    double sum = 0.0;
    for (size_t i = first; i < first + count; ++i)
        sum += values[i];
    return sum / static_cast<double>(count);
}
}

// Stereo data are made mono in the caller's container; the tone must survive that
// unchanged in pitch, and the default listener at the origin hears (2,0,0) on its right.
TEST_P(Buffer3DStatic, SourceOnTheRightIsLouderOnTheRight)
{
    loadTone(1000.0, -6.0, 0.6, kRate, GetParam().channels);
    const unsigned long bytesBefore = data.getDataSize();
    ASSERT_EQ(stim.setSndData2DS3Dbuff2(&data, &device), 1);

    const tWAVEFORMATEX loaded = data.getAudioWaveDataWfx();
    EXPECT_EQ(loaded.nChannels, 1);
    EXPECT_EQ(loaded.nBlockAlign, 2);
    EXPECT_EQ(loaded.nAvgBytesPerSec, 2 * kRate);
    EXPECT_EQ(data.getDataSize(), GetParam().channels == ToneChannels::Mono ? bytesBefore : bytesBefore / 2);

    stim.m_ds3dBuffer.vPosition = {2.0f, 0.0f, 0.0f};
    const auto recorded = recordWhile(900, [&] { EXPECT_EQ(stim.sendAudStim3DSndStatic(), 1); });
    const PcmView steady = afterOnset(view(recorded, 2), 0.1, 0.25);
    EXPECT_NEAR(toneFrequency(steady, 1), 1000.0, 5.0);
    EXPECT_LT(leftMinusRightDb(steady), -20.0);
    EXPECT_TRUE(shownMessages().empty());
}

INSTANTIATE_TEST_SUITE_P(Data, Buffer3DStatic,
                         ::testing::Values(SourceData{"mono", ToneChannels::Mono},
                                           SourceData{"stereo", ToneChannels::Both}),
                         [](const ::testing::TestParamInfo<SourceData>& info) { return info.param.name; });

// From (-5,0,1) at 10 units a second for one second: far left, past the front, to far right.
TEST_F(BufferLoopback, MovingSourceCrossesFromLeftToRight)
{
    loadTone(1000.0, -6.0, 1.0, kRate, ToneChannels::Mono);
    ASSERT_EQ(stim.setSndData2DS3Dbuff2(&data, &device), 1);
    stim.m_ds3dBuffer.vPosition = {-5.0f, 0.0f, 1.0f};
    stim.m_ds3dBuffer.vVelocity = {10.0f, 0.0f, 0.0f};

    const auto recorded = recordWhile(1500, [&] { EXPECT_EQ(stim.sendAudioStimDS3D(), 1); });
    EXPECT_EQ(stim.isDSndBufferPlaying(), 0);
    EXPECT_GT(stim.m_ds3dBufferSaved.vPosition.x, 4.0f) << "the motion stopped short";

    // Ten windows of 100 ms over the second the tone lasts; at 0.5 s the source passes (0,0,1).
    const PcmView sounding = afterOnset(view(recorded, 2), 0.0, 1.0);
    const std::vector<double> left = rmsSeries(sounding, 0, kRate / 10);
    const std::vector<double> right = rmsSeries(sounding, 1, kRate / 10);
    ASSERT_EQ(left.size(), 10u);
    const double early = mean(left, 0, 3) - mean(right, 0, 3);
    const double middle = mean(left, 4, 2) - mean(right, 4, 2);
    const double late = mean(left, 7, 3) - mean(right, 7, 3);
    EXPECT_GT(early, 6.0) << "not on the left at first";
    EXPECT_NEAR(middle, 0.0, 3.0) << "not in front halfway through";
    EXPECT_LT(late, -6.0) << "not on the right at last";
    EXPECT_TRUE(shownMessages().empty());
}
