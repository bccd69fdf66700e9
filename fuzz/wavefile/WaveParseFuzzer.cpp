// libFuzzer target for the wave-file core's RIFF walk: whatever the input, the walk answers
// an error or sound data that lies inside the input in whole frames, and (under
// AddressSanitizer) touches no byte outside it.
#include <cstdlib>
#include "RiffReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    wavefile::MemorySource source(data, size);
    wavefile::WaveLayout layout;
    if (wavefile::parseWave(source, layout) != WAVEFILE_OK)
        return 0;
    if (layout.dataOffset + layout.dataSize > size || layout.dataSize % layout.format.blockAlign != 0)
        std::abort();
    // Read the data as the stream reader would, so a wrong offset shows as an overflow.
    uint8_t piece[4096];
    for (uint64_t at = 0; at < layout.dataSize; at += sizeof piece)
        source.readAt(layout.dataOffset + at, piece, sizeof piece);
    return 0;
}
