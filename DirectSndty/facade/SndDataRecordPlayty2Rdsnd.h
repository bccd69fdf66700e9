#pragma once
// Recording through the one capture object that every facade shares.

#include "SndDataRecordPlayty.h"
#include "../foundation/WaveFormat.h"

class CDSndCapturetyx;

class AFX_EXT_CLASS CSndDataRecordPlayty2Rdsnd : public CSndDataRecordPlayty
{
public:
    CSndDataRecordPlayty2Rdsnd();
    // Any facade going away takes the shared capture object with it.
    virtual ~CSndDataRecordPlayty2Rdsnd();

    static CDSndCapturetyx* m_pDSndCapturetyx;

protected:
    int killDirectSndCpture();
    int recordBeginDsnd(int nRecordFlag);
    int recordBeginProDsnd(unsigned long ulBytes, tWAVEFORMATEX wfx, int nRecordFlag);
    int recordStopDsnd();
    int recordUpdateDsnd();

    // The shared capture object and an owned container, made when missing.
    void createRecordObjects();

private:
    static const unsigned long kStandardRecordBytes = 8000000;
};
