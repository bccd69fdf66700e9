// Streamed playback heard through the loopback: a file longer than the two-second buffer
// plays through in order, falls silent after its end and stops by itself; a stopped stream
// played again starts from the beginning of the file; stimctl streams a file as a user asks.

#include "ChildProcess.h"
#include "DirectSndty.h"
#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "SndWaveWriteStreamty.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

using namespace dsty_test;

namespace
{
const unsigned kRate = 44100;

class StreamBuffer : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::m_pDSBuffer;
    using CDirectSnd2DBuff::m_pDSndDevice;
};

// Stereo 16-bit PCM in which second k carries a tone of 400 x (k + 1) Hz at -12 dBFS, so
// which part of the file is heard can be told from its frequency.
std::vector<int16_t> steppedTone(double seconds)
{
    std::vector<int16_t> pcm;
    double phase = 0.0;
    for (size_t i = 0; i < static_cast<size_t>(seconds * kRate); i++)
    {
        const double hz = 400.0 * static_cast<double>(i / kRate + 1);
        phase += 2.0 * 3.14159265358979 * hz / kRate;
        const int16_t sample = static_cast<int16_t>(8200.0 * std::sin(phase));
        pcm.insert(pcm.end(), {sample, sample});
    }
    return pcm;
}

class StreamLoopback : public ::testing::Test
{
protected:
    void SetUp() override
    {
        window = CreateWindowW(L"STATIC", L"stream loopback", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                               GetModuleHandleW(nullptr), nullptr);
        ASSERT_EQ(1, device.initDSndStimX(window, nullptr, DSSCL_PRIORITY));
        stream.m_pDSndDevice = &device;
        wchar_t dir[MAX_PATH], name[MAX_PATH];
        GetTempPathW(MAX_PATH, dir);
        GetTempFileNameW(dir, L"slb", 0, name);
        path = name;
        const std::vector<int16_t> pcm = steppedTone(3.5);
        tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
        CSndWaveWriteStreamty writer;
        ASSERT_EQ(1, writer.Open(CString(path.c_str()), &wfx));
        ASSERT_EQ(1, writer.Write(static_cast<unsigned>(pcm.size() * 2),
                                  reinterpret_cast<unsigned char*>(const_cast<int16_t*>(pcm.data())), nullptr));
        ASSERT_EQ(1, writer.Close());
    }
    void TearDown() override
    {
        endWorker();
        stream.release3DBuffers();
        reader.closeSndFileMmio();
        DeleteFileW(path.c_str());
        device.releaseDSndty(&device);
        DestroyWindow(window);
    }

    // Opens the file from its start, prepares the stream and plays it with a worker refilling.
    void startStream()
    {
        unsigned long size = 0;
        tWAVEFORMATEX wfx = {};
        ASSERT_EQ(1, reader.initStream2Read(CString(path.c_str()), &size, &wfx));
        stream.m_pSndDataReadStream = &reader;
        ASSERT_EQ(1, stream.initPlayStream(window, wfx));
        over = false;
        worker = std::thread([this] {
            while (stream.waitStreamEvt())
            {
            }
            over = true;
        });
        ASSERT_EQ(1, stream.playDSnd2ndBufLargeFileStream());
    }
    // True once the worker has ended within `ms`.
    bool workerEnds(DWORD ms)
    {
        for (DWORD waited = 0; !over && waited < ms; waited += 20)
            Sleep(20);
        return over;
    }
    void endWorker()
    {
        if (!worker.joinable())
            return;
        stream.stopDSnd2ndBufLargeFileStream();
        worker.join();
    }
    static double frequencyAt(PcmView all, long long onset, double fromSeconds)
    {
        return dominantFrequency(slice(all, static_cast<size_t>(onset + fromSeconds * kRate), kRate / 4), 0, kRate);
    }

    HWND window = nullptr;
    CDirectSndDevicety device;
    StreamBuffer stream;
    CSndDataReadtyStream reader;
    std::wstring path;
    std::thread worker;
    std::atomic<bool> over{false};
    LoopbackRecorder recorder;
};

TEST_F(StreamLoopback, FileLongerThanTheBufferPlaysThroughInOrderAndStopsByItself)
{
    ASSERT_TRUE(recorder.start());
    startStream();
    EXPECT_TRUE(workerEnds(7000)) << "the stream did not stop after the end of the file";
    Sleep(300);
    recorder.stop();
    EXPECT_EQ(nullptr, stream.m_pDSBuffer);

    const std::vector<int16_t> recorded = recorder.samples();
    const PcmView all = view(recorded, 2);
    const long long onset = onsetFrame(all, -40.0);
    ASSERT_GE(onset, 0) << "nothing was heard";
    for (int second = 0; second < 4; second++)
        EXPECT_NEAR(400.0 * (second + 1), frequencyAt(all, onset, second + 0.15), 10.0) << "second " << second;
    const PcmView afterEnd = slice(all, static_cast<size_t>(onset + 3.6 * kRate), kRate / 4);
    EXPECT_GT(afterEnd.frames, 0u);
    EXPECT_LT(rmsDbfs(afterEnd, 0), -60.0) << "sound after the end of the file";
}

TEST_F(StreamLoopback, PlayAfterStopStartsAgainFromTheBeginning)
{
    startStream();
    Sleep(1500); // into the file's second second
    endWorker();
    EXPECT_EQ(nullptr, stream.m_pDSBuffer);

    ASSERT_TRUE(recorder.start());
    startStream();
    Sleep(900);
    recorder.stop();
    const std::vector<int16_t> recorded = recorder.samples();
    const PcmView all = view(recorded, 2);
    const long long onset = onsetFrame(all, -40.0);
    ASSERT_GE(onset, 0) << "nothing was heard";
    EXPECT_NEAR(400.0, frequencyAt(all, onset, 0.15), 10.0);
}
}

TEST_F(StreamLoopback, StimctlStreamsAFileWithItsProgressAndRefusesOtherPlayOptions)
{
    ASSERT_TRUE(recorder.start());
    ChildProcess stimctl(L"stimctl.exe", L"play \"" + path + L"\" --stream");
    const Outcome outcome = stimctl.finish();
    recorder.stop();
    ASSERT_EQ(0u, outcome.status) << outcome.err;
    EXPECT_NE(std::string::npos, outcome.out.find("streaming 3/3.5 s\nplayed\n")) << outcome.out;
    const std::vector<int16_t> recorded = recorder.samples();
    const PcmView all = view(recorded, 2);
    const long long onset = onsetFrame(all, -40.0);
    ASSERT_GE(onset, 0) << "nothing was heard";
    for (int second = 0; second < 4; second++)
        EXPECT_NEAR(400.0 * (second + 1), frequencyAt(all, onset, second + 0.15), 10.0) << "second " << second;

    ChildProcess refused(L"stimctl.exe", L"play \"" + path + L"\" --stream --pan left");
    const Outcome refusal = refused.finish();
    EXPECT_EQ(2u, refusal.status);
    EXPECT_NE(std::string::npos, refusal.err.find("--stream cannot be combined")) << refusal.err;
}
