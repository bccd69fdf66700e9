#pragma once
// Root of the record/play facade: the sound-data container recorded into and played from.

#include <afxwin.h>

class CSndDatatyx;

class AFX_EXT_CLASS CSndDataRecordPlayty : public CObject
{
public:
    CSndDataRecordPlayty();
    virtual ~CSndDataRecordPlayty();

    // The facade owns the container only when it made one itself.
    int setSndData(CSndDatatyx* pSndData);

    static CDialog* m_pDlgDSndCapturePro; // the one recording settings dialog

    CSndDatatyx* m_pSndDataty;
    int m_bSndDataOwned;

protected:
    // Makes an owned container when there is none; false when none could be made.
    bool ensureSndData();
};
