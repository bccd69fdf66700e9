// Streamed playback through the tap: which half each notification refills from the wave file,
// silence after the file's end, the stop after the end half, play on a lost buffer, refusals,
// and a stop seen by a waiting worker.

#include "UnitFixtures.h"
#include "SndDataReadtyStream.h"
#include "SndWaveWriteStreamty.h"

#include <future>

namespace
{
const DWORD kHalf = 176400; // one second of 44.1 kHz 16-bit stereo
const tWAVEFORMATEX kCd = pcmFormat(2, 44100, 16);

class StreamPlayTest : public BufferTest
{
protected:
    void TearDown() override { reader.closeSndFileMmio(); }

    // Writes `bytes` of a pattern that differs from byte to byte as a wave file and opens a
    // fresh stream's reader on it.
    void openFile(tWAVEFORMATEX wfx, size_t bytes)
    {
        stream = std::make_unique<TestBuffer>();
        stream->m_pDSndDevice = &device;
        content.resize(bytes);
        for (size_t k = 0; k < bytes; k++)
            content[k] = static_cast<BYTE>(k * 31 + k / 977 + 1);
        CSndWaveWriteStreamty writer;
        ASSERT_EQ(1, writer.Open(CString(file.path.c_str()), &wfx));
        ASSERT_EQ(1, writer.Write(static_cast<unsigned>(bytes), content.data(), nullptr));
        ASSERT_EQ(1, writer.Close());
        unsigned long size = 0;
        ASSERT_EQ(1, reader.initStream2Read(CString(file.path.c_str()), &size, &wfx));
        stream->m_pSndDataReadStream = &reader;
    }

    // Whether the buffer's bytes from `at` are the file's from `from`, silence (`pad`) past its end.
    bool holdsFile(DWORD at, size_t from, DWORD count, BYTE pad = 0) const
    {
        const std::vector<BYTE> all = tap.contents(stream->m_pDSBuffer);
        for (size_t k = 0; k < count; k++)
            if (all.at(at + k) != (from + k < content.size() ? content[from + k] : pad))
                return false;
        return true;
    }

