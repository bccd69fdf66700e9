#pragma once
// Root of the output device chain: the DirectSound 8 object of one sound card, the
// cooperative level for an application window, and the card's cached capabilities.

#include "../foundation/DirectSndBasicty.h"
#include <dsound.h>

class CDSndDeviceInfoty;

class AFX_EXT_CLASS CDirectSndDevice : public CDirectSndBasicty
{
public:
    CDirectSndDevice();
    virtual ~CDirectSndDevice();

    CDSndDeviceInfoty* enumerateDirectSndDeviceInfo();
    int setDSndCooperatLevelStd(HWND hWnd, DWORD dwLevel);
    int setDsndCoopLevelPro(HWND hWnd);

    IDirectSound8* getDirectSnd() const;
    HWND getSndDeviceHwnd();

    int addReference();
    int removeReference();
    int getReferenceNumber();

    int getDSnd2ndBufSmpRat(DWORD& dwMinRate, DWORD& dwMaxRate);
    DWORD getFreeHwMixingStaticBufferSize() const;

protected:
    int createDSndObject(GUID* pGuidDevice);
    int selectSoundCards();

    DSCAPS getDSCAPS();
    int getDSCAPSPro();
    int get2ndChannels();
    int get2ndSampleBits();
    DWORD getTotalHwMemBytes();
    DWORD getFreeHwMemBytes();
    DWORD getMaxHwMixingStaticBuffers();

    HWND m_hWndDevice;
    int m_nReference;
    DSCAPS m_dsCaps;
    DWORD m_dwCoopLevel;
    IDirectSound8* m_pDirectSound;
    CDSndDeviceInfoty* m_pDeviceInfo;

private:
    int _freeDSndObject();
    HRESULT refreshCaps();
    int openChosenCard(int nDeviceId);
};
