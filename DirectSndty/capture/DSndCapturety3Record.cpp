#include "DSndCapturety3Record.h"

namespace
{
unsigned long wholeBlocks(unsigned long ulBytes, WORD nBlockAlign)
{
    if (nBlockAlign == 0)
        return 0;
    return ulBytes - ulBytes % nBlockAlign;
}

int refuse(LPCTSTR lpszText)
{
    AfxMessageBox(lpszText, MB_OK, 0);
    return 0;
}
}

CDSndCapturety3Record::CDSndCapturety3Record()
    : m_ulReadPosition(0),
      m_bCapturing(0)
{
    getDefaultWFX(NULL);
}

CDSndCapturety3Record::~CDSndCapturety3Record()
{
    if (m_bCapturing)
        recordStop();
}

// The two-channel 44.1 kHz 16-bit test is made whatever format is asked for.
int CDSndCapturety3Record::prepareDevice()
{
    if (!createDSndCaptureObject(NULL))
        return refuse(_T("setup record object error"));
    if (!isDSCsupport2c4kh16b())
        return refuse(_T("This system does not supoort 2c4kh16b"));
    return 1;
}

int CDSndCapturety3Record::finishSetUp()
{
    if (!initNotify())
        return refuse(_T("InitNotify error"));
    if (!initDSBNevt())
        return refuse(_T("Init stop event error"));
    m_ulReadPosition = 0;
    return 1;
}

// The two paths' failure texts differ on purpose.
int CDSndCapturety3Record::createDefaultFormatBuffer(unsigned long ulBytes)
{
    if (!createDSndCptBuffDefault(ulBytes))
        return refuse(_T("Make capture buffer error"));
    return finishSetUp();
}

int CDSndCapturety3Record::createGivenFormatBuffer(tWAVEFORMATEX wfx, unsigned long ulBytes)
{
    if (!createDSndCptBuff(wfx, ulBytes, DSCBCAPS_WAVEMAPPED))
        return refuse(_T("make DSnd catpure error"));
    return finishSetUp();
}

int CDSndCapturety3Record::initDataSizeDefaultWFXNonCircle(unsigned long ulBytes)
{
    if (ulBytes == 0)
        return refuse(_T("Error in pass buffer size"));
    if (!prepareDevice())
        return 0;
    return createDefaultFormatBuffer(ulBytes);
}

int CDSndCapturety3Record::initDataSizeWfxNonCircle(tWAVEFORMATEX wfx, unsigned long ulBytes)
{
    if (!prepareDevice())
        return 0;
    unsigned long ulSize = wholeBlocks(ulBytes, wfx.nBlockAlign);
    if (ulSize == 0)
        return refuse(_T("Error in pass buffer size"));
    return createGivenFormatBuffer(wfx, ulSize);
}

int CDSndCapturety3Record::initRecordTimeDefaultWFXNonCircle(unsigned long ulSeconds)
{
    if (ulSeconds == 0)
        return refuse(_T("Error in passing record time"));
    if (!prepareDevice())
        return 0;
    tWAVEFORMATEX wfx;
    if (!getDefaultWFX(&wfx))
        return refuse(_T("Error in pass buffer size"));
    DWORD dwSize = static_cast<DWORD>(ulSeconds * wfx.nAvgBytesPerSec);
    if (dwSize == 0)
        return refuse(_T("Error in pass buffer size"));
    return createDefaultFormatBuffer(dwSize);
}

int CDSndCapturety3Record::initRecordTimeWfxNonCircle(tWAVEFORMATEX wfx, unsigned long ulSeconds)
{
    if (ulSeconds == 0)
        return refuse(_T("Error in passing record time"));
    if (!prepareDevice())
        return 0;
    DWORD dwSize = static_cast<DWORD>(ulSeconds * wfx.nAvgBytesPerSec);
    unsigned long ulSize = wholeBlocks(dwSize, wfx.nBlockAlign);
    if (ulSize == 0)
        return refuse(_T("Error in pass buffer size"));
    return createGivenFormatBuffer(wfx, ulSize);
}

// No looping: capture ends by itself when the buffer is full.
int CDSndCapturety3Record::recordStart()
{
    if (m_pDSCBuffer == NULL)
        return 0;
    m_hr = m_pDSCBuffer->Start(0);
    if (!traceHR())
        return 0;
    m_bCapturing = 1;
    return 1;
}

int CDSndCapturety3Record::recordStop()
{
    if (m_pDSCBuffer == NULL)
        return 0;
    m_hr = m_pDSCBuffer->Stop();
    HRESULT hrStop = m_hr;
    _freeNotify();
    _freeDSndCptBuff();
    _freeDSndCpt();
    m_bCapturing = 0;
    m_hr = hrStop;
    return traceHR();
}

// The buffer is filled once, so the platform's read position only grows.
int CDSndCapturety3Record::copyUnCircleBufferData(char*& pData, unsigned long* pulBytes)
{
    *pulBytes = 0;
    if (!m_bCapturing || !isDSCBcapturing())
        return 0;

    unsigned long ulCapturePosition = 0;
    unsigned long ulPlatformRead = 0;
    if (!getDSBCposition(&ulCapturePosition, &ulPlatformRead))
        return 0;
    unsigned long ulNew = wholeBlocks(ulPlatformRead - m_ulReadPosition, m_wfxCurrent.nBlockAlign);
    if (ulNew == 0)
        return refuse(_T("No data for copying"));

    void* pRegion1 = NULL;
    void* pRegion2 = NULL;
    DWORD dwBytes1 = 0;
    DWORD dwBytes2 = 0;
    m_hr = m_pDSCBuffer->Lock(m_ulReadPosition, ulNew, &pRegion1, &dwBytes1, &pRegion2, &dwBytes2, 0);
    if (FAILED(m_hr))
        return 0;

    pData = new char[ulNew];
    CopyMemory(pData, pRegion1, dwBytes1);
    m_ulReadPosition += dwBytes1;
    *pulBytes += dwBytes1;
    if (pRegion2 != NULL && dwBytes2 > 0)
    {
        CopyMemory(pData + dwBytes1, pRegion2, dwBytes2);
        m_ulReadPosition += dwBytes2;
        *pulBytes += dwBytes2;
    }
    m_pDSCBuffer->Unlock(pRegion1, dwBytes1, pRegion2, dwBytes2);
    return 1;
}
