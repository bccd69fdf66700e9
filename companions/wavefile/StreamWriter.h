#pragma once
// Writes a PCM wave file piece by piece through a byte sink. The header is brought up to date
// after every piece, once the piece's data is in the sink, so a writer that dies between two
// pieces leaves a file that reads whole up to the last piece. A file opened with room for a
// ds64 chunk carries on past the 32-bit sizes as RF64; any other file refuses the piece that
// would not fit and stays valid. The sink is seen through an interface, so the same writer
// runs on a Win32 file and, in tests, on memory with the limit lowered.

#include <cstddef>
#include <cstdint>
#include "WaveHeader.h"

namespace wavefile
{
// Positioned writes into one file.
class ByteSink
{
public:
    virtual ~ByteSink() = default;
    // Copies n bytes from src to offset; answers how many reached the file.
    virtual size_t writeAt(uint64_t offset, const void* src, size_t n) = 0;
    // Makes offset the end of the file.
    virtual bool truncateAt(uint64_t offset) = 0;
    // The header tells what the file holds: a point worth keeping should the machine stop.
    virtual void commit() {}
};

class StreamWriter
{
public:
    // limit: the most data bytes a plain RIFF header may describe here, at most what its
    // 32-bit sizes allow (the whole range unless a test lowers it).
    StreamWriter(ByteSink& sink, const PcmFormat& format, bool mayGrowPast4GiB, uint64_t limit = kMaxDataBytes);

    // Writes the header of a file with no data yet.
    WaveFileResult start();
    // Appends size bytes; written gets the bytes that reached the sink. TOO_LARGE, with
    // nothing written, when a plain file cannot describe them.
    WaveFileResult append(const void* data, size_t size, size_t& written);
    // Ends the data after dataBytes (at most what was written), pads an odd size and writes
    // the final header.
    WaveFileResult finish(uint64_t dataBytes);

    uint64_t dataBytes() const { return m_dataBytes; }
    bool isRf64() const { return m_rf64; }
    uint64_t headerSize() const { return m_reserved ? kReservedHeaderSize : kCanonicalHeaderSize; }

private:
    bool writeHeader();

    ByteSink& m_sink;
    PcmFormat m_format;
    bool m_reserved;
    uint64_t m_limit;
    uint64_t m_dataBytes = 0;
    bool m_rf64 = false;
};
} // namespace wavefile
