// What the C interface costs: a tone loaded into a sound buffer, played, stopped and freed,
// through dsty.dll and through the C++ classes directly, in alternating rounds of the same
// run. Prints the median time of each and their ratio.

#include "DirectSndty.h"
#include "dsty.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{
const unsigned kRate = 44100;

double nowMs()
{
    LARGE_INTEGER now, hz;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&hz);
    return 1000.0 * static_cast<double>(now.QuadPart) / static_cast<double>(hz.QuadPart);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? 0.0 : values[values.size() / 2];
}

// The host's work for one stimulus through the classes: its container, its buffer, play, stop.
bool throughClasses(CDirectSndDevicety& device, const std::vector<short>& pcm, const tWAVEFORMATEX& wfx)
{
    CSndDatatyx data;
    CDirectSnd3DBuffty buffer;
    return data.setNewSndData(reinterpret_cast<const char*>(pcm.data()), static_cast<unsigned long>(pcm.size() * 2),
                              wfx) &&
           buffer.setSndData2DSndBuf2ndStd(&data, &device) && buffer.sendAudioStim() && buffer.stopAudioStim();
}

bool throughC(dsty_device* device, const std::vector<short>& pcm)
{
    const dsty_format format = {2, kRate, 16};
    dsty_sound* sound = nullptr;
    const bool done = dsty_sound_from_pcm(device, &format, pcm.data(), pcm.size() * 2, &sound) == DSTY_OK &&
                      dsty_sound_play(sound, 0) == DSTY_OK && dsty_sound_stop(sound) == DSTY_OK;
    dsty_sound_free(sound);
    return done;
}
}

// Usage: dsty_bench_clayer [ROUNDS]   (default 300)
int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 300;
    HWND window = CreateWindowW(L"STATIC", L"C layer bench", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                GetModuleHandleW(NULL), NULL);
    CDirectSndDevicety classes;
    dsty_device* c = nullptr;
    if (!classes.initDSndStimX(window, NULL, DSSCL_PRIORITY) || dsty_device_open(-1, &c) != DSTY_OK)
    {
        std::printf("the default device could not be opened\n");
        return 1;
    }
    std::vector<short> pcm(2 * kRate / 10); // a tenth of a second
    for (size_t i = 0; i < pcm.size() / 2; i++)
        pcm[2 * i] = pcm[2 * i + 1] = static_cast<short>(8000.0 * std::sin(i * 2.0 * 3.14159265 * 1000.0 / kRate));
    const tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
    std::vector<double> classTimes, cTimes;
    int failures = 0;
    for (int round = 0; round < rounds; round++)
    {
        const double start = nowMs();
        failures += throughClasses(classes, pcm, wfx) ? 0 : 1;
        const double middle = nowMs();
        failures += throughC(c, pcm) ? 0 : 1;
        classTimes.push_back(middle - start);
        cTimes.push_back(nowMs() - middle);
    }
    const double classMs = median(classTimes), cMs = median(cTimes);
    std::printf("load, play, stop and free a 100 ms tone, %d rounds each, %d failed:\n", rounds, failures);
    std::printf("  C++ classes %.3f ms, C interface %.3f ms (medians): ratio %.3f (target at most 1.02)\n", classMs, cMs,
                classMs > 0.0 ? cMs / classMs : 0.0);
    dsty_device_close(c);
    classes.releaseDSndty(&classes);
    DestroyWindow(window);
    return 0;
}
