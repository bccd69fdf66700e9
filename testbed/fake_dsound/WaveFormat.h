#pragma once
// Wave-format rules shared by playback and capture buffers.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>

#include <cstring>

namespace fakeds
{

// PCM with 8 or 16 bits, 1 to maxChannels channels, a rate in [minRate, maxRate], and block
// alignment and byte rate that agree with the rest, as DirectSound demands of a WAVEFORMATEX.
bool isValidPcm(const WAVEFORMATEX& format, WORD maxChannels, DWORD minRate, DWORD maxRate);

// GetFormat's size protocol: a null record asks only for the size needed (18 for PCM); a record
// smaller than that is refused.
HRESULT copyFormatOut(const WAVEFORMATEX& format, LPWAVEFORMATEX out, DWORD sizeAllocated,
                      LPDWORD sizeWritten);

// Copies a caller's description no further than the size it declares, so that an older, shorter
// record is never read past its end.
template <class Desc>
Desc copyDeclared(const Desc* desc)
{
    Desc copy{};
    if (desc)
        std::memcpy(&copy, desc, desc->dwSize < sizeof(Desc) ? desc->dwSize : sizeof(Desc));
    return copy;
}

} // namespace fakeds
