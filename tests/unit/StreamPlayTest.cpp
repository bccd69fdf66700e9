// Streamed playback through the tap: the two-second buffer and its halfway notifications,
// which half each event refills from the wave file, silence after the file's end, the stop
// after the end half, play on a lost buffer, refusals, and a stop seen by a waiting worker.

#include "DeviceTestSupport.h"
#include "SndDataReadtyStream.h"
#include "SndWaveWriteStreamty.h"

#include <future>
#include <memory>

namespace
{
const HWND kWindow = reinterpret_cast<HWND>(0x1234);
const DWORD kHalf = 176400; // one second of 44.1 kHz 16-bit stereo

class TestStream : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::m_pDSBuffer;
    using CDirectSnd2DBuff::m_pDSndDevice;
    using CDirectSnd3DBuff5Notify::m_pDSNotify;
    using CDirectSndBasicty::m_hr;
    using CDirectSnd3DBuff7PlayStream::streamData2Buffer;
    using CDirectSnd3DBuff7PlayStream::m_streamEndHalf;
    using CDirectSnd3DBuff7PlayStream::m_hStreamEvent;
};

class StreamPlayTest : public DeviceTest
{
protected:
    void SetUp() override
    {
        openDevice(device);
        stream = std::make_unique<TestStream>();
        stream->m_pDSndDevice = &device;
        wchar_t dir[MAX_PATH], name[MAX_PATH];
        GetTempPathW(MAX_PATH, dir);
        GetTempFileNameW(dir, L"stm", 0, name);
        path = name;
    }
    void TearDown() override
    {
        stream.reset();
        reader.closeSndFileMmio();
        DeleteFileW(path.c_str());
    }

    // Writes `bytes` of a pattern that differs from byte to byte as a wave file and opens
    // the reader on it, attached to the stream.
    void openFile(tWAVEFORMATEX wfx, size_t bytes)
    {
        file.resize(bytes);
        for (size_t k = 0; k < bytes; k++)
            file[k] = static_cast<BYTE>(k * 31 + k / 977 + 1);
        CSndWaveWriteStreamty writer;
        ASSERT_EQ(1, writer.Open(CString(path.c_str()), &wfx));
        ASSERT_EQ(1, writer.Write(static_cast<unsigned>(bytes), file.data(), nullptr));
        ASSERT_EQ(1, writer.Close());
        unsigned long size = 0;
        ASSERT_EQ(1, reader.initStream2Read(CString(path.c_str()), &size, &wfx));
        stream->m_pSndDataReadStream = &reader;
    }

    std::vector<BYTE> bufferBytes(DWORD from, DWORD count) const
    {
        const std::vector<BYTE> all = tap.contents(stream->m_pDSBuffer);
        return std::vector<BYTE>(all.begin() + from, all.begin() + from + count);
    }

    // `count` bytes of the file from `from`, silence (`pad`) past its end.
    std::vector<BYTE> fileBytes(size_t from, size_t count, BYTE pad) const
    {
        std::vector<BYTE> out(count, pad);
        for (size_t k = 0; k < count && from + k < file.size(); k++)
            out[k] = file[from + k];
        return out;
    }

    TestDevice device;
    std::unique_ptr<TestStream> stream;
    CSndDataReadtyStream reader;
    std::wstring path;
    std::vector<BYTE> file;
};

