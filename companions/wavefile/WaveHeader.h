#pragma once
// The wave format record as RIFF/WAVE files store it: decoding a fmt chunk, the rules a
// format must meet to be read or written, the canonical 44-byte PCM header, and the 80-byte
// header of a file that may grow past 4 GiB (EBU Tech 3306: a JUNK chunk keeps the room of a
// ds64 chunk until the data outgrows the 32-bit sizes; the header then becomes RF64 in
// place). No Windows header, so it also builds natively for unit tests and fuzzing.

#include <array>
#include <cstddef>
#include <cstdint>
#include "WaveFileResult.h"

namespace wavefile
{
constexpr uint16_t kFormatPcm = 0x0001;
constexpr uint16_t kFormatFloat = 0x0003;
constexpr uint16_t kFormatExtensible = 0xFFFE;
// fmt body sizes: plain PCM, and the extensible record (18 + 22 bytes of extension).
constexpr uint32_t kPcmFormatSize = 16;
constexpr uint32_t kExtensibleFormatSize = 40;
constexpr size_t kCanonicalHeaderSize = 44;
// RIFF 12, JUNK or ds64 8 + 28, fmt 8 + 16, data 8.
constexpr size_t kReservedHeaderSize = 80;
constexpr uint32_t kDs64BodySize = 28;
// The RIFF size counts "WAVE", the fmt chunk and the data chunk header: 36 bytes before
// the data. With the data's pad byte it must stay within 32 bits.
constexpr uint32_t kMaxDataBytes = 0xFFFFFFFFu - 36u - 1u;
// The same with the 36 bytes of the reserved ds64 room before the fmt chunk.
constexpr uint32_t kMaxReservedDataBytes = kMaxDataBytes - 36u;
// What a size field of 32 bits says when the ds64 chunk holds the size.
constexpr uint32_t kSizeInDs64 = 0xFFFFFFFFu;

// A PCM format as the library reports and writes it. bitsPerSample is the container size.
struct PcmFormat
{
    uint16_t fileTag = 0; // the tag the file stores: PCM, IEEE float or extensible
    bool isFloat = false; // 32-bit IEEE float samples rather than integers
    uint16_t channels = 0;
    uint32_t samplesPerSec = 0;
    uint32_t avgBytesPerSec = 0;
    uint16_t blockAlign = 0;
    uint16_t bitsPerSample = 0;
};

uint16_t readLe16(const uint8_t* p);
uint32_t readLe32(const uint8_t* p);
uint64_t readLe64(const uint8_t* p);

// Decodes a fmt chunk whose declared size is chunkSize; body holds its first
// min(chunkSize, kExtensibleFormatSize) bytes. Accepts integer PCM, and 32-bit IEEE float.
WaveFileResult decodeFormat(const uint8_t* body, uint32_t chunkSize, PcmFormat& format);

// Checks a format handed to the writer (tag PCM, whole-byte samples of 8 to 32 bits,
// consistent block alignment) and fills in its byte rate.
WaveFileResult checkWritableFormat(PcmFormat& format);

// True when a file of the canonical layout can describe dataBytes of data.
bool fitsInRiff(uint64_t dataBytes);

// The canonical header for dataBytes of data (dataBytes within kMaxDataBytes).
std::array<uint8_t, kCanonicalHeaderSize> buildPcmHeader(const PcmFormat& format, uint32_t dataBytes);

// The reserved header for dataBytes of data: a plain RIFF with its JUNK chunk (dataBytes
// within kMaxReservedDataBytes), or, with rf64, the RF64 form whose ds64 chunk holds the
// sizes and frame count.
std::array<uint8_t, kReservedHeaderSize> buildReservedHeader(const PcmFormat& format, uint64_t dataBytes, bool rf64);
} // namespace wavefile
