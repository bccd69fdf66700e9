#pragma once
// The output device a host instantiates: one sound card, brought up silently
// (initDSndStimX) or interactively (setUpHardwarePlayer), and taken down by releaseDSndty.

#include "DirectSndDevice9File.h"

class AFX_EXT_CLASS CDirectSndDevicety : public CDirectSndDevice9File
{
public:
    CDirectSndDevicety();
    virtual ~CDirectSndDevicety();

    int setCooperativeLevel(HWND hWnd, void* pContext);
    // Releases the primary buffer and the device object; always 0.
    int releaseDSndty(CDirectSndDevicety* pDevice);
};
