#include "DSndCapturety4RecordPro.h"
#include <malloc.h>

namespace
{
const unsigned long kCaptureUnits = 6;

int refuse(LPCTSTR lpszText)
{
    AfxMessageBox(lpszText, MB_OK, 0);
    return 0;
}

unsigned long wholeBlocks(unsigned long ulBytes, WORD nBlockAlign)
{
    return nBlockAlign == 0 ? 0 : ulBytes - ulBytes % nBlockAlign;
}
}

CDSndCapturety4RecordPro::CDSndCapturety4RecordPro()
    : m_pRecordBlock(NULL),
      m_pRecordCursor(NULL),
      m_ulRequestedBytes(0),
      m_ulStoredBytes(0),
      m_nNotified(0)
{
}

CDSndCapturety4RecordPro::~CDSndCapturety4RecordPro()
{
}

int CDSndCapturety4RecordPro::_resetRecordPro()
{
    m_pRecordBlock = NULL;
    m_pRecordCursor = NULL;
    m_ulRequestedBytes = 0;
    m_ulStoredBytes = 0;
    m_ulReadPosition = 0;
    m_nNotified = 0;
    m_nNotifyPositions = 0;
    return 1;
}

// The refusals before the device is made leave nothing allocated.
int CDSndCapturety4RecordPro::initDataSizeWfxCirclePro(tWAVEFORMATEX wfx, unsigned long ulBytes, char* pBlock)
{
    _resetRecordPro();
    if (wfx.wFormatTag != WAVE_FORMAT_PCM)
        return refuse(_T("Record wave format not supported"));
    m_wfxCurrent = wfx;
    if (wfx.nBlockAlign == 0 || ulBytes < wfx.nBlockAlign)
        return refuse(_T("Error in pass buffer size"));
    m_ulRequestedBytes = wholeBlocks(ulBytes, wfx.nBlockAlign);
    m_pRecordBlock = pBlock;
    if (pBlock == NULL || m_ulRequestedBytes > _msize(pBlock))
        return refuse(_T("Passed data buffer error"));
    m_pRecordCursor = pBlock;

    if (!createDSndCaptureObject(NULL))
        return refuse(_T("setup record object error"));
    if (!isDSCsupport2c4kh16b())
        return refuse(_T("This system does not supoort 2c4kh16b"));
    unsigned long ulCaptureBytes = wholeBlocks(kCaptureUnits * wfx.nSamplesPerSec, wfx.nBlockAlign);
    if (!createDSndCptBuff(wfx, ulCaptureBytes, DSCBCAPS_WAVEMAPPED))
        return refuse(_T("make DSnd catpure error"));
    if (!initNotify())
        return refuse(_T("InitNotify error"));
    if (!initDSBNoteEvt(m_ulRequestedBytes, ulCaptureBytes, wfx))
        return refuse(_T("Init stop event error"));
    return 1;
}

unsigned long CDSndCapturety4RecordPro::getNewRecordDataSize()
{
    storeRecordData();
    unsigned long ulNew = m_ulStoredBytes - m_ulReadPosition;
    m_ulReadPosition = m_ulStoredBytes;
    return ulNew;
}

// A capture started without looping stops by itself once its buffer is full and signals
// the stop event; what it captured is copied after that, so the recording is the host's
// until recordStop, whatever the platform's status says.
int CDSndCapturety4RecordPro::isRecording()
{
    return m_bCapturing && m_pDSCBuffer != NULL;
}

// The stop event is polled once per outstanding position, as it has always been.
int CDSndCapturety4RecordPro::storeRecordData()
{
    if (!isRecording())
        return 0;
    if (m_nNotified >= m_nNotifyPositions)
        return 1;
    bool bSignalled = false;
    for (int i = m_nNotified; i < m_nNotifyPositions; i++)
    {
        if (WaitForSingleObject(m_posNotify[0].hEventNotify, 0) != WAIT_OBJECT_0)
            continue;
        m_nNotified++;
        bSignalled = true;
    }
    return bSignalled ? copydata2Buffer() : 1;
}

// Never past the end of the caller's block.
unsigned long CDSndCapturety4RecordPro::copyRegion(const void* pRegion, unsigned long ulBytes)
{
    if (pRegion == NULL)
        return 0;
    unsigned long ulRoom = m_ulRequestedBytes - m_ulStoredBytes;
    unsigned long ulCopy = ulBytes < ulRoom ? ulBytes : ulRoom;
    CopyMemory(m_pRecordCursor, pRegion, ulCopy);
    m_pRecordCursor += ulCopy;
    m_ulStoredBytes += ulCopy;
    return ulCopy;
}

// The capture runs once over its buffer, so the read position only grows; what lies
// beyond the buffer's end is never asked for. A buffer that has stopped by itself is full,
// wherever the platform then puts its read position.
int CDSndCapturety4RecordPro::copydata2Buffer()
{
    if (!isRecording())
        return 0;
    DWORD dwStatus = 0;
    m_hr = m_pDSCBuffer->GetStatus(&dwStatus);
    if (FAILED(m_hr))
        return 0;
    unsigned long ulCapturePosition = 0;
    unsigned long ulPlatformRead = 0;
    if (!getDSBCposition(&ulCapturePosition, &ulPlatformRead))
        return 0;
    const bool bFull = (dwStatus & DSCBSTATUS_CAPTURING) == 0 || ulPlatformRead > m_dscbd.dwBufferBytes;
    unsigned long ulEnd = bFull ? m_dscbd.dwBufferBytes : ulPlatformRead;
    unsigned long ulNew = ulEnd > m_ulReadPosition ? wholeBlocks(ulEnd - m_ulReadPosition, m_wfxCurrent.nBlockAlign) : 0;
    if (ulNew == 0)
        return refuse(_T("No data for copying"));

    void* pRegion1 = NULL;
    void* pRegion2 = NULL;
    DWORD dwBytes1 = 0;
    DWORD dwBytes2 = 0;
    m_hr = m_pDSCBuffer->Lock(m_ulReadPosition, ulNew, &pRegion1, &dwBytes1, &pRegion2, &dwBytes2, 0);
    if (FAILED(m_hr))
        return refuse(_T("Copy DirectSound Data error"));
    copyRegion(pRegion1, dwBytes1);
    copyRegion(pRegion2, dwBytes2);
    m_pDSCBuffer->Unlock(pRegion1, dwBytes1, pRegion2, dwBytes2);
    return 1;
}
