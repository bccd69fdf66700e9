// Circular recording into a caller's block and capture streamed to a wave file, through the
// tap: buffer and position sizes, refusals before anything is made, the guards on both
// copies, the ring's wrap, a failed write offered again, a cursor read slightly behind, the
// tail written at stop, and a wait that resets the event that woke it.

#include "BufferTestSupport.h"
#include "SndWaveWriteStreamty.h"

#include <cstdlib>

namespace
{
class TestRecordPro : public CDSndCapturetyx
{
public:
    using CDSndCapturety2BuffNotify::m_posNotify;
};

class TestCaptureStream : public CDSndCapturetyStream
{
public:
    using CDSndCapturetyStream::streamData2File;
    using CDSndCapturetyStream::m_ulStreamOffset;
    using CDSndCapturetyStream::m_hStreamEvent;
    using CDSndCapturety1Buff::m_pDSCBuffer;
};

BYTE recorded(size_t i)
{
    return static_cast<BYTE>(i * 13 + i / 251 + 3);
}

class RecordStreamTest : public DeviceTest
{
protected:
    void SetUp() override
    {
        wchar_t dir[MAX_PATH], name[MAX_PATH];
        GetTempPathW(MAX_PATH, dir);
        GetTempFileNameW(dir, L"rec", 0, name);
        path = name;
    }
    void TearDown() override { DeleteFileW(path.c_str()); }

    // Capture answered over test memory of the buffer's size, cursors wrapping with it.
    std::shared_ptr<CaptureRing> scriptLoopingCapture(size_t bufferBytes)
    {
        auto ring = scriptCapture(tap, bufferBytes, recorded);
        tap.answer("IDirectSoundCaptureBuffer::GetCurrentPosition", [ring](const dstap::Call& call) {
            const DWORD at = static_cast<DWORD>(ring->written % ring->memory.size());
            if (DWORD* capture = call.out<DWORD>(0))
                *capture = at;
            if (DWORD* read = call.out<DWORD>(1))
                *read = at;
            return DS_OK;
        });
        return ring;
    }
    std::vector<DWORD> lockOffsets() const
    {
        std::vector<DWORD> offsets;
        for (const auto& call : tap.callsTo("IDirectSoundCaptureBuffer::Lock"))
            offsets.push_back(static_cast<DWORD>(call.args[0]));
        return offsets;
    }

