#pragma once
// Position notifications on the buffer (a stop entry and up to 29 position entries), and
// questions about its play status.

#include "DirectSnd3DBuff2Motion.h"
#include "../foundation/NotifyEvents.h"

class AFX_EXT_CLASS CDirectSnd3DBuff5Notify : public CDirectSnd3DBuff2Motion
{
public:
    enum
    {
        kNotifyEntries = 30
    };

    CDirectSnd3DBuff5Notify();
    virtual ~CDirectSnd3DBuff5Notify();

    int isDSndBufferPlaying();
    int isDSndBufferLost();
    int isDSndBufferLooping();

protected:
    int quaryNotify();
    int initNotifyEvt(unsigned long ulTotal, unsigned long ulUnit, tWAVEFORMATEX wfx);
    int initStopEvt();

    DSBPOSITIONNOTIFY m_posNotify[kNotifyEntries];
    IDirectSoundNotify8* m_pDSNotify;

private:
    int hasStatus(DWORD dwBit);

    RetiredNotifyEvents m_retiredEvents;
};
