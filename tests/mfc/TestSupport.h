#pragma once
// Helpers of the MFC subset's tests: temporary files, a recording message-box answerer,
// and a driver that works a modal dialog from a second thread.

#include <afxwin.h>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace mfctest
{
// A file in the temporary folder, removed when the object goes.
class TempFile
{
public:
    explicit TempFile(const wchar_t* name);
    ~TempFile();
    const wchar_t* path() const { return m_path.c_str(); }
    std::string bytes() const;
    void write(const std::string& bytes) const;

private:
    std::wstring m_path;
};

// One message box that AfxMessageBox did not show.
struct AnsweredBox
{
    std::wstring text;
    UINT type;
    UINT helpId;
};

// Installs an answerer that records each box and answers IDOK; restores the previous one.
class RecordingAnswerer
{
public:
    RecordingAnswerer();
    ~RecordingAnswerer();
    std::vector<AnsweredBox> boxes() const;
    size_t count() const;

private:
    AFX_MSGBOX_ANSWERER m_previous;
};

// Waits up to timeoutMs for the condition, polling.
bool waitUntil(const std::function<bool()>& condition, int timeoutMs = 5000);

// Runs script on its own thread once a top-level window with this caption is shown, then
// cancels the window if the script left it open, so that a failing test cannot hang.
class WindowDriver
{
public:
    WindowDriver(const wchar_t* caption, std::function<void(HWND)> script);
    ~WindowDriver();

private:
    std::thread m_thread;
};

void setItemText(HWND dialog, int id, const wchar_t* text);
std::wstring itemText(HWND dialog, int id);
LRESULT sendItem(HWND dialog, int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
// Posts the click: a cross-thread BM_CLICK does not return under Wine.
void clickButton(HWND dialog, int id);
void postNotification(HWND dialog, int id, WORD code);
bool waitClosed(HWND window);
} // namespace mfctest
