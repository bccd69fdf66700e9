#include "BenchSupport.h"

#include <psapi.h>

#include <cstdio>

namespace dsty_bench
{
WAVEFORMATEX markedFormat()
{
    return {WAVE_FORMAT_PCM, 2, kRate, kRate * kFrameBytes, kFrameBytes, 16, 0};
}

void frameAt(unsigned long frame, int16_t* out)
{
    out[0] = static_cast<int16_t>(static_cast<long>(frame & 0x7FFF) - 16384);
    out[1] = static_cast<int16_t>(static_cast<long>((frame >> 6) & 0xFFFF) - 32768);
}

long positionOf(const int16_t* frame)
{
    const long fine = frame[0] + 16384;
    const long estimate = (static_cast<long>(frame[1]) + 32768) * 64 + 32;
    long position = estimate - ((estimate - fine) & 0x7FFF);
    if (estimate - position > 16384)
        position += 32768;
    return (position + kPositionSpan) % kPositionSpan;
}

double nowSeconds()
{
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

double threadCpuSeconds(HANDLE thread)
{
    FILETIME created, exited, kernel, user;
    GetThreadTimes(thread, &created, &exited, &kernel, &user);
    ULARGE_INTEGER k = {{kernel.dwLowDateTime, kernel.dwHighDateTime}};
    ULARGE_INTEGER u = {{user.dwLowDateTime, user.dwHighDateTime}};
    return static_cast<double>(k.QuadPart + u.QuadPart) * 1e-7;
}

double privateMegabytes()
{
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    // Wine leaves PrivateUsage at 0; the commit charge (PagefileUsage) is the same figure on Windows.
    const SIZE_T bytes = counters.PrivateUsage != 0 ? counters.PrivateUsage : counters.PagefileUsage;
    return static_cast<double>(bytes) / (1024.0 * 1024.0);
}

int CALLBACK printMessage(LPCTSTR lpszText, UINT, UINT)
{
    std::printf("  [library message] %ls\n", lpszText);
    return IDOK;
}
}
