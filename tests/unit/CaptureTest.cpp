// The capture chain through the tap: the default format, the set-ups and their refusals, the
// position tables, a Start that did nothing; circular recording into a caller's block; and
// capture streamed to a wave file or into a caller's ring, with capture memory the test writes.

#include "UnitFixtures.h"
#include "SndWaveWriteStreamty.h"

#include <climits>

namespace
{
class TestCapture : public CDSndCapturetyx
{
public:
    using CDSndCapturety::isDSCsupport2c4kh16b;
    using CDSndCapturety::captureDevice;
    using CDSndCapturety2BuffNotify::m_posNotify;
};

class TestCaptureStream : public CDSndCapturetyStream
{
public:
    using CDSndCapturetyStream::streamData2File;
    using CDSndCapturetyStream::captureDevice;
    using CDSndCapturetyStream::m_ulStreamOffset;
    using CDSndCapturetyStream::m_hStreamEvent;
};

BYTE recorded(size_t i)
{
    return static_cast<BYTE>(i * 13 + i / 251 + 3);
}

// Every set-up is made on a fresh object: a second set-up on one object lets the capture
// device go before the buffer made of it, which Wine does not survive. Capture objects carry
// a large notification table, so they live on the heap.
class CaptureTest : public DeviceTest
{
protected:
    void offer(DWORD formats, DWORD channels)
    {
        tap.answerWith("IDirectSoundCapture::GetCaps", 0, DSCCAPS{sizeof(DSCCAPS), 0, formats, channels});
    }
    // The four set-ups: in a given or the default format, sized in bytes or in seconds.
    int setUp(TestCapture& capture, bool givenFormat, bool inSeconds, unsigned long amount)
    {
        if (givenFormat)
            return inSeconds ? capture.initRecordTimeWfxNonCircle(cd, amount) : capture.initDataSizeWfxNonCircle(cd, amount);
        return inSeconds ? capture.initRecordTimeDefaultWFXNonCircle(amount) : capture.initDataSizeDefaultWFXNonCircle(amount);
    }
    std::vector<DWORD> lockOffsets() const
    {
        std::vector<DWORD> offsets;
        for (const auto& call : tap.callsTo("IDirectSoundCaptureBuffer::Lock"))
            offsets.push_back(static_cast<DWORD>(call.args[0]));
        return offsets;
    }

    // A streamed recording of `stream` into `file` through `writer`, started on capture memory
    // the test writes, with the clock running with the capture.
    std::shared_ptr<CaptureRing> streamTo(TestCaptureStream& stream, CSndWaveWriteStreamty& writer)
    {
        EXPECT_EQ(1, stream.initCapture2stream(cd, 352800));
        auto ring = scriptCapture(tap, 352800, recorded, true, cd.nAvgBytesPerSec);
        EXPECT_EQ(1, writer.Open(CString(file.path.c_str()), const_cast<tWAVEFORMATEX*>(&cd)));
        stream.m_pSndWaveWriteStream = &writer;
        EXPECT_EQ(1, stream.startCaptureStream());
        return ring;
    }

