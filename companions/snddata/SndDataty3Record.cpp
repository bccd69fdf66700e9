#include "SndDataty3Record.h"

IMPLEMENT_DYNAMIC(CSndDataty3Record, CSndDataty1)

CSndDataty3Record::CSndDataty3Record()
{
}

CSndDataty3Record::~CSndDataty3Record()
{
}

int CSndDataty3Record::initRecordBuffer(unsigned long size, tWAVEFORMATEX wfx, int keepOld)
{
    if (!isUsableWfx(wfx))
        return 0;
    // Samples of another format cannot follow the old ones, so those are dropped.
    if (keepOld == 0 || !isWaveFormatexSame(wfx))
    {
        clearData();
        setWfx(wfx);
    }
    reserveData(size);
    setAssembling(true);
    return 1;
}

// Only whole blocks are taken: a partial one would shift every later sample frame.
int CSndDataty3Record::insertNewRecordDataDSnd(const char* data, unsigned long size)
{
    if (!isAssembling() || data == nullptr || size == 0)
        return 0;
    if (size % getAudioWaveDataWfx().nBlockAlign != 0)
        return 0;
    return appendData(data, size);
}

int CSndDataty3Record::recordEndProcess()
{
    if (!isAssembling())
        return 0;
    setAssembling(false);
    releaseSpareCapacity();
    return hasAudioWaveData();
}

int CSndDataty3Record::isRecording() const
{
    return isAssembling() ? 1 : 0;
}
