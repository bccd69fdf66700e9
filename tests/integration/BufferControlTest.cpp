// Rate and volume of a buffer. The library describes its buffers without the rate and
// volume controls, so the platform refuses both there; on a buffer made with them the
// library's limits are what reaches the platform, which itself refuses values outside them.

#include "BufferHarness.h"

using namespace dsty_test;

namespace
{
class ControlledBuffer : public BufferLoopback
{
protected:
    // A one-second stereo tone in a buffer the device makes with the rate and volume controls;
    // the buffer object owns and releases it.
    void makeControlledTone(double hz)
    {
        loadTone(hz, -6.0, 1.0);
        WAVEFORMATEX format = pcmFormat(kRate, 2);
        DSBUFFERDESC desc{};
        desc.dwSize = sizeof desc;
        desc.dwFlags = DSBCAPS_CTRLFREQUENCY | DSBCAPS_CTRLVOLUME | DSBCAPS_CTRLPAN;
        desc.dwBufferBytes = data.getDataSize();
        desc.lpwfxFormat = &format;
        ASSERT_EQ(device.getDSndBuff2Std(desc, stim.m_pDSBuffer), 1);
        ASSERT_EQ(stim.copySndData2DSndBuf2nd(reinterpret_cast<const BYTE*>(data.getDataPointer()),
                                              data.getDataSize()),
                  1);
    }
};
}

// The refused settings change nothing that is heard.
TEST_F(BufferLoopback, LibraryBufferRefusesRateAndVolume)
{
    loadTone(1000.0, -6.0, 0.6);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);

    EXPECT_EQ(stim.setFrequency(22050), 0);
    EXPECT_EQ(stim.m_hr, DSERR_CONTROLUNAVAIL);
    EXPECT_EQ(stim.setVolume(-1200), 0);
    EXPECT_EQ(stim.m_hr, DSERR_CONTROLUNAVAIL);
    EXPECT_EQ(stim.getFrequency(), kRate);

    const auto recorded = recordWhile(900, [&] { EXPECT_EQ(stim.sendAudioStim(), 1); });
    const PcmView steady = afterOnset(view(recorded, 2), 0.1, 0.25);
    EXPECT_NEAR(toneFrequency(steady, 0), 1000.0, 5.0);
    EXPECT_NEAR(rmsDbfs(steady, 0), -6.0, 3.0);
}

TEST_F(BufferLoopback, ThreeDBufferRefusesRateAndVolume)
{
    loadTone(1000.0, -6.0, 0.2, kRate, ToneChannels::Mono);
    ASSERT_EQ(stim.setSndData2DS3Dbuff2(&data, &device), 1);
    EXPECT_EQ(stim.setFrequency(22050), 0);
    EXPECT_EQ(stim.setVolume(-1200), 0);
    EXPECT_EQ(stim.m_hr, DSERR_CONTROLUNAVAIL);
}

// The platform refuses rates and volumes out of its range, so each accepted call below
// shows that the library brought the value inside it.
TEST_F(ControlledBuffer, OutOfRangeValuesAreClampedToThePlatformLimits)
{
    makeControlledTone(1000.0);
    EXPECT_EQ(stim.getFrequency(), kRate);
    const struct
    {
        unsigned long asked, read;
    } rates[] = {{50, DSBFREQUENCY_MIN}, {300000, DSBFREQUENCY_MAX}, {22050, 22050}};
    for (const auto& rate : rates)
    {
        EXPECT_EQ(stim.setFrequency(rate.asked), 1) << rate.asked << " Hz";
        EXPECT_EQ(stim.getFrequency(), rate.read) << rate.asked << " Hz";
    }
    const struct
    {
        long asked, read;
    } volumes[] = {{500, DSBVOLUME_MAX}, {-20000, DSBVOLUME_MIN}, {-1200, -1200}};
    for (const auto& volume : volumes)
    {
        EXPECT_EQ(stim.setVolume(volume.asked), 1) << volume.asked;
        EXPECT_EQ(stim.getVolume(), volume.read) << volume.asked;
    }
    EXPECT_TRUE(shownMessages().empty());
}

// Half the data's rate lowers the pitch an octave; -12 dB of volume lowers the level as much.
TEST_F(ControlledBuffer, RateAndVolumeAreHeard)
{
    makeControlledTone(1000.0);
    ASSERT_EQ(stim.setFrequency(kRate / 2), 1);
    ASSERT_EQ(stim.setVolume(-1200), 1);

    const auto recorded = recordWhile(900, [&] { EXPECT_EQ(stim.sendAudioStim(), 1); });
    const PcmView steady = afterOnset(view(recorded, 2), 0.1, 0.4);
    EXPECT_NEAR(toneFrequency(steady, 0), 500.0, 3.0);
    EXPECT_NEAR(rmsDbfs(steady, 0), -18.0, 3.0);
}
