#include "DeviceTestSupport.h"
#include <memory>

namespace
{
class TestCapture : public CDSndCapturetyx
{
public:
    using CDSndCapturety::createDSndCaptureObject;
    using CDSndCapturety::isDSCsupport2c4kh16b;
    using CDSndCapturety1Buff::m_dscbd;
    using CDSndCapturety1Buff::m_pDSCBuffer;
    using CDSndCapturety1Buff::m_wfxCurrent;
    using CDSndCapturety2BuffNotify::m_posNotify;
    using CDSndCapturety3Record::m_ulReadPosition;
};

BYTE counting(size_t index)
{
    return static_cast<BYTE>(index * 3 + 1);
}

class CaptureTest : public DeviceTest
{
protected:
    void SetUp() override { fake.setCaptureLead(0); }

    // Capture objects carry a large notification table, so they live on the heap.
    std::unique_ptr<TestCapture> makeCapture() { return std::make_unique<TestCapture>(); }

    tWAVEFORMATEX defaultOf(DWORD formats, DWORD channels)
    {
        fake.captureCaps().dwFormats = formats;
        fake.captureCaps().dwChannels = channels;
        auto capture = makeCapture();
        tWAVEFORMATEX wfx = {};
        capture->getDefaultWFX(&wfx);
        return wfx;
    }
};

TEST_F(CaptureTest, DefaultFormatIsTheBestTheDeviceOffers)
{
    tWAVEFORMATEX wfx = defaultOf(WAVE_FORMAT_4S16 | WAVE_FORMAT_2S16 | WAVE_FORMAT_1M08, 2);
    EXPECT_TRUE(sameFormat(pcmFormat(2, 44100, 16), wfx));
    wfx = defaultOf(WAVE_FORMAT_2S16 | WAVE_FORMAT_1S16, 2);
    EXPECT_TRUE(sameFormat(pcmFormat(2, 22050, 16), wfx));
    wfx = defaultOf(WAVE_FORMAT_1S16, 2);
    EXPECT_TRUE(sameFormat(pcmFormat(2, 11025, 16), wfx));
    wfx = defaultOf(WAVE_FORMAT_1M08, 2);
    EXPECT_TRUE(sameFormat(pcmFormat(1, 11025, 8), wfx));
    // Sixteen-bit rows keep the device's channel count.
    wfx = defaultOf(WAVE_FORMAT_4S16, 1);
    EXPECT_TRUE(sameFormat(pcmFormat(1, 44100, 16), wfx));

    fake.captureCaps().dwFormats = WAVE_FORMAT_96S08; // nothing the library records by default
    auto capture = makeCapture();
    EXPECT_EQ(0, capture->getDefaultWFX(NULL));
}

TEST_F(CaptureTest, RecordingNeedsTwoChannelFortyFourKilohertzWhateverIsAskedFor)
{
    fake.captureCaps().dwFormats = WAVE_FORMAT_4S16;
    fake.captureCaps().dwChannels = 1;
    auto capture = makeCapture();
    EXPECT_EQ(0, capture->isDSCsupport2c4kh16b());
    EXPECT_EQ(0, capture->initDataSizeWfxNonCircle(pcmFormat(1, 11025, 8), 1000));
    EXPECT_EQ((std::vector<std::wstring>{L"This system does not supoort 2c4kh16b"}), messages.texts());
}

TEST_F(CaptureTest, SetUpsSizeTheBufferByBytesOrSeconds)
{
    auto capture = makeCapture();
    ASSERT_EQ(1, capture->initRecordTimeWfxNonCircle(pcmFormat(2, 44100, 16), 10));
    auto requests = fake.captureBufferRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(1764000u, requests[0].desc.dwBufferBytes);
    EXPECT_EQ(static_cast<DWORD>(DSCBCAPS_WAVEMAPPED), requests[0].desc.dwFlags);

    ASSERT_EQ(1, capture->initDataSizeWfxNonCircle(pcmFormat(2, 44100, 16), 4001));
    EXPECT_EQ(4000u, fake.captureBufferRequests().back().desc.dwBufferBytes);
    ASSERT_EQ(1, capture->initDataSizeDefaultWFXNonCircle(4001)); // not rounded, default flags
    EXPECT_EQ(4001u, fake.captureBufferRequests().back().desc.dwBufferBytes);
    EXPECT_EQ(0u, fake.captureBufferRequests().back().desc.dwFlags);
    ASSERT_EQ(1, capture->initRecordTimeDefaultWFXNonCircle(2));
    EXPECT_EQ(352800u, fake.captureBufferRequests().back().desc.dwBufferBytes);
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(CaptureTest, BadSizesAndTimesAreRefusedBeforeAnythingIsMade)
{
    auto capture = makeCapture();
    EXPECT_EQ(0, capture->initDataSizeWfxNonCircle(pcmFormat(2, 44100, 16), 3));
    EXPECT_EQ(0, capture->initDataSizeDefaultWFXNonCircle(0));
    EXPECT_EQ(0, capture->initRecordTimeDefaultWFXNonCircle(0));
    EXPECT_EQ(0, capture->initRecordTimeWfxNonCircle(pcmFormat(2, 44100, 16), 0));
    EXPECT_EQ((std::vector<std::wstring>{L"Error in pass buffer size", L"Error in pass buffer size",
                                         L"Error in passing record time", L"Error in passing record time"}),
              messages.texts());
    EXPECT_TRUE(fake.captureBufferRequests().empty());
}

TEST_F(CaptureTest, EachFailingStepHasItsOwnMessage)
{
    auto capture = makeCapture();
    fake.failAlways("IDirectSoundCapture::CreateCaptureBuffer", DSERR_BADFORMAT);
    EXPECT_EQ(0, capture->initDataSizeDefaultWFXNonCircle(4000));
    EXPECT_EQ(0, capture->initDataSizeWfxNonCircle(pcmFormat(2, 44100, 16), 4000));
    EXPECT_EQ(0u, capture->m_dscbd.dwBufferBytes);
    fake.clearScript();
    fake.failAlways("IDirectSoundCaptureBuffer::QueryInterface", E_NOINTERFACE);
    EXPECT_EQ(0, capture->initDataSizeDefaultWFXNonCircle(4000));
    fake.clearScript();
    fake.failAlways("IDirectSoundNotify::SetNotificationPositions", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, capture->initDataSizeDefaultWFXNonCircle(4000));
    fake.clearScript();
    fake.failAlways("DirectSoundCaptureCreate8", DSERR_NODRIVER);
    EXPECT_EQ(0, capture->initDataSizeDefaultWFXNonCircle(4000));
    EXPECT_EQ((std::vector<std::wstring>{L"Make capture buffer error", L"make DSnd catpure error",
                                         L"Make capture buffer error", L"Init stop event error",
                                         L"setup record object error"}),
              messages.texts());
}

TEST_F(CaptureTest, CopiesWholeNewBlocksInOrderAndNothingTwice)
{
    auto capture = makeCapture();
    ASSERT_EQ(1, capture->initDataSizeWfxNonCircle(pcmFormat(2, 44100, 16), 8000));
    ASSERT_EQ(1, capture->recordStart());
    std::vector<BYTE> collected;
    auto collect = [&]() {
        char* pData = nullptr;
        unsigned long ulBytes = 0;
        int result = capture->copyUnCircleBufferData(pData, &ulBytes);
        std::unique_ptr<char[]> owned(pData);
        collected.insert(collected.end(), pData, pData + ulBytes);
        return result == 1 ? ulBytes : 0ul;
    };

    fake.advanceCapture(1002, counting);
    EXPECT_EQ(1000u, collect()); // the half block waits for the next call
    EXPECT_EQ(0u, collect());
    EXPECT_EQ((std::vector<std::wstring>{L"No data for copying"}), messages.texts());
    fake.advanceCapture(2998, counting);
    EXPECT_EQ(3000u, collect());
    EXPECT_EQ(4000u, capture->m_ulReadPosition);
    for (size_t i = 0; i < collected.size(); i++)
        ASSERT_EQ(counting(i), collected[i]) << i;
    EXPECT_EQ(0, fake.captureInfo(capture->m_pDSCBuffer).openLocks);
}

TEST_F(CaptureTest, StopReleasesEverythingAndLaterCopiesSaySilentlyNothing)
{
    auto capture = makeCapture();
    EXPECT_EQ(0, capture->recordStart());
    ASSERT_EQ(1, capture->initDataSizeWfxNonCircle(pcmFormat(2, 44100, 16), 8000));
    ASSERT_EQ(1, capture->recordStart());
    fake.advanceCapture(8000, counting); // fills the buffer: capture ends by itself
    EXPECT_EQ(1, capture->isStopNotified());
    ASSERT_EQ(1, capture->recordStop());
    EXPECT_EQ(nullptr, CDSndCapturety::m_lpDSndCpt);
    char* pData = nullptr;
    unsigned long ulBytes = 7;
    EXPECT_EQ(0, capture->copyUnCircleBufferData(pData, &ulBytes));
    EXPECT_EQ(0u, ulBytes);
    EXPECT_TRUE(messages.texts().empty());
    capture.reset();
    EXPECT_EQ(0, fake.liveObjects()) << fake.leakReport();
}

TEST_F(CaptureTest, PositionTableRegistersTheStopEntryAndAllButTheLastPosition)
{
    fake.setStrictNotifyOffsets(false);
    auto capture = makeCapture();
    ASSERT_EQ(1, capture->initDataSizeWfxNonCircle(pcmFormat(2, 44100, 16), 4000));
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    ASSERT_EQ(1, capture->initDSBNoteEvt(10 * 6 * 100, 100, wfx));
    EXPECT_EQ(6000u, capture->m_posNotify[10].dwOffset);
    ASSERT_EQ(10u, fake.notificationSets().back().positions.size());
    EXPECT_EQ(5400u, fake.notificationSets().back().positions[9].dwOffset);

    ASSERT_EQ(1, capture->initDSBNoteEvt(599, 100, wfx));
    EXPECT_TRUE(fake.notificationSets().back().positions.empty());
    ASSERT_EQ(1, capture->initDSBNoteEvt(40000 * 6, 1, wfx));
    EXPECT_EQ(29999u, fake.notificationSets().back().positions.size());
    EXPECT_EQ(29999u, fake.openNotificationHandles());
    capture.reset();
    EXPECT_EQ(0, fake.openNotificationHandles());
}

TEST_F(CaptureTest, AnyInstanceGoingAwayTakesTheSharedDeviceWithIt)
{
    auto recording = makeCapture();
    ASSERT_EQ(1, recording->initDataSizeDefaultWFXNonCircle(4000));
    ASSERT_NE(nullptr, CDSndCapturety::m_lpDSndCpt);
    makeCapture().reset();
    EXPECT_EQ(nullptr, CDSndCapturety::m_lpDSndCpt);
}
}
