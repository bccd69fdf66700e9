#include "SndWaveWriteStreamty.h"

#include "ResultKeeper.h"
#include "WaveHeader.h"
#include "Win32File.h"

IMPLEMENT_DYNAMIC(CSndWaveWriteStreamty, CObject)

struct CSndWaveWriteStreamty::Impl : ResultKeeper
{
    Win32File file;
    wavefile::PcmFormat format; // all zero while no file is open
    uint32_t written = 0;       // bytes of data after the header

    bool writeHeader()
    {
        const auto header = wavefile::buildPcmHeader(format, written);
        return file.writeAt(0, header.data(), header.size()) == header.size();
    }

    // The data ends after `written` bytes (bytes beyond are dropped), an odd size gets its
    // zero pad byte, and the header then tells both sizes.
    bool finish()
    {
        const uint64_t end = wavefile::kCanonicalHeaderSize + uint64_t(written);
        if (!file.truncateAt(end))
            return false;
        const uint8_t pad = 0;
        if ((written & 1u) != 0 && file.writeAt(end, &pad, 1) != 1)
            return false;
        return writeHeader();
    }
};

namespace
{
wavefile::PcmFormat toPcmFormat(const tWAVEFORMATEX& wfx)
{
    wavefile::PcmFormat format;
    format.fileTag = wfx.wFormatTag;
    format.channels = wfx.nChannels;
    format.samplesPerSec = wfx.nSamplesPerSec;
    format.blockAlign = wfx.nBlockAlign;
    format.bitsPerSample = wfx.wBitsPerSample;
    return format;
}
} // namespace

CSndWaveWriteStreamty::CSndWaveWriteStreamty()
    : m_pImpl(new Impl)
{
}

// A writer deleted while recording still leaves a file whose header matches its data.
CSndWaveWriteStreamty::~CSndWaveWriteStreamty()
{
    if (IsOpen())
        Close();
}

int CSndWaveWriteStreamty::Open(CString fileName, tWAVEFORMATEX* wfx)
{
    if (IsOpen())
        Close();
    Impl& w = *m_pImpl;
    w.written = 0;
    w.format = wavefile::PcmFormat();
    if (fileName.IsEmpty() || wfx == nullptr)
        return w.fail(WAVEFILE_ERR_ARGUMENT);
    wavefile::PcmFormat format = toPcmFormat(*wfx);
    if (wavefile::checkWritableFormat(format) != WAVEFILE_OK)
        return w.fail(WAVEFILE_ERR_ARGUMENT);
    if (!w.file.createForWriting(fileName))
        return w.fail(WAVEFILE_ERR_OPEN);
    w.format = format;
    if (w.writeHeader())
        return w.succeed();
    // Leave no headless file behind.
    w.file.close();
    w.format = wavefile::PcmFormat();
    DeleteFileW(fileName);
    return w.fail(WAVEFILE_ERR_IO);
}

int CSndWaveWriteStreamty::Write(unsigned int size, unsigned char* data, unsigned int* written)
{
    Impl& w = *m_pImpl;
    if (written != nullptr)
        *written = 0;
    if (!IsOpen())
        return w.fail(WAVEFILE_ERR_NOT_OPEN);
    if (data == nullptr && size != 0)
        return w.fail(WAVEFILE_ERR_ARGUMENT);
    if (!wavefile::fitsInRiff(uint64_t(w.written) + size))
        return w.fail(WAVEFILE_ERR_TOO_LARGE);
    const size_t put = w.file.writeAt(wavefile::kCanonicalHeaderSize + uint64_t(w.written), data, size);
    w.written += static_cast<uint32_t>(put);
    if (written != nullptr)
        *written = static_cast<unsigned int>(put);
    return put == size ? w.succeed() : w.fail(WAVEFILE_ERR_IO);
}

int CSndWaveWriteStreamty::Close(unsigned long totalDataBytes)
{
    Impl& w = *m_pImpl;
    if (!IsOpen())
        return w.fail(WAVEFILE_ERR_NOT_OPEN);
    const bool sizeKnown = totalDataBytes <= w.written;
    if (sizeKnown)
        w.written = static_cast<uint32_t>(totalDataBytes);
    const bool finished = w.finish();
    w.file.close();
    w.format = wavefile::PcmFormat();
    if (!finished)
        return w.fail(WAVEFILE_ERR_IO);
    return sizeKnown ? w.succeed() : w.fail(WAVEFILE_ERR_SIZE_MISMATCH);
}

int CSndWaveWriteStreamty::Close()
{
    return Close(m_pImpl->written);
}

BOOL CSndWaveWriteStreamty::IsOpen() const
{
    return m_pImpl->file.isOpen() ? TRUE : FALSE;
}

unsigned long CSndWaveWriteStreamty::GetDataBytesWritten() const
{
    return m_pImpl->written;
}

tWAVEFORMATEX CSndWaveWriteStreamty::GetFormat() const
{
    const wavefile::PcmFormat& f = m_pImpl->format;
    tWAVEFORMATEX wfx = {};
    wfx.wFormatTag = f.fileTag;
    wfx.nChannels = f.channels;
    wfx.nSamplesPerSec = f.samplesPerSec;
    wfx.nAvgBytesPerSec = f.avgBytesPerSec;
    wfx.nBlockAlign = f.blockAlign;
    wfx.wBitsPerSample = f.bitsPerSample;
    return wfx;
}

WaveFileResult CSndWaveWriteStreamty::GetResult() const
{
    return m_pImpl->result;
}