// A 3.5-second file: prepared as two seconds notified at the start and halfway with the first
// second in; each event refills the half the cursor has just left with the next
// second; the last half-second is followed by silence, the other event then writes nothing,
// and the event of the end half stops the stream.
TEST_F(StreamPlayTest, EachEventRefillsTheOtherHalfUntilTheEndHalfHasPlayed)
{
    struct Step
    {
        unsigned long event;
        int result;
        int locks;
        DWORD half;     // the region refilled
        size_t fileAt;  // from where in the file
        unsigned long endHalf;
    };
    const unsigned long none = TestStream::kStreamNotEnded;
    const Step steps[] = {{0, 1, 1, kHalf, kHalf, none},         {1, 1, 1, 0, 2 * kHalf, none},
                          {0, 1, 1, kHalf, 3 * kHalf, 0},        {1, 1, 0, 0, 0, 0},
                          {0, 0, 0, 0, 0, none}};
    openFile(pcmFormat(2, 44100, 16), 3 * kHalf + kHalf / 2);
    ASSERT_EQ(1, stream->initPlayStream(kWindow, pcmFormat(2, 44100, 16)));
    const auto request = tap.bufferRequests().at(0);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_CTRLPOSITIONNOTIFY | DSBCAPS_GETCURRENTPOSITION2), request.desc.dwFlags);
    EXPECT_EQ(2 * kHalf, request.desc.dwBufferBytes);
    EXPECT_TRUE(sameFormat(pcmFormat(2, 44100, 16), *reinterpret_cast<const tWAVEFORMATEX*>(&request.format)));
    const auto positions = tap.notificationSets().at(0).positions;
    ASSERT_EQ(2u, positions.size());
    for (DWORD k = 0; k < 2; k++)
        EXPECT_TRUE(positions[k].dwOffset == k * kHalf && positions[k].hEventNotify == stream->m_hStreamEvent[k]) << k;
    const auto firstLock = tap.callsTo("IDirectSoundBuffer::Lock").at(0);
    EXPECT_EQ((std::vector<std::uintptr_t>{0, kHalf}), std::vector<std::uintptr_t>(firstLock.args.begin(), firstLock.args.begin() + 2));
    EXPECT_EQ(0u, firstLock.args[6]);
    EXPECT_EQ(fileBytes(0, kHalf, 0), bufferBytes(0, kHalf));
    EXPECT_EQ(static_cast<unsigned long>(TestStream::kStreamNotEnded), stream->m_streamEndHalf);
    EXPECT_EQ(kWindow, reinterpret_cast<HWND>(tap.callsTo("IDirectSound8::SetCooperativeLevel").at(0).args[0]));
    for (const Step& step : steps)
    {
        tap.clearLog();
        const bool lastStep = step.result == 0;
        EXPECT_EQ(step.result, stream->streamData2Buffer(step.event)) << step.fileAt;
        const auto locks = tap.callsTo("IDirectSoundBuffer::Lock");
        ASSERT_EQ(static_cast<size_t>(step.locks), locks.size());
        if (step.locks == 1)
        {
            EXPECT_EQ(step.half, locks[0].args[0]);
            EXPECT_EQ(kHalf, locks[0].args[1]);
            EXPECT_EQ(fileBytes(step.fileAt, kHalf, 0), bufferBytes(step.half, kHalf));
        }
        EXPECT_EQ(step.endHalf, stream->m_streamEndHalf);
        EXPECT_EQ(lastStep ? 1 : 0, tap.count("IDirectSoundBuffer::Stop"));
    }
    EXPECT_EQ(nullptr, stream->m_pDSBuffer);
    EXPECT_EQ(nullptr, stream->m_pDSNotify);
    EXPECT_FALSE(reader.isSndFileOpen());
}

TEST_F(StreamPlayTest, FileShorterThanASecondIsPaddedWithTheFormatsSilenceAndEndsAtTheHalfway)
{
    struct Case
    {
        tWAVEFORMATEX wfx;
        BYTE silence;
    };
    for (const Case& c : {Case{pcmFormat(2, 44100, 16), 0}, Case{pcmFormat(1, 22050, 8), 128}})
    {
        stream = std::make_unique<TestStream>();
        stream->m_pDSndDevice = &device;
        const DWORD half = c.wfx.nAvgBytesPerSec;
        openFile(c.wfx, half / 3);
        ASSERT_EQ(1, stream->initPlayStream(kWindow, c.wfx));
        EXPECT_EQ(fileBytes(0, half, c.silence), bufferBytes(0, half)) << c.wfx.wBitsPerSample;
        EXPECT_EQ(1u, stream->m_streamEndHalf);
        tap.clearLog();
        EXPECT_EQ(1, stream->streamData2Buffer(0));
        EXPECT_EQ(0, tap.count("IDirectSoundBuffer::Lock"));
        EXPECT_EQ(0, stream->streamData2Buffer(1));
        EXPECT_EQ(1, tap.count("IDirectSoundBuffer::Stop"));
    }
}

