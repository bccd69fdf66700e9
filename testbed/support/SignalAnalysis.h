#pragma once
// Measurements on recorded interleaved 16-bit PCM: level, frequency, onset, balance over time.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace dsty_test
{
// A read-only view of interleaved frames.
struct PcmView
{
    const int16_t* samples = nullptr;
    size_t frames = 0;
    unsigned channels = 1;
};

PcmView view(const std::vector<int16_t>& interleaved, unsigned channels);
// Frames [first, first + count), clipped to the view.
PcmView slice(PcmView pcm, size_t first, size_t count);

// Level of one channel in dB relative to full scale; silence gives -200.
double rmsDbfs(PcmView pcm, unsigned channel);

// Amplitude of the component at `hz` (Goertzel), 1.0 for a full-scale sine of that frequency.
double goertzelAmplitude(PcmView pcm, unsigned channel, double hz, unsigned sampleRate);

// Frequency of a tone from its rising zero crossings; silence and noise below
// `hysteresis` (full scale 1.0) are ignored. 0 when fewer than two cycles are found.
double dominantFrequency(PcmView pcm, unsigned channel, unsigned sampleRate, double hysteresis = 0.01);

// First frame of the first block of `blockFrames` whose level, on any channel, is at least
// `thresholdDbfs`; -1 when none is.
long long onsetFrame(PcmView pcm, double thresholdDbfs, size_t blockFrames = 64);

// Level (dBFS) of one channel in consecutive windows of `windowFrames`.
std::vector<double> rmsSeries(PcmView pcm, unsigned channel, size_t windowFrames);
}
