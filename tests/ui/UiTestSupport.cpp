#include "UiTestSupport.h"

#include <dlgs.h>

#include <atomic>
#include <thread>

using namespace dsty_test;

namespace
{
std::vector<std::wstring> answeredTexts;

int CALLBACK answerOk(LPCTSTR text, UINT, UINT)
{
    answeredTexts.emplace_back(text);
    return IDOK;
}
}

void DialogTest::SetUp()
{
    answeredTexts.clear();
    AfxSetMessageBoxAnswerer(answerOk);
    // DirectSound wants a top-level window for the cooperative level; it is never shown.
    host = CreateWindowW(L"STATIC", L"DirectSndty dialog test host", WS_OVERLAPPED, 0, 0, 100, 100,
                         nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(host, nullptr);
}

void DialogTest::TearDown()
{
    AfxSetMessageBoxAnswerer(nullptr);
    if (host)
        DestroyWindow(host);
}

void DialogTest::showRealMessageBoxes()
{
    AfxSetMessageBoxAnswerer(nullptr);
}

const std::vector<std::wstring>& DialogTest::answeredBoxes()
{
    return answeredTexts;
}

int DialogTest::runDialog(const std::wstring& caption, const std::function<void(HWND)>& drive,
                          const std::function<int()>& open)
{
    std::thread driver([&] {
        HWND dialog = waitForWindow(caption);
        if (!dialog)
        {
            ADD_FAILURE() << "no dialog captioned \"" << std::string(caption.begin(), caption.end()) << "\"";
            return;
        }
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
    while (!done)
    {
        MSG msg;
        while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE))
        {
            TranslateMessage(&msg);
            DispatchMessageW(&msg);
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    }
    worker.join();
}

bool DialogTest::answerFileDialog(const std::wstring& caption, const std::wstring& file)
{
    HWND dialog = waitForWindow(caption);
    if (!dialog)
        return false;
    if (file.empty())
        return pressButton(dialog, IDCANCEL) && waitUntilGone(dialog);
    const int nameControl = GetDlgItem(dialog, cmb13) ? cmb13 : edt1;
    return setText(dialog, nameControl, file) && pressButton(dialog, IDOK) && waitUntilGone(dialog);
}

void DialogTest::shoot(HWND dialog, const std::wstring& name)
{
    Sleep(300);
    const bool wanted = GetEnvironmentVariableW(L"DSTY_SCREENSHOT_DIR", nullptr, 0) > 0;
    EXPECT_TRUE(!wanted || !saveWindowShot(dialog, name).empty()) << "no picture of the dialog";
}

void DialogTest::chooseRadio(HWND dialog, int first, int last, int id)
{
    for (int other = first; other <= last; ++other)
        setCheck(dialog, other, other == id);
}

std::vector<int> DialogTest::checkedRadios(HWND dialog, int first, int last)
{
    std::vector<int> checked;
    for (int id = first; id <= last; ++id)
        if (isChecked(dialog, id))
            checked.push_back(id);
    return checked;
}