TEST_F(StreamPlayTest, PlayLoopsOnFromTheCursorAndRetriesOnceOnALostBuffer)
{
    EXPECT_EQ(0, stream->playDSnd2ndBufLargeFileStream());
    openFile(pcmFormat(2, 44100, 16), kHalf);
    ASSERT_EQ(1, stream->initPlayStream(kWindow, pcmFormat(2, 44100, 16)));
    // failNext counts the calls in the log, so the log is kept whole here.
    for (bool restoreFails : {false, true})
    {
        const int plays = tap.count("IDirectSoundBuffer::Play"), restores = tap.count("IDirectSoundBuffer::Restore");
        tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
        if (restoreFails)
            tap.failNext("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
        EXPECT_EQ(1, stream->playDSnd2ndBufLargeFileStream());
        EXPECT_EQ(plays + 2, tap.count("IDirectSoundBuffer::Play"));
        EXPECT_EQ(static_cast<std::uintptr_t>(DSBPLAY_LOOPING), tap.callsTo("IDirectSoundBuffer::Play").back().args[2]);
        EXPECT_EQ(restores + 1, tap.count("IDirectSoundBuffer::Restore"));
    }
    EXPECT_EQ(0, tap.count("IDirectSoundBuffer::SetCurrentPosition"));
}

TEST_F(StreamPlayTest, RefusalsLeaveNothingBehind)
{
    const int before = tap.liveObjects();
    TestStream noDevice;
    EXPECT_EQ(0, noDevice.initPlayStream(kWindow, pcmFormat(2, 44100, 16)));
    EXPECT_TRUE(messages.texts().empty());

    tWAVEFORMATEX floating = pcmFormat(2, 44100, 32);
    floating.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    EXPECT_EQ(0, stream->initPlayStream(kWindow, floating));
    EXPECT_EQ((std::vector<std::wstring>{L"Unsupported sound wave format"}), messages.texts());
    EXPECT_TRUE(tap.calls().empty());

    openFile(pcmFormat(2, 44100, 16), kHalf);
    tap.failNext("IDirectSoundNotify::SetNotificationPositions", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, stream->initPlayStream(kWindow, pcmFormat(2, 44100, 16)));
    EXPECT_EQ(nullptr, stream->m_pDSNotify);
    EXPECT_EQ(DSERR_INVALIDPARAM, stream->m_hr);
    stream.reset();
    EXPECT_EQ(before, tap.liveObjects());
    EXPECT_EQ(0, tap.openNotificationHandles());
}

// A worker waiting for the next half ends when the stream is stopped from another thread;
// a second stop is harmless; events are closed when replaced and when the object goes.
TEST_F(StreamPlayTest, StopWakesTheWaitingWorkerAndNothingLeaks)
{
    const int before = tap.liveObjects();
    openFile(pcmFormat(2, 44100, 16), 4 * kHalf);
    ASSERT_EQ(1, stream->initPlayStream(kWindow, pcmFormat(2, 44100, 16)));
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

    unsigned long size = 0;
    ASSERT_EQ(1, reader.initStream2Read(CString(path.c_str()), &size, nullptr));
    ASSERT_EQ(1, stream->initPlayStream(kWindow, pcmFormat(2, 44100, 16)));
    ASSERT_EQ(1, stream->initPlayStream(kWindow, pcmFormat(2, 44100, 16)));
    EXPECT_EQ(2, tap.openNotificationHandles());
    ASSERT_EQ(1, stream->playDSnd2ndBufLargeFileStream());
    stream.reset();
    EXPECT_EQ(before, tap.liveObjects());
    EXPECT_EQ(0, tap.openNotificationHandles());
    EXPECT_EQ(0, tap.overReleases());
}
}
