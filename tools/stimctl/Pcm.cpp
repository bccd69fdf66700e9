#include "Pcm.h"

#include <algorithm>
#include <cmath>

namespace
{
const double kPi = 3.14159265358979323846;
const double kSilentDbfs = -200.0;

double toDbfs(double amplitude)
{
    return amplitude > 0.0 ? 20.0 * std::log10(amplitude / 32768.0) : kSilentDbfs;
}
}

std::vector<short> stereoTone(double hz, double seconds, double dbfs)
{
    const size_t frames = static_cast<size_t>(std::lround(seconds * kToneRate));
    const double peak = 32767.0 * std::pow(10.0, dbfs / 20.0);
    std::vector<short> pcm(frames * 2);
    for (size_t i = 0; i < frames; ++i)
    {
        const short value = static_cast<short>(std::lround(peak * std::sin(2.0 * kPi * hz * i / kToneRate)));
        pcm[2 * i] = value;
        pcm[2 * i + 1] = value;
    }
    return pcm;
}

WAVEFORMATEX stereo16Format(unsigned rate)
{
    WAVEFORMATEX wfx = {};
    wfx.wFormatTag = WAVE_FORMAT_PCM;
    wfx.nChannels = 2;
    wfx.nSamplesPerSec = rate;
    wfx.wBitsPerSample = 16;
    wfx.nBlockAlign = 4;
    wfx.nAvgBytesPerSec = rate * 4;
    return wfx;
}

long long firstLoudFrame(const Frames& pcm, size_t from, double dbfs)
{
    const double threshold = 32768.0 * std::pow(10.0, dbfs / 20.0);
    for (size_t frame = from; frame < pcm.count; ++frame)
        for (unsigned channel = 0; channel < pcm.channels; ++channel)
            if (std::abs(static_cast<int>(pcm.samples[frame * pcm.channels + channel])) >= threshold)
                return static_cast<long long>(frame);
    return -1;
}

Level levelOf(const Frames& pcm, unsigned channel, size_t first, size_t count)
{
    const size_t end = std::min(pcm.count, first + count);
    double peak = 0.0, sum = 0.0;
    for (size_t i = first; i < end; ++i)
    {
        const double sample = pcm.samples[i * pcm.channels + channel];
        peak = std::max(peak, std::fabs(sample));
        sum += sample * sample;
    }
    if (end <= first)
        return Level{kSilentDbfs, kSilentDbfs};
    return Level{toDbfs(peak), toDbfs(std::sqrt(sum / (end - first)))};
}
