#pragma once
// The device's primary buffer: created on demand, its format read and changed under
// the cooperative-level rules, and the intended primary format kept for the settings file.

#include "DirectSndDevice.h"

class AFX_EXT_CLASS CDirectSndDevice1BufferPrimary : public CDirectSndDevice
{
public:
    CDirectSndDevice1BufferPrimary();
    virtual ~CDirectSndDevice1BufferPrimary();

    int getDSndBuffer1PrimaryWfx(tWAVEFORMATEX* pWfx);
    int setDSndPrimaryWfx(tWAVEFORMATEX wfx);
    int setDSndPrimaryWfxPro();
    int _closeDirectSndBufferPrimary();

protected:
    int createDSndBuff1Primary();
    int initDSndPrimaryWfx();

    tWAVEFORMATEX m_wfxPrimary;
    DSBUFFERDESC m_dsbdPrimary;
    IDirectSoundBuffer* m_pDSBufferPrimary;

private:
    int checkPrimaryFormatChangeAllowed();
    int applyPrimaryWfx(tWAVEFORMATEX wfx);
};
