#pragma once
// The public recording calls, and the recording settings dialog.

#include "SndDataRecordPlayty2Rdsnd.h"

class AFX_EXT_CLASS CSndDataRecordPlayty3R : public CSndDataRecordPlayty2Rdsnd
{
public:
    CSndDataRecordPlayty3R();
    virtual ~CSndDataRecordPlayty3R();

    int recordBegin(CWnd* pParentWnd, int nRecordFlag);
    // Asks for the settings, then prepares the capture without starting it.
    int recordBeginPro(CWnd* pParentWnd, int nRecordFlag);
    int recordStop();
    int recordUpdate();

    int m_nRecordDlgResult;

private:
    int checkOld_NewRecordWfx(tWAVEFORMATEX wfx);
};
