#include "SndDataRead01Wav.h"

#include <algorithm>
#include "ResultKeeper.h"
#include "RiffReader.h"
#include "Win32File.h"

IMPLEMENT_DYNAMIC(CSndDataRead01Wav, CObject)

struct CSndDataRead01Wav::Impl : ResultKeeper
{
    Win32File file;
    wavefile::WaveLayout layout; // all zero while no file is open
    uint64_t consumed = 0;       // bytes of sound data handed out

    uint64_t left() const { return layout.dataSize - consumed; }
};

namespace
{
unsigned long clipTo32Bits(uint64_t bytes)
{
    return bytes > 0xFFFFFFFFull ? 0xFFFFFFFFul : static_cast<unsigned long>(bytes);
}
} // namespace

CSndDataRead01Wav::CSndDataRead01Wav()
    : m_pImpl(new Impl)
{
}

CSndDataRead01Wav::~CSndDataRead01Wav()
{
}

int CSndDataRead01Wav::openSndFileMmio(LPCWSTR pathName)
{
    closeSndFileMmio();
    Impl& r = *m_pImpl;
    if (pathName == nullptr || *pathName == L'\0')
        return r.fail(WAVEFILE_ERR_ARGUMENT);
    if (!r.file.openForReading(pathName))
        return r.fail(WAVEFILE_ERR_OPEN);
    const WaveFileResult parsed = wavefile::parseWave(r.file, r.layout);
    if (parsed != WAVEFILE_OK)
    {
        closeSndFileMmio();
        return r.fail(parsed);
    }
    return r.succeed();
}

int CSndDataRead01Wav::closeSndFileMmio()
{
    Impl& r = *m_pImpl;
    r.file.close();
    r.layout = wavefile::WaveLayout();
    r.consumed = 0;
    return r.succeed();
}

BOOL CSndDataRead01Wav::isSndFileOpen() const
{
    return m_pImpl->file.isOpen() ? TRUE : FALSE;
}

tWAVEFORMATEX CSndDataRead01Wav::getSndFileWfx() const
{
    tWAVEFORMATEX wfx = {};
    if (!isSndFileOpen())
        return wfx;
    const wavefile::PcmFormat& f = m_pImpl->layout.format;
    // Extensible files too: the 18-byte record has no room for more.
    wfx.wFormatTag = f.isFloat ? WAVE_FORMAT_IEEE_FLOAT : WAVE_FORMAT_PCM;
    wfx.nChannels = f.channels;
    wfx.nSamplesPerSec = f.samplesPerSec;
    wfx.nAvgBytesPerSec = f.avgBytesPerSec;
    wfx.nBlockAlign = f.blockAlign;
    wfx.wBitsPerSample = f.bitsPerSample;
    return wfx;
}

WORD CSndDataRead01Wav::getSndFileFormatTag() const
{
    return m_pImpl->layout.format.fileTag;
}

unsigned long CSndDataRead01Wav::getSndDataSize() const
{
    return clipTo32Bits(m_pImpl->layout.dataSize);
}

unsigned long CSndDataRead01Wav::getSndDataLeft() const
{
    return clipTo32Bits(m_pImpl->left());
}

ULONGLONG CSndDataRead01Wav::getSndDataSize64() const
{
    return m_pImpl->layout.dataSize;
}

BOOL CSndDataRead01Wav::isSndFileRf64() const
{
    return m_pImpl->layout.rf64 ? TRUE : FALSE;
}

BOOL CSndDataRead01Wav::isSndDataClipped() const
{
    return m_pImpl->layout.clipped ? TRUE : FALSE;
}

WaveFileResult CSndDataRead01Wav::getSndFileResult() const
{
    return m_pImpl->result;
}

int CSndDataRead01Wav::readSndData(void* data, unsigned long& bytes)
{
    Impl& r = *m_pImpl;
    const unsigned long wanted = bytes;
    bytes = 0;
    if (!isSndFileOpen())
        return r.fail(WAVEFILE_ERR_NOT_OPEN);
    if (data == nullptr && wanted != 0)
        return r.fail(WAVEFILE_ERR_ARGUMENT);
    const unsigned long count = static_cast<unsigned long>(std::min<uint64_t>(wanted, r.left()));
    const size_t got = r.file.readAt(r.layout.dataOffset + r.consumed, data, count);
    r.consumed += got;
    bytes = static_cast<unsigned long>(got);
    return got == count ? r.succeed() : r.fail(WAVEFILE_ERR_IO);
}
