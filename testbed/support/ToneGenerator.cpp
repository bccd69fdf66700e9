#include "ToneGenerator.h"

#include <cmath>

namespace dsty_test
{
double dbfsToAmplitude(double dbfs)
{
    return std::pow(10.0, dbfs / 20.0);
}

std::vector<int16_t> sineTone(double hz, double levelDbfs, double seconds, unsigned sampleRate,
                              ToneChannels channels)
{
    const size_t frames = static_cast<size_t>(std::lround(seconds * sampleRate));
    const unsigned width = channels == ToneChannels::Mono ? 1 : 2;
    const double peak = 32767.0 * dbfsToAmplitude(levelDbfs), step = 2.0 * 3.14159265358979323846 * hz / sampleRate;
    std::vector<int16_t> pcm(frames * width, 0);
    for (size_t i = 0; i < frames; ++i)
    {
        const auto value = static_cast<int16_t>(std::lround(peak * std::sin(step * static_cast<double>(i))));
        pcm[i * width] = channels != ToneChannels::RightOnly ? value : 0;
        pcm[i * width + width - 1] = channels != ToneChannels::LeftOnly ? value : 0;
    }
    return pcm;
}

WAVEFORMATEX pcmFormat(unsigned sampleRate, unsigned channels, unsigned bitsPerSample)
{
    const auto align = static_cast<WORD>(channels * bitsPerSample / 8);
    return WAVEFORMATEX{WAVE_FORMAT_PCM, static_cast<WORD>(channels), sampleRate, sampleRate * align, align,
                        static_cast<WORD>(bitsPerSample), 0};
}
}
