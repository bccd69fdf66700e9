// How exactly stimuli land, heard back through the loopback: a train of 100 bursts at random
// spacings of 150 to 350 ms placed by the scheduler at performance-counter times, against the
// same train started by sendAudioStim at those times, in the same run. Prints the intervals
// that are exact to the frame, the SD of the interval error, the SD of the onset error
// against the counter (after removing the mean, the one latency a user measures), how far
// ahead of the play cursor the earliest schedulable frame stays, and the scheduler's
// processor time.

#include "BurstTrain.h"
#include "LoopbackRecorder.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

using dsty_test::LoopbackRecorder;
using namespace dsty_bench;

namespace
{
const unsigned kRate = kBurstRate;
const size_t kStimuli = 100;
const tWAVEFORMATEX kFormat = kBurstFormat;

LONGLONG counterNow()
{
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

double counterHz()
{
    LARGE_INTEGER hz;
    QueryPerformanceFrequency(&hz);
    return static_cast<double>(hz.QuadPart);
}

double processCpuSeconds()
{
    FILETIME created, exited, kernel, user;
    GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user);
    auto seconds = [](const FILETIME& t) {
        return (static_cast<double>(t.dwHighDateTime) * 4294967296.0 + t.dwLowDateTime) / 1e7;
    };
    return seconds(kernel) + seconds(user);
}

// Planned onsets in counter ticks from the train's start.
std::vector<LONGLONG> planTrain()
{
    std::vector<LONGLONG> ticks(1, 0);
    for (int spacingMs : randomSpacingsMs(kStimuli - 1))
        ticks.push_back(ticks.back() + static_cast<LONGLONG>(spacingMs * counterHz() / 1000.0));
    return ticks;
}

double mean(const std::vector<double>& values)
{
    double sum = 0.0;
    for (double v : values)
        sum += v;
    return values.empty() ? 0.0 : sum / values.size();
}

// How many values lie within a distance of their mean.
size_t withinOfMean(const std::vector<double>& values, double distance)
{
    const double centre = mean(values);
    size_t count = 0;
    for (double v : values)
        count += std::fabs(v - centre) <= distance ? 1 : 0;
    return count;
}

double standardDeviation(const std::vector<double>& values)
{
    const double centre = mean(values);
    double squares = 0.0;
    for (double v : values)
        squares += (v - centre) * (v - centre);
    return values.size() > 1 ? std::sqrt(squares / (values.size() - 1)) : 0.0;
}

// The heard onset nearest to where each asked one should fall, counted from the first; -1
// where none is within 100 ms (a stimulus lost, or a click of the loopback taken for one).
std::vector<long long> matchOnsets(const std::vector<long long>& heard, const std::vector<long long>& askedFrames)
{
    std::vector<long long> matched(askedFrames.size(), -1);
    for (size_t k = 0; k < askedFrames.size() && !heard.empty(); k++)
    {
        const long long target = heard[0] + (askedFrames[k] - askedFrames[0]);
        long long best = heard[0];
        for (long long h : heard)
            best = std::llabs(h - target) < std::llabs(best - target) ? h : best;
        if (std::llabs(best - target) <= kRate / 10)
            matched[k] = best;
    }
    return matched;
}

// Compares what was heard with what was asked: intervals in frames, onsets in counter time.
void report(const char* what, const LoopbackRecorder& recorder, const std::vector<long long>& askedFrames,
            const std::vector<LONGLONG>& askedCounters)
{
    const std::vector<long long> heard = heardOnsets(recorder.samples());
    const std::vector<long long> matched = matchOnsets(heard, askedFrames);
    std::vector<double> intervalErrorsMs, onsetErrorsMs;
    size_t exact = 0, intervals = 0;
    for (size_t k = 0; k < matched.size(); k++)
    {
        if (matched[k] < 0)
            continue;
        onsetErrorsMs.push_back(1000.0 * (static_cast<double>(matched[k]) / kRate -
                                          dsty_test::counterSeconds(askedCounters[0], askedCounters[k])));
        if (k == 0 || matched[k - 1] < 0)
            continue;
        const long long error = (matched[k] - matched[k - 1]) - (askedFrames[k] - askedFrames[k - 1]);
        exact += error == 0 ? 1 : 0;
        intervals++;
        intervalErrorsMs.push_back(1000.0 * error / kRate);
    }
    std::printf("%s: %zu of %zu stimuli heard where asked (%zu onsets found)\n", what, onsetErrorsMs.size(),
                askedFrames.size(), heard.size());
    std::printf("  intervals exact to the frame %zu of %zu, interval error SD %.3f ms\n", exact, intervals,
                standardDeviation(intervalErrorsMs));
    std::printf("  onset against the counter: SD %.3f ms (the one latency a user measures removed),"
                " within 0.5 ms %zu, within 2 ms %zu of %zu\n",
                standardDeviation(onsetErrorsMs), withinOfMean(onsetErrorsMs, 0.5), withinOfMean(onsetErrorsMs, 2.0),
                onsetErrorsMs.size());
}

void scheduledTrain(CDirectSndDevicety& device, CSndDatatyx& burst, const std::vector<LONGLONG>& plan,
                    unsigned long leadMs)
{
    CDirectSndSchedulety schedule;
    if (!schedule.openSchedule(&device, kFormat, leadMs))
    {
        std::printf("scheduler: could not open\n");
        return;
    }
    LoopbackRecorder recorder;
    recorder.start();
    const LONGLONG start = counterNow() + static_cast<LONGLONG>(0.5 * counterHz());
    std::vector<long long> frames;
    std::vector<LONGLONG> counters;
    LONGLONG mostAhead = 0;
    while (frames.size() < plan.size() || counterNow() < start + plan.back() + counterHz() / 2)
    {
        const LONGLONG ahead = schedule.getEarliestFrame() - schedule.getPlayFrame();
        mostAhead = ahead > mostAhead ? ahead : mostAhead;
        if (frames.size() < plan.size() && start + plan[frames.size()] < counterNow() + counterHz() / 2)
        {
            counters.push_back(start + plan[frames.size()]);
            frames.push_back(schedule.timeToFrame(counters.back()));
            if (!schedule.scheduleStim(&burst, frames.back()))
                std::printf("scheduler: stimulus %zu came too late\n", frames.size());
        }
        Sleep(5);
    }
    recorder.stop();
    report("scheduler", recorder, frames, counters);
    std::printf("  earliest schedulable frame at most %.2f ms ahead of the play cursor (lead %lu ms)\n",
                1000.0 * mostAhead / kRate, leadMs);
}

// A busy wait for the last millisecond, so that Play() runs as close to its time as it can.
void waitForCounter(LONGLONG counter)
{
    while (counterNow() < counter - static_cast<LONGLONG>(counterHz() / 500))
        Sleep(1);
    while (counterNow() < counter)
    {
    }
}

void playedTrain(CDirectSndDevicety& device, CSndDatatyx& burst, const std::vector<LONGLONG>& plan)
{
    CDirectSnd3DBuffty buffer;
    if (!buffer.setSndData2DSndBuf2ndStd(&burst, &device))
    {
        std::printf("sendAudioStim: the burst could not be loaded\n");
        return;
    }
    LoopbackRecorder recorder;
    recorder.start();
    const LONGLONG start = counterNow() + static_cast<LONGLONG>(0.5 * counterHz());
    std::vector<long long> frames;
    std::vector<LONGLONG> counters;
    for (LONGLONG tick : plan)
    {
        counters.push_back(start + tick);
        frames.push_back(static_cast<long long>(std::llround(tick * kRate / counterHz())));
        waitForCounter(counters.back());
        buffer.sendAudioStim();
    }
    Sleep(500);
    recorder.stop();
    report("sendAudioStim", recorder, frames, counters);
}

double processSecondsOver(DWORD ms)
{
    const double before = processCpuSeconds();
    Sleep(ms);
    return processCpuSeconds() - before;
}

// The process's processor time with an idle schedule open, less the same with a plain
// looping buffer playing instead (the platform's mixer works as hard for either): what the
// scheduler's worker costs.
void workerCost(CDirectSndDevicety& device, CSndDatatyx& burst, unsigned long leadMs)
{
    const DWORD ms = 30000; // long enough that the 10 ms steps of the process times stay small
    double plain = 0.0;
    {
        CDirectSnd3DBuffty loop;
        loop.setSndData2DSndBuf2ndStd(&burst, &device);
        loop.sendAudioStimLoop();
        plain = processSecondsOver(ms);
        loop.stopAudioStim();
    }
    CDirectSndSchedulety schedule;
    schedule.openSchedule(&device, kFormat, leadMs);
    const double scheduled = processSecondsOver(ms);
    std::printf("scheduler worker: %.3f%% of one core (process %.3f s with the schedule, %.3f s with a plain"
                " looping buffer, over %.0f s)\n",
                100.0 * (scheduled - plain) / (ms / 1000.0), scheduled, plain, ms / 1000.0);
}
}

// Usage: dsty_bench_schedule [LEAD_MS]   (default 50)
int main(int argc, char** argv)
{
    const unsigned long leadMs = argc > 1 ? std::strtoul(argv[1], NULL, 10) : 50;
    HWND window = CreateWindowW(L"STATIC", L"schedule bench", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                GetModuleHandleW(NULL), NULL);
    CDirectSndDevicety device;
    if (!device.initDSndStimX(window, NULL, DSSCL_PRIORITY))
    {
        std::printf("the default device could not be opened\n");
        return 1;
    }
    std::printf("100 bursts at random spacings of 150 to 350 ms, asked for at performance-counter times, lead %lu ms\n",
                leadMs);
    CSndDatatyx burst;
    makeBurst(burst, false);
    const std::vector<LONGLONG> plan = planTrain();
    scheduledTrain(device, burst, plan, leadMs);
    playedTrain(device, burst, plan);
    workerCost(device, burst, leadMs);
    device.releaseDSndty(&device);
    DestroyWindow(window);
    return 0;
}
