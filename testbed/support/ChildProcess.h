#pragma once
// Runs a program beside the test program, as a user would from a console, and collects its
// exit status and its standard output and error (with CR LF turned into LF).

#include <windows.h>

#include <memory>
#include <string>

namespace dsty_test
{
struct Outcome
{
    DWORD status; // 9999 when the program did not start or did not end in time
    std::string out, err;
};

class ChildProcess
{
public:
    ChildProcess(const std::wstring& program, const std::wstring& arguments);
    ~ChildProcess(); // ends a program still running
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // True once standard output holds `text`.
    bool awaitOutput(const std::string& text, DWORD timeoutMs = 10000);
    Outcome finish(DWORD timeoutMs = 60000);

private:
    class Drain;
    HANDLE m_childOut = nullptr, m_childErr = nullptr;
    std::unique_ptr<Drain> m_out, m_err;
    PROCESS_INFORMATION m_process{};
    BOOL m_started = FALSE;
    DWORD m_startError = 0;
};

// The folder the running test program is in, with a trailing separator.
std::wstring folderOfThisProgram();
}