    TempFile file;
    CSndDataReadtyStream reader;
    std::vector<BYTE> content;
    std::unique_ptr<TestBuffer> stream;
};

// A 3.5-second file in a two-second buffer notified at its start and halfway: the first
// second goes in first; each event refills the half the cursor has just left with the next
// second; the last half-second is followed by silence, the other event then writes nothing,
// and the event of the end half stops the stream and lets everything go.
TEST_F(StreamPlayTest, EachEventRefillsTheOtherHalfUntilTheEndHalfHasPlayed)
{
    const unsigned long none = TestBuffer::kStreamNotEnded;
    const struct { unsigned long event; int result, locks; DWORD half; size_t fileAt; unsigned long endHalf; } steps[] = {
        {0, 1, 1, kHalf, kHalf, none}, {1, 1, 1, 0, 2 * kHalf, none}, {0, 1, 1, kHalf, 3 * kHalf, 0},
        {1, 1, 0, 0, 0, 0}, {0, 0, 0, 0, 0, none}};
    openFile(kCd, 3 * kHalf + kHalf / 2);
    ASSERT_EQ(1, stream->initPlayStream(kWindow, kCd));
    const auto positions = tap.notificationSets().at(0).positions;
    ASSERT_EQ(2u, positions.size());
    EXPECT_EQ(std::make_pair(DWORD{0}, kHalf), std::make_pair(positions[0].dwOffset, positions[1].dwOffset));
    EXPECT_TRUE(holdsFile(0, 0, kHalf));
    for (const auto& step : steps)
    {
        tap.clearLog();
        EXPECT_EQ(step.result, stream->streamData2Buffer(step.event)) << step.fileAt;
        ASSERT_EQ(step.locks, tap.count("IDirectSoundBuffer::Lock"));
        if (step.locks == 1)
        {
            EXPECT_TRUE(holdsFile(step.half, step.fileAt, kHalf)) << step.fileAt;
        }
        EXPECT_EQ(step.endHalf, stream->m_streamEndHalf);
        EXPECT_EQ(step.result == 0 ? 1 : 0, tap.count("IDirectSoundBuffer::Stop"));
    }
    EXPECT_EQ(nullptr, stream->m_pDSBuffer);
    EXPECT_EQ(nullptr, stream->m_pDSNotify);
    EXPECT_FALSE(reader.isSndFileOpen());
}

TEST_F(StreamPlayTest, FileShorterThanASecondIsPaddedWithTheFormatsSilenceAndEndsAtTheHalfway)
{
    for (const auto& [wfx, silence] : {std::make_pair(kCd, BYTE{0}), std::make_pair(pcmFormat(1, 22050, 8), BYTE{128})})
    {
        openFile(wfx, wfx.nAvgBytesPerSec / 3);
        ASSERT_EQ(1, stream->initPlayStream(kWindow, wfx));
        EXPECT_TRUE(holdsFile(0, 0, wfx.nAvgBytesPerSec, silence)) << wfx.wBitsPerSample;
        EXPECT_EQ(1u, stream->m_streamEndHalf);
        EXPECT_EQ(1, stream->streamData2Buffer(0));
        EXPECT_EQ(0, stream->streamData2Buffer(1));
        EXPECT_EQ(1, tap.count("IDirectSoundBuffer::Lock"));
        EXPECT_EQ(1, tap.count("IDirectSoundBuffer::Stop"));
        tap.clearLog();
    }
}

// Play loops on from the cursor; a lost buffer is restored and played once more, whether or
// not the restore worked.
TEST_F(StreamPlayTest, PlayLoopsOnFromTheCursorAndRetriesOnceOnALostBuffer)
{
    openFile(kCd, kHalf);
    EXPECT_EQ(0, stream->playDSnd2ndBufLargeFileStream());
    ASSERT_EQ(1, stream->initPlayStream(kWindow, kCd));
    tap.clearLog();
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    EXPECT_EQ(1, stream->playDSnd2ndBufLargeFileStream());
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    tap.failNext("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
    EXPECT_EQ(1, stream->playDSnd2ndBufLargeFileStream());
    EXPECT_EQ((Names{"Play(1)", "Restore", "Play(1)", "Play(1)", "Restore", "Play(1)"}), starts(tap));
}

TEST_F(StreamPlayTest, RefusalsLeaveNothingBehind)
{
    const int before = tap.liveObjects();
    openFile(kCd, kHalf);
    tWAVEFORMATEX floating = pcmFormat(2, 44100, 32);
    floating.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    EXPECT_EQ(0, stream->initPlayStream(kWindow, floating));
    EXPECT_EQ((Texts{L"Unsupported sound wave format"}), messages.texts());
    EXPECT_TRUE(tap.calls().empty());

    tap.failNext("IDirectSoundNotify::SetNotificationPositions", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, stream->initPlayStream(kWindow, kCd));
    EXPECT_EQ(nullptr, stream->m_pDSNotify);
    stream.reset();
    EXPECT_EQ(before, tap.liveObjects()) << tap.leakReport();
    EXPECT_EQ(0, tap.openNotificationHandles());
}

// A worker waiting for the next half ends when the stream is stopped from another thread; a
// second stop is harmless; events are closed when replaced and when the object goes.
TEST_F(StreamPlayTest, StopWakesTheWaitingWorkerAndNothingLeaks)
{
    const int before = tap.liveObjects();
    openFile(kCd, 4 * kHalf);
    ASSERT_EQ(1, stream->initPlayStream(kWindow, kCd));
    SetEvent(stream->m_hStreamEvent[1]);
    tap.clearLog();
    EXPECT_EQ(1, stream->waitStreamEvt());
    EXPECT_EQ(0u, tap.callsTo("IDirectSoundBuffer::Lock").at(0).args[0]);

    auto worker = std::async(std::launch::async, [this] { return stream->waitStreamEvt(); });
    EXPECT_EQ(std::future_status::timeout, worker.wait_for(std::chrono::milliseconds(200)));
    EXPECT_EQ(1, stream->stopDSnd2ndBufLargeFileStream());
    ASSERT_EQ(std::future_status::ready, worker.wait_for(std::chrono::seconds(5)));
    EXPECT_EQ(0, worker.get());
    EXPECT_EQ(1, stream->stopDSnd2ndBufLargeFileStream());
    EXPECT_EQ(1, tap.count("IDirectSoundBuffer::Stop"));

    ASSERT_EQ(1, stream->initPlayStream(kWindow, kCd));
    ASSERT_EQ(1, stream->initPlayStream(kWindow, kCd));
    EXPECT_EQ(2, tap.openNotificationHandles());
    ASSERT_EQ(1, stream->playDSnd2ndBufLargeFileStream());
    stream.reset();
    EXPECT_EQ(before, tap.liveObjects()) << tap.leakReport();
    EXPECT_EQ(0, tap.openNotificationHandles());
    EXPECT_EQ(0, tap.overReleases());
}
}
