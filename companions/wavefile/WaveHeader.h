#pragma once
// The wave format record as RIFF/WAVE files store it: decoding a fmt chunk, the rules a
// format must meet to be read or written, and the canonical 44-byte PCM header. No Windows
// header, so it also builds natively for unit tests and fuzzing.

#include <array>
#include <cstddef>
#include <cstdint>
#include "WaveFileResult.h"

namespace wavefile
{
constexpr uint16_t kFormatPcm = 0x0001;
constexpr uint16_t kFormatExtensible = 0xFFFE;
// fmt body sizes: plain PCM, and the extensible record (18 + 22 bytes of extension).
constexpr uint32_t kPcmFormatSize = 16;
constexpr uint32_t kExtensibleFormatSize = 40;
constexpr size_t kCanonicalHeaderSize = 44;
// The RIFF size counts "WAVE", the fmt chunk and the data chunk header: 36 bytes before
// the data. With the data's pad byte it must stay within 32 bits.
constexpr uint32_t kMaxDataBytes = 0xFFFFFFFFu - 36u - 1u;

// A PCM format as the library reports and writes it. bitsPerSample is the container size.
struct PcmFormat
{
    uint16_t fileTag = 0; // the tag the file stores: PCM or extensible
    uint16_t channels = 0;
    uint32_t samplesPerSec = 0;
    uint32_t avgBytesPerSec = 0;
    uint16_t blockAlign = 0;
    uint16_t bitsPerSample = 0;
};

uint16_t readLe16(const uint8_t* p);
uint32_t readLe32(const uint8_t* p);

// Decodes a fmt chunk whose declared size is chunkSize; body holds its first
// min(chunkSize, kExtensibleFormatSize) bytes. Accepts integer PCM only.
WaveFileResult decodeFormat(const uint8_t* body, uint32_t chunkSize, PcmFormat& format);

// Checks a format handed to the writer (tag PCM, whole-byte samples of 8 to 32 bits,
// consistent block alignment) and fills in its byte rate.
WaveFileResult checkWritableFormat(PcmFormat& format);

// True when a file of the canonical layout can describe dataBytes of data.
bool fitsInRiff(uint64_t dataBytes);

// The canonical header for dataBytes of data (dataBytes within kMaxDataBytes).
std::array<uint8_t, kCanonicalHeaderSize> buildPcmHeader(const PcmFormat& format, uint32_t dataBytes);
} // namespace wavefile
