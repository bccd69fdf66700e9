#include "SndDataConvertty.h"

#include <cstdint>
#include <cstring>

IMPLEMENT_DYNAMIC(CSndDataConvertty, CObject)

namespace
{
bool isConvertibleStereo(const tWAVEFORMATEX& wfx)
{
    if (wfx.wFormatTag != WAVE_FORMAT_PCM || wfx.nChannels != 2)
        return false;
    if (wfx.wBitsPerSample != 8 && wfx.wBitsPerSample != 16)
        return false;
    return wfx.nBlockAlign == 2 * (wfx.wBitsPerSample / 8);
}

// 8-bit PCM is unsigned (silence at 128); the mean of two unsigned values stays in range.
void mixFrames8(unsigned char* bytes, unsigned long frames)
{
    for (unsigned long i = 0; i < frames; ++i)
    {
        int left = bytes[2 * i];
        int right = bytes[2 * i + 1];
        bytes[i] = static_cast<unsigned char>((left + right) / 2);
    }
}

// memcpy rather than casts: the bytes carry no alignment promise for 16-bit access.
void mixFrames16(char* bytes, unsigned long frames)
{
    for (unsigned long i = 0; i < frames; ++i)
    {
        int16_t pair[2];
        std::memcpy(pair, bytes + 4 * i, sizeof(pair));
        int16_t mono = static_cast<int16_t>((int(pair[0]) + int(pair[1])) / 2);
        std::memcpy(bytes + 2 * i, &mono, sizeof(mono));
    }
}
} // namespace

CSndDataConvertty::CSndDataConvertty()
    : m_pSndData(nullptr)
{
}

CSndDataConvertty::~CSndDataConvertty()
{
}

int CSndDataConvertty::setSndDataty(CSndDatatyx* sndData)
{
    m_pSndData = sndData;
    return sndData != nullptr ? 1 : 0;
}

// Each mono frame is written at or before the stereo frame it comes from, so the
// rewrite can run forward in the same storage.
int CSndDataConvertty::sndDataChannel2to1()
{
    if (m_pSndData == nullptr || m_pSndData->isRecording())
        return 0;
    tWAVEFORMATEX wfx = m_pSndData->getAudioWaveDataWfx();
    if (!isConvertibleStereo(wfx))
        return 0;
    unsigned long frames = m_pSndData->getDataSize() / wfx.nBlockAlign;
    char* bytes = m_pSndData->getDataPointer();
    if (frames == 0 || bytes == nullptr)
        return 0;

    if (wfx.wBitsPerSample == 8)
        mixFrames8(reinterpret_cast<unsigned char*>(bytes), frames);
    else
        mixFrames16(bytes, frames);

    wfx.nChannels = 1;
    wfx.nBlockAlign = wfx.wBitsPerSample / 8;
    wfx.nAvgBytesPerSec = wfx.nSamplesPerSec * wfx.nBlockAlign;
    m_pSndData->truncateData(frames * wfx.nBlockAlign, wfx);
    return 1;
}
