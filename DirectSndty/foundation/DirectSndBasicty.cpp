#include "DirectSndBasicty.h"

namespace
{
const DWORD kLowestRate = 11025;
const DWORD kRateBand = 44100 - 11025;
}

CDirectSndBasicty::CDirectSndBasicty()
    : m_hr(S_OK)
{
}

CDirectSndBasicty::~CDirectSndBasicty()
{
}

int CDirectSndBasicty::isSoundFormatSame(tWAVEFORMATEX wfx1, tWAVEFORMATEX wfx2)
{
    if (wfx1.wFormatTag != wfx2.wFormatTag)
        return 0;
    if (wfx1.wBitsPerSample != wfx2.wBitsPerSample)
        return 0;
    if (wfx1.nSamplesPerSec != wfx2.nSamplesPerSec)
        return 0;
    if (wfx1.nChannels != wfx2.nChannels)
        return 0;
    if (wfx1.nBlockAlign != wfx2.nBlockAlign)
        return 0;
    if (wfx1.nAvgBytesPerSec != wfx2.nAvgBytesPerSec)
        return 0;
    if (wfx1.cbSize != wfx2.cbSize)
        return 0;
    return 1;
}

// Bits per sample and the byte rate are deliberately not examined.
int CDirectSndBasicty::isSupportWfx(tWAVEFORMATEX wfx)
{
    if (wfx.wFormatTag != WAVE_FORMAT_PCM)
        return 0;
    if (wfx.cbSize != 0)
        return 0;
    if (wfx.nChannels != 1 && wfx.nChannels != 2)
        return 0;
    if (wfx.nBlockAlign < 1 || wfx.nBlockAlign > 4)
        return 0;
    if (wfx.nSamplesPerSec - kLowestRate > kRateBand)
        return 0;
    return 1;
}

int CDirectSndBasicty::traceHR()
{
    return m_hr == S_OK ? 1 : 0;
}
