#include "ChildProcess.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <thread>

namespace dsty_test
{
// A pipe end the child writes into, drained by a thread of ours so the child never blocks.
class ChildProcess::Drain
{
public:
    explicit Drain(HANDLE& childEnd)
    {
        SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
        CreatePipe(&m_read, &childEnd, &inherit, 0);
        SetHandleInformation(m_read, HANDLE_FLAG_INHERIT, 0);
    }
    ~Drain()
    {
        if (m_reader.joinable())
            m_reader.join();
        CloseHandle(m_read);
    }
    void start()
    {
        m_reader = std::thread([this] {
            char chunk[512];
            DWORD got = 0;
            while (ReadFile(m_read, chunk, sizeof chunk, &got, nullptr) && got > 0)
            {
                std::lock_guard<std::mutex> hold(m_lock);
                m_text.append(chunk, got);
            }
        });
    }
    std::string text()
    {
        std::lock_guard<std::mutex> hold(m_lock);
        return m_text;
    }
    void finish() { m_reader.join(); }

private:
    HANDLE m_read = nullptr;
    std::thread m_reader;
    std::mutex m_lock;
    std::string m_text;
};

namespace
{
std::string withoutCarriageReturns(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}
}

std::wstring folderOfThisProgram()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path);
    return folder.substr(0, folder.find_last_of(L"\\/") + 1);
}

ChildProcess::ChildProcess(const std::wstring& program, const std::wstring& arguments)
    : m_out(new Drain(m_childOut)), m_err(new Drain(m_childErr))
{
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = m_childOut;
    start.hStdError = m_childErr;
    // Under Wine a start now and then fails while other processes come and go; try again.
    for (int attempt = 0; attempt < 5 && !m_started; attempt++)
    {
        std::wstring line = L"\"" + folderOfThisProgram() + program + L"\" " + arguments;
        m_started = CreateProcessW(nullptr, &line[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &m_process);
        if (!m_started)
        {
            m_startError = GetLastError();
            Sleep(100);
        }
    }
    CloseHandle(m_childOut);
    CloseHandle(m_childErr);
    m_out->start();
    m_err->start();
}

ChildProcess::~ChildProcess()
{
    if (!m_started)
        return;
    if (WaitForSingleObject(m_process.hProcess, 0) == WAIT_TIMEOUT)
        TerminateProcess(m_process.hProcess, 99);
    CloseHandle(m_process.hThread);
    CloseHandle(m_process.hProcess);
}

bool ChildProcess::awaitOutput(const std::string& text, DWORD timeoutMs)
{
    for (DWORD waited = 0; waited < timeoutMs; waited += 20, Sleep(20))
        if (m_out->text().find(text) != std::string::npos)
            return true;
    return false;
}

Outcome ChildProcess::finish(DWORD timeoutMs)
{
    Outcome outcome{9999, "", ""};
    if (!m_started)
    {
        outcome.err = "could not start: error " + std::to_string(m_startError);
        return outcome;
    }
    if (WaitForSingleObject(m_process.hProcess, timeoutMs) != WAIT_OBJECT_0)
        return outcome;
    GetExitCodeProcess(m_process.hProcess, &outcome.status);
    m_out->finish();
    m_err->finish();
    outcome.out = withoutCarriageReturns(m_out->text());
    outcome.err = withoutCarriageReturns(m_err->text());
    return outcome;
}
}
