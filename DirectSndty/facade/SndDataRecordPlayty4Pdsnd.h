#pragma once
// Plays the container through one secondary buffer on the output device that the host
// registered once for every facade.

#include "SndDataRecordPlayty3R.h"

class CDirectSndDevicety;
class CDirectSnd2DBuff;
class CDirectSnd3DBuffty;

class AFX_EXT_CLASS CSndDataRecordPlayty4Pdsnd : public CSndDataRecordPlayty3R
{
public:
    CSndDataRecordPlayty4Pdsnd();
    virtual ~CSndDataRecordPlayty4Pdsnd();

    // The device is the host's; the facade never creates or releases it.
    static int setDirectSndDevice(CDirectSndDevicety* pDevice);
    static CDirectSndDevicety* m_pDirectSndDevicety;

    int m_bPlayActive;
    CDirectSnd3DBuffty* m_pDSnd3DBuff;

protected:
    int playBeginDSnd(HWND hWnd, int nReserved);
    int playBeginLoopDSnd(HWND hWnd, int nReserved);
    int playBeginProDSnd(HWND hWnd, int nReserved);
    int playStopDSnd();
    // Makes the buffer play on the registered device (none: it stays without one).
    static void placeOnRegisteredDevice(CDirectSnd2DBuff& buffer);

private:
    int playStandbyDSnd(HWND hWnd, int nReserved);
    int playStandbyProDSnd(HWND hWnd, int nReserved);
    bool hasPlayableData();
    bool ensurePlayBuffer();
};
