#include "DstyHost.h"

#include <afxwin.h>

namespace
{
thread_local std::string t_lastError;

// The answer that changes nothing, for each kind of box.
int safeAnswer(UINT nType)
{
    switch (nType & MB_TYPEMASK)
    {
    case MB_YESNOCANCEL:
    case MB_OKCANCEL:
    case MB_RETRYCANCEL:
        return IDCANCEL;
    case MB_YESNO:
        return IDNO;
    default:
        return IDOK;
    }
}

int CALLBACK routeMessageBox(LPCTSTR lpszText, UINT nType, UINT)
{
    return CDstyHost::instance().answerMessageBox(lpszText, nType);
}
}

std::string utf8Of(const wchar_t* text)
{
    if (text == nullptr || *text == L'\0')
        return std::string();
    const int bytes = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    std::string utf8(bytes > 0 ? bytes - 1 : 0, '\0');
    if (bytes > 1)
        WideCharToMultiByte(CP_UTF8, 0, text, -1, &utf8[0], bytes, nullptr, nullptr);
    return utf8;
}

std::wstring wideOf(const char* utf8)
{
    if (utf8 == nullptr || *utf8 == '\0')
        return std::wstring();
    const int chars = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, nullptr, 0);
    std::wstring wide(chars > 0 ? chars - 1 : 0, L'\0');
    if (chars > 1)
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8, -1, &wide[0], chars);
    return wide;
}

int checkHandle(const void* handle, DstyKind kind)
{
    if (CDstyHost::instance().isOpen(handle, kind))
        return DSTY_OK;
    return CDstyHost::instance().fail(handle == nullptr ? DSTY_E_ARGUMENT : DSTY_E_HANDLE);
}

CDstyHost& CDstyHost::instance()
{
    static CDstyHost* host = new CDstyHost; // never destroyed: calls may come while the process ends
    return *host;
}

CDstyHost::CDstyHost()
    : m_nWindowUsers(0),
      m_hWnd(NULL),
      m_hWindowThread(NULL),
      m_hWindowReady(CreateEventW(NULL, TRUE, FALSE, NULL)),
      m_messageFn(nullptr),
      m_pMessageUser(nullptr)
{
    InitializeCriticalSection(&m_lock);
}

// A hidden window of this layer's own thread, so that the window answers its messages
// whatever the host's threads do.
DWORD WINAPI CDstyHost::windowThread(LPVOID pParam)
{
    CDstyHost* pHost = static_cast<CDstyHost*>(pParam);
    pHost->m_hWnd = CreateWindowExW(0, L"STATIC", L"DirectSndty", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                    GetModuleHandleW(NULL), NULL);
    SetEvent(pHost->m_hWindowReady);
    if (pHost->m_hWnd == NULL)
        return 1;
    MSG msg;
    while (GetMessageW(&msg, NULL, 0, 0) > 0)
    {
        TranslateMessage(&msg);
        DispatchMessageW(&msg);
    }
    return 0;
}

HWND CDstyHost::attachWindow()
{
    if (m_nWindowUsers++ > 0)
        return m_hWnd;
    ResetEvent(m_hWindowReady);
    m_hWindowThread = CreateThread(NULL, 0, windowThread, this, 0, NULL);
    if (m_hWindowThread != NULL)
        WaitForSingleObject(m_hWindowReady, INFINITE);
    if (m_hWnd == NULL)
        detachWindow();
    return m_hWnd;
}

// The window goes with its thread, which is joined.
void CDstyHost::detachWindow()
{
    if (m_nWindowUsers == 0 || --m_nWindowUsers > 0)
        return;
    if (m_hWnd != NULL)
        PostMessageW(m_hWnd, WM_CLOSE, 0, 0);
    if (m_hWindowThread != NULL)
    {
        PostThreadMessageW(GetThreadId(m_hWindowThread), WM_QUIT, 0, 0);
        WaitForSingleObject(m_hWindowThread, INFINITE);
        CloseHandle(m_hWindowThread);
    }
    m_hWindowThread = NULL;
    m_hWnd = NULL;
}

void CDstyHost::open(const void* handle, DstyKind kind)
{
    m_open[handle] = kind;
}

void CDstyHost::close(const void* handle)
{
    m_open.erase(handle);
}

bool CDstyHost::isOpen(const void* handle, DstyKind kind) const
{
    const auto found = m_open.find(handle);
    return found != m_open.end() && found->second == kind;
}

void CDstyHost::setMessageHandler(dsty_message_fn fn, void* user)
{
    m_messageFn = fn;
    m_pMessageUser = user;
    AfxSetMessageBoxAnswerer(fn != nullptr || !m_expected.empty() ? routeMessageBox : NULL);
}

void CDstyHost::expectMessage(const std::wstring& text)
{
    m_expected = text;
    AfxSetMessageBoxAnswerer(m_messageFn != nullptr || !m_expected.empty() ? routeMessageBox : NULL);
}

// Without a handler the box is the one the library would have shown, captioned as MFC does.
int CDstyHost::answerMessageBox(LPCWSTR text, UINT type)
{
    if (text != nullptr && !m_expected.empty() && m_expected == text)
        return safeAnswer(type);
    const dsty_message_fn fn = m_messageFn;
    if (fn == nullptr)
        return MessageBoxW(NULL, text, AfxGetAppName(), type);
    fn(utf8Of(text).c_str(), m_pMessageUser);
    return safeAnswer(type);
}

int CDstyHost::fail(int code, const std::string& detail)
{
    t_lastError = detail.empty() ? dsty_error_text(code) : detail;
    return code;
}

const char* CDstyHost::lastError() const
{
    return t_lastError.c_str();
}
