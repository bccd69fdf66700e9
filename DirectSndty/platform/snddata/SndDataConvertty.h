#pragma once
// Converter of sound-data containers: turns the bound container's stereo PCM into mono
// in place, for sound buffers that take one channel only.

#include "SndDatatyx.h"

class SNDDATA_API CSndDataConvertty : public CObject
{
    DECLARE_DYNAMIC(CSndDataConvertty)

public:
    CSndDataConvertty();
    virtual ~CSndDataConvertty();

    // Binds the container to convert (not owned; null unbinds). Nonzero when bound.
    int setSndDataty(CSndDatatyx* sndData);
    // Averages the two channels of 8-bit (unsigned) or 16-bit (signed) stereo PCM into one,
    // rewriting the container's bytes and format; a trailing partial frame is dropped.
    // 0, with the container unchanged, when nothing is bound, the data are not such
    // stereo PCM (mono, another tag or width, inconsistent block alignment), no whole
    // frame is held or a recording is open.
    int sndDataChannel2to1();

private:
    CSndDatatyx* m_pSndData;
};