    const tWAVEFORMATEX cd = pcmFormat(2, 44100, 16);
    TempFile file;
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
    auto holder = std::make_unique<TestCapture>();
    for (const auto& row : rows)
    {
        offer(row.formats, row.channels);
        tWAVEFORMATEX wfx = {};
        ASSERT_EQ(1, std::make_unique<TestCapture>()->getDefaultWFX(&wfx));
        EXPECT_TRUE(sameFormat(row.expected, wfx)) << std::hex << row.formats;
    }
    EXPECT_NE(nullptr, CDSndCapturety::m_lpDSndCpt); // the others going leave the holder its device
    offer(WAVE_FORMAT_96S08, 2); // nothing the library records by default
    EXPECT_EQ(0, holder->getDefaultWFX(NULL));
    offer(WAVE_FORMAT_4S16, 1); // recording needs two channels at 44.1 kHz, whatever is asked for
    EXPECT_EQ(0, holder->isDSCsupport2c4kh16b());
    EXPECT_EQ(0, holder->initDataSizeWfxNonCircle(pcmFormat(1, 11025, 8), 1000));
    EXPECT_EQ((Texts{L"This system does not supoort 2c4kh16b"}), messages.texts());
    holder.reset();
    EXPECT_EQ(nullptr, CDSndCapturety::m_lpDSndCpt); // the last user lets it go
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
}

// A streamed recording and a recording by size share the process's capture device: either
// may stop first, and the other goes on through the device until it stops too.
TEST_F(CaptureTest, TwoRecordersShareTheDeviceUntilBothHaveStopped)
{
    for (bool streamStopsFirst : {true, false})
    {
        auto stream = std::make_unique<TestCaptureStream>();
        auto bySize = std::make_unique<TestCapture>();
        ASSERT_EQ(1, stream->initCapture2stream(cd, 352800));
        ASSERT_EQ(1, bySize->initDataSizeWfxNonCircle(cd, 176400));
        ASSERT_EQ(1, stream->startCaptureStream());
        ASSERT_EQ(1, bySize->recordStart());
        const void* goingOn = streamStopsFirst ? bySize->captureDevice() : stream->captureDevice();
        if (streamStopsFirst)
            stream->stopCaptureStream();
        else
            bySize->recordStop();
        EXPECT_GT(tap.refCount(goingOn), 0) << streamStopsFirst;
        EXPECT_EQ(1, streamStopsFirst ? bySize->recordStop() : stream->stopCaptureStream()) << streamStopsFirst;
        EXPECT_EQ(nullptr, CDSndCapturety::m_lpDSndCpt) << streamStopsFirst;
    }
    EXPECT_EQ(0, tap.deadObjectCalls());
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
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
        {false, true, 0, nullptr, 0, {L"Error in passing record time"}},
        {false, false, 4000, "IDirectSoundCapture::CreateCaptureBuffer", 0, {L"Make capture buffer error"}},
        {true, false, 4000, "IDirectSoundCapture::CreateCaptureBuffer", 0, {L"make DSnd catpure error"}},
        {false, false, 4000, "IDirectSoundCaptureBuffer::QueryInterface", 0, {L"Make capture buffer error"}},
        {false, false, 4000, "DirectSoundCaptureCreate8", 0, {L"setup record object error"}},
        {false, false, 4000, "IDirectSoundNotify::SetNotificationPositions", 0, {L"Init stop event error"}},
    };
    for (const auto& row : rows)
    {
        messages.clear();
        auto capture = std::make_unique<TestCapture>();
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
    auto capture = std::make_unique<TestCapture>();
    ASSERT_EQ(1, capture->initDataSizeWfxNonCircle(cd, 8000));
    EXPECT_EQ(0, capture->initDSBNoteEvt(600, 0, cd)); // no spacing: nothing registered
    ASSERT_EQ(1, capture->initDSBNoteEvt(599, 100, cd));
    EXPECT_TRUE(tap.notificationSets().back().positions.empty());
    ASSERT_EQ(1, capture->initDSBNoteEvt(10 * 6 * 100, 100, cd));
    const auto positions = tap.notificationSets().back().positions;
    ASSERT_EQ(10u, positions.size());
    EXPECT_EQ(DSBPN_OFFSETSTOP, positions[0].dwOffset);
    EXPECT_EQ(5400u, positions[9].dwOffset);
    tap.failNext("IDirectSoundNotify::SetNotificationPositions", DSERR_GENERIC);
    EXPECT_EQ(0, capture->initDSBNevt());
    EXPECT_EQ(10 + 1, tap.openNotificationHandles()); // refused: the platform still signals the old table
    ASSERT_EQ(1, capture->initDSBNoteEvt(40000 * 6, 1, cd)); // capped at the table's size
    EXPECT_EQ(29999u, tap.notificationSets().back().positions.size());
    EXPECT_EQ(29999, tap.openNotificationHandles());

    tap.failNext("IDirectSoundCaptureBuffer::Start", S_FALSE); // a Start that did nothing is no recording
    EXPECT_EQ(0, capture->recordStart());
    ASSERT_EQ(1, capture->recordStart()); // 8000 bytes are 45 ms of sound: capture ends by itself
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(capture->m_posNotify[0].hEventNotify, kWait));
    EXPECT_EQ(1, capture->isStopNotified());
    ASSERT_EQ(1, capture->recordStop());
    capture.reset();
    EXPECT_EQ(0, tap.openNotificationHandles());
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
    EXPECT_TRUE(messages.texts().empty());
}

// --- circular recording ---

