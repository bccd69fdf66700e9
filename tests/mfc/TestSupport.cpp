#include "TestSupport.h"
#include <mutex>

namespace mfctest
{
TempFile::TempFile(const wchar_t* name)
{
    wchar_t folder[MAX_PATH];
    ::GetTempPathW(MAX_PATH, folder);
    m_path = std::wstring(folder) + L"mfc_tests_" + name;
    ::DeleteFileW(m_path.c_str());
}

TempFile::~TempFile()
{
    ::DeleteFileW(m_path.c_str());
}

std::string TempFile::bytes() const
{
    std::string content;
    HANDLE file = ::CreateFileW(m_path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, NULL,
                                OPEN_EXISTING, 0, NULL);
    if (file == INVALID_HANDLE_VALUE)
        return content;
    char chunk[4096];
    DWORD got = 0;
    while (::ReadFile(file, chunk, sizeof(chunk), &got, NULL) && got > 0)
        content.append(chunk, got);
    ::CloseHandle(file);
    return content;
}

void TempFile::write(const std::string& bytes) const
{
    HANDLE file = ::CreateFileW(m_path.c_str(), GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, 0, NULL);
    DWORD written = 0;
    ::WriteFile(file, bytes.data(), (DWORD)bytes.size(), &written, NULL);
    ::CloseHandle(file);
}

namespace
{
std::mutex g_boxesLock;
std::vector<AnsweredBox> g_boxes;

int CALLBACK recordBox(LPCTSTR text, UINT type, UINT helpId)
{
    std::lock_guard<std::mutex> lock(g_boxesLock);
    g_boxes.push_back({text, type, helpId});
    return IDOK;
}
} // namespace

RecordingAnswerer::RecordingAnswerer()
{
    std::lock_guard<std::mutex> lock(g_boxesLock);
    g_boxes.clear();
    m_previous = AfxSetMessageBoxAnswerer(recordBox);
}

RecordingAnswerer::~RecordingAnswerer()
{
    AfxSetMessageBoxAnswerer(m_previous);
}

std::vector<AnsweredBox> RecordingAnswerer::boxes() const
{
    std::lock_guard<std::mutex> lock(g_boxesLock);
    return g_boxes;
}

size_t RecordingAnswerer::count() const
{
    std::lock_guard<std::mutex> lock(g_boxesLock);
    return g_boxes.size();
}

bool waitUntil(const std::function<bool()>& condition, int timeoutMs)
{
    for (int waited = 0; waited < timeoutMs; waited += 10)
    {
        if (condition())
            return true;
        ::Sleep(10);
    }
    return condition();
}

WindowDriver::WindowDriver(const wchar_t* caption, std::function<void(HWND)> script)
    : m_thread([caption = std::wstring(caption), script] {
          HWND window = NULL;
          // A dialog is shown only once WM_INITDIALOG has filled it.
          auto shown = [&] {
              window = ::FindWindowW(NULL, caption.c_str());
              return window != NULL && ::IsWindowVisible(window);
          };
          if (!waitUntil(shown))
              return;
          script(window);
          if (::IsWindow(window))
              ::PostMessageW(window, WM_COMMAND, MAKEWPARAM(IDCANCEL, BN_CLICKED), 0);
      })
{
}

WindowDriver::~WindowDriver()
{
    m_thread.join();
}

void setItemText(HWND dialog, int id, const wchar_t* text)
{
    ::SendMessageW(::GetDlgItem(dialog, id), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text));
}

std::wstring itemText(HWND dialog, int id)
{
    wchar_t text[256] = L"";
    ::SendMessageW(::GetDlgItem(dialog, id), WM_GETTEXT, 256, reinterpret_cast<LPARAM>(text));
    return text;
}

LRESULT sendItem(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam)
{
    return ::SendMessageW(::GetDlgItem(dialog, id), message, wParam, lParam);
}

void clickButton(HWND dialog, int id)
{
    postNotification(dialog, id, BN_CLICKED);
}

void postNotification(HWND dialog, int id, WORD code)
{
    ::PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, code), reinterpret_cast<LPARAM>(::GetDlgItem(dialog, id)));
}

bool waitClosed(HWND window)
{
    return waitUntil([window] { return !::IsWindow(window); });
}
} // namespace mfctest
