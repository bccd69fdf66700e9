#include "BufferTestSupport.h"

namespace
{
class TestCapture : public CDSndCapturetyx
{
public:
    using CDSndCapturety::isDSCsupport2c4kh16b;
    using CDSndCapturety2BuffNotify::m_posNotify;
};

// Every set-up is made on a fresh object: a second set-up on one object lets the capture
// device go before the buffer made of it, which Wine does not survive.
class CaptureTest : public DeviceTest
{
protected:
    // Capture objects carry a large notification table, so they live on the heap.
    std::unique_ptr<TestCapture> makeCapture() { return std::make_unique<TestCapture>(); }
    void offer(DWORD formats, DWORD channels)
    {
        tap.answerWith("IDirectSoundCapture::GetCaps", 0, DSCCAPS{sizeof(DSCCAPS), 0, formats, channels});
    }
    // The four set-ups: in a given or the default format, sized in bytes or in seconds.
    int setUp(TestCapture& capture, bool givenFormat, bool inSeconds, unsigned long amount)
    {
        if (givenFormat)
            return inSeconds ? capture.initRecordTimeWfxNonCircle(cd, amount)
                             : capture.initDataSizeWfxNonCircle(cd, amount);
        return inSeconds ? capture.initRecordTimeDefaultWFXNonCircle(amount)
                         : capture.initDataSizeDefaultWFXNonCircle(amount);
    }

