#include "ToneGenerator.h"

#include <cmath>

namespace dsty_test
{
constexpr double kPi = 3.14159265358979323846;
double dbfsToAmplitude(double dbfs)
{
    return std::pow(10.0, dbfs / 20.0);
}

std::vector<int16_t> sineTone(double hz, double levelDbfs, double seconds, unsigned sampleRate,
                              ToneChannels channels)
{
    const size_t frames = static_cast<size_t>(std::lround(seconds * sampleRate));
    const unsigned width = channels == ToneChannels::Mono ? 1 : 2;
    const bool left = channels != ToneChannels::RightOnly;
    const bool right = channels != ToneChannels::LeftOnly;
    const double peak = 32767.0 * dbfsToAmplitude(levelDbfs);
    const double step = 2.0 * kPi * hz / sampleRate;

    std::vector<int16_t> pcm(frames * width, 0);
    for (size_t i = 0; i < frames; ++i)
    {
        const auto value = static_cast<int16_t>(std::lround(peak * std::sin(step * static_cast<double>(i))));
        pcm[i * width] = left ? value : 0;
        if (width == 2)
            pcm[i * width + 1] = right ? value : 0;
    }
    return pcm;
}

WAVEFORMATEX pcmFormat(unsigned sampleRate, unsigned channels, unsigned bitsPerSample)
{
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = static_cast<WORD>(channels);
    format.nSamplesPerSec = sampleRate;
    format.wBitsPerSample = static_cast<WORD>(bitsPerSample);
    format.nBlockAlign = static_cast<WORD>(channels * bitsPerSample / 8);
    format.nAvgBytesPerSec = sampleRate * format.nBlockAlign;
    format.cbSize = 0;
    return format;
}
}
