#include "SndWaveWriteStreamty.h"

#include <memory>
#include "ResultKeeper.h"
#include "StreamWriter.h"
#include "WaveHeader.h"
#include "Win32File.h"

IMPLEMENT_DYNAMIC(CSndWaveWriteStreamty, CObject)

struct CSndWaveWriteStreamty::Impl : ResultKeeper
{
    Win32File file;
    wavefile::PcmFormat format; // all zero while no file is open
    std::unique_ptr<wavefile::StreamWriter> stream;
    uint64_t finishedBytes = 0; // the data size of the file last closed
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
    return Open(fileName, wfx, FALSE);
}

int CSndWaveWriteStreamty::Open(CString fileName, tWAVEFORMATEX* wfx, BOOL bMayPass4GiB)
{
    if (IsOpen())
        Close();
    Impl& w = *m_pImpl;
    w.finishedBytes = 0;
    if (fileName.IsEmpty() || wfx == nullptr)
        return w.fail(WAVEFILE_ERR_ARGUMENT);
    wavefile::PcmFormat format = toPcmFormat(*wfx);
    if (wavefile::checkWritableFormat(format) != WAVEFILE_OK)
        return w.fail(WAVEFILE_ERR_ARGUMENT);
    if (!w.file.createForWriting(fileName))
        return w.fail(WAVEFILE_ERR_OPEN);
    w.stream.reset(new wavefile::StreamWriter(w.file, format, bMayPass4GiB != FALSE));
    if (w.stream->start() == WAVEFILE_OK)
    {
        w.format = format;
        return w.succeed();
    }
    // Leave no headless file behind.
    w.stream.reset();
    w.file.close();
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
    size_t put = 0;
    const WaveFileResult result = w.stream->append(data, size, put);
    if (written != nullptr)
        *written = static_cast<unsigned int>(put);
    return result == WAVEFILE_OK ? w.succeed() : w.fail(result);
}

int CSndWaveWriteStreamty::Close(unsigned long totalDataBytes)
{
    Impl& w = *m_pImpl;
    if (!IsOpen())
        return w.fail(WAVEFILE_ERR_NOT_OPEN);
    const bool sizeKnown = totalDataBytes <= w.stream->dataBytes();
    const WaveFileResult finished = w.stream->finish(sizeKnown ? totalDataBytes : w.stream->dataBytes());
    w.finishedBytes = w.stream->dataBytes();
    w.stream.reset();
    w.file.close();
    w.format = wavefile::PcmFormat();
    if (finished != WAVEFILE_OK)
        return w.fail(finished);
    return sizeKnown ? w.succeed() : w.fail(WAVEFILE_ERR_SIZE_MISMATCH);
}

int CSndWaveWriteStreamty::Close()
{
    Impl& w = *m_pImpl;
    if (!IsOpen())
        return w.fail(WAVEFILE_ERR_NOT_OPEN);
    const WaveFileResult finished = w.stream->finish(w.stream->dataBytes());
    w.finishedBytes = w.stream->dataBytes();
    w.stream.reset();
    w.file.close();
    w.format = wavefile::PcmFormat();
    return finished == WAVEFILE_OK ? w.succeed() : w.fail(finished);
}

BOOL CSndWaveWriteStreamty::IsOpen() const
{
    return m_pImpl->file.isOpen() ? TRUE : FALSE;
}

unsigned long CSndWaveWriteStreamty::GetDataBytesWritten() const
{
    const ULONGLONG bytes = GetDataBytesWritten64();
    return bytes > 0xFFFFFFFFull ? 0xFFFFFFFFul : static_cast<unsigned long>(bytes);
}

ULONGLONG CSndWaveWriteStreamty::GetDataBytesWritten64() const
{
    const Impl& w = *m_pImpl;
    return w.stream ? w.stream->dataBytes() : w.finishedBytes;
}

BOOL CSndWaveWriteStreamty::IsRf64() const
{
    return m_pImpl->stream && m_pImpl->stream->isRf64() ? TRUE : FALSE;
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
