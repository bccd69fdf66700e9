#include "DeviceTestSupport.h"

#include <algorithm>

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
        tap.clearLog();
    }

    // What the primary buffer reports as its format from now on.
    void answerFormat(const tWAVEFORMATEX& wfx)
    {
        WAVEFORMATEX reported;
        memcpy(&reported, &wfx, sizeof reported);
        tap.answerWith("IDirectSoundBuffer::GetFormat", 0, reported);
    }

    WAVEFORMATEX formatSet() const
    {
        WAVEFORMATEX wfx = {};
        const auto sets = tap.callsTo("IDirectSoundBuffer::SetFormat");
        if (!sets.empty())
            memcpy(&wfx, sets.back().data.data(), std::min(sizeof wfx, sets.back().data.size()));
        return wfx;
    }

    TestDevice device;
};

// Made from a plain primary description; a missing buffer is reported with the system's error code.
TEST_F(PrimaryBufferTest, IsCreatedFromAPlainPrimaryDescription)
{
    EXPECT_TRUE(sameFormat(pcmFormat(2, 22050, 16), device.m_wfxPrimary));
    openDevice(device);
    ASSERT_EQ(1, device.createDSndBuff1Primary());
    auto requests = tap.bufferRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(40u, requests[0].desc.dwSize);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_PRIMARYBUFFER), requests[0].desc.dwFlags);
    EXPECT_EQ(0u, requests[0].desc.dwBufferBytes);
    EXPECT_FALSE(requests[0].hasFormat);

    tap.failAlways("IDirectSound8::CreateSoundBuffer", DSERR_ALLOCATED);
    SetLastError(1234);
    EXPECT_EQ(0, device.createDSndBuff1Primary());
    EXPECT_EQ((std::vector<std::wstring>{L"Create direct sound primary buffer error:1234 \n"}), messages.texts());
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
    EXPECT_EQ(0, tap.count("IDirectSoundBuffer::SetFormat"));
}

// The same format is not set again; one out of the control range warns and still reaches the platform.
TEST_F(PrimaryBufferTest, SetsOnlyANewFormat)
{
    prepare(DSSCL_PRIORITY);
    answerFormat(pcmFormat(2, 44100, 16));
    EXPECT_EQ(1, device.setDSndPrimaryWfx(pcmFormat(2, 44100, 16)));
    EXPECT_EQ(0, tap.count("IDirectSoundBuffer::SetFormat"));
    EXPECT_EQ(44100u, device.m_wfxPrimary.nSamplesPerSec);
    EXPECT_EQ(1, device.setDSndPrimaryWfx(pcmFormat(1, 8000, 8)));
    EXPECT_EQ((std::vector<std::wstring>{L"Sound data format is out of control range"}), messages.texts());
    EXPECT_EQ(8000u, device.m_wfxPrimary.nSamplesPerSec);
    EXPECT_EQ(8000u, formatSet().nSamplesPerSec);
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
        tap.clearScript();
        answerFormat(pcmFormat(2, 22050, 16));
        TestDevice local;
        ASSERT_EQ(1, local.createDSndObject(NULL));
        bringLevel(local, c.level);
        ASSERT_EQ(1, local.createDSndBuff1Primary());
        tap.answerWith("IDirectSoundBuffer::GetStatus", 0, c.status);
        tap.clearLog();
        local.setDSndPrimaryWfx(pcmFormat(2, 44100, 16));
        EXPECT_EQ(c.stops, tap.count("IDirectSoundBuffer::Stop")) << c.level << " " << c.status;
        EXPECT_EQ(1, tap.count("IDirectSoundBuffer::SetFormat"));
    }
}

TEST_F(PrimaryBufferTest, PlatformRefusalsFailSilentlyAndKeepTheFormat)
{
    prepare(DSSCL_PRIORITY);
    for (const char* method : {"IDirectSoundBuffer::GetStatus", "IDirectSoundBuffer::SetFormat"})
    {
        tap.clearScript();
        tap.failAlways(method, DSERR_BADFORMAT);
        EXPECT_EQ(0, device.setDSndPrimaryWfx(pcmFormat(1, 11025, 8))) << method;
        EXPECT_EQ(DSERR_BADFORMAT, device.m_hr);
    }
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(22050u, device.m_wfxPrimary.nSamplesPerSec);
}

TEST_F(PrimaryBufferTest, PrimaryPlayTreatsOnlyALostBufferAsFailure)
{
    prepare(DSSCL_PRIORITY);
    // Played without the looping flag the platform refuses a primary buffer: not a loss.
    EXPECT_EQ(1, device.playDSnd1PrimaryBuf());
    EXPECT_TRUE(FAILED(device.m_hr));
    const int plays = tap.count("IDirectSoundBuffer::Play");
    ASSERT_EQ(1, plays);

    tap.failNth("IDirectSoundBuffer::Play", plays + 1, DSERR_BUFFERLOST);
    EXPECT_EQ(0, device.playDSnd1PrimaryBuf()); // restored and retried; the retry is refused too
    EXPECT_EQ(1, tap.count("IDirectSoundBuffer::Restore"));
    EXPECT_EQ(plays + 2, tap.count("IDirectSoundBuffer::Play"));

    tap.failAlways("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    tap.failAlways("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
    EXPECT_EQ(1, device.playDSnd1PrimaryBuf()); // a failed restore gives up without a retry
    EXPECT_EQ(plays + 3, tap.count("IDirectSoundBuffer::Play"));

    EXPECT_EQ(1, device.stopDSnd1PrimaryBuf());
    device._closeDirectSndBufferPrimary();
    EXPECT_EQ(0, device.stopDSnd1PrimaryBuf());
}
}
