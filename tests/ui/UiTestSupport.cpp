#include "UiTestSupport.h"

#include "WindowShot.h"

#include <dlgs.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <set>
#include <thread>

using namespace dsty_test;

namespace
{
// The dialog's thread answers boxes while the driving thread reads them.
std::mutex answeredLock;
std::vector<std::wstring> answeredTexts;
}

int DialogTest::boxAnswer = IDOK;

int CALLBACK DialogTest::answerBox(LPCTSTR text, UINT, UINT)
{
    std::lock_guard<std::mutex> hold(answeredLock);
    answeredTexts.emplace_back(text);
    return boxAnswer;
}

void DialogTest::SetUp()
{
    answeredTexts.clear();
    boxAnswer = IDOK;
    AfxSetMessageBoxAnswerer(answerBox);
    // DirectSound wants a top-level window for the cooperative level; it is never shown.
    host = CreateWindowW(L"STATIC", L"DirectSndty dialog test host", WS_OVERLAPPED, 0, 0, 100, 100,
                         nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
}

void DialogTest::TearDown()
{
    buffer.release3DBuffers();
    AfxSetMessageBoxAnswerer(nullptr);
    DestroyWindow(host);
}

void DialogTest::openDeviceWithTone(double seconds)
{
    ASSERT_EQ(device.initDSndStimX(host, nullptr, DSSCL_PRIORITY), 1);
    const std::vector<int16_t> tone = sineTone(1000.0, -6.0, seconds);
    ASSERT_EQ(data.setNewSndData(reinterpret_cast<const char*>(tone.data()),
                                 static_cast<unsigned long>(tone.size() * 2), pcmFormat(44100, 1)),
              1);
}

int DialogTest::runDialog(const std::wstring& caption, const std::function<void(HWND)>& drive,
                          const std::function<int()>& open)
{
    std::thread driver([&] {
        HWND dialog = waitForWindow(caption);
        if (!dialog)
            return ADD_FAILURE() << "no dialog captioned \"" << std::string(caption.begin(), caption.end()) << "\"";
        drive(dialog);
        if (!waitUntilGone(dialog))
        {
            ADD_FAILURE() << "the dialog stayed open";
            pressButton(dialog, IDCANCEL);
        }
    });
    const int result = open();
    driver.join();
    return result;
}

void DialogTest::pumpMessagesWhile(const std::function<void()>& work)
{
    std::atomic<bool> done{false};
    std::thread worker([&] {
        work();
        done = true;
    });
    for (MSG msg; !done; MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT))
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&msg);
    worker.join();
}

bool DialogTest::answerFileDialog(const std::wstring& caption, const std::wstring& file)
{
    HWND dialog = waitForWindow(caption);
    if (!dialog)
        return false;
    const int nameControl = GetDlgItem(dialog, cmb13) ? cmb13 : edt1;
    return setText(dialog, nameControl, file) && pressButton(dialog, IDOK) && waitUntilGone(dialog);
}

void DialogTest::shoot(HWND dialog, const std::wstring& name)
{
    static std::set<std::wstring> taken;  // one picture of each dialog will do
    if (!taken.insert(name).second)
        return;
    Sleep(300);
    const bool wanted = GetEnvironmentVariableW(L"DSTY_SCREENSHOT_DIR", nullptr, 0) > 0;
    EXPECT_TRUE(!wanted || !saveWindowShot(dialog, name).empty()) << "no picture of the dialog";
}

std::vector<std::wstring> DialogTest::texts(HWND dialog, std::initializer_list<int> ids)
{
    std::vector<std::wstring> found;
    for (int id : ids)
        found.push_back(controlText(dialog, id));
    return found;
}

std::string DialogTest::enabled(HWND dialog, std::initializer_list<int> ids)
{
    std::string states;
    for (int id : ids)
        states += isControlEnabled(dialog, id) ? '1' : '0';
    return states;
}

bool DialogTest::becomes(HWND dialog, std::initializer_list<int> ids, const std::string& states, DWORD timeoutMs)
{
    for (DWORD waited = 0; enabled(dialog, ids) != states && waited < timeoutMs; waited += 20)
        Sleep(20);
    return enabled(dialog, ids) == states;
}

std::vector<int> DialogTest::checkedRadios(HWND dialog, int first, int last)
{
    std::vector<int> checked;
    for (int id = first; id <= last; ++id)
        if (isChecked(dialog, id))
            checked.push_back(id);
    return checked;
}

std::vector<unsigned long> DialogTest::fieldsOf(const WAVEFORMATEX& format)
{
    return {format.wFormatTag, format.nChannels, format.nSamplesPerSec, format.wBitsPerSample, format.nBlockAlign,
            format.nAvgBytesPerSec};
}

std::wstring DialogTest::withNewlines(std::wstring text)
{
    for (size_t at; (at = text.find(L"\r\n")) != std::wstring::npos;)
        text.erase(at, 1);
    std::replace(text.begin(), text.end(), L'\r', L'\n');
    return text;
}

std::vector<std::wstring> DialogTest::answeredBoxes(size_t from)
{
    std::lock_guard<std::mutex> hold(answeredLock);
    return std::vector<std::wstring>(answeredTexts.begin() + std::min(from, answeredTexts.size()), answeredTexts.end());
}

std::wstring DialogTest::refusalOf(HWND dialog, int button)
{
    const size_t seen = answeredBoxes().size();
    pressButton(dialog, button);
    for (int waited = 0; answeredBoxes(seen).empty() && waited < 1000; waited += 20)
        Sleep(20);
    const std::vector<std::wstring> boxes = answeredBoxes(seen);
    return boxes.empty() ? std::wstring() : boxes.front();
}
