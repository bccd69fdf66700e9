#include "SignalAnalysis.h"

#include <algorithm>
#include <cmath>

namespace dsty_test
{
namespace
{
double sampleAt(PcmView pcm, size_t frame, unsigned channel)
{
    return pcm.samples[frame * pcm.channels + channel] / 32768.0;
}
}

PcmView view(const std::vector<int16_t>& interleaved, unsigned channels)
{
    return PcmView{interleaved.data(), interleaved.size() / channels, channels};
}

PcmView slice(PcmView pcm, size_t first, size_t count)
{
    first = std::min(first, pcm.frames);
    return PcmView{pcm.samples + first * pcm.channels, std::min(count, pcm.frames - first), pcm.channels};
}

double rmsDbfs(PcmView pcm, unsigned channel)
{
    double sum = 0.0;
    for (size_t i = 0; i < pcm.frames; ++i)
        sum += sampleAt(pcm, i, channel) * sampleAt(pcm, i, channel);
    // +3.01 dB so that a full-scale sine reads 0 dBFS, as level meters show it; silence -200.
    return sum == 0.0 ? -200.0 : 10.0 * std::log10(sum / pcm.frames) + 3.0103;
}

double goertzelAmplitude(PcmView pcm, unsigned channel, double hz, unsigned sampleRate)
{
    const double coefficient = 2.0 * std::cos(2.0 * 3.14159265358979323846 * hz / sampleRate);
    double previous = 0.0, beforePrevious = 0.0;
    for (size_t i = 0; i < pcm.frames; ++i)
    {
        const double current = sampleAt(pcm, i, channel) + coefficient * previous - beforePrevious;
        beforePrevious = previous;
        previous = current;
    }
    const double power = previous * previous + beforePrevious * beforePrevious - coefficient * previous * beforePrevious;
    return pcm.frames == 0 ? 0.0 : 2.0 * std::sqrt(std::max(power, 0.0)) / pcm.frames;
}

// A crossing counts only after the signal has been below -hysteresis, so noise around zero
// adds none; the crossing point is interpolated between the two samples.
double dominantFrequency(PcmView pcm, unsigned channel, unsigned sampleRate, double hysteresis)
{
    bool armed = false;
    double first = -1.0, last = -1.0;
    long long crossings = 0;
    for (size_t i = 1; i < pcm.frames; ++i)
    {
        const double before = sampleAt(pcm, i - 1, channel), now = sampleAt(pcm, i, channel);
        armed = armed || before < -hysteresis;
        if (!armed || before >= 0.0 || now < 0.0)
            continue;
        last = static_cast<double>(i - 1) + before / (before - now);
        first = first < 0.0 ? last : first;
        ++crossings;
        armed = false;
    }
    return crossings < 3 ? 0.0 : (crossings - 1) * static_cast<double>(sampleRate) / (last - first);
}

long long onsetFrame(PcmView pcm, double thresholdDbfs, size_t blockFrames)
{
    for (size_t first = 0; first < pcm.frames; first += blockFrames)
        for (unsigned channel = 0; channel < pcm.channels; ++channel)
            if (rmsDbfs(slice(pcm, first, blockFrames), channel) >= thresholdDbfs)
                return static_cast<long long>(first);
    return -1;
}

std::vector<double> rmsSeries(PcmView pcm, unsigned channel, size_t windowFrames)
{
    std::vector<double> series;
    for (size_t first = 0; first + windowFrames <= pcm.frames; first += windowFrames)
        series.push_back(rmsDbfs(slice(pcm, first, windowFrames), channel));
    return series;
}
}
