#include "WaveFormat.h"

namespace fakeds
{

bool isValidPcm(const WAVEFORMATEX& format, WORD maxChannels, DWORD minRate, DWORD maxRate)
{
    if (format.wFormatTag != WAVE_FORMAT_PCM)
        return false;
    if (format.nChannels < 1 || format.nChannels > maxChannels)
        return false;
    if (format.wBitsPerSample != 8 && format.wBitsPerSample != 16)
        return false;
    if (format.nSamplesPerSec < minRate || format.nSamplesPerSec > maxRate)
        return false;
    if (format.nBlockAlign != format.nChannels * format.wBitsPerSample / 8)
        return false;
    return format.nAvgBytesPerSec == format.nSamplesPerSec * format.nBlockAlign;
}

HRESULT copyFormatOut(const WAVEFORMATEX& format, LPWAVEFORMATEX out, DWORD sizeAllocated,
                      LPDWORD sizeWritten)
{
    const DWORD needed = sizeof(WAVEFORMATEX);
    if (!out && !sizeWritten)
        return DSERR_INVALIDPARAM;
    if (out) {
        if (sizeAllocated < needed)
            return DSERR_INVALIDPARAM;
        *out = format;
        out->cbSize = 0;
    }
    if (sizeWritten)
        *sizeWritten = needed;
    return DS_OK;
}

} // namespace fakeds
