// The stream recorder, opened by the facade's recordStreamty as a modeless dialog and
// worked by a second thread as a user would: defaults and button states, the
// file opened under its bare name with the tail after the last position in it, a second
// "Setup stream" closing the first file, and replacement mid-recording.

#include "UiTestSupport.h"
#include "SndWaveWriteStreamty.h"

#include <cstdio>
#include <cstring>

using namespace dsty_test;

namespace
{
const wchar_t kCaption[] = L"Direct sound record stream";
const long kBytesPerSecond = 44100 * 4;

// "Setup stream", "Record" and "Stop", and which of them are enabled when.
const auto kButtons = {IDC_BTN_STREAM_SETUP, IDC_BTN_STREAM_RECORD, IDC_BTN_STREAM_RECORD_STOP};
const char kFresh[] = "100", kSetUp[] = "110", kRecording[] = "001", kStopped[] = "111";

// Data bytes of a wave file whose 80-byte header, its JUNK chunk keeping room for an RF64
// header, agrees with its length (sizes at 4 and 76); -1 if not.
long finishedDataBytes(const std::wstring& path)
{
    FILE* file = _wfopen(path.c_str(), L"rb");
    if (file == nullptr)
        return -1;
    uint32_t riff[20] = {};
    const bool header = fread(riff, 4, 20, file) == 20 && memcmp(&riff[3], "JUNK", 4) == 0;
    fseek(file, 0, SEEK_END);
    const long length = ftell(file);
    fclose(file);
    const bool agrees = header && riff[1] == uint32_t(length - 8) && riff[19] + 80 + riff[19] % 2 == uint32_t(length);
    return agrees ? static_cast<long>(riff[19]) : -1;
}

// No one holds the file open any more.
bool isClosed(const std::wstring& path)
{
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    CloseHandle(file);
    return file != INVALID_HANDLE_VALUE;
}
}

// Files are chosen in a folder of their own, and made under their bare names in whatever
// folder is current once the file dialog has closed.
class StreamRecordDialog : public DialogTest
{
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        wchar_t temp[MAX_PATH];
        GetTempPathW(MAX_PATH, temp);
        folder = std::wstring(temp) + L"stream-record-ui\\";
        CreateDirectoryW(folder.c_str(), nullptr);
        for (const wchar_t* name : {L"first.wav", L"second.wav", L"third.wav"})
            DeleteFileW((folder + name).c_str()); // or the file dialog would ask about it
    }
    void TearDown() override
    {
        delete CSndDataRecordPlaytyx::m_pRecordStream;
        CSndDataRecordPlaytyx::m_pRecordStream = nullptr;
        for (const std::wstring& file : made)
            DeleteFileW(file.c_str());
        DialogTest::TearDown();
    }

    // Presses "Setup stream", chooses `name` and gives the path of the file it makes.
    std::wstring setUp(HWND dialog, const wchar_t* name)
    {
        EXPECT_TRUE(pressButton(dialog, IDC_BTN_STREAM_SETUP) && answerFileDialog(L"Save As", folder + name) &&
                    becomes(dialog, kButtons, kSetUp));
        wchar_t current[MAX_PATH];
        GetCurrentDirectoryW(MAX_PATH, current);
        made.push_back(std::wstring(current) + L"\\" + name);
        return made.back();
    }

    std::wstring folder;
    std::vector<std::wstring> made;
    CSndDataRecordPlaytyx facade;
};

// Opened modeless by the facade, on the defaults: a second "Setup stream" closes the first
// file and the recording goes into the second, the tail after the last position included;
// Stop leaves Stop enabled. Another facade's call replaces the recorder mid-recording, and the
// file it leaves is whole.
TEST_F(StreamRecordDialog, RecordsIntoTheLastFileSetUpAndAReplacementMidRecordingLeavesItWhole)
{
    ASSERT_EQ(facade.recordStreamty(false), 1);
    HWND dlg = nullptr;
    std::wstring recorded, replaced;
    pumpMessagesWhile([&] {
        dlg = waitForWindow(kCaption);
        EXPECT_EQ(texts(dlg, {IDC_CMB_RECORD_CHANNEL, IDC_CMB_RECORD_SAMPLING_RATE, IDC_CMB_RECORD_BITS_PER_SAMPLE}),
                  (std::vector<std::wstring>{L"2", L"44100", L"16"}));
        EXPECT_EQ(enabled(dlg, kButtons), kFresh);
        const std::wstring first = setUp(dlg, L"first.wav");
        recorded = setUp(dlg, L"second.wav");
        EXPECT_TRUE(isClosed(first)) << "the first file is still open";
        EXPECT_EQ(controlText(dlg, IDC_EDIT_STREAM_FILE_NAME), L"second.wav");
        pressButton(dlg, IDC_BTN_STREAM_RECORD);
        EXPECT_TRUE(becomes(dlg, kButtons, kRecording));
        shoot(dlg, L"CDlgSoundStreamRecord");
        Sleep(1300);
        pressButton(dlg, IDC_BTN_STREAM_RECORD_STOP);
        EXPECT_TRUE(becomes(dlg, kButtons, kStopped));
        replaced = setUp(dlg, L"third.wav");
        pressButton(dlg, IDC_BTN_STREAM_RECORD);
        EXPECT_TRUE(becomes(dlg, kButtons, kRecording));
        Sleep(800);
    });
    const long data = finishedDataBytes(recorded);
    EXPECT_GT(data, kBytesPerSecond) << "the tail after the last position is missing";
    EXPECT_LE(data, 3 * kBytesPerSecond);

    EXPECT_EQ(CSndDataRecordPlaytyx().recordStreamty(false), 1);
    EXPECT_FALSE(IsWindow(dlg));
    EXPECT_EQ(enabled(CSndDataRecordPlaytyx::m_pRecordStream->GetSafeHwnd(), kButtons), kFresh);
    EXPECT_GT(finishedDataBytes(replaced), 0);
}

// A file that refuses the recording's first write (here closed under the dialog) ends the
// recording by itself: the user is told, and the dialog is as after Stop.
TEST_F(StreamRecordDialog, AFileThatRefusesAWriteStopsTheRecordingAndSaysSo)
{
    ASSERT_EQ(facade.recordStreamty(false), 1);
    const size_t boxesBefore = answeredBoxes().size();
    pumpMessagesWhile([&] {
        HWND dlg = waitForWindow(kCaption);
        setUp(dlg, L"first.wav");
        CSndDataRecordPlaytyx::m_pRecordStream->m_pWaveWriter->Close();
        pressButton(dlg, IDC_BTN_STREAM_RECORD);
        EXPECT_TRUE(becomes(dlg, kButtons, kStopped)) << "still recording after the file refused a write";
    });
    EXPECT_EQ(answeredBoxes(boxesBefore),
              (std::vector<std::wstring>{L"The wave file cannot be written: the recording has stopped"}));
    EXPECT_EQ(CSndDataRecordPlaytyx::m_pRecordStream->m_dsndCaptureStream.getStreamWriteResult(),
              WAVEFILE_ERR_NOT_OPEN);
}
