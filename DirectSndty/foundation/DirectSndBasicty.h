#pragma once
// Common root of the device, sound-buffer and capture chains: the result of the last
// platform call, its test, and the two checks on a PCM format the library relies on.

#include <afxwin.h>
#include "WaveFormat.h"

class AFX_EXT_CLASS CDirectSndBasicty : public CObject
{
public:
    CDirectSndBasicty();
    virtual ~CDirectSndBasicty();

protected:
    int isSoundFormatSame(tWAVEFORMATEX wfx1, tWAVEFORMATEX wfx2);
    int isSupportWfx(tWAVEFORMATEX wfx);
    // Only S_OK counts: positive success codes such as S_FALSE are failures here.
    int traceHR();

    HRESULT m_hr;
};
