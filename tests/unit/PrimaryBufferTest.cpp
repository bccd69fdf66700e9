#include "DeviceTestSupport.h"

namespace
{
const HWND kWindow = reinterpret_cast<HWND>(0x1234);

class PrimaryBufferTest : public DeviceTest
{
protected:
    // An open device whose recorded level is `level` and which has a primary buffer.
    void prepare(DWORD level)
    {
        openDevice(device);
        bringLevel(device, level);
        ASSERT_EQ(1, device.createDSndBuff1Primary());
        fake.clearLog();
    }

    TestDevice device;
};

TEST_F(PrimaryBufferTest, NewDeviceHoldsTheDefaultPrimaryFormat)
{
    tWAVEFORMATEX expected = pcmFormat(2, 22050, 16);
    EXPECT_EQ(1, device.isSoundFormatSame(expected, device.m_wfxPrimary));
}

TEST_F(PrimaryBufferTest, IsCreatedFromAPlainPrimaryDescription)
{
    openDevice(device);
    ASSERT_EQ(1, device.createDSndBuff1Primary());
    auto requests = fake.bufferRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(40u, requests[0].desc.dwSize);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_PRIMARYBUFFER), requests[0].desc.dwFlags);
    EXPECT_EQ(0u, requests[0].desc.dwBufferBytes);
    EXPECT_FALSE(requests[0].hasFormat);
}

TEST_F(PrimaryBufferTest, MissingBufferIsReportedWithTheSystemErrorCode)
{
    openDevice(device);
    fake.failAlways("IDirectSound8::CreateSoundBuffer", DSERR_ALLOCATED);
    SetLastError(1234);
    EXPECT_EQ(0, device.createDSndBuff1Primary());
    EXPECT_TRUE(messages.saw(L"Create direct sound primary buffer error:1234 \n"));
}

TEST_F(PrimaryBufferTest, FormatChangeChecksDeviceBufferAndLevelInThatOrder)
{
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    EXPECT_EQ(0, device.setDSndPrimaryWfx(wfx));
    openDevice(device);
    EXPECT_EQ(0, device.setDSndPrimaryWfx(wfx));
    device.createDSndBuff1Primary();
    EXPECT_EQ(0, device.setDSndPrimaryWfx(wfx));
    EXPECT_EQ((std::vector<std::wstring>{
                  L"Direct sound is not initialized", L"Primary sound buffer is not initialized",
                  L"To change primary sound buffer formate, direct sound cooperative level at least priority"}),
              messages.texts());
    EXPECT_EQ(0, fake.count("IDirectSoundBuffer::SetFormat"));
}

TEST_F(PrimaryBufferTest, SameFormatIsNotSetAgain)
{
    prepare(DSSCL_PRIORITY);
    fake.primaryFormat() = pcmFormat(2, 44100, 16);
    EXPECT_EQ(1, device.setDSndPrimaryWfx(pcmFormat(2, 44100, 16)));
    EXPECT_EQ(0, fake.count("IDirectSoundBuffer::SetFormat"));
    EXPECT_EQ(44100u, device.m_wfxPrimary.nSamplesPerSec);
}

TEST_F(PrimaryBufferTest, UnsupportedFormatWarnsAndStillReachesThePlatform)
{
    prepare(DSSCL_PRIORITY);
    EXPECT_EQ(1, device.setDSndPrimaryWfx(pcmFormat(1, 8000, 8)));
    EXPECT_TRUE(messages.saw(L"Sound data format is out of control range"));
    EXPECT_EQ(1, fake.count("IDirectSoundBuffer::SetFormat"));
    EXPECT_EQ(8000u, device.m_wfxPrimary.nSamplesPerSec);
    EXPECT_EQ(8000u, fake.primaryFormat().nSamplesPerSec);
}