    const tWAVEFORMATEX cd = pcmFormat(2, 44100, 16);
};

TEST_F(CaptureTest, DefaultFormatIsTheBestTheDeviceOffersAndRecordingNeedsTheBest)
{
    const struct { DWORD formats, channels; tWAVEFORMATEX expected; } rows[] = {
        {WAVE_FORMAT_4S16 | WAVE_FORMAT_2S16 | WAVE_FORMAT_1M08, 2, pcmFormat(2, 44100, 16)},
        {WAVE_FORMAT_2S16 | WAVE_FORMAT_1S16, 2, pcmFormat(2, 22050, 16)},
        {WAVE_FORMAT_1S16, 2, pcmFormat(2, 11025, 16)},
        {WAVE_FORMAT_1M08, 2, pcmFormat(1, 11025, 8)},
        {WAVE_FORMAT_4S16, 1, pcmFormat(1, 44100, 16)}, // sixteen-bit rows keep the device's channels
    };
    auto holder = makeCapture();
    for (const auto& row : rows)
    {
        offer(row.formats, row.channels);
        tWAVEFORMATEX wfx = {};
        ASSERT_EQ(1, makeCapture()->getDefaultWFX(&wfx));
        EXPECT_TRUE(sameFormat(row.expected, wfx)) << std::hex << row.formats;
    }
    EXPECT_EQ(nullptr, CDSndCapturety::m_lpDSndCpt); // any instance going away takes the shared device
    offer(WAVE_FORMAT_96S08, 2); // nothing the library records by default
    EXPECT_EQ(0, holder->getDefaultWFX(NULL));
    offer(WAVE_FORMAT_4S16, 1); // recording needs two channels at 44.1 kHz, whatever is asked for
    EXPECT_EQ(0, holder->isDSCsupport2c4kh16b());
    EXPECT_EQ(0, holder->initDataSizeWfxNonCircle(pcmFormat(1, 11025, 8), 1000));
    EXPECT_EQ((Texts{L"This system does not supoort 2c4kh16b"}), messages.texts());
}

TEST_F(CaptureTest, SetUpsSizeTheBufferInWholeBlocksOrSayWhatFailed)
{
    const struct { bool givenFormat, inSeconds; unsigned long amount; const char* failing; DWORD bytes; Texts shown; }
    rows[] = {
        {true, true, 10, nullptr, 1764000, {}},
        {true, false, 4001, nullptr, 4000, {}},
        {false, false, 4001, nullptr, 4001, {}}, // in the default format the size is taken as given
        {false, true, 2, nullptr, 352800, {}},
        {true, false, 3, nullptr, 0, {L"Error in pass buffer size"}},
        {false, false, 0, nullptr, 0, {L"Error in pass buffer size"}},
        {false, true, 0, nullptr, 0, {L"Error in passing record time"}},
        {true, true, 0, nullptr, 0, {L"Error in passing record time"}},
        {false, false, 4000, "IDirectSoundCapture::CreateCaptureBuffer", 0, {L"Make capture buffer error"}},
        {true, false, 4000, "IDirectSoundCapture::CreateCaptureBuffer", 0, {L"make DSnd catpure error"}},
        {false, false, 4000, "IDirectSoundCaptureBuffer::QueryInterface", 0, {L"Make capture buffer error"}},
        {false, false, 4000, "DirectSoundCaptureCreate8", 0, {L"setup record object error"}},
        {false, false, 4000, "IDirectSoundNotify::SetNotificationPositions", 0, {L"Init stop event error"}},
    };
    for (const auto& row : rows)
    {
        messages.clear();
        auto capture = makeCapture();
        const size_t made = tap.captureBufferRequests().size();
        if (row.failing)
            tap.failNext(row.failing, DSERR_GENERIC);
        EXPECT_EQ(row.bytes ? 1 : 0, setUp(*capture, row.givenFormat, row.inSeconds, row.amount)) << row.amount;
        EXPECT_EQ(row.shown, messages.texts()) << row.amount;
        if (row.failing)
            continue;
        EXPECT_EQ(made + (row.bytes ? 1 : 0), tap.captureBufferRequests().size()) << row.amount; // refusals make none
        if (!row.bytes)
            continue;
        EXPECT_EQ(row.bytes, tap.captureBufferRequests().back().desc.dwBufferBytes);
        EXPECT_EQ(row.givenFormat ? DSCBCAPS_WAVEMAPPED : 0u, tap.captureBufferRequests().back().desc.dwFlags);
    }
}

TEST_F(CaptureTest, PositionTableLeavesOutTheLastPositionAndAFullBufferSignalsStop)
{
    auto capture = makeCapture();
    ASSERT_EQ(1, capture->initDataSizeWfxNonCircle(cd, 8000));
    EXPECT_EQ(0, capture->initDSBNoteEvt(600, 0, cd)); // no spacing: nothing registered
    ASSERT_EQ(1, capture->initDSBNoteEvt(599, 100, cd));
    EXPECT_TRUE(tap.notificationSets().back().positions.empty());
    ASSERT_EQ(1, capture->initDSBNoteEvt(10 * 6 * 100, 100, cd));
    EXPECT_EQ(6000u, capture->m_posNotify[10].dwOffset);
    const auto positions = tap.notificationSets().back().positions;
    ASSERT_EQ(10u, positions.size());
    EXPECT_EQ(DSBPN_OFFSETSTOP, positions[0].dwOffset);
    EXPECT_EQ(5400u, positions[9].dwOffset);
    ASSERT_EQ(1, capture->initDSBNoteEvt(40000 * 6, 1, cd)); // capped at the table's size
    EXPECT_EQ(29999u, tap.notificationSets().back().positions.size());
    EXPECT_EQ(29999, tap.openNotificationHandles());

    tap.failNext("IDirectSoundCaptureBuffer::Start", S_FALSE); // a Start that did nothing is no recording
    EXPECT_EQ(0, capture->recordStart());
    ASSERT_EQ(1, capture->recordStart()); // 8000 bytes are 45 ms of sound: capture ends by itself
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(capture->m_posNotify[0].hEventNotify, 5000));
    EXPECT_EQ(1, capture->isStopNotified());
    ASSERT_EQ(1, capture->recordStop());
    capture.reset();
    EXPECT_EQ(0, tap.openNotificationHandles());
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
    EXPECT_TRUE(messages.texts().empty());
}
}
