#pragma once
// What stimctl says and how it ends: normal output and progress on stdout, one-line
// reasons and the library's messages on stderr, and the exit codes.

#include <string>

enum ExitCode
{
    kExitOk = 0,
    kExitFailed = 1, // the device or a file failed
    kExitUsage = 2   // the arguments were wrong
};

std::string toUtf8(const std::wstring& text);

// One line on stdout, printf-style; the text is ASCII or UTF-8.
void say(const char* format, ...);

// "stimctl COMMAND: REASON (see stimctl COMMAND --help)" on stderr; gives kExitUsage.
int failUsage(const std::string& command, const std::string& reason);
// "stimctl COMMAND: REASON" on stderr; gives kExitFailed.
int failRun(const std::string& command, const std::string& reason);

// Library message boxes become "stimctl: TEXT" lines on stderr and are answered with the
// choice that changes nothing.
void printLibraryMessages();

// While one exists, library messages with exactly this text are expected and not printed.
class QuietMessage
{
public:
    explicit QuietMessage(const wchar_t* text);
    ~QuietMessage();
    QuietMessage(const QuietMessage&) = delete;
    QuietMessage& operator=(const QuietMessage&) = delete;
};

// Seconds since the first call; the clock every command times itself with.
double secondsNow();

// "VERB n/N s" once per whole second, for runs longer than a second.
class ProgressLine
{
public:
    ProgressLine(const char* verb, double totalSeconds);
    void show(double elapsedSeconds);

private:
    std::string m_verb;
    double m_total;
    long m_shown;
};

// Sleeps for `seconds` in small steps, showing the progress line.
void waitShowingProgress(const char* verb, double seconds);
