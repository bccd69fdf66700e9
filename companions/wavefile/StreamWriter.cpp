#include "StreamWriter.h"

#include <algorithm>

namespace wavefile
{
StreamWriter::StreamWriter(ByteSink& sink, const PcmFormat& format, bool mayGrowPast4GiB, uint64_t limit)
    : m_sink(sink),
      m_format(format),
      m_reserved(mayGrowPast4GiB),
      m_limit(std::min<uint64_t>(limit, mayGrowPast4GiB ? kMaxReservedDataBytes : kMaxDataBytes))
{
}

bool StreamWriter::writeHeader()
{
    if (!m_reserved)
    {
        const auto header = buildPcmHeader(m_format, static_cast<uint32_t>(m_dataBytes));
        return m_sink.writeAt(0, header.data(), header.size()) == header.size();
    }
    const auto header = buildReservedHeader(m_format, m_dataBytes, m_rf64);
    return m_sink.writeAt(0, header.data(), header.size()) == header.size();
}

WaveFileResult StreamWriter::start()
{
    m_dataBytes = 0;
    m_rf64 = false;
    return writeHeader() ? WAVEFILE_OK : WAVEFILE_ERR_IO;
}

// The data goes first and the header after it, so the header never counts bytes the file
// does not hold.
WaveFileResult StreamWriter::append(const void* data, size_t size, size_t& written)
{
    written = 0;
    const bool fits = m_dataBytes + size <= m_limit;
    if (!fits && !m_reserved)
        return WAVEFILE_ERR_TOO_LARGE;
    written = m_sink.writeAt(headerSize() + m_dataBytes, data, size);
    m_dataBytes += written;
    m_rf64 = m_rf64 || m_dataBytes > m_limit;
    const bool headerWritten = writeHeader();
    if (headerWritten)
        m_sink.commit();
    return written == size && headerWritten ? WAVEFILE_OK : WAVEFILE_ERR_IO;
}

WaveFileResult StreamWriter::finish(uint64_t dataBytes)
{
    m_dataBytes = std::min(dataBytes, m_dataBytes);
    const uint64_t end = headerSize() + m_dataBytes;
    if (!m_sink.truncateAt(end))
        return WAVEFILE_ERR_IO;
    const uint8_t pad = 0;
    if ((m_dataBytes & 1u) != 0 && m_sink.writeAt(end, &pad, 1) != 1)
        return WAVEFILE_ERR_IO;
    if (!writeHeader())
        return WAVEFILE_ERR_IO;
    m_sink.commit();
    return WAVEFILE_OK;
}
} // namespace wavefile
