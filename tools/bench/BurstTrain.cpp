#include "BurstTrain.h"

#include <cstdlib>
#include <random>

namespace dsty_bench
{
void makeBurst(CSndDatatyx& burst, bool leftOnly)
{
    std::vector<short> pcm;
    for (size_t k = 0; k < kBurstFrames; k++)
    {
        const short sample = (k / 22) % 2 == 0 ? 16000 : -16000;
        pcm.push_back(sample);
        pcm.push_back(leftOnly ? 0 : sample);
    }
    burst.setNewSndData(reinterpret_cast<const char*>(pcm.data()), static_cast<unsigned long>(pcm.size() * 2),
                        kBurstFormat);
}

std::vector<int> randomSpacingsMs(size_t count)
{
    std::mt19937 random(20261122);
    std::uniform_int_distribution<int> spacingMs(150, 350);
    std::vector<int> spacings;
    while (spacings.size() < count)
        spacings.push_back(spacingMs(random));
    return spacings;
}

std::vector<long long> heardOnsets(const std::vector<int16_t>& recorded)
{
    std::vector<long long> onsets;
    for (size_t frame = 0; frame < recorded.size() / 2; frame++)
    {
        if (std::abs(recorded[2 * frame]) < 4000)
            continue;
        onsets.push_back(static_cast<long long>(frame));
        frame += 2 * kBurstFrames;
    }
    return onsets;
}
}
