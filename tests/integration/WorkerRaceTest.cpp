// The library's workers against the host's thread on Wine, by repetition: a moving source
// stopped, released and reloaded, or destroyed while its motion runs; a streamed play and a
// streamed recording stopped at every moment from before their first refill on; a schedule
// closed or destroyed with stimuli pending, at leads from the shortest up. No round may
// crash or hang, and the process holds no more handles at the end than after the first rounds.

#include "Loopback.h"
#include "SndWaveWriteStreamty.h"

#include <functional>
#include <future>

using namespace dsty_test;

namespace
{
const int kRounds = 200;

// A worker the host's thread stops: it must end within a few seconds of the stop.
bool endsSoonAfter(std::future<void>& worker)
{
    return worker.wait_for(std::chrono::seconds(5)) == std::future_status::ready;
}

// From a few microseconds to some 30 ms, so that the host meets the worker in every state.
void waitSomeFor(int round)
{
    for (volatile int spin = (round * 7919) % 200000; spin > 0; spin--)
    {
    }
    Sleep((round % 7) * 5);
}

// Handles the process holds, found by asking after every handle value in turn (Wine's
// GetProcessHandleCount answers 0).
int openHandles()
{
    int count = 0;
    DWORD flags = 0;
    for (UINT_PTR value = 4; value < 0x10000; value += 4)
        count += GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) ? 1 : 0;
    return count;
}

std::wstring tempPath()
{
    wchar_t folder[MAX_PATH], name[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"wrt", 0, name);
    return name;
}
} // namespace

class WorkerRace : public Loopback
{
protected:
    void SetUp() override
    {
        Loopback::SetUp();
        openDevice();
    }

    // Runs `round` kRounds times; the handle count after the first tenth is the baseline.
    void repeat(const std::function<void(int)>& round)
    {
        int baseline = 0;
        for (int n = 0; n < kRounds && !HasFatalFailure(); n++)
        {
            round(n);
            if (n == kRounds / 10)
                baseline = openHandles();
        }
        const int now = openHandles();
        std::printf("handles after round %d: %d, at the end: %d\n", kRounds / 10, baseline, now);
        EXPECT_LE(now, baseline);
    }
};

TEST_F(WorkerRace, MovingSourceStoppedReleasedOrDestroyedWhileItMoves)
{
    loadTone(500, 0.3, ToneChannels::Both);
    repeat([this](int round) {
        auto moving = std::make_unique<CDirectSnd3DBuffty>();
        ASSERT_EQ(1, moving->setSndData2DS3Dbuff2(&data, &device)) << round;
        moving->m_ds3dBuffer.vVelocity = {3, 0, 0};
        ASSERT_EQ(1, moving->sendAudioStimMovingSnd()) << round;
        waitSomeFor(round);
        if (round % 3 == 0)
            moving->stopAudioStim();
        else if (round % 3 == 1)
            moving->releaseDirectSnd3DBuff();
        moving.reset(); // the third way: destroyed while it moves
    });
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(WorkerRace, StreamedPlayStoppedAtAnyMoment)
{
    const std::wstring path = tempPath();
    writeSteppedTone(path);
    loadTone(500, 0.1, ToneChannels::Both); // a host places a streaming buffer on its device by a load
    repeat([&](int round) {
        CSndDataReadtyStream reader;
        unsigned long size = 0;
        tWAVEFORMATEX wfx = {};
        ASSERT_EQ(1, reader.initStream2Read(CString(path.c_str()), &size, &wfx));
        CDirectSnd3DBuffty stream;
        ASSERT_EQ(1, stream.setSndData2DSndBuf2ndStd(&data, &device));
        stream.m_pSndDataReadStream = &reader;
        ASSERT_EQ(1, stream.initPlayStream(window, wfx)) << round;
        auto worker = std::async(std::launch::async, [&stream] {
            while (stream.waitStreamEvt())
            {
            }
        });
        if (round % 4)
        {
            ASSERT_EQ(1, stream.playDSnd2ndBufLargeFileStream());
        }
        waitSomeFor(round);
        stream.stopDSnd2ndBufLargeFileStream();
        ASSERT_TRUE(endsSoonAfter(worker)) << round;
        reader.closeSndFileMmio();
    });
    DeleteFileW(path.c_str());
}

TEST_F(WorkerRace, StreamedRecordingStoppedAtAnyMoment)
{
    const std::wstring path = tempPath();
    tWAVEFORMATEX cd = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
    repeat([&](int round) {
        CSndWaveWriteStreamty writer;
        ASSERT_EQ(1, writer.Open(CString(path.c_str()), &cd));
        auto stream = std::make_unique<CDSndCapturetyStream>();
        stream->m_pSndWaveWriteStream = &writer;
        ASSERT_EQ(1, stream->initCapture2stream(cd, 2 * cd.nAvgBytesPerSec)) << round;
        ASSERT_EQ(1, stream->startCaptureStream()) << round;
        auto worker = std::async(std::launch::async, [&stream] {
            while (stream->waitRecordStreamEvt())
            {
            }
        });
        waitSomeFor(round);
        stream->stopCaptureStream();
        ASSERT_TRUE(endsSoonAfter(worker)) << round;
        EXPECT_FALSE(writer.IsOpen()) << round;
    });
    DeleteFileW(path.c_str());
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(WorkerRace, ScheduleClosedOrDestroyedWithStimuliPending)
{
    loadTone(1000, 0.05, ToneChannels::Both);
    repeat([this](int round) {
        auto schedule = std::make_unique<CDirectSndSchedulety>();
        ASSERT_EQ(1, schedule->openSchedule(&device, data.getAudioWaveDataWfx(), 10 + 10 * (round % 5))) << round;
        const LONGLONG first = schedule->getEarliestFrame();
        for (LONGLONG k = 0; k < 4; k++)
            ASSERT_GT(schedule->scheduleStim(&data, first + k * kRate / 50), 0) << round;
        waitSomeFor(round);
        if (round % 2)
            schedule->closeSchedule();
        schedule.reset();
    });
    EXPECT_TRUE(shownMessages().empty());
}
