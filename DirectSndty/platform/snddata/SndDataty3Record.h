#pragma once
// Recording layer of the sound-data container: receives captured blocks one after
// another and makes them playable when the recording ends.

#include "SndDataty1.h"

class SNDDATA_API CSndDataty3Record : public CSndDataty1
{
    DECLARE_DYNAMIC(CSndDataty3Record)

public:
    CSndDataty3Record();
    virtual ~CSndDataty3Record();

    // Opens a recording of wfx. size is the expected byte count, used only to reserve
    // memory; recording goes on past it. keepOld nonzero: data already held in exactly
    // wfx are kept and the recording is appended to them (data in another format cannot
    // be joined and are discarded). keepOld zero: the recording starts afresh.
    // 0 when wfx has no channels, rate or block alignment.
    int initRecordBuffer(unsigned long size, tWAVEFORMATEX wfx, int keepOld);
    // Appends a copy of size bytes of captured data; the caller keeps and frees its
    // array. 0 (nothing appended) when no recording is open, data is null, size is 0 or
    // not a whole number of blocks, or memory runs out.
    int insertNewRecordDataDSnd(const char* data, unsigned long size);
    // Closes the recording; the data become playable. 1 when the container then holds
    // audio, 0 when nothing was recorded or no recording was open.
    int recordEndProcess();
    // Nonzero between initRecordBuffer and recordEndProcess.
    int isRecording() const;
};
