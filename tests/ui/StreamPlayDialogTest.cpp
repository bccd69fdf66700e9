// The "Huge sound file player", modeless on this thread while a second thread works it as a
// user would: its button states, a cancelled and a completed file choice, Play, Stop (run by
// both threads), the return to Ready at the end of the file, and its destruction mid-play.

#include "UiTestSupport.h"
#include "SndWaveWriteStreamty.h"
#include "ToneGenerator.h"

#include <cmath>

using namespace dsty_test;

namespace
{
const wchar_t kCaption[] = L"Huge sound file player";
const int kButtons[] = {IDOK, IDC_BTN_STREAM_OPEN_FILE, IDC_BTN_STREAM_PLAY, IDC_BTN_STREAM_STOP};

class StreamBuffer : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::m_pDSBuffer;
};

// Enabled states of Exit, Open file, Play, Stop.
std::vector<bool> buttonStates(HWND dialog)
{
    std::vector<bool> states;
    for (int id : kButtons)
        states.push_back(isControlEnabled(dialog, id));
    return states;
}

const std::vector<bool> kIdle = {true, true, false, false};
const std::vector<bool> kReady = {true, true, true, false};
const std::vector<bool> kPlaying = {false, false, false, true};

bool becomes(HWND dialog, const std::vector<bool>& states, DWORD timeoutMs)
{
    for (DWORD waited = 0; buttonStates(dialog) != states && waited < timeoutMs; waited += 20)
        Sleep(20);
    return buttonStates(dialog) == states;
}

// Whether the player's streaming buffer holds a DirectSound buffer.
bool holdsSoundBuffer(CDlgSoundStreamPlay* player)
{
    return player != nullptr && static_cast<StreamBuffer*>(player->m_pSndBuffStream)->m_pDSBuffer != nullptr;
}

bool threadEnds(CWinThread* thread, DWORD timeoutMs)
{
    return thread != nullptr && WaitForSingleObject(thread->m_hThread, timeoutMs) == WAIT_OBJECT_0;
}

}

class StreamPlayDialog : public DialogTest
{
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        ASSERT_EQ(device.initDSndStimX(host, nullptr, DSSCL_PRIORITY), 1);
        // The owner gives the buffer its device with a load of a few bytes of silence.
        const char silence[4] = {};
        ASSERT_EQ(data.setNewSndData(silence, sizeof silence, pcmFormat(44100, 2)), 1);
        ASSERT_EQ(buffer.setSndData2DSndBuf2ndStd(&data, &device), 1);
        wchar_t dir[MAX_PATH];
        GetTempPathW(MAX_PATH, dir);
        path = std::wstring(dir) + L"stream-ui-tone.wav";
        writeTone(1.5);
    }
    void TearDown() override
    {
        delete CSndDataRecordPlaytyx::m_pPlayStream;
        CSndDataRecordPlaytyx::m_pPlayStream = nullptr;
        CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(nullptr);
        delete dialog;
        buffer.release3DBuffers();
        DeleteFileW(path.c_str());
        DialogTest::TearDown();
    }

    void writeTone(double seconds)
    {
        std::vector<int16_t> pcm(static_cast<size_t>(seconds * 44100) * 2);
        for (size_t i = 0; i < pcm.size(); i++)
            pcm[i] = static_cast<int16_t>(8000.0 * std::sin(2.0 * 3.14159265358979 * 1000.0 * (i / 2) / 44100.0));
        tWAVEFORMATEX wfx = pcmFormat(44100, 2);
        CSndWaveWriteStreamty writer;
        ASSERT_EQ(writer.Open(CString(path.c_str()), &wfx), 1);
        ASSERT_EQ(writer.Write(static_cast<unsigned>(pcm.size() * 2), reinterpret_cast<unsigned char*>(pcm.data()), nullptr), 1);
        ASSERT_EQ(writer.Close(), 1);
    }

    // Opens the tone file in the player and presses Play.
    void openAndPlay(HWND player)
    {
        pressButton(player, IDC_BTN_STREAM_OPEN_FILE);
        EXPECT_TRUE(answerFileDialog(L"Open", path));
        EXPECT_TRUE(becomes(player, kReady, 3000));
        pressButton(player, IDC_BTN_STREAM_PLAY);
    }

    // Shows the dialog modeless here and handles this thread's messages while `drive`
    // works it from another thread.
    void runModeless(const std::function<void(HWND)>& drive)
    {
        dialog = new CDlgSoundStreamPlay;
        dialog->m_pSndBuffStream = &buffer;
        ASSERT_TRUE(dialog->Create(IDD_DLG_SOUND_STREAM_PLAY));
        dialog->ShowWindow(SW_SHOWNORMAL);
        pumpMessagesWhile([&] {
            if (HWND found = waitForWindow(kCaption))
                drive(found);
            else
                ADD_FAILURE() << "no stream player";
        });
    }

    UiDevice device;
    CSndDatatyx data;
    StreamBuffer buffer;
    std::wstring path;
    CDlgSoundStreamPlay* dialog = nullptr;
};

