#pragma once
// Records into a heap block the caller owns, through a capture buffer of six seconds'
// worth of frames; each getNewRecordDataSize tells how many new bytes have arrived.
// No copy ever writes past the caller's block or reads past the capture buffer.

#include "DSndCapturety3Record.h"

class AFX_EXT_CLASS CDSndCapturety4RecordPro : public CDSndCapturety3Record
{
public:
    CDSndCapturety4RecordPro();
    virtual ~CDSndCapturety4RecordPro();

    // pBlock must come from this run-time library's heap: its size is checked with _msize.
    int initDataSizeWfxCirclePro(tWAVEFORMATEX wfx, unsigned long ulBytes, char* pBlock);
    unsigned long getNewRecordDataSize();

protected:
    int _resetRecordPro();

    char* m_pRecordBlock;
    char* m_pRecordCursor;
    unsigned long m_ulRequestedBytes;
    unsigned long m_ulStoredBytes;
    int m_nNotified;

private:
    int storeRecordData();
    int copydata2Buffer();
    int isRecording();
    unsigned long copyRegion(const void* pRegion, unsigned long ulBytes);
};
