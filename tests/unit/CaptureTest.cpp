#include "BufferTestSupport.h"

namespace
{
class TestCapture : public CDSndCapturetyx
{
public:
    using CDSndCapturety::isDSCsupport2c4kh16b;
    using CDSndCapturety2BuffNotify::m_posNotify;
    using CDSndCapturety3Record::m_ulReadPosition;
};

BYTE counting(size_t index)
{
    return static_cast<BYTE>(index * 3 + 1);
}

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
    EXPECT_EQ((std::vector<std::wstring>{L"This system does not supoort 2c4kh16b"}), messages.texts());
}

TEST_F(CaptureTest, SetUpsSizeTheBufferByBytesOrSecondsAndRefuseNothing)
{
    const tWAVEFORMATEX wfx = cd;
    const struct { int (*setUp)(TestCapture&, const tWAVEFORMATEX&); DWORD bytes, flags; } rows[] = {
        {[](TestCapture& c, const tWAVEFORMATEX& w) { return c.initRecordTimeWfxNonCircle(w, 10); }, 1764000, DSCBCAPS_WAVEMAPPED},
        {[](TestCapture& c, const tWAVEFORMATEX& w) { return c.initDataSizeWfxNonCircle(w, 4001); }, 4000, DSCBCAPS_WAVEMAPPED},
        {[](TestCapture& c, const tWAVEFORMATEX&) { return c.initDataSizeDefaultWFXNonCircle(4001); }, 4001, 0}, // not rounded
        {[](TestCapture& c, const tWAVEFORMATEX&) { return c.initRecordTimeDefaultWFXNonCircle(2); }, 352800, 0},
    };
    for (const auto& row : rows)
    {
        ASSERT_EQ(1, row.setUp(*makeCapture(), wfx)) << row.bytes;
        EXPECT_EQ(row.bytes, tap.captureBufferRequests().back().desc.dwBufferBytes);
        EXPECT_EQ(row.flags, tap.captureBufferRequests().back().desc.dwFlags) << row.bytes;
    }
    EXPECT_TRUE(messages.texts().empty());

    auto capture = makeCapture();
    const size_t made = tap.captureBufferRequests().size();
    EXPECT_EQ(0, capture->initDataSizeWfxNonCircle(wfx, 3));
    EXPECT_EQ(0, capture->initDataSizeDefaultWFXNonCircle(0));
    EXPECT_EQ(0, capture->initRecordTimeDefaultWFXNonCircle(0));
    EXPECT_EQ(0, capture->initRecordTimeWfxNonCircle(wfx, 0));
    EXPECT_EQ((std::vector<std::wstring>{L"Error in pass buffer size", L"Error in pass buffer size",
                                         L"Error in passing record time", L"Error in passing record time"}),
              messages.texts());
    EXPECT_EQ(made, tap.captureBufferRequests().size());
}

TEST_F(CaptureTest, EachFailingStepHasItsOwnMessage)
{
    const struct { const char* method; HRESULT hr; bool givenFormat; const wchar_t* message; } rows[] = {
        {"IDirectSoundCapture::CreateCaptureBuffer", DSERR_BADFORMAT, false, L"Make capture buffer error"},
        {"IDirectSoundCapture::CreateCaptureBuffer", DSERR_BADFORMAT, true, L"make DSnd catpure error"},
        {"IDirectSoundCaptureBuffer::QueryInterface", E_NOINTERFACE, false, L"Make capture buffer error"},
        {"DirectSoundCaptureCreate8", DSERR_NODRIVER, false, L"setup record object error"},
        {"IDirectSoundNotify::SetNotificationPositions", DSERR_INVALIDPARAM, false, L"Init stop event error"},
    };
    for (const auto& row : rows)
    {
        auto capture = makeCapture(); // its constructor opens the device too
        messages.clear();
        tap.failNext(row.method, row.hr);
        EXPECT_EQ(0, row.givenFormat ? capture->initDataSizeWfxNonCircle(cd, 4000)
                                     : capture->initDataSizeDefaultWFXNonCircle(4000));
        EXPECT_EQ((std::vector<std::wstring>{row.message}), messages.texts()) << row.method;
    }
}

TEST_F(CaptureTest, CopiesWholeNewBlocksInOrderAcrossTheRingsEndAndNothingTwice)
{
    auto capture = makeCapture();
    ASSERT_EQ(1, capture->initDataSizeWfxNonCircle(cd, 8000));
    ASSERT_EQ(1, capture->recordStart());
    auto ring = scriptCapture(tap, 3000, counting);
    std::vector<BYTE> collected;
    auto collect = [&]() {
        char* pData = nullptr;
        unsigned long ulBytes = 0;
        const int result = capture->copyUnCircleBufferData(pData, &ulBytes);
        std::unique_ptr<char[]> owned(pData);
        collected.insert(collected.end(), pData, pData + ulBytes);
        return result == 1 ? ulBytes : 0ul;
    };
    ring->advance(1002);
    EXPECT_EQ(1000u, collect()); // the half block waits for the next call
    EXPECT_EQ(0u, collect());
    EXPECT_EQ((std::vector<std::wstring>{L"No data for copying"}), messages.texts());
    ring->advance(2998);
    EXPECT_EQ(3000u, collect()); // from 1000 to the ring's end at 3000, then from its start
    EXPECT_EQ(4000u, capture->m_ulReadPosition);
    ASSERT_EQ(4000u, collected.size());
    for (size_t i = 0; i < collected.size(); i++)
        ASSERT_EQ(counting(i), collected[i]) << i;
    EXPECT_EQ(0, ring->openLocks);
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
    ASSERT_EQ(10u, tap.notificationSets().back().positions.size());
    EXPECT_EQ(DSBPN_OFFSETSTOP, tap.notificationSets().back().positions[0].dwOffset);
    EXPECT_EQ(5400u, tap.notificationSets().back().positions[9].dwOffset);
    ASSERT_EQ(1, capture->initDSBNoteEvt(40000 * 6, 1, cd)); // capped at the table's size
    EXPECT_EQ(29999u, tap.notificationSets().back().positions.size());
    EXPECT_EQ(29999, tap.openNotificationHandles());

    ASSERT_EQ(1, capture->recordStart()); // 8000 bytes are 45 ms of sound: capture ends by itself
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(capture->m_posNotify[0].hEventNotify, 5000));
    EXPECT_EQ(1, capture->isStopNotified());
    ASSERT_EQ(1, capture->recordStop());
    EXPECT_EQ(nullptr, CDSndCapturety::m_lpDSndCpt);
    char* pData = nullptr;
    unsigned long ulBytes = 7;
    EXPECT_EQ(0, capture->copyUnCircleBufferData(pData, &ulBytes)); // silently nothing after the stop
    EXPECT_EQ(0u, ulBytes);
    EXPECT_TRUE(messages.texts().empty());
    capture.reset();
    EXPECT_EQ(0, tap.openNotificationHandles());
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
}
}
