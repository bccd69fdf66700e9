#include "SndDatatyx.h"

IMPLEMENT_DYNCREATE(CSndDatatyx, CSndDataty3Record)

CSndDatatyx::CSndDatatyx()
{
}

CSndDatatyx::~CSndDatatyx()
{
}

int CSndDatatyx::resetDSndRecord()
{
    clearData();
    return 1;
}

int CSndDatatyx::setNewSndData(const char* data, unsigned long size, tWAVEFORMATEX wfx)
{
    if (data == nullptr || size == 0 || !isUsableWfx(wfx))
        return 0;
    if (!replaceData(data, size, wfx))
        return 0;
    setAssembling(false);
    return 1;
}
