#include "Console.h"

#include <afxwin.h>

#include <cstdarg>
#include <cstdio>

std::string toUtf8(const std::wstring& text)
{
    if (text.empty())
        return std::string();
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), NULL, 0, NULL, NULL);
    std::string out(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), &out[0], length, NULL, NULL);
    return out;
}

void say(const char* format, ...)
{
    va_list args;
    va_start(args, format);
    std::vfprintf(stdout, format, args);
    va_end(args);
    std::fputc('\n', stdout);
    // A reader on a pipe (a test, a script) sees each line as it happens.
    std::fflush(stdout);
}

int failUsage(const std::string& command, const std::string& reason)
{
    std::fprintf(stderr, "stimctl %s: %s (see stimctl %s --help)\n", command.c_str(), reason.c_str(),
                 command.c_str());
    return kExitUsage;
}

int failRun(const std::string& command, const std::string& reason)
{
    std::fprintf(stderr, "stimctl %s: %s\n", command.c_str(), reason.c_str());
    return kExitFailed;
}

namespace
{
// The answer that lets nothing happen that the user did not ask for.
int passiveAnswer(UINT nType)
{
    switch (nType & MB_TYPEMASK)
    {
    case MB_YESNO:
        return IDNO;
    case MB_OKCANCEL:
    case MB_YESNOCANCEL:
    case MB_RETRYCANCEL:
        return IDCANCEL;
    default:
        return IDOK;
    }
}

const wchar_t* g_quietText = NULL;

int CALLBACK printMessage(LPCTSTR lpszText, UINT nType, UINT /*nIDHelp*/)
{
    std::wstring text(lpszText != NULL ? lpszText : L"");
    if (g_quietText != NULL && text == g_quietText)
        return passiveAnswer(nType);
    for (wchar_t& c : text)
        if (c == L'\r' || c == L'\n')
            c = L' ';
    std::fprintf(stderr, "stimctl: %s\n", toUtf8(text).c_str());
    std::fflush(stderr);
    return passiveAnswer(nType);
}
}

void printLibraryMessages()
{
    AfxSetMessageBoxAnswerer(printMessage);
}

QuietMessage::QuietMessage(const wchar_t* text)
{
    g_quietText = text;
}

QuietMessage::~QuietMessage()
{
    g_quietText = NULL;
}

double secondsNow()
{
    static LARGE_INTEGER frequency = {};
    static LARGE_INTEGER start = {};
    if (frequency.QuadPart == 0)
    {
        QueryPerformanceFrequency(&frequency);
        QueryPerformanceCounter(&start);
    }
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return static_cast<double>(now.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

ProgressLine::ProgressLine(const char* verb, double totalSeconds)
    : m_verb(verb),
      m_total(totalSeconds),
      m_shown(0)
{
}

void ProgressLine::show(double elapsedSeconds)
{
    if (m_total <= 1.0)
        return;
    const long whole = static_cast<long>(elapsedSeconds < m_total ? elapsedSeconds : m_total);
    if (whole <= m_shown)
        return;
    m_shown = whole;
    say("%s %ld/%g s", m_verb.c_str(), whole, m_total);
}

void waitShowingProgress(const char* verb, double seconds)
{
    ProgressLine progress(verb, seconds);
    const double start = secondsNow();
    for (double elapsed = 0.0; elapsed < seconds; elapsed = secondsNow() - start)
    {
        const double left = seconds - elapsed;
        Sleep(static_cast<DWORD>(1000.0 * (left < 0.05 ? left : 0.05)) + 1);
        progress.show(secondsNow() - start);
    }
}
