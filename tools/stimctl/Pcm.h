#pragma once
// 16-bit PCM that stimctl makes (tones) and measures (what it recorded).

#include <windows.h>
#include <mmsystem.h>
#include <mmreg.h>

#include <vector>

const unsigned kToneRate = 44100;

// A sine of `hz` at a peak of `dbfs` on both channels, 44100 Hz 16-bit stereo.
std::vector<short> stereoTone(double hz, double seconds, double dbfs);
WAVEFORMATEX stereo16Format(unsigned rate);

// Interleaved 16-bit frames.
struct Frames
{
    const short* samples;
    size_t count;
    unsigned channels;
};

// First frame at or after `from` in which some channel reaches `dbfs` (peak); -1 when none does.
long long firstLoudFrame(const Frames& pcm, size_t from, double dbfs);

// Peak and root-mean-square level of one channel over [first, first + count), dBFS.
struct Level
{
    double peakDbfs;
    double rmsDbfs;
};
Level levelOf(const Frames& pcm, unsigned channel, size_t first, size_t count);
