#pragma once
// The sound-data container that hosts and the sound library create: loading of PCM data
// and discarding of a recording on top of the read and record layers.

#include "SndDataty3Record.h"

class SNDDATA_API CSndDatatyx : public CSndDataty3Record
{
    DECLARE_DYNCREATE(CSndDatatyx)

public:
    CSndDatatyx();
    virtual ~CSndDatatyx();

    // Discards the held bytes; the format and an open recording stay, so a recording
    // in progress goes on from empty. Always 1.
    int resetDSndRecord();
    // Replaces the content with a copy of size bytes at data in format wfx (the caller
    // keeps its array) and closes any open recording. A trailing partial block is kept
    // as given. 0, with the content unchanged, for null data, size 0, a format without
    // channels, rate or block alignment, or lack of memory.
    int setNewSndData(const char* data, unsigned long size, tWAVEFORMATEX wfx);
};
