#pragma once
// The record/play facade a host instantiates. Besides recording into and playing from its
// container, it opens the library's stream dialogs: recording straight into a wave file and
// playing a wave file of any length. All facades share the one dialog of each kind.

#include "SndDataRecordPlayty6P.h"

class CDlgSoundStreamRecord;
class CDlgSoundStreamPlay;

class AFX_EXT_CLASS CSndDataRecordPlaytyx : public CSndDataRecordPlayty6P
{
public:
    CSndDataRecordPlaytyx();
    virtual ~CSndDataRecordPlaytyx();

    // Opens a new stream recording dialog in place of the one an earlier call opened (a
    // recording still running there ends, and its file is finished). Modal: 1 when the
    // user closes it with OK, else 0. Modeless: 1 once it shows.
    int recordStreamty(bool bModal);
    // Shows a new stream player, modeless, in place of the one an earlier call opened. It
    // plays on the device registered now; with none it opens but cannot play. Always 1.
    int playStreamty();

    // Each dialog lives until the next call of its entry point replaces it.
    static CDlgSoundStreamRecord* m_pRecordStream;
    static CDlgSoundStreamPlay* m_pPlayStream;
};
