#include "DeviceTestSupport.h"

namespace
{
class FormatRulesTest : public DeviceTest
{
protected:
    TestDevice device;
};

TEST_F(FormatRulesTest, AcceptsPcmAcrossTheRateBandAndNoFurther)
{
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    EXPECT_EQ(1, device.isSupportWfx(wfx));
    wfx.nSamplesPerSec = 44101;
    EXPECT_EQ(0, device.isSupportWfx(wfx));
    wfx.nSamplesPerSec = 11024;
    EXPECT_EQ(0, device.isSupportWfx(wfx));
    wfx.nSamplesPerSec = 11025;
    EXPECT_EQ(1, device.isSupportWfx(wfx));
    wfx.nSamplesPerSec = 0; // wraps round in the unsigned band test
    EXPECT_EQ(0, device.isSupportWfx(wfx));
}

TEST_F(FormatRulesTest, RefusesWhatItCannotPlayButIgnoresBitsAndByteRate)
{
    tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
    wfx.nChannels = 3;
    EXPECT_EQ(0, device.isSupportWfx(wfx));
    for (WORD align : {0, 5})
    {
        wfx = pcmFormat(2, 22050, 16);
        wfx.nBlockAlign = align;
        EXPECT_EQ(0, device.isSupportWfx(wfx)) << align;
    }
    wfx = pcmFormat(2, 22050, 16);
    wfx.cbSize = 22;
    EXPECT_EQ(0, device.isSupportWfx(wfx));
    wfx = pcmFormat(2, 22050, 16);
    wfx.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    EXPECT_EQ(0, device.isSupportWfx(wfx));

    wfx = pcmFormat(1, 22050, 16);
    wfx.wBitsPerSample = 24;
    wfx.nAvgBytesPerSec = 1;
    EXPECT_EQ(1, device.isSupportWfx(wfx));
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
    device.m_hr = S_OK;
    EXPECT_EQ(1, device.traceHR());
    device.m_hr = S_FALSE;
    EXPECT_EQ(0, device.traceHR());
    device.m_hr = DSERR_GENERIC;
    EXPECT_EQ(0, device.traceHR());
}
}
