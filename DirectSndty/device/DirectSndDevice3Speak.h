#pragma once
// Reads and sets the device's speaker configuration.

#include "DirectSndDevice2Buffer3D.h"

class AFX_EXT_CLASS CDirectSndDevice3Speak : public CDirectSndDevice2Buffer3D
{
public:
    CDirectSndDevice3Speak();
    virtual ~CDirectSndDevice3Speak();

    DWORD getSpeakerConfig();

protected:
    int isHeadPhone();
    int isMonoSpeaker();
    int isQuadPhone();
    int isSurroundPhone();
    int isStereoMin();
    int isStereoNarrow();
    int isStereoWide();
    int isStereMax();

    int setHeadPhone();
    int setMonoSpeaker();
    int setQuadPhone();
    int setSurroundPhone();
    int setStereoMin();
    int setStereoNarrow();
    int setStereoWide();
    int setStereMax();

    int setSpeakerPro();

    DWORD m_dwSpeakerConfig;

private:
    DWORD readSpeakerConfig();
    int isConfig(DWORD dwConfig);
    int isStereoGeometry(DWORD dwGeometry);
    int setConfig(DWORD dwConfig);
};
