// Streamed playback heard through the loopback: a file longer than the two-second buffer,
// played again after a stop, starts from its beginning, plays through in order, falls silent
// after its end and stops by itself.

#include "Loopback.h"
#include <atomic>
#include <thread>

using namespace dsty_test;

class StreamLoopback : public Loopback
{
protected:
    void SetUp() override
    {
        Loopback::SetUp();
        openDevice();
        wchar_t folder[MAX_PATH], name[MAX_PATH];
        GetTempPathW(MAX_PATH, folder);
        GetTempFileNameW(folder, L"slb", 0, name);
        path = name;
        writeSteppedTone(path);
    }
    void TearDown() override
    {
        endWorker();
        reader.closeSndFileMmio();
        DeleteFileW(path.c_str());
        Loopback::TearDown();
    }

    // Opens the file from its start, prepares the stream and plays it with a worker refilling.
    void startStream()
    {
        unsigned long size = 0;
        tWAVEFORMATEX wfx = {};
        ASSERT_EQ(1, reader.initStream2Read(CString(path.c_str()), &size, &wfx));
        stim.m_pSndDataReadStream = &reader;
        ASSERT_EQ(1, stim.initPlayStream(window, wfx));
        over = false;
        worker = std::thread([this] {
            while (stim.waitStreamEvt())
            {
            }
            over = true;
        });
        ASSERT_EQ(1, stim.playDSnd2ndBufLargeFileStream());
    }
    void endWorker()
    {
        if (!worker.joinable())
            return;
        stim.stopDSnd2ndBufLargeFileStream();
        worker.join();
    }

    std::wstring path;
    CSndDataReadtyStream reader;
    std::thread worker;
    std::atomic<bool> over{false};
};

TEST_F(StreamLoopback, PlayedAgainAfterAStopTheFilePlaysThroughInOrderAndStopsByItself)
{
    // A buffer that knows its device: any load through the device gives it one.
    loadTone(1000.0, 0.1, ToneChannels::Both);
    ASSERT_EQ(stim.setSndData2DSndBuf2ndStd(&data, &device), 1);
    startStream();
    Sleep(1500);  // into the file's second second
    endWorker();

    startRecording();
    startStream();
    for (int waited = 0; !over && waited < 7000; waited += 20)
        Sleep(20);
    EXPECT_TRUE(over) << "the stream did not stop after the end of the file";
    Sleep(300);
    finishRecording();
    expectSteps();
    EXPECT_LT(rmsDbfs(heardAt(3.6, 0.25), 0), kSilentDbfs) << "sound after the end of the file";
}
