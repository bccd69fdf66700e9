#include "DirectSndDevice1BufferPrimary.h"
#include "../dialogs/DlgDSndPrimaryWfx.h"
#include "../foundation/ComRelease.h"
#include <vector>

namespace
{
// Drivers describe the primary format in at most a WAVEFORMATEXTENSIBLE; anything
// larger is not a format this library could use.
const DWORD kLargestFormatRecord = 1024;
}

CDirectSndDevice1BufferPrimary::CDirectSndDevice1BufferPrimary()
    : m_pDSBufferPrimary(NULL)
{
    ZeroMemory(&m_dsbdPrimary, sizeof(m_dsbdPrimary));
    initDSndPrimaryWfx();
}

CDirectSndDevice1BufferPrimary::~CDirectSndDevice1BufferPrimary()
{
    _closeDirectSndBufferPrimary();
}

int CDirectSndDevice1BufferPrimary::initDSndPrimaryWfx()
{
    m_wfxPrimary.wFormatTag = WAVE_FORMAT_PCM;
    m_wfxPrimary.nChannels = 2;
    m_wfxPrimary.nSamplesPerSec = 22050;
    m_wfxPrimary.nAvgBytesPerSec = 88200;
    m_wfxPrimary.nBlockAlign = 4;
    m_wfxPrimary.wBitsPerSample = 16;
    m_wfxPrimary.cbSize = 0;
    return 1;
}

int CDirectSndDevice1BufferPrimary::_closeDirectSndBufferPrimary()
{
    releaseInterface(m_pDSBufferPrimary);
    return 1;
}

int CDirectSndDevice1BufferPrimary::createDSndBuff1Primary()
{
    releaseInterface(m_pDSBufferPrimary);

    ZeroMemory(&m_dsbdPrimary, sizeof(m_dsbdPrimary));
    m_dsbdPrimary.dwSize = sizeof(DSBUFFERDESC);
    m_dsbdPrimary.dwFlags = DSBCAPS_PRIMARYBUFFER;
    m_dsbdPrimary.dwBufferBytes = 0;
    m_dsbdPrimary.lpwfxFormat = NULL;

    if (m_pDirectSound == NULL)
        m_hr = DSERR_UNINITIALIZED;
    else
        m_hr = m_pDirectSound->CreateSoundBuffer(&m_dsbdPrimary, &m_pDSBufferPrimary, NULL);

    if (m_pDSBufferPrimary == NULL)
    {
        CString text;
        text.Format(_T("Create direct sound primary buffer error:%d \n"), (int)GetLastError());
        AfxMessageBox(text, MB_OK, 0);
        return 0;
    }
    if (FAILED(m_hr))
    {
        releaseInterface(m_pDSBufferPrimary);
        return 0;
    }
    return 1;
}

// The platform may describe the format in more than 18 bytes; only the first 18 are kept.
int CDirectSndDevice1BufferPrimary::getDSndBuffer1PrimaryWfx(tWAVEFORMATEX* pWfx)
{
    ZeroMemory(pWfx, sizeof(tWAVEFORMATEX));
    if (m_pDSBufferPrimary == NULL)
    {
        AfxMessageBox(_T("Primary direct sound buffer is not initialized"), MB_OK, 0);
        return 0;
    }

    DWORD dwSizeNeeded = 0;
    m_hr = m_pDSBufferPrimary->GetFormat(NULL, 0, &dwSizeNeeded);
    if (FAILED(m_hr))
        return 0;

    DWORD dwSize = dwSizeNeeded < sizeof(tWAVEFORMATEX) ? sizeof(tWAVEFORMATEX) : dwSizeNeeded;
    if (dwSize > kLargestFormatRecord)
        dwSize = kLargestFormatRecord;
    std::vector<BYTE> scratch(dwSize, 0);
    LPWAVEFORMATEX pScratch = reinterpret_cast<LPWAVEFORMATEX>(scratch.data());
    m_hr = m_pDSBufferPrimary->GetFormat(pScratch, dwSize, NULL);
    if (FAILED(m_hr))
        return 0;

    CopyMemory(pWfx, pScratch, sizeof(tWAVEFORMATEX));
    m_wfxPrimary = *pWfx;
    return 1;
}

int CDirectSndDevice1BufferPrimary::checkPrimaryFormatChangeAllowed()
{
    if (m_pDirectSound == NULL)
    {
        AfxMessageBox(_T("Direct sound is not initialized"), MB_OK, 0);
        return 0;
    }
    if (m_pDSBufferPrimary == NULL)
    {
        AfxMessageBox(_T("Primary sound buffer is not initialized"), MB_OK, 0);
        return 0;
    }
    if (m_dwCoopLevel < DSSCL_PRIORITY)
    {
        AfxMessageBox(_T("To change primary sound buffer formate, direct sound cooperative level at least priority"),
                      MB_OK, 0);
        return 0;
    }
    return 1;
}

int CDirectSndDevice1BufferPrimary::setDSndPrimaryWfx(tWAVEFORMATEX wfx)
{
    if (!checkPrimaryFormatChangeAllowed())
        return 0;
    return applyPrimaryWfx(wfx);
}

int CDirectSndDevice1BufferPrimary::setDSndPrimaryWfxPro()
{
    if (!checkPrimaryFormatChangeAllowed())
        return 0;

    CDlgDSndPrimaryWfx dlg;
    dlg.m_wfxPrimary = m_wfxPrimary;
    if (dlg.DoModal() != IDOK)
        return 0;
    return applyPrimaryWfx(dlg.m_wfxPrimary);
}

// A refused format is only a warning: the platform has the last word. The playing
// status is compared for equality, so a combined status does not stop the buffer.
int CDirectSndDevice1BufferPrimary::applyPrimaryWfx(tWAVEFORMATEX wfx)
{
    tWAVEFORMATEX wfxCurrent;
    if (getDSndBuffer1PrimaryWfx(&wfxCurrent) && isSoundFormatSame(wfxCurrent, wfx))
        return 1;

    if (!isSupportWfx(wfx))
        AfxMessageBox(_T("Sound data format is out of control range"), MB_OK, 0);

    DWORD dwStatus = 0;
    m_hr = m_pDSBufferPrimary->GetStatus(&dwStatus);
    if (FAILED(m_hr))
        return 0;

    bool playing = dwStatus == DSBSTATUS_PLAYING || dwStatus == DSBSTATUS_LOOPING;
    if (playing && m_dwCoopLevel == DSSCL_WRITEPRIMARY)
    {
        m_hr = m_pDSBufferPrimary->Stop();
        if (FAILED(m_hr))
            return 0;
    }

    m_hr = m_pDSBufferPrimary->SetFormat(&wfx);
    if (FAILED(m_hr))
        return 0;
    m_wfxPrimary = wfx;
    return 1;
}
