#include "DeviceTestSupport.h"

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
