#include "DeviceTestSupport.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <functional>

namespace
{
class FormatRulesTest : public DeviceTest
{
protected:
    TestDevice device;
};

TEST_F(FormatRulesTest, AcceptsPcmInTheRateBandWithMatchingAlignmentOnly)
{
    struct Case
    {
        const char* what;
        std::function<void(tWAVEFORMATEX&)> change;
        int supported;
    };
    const Case cases[] = {
        {"as made", [](tWAVEFORMATEX&) {}, 1},
        {"44100", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 44100; }, 1},
        {"44101", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 44101; }, 0},
        {"11025", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 11025; }, 1},
        {"11024", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 11024; }, 0},
        {"rate 0 wraps in the unsigned band test", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 0; }, 0},
        {"3 channels", [](tWAVEFORMATEX& w) { w.nChannels = 3; }, 0},
        {"alignment 0", [](tWAVEFORMATEX& w) { w.nBlockAlign = 0; }, 0},
        {"alignment 5", [](tWAVEFORMATEX& w) { w.nBlockAlign = 5; }, 0},
        {"extra bytes", [](tWAVEFORMATEX& w) { w.cbSize = 22; }, 0},
        {"float", [](tWAVEFORMATEX& w) { w.wFormatTag = WAVE_FORMAT_IEEE_FLOAT; }, 0},
        {"bits and byte rate are not looked at",
         [](tWAVEFORMATEX& w) {
             w.wBitsPerSample = 24;
             w.nAvgBytesPerSec = 1;
         },
         1},
    };
    for (const Case& c : cases) {
        tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
        c.change(wfx);
        EXPECT_EQ(c.supported, device.isSupportWfx(wfx)) << c.what;
    }
}

TEST_F(FormatRulesTest, ComparesAllSevenFields)
{
    tWAVEFORMATEX a = pcmFormat(2, 22050, 16);
    tWAVEFORMATEX b = a;
    EXPECT_EQ(1, device.isSoundFormatSame(a, b));
    b.cbSize = 2;
    EXPECT_EQ(0, device.isSoundFormatSame(a, b));
    b = a;
    b.nAvgBytesPerSec++;
    EXPECT_EQ(0, device.isSoundFormatSame(a, b));
}

TEST_F(FormatRulesTest, OnlyExactSuccessPassesTheResultTest)
{
    for (HRESULT hr : {S_OK, S_FALSE, DSERR_GENERIC}) {
        device.m_hr = hr;
        EXPECT_EQ(hr == S_OK ? 1 : 0, device.traceHR()) << hr;
    }
}
}

// The loopback tests measure what they hear with this analysis: it must be able to tell a
// recording is wrong, or they could not fail.
TEST(LoopbackAnalysis, TellsTheToneFromSilenceAndFromAnotherPitch)
{
    const auto tone = dsty_test::sineTone(1000.0, -6.0, 0.25, 44100, dsty_test::ToneChannels::LeftOnly);
    const dsty_test::PcmView pcm = dsty_test::view(tone, 2);
    EXPECT_NEAR(1000.0, dsty_test::dominantFrequency(pcm, 0, 44100), 2.0);
    EXPECT_NEAR(-6.0, dsty_test::rmsDbfs(pcm, 0), 0.05);
    EXPECT_LT(dsty_test::goertzelAmplitude(pcm, 0, 1300.0, 44100), 0.01);
    EXPECT_LT(dsty_test::rmsDbfs(pcm, 1), -150.0);
    EXPECT_EQ(0.0, dsty_test::dominantFrequency(pcm, 1, 44100));
    EXPECT_EQ(0, dsty_test::onsetFrame(pcm, -30.0, 50));
    EXPECT_EQ(-1, dsty_test::onsetFrame(pcm, -3.0, 50));
}