    const tWAVEFORMATEX cd = pcmFormat(2, 44100, 16);
    std::wstring path;
};

TEST_F(RecordStreamTest, CircularSetUpRefusesBeforeMakingAnythingAndRegistersWholeSteps)
{
    const unsigned long kStep = 1587600; // six capture buffers of 264,600 bytes
    tWAVEFORMATEX adpcm = cd;
    adpcm.wFormatTag = 2;
    const struct { tWAVEFORMATEX wfx; unsigned long bytes, blockBytes; const wchar_t* shown; size_t registered; }
    rows[] = {
        {adpcm, 4000, 4000, L"Record wave format not supported", 0},
        {cd, 3, 4000, L"Error in pass buffer size", 0},
        {cd, 0, 4000, L"Error in pass buffer size", 0},
        {cd, 4001, 3999, L"Passed data buffer error", 0},
        {cd, kStep - 4, kStep, nullptr, 0}, // below one step: not even the stop entry
        {cd, 2 * kStep - 4, 2 * kStep, nullptr, 1},
        {cd, 3 * kStep + 3, 3 * kStep, nullptr, 3}, // the odd size is rounded down to fit the block
    };
    for (const auto& row : rows)
    {
        messages.clear();
        const size_t made = tap.captureBufferRequests().size(), sets = tap.notificationSets().size();
        char* block = static_cast<char*>(malloc(row.blockBytes));
        auto capture = std::make_unique<TestRecordPro>();
        EXPECT_EQ(row.shown ? 0 : 1, capture->initDataSizeWfxCirclePro(row.wfx, row.bytes, block)) << row.bytes;
        EXPECT_EQ(row.shown ? Texts{row.shown} : Texts{}, messages.texts()) << row.bytes;
        if (row.shown)
        {
            EXPECT_EQ(made, tap.captureBufferRequests().size()) << row.bytes;
        }
        else
        {
            EXPECT_EQ(264600u, tap.captureBufferRequests().back().desc.dwBufferBytes);
            EXPECT_EQ(static_cast<DWORD>(DSCBCAPS_WAVEMAPPED), tap.captureBufferRequests().back().desc.dwFlags);
            ASSERT_EQ(sets + 1, tap.notificationSets().size());
            EXPECT_EQ(row.registered, tap.notificationSets().back().positions.size()) << row.bytes;
        }
        capture.reset();
        free(block);
    }
}

TEST_F(RecordStreamTest, CircularCopyWaitsForTheStopAndNeverReadsPastTheCaptureBuffer)
{
    const unsigned long kBytes = 2 * 1587600;
    char* block = static_cast<char*>(malloc(kBytes));
    auto capture = std::make_unique<TestRecordPro>();
    ASSERT_EQ(1, capture->initDataSizeWfxCirclePro(cd, kBytes, block));
    auto ring = scriptCapture(tap, 400000, recorded); // the read cursor may run past the buffer
    ASSERT_EQ(1, capture->recordStart());
    ring->advance(300000);
    EXPECT_EQ(0u, capture->getNewRecordDataSize()); // no stop signalled yet: nothing copied
    SetEvent(capture->m_posNotify[0].hEventNotify);
    EXPECT_EQ(264600u, capture->getNewRecordDataSize());
    EXPECT_EQ(0, memcmp(block, ring->memory.data(), 264600));
    EXPECT_EQ(0u, capture->getNewRecordDataSize()); // every position counted: no second copy
    EXPECT_EQ(0, ring->openLocks);
    EXPECT_TRUE(messages.texts().empty());
    capture->recordStop();
    capture.reset();
    free(block);
}

TEST_F(RecordStreamTest, StreamSetUpHalvesInWholeBlocksAndMarksHalfAndOneSecond)
{
    tWAVEFORMATEX quarter = pcmFormat(2, 11025, 16); // four-byte blocks
    const struct { tWAVEFORMATEX wfx; unsigned long bytes; DWORD buffer, first, second; } rows[] = {
        {cd, 352800, 352800, 88199, 176399},
        {quarter, 10, 8, 0, 0}, // positions beyond so small a buffer are the platform's to refuse
    };
    for (const auto& row : rows)
    {
        auto stream = std::make_unique<TestCaptureStream>();
        stream->initCapture2stream(row.wfx, row.bytes);
        EXPECT_EQ(row.buffer, tap.captureBufferRequests().back().desc.dwBufferBytes);
        EXPECT_EQ(0u, tap.captureBufferRequests().back().desc.dwFlags);
        if (row.first == 0)
            continue;
        const auto positions = tap.notificationSets().back().positions;
        ASSERT_EQ(3u, positions.size());
        EXPECT_EQ(row.first, positions[0].dwOffset);
        EXPECT_EQ(row.second, positions[1].dwOffset);
        EXPECT_EQ(DSBPN_OFFSETSTOP, positions[2].dwOffset);
    }
    EXPECT_EQ(0, tap.openNotificationHandles());
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
}

TEST_F(RecordStreamTest, RingCopyWrapsAtTheRingAndNeverWritesOutsideIt)
{
    const struct { int position; size_t ahead, captured; int expectedPosition; std::vector<size_t> ringFrom; } rows[] = {
        // ring byte k holds recording byte ringFrom[k], or SIZE_MAX where it keeps the fill
        {12, 0, 10, 6, {4, 5, 6, 7, 8, 9, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, 0, 1, 2, 3}},
        {16, 0, 10, 10, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX}},
        {-3, 0, 4, 4, {0, 1, 2, 3, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX,
                       SIZE_MAX, SIZE_MAX, SIZE_MAX, SIZE_MAX}},
        {2, 15990, 20, 6, {14, 15, 16, 17, 18, 19, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}}, // across the buffer's end
        {0, 0, 20, 4, {16, 17, 18, 19, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}}, // longer than the ring: its last 16
    };
    for (const auto& row : rows)
    {
        auto stream = std::make_unique<TestCaptureStream>();
        ASSERT_EQ(1, stream->initCapture2stream(pcmFormat(1, 8000, 8), 16000));
        auto ring = scriptLoopingCapture(16000);
        ASSERT_EQ(1, stream->startCaptureStream());
        ring->advance(row.ahead);
        stream->m_ulStreamOffset = static_cast<unsigned long>(row.ahead);
        ring->advance(row.captured);
        std::vector<char> caller(16, '\x55');
        int position = row.position;
        ASSERT_EQ(1, stream->getRecordNewStreamData(caller.data(), 16, position, false));
        EXPECT_EQ(row.expectedPosition, position) << row.position;
        for (size_t k = 0; k < 16; k++)
        {
            const size_t from = row.ringFrom[k];
            const char expected = from == SIZE_MAX ? '\x55' : static_cast<char>(recorded(row.ahead + from));
            EXPECT_EQ(expected, caller[k]) << row.position << " byte " << k;
        }
        EXPECT_EQ((row.ahead + row.captured) % 16000, stream->m_ulStreamOffset);
        EXPECT_EQ(0, ring->openLocks);
        stream->stopCaptureStream();
        tap.clearScript();
    }
}