TEST_F(StreamPlayDialog, OpensPlaysStopsAndReturnsToReadyAtTheEndOfTheFile)
{
    std::vector<bool> idle, afterCancel, playing;
    bool ready = false, stoppedToReady = false, workerEndedOnStop = false, endedToReady = false;
    std::wstring lowerCase = path;
    for (wchar_t& ch : lowerCase)
        ch = static_cast<wchar_t>(towlower(ch));
    runModeless([&](HWND dlg) {
        idle = buttonStates(dlg);
        pressButton(dlg, IDC_BTN_STREAM_OPEN_FILE);
        EXPECT_TRUE(answerFileDialog(L"Open", L""));
        afterCancel = buttonStates(dlg);
        pressButton(dlg, IDC_BTN_STREAM_OPEN_FILE);
        EXPECT_TRUE(answerFileDialog(L"Open", lowerCase));
        ready = becomes(dlg, kReady, 3000);

        pressButton(dlg, IDC_BTN_STREAM_PLAY);
        becomes(dlg, kPlaying, 3000);
        playing = buttonStates(dlg);
        shoot(dlg, L"CDlgSoundStreamPlay");
        Sleep(400);
        pressButton(dlg, IDC_BTN_STREAM_STOP);
        stoppedToReady = becomes(dlg, kReady, 3000);
        workerEndedOnStop = threadEnds(dialog->m_pStreamThread, 3000);

        pressButton(dlg, IDC_BTN_STREAM_PLAY);
        becomes(dlg, kPlaying, 3000);
        endedToReady = becomes(dlg, kReady, 6000) && threadEnds(dialog->m_pStreamThread, 3000);
    });
    EXPECT_EQ(kIdle, idle);
    EXPECT_EQ(kIdle, afterCancel);
    EXPECT_TRUE(ready);
    EXPECT_EQ(kPlaying, playing);
    EXPECT_TRUE(stoppedToReady);
    EXPECT_TRUE(workerEndedOnStop) << "the worker did not end after Stop";
    EXPECT_TRUE(endedToReady) << "the end of the file did not bring the player back to Ready";
    EXPECT_EQ(nullptr, buffer.m_pDSBuffer);
    std::wstring upperCase = path;
    for (wchar_t& ch : upperCase)
        ch = static_cast<wchar_t>(towupper(ch));
    EXPECT_EQ(upperCase, std::wstring(dialog->m_strFilePath.GetString()));
}

TEST_F(StreamPlayDialog, DestroyedWhilePlayingStopsTheStreamAndItsWorker)
{
    bool playing = false;
    writeTone(6.0);
    runModeless([&](HWND dlg) {
        openAndPlay(dlg);
        playing = becomes(dlg, kPlaying, 3000);
    });
    ASSERT_TRUE(playing);
    EXPECT_NE(nullptr, buffer.m_pDSBuffer);
    dialog->DestroyWindow();
    delete dialog;
    dialog = nullptr;
    EXPECT_EQ(nullptr, buffer.m_pDSBuffer);
}

// The facade's player plays on the registered device; another facade's call replaces it mid-play.
TEST_F(StreamPlayDialog, FacadePlayerPlaysOnTheRegisteredDeviceAndIsReplacedByTheNextCall)
{
    writeTone(6.0);
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device);
    EXPECT_EQ(CSndDataRecordPlaytyx().playStreamty(), 1);
    CDlgSoundStreamPlay* player = CSndDataRecordPlaytyx::m_pPlayStream;
    bool playing = false;
    pumpMessagesWhile([&] {
        openAndPlay(player->m_hWnd);
        playing = becomes(player->m_hWnd, kPlaying, 3000) && holdsSoundBuffer(player);
    });
    EXPECT_TRUE(playing) << "the facade's player did not stream";
    const HWND first = player->m_hWnd;
    EXPECT_EQ(CSndDataRecordPlaytyx().playStreamty(), 1);
    EXPECT_FALSE(IsWindow(first));
    EXPECT_TRUE(IsWindowVisible(CSndDataRecordPlaytyx::m_pPlayStream->GetSafeHwnd()));
}
