#pragma once
// What the C interface keeps for the whole process, as a C interface with a process-wide
// message handler must: one lock that serialises every call into the library's classes,
// which expect the one thread of a window program; the window DirectSound's cooperative
// level is set for, owned by a thread of this layer that answers its messages while any
// device is open; the handles that are open, so that a freed or foreign handle is refused
// before it is touched; the message handler; and each thread's last error.

#include <windows.h>

#include <map>
#include <string>

#include "dsty.h"

enum class DstyKind
{
    Device,
    Sound,
    Stream,
    Recording,
    Schedule
};

class CDstyHost
{
public:
    static CDstyHost& instance();

    CRITICAL_SECTION& lock() { return m_lock; }

    // The window for the cooperative level; made with the first device, gone with the last.
    HWND attachWindow();
    void detachWindow();
    HWND window() const { return m_hWnd; }

    void open(const void* handle, DstyKind kind);
    void close(const void* handle);
    bool isOpen(const void* handle, DstyKind kind) const;

    void setMessageHandler(dsty_message_fn fn, void* user);
    // What a box the library shows becomes: the handler's, a box of its own when no handler is
    // set, or nothing for the one text expected while a call is quiet.
    int answerMessageBox(LPCWSTR text, UINT type);
    // While set, `text` is expected from the library and shown to no one ("": none).
    void expectMessage(const std::wstring& text);

    // Keeps why a call of this thread failed and gives back its code.
    int fail(int code, const std::string& detail = std::string());
    const char* lastError() const;

private:
    CDstyHost();
    ~CDstyHost() = delete; // lives as long as the process
    static DWORD WINAPI windowThread(LPVOID pParam);

    CRITICAL_SECTION m_lock;
    std::map<const void*, DstyKind> m_open;
    int m_nWindowUsers;
    HWND m_hWnd;
    HANDLE m_hWindowThread;
    HANDLE m_hWindowReady;
    dsty_message_fn m_messageFn;
    void* m_pMessageUser;
    std::wstring m_expected;
};

// A call that expects a message of the library as part of its normal course.
class DstyQuietMessage
{
public:
    explicit DstyQuietMessage(const wchar_t* text) { CDstyHost::instance().expectMessage(text); }
    ~DstyQuietMessage() { CDstyHost::instance().expectMessage(std::wstring()); }
    DstyQuietMessage(const DstyQuietMessage&) = delete;
    DstyQuietMessage& operator=(const DstyQuietMessage&) = delete;
};

// Holds the C interface's lock for a scope.
class DstyCall
{
public:
    DstyCall() : m_lock(CDstyHost::instance().lock()) { EnterCriticalSection(&m_lock); }
    ~DstyCall() { LeaveCriticalSection(&m_lock); }
    DstyCall(const DstyCall&) = delete;
    DstyCall& operator=(const DstyCall&) = delete;

private:
    CRITICAL_SECTION& m_lock;
};

std::string utf8Of(const wchar_t* text);
std::wstring wideOf(const char* utf8);
// Checks that `handle` is open as `kind`, keeping DSTY_E_HANDLE as the thread's error if not.
int checkHandle(const void* handle, DstyKind kind);
