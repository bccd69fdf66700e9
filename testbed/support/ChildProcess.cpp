#include "ChildProcess.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace dsty_test
{
namespace
{
// A fresh temporary file and a handle the child can inherit to write into it.
HANDLE scratchWriter(std::wstring& path)
{
    wchar_t folder[MAX_PATH], name[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"out", 0, name);
    path = name;
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    return CreateFileW(name, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, CREATE_ALWAYS,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::string textOf(const std::wstring& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
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
{
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = scratchWriter(m_outPath);
    start.hStdError = scratchWriter(m_errPath);
    std::wstring line = L"\"" + folderOfThisProgram() + program + L"\" " + arguments;
    // Under Wine a start now and then fails while other processes come and go; try again.
    for (int attempt = 0; attempt < 5 && !m_started; attempt++, Sleep(m_started ? 0 : 100))
        m_started = CreateProcessW(nullptr, &line[0], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &m_process);
    CloseHandle(start.hStdOutput);
    CloseHandle(start.hStdError);
}

ChildProcess::~ChildProcess()
{
    if (m_started)
    {
        TerminateProcess(m_process.hProcess, 99);  // no effect on a program that has ended
        WaitForSingleObject(m_process.hProcess, 5000);
        CloseHandle(m_process.hThread);
        CloseHandle(m_process.hProcess);
    }
    DeleteFileW(m_outPath.c_str());
    DeleteFileW(m_errPath.c_str());
}

bool ChildProcess::awaitOutput(const std::string& text, DWORD timeoutMs)
{
    for (DWORD waited = 0; waited < timeoutMs; waited += 20, Sleep(20))
        if (textOf(m_outPath).find(text) != std::string::npos)
            return true;
    return false;
}

Outcome ChildProcess::finish(DWORD timeoutMs)
{
    Outcome outcome{9999, "", m_started ? "" : "could not start"};
    if (!m_started || WaitForSingleObject(m_process.hProcess, timeoutMs) != WAIT_OBJECT_0)
        return outcome;
    GetExitCodeProcess(m_process.hProcess, &outcome.status);
    outcome.out = textOf(m_outPath);
    outcome.err = textOf(m_errPath);
    return outcome;
}
}