TEST_F(PrimaryBufferTest, StopsOnlyAnExactlyPlayingBufferAtWritePrimary)
{
    struct Case
    {
        DWORD level;
        DWORD status;
        int stops;
    };
    for (Case c : {Case{DSSCL_WRITEPRIMARY, DSBSTATUS_PLAYING, 1}, Case{DSSCL_WRITEPRIMARY, DSBSTATUS_LOOPING, 1},
                   Case{DSSCL_WRITEPRIMARY, DSBSTATUS_PLAYING | DSBSTATUS_LOOPING, 0},
                   Case{DSSCL_EXCLUSIVE, DSBSTATUS_PLAYING, 0}})
    {
        fake.primaryFormat() = pcmFormat(2, 22050, 16);
        TestDevice local;
        ASSERT_EQ(1, local.createDSndObject(NULL));
        bringLevel(local, c.level);
        ASSERT_EQ(1, local.createDSndBuff1Primary());
        fake.setPrimaryStatus(c.status);
        fake.clearLog();
        local.setDSndPrimaryWfx(pcmFormat(2, 44100, 16));
        EXPECT_EQ(c.stops, fake.count("IDirectSoundBuffer::Stop")) << c.level << " " << c.status;
        EXPECT_EQ(1, fake.count("IDirectSoundBuffer::SetFormat"));
    }
}

TEST_F(PrimaryBufferTest, PlatformRefusalsFailSilentlyAndKeepTheFormat)
{
    prepare(DSSCL_PRIORITY);
    for (const char* method : {"IDirectSoundBuffer::GetStatus", "IDirectSoundBuffer::SetFormat"})
    {
        fake.clearScript();
        fake.failAlways(method, DSERR_BADFORMAT);
        EXPECT_EQ(0, device.setDSndPrimaryWfx(pcmFormat(1, 11025, 8))) << method;
        EXPECT_EQ(DSERR_BADFORMAT, device.m_hr);
    }
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(22050u, device.m_wfxPrimary.nSamplesPerSec);
}

TEST_F(PrimaryBufferTest, ReadsTheFormatIntoTheCallerAndTheDevice)
{
    tWAVEFORMATEX wfx;
    EXPECT_EQ(0, device.getDSndBuffer1PrimaryWfx(&wfx));
    EXPECT_TRUE(messages.saw(L"Primary direct sound buffer is not initialized"));

    prepare(DSSCL_PRIORITY);
    fake.primaryFormat() = pcmFormat(1, 11025, 8);
    ASSERT_EQ(1, device.getDSndBuffer1PrimaryWfx(&wfx));
    EXPECT_EQ(11025u, wfx.nSamplesPerSec);
    EXPECT_EQ(1, device.isSoundFormatSame(wfx, device.m_wfxPrimary));
}

TEST_F(PrimaryBufferTest, PrimaryPlayTreatsOnlyALostBufferAsFailure)
{
    prepare(DSSCL_PRIORITY);
    // Played without the looping flag the platform refuses a primary buffer: not a loss.
    EXPECT_EQ(1, device.playDSnd1PrimaryBuf());
    EXPECT_TRUE(FAILED(device.m_hr));
    const int plays = fake.count("IDirectSoundBuffer::Play");
    ASSERT_EQ(1, plays);

    fake.failNth("IDirectSoundBuffer::Play", plays + 1, DSERR_BUFFERLOST);
    EXPECT_EQ(0, device.playDSnd1PrimaryBuf()); // restored and retried; the retry is refused too
    EXPECT_EQ(1, fake.count("IDirectSoundBuffer::Restore"));
    EXPECT_EQ(plays + 2, fake.count("IDirectSoundBuffer::Play"));

    fake.failAlways("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    fake.failAlways("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
    EXPECT_EQ(1, device.playDSnd1PrimaryBuf()); // a failed restore gives up without a retry
    EXPECT_EQ(plays + 3, fake.count("IDirectSoundBuffer::Play"));

    EXPECT_EQ(1, device.stopDSnd1PrimaryBuf());
    device._closeDirectSndBufferPrimary();
    EXPECT_EQ(0, device.stopDSnd1PrimaryBuf());
}
}
