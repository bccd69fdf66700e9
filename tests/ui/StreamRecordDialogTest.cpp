// The stream recorder, opened by the facade's recordStreamty as modal and as modeless
// dialog and worked by a second thread as a user would: defaults and button states, the
// file opened under its bare name with the tail after the last position in it, a second "Setup stream" closing the first file, and replacement mid-recording.

#include "UiTestSupport.h"

#include <cstdio>

using namespace dsty_test;

namespace
{
const wchar_t kCaption[] = L"Direct sound record stream";
const long kBytesPerSecond = 44100 * 4;

// Enabled states of "Setup stream", "Record", "Stop".
std::vector<bool> buttonStates(HWND dialog)
{
    return {isControlEnabled(dialog, IDC_BTN_STREAM_SETUP), isControlEnabled(dialog, IDC_BTN_STREAM_RECORD),
            isControlEnabled(dialog, IDC_BTN_STREAM_RECORD_STOP)};
}

const std::vector<bool> kFresh = {true, false, false};
const std::vector<bool> kSetUp = {true, true, false};
const std::vector<bool> kRecording = {false, false, true};
const std::vector<bool> kStopped = {true, true, true};

bool becomes(HWND dialog, const std::vector<bool>& states)
{
    for (int waited = 0; buttonStates(dialog) != states && waited < 3000; waited += 20)
        Sleep(20);
    return buttonStates(dialog) == states;
}

// Data bytes of a wave file whose header (sizes at 4 and 40) agrees with its length; -1 if not.
long finishedDataBytes(const std::wstring& path)
{
    FILE* file = _wfopen(path.c_str(), L"rb");
    if (file == nullptr)
        return -1;
    uint32_t riff[11] = {};
    const bool header = fread(riff, 4, 11, file) == 11;
    fseek(file, 0, SEEK_END);
    const long length = ftell(file);
    fclose(file);
    const bool agrees = header && riff[1] == uint32_t(length - 8) && riff[10] + 44 + riff[10] % 2 == uint32_t(length);
    return agrees ? static_cast<long>(riff[10]) : -1;
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
        for (const wchar_t* name : {L"first.wav", L"second.wav"})
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
                    becomes(dialog, kSetUp));
        wchar_t current[MAX_PATH];
        GetCurrentDirectoryW(MAX_PATH, current);
        made.push_back(std::wstring(current) + L"\\" + name);
        return made.back();
    }

    std::wstring folder;
    std::vector<std::wstring> made;
    CSndDataRecordPlaytyx facade;
};

TEST_F(StreamRecordDialog, RecordsIntoTheBareFileNameAndStopLeavesStopEnabled)
{
    std::vector<std::wstring> shown;
    std::vector<std::vector<bool>> states;
    std::wstring file;
    const int result = runDialog(kCaption, [&](HWND dlg) {
        shown = {controlText(dlg, IDC_CMB_RECORD_CHANNEL), controlText(dlg, IDC_CMB_RECORD_SAMPLING_RATE),
                 controlText(dlg, IDC_CMB_RECORD_BITS_PER_SAMPLE)};
        states.push_back(buttonStates(dlg));
        file = setUp(dlg, L"first.wav");
        shown.push_back(controlText(dlg, IDC_EDIT_STREAM_FILE_NAME));
        pressButton(dlg, IDC_BTN_STREAM_RECORD);
        becomes(dlg, kRecording);
        states.push_back(buttonStates(dlg));
        shoot(dlg, L"CDlgSoundStreamRecord");
        Sleep(1300);
        pressButton(dlg, IDC_BTN_STREAM_RECORD_STOP);
        becomes(dlg, kStopped);
        states.push_back(buttonStates(dlg));
        pressButton(dlg, IDOK);
    }, [&] { return facade.recordStreamty(true); });

    EXPECT_EQ(result, 1);
    EXPECT_EQ(shown, (std::vector<std::wstring>{L"2", L"44100", L"16", L"first.wav"}));
    EXPECT_EQ(states, (std::vector<std::vector<bool>>{kFresh, kRecording, kStopped}));
    EXPECT_EQ(CSndDataRecordPlaytyx::m_pRecordStream->m_wfxStream.nBlockAlign, 4);
    const long data = finishedDataBytes(file);
    EXPECT_GT(data, kBytesPerSecond) << "the tail after the last position is missing";
    EXPECT_LE(data, 3 * kBytesPerSecond);
}

TEST_F(StreamRecordDialog, ASecondSetupStreamClosesTheFirstFileAndCancelGivesZero)
{
    bool firstClosed = false, secondClosed = true;
    const int result = runDialog(kCaption, [&](HWND dlg) {
        const std::wstring first = setUp(dlg, L"first.wav");
        const std::wstring second = setUp(dlg, L"second.wav");
        firstClosed = isClosed(first);
        secondClosed = isClosed(second);
        pressButton(dlg, IDCANCEL);
    }, [&] { return facade.recordStreamty(true); });

    EXPECT_EQ(result, 0);
    EXPECT_TRUE(firstClosed);
    EXPECT_FALSE(secondClosed) << "the second file is not open for writing";
}

// Another facade's call replaces the recorder mid-recording; the file it leaves is whole.
TEST_F(StreamRecordDialog, AModelessRecorderReplacedWhileRecordingLeavesAValidFile)
{
    EXPECT_EQ(facade.recordStreamty(false), 1);
    HWND first = nullptr;
    std::wstring file;
    pumpMessagesWhile([&] {
        first = waitForWindow(kCaption);
        file = setUp(first, L"first.wav");
        pressButton(first, IDC_BTN_STREAM_RECORD);
        EXPECT_TRUE(becomes(first, kRecording));
        Sleep(800);
    });

    EXPECT_EQ(CSndDataRecordPlaytyx().recordStreamty(false), 1);
    EXPECT_FALSE(IsWindow(first));
    EXPECT_EQ(buttonStates(CSndDataRecordPlaytyx::m_pRecordStream->GetSafeHwnd()), kFresh);
    EXPECT_GT(finishedDataBytes(file), 0);
}
