#pragma once
// Test stimuli: sine tones as interleaved 16-bit PCM.

#include <windows.h>
#include <mmsystem.h>

#include <cstdint>
#include <vector>

namespace dsty_test
{
// Which channels of the output carry the tone; silent channels are zero.
enum class ToneChannels { Mono, Both, LeftOnly, RightOnly };

// A sine of `hz` at `levelDbfs` (0 = full scale) lasting `seconds`, starting at phase 0.
// Mono gives one channel; the other choices give interleaved stereo frames.
std::vector<int16_t> sineTone(double hz, double levelDbfs, double seconds,
                              unsigned sampleRate = 44100, ToneChannels channels = ToneChannels::Mono);

// A PCM format record with consistent block align and byte rate.
WAVEFORMATEX pcmFormat(unsigned sampleRate, unsigned channels, unsigned bitsPerSample = 16);

double dbfsToAmplitude(double dbfs);
}
