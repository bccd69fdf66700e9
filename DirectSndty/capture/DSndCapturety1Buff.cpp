#include "DSndCapturety1Buff.h"
#include "../foundation/ComRelease.h"

namespace
{
struct DefaultFormatRow
{
    DWORD dwFlag;
    DWORD dwRate;
    WORD wBits;
    bool bMono;
};

// First match wins; only the 8-bit row forces mono.
const DefaultFormatRow kDefaultFormats[] = {
    {WAVE_FORMAT_4S16, 44100, 16, false},
    {WAVE_FORMAT_2S16, 22050, 16, false},
    {WAVE_FORMAT_1S16, 11025, 16, false},
    {WAVE_FORMAT_1M08, 11025, 8, true},
};
}

CDSndCapturety1Buff::CDSndCapturety1Buff()
    : m_ulDefaultBytes(800000),
      m_pDSCBuffer(NULL)
{
    ZeroMemory(&m_wfxCurrent, sizeof(m_wfxCurrent));
    ZeroMemory(&m_dscbd, sizeof(m_dscbd));
    ZeroMemory(&m_dscbcaps, sizeof(m_dscbcaps));
}

CDSndCapturety1Buff::~CDSndCapturety1Buff()
{
    _freeDSndCptBuff();
    _freeDSndCpt();
}

int CDSndCapturety1Buff::_freeDSndCptBuff()
{
    releaseInterface(m_pDSCBuffer);
    return 1;
}

int CDSndCapturety1Buff::getDefaultWFX(tWAVEFORMATEX* pWfx)
{
    DSCCAPS caps = getDSndCptCap();
    m_wfxCurrent.wFormatTag = WAVE_FORMAT_PCM;
    m_wfxCurrent.cbSize = 0;
    m_wfxCurrent.nChannels = static_cast<WORD>(caps.dwChannels);

    const DefaultFormatRow* pRow = NULL;
    for (const DefaultFormatRow& row : kDefaultFormats)
    {
        if (caps.dwFormats & row.dwFlag)
        {
            pRow = &row;
            break;
        }
    }
    if (pRow == NULL)
        return 0;

    m_wfxCurrent.nSamplesPerSec = pRow->dwRate;
    m_wfxCurrent.wBitsPerSample = pRow->wBits;
    if (pRow->bMono)
        m_wfxCurrent.nChannels = 1;
    m_wfxCurrent.nBlockAlign = static_cast<WORD>(m_wfxCurrent.nChannels * m_wfxCurrent.wBitsPerSample / 8);
    m_wfxCurrent.nAvgBytesPerSec = m_wfxCurrent.nBlockAlign * m_wfxCurrent.nSamplesPerSec;
    if (pWfx != NULL)
        *pWfx = m_wfxCurrent;
    return 1;
}

int CDSndCapturety1Buff::getCurrentWfx(tWAVEFORMATEX* pWfx)
{
    if (m_pDSCBuffer == NULL || pWfx == NULL)
        return 1;
    m_hr = m_pDSCBuffer->GetFormat(reinterpret_cast<LPWAVEFORMATEX>(pWfx), sizeof(tWAVEFORMATEX), NULL);
    traceHR();
    return 1;
}

int CDSndCapturety1Buff::createDSndCptBuff(tWAVEFORMATEX wfx, unsigned long ulBytes, unsigned long ulFlags)
{
    m_wfxCurrent = wfx;
    ZeroMemory(&m_dscbd, sizeof(m_dscbd));
    m_dscbd.dwSize = sizeof(DSCBUFFERDESC);
    m_dscbd.dwFlags = ulFlags;
    m_dscbd.dwBufferBytes = ulBytes;
    m_dscbd.lpwfxFormat = reinterpret_cast<LPWAVEFORMATEX>(&m_wfxCurrent);
    _freeDSndCptBuff();

    IDirectSoundCapture* pDevice = captureDevice();
    if (pDevice == NULL)
    {
        m_hr = DSERR_UNINITIALIZED;
    }
    else
    {
        IDirectSoundCaptureBuffer* pFirst = NULL;
        m_hr = pDevice->CreateCaptureBuffer(&m_dscbd, &pFirst, NULL);
        if (SUCCEEDED(m_hr))
        {
            m_hr = pFirst->QueryInterface(IID_IDirectSoundCaptureBuffer8, reinterpret_cast<void**>(&m_pDSCBuffer));
            releaseInterface(pFirst);
        }
    }
    if (traceHR())
        return 1;
    _freeDSndCptBuff();
    m_dscbd.dwBufferBytes = 0;
    return 0;
}

int CDSndCapturety1Buff::createDSndCptBuffDefault(unsigned long ulBytes)
{
    tWAVEFORMATEX wfx;
    if (!getDefaultWFX(&wfx))
        return 0;
    return createDSndCptBuff(wfx, ulBytes, 0);
}

int CDSndCapturety1Buff::getDSBCposition(unsigned long* pulCapturePosition, unsigned long* pulReadPosition)
{
    if (m_pDSCBuffer == NULL)
        return 0;
    DWORD dwCapture = 0;
    DWORD dwRead = 0;
    m_hr = m_pDSCBuffer->GetCurrentPosition(&dwCapture, &dwRead);
    *pulCapturePosition = dwCapture;
    *pulReadPosition = dwRead;
    return traceHR();
}

int CDSndCapturety1Buff::getDSBcaps(DSCBCAPS* pCaps)
{
    if (m_pDSCBuffer == NULL)
        return 0;
    pCaps->dwSize = sizeof(DSCBCAPS);
    m_hr = m_pDSCBuffer->GetCaps(pCaps);
    return traceHR();
}

// Inverted as it has always been: a successful query answers 0, a failed one the size
// from an earlier query.
unsigned long CDSndCapturety1Buff::getDSCBuffSize()
{
    if (m_pDSCBuffer == NULL)
        return m_dscbcaps.dwBufferBytes;
    DSCBCAPS caps = m_dscbcaps;
    caps.dwSize = sizeof(DSCBCAPS);
    m_hr = m_pDSCBuffer->GetCaps(&caps);
    if (traceHR())
    {
        m_dscbcaps = caps;
        return 0;
    }
    return m_dscbcaps.dwBufferBytes;
}

int CDSndCapturety1Buff::hasCaptureStatus(DWORD dwBit)
{
    if (m_pDSCBuffer == NULL)
        return 0;
    DWORD dwStatus = 0;
    m_hr = m_pDSCBuffer->GetStatus(&dwStatus);
    if (FAILED(m_hr))
        return 0;
    return (dwStatus & dwBit) ? 1 : 0;
}

int CDSndCapturety1Buff::isDSCBcapturing()
{
    return hasCaptureStatus(DSCBSTATUS_CAPTURING);
}

int CDSndCapturety1Buff::isDSCBlooping()
{
    return hasCaptureStatus(DSCBSTATUS_LOOPING);
}
