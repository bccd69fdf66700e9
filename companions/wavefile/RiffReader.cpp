#include "RiffReader.h"

#include <algorithm>
#include <cstring>

namespace wavefile
{
namespace
{
constexpr uint64_t kRiffHeaderSize = 12; // "RIFF", size, "WAVE"
constexpr uint64_t kChunkHeaderSize = 8; // id, size

struct Chunk
{
    char id[4];
    uint64_t size;
    uint64_t body; // offset of the first byte after the header
    uint64_t end;  // offset after the body, before any pad byte
};

// The RIFF size and, for RF64, the data size its ds64 chunk gives.
struct FormSizes
{
    uint64_t riff = 0;
    uint64_t data = 0;
    bool rf64 = false;
};

enum class Step
{
    Chunk,    // a whole chunk header was read
    End,      // the file ends where a chunk could start (a missing last pad byte included)
    Cut,      // the file ends inside a chunk header
    ReadError
};

bool isId(const Chunk& chunk, const char* fourcc)
{
    return std::memcmp(chunk.id, fourcc, 4) == 0;
}

Step readChunkHeader(ByteSource& source, uint64_t pos, uint64_t fileSize, Chunk& chunk);

// An RF64 file's ds64 chunk comes first: its RIFF size, data size and frame count.
WaveFileResult readDs64(ByteSource& source, FormSizes& sizes)
{
    Chunk chunk{};
    const uint64_t fileSize = source.size();
    const Step step = readChunkHeader(source, kRiffHeaderSize, fileSize, chunk);
    if (step == Step::ReadError)
        return WAVEFILE_ERR_IO;
    if (step != Step::Chunk || chunk.end > fileSize)
        return WAVEFILE_ERR_TRUNCATED;
    uint8_t body[16];
    if (!isId(chunk, "ds64") || chunk.size < kDs64BodySize)
        return WAVEFILE_ERR_NOT_WAVE;
    if (source.readAt(chunk.body, body, sizeof body) != sizeof body)
        return WAVEFILE_ERR_IO;
    sizes.riff = readLe64(body);
    sizes.data = readLe64(body + 8);
    return WAVEFILE_OK;
}

WaveFileResult checkRiffHeader(ByteSource& source, FormSizes& sizes)
{
    uint8_t head[kRiffHeaderSize];
    if (source.size() < sizeof head || source.readAt(0, head, sizeof head) != sizeof head)
        return WAVEFILE_ERR_NOT_WAVE;
    sizes.rf64 = std::memcmp(head, "RF64", 4) == 0;
    if ((!sizes.rf64 && std::memcmp(head, "RIFF", 4) != 0) || std::memcmp(head + 8, "WAVE", 4) != 0)
        return WAVEFILE_ERR_NOT_WAVE;
    sizes.riff = readLe32(head + 4);
    if (!sizes.rf64)
        return WAVEFILE_OK;
    const uint64_t field = sizes.riff;
    const WaveFileResult result = readDs64(source, sizes);
    if (result == WAVEFILE_OK && field != kSizeInDs64)
        sizes.riff = field;
    return result;
}

Step readChunkHeader(ByteSource& source, uint64_t pos, uint64_t fileSize, Chunk& chunk)
{
    if (pos >= fileSize)
        return Step::End;
    if (fileSize - pos < kChunkHeaderSize)
        return Step::Cut;
    uint8_t head[kChunkHeaderSize];
    if (source.readAt(pos, head, sizeof head) != sizeof head)
        return Step::ReadError;
    std::memcpy(chunk.id, head, 4);
    chunk.size = readLe32(head + 4);
    chunk.body = pos + kChunkHeaderSize;
    chunk.end = chunk.body + chunk.size;
    return Step::Chunk;
}

// Only the part of the fmt body that the record defines is read, into a fixed buffer.
WaveFileResult readFormat(ByteSource& source, const Chunk& chunk, PcmFormat& format)
{
    uint8_t body[kExtensibleFormatSize] = {};
    const size_t wanted = std::min<size_t>(chunk.size, sizeof body);
    if (source.readAt(chunk.body, body, wanted) != wanted)
        return WAVEFILE_ERR_IO;
    return decodeFormat(body, static_cast<uint32_t>(chunk.size), format); // a 32-bit size field
}

void noteData(const Chunk& chunk, uint64_t fileSize, WaveLayout& layout)
{
    const uint64_t held = fileSize - chunk.body;
    layout.dataOffset = chunk.body;
    layout.declaredDataSize = chunk.size;
    layout.clipped = chunk.size > held;
    layout.dataSize = std::min<uint64_t>(chunk.size, held);
}
// One walk over the chunks: what it has found so far.
struct Walk
{
    ByteSource& source;
    uint64_t fileSize;
    WaveLayout& layout;
    const FormSizes& sizes;
    bool haveFormat = false, haveData = false;
    bool cut = false; // the file ends inside a chunk, so the walk cannot go on

