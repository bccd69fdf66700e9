#pragma once
// Records once into a capture buffer sized for the whole recording, by bytes or by
// seconds; the caller collects what has arrived as often as it likes.

#include "DSndCapturety2BuffNotify.h"

class AFX_EXT_CLASS CDSndCapturety3Record : public CDSndCapturety2BuffNotify
{
public:
    CDSndCapturety3Record();
    virtual ~CDSndCapturety3Record();

    int initDataSizeDefaultWFXNonCircle(unsigned long ulBytes);
    int initDataSizeWfxNonCircle(tWAVEFORMATEX wfx, unsigned long ulBytes);
    int initRecordTimeDefaultWFXNonCircle(unsigned long ulSeconds);
    int initRecordTimeWfxNonCircle(tWAVEFORMATEX wfx, unsigned long ulSeconds);
    int recordStart();
    int recordStop();
    // Hands out a new[] array of what arrived since the last call; the caller frees it.
    int copyUnCircleBufferData(char*& pData, unsigned long* pulBytes);

protected:
    unsigned long m_ulReadPosition;
    int m_bCapturing;

private:
    int prepareDevice();
    int finishSetUp();
    int createGivenFormatBuffer(tWAVEFORMATEX wfx, unsigned long ulBytes);
    int createDefaultFormatBuffer(unsigned long ulBytes);
};
