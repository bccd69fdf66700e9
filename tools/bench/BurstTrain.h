#pragma once
// What the scheduling benchmarks share: a 10 ms square burst whose first frame stands out,
// trains of random spacings of 150 to 350 ms, and the onsets found in what the loopback heard.

#include "DirectSndty.h"

#include <cstdint>
#include <vector>

namespace dsty_bench
{
const unsigned kBurstRate = 44100;
const size_t kBurstFrames = 441;
const tWAVEFORMATEX kBurstFormat = {WAVE_FORMAT_PCM, 2, kBurstRate, 4 * kBurstRate, 4, 16, 0};

// The burst in 44.1 kHz 16-bit stereo, on both channels or on the left one only.
void makeBurst(CSndDatatyx& burst, bool leftOnly);
// Spacings in milliseconds, the same for every run.
std::vector<int> randomSpacingsMs(size_t count);
// Frames at which each loud stretch of the left channel begins.
std::vector<long long> heardOnsets(const std::vector<int16_t>& recorded);
}
