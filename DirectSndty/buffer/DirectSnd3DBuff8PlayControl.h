#pragma once
// Frequency, volume and play position of the buffer, with the platform's limits applied.

#include "DirectSnd3DBuff7PlayStream.h"

class AFX_EXT_CLASS CDirectSnd3DBuff8PlayControl : public CDirectSnd3DBuff7PlayStream
{
public:
    CDirectSnd3DBuff8PlayControl();
    virtual ~CDirectSnd3DBuff8PlayControl();

    unsigned long getFrequency();
    int setFrequency(unsigned long ulHertz);
    long getVolume();
    int setVolume(long lVolume);
    int getPlayPosition(unsigned long* pulPlayCursor, unsigned long* pulWriteCursor);
};
