#pragma once
// Runs a program beside the test program, as a user would from a console, and collects its
// exit status and its standard output and error (with CR LF turned into LF).

#include <windows.h>

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
    // The child writes into files, so it never waits for a reader.
    std::wstring m_outPath, m_errPath;
    PROCESS_INFORMATION m_process{};
    BOOL m_started = FALSE;
};

// The folder the running test program is in, with a trailing separator.
std::wstring folderOfThisProgram();
}