// Refusals come before anything is made; whole steps of six capture buffers are registered.
TEST_F(CaptureTest, CircularSetUpRefusesBeforeMakingAnythingAndRegistersWholeSteps)
{
    const unsigned long kStep = 1587600; // six capture buffers of 264,600 bytes
    tWAVEFORMATEX adpcm = cd;
    adpcm.wFormatTag = 2;
    const struct { tWAVEFORMATEX wfx; unsigned long bytes, blockBytes; const wchar_t* shown; size_t registered; } rows[] = {
        {adpcm, 4000, 4000, L"Record wave format not supported", 0},
        {cd, 0, 4000, L"Error in pass buffer size", 0},
        {cd, 4001, 3999, L"Passed data buffer error", 0},
        {cd, kStep - 4, kStep, nullptr, 0}, // below one step: not even the stop entry
        {cd, 3 * kStep + 3, 3 * kStep, nullptr, 3}, // the odd size is rounded down to fit the block
    };
    for (const auto& row : rows)
    {
        messages.clear();
        const size_t made = tap.captureBufferRequests().size(), sets = tap.notificationSets().size();
        std::vector<char> block(row.blockBytes);
        auto capture = std::make_unique<TestCapture>();
        EXPECT_EQ(row.shown ? 0 : 1, capture->initDataSizeWfxCirclePro(row.wfx, row.bytes, block.data())) << row.bytes;
        EXPECT_EQ(row.shown ? Texts{row.shown} : Texts{}, messages.texts()) << row.bytes;
        EXPECT_EQ(made + (row.shown ? 0 : 1), tap.captureBufferRequests().size()) << row.bytes;
        if (row.shown)
            continue;
        EXPECT_EQ(264600u, tap.captureBufferRequests().back().desc.dwBufferBytes);
        ASSERT_EQ(sets + 1, tap.notificationSets().size());
        EXPECT_EQ(row.registered, tap.notificationSets().back().positions.size()) << row.bytes;
    }
}

TEST_F(CaptureTest, CircularCopyWaitsForTheStopAndNeverReadsPastTheCaptureBuffer)
{
    std::vector<char> block(2 * 1587600);
    auto capture = std::make_unique<TestCapture>();
    ASSERT_EQ(1, capture->initDataSizeWfxCirclePro(cd, static_cast<unsigned long>(block.size()), block.data()));
    auto ring = scriptCapture(tap, 400000, recorded); // the read cursor may run past the buffer
    ASSERT_EQ(1, capture->recordStart());
    ring->advance(300000);
    EXPECT_EQ(0u, capture->getNewRecordDataSize()); // no stop signalled yet: nothing copied
    SetEvent(capture->m_posNotify[0].hEventNotify);
    EXPECT_EQ(264600u, capture->getNewRecordDataSize());
    EXPECT_EQ(0, memcmp(block.data(), ring->memory.data(), 264600));
    EXPECT_EQ(0u, capture->getNewRecordDataSize()); // every position counted: no second copy
    EXPECT_EQ(0, ring->openLocks);
    capture->recordStop();
}

// As on Windows: a capture started without looping stops once its buffer is full, says it is
// not capturing and reads its cursors at the start again; after its stop event the whole
// buffer is handed out, and none of the bytes the platform had not filled.
TEST_F(CaptureTest, ACaptureThatStopsWhenFullHandsOutItsWholeBuffer)
{
    std::vector<char> block(1587600);
    auto capture = std::make_unique<TestCapture>();
    ASSERT_EQ(1, capture->initDataSizeWfxCirclePro(cd, static_cast<unsigned long>(block.size()), block.data()));
    auto ring = scriptCapture(tap, 264600, recorded);
    ring->stopsWhenFull = true;
    ring->readLag = 2000;
    ASSERT_EQ(1, capture->recordStart());
    ring->advance(200000);
    EXPECT_EQ(0u, capture->getNewRecordDataSize());
    ring->readLag = 0;
    ring->advance(64600);
    SetEvent(capture->m_posNotify[0].hEventNotify);
    EXPECT_EQ(264600u, capture->getNewRecordDataSize());
    EXPECT_EQ(0, memcmp(block.data(), ring->memory.data(), 264600));
    capture->recordStop();
}

// --- streamed capture ---

