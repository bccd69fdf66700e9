#pragma once
// Position notifications on the capture buffer: the stop event, and evenly spaced
// position events for recordings that run round the buffer.

#include "DSndCapturety1Buff.h"
#include "../foundation/NotifyEvents.h"

class AFX_EXT_CLASS CDSndCapturety2BuffNotify : public CDSndCapturety1Buff
{
public:
    enum
    {
        kNotifyEntries = 30000
    };

    CDSndCapturety2BuffNotify();
    virtual ~CDSndCapturety2BuffNotify();

    int initNotify();
    int initDSBNevt();
    int initDSBNoteEvt(unsigned long ulBytes, unsigned long ulUnit, tWAVEFORMATEX wfx);
    int isStopNotified();
    int _freeNotify();

protected:
    int m_nNotifyPositions;
    DSBPOSITIONNOTIFY m_posNotify[kNotifyEntries]; // entry 0 is the stop entry
    IDirectSoundNotify* m_pDSNotify;

private:
    RetiredNotifyEvents m_retiredEvents;
};