    bool done() const { return haveFormat && haveData; }

    // Takes the first fmt and the first data chunk; every other chunk is passed over.
    WaveFileResult visit(const Chunk& chunk)
    {
        if (isId(chunk, "fmt ") && !haveFormat)
        {
            if (chunk.end > fileSize)
                return WAVEFILE_ERR_TRUNCATED;
            const WaveFileResult result = readFormat(source, chunk, layout.format);
            if (result != WAVEFILE_OK)
                return result;
            haveFormat = true;
        }
        else if (isId(chunk, "data") && !haveData)
        {
            noteData(chunk, fileSize, layout);
            haveData = true;
        }
        cut = chunk.end > fileSize; // only the sound data may be cut, and only at the end
        return WAVEFILE_OK;
    }

    // An RF64 file's data chunk leaves its size to the ds64 chunk.
    void resize(Chunk& chunk) const
    {
        if (!sizes.rf64 || !isId(chunk, "data") || chunk.size != kSizeInDs64)
            return;
        chunk.size = sizes.data;
        chunk.end = chunk.body + chunk.size;
    }

    // Why the walk ended without both chunks. A walk that stops where a chunk could start is
    // also cut short when the RIFF size promised more: the file lost its tail.
    WaveFileResult missing() const
    {
        const bool cutShort = cut || fileSize < kChunkHeaderSize + sizes.riff;
        if (cutShort)
            return WAVEFILE_ERR_TRUNCATED;
        return haveFormat ? WAVEFILE_ERR_NO_DATA : WAVEFILE_ERR_NO_FORMAT;
    }
};
} // namespace

MemorySource::MemorySource(const void* data, size_t size)
    : m_data(static_cast<const uint8_t*>(data)), m_size(size)
{
}

uint64_t MemorySource::size() const
{
    return m_size;
}

size_t MemorySource::readAt(uint64_t offset, void* dst, size_t n)
{
    if (offset >= m_size)
        return 0;
    const size_t count = static_cast<size_t>(std::min<uint64_t>(n, m_size - offset));
    std::memcpy(dst, m_data + offset, count);
    return count;
}

WaveFileResult parseWave(ByteSource& source, WaveLayout& layout)
{
    layout = WaveLayout();
    FormSizes sizes;
    WaveFileResult result = checkRiffHeader(source, sizes);
    if (result != WAVEFILE_OK)
        return result;
    layout.rf64 = sizes.rf64;
    Walk walk{source, source.size(), layout, sizes};
    Chunk chunk{};
    for (uint64_t pos = kRiffHeaderSize; !walk.done() && !walk.cut; pos = chunk.end + (chunk.size & 1u))
    {
        const Step step = readChunkHeader(source, pos, walk.fileSize, chunk);
        if (step == Step::ReadError)
            return WAVEFILE_ERR_IO;
        if (step != Step::Chunk)
        {
            walk.cut = step == Step::Cut;
            break;
        }
        walk.resize(chunk);
        result = walk.visit(chunk);
        if (result != WAVEFILE_OK)
            return result;
    }
    if (!walk.done())
        return walk.missing();
    // A player gets whole frames only: a partial last frame would shift the channels.
    layout.dataSize -= layout.dataSize % layout.format.blockAlign;
    return WAVEFILE_OK;
}
} // namespace wavefile
