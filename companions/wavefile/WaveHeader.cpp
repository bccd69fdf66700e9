#include "WaveHeader.h"

#include <cstring>

namespace wavefile
{
namespace
{
// KSDATAFORMAT_SUBTYPE_PCM, {00000001-0000-0010-8000-00aa00389b71}, as its bytes are stored.
const uint8_t kSubtypePcm[16] = {0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x10, 0x00,
                                 0x80, 0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
// KSDATAFORMAT_SUBTYPE_IEEE_FLOAT: the same but for its first byte.
constexpr uint8_t kSubtypeFloatFirstByte = 0x03;
// Offsets in the fmt body.
constexpr size_t kCbSizeAt = 16, kValidBitsAt = 18, kSubFormatAt = 24;
constexpr uint16_t kExtensionSize = 22;

void writeLe16(uint8_t* p, uint16_t v)
{
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}

void writeLe32(uint8_t* p, uint32_t v)
{
    writeLe16(p, static_cast<uint16_t>(v));
    writeLe16(p + 2, static_cast<uint16_t>(v >> 16));
}

void writeLe64(uint8_t* p, uint64_t v)
{
    writeLe32(p, static_cast<uint32_t>(v));
    writeLe32(p + 4, static_cast<uint32_t>(v >> 32));
}

// A 16-byte PCM fmt chunk, header included, at p.
void writeFormatChunk(uint8_t* p, const PcmFormat& format)
{
    std::memcpy(p, "fmt ", 4);
    writeLe32(p + 4, kPcmFormatSize);
    writeLe16(p + 8, kFormatPcm);
    writeLe16(p + 10, format.channels);
    writeLe32(p + 12, format.samplesPerSec);
    writeLe32(p + 16, format.avgBytesPerSec);
    writeLe16(p + 20, format.blockAlign);
    writeLe16(p + 22, format.bitsPerSample);
}

// An extensible record describes PCM or IEEE float when its sub-format says so; the
// container must be whole bytes and hold the valid bits (0 valid bits: writers that leave it
// unset).
WaveFileResult checkExtension(const uint8_t* body, uint32_t chunkSize, uint16_t bits, bool& isFloat)
{
    if (chunkSize < kExtensibleFormatSize || readLe16(body + kCbSizeAt) < kExtensionSize)
        return WAVEFILE_ERR_BAD_FORMAT;
    const uint8_t* subFormat = body + kSubFormatAt;
    isFloat = subFormat[0] == kSubtypeFloatFirstByte;
    if ((subFormat[0] != kSubtypePcm[0] && !isFloat) ||
        std::memcmp(subFormat + 1, kSubtypePcm + 1, sizeof kSubtypePcm - 1) != 0)
        return WAVEFILE_ERR_UNSUPPORTED;
    if (bits % 8 != 0 || readLe16(body + kValidBitsAt) > bits)
        return WAVEFILE_ERR_BAD_FORMAT;
    return WAVEFILE_OK;
}

// Samples of up to 32 bits in whole bytes per channel, frames of exactly those bytes; the
// byte rate is derived rather than trusted, as players size buffers from it.
WaveFileResult completeFormat(PcmFormat& format)
{
    if (format.channels == 0 || format.samplesPerSec == 0 || format.bitsPerSample == 0)
        return WAVEFILE_ERR_BAD_FORMAT;
    if (format.bitsPerSample > 32)
        return WAVEFILE_ERR_UNSUPPORTED;
    const uint32_t frame = uint32_t(format.channels) * ((format.bitsPerSample + 7u) / 8u);
    if (format.blockAlign != frame)
        return WAVEFILE_ERR_BAD_FORMAT;
    const uint64_t rate = uint64_t(format.samplesPerSec) * format.blockAlign;
    if (rate > 0xFFFFFFFFu)
        return WAVEFILE_ERR_BAD_FORMAT;
    format.avgBytesPerSec = static_cast<uint32_t>(rate);
    return WAVEFILE_OK;
}
} // namespace

uint16_t readLe16(const uint8_t* p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

uint32_t readLe32(const uint8_t* p)
{
    return readLe16(p) | (uint32_t(readLe16(p + 2)) << 16);
}

uint64_t readLe64(const uint8_t* p)
{
    return readLe32(p) | (uint64_t(readLe32(p + 4)) << 32);
}

WaveFileResult decodeFormat(const uint8_t* body, uint32_t chunkSize, PcmFormat& format)
{
    format = PcmFormat();
    if (chunkSize < kPcmFormatSize)
        return WAVEFILE_ERR_BAD_FORMAT;
    format.fileTag = readLe16(body);
    format.channels = readLe16(body + 2);
    format.samplesPerSec = readLe32(body + 4);
    format.blockAlign = readLe16(body + 12);
    format.bitsPerSample = readLe16(body + 14);
    if (format.fileTag == kFormatExtensible)
    {
        WaveFileResult result = checkExtension(body, chunkSize, format.bitsPerSample, format.isFloat);
        if (result != WAVEFILE_OK)
            return result;
    }
    else if (format.fileTag == kFormatFloat)
        format.isFloat = true;
    else if (format.fileTag != kFormatPcm)
        return WAVEFILE_ERR_UNSUPPORTED;
    if (format.isFloat && format.bitsPerSample != 32)
        return WAVEFILE_ERR_UNSUPPORTED; // 64-bit doubles are no sound the library plays
    return completeFormat(format);
}

WaveFileResult checkWritableFormat(PcmFormat& format)
{
    if (format.fileTag != kFormatPcm)
        return WAVEFILE_ERR_ARGUMENT;
    if (format.bitsPerSample % 8 != 0)
        return WAVEFILE_ERR_ARGUMENT;
    return completeFormat(format) == WAVEFILE_OK ? WAVEFILE_OK : WAVEFILE_ERR_ARGUMENT;
}

bool fitsInRiff(uint64_t dataBytes)
{
    return dataBytes <= kMaxDataBytes;
}

std::array<uint8_t, kCanonicalHeaderSize> buildPcmHeader(const PcmFormat& format, uint32_t dataBytes)
{
    std::array<uint8_t, kCanonicalHeaderSize> h{};
    uint8_t* p = h.data();
    std::memcpy(p, "RIFF", 4);
    writeLe32(p + 4, 36u + dataBytes + (dataBytes & 1u));
    std::memcpy(p + 8, "WAVE", 4);
    writeFormatChunk(p + 12, format);
    std::memcpy(p + 36, "data", 4);
    writeLe32(p + 40, dataBytes);
    return h;
}

std::array<uint8_t, kReservedHeaderSize> buildReservedHeader(const PcmFormat& format, uint64_t dataBytes, bool rf64)
{
    std::array<uint8_t, kReservedHeaderSize> h{};
    uint8_t* p = h.data();
    const uint64_t riffSize = kReservedHeaderSize - 8u + dataBytes + (dataBytes & 1u);
    std::memcpy(p, rf64 ? "RF64" : "RIFF", 4);
    writeLe32(p + 4, rf64 ? kSizeInDs64 : static_cast<uint32_t>(riffSize));
    std::memcpy(p + 8, "WAVE", 4);
    std::memcpy(p + 12, rf64 ? "ds64" : "JUNK", 4);
    writeLe32(p + 16, kDs64BodySize);
    if (rf64)
    {
        writeLe64(p + 20, riffSize);
        writeLe64(p + 28, dataBytes);
        writeLe64(p + 36, format.blockAlign == 0 ? 0 : dataBytes / format.blockAlign);
        writeLe32(p + 44, 0); // no table of other chunks' sizes
    }
    writeFormatChunk(p + 48, format);
    std::memcpy(p + 72, "data", 4);
    writeLe32(p + 76, rf64 ? kSizeInDs64 : static_cast<uint32_t>(dataBytes));
    return h;
}
} // namespace wavefile
