#pragma once
// Builds RIFF/WAVE files in memory from chunks: the tests' rearranged and damaged files; and
// a file in memory for the stream writer to write.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>
#include "StreamWriter.h"

using Bytes = std::vector<uint8_t>;

// The tests run on little-endian machines only, as the library does.
inline void putLe16(Bytes& b, size_t at, uint16_t v) { std::memcpy(&b[at], &v, 2); }
inline void putLe32(Bytes& b, size_t at, uint32_t v) { std::memcpy(&b[at], &v, 4); }

// A copy of `b` with the low `width` bytes of `v` at `at`.
inline Bytes poke(Bytes b, size_t at, uint32_t v, size_t width = 4)
{
    std::memcpy(&b[at], &v, width);
    return b;
}

inline uint32_t getLe32(const Bytes& b, size_t at)
{
    uint32_t v;
    std::memcpy(&v, &b[at], 4);
    return v;
}

// A chunk with its id, size and body, and the pad byte an odd body needs.
inline Bytes chunk(const char* id, const Bytes& body)
{
    Bytes c(8);
    std::memcpy(c.data(), id, 4);
    putLe32(c, 4, static_cast<uint32_t>(body.size()));
    c.insert(c.end(), body.begin(), body.end());
    if (body.size() % 2 != 0)
        c.push_back(0);
    return c;
}

inline Bytes riff(const std::vector<Bytes>& chunks)
{
    Bytes file = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E'};
    for (const Bytes& c : chunks)
        file.insert(file.end(), c.begin(), c.end());
    putLe32(file, 4, static_cast<uint32_t>(file.size() - 8));
    return file;
}

// A fmt body: 16 bytes of plain PCM, or the 40-byte extensible record with the PCM
// sub-format (its first byte replaced by subFormat).
inline Bytes fmtBody(uint16_t channels, uint32_t rate, uint16_t bits, bool extensible = false, uint8_t subFormat = 1)
{
    const uint16_t align = static_cast<uint16_t>(channels * ((bits + 7) / 8));
    Bytes f(extensible ? 40 : 16);
    putLe16(f, 0, extensible ? 0xFFFE : 1);
    putLe16(f, 2, channels);
    putLe32(f, 4, rate);
    putLe32(f, 8, rate * align);
    putLe16(f, 12, align);
    putLe16(f, 14, bits);
    if (!extensible)
        return f;
    const uint8_t pcm[16] = {0, 0, 0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
    putLe16(f, 16, 22);
    putLe16(f, 18, bits);
    std::memcpy(&f[24], pcm, 16);
    f[24] = subFormat;
    return f;
}

// A file in memory that the stream writer writes, and that can be read while it is written.
class MemorySink : public wavefile::ByteSink
{
public:
    size_t writeAt(uint64_t offset, const void* src, size_t n) override
    {
        const size_t room = offset > limit ? 0 : std::min<size_t>(n, limit - offset);
        if (bytes.size() < offset + room)
            bytes.resize(offset + room);
        std::memcpy(bytes.data() + offset, src, room);
        return room;
    }
    bool truncateAt(uint64_t offset) override
    {
        bytes.resize(offset);
        return true;
    }
    void commit() override { commits++; }

    Bytes bytes;
    size_t limit = SIZE_MAX; // a full disk: nothing is written past it
    int commits = 0;
};
