#pragma once
// Walks the chunks of a RIFF/WAVE file to find its format and its sound data. The file is
// seen through ByteSource, so the same walk runs on a Win32 file, on memory in unit tests
// and under a fuzzer. Every size field is checked against the source's real size before it
// is used; nothing is allocated from a size field.

#include <cstddef>
#include <cstdint>
#include "WaveHeader.h"

namespace wavefile
{
// Random-access bytes of one file.
class ByteSource
{
public:
    virtual ~ByteSource() = default;
    virtual uint64_t size() const = 0;
    // Copies up to n bytes from offset into dst; answers how many came (fewer only at the
    // end of the source or on a read error).
    virtual size_t readAt(uint64_t offset, void* dst, size_t n) = 0;
};

// A byte source over memory the caller keeps alive.
class MemorySource : public ByteSource
{
public:
    MemorySource(const void* data, size_t size);
    uint64_t size() const override;
    size_t readAt(uint64_t offset, void* dst, size_t n) override;

private:
    const uint8_t* m_data;
    size_t m_size;
};

// Where a wave file keeps its sound.
struct WaveLayout
{
    PcmFormat format;
    uint64_t dataOffset = 0;       // first byte of sound data
    uint64_t dataSize = 0;         // whole frames the file really holds
    uint64_t declaredDataSize = 0; // as the data chunk (or an RF64 file's ds64 chunk) states it
    bool clipped = false;          // the data chunk claims more than the file holds
    bool rf64 = false;             // the RF64 form, whose sizes stand in its ds64 chunk
};

// Finds the first fmt and the first data chunk, in either order, skipping all others
// (LIST, fact, bext, JUNK, ...) and their pad bytes. The RIFF size field does not bound the
// walk (streaming writers leave it 0 or too large; the source's real size does); it only
// tells a cut-off file (TRUNCATED) from one that lacks a chunk (NO_FORMAT, NO_DATA). An RF64
// file (EBU Tech 3306) must open with its ds64 chunk; a 32-bit size of 0xFFFFFFFF in the
// RIFF header or the data chunk is then the 64-bit one of the ds64 chunk.
WaveFileResult parseWave(ByteSource& source, WaveLayout& layout);
} // namespace wavefile