// 16 bytes of ring after 16,000 bytes of capture buffer. Ring byte k ends as recording byte
// from[k] (counted from where the read starts), or keeps the fill where from[k] is -1; the
// byte past the ring is never written.
TEST_F(CaptureTest, RingCopyWrapsAtTheRingAndNeverWritesOutsideIt)
{
    const int _ = -1;
    const struct { int position; size_t ahead, captured; int expectedPosition; std::vector<int> from; } rows[] = {
        {12, 0, 10, 6, {4, 5, 6, 7, 8, 9, _, _, _, _, _, _, 0, 1, 2, 3}},
        {12, 0, 5, 1, {4, _, _, _, _, _, _, _, _, _, _, _, 0, 1, 2, 3}}, // one past the room wraps
        {16, 0, 10, 10, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, _, _, _, _, _, _}}, // a position outside starts at 0
        {-3, 0, 4, 4, {0, 1, 2, 3, _, _, _, _, _, _, _, _, _, _, _, _}},
        {2, 15990, 20, 6, {14, 15, 16, 17, 18, 19, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}}, // across the buffer's end
        {0, 0, 20, 4, {16, 17, 18, 19, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}}, // longer than the ring: its last 16
    };
    for (const auto& row : rows)
    {
        auto stream = std::make_unique<TestCaptureStream>();
        ASSERT_EQ(1, stream->initCapture2stream(pcmFormat(1, 8000, 8), 16000));
        auto ring = scriptCapture(tap, 16000, recorded, true);
        ASSERT_EQ(1, stream->startCaptureStream());
        ring->advance(row.ahead);
        stream->m_ulStreamOffset = static_cast<unsigned long>(row.ahead);
        ring->advance(row.captured);
        std::vector<char> caller(17, '\x55');
        int position = row.position;
        ASSERT_EQ(1, stream->getRecordNewStreamData(caller.data(), 16, position, false));
        EXPECT_EQ(row.expectedPosition, position) << row.position;
        for (size_t k = 0; k < 17; k++)
        {
            const int from = k < 16 ? row.from[k] : _;
            EXPECT_EQ(from == _ ? '\x55' : static_cast<char>(recorded(row.ahead + from)), caller[k])
                << row.position << " byte " << k;
        }
        EXPECT_EQ((row.ahead + row.captured) % 16000, stream->m_ulStreamOffset);
        EXPECT_EQ(0, ring->openLocks);
        stream->stopCaptureStream();
        tap.clearScript();
    }
}

// What the file gets ends at the read position, short of the bytes the platform has not
// filled yet; a cursor read slightly behind takes nothing; a read past the buffer's end comes
// in two regions; the stop writes the tail since the last position and closes the file: every
// valid byte once, in order.
TEST_F(CaptureTest, StreamToFileTakesEveryValidByteOnceAndStopWritesTheTail)
{
    auto stream = std::make_unique<TestCaptureStream>();
    CSndWaveWriteStreamty writer;
    auto ring = streamTo(*stream, writer);
    ring->readLag = 4000;
    ring->advance(88200);
    EXPECT_EQ(1, stream->streamData2File(0));
    ring->written -= 400;
    EXPECT_EQ(0, stream->streamData2File(0));
    ring->written += 400;
    ring->advance(300000);
    EXPECT_EQ(1, stream->streamData2File(0));
    ring->advance(1000); // after the last position: only the stop takes it
    EXPECT_EQ(1, stream->stopCaptureStream());
    EXPECT_EQ((std::vector<DWORD>{0, 84200, 31400}), lockOffsets());
    EXPECT_FALSE(writer.IsOpen());
    EXPECT_EQ(0, ring->openLocks);
    EXPECT_EQ(0u, stream->getLostFrames());
    const Bytes content = file.bytes();
    ASSERT_EQ(44u + 385200u, content.size());
    for (size_t i = 0; i < 385200; i++)
        ASSERT_EQ(recorded(i), content[44 + i]) << i;
}

