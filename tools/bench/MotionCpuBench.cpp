// What a moving 3D stimulus costs the processor. Plays a 5-second tone as a moving source
// (its motion thread recomputes positions every few milliseconds) and as a static one,
// and prints the process's processor time over each play. Wine mixes DirectSound inside
// the process, so the static play measures the mixer and the difference is the motion's.
// Usage: dsty_bench_motion [rounds]   (default 2; static and moving alternate)

#include "DirectSndty.h"
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{
const unsigned kRate = 44100;
const double kSeconds = 5.0;

struct Cost
{
    double cpuSeconds;
    double wallSeconds;
    double cores() const { return cpuSeconds / wallSeconds; }
};

int CALLBACK printMessage(LPCTSTR lpszText, UINT /*nType*/, UINT /*nIDHelp*/)
{
    std::printf("  [library message] %ls\n", lpszText);
    return IDOK;
}

double processCpuSeconds()
{
    FILETIME created, exited, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user);
    ULARGE_INTEGER k = {{kernel.dwLowDateTime, kernel.dwHighDateTime}};
    ULARGE_INTEGER u = {{user.dwLowDateTime, user.dwHighDateTime}};
    return static_cast<double>(k.QuadPart + u.QuadPart) * 1e-7;  // 100 ns units
}

double wallSeconds()
{
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// A mono 1 kHz tone at -12 dBFS, 16-bit: 3D buffers take mono only.
int loadTone(CSndDatatyx& data)
{
    std::vector<short> pcm(static_cast<size_t>(kSeconds * kRate));
    for (size_t i = 0; i < pcm.size(); i++)
        pcm[i] = static_cast<short>(8200.0 * std::sin(2.0 * 3.14159265358979 * 1000.0 * i / kRate));
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 1, kRate, 2 * kRate, 2, 16, 0};
    return data.setNewSndData(reinterpret_cast<const char*>(pcm.data()),
                              static_cast<unsigned long>(pcm.size() * sizeof(short)), wfx);
}

// Processor time over one whole play, from the start call until the buffer has stopped.
Cost measurePlay(CDirectSnd3DBuffty& buffer, bool moving)
{
    buffer.m_ds3dBuffer.vPosition = moving ? D3DVECTOR{-5.0f, 0.0f, 1.0f} : D3DVECTOR{2.0f, 0.0f, 0.0f};
    buffer.m_ds3dBuffer.vVelocity = moving ? D3DVECTOR{2.0f, 0.0f, 0.0f} : D3DVECTOR{0.0f, 0.0f, 0.0f};
    double cpuBefore = processCpuSeconds();
    double wallBefore = wallSeconds();
    int started = moving ? buffer.sendAudioStimDS3D() : buffer.sendAudStim3DSndStatic();
    if (!started)
        return Cost{0.0, 0.0};
    while (buffer.isDSndBufferPlaying() && wallSeconds() - wallBefore < kSeconds + 2.0)
        Sleep(20);
    return Cost{processCpuSeconds() - cpuBefore, wallSeconds() - wallBefore};
}

void printCost(int round, const char* kind, const Cost& cost)
{
    std::printf("  round %d %-6s: %.3f s processor over %.3f s = %.3f of one core\n", round, kind, cost.cpuSeconds,
                cost.wallSeconds, cost.cores());
}

int runRounds(CDirectSnd3DBuffty& buffer, int rounds)
{
    double staticCores = 0.0, movingCores = 0.0;
    for (int round = 1; round <= rounds; round++)
    {
        Cost still = measurePlay(buffer, false);
        Cost moving = measurePlay(buffer, true);
        if (still.wallSeconds == 0.0 || moving.wallSeconds == 0.0)
        {
            std::printf("a play could not be started\n");
            return 1;
        }
        printCost(round, "static", still);
        printCost(round, "moving", moving);
        staticCores += still.cores() / rounds;
        movingCores += moving.cores() / rounds;
    }
    std::printf("mean over %d rounds: static %.3f, moving %.3f of one core; the motion costs %.3f of one core\n",
                rounds, staticCores, movingCores, movingCores - staticCores);
    return 0;
}
}

int main(int argc, char** argv)
{
    int rounds = argc > 1 ? std::atoi(argv[1]) : 2;
    if (rounds < 1)
        rounds = 1;
    AfxSetMessageBoxAnswerer(printMessage);
    HWND hWnd = CreateWindowExW(0, L"STATIC", L"DirectSndty motion benchmark", WS_OVERLAPPED, 0, 0, 10, 10, NULL,
                                NULL, GetModuleHandleW(NULL), NULL);
    CDirectSndDevicety device;
    if (!device.initDSndStimX(hWnd, NULL, DSSCL_PRIORITY))
    {
        std::printf("the default device could not be brought up\n");
        return 1;
    }
    CSndDatatyx data;
    CDirectSnd3DBuffty buffer;
    if (!loadTone(data) || !buffer.setSndData2DS3Dbuff2(&data, &device))
    {
        std::printf("the 3D stimulus could not be loaded\n");
        return 1;
    }
    std::printf("motion benchmark: %.0f-second 3D stimulus, static and moving, %d round(s)\n", kSeconds, rounds);
    int result = runRounds(buffer, rounds);
    buffer.release3DBuffers();
    device.releaseDSndty(&device);
    DestroyWindow(hWnd);
    return result;
}