TEST_F(RecordStreamTest, FailedWriteIsOfferedAgainAndStopWritesTheTail)
{
    auto stream = std::make_unique<TestCaptureStream>();
    ASSERT_EQ(1, stream->initCapture2stream(cd, 352800));
    auto ring = scriptLoopingCapture(352800);
    CSndWaveWriteStreamty writer; // not open yet: every write fails
    stream->m_pSndWaveWriteStream = &writer;
    ASSERT_EQ(1, stream->startCaptureStream());
    ring->advance(88200);
    EXPECT_EQ(0, stream->streamData2File(0));
    ASSERT_EQ(1, writer.Open(CString(path.c_str()), const_cast<tWAVEFORMATEX*>(&cd)));
    EXPECT_EQ(1, stream->streamData2File(0));
    ring->written -= 400; // the cursor read a little behind where it stood: nothing new, not a whole loop
    EXPECT_EQ(0, stream->streamData2File(0));
    ring->written += 400;
    ring->advance(300000); // past the buffer's end
    EXPECT_EQ(1, stream->streamData2File(0));
    ring->advance(1000); // after the last position: only the stop takes it
    EXPECT_EQ(1, stream->stopCaptureStream());
    EXPECT_EQ((std::vector<DWORD>{0, 0, 88200, 35400}), lockOffsets());
    EXPECT_EQ(389200u, writer.GetDataBytesWritten());
    EXPECT_FALSE(writer.IsOpen());
    EXPECT_EQ(0, ring->openLocks);

    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_EXISTING, 0, NULL);
    ASSERT_NE(INVALID_HANDLE_VALUE, file);
    std::vector<BYTE> content(44 + 389200);
    DWORD got = 0;
    ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &got, NULL);
    CloseHandle(file);
    ASSERT_EQ(content.size(), got);
    for (size_t i = 0; i < 389200; i += 997)
        ASSERT_EQ(recorded(i), content[44 + i]) << i; // every byte once, in order
}

// The platform's part is played by the test, on one thread: the wait must leave the event
// that woke it reset, or a worker looping on it would never sleep again.
TEST_F(RecordStreamTest, EachPositionWakesOneWaitAndTheStopEndsWaiting)
{
    auto stream = std::make_unique<TestCaptureStream>();
    ASSERT_EQ(1, stream->initCapture2stream(cd, 352800));
    auto ring = scriptLoopingCapture(352800);
    tap.answer("IDirectSoundCaptureBuffer::Start", [](const dstap::Call&) { return DS_OK; });
    CSndWaveWriteStreamty writer;
    ASSERT_EQ(1, writer.Open(CString(path.c_str()), const_cast<tWAVEFORMATEX*>(&cd)));
    stream->m_pSndWaveWriteStream = &writer;
    ASSERT_EQ(1, stream->startCaptureStream());
    for (int position = 0; position < 2; position++)
    {
        ring->advance(88200);
        SetEvent(stream->m_hStreamEvent[position]);
        EXPECT_EQ(1, stream->waitRecordStreamEvt());
        EXPECT_EQ(static_cast<DWORD>(WAIT_TIMEOUT), WaitForSingleObject(stream->m_hStreamEvent[position], 0));
    }
    ring->advance(1000);
    stream->stopCaptureStream();
    EXPECT_EQ(0, stream->waitRecordStreamEvt()); // returns at once
    EXPECT_EQ(3, tap.count("IDirectSoundCaptureBuffer::GetCurrentPosition")); // two positions and the stop
    EXPECT_EQ(177400u, writer.GetDataBytesWritten());
    stream.reset();
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
}
}
