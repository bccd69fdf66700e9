#pragma once
// Saves the device's settings to an archive and restores them.

#include "DirectSndDevice8Stim.h"

class AFX_EXT_CLASS CDirectSndDevice9File : public CDirectSndDevice8Stim
{
public:
    CDirectSndDevice9File();
    virtual ~CDirectSndDevice9File();

    // 1 when done, 0 when the archive is not a device settings file.
    // Archive exceptions (end of file, wrong direction) pass through.
    int serialize(CArchive& ar);

    // Values the settings file carries for the application; the library does not use them.
    DWORD m_dwExtra1;
    tWAVEFORMATEX m_wfxSecond;
    DWORD m_dwExtra2;
    DWORD m_dwExtra3;
    DWORD m_dwExtra4;
    DWORD m_dwExtra5;

protected:
    int _01serializeWaveformatex(CArchive& ar, tWAVEFORMATEX& wfx);

private:
    int serialize2003_03_09(CArchive& ar);
    void serializeCaps(CArchive& ar);
};
