#pragma once
// One capture buffer on the shared capture device, and the default capture format
// chosen from the device's capabilities.

#include "DSndCapturety.h"

class AFX_EXT_CLASS CDSndCapturety1Buff : public CDSndCapturety
{
public:
    CDSndCapturety1Buff();
    virtual ~CDSndCapturety1Buff();

    int getDefaultWFX(tWAVEFORMATEX* pWfx);
    int getCurrentWfx(tWAVEFORMATEX* pWfx);

protected:
    int _freeDSndCptBuff();
    int createDSndCptBuff(tWAVEFORMATEX wfx, unsigned long ulBytes, unsigned long ulFlags);
    int createDSndCptBuffDefault(unsigned long ulBytes);
    int getDSBCposition(unsigned long* pulCapturePosition, unsigned long* pulReadPosition);
    int getDSBcaps(DSCBCAPS* pCaps);
    unsigned long getDSCBuffSize();
    int isDSCBcapturing();
    int isDSCBlooping();

    unsigned long m_ulDefaultBytes; // kept for the record layout; nothing reads it
    tWAVEFORMATEX m_wfxCurrent;
    DSCBUFFERDESC m_dscbd;
    DSCBCAPS m_dscbcaps;
    IDirectSoundCaptureBuffer8* m_pDSCBuffer;

private:
    int hasCaptureStatus(DWORD dwBit);
};