// A worker held up for just under the buffer's two seconds takes all that arrived; held up for
// three, it finds a lap overwritten: the lap's frames are counted and written as silence, so
// every later byte stands in the file where it was captured.
TEST_F(CaptureTest, AStallLongerThanTheBufferLeavesSilenceOfExactlyWhatWasLost)
{
    auto stream = std::make_unique<TestCaptureStream>();
    CSndWaveWriteStreamty writer;
    auto ring = streamTo(*stream, writer);
    ring->advance(88200);
    EXPECT_EQ(1, stream->streamData2File(0));
    ring->advance(317520); // 1.8 s
    EXPECT_EQ(1, stream->streamData2File(0));
    EXPECT_EQ(0u, stream->getLostFrames());
    const size_t lapFrom = ring->written;
    ring->advance(529200); // 3 s: the first lap is gone
    EXPECT_EQ(1, stream->streamData2File(0));
    EXPECT_EQ(352800u / 4, stream->getLostFrames());
    ring->advance(88200);
    EXPECT_EQ(1, stream->stopCaptureStream());
    const Bytes content = file.bytes();
    ASSERT_EQ(44u + ring->written, content.size());
    for (size_t i = 0; i < ring->written; i++)
    {
        const bool lost = i >= lapFrom && i < lapFrom + 352800;
        ASSERT_EQ(lost ? 0 : recorded(i), content[44 + i]) << i;
    }
}

// The file refuses a write: the recording ends there, capture stops, nothing is offered again,
// and why stays with the recorder.
TEST_F(CaptureTest, AWriteTheFileRefusesEndsTheRecordingAndIsKept)
{
    auto stream = std::make_unique<TestCaptureStream>();
    ASSERT_EQ(1, stream->initCapture2stream(cd, 352800));
    auto ring = scriptCapture(tap, 352800, recorded, true, cd.nAvgBytesPerSec);
    CSndWaveWriteStreamty writer; // never opened
    stream->m_pSndWaveWriteStream = &writer;
    ASSERT_EQ(1, stream->startCaptureStream());
    ring->advance(88200);
    SetEvent(stream->m_hStreamEvent[0]);
    EXPECT_EQ(0, stream->waitRecordStreamEvt());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE), stream->getStreamResult());
    EXPECT_EQ(WAVEFILE_ERR_NOT_OPEN, stream->getStreamWriteResult());
    EXPECT_EQ(1, tap.count("IDirectSoundCaptureBuffer::Stop"));
    ring->advance(88200);
    EXPECT_EQ(0, stream->waitRecordStreamEvt());
    EXPECT_EQ(1, stream->stopCaptureStream());
    EXPECT_EQ(1u, lockOffsets().size());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE), stream->getStreamResult());
    EXPECT_EQ(0, ring->openLocks);
}

// The buffer halves in whole blocks, marked at half a second, a second and the stop. The wait
// must leave the event that woke it reset, or a worker looping on it would never sleep again;
// after the stop it returns at once; the events go with the object.
TEST_F(CaptureTest, EachPositionWakesOneWaitAndTheStopEndsWaiting)
{
    auto stream = std::make_unique<TestCaptureStream>();
    ASSERT_EQ(1, stream->initCapture2stream(cd, 352803));
    EXPECT_EQ(352800u, tap.captureBufferRequests().back().desc.dwBufferBytes);
    const auto positions = tap.notificationSets().back().positions;
    ASSERT_EQ(3u, positions.size());
    EXPECT_EQ((std::vector<DWORD>{88199, 176399, static_cast<DWORD>(DSBPN_OFFSETSTOP)}),
              (std::vector<DWORD>{positions[0].dwOffset, positions[1].dwOffset, positions[2].dwOffset}));
    auto ring = scriptCapture(tap, 352800, recorded, true);
    tap.answer("IDirectSoundCaptureBuffer::Start", [](const dstap::Call&) { return DS_OK; });
    CSndWaveWriteStreamty writer;
    ASSERT_EQ(1, writer.Open(CString(file.path.c_str()), const_cast<tWAVEFORMATEX*>(&cd)));
    stream->m_pSndWaveWriteStream = &writer;
    ASSERT_EQ(1, stream->startCaptureStream());
    for (int position = 0; position < 2; position++)
    {
        ring->advance(88200);
        SetEvent(stream->m_hStreamEvent[position]);
        EXPECT_EQ(1, stream->waitRecordStreamEvt());
        EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), WaitForSingleObject(stream->m_hStreamEvent[position], 0));
    }
    stream->stopCaptureStream();
    EXPECT_EQ(0, stream->waitRecordStreamEvt());
    EXPECT_EQ(176400u, writer.GetDataBytesWritten());
    stream.reset();
    EXPECT_EQ(0, tap.openNotificationHandles());
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
}
}
