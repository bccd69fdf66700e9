#include "DirectSnd2DBuff.h"
#include "SndDatatyx.h"
#include "../device/DirectSndDevicety.h"
#include "../dialogs/DlgDSndCreate2ndBuffer.h"
#include "../foundation/ComRelease.h"

namespace
{
const unsigned long kSmallestBuffer = DSBSIZE_MIN;
const unsigned long kLargestBuffer = DSBSIZE_MAX;

// Copies what the data hold into one locked region and silences the rest of it.
void fillRegion(void* pRegion, DWORD dwRegionBytes, const BYTE* pData, unsigned long ulAvailable)
{
    if (pRegion == NULL || dwRegionBytes == 0)
        return;
    DWORD dwCopied = dwRegionBytes < ulAvailable ? dwRegionBytes : ulAvailable;
    CopyMemory(pRegion, pData, dwCopied);
    ZeroMemory(static_cast<BYTE*>(pRegion) + dwCopied, dwRegionBytes - dwCopied);
}
}

CDirectSnd2DBuff::CDirectSnd2DBuff()
    : m_pSndData(NULL),
      m_pDSBuffer(NULL),
      m_pDSndDevice(NULL)
{
    ZeroMemory(&m_wfx, sizeof(m_wfx));
    resetDSBDesc2DBuff();
}

CDirectSnd2DBuff::~CDirectSnd2DBuff()
{
    releaseDirectSnd2DBuff();
}

int CDirectSnd2DBuff::resetDSBDesc2DBuff()
{
    ZeroMemory(&m_dsbd, sizeof(m_dsbd));
    m_dsbd.dwSize = sizeof(DSBUFFERDESC);
    m_dsbd.dwFlags = DSBCAPS_CTRLPAN;
    m_dsbd.dwBufferBytes = 0;
    m_dsbd.lpwfxFormat = reinterpret_cast<LPWAVEFORMATEX>(&m_wfx);
    m_dsbd.guid3DAlgorithm = GUID_NULL;
    return 1;
}

int CDirectSnd2DBuff::releaseDirectSnd2DBuff()
{
    releaseInterface(m_pDSBuffer);
    return 1;
}

// A buffer made earlier by this object is let go before its replacement is made.
unsigned long CDirectSnd2DBuff::createDSndBuff2ndStd()
{
    if (m_pDSndDevice == NULL)
        return 0;
    releaseDirectSnd2DBuff();
    m_dsbd.lpwfxFormat = reinterpret_cast<LPWAVEFORMATEX>(&m_wfx);
    if (!m_pDSndDevice->getDSndBuff2Std(m_dsbd, m_pDSBuffer))
        return 0;
    return m_dsbd.dwBufferBytes;
}

// The user settles size and format; the buffer is then made to that description.
unsigned long CDirectSnd2DBuff::createDSndBuff2ndPro(unsigned long ulBytes, tWAVEFORMATEX wfx)
{
    CDlgDSndCreate2ndBuffer dlg;
    dlg.m_wfx = wfx;
    dlg.m_ulBufferBytes = ulBytes;
    dlg.m_nSettled = 0;
    if (dlg.DoModal() != IDOK)
        return 0;

    // A 2D load, whatever layer it is called on: a 3D description cannot hold stereo data.
    m_wfx = dlg.m_wfx;
    m_dsbd.dwFlags = DSBCAPS_CTRLPAN;
    m_dsbd.dwBufferBytes = dlg.m_ulBufferBytes;
    return createDSndBuff2ndStd();
}

// The whole buffer is locked whatever the count; the data fill it as far as they go
// and the rest is silence.
int CDirectSnd2DBuff::lockAndCopy(const BYTE* pData, unsigned long ulBytes)
{
    void* pRegion1 = NULL;
    void* pRegion2 = NULL;
    DWORD dwBytes1 = 0;
    DWORD dwBytes2 = 0;
    m_hr = m_pDSBuffer->Lock(0, ulBytes, &pRegion1, &dwBytes1, &pRegion2, &dwBytes2, DSBLOCK_ENTIREBUFFER);
    if (m_hr == DSERR_BUFFERLOST)
    {
        m_pDSBuffer->Restore();
        m_hr = m_pDSBuffer->Lock(0, ulBytes, &pRegion1, &dwBytes1, &pRegion2, &dwBytes2, DSBLOCK_ENTIREBUFFER);
        if (FAILED(m_hr))
        {
            traceHR();
            return 0;
        }
    }
    if (FAILED(m_hr))
        return 0;

    fillRegion(pRegion1, dwBytes1, pData, ulBytes);
    unsigned long ulLeft = ulBytes > dwBytes1 ? ulBytes - dwBytes1 : 0;
    fillRegion(pRegion2, dwBytes2, pData + (ulBytes - ulLeft), ulLeft);

    m_hr = m_pDSBuffer->Unlock(pRegion1, dwBytes1, pRegion2, dwBytes2);
    if (FAILED(m_hr))
    {
        traceHR();
        return 0;
    }
    return 1;
}

int CDirectSnd2DBuff::takeSndData(CSndDatatyx* pSndData, unsigned long& ulSize, const BYTE*& pData)
{
    if (pSndData == NULL || !pSndData->hasAudioWaveData())
    {
        AfxMessageBox(_T("No sound data for play"), MB_OK, 0);
        return 0;
    }
    ulSize = pSndData->getDataSize();
    pData = reinterpret_cast<const BYTE*>(pSndData->getDataPointer());
    if (ulSize == 0 || pData == NULL)
    {
        AfxMessageBox(_T("No sound data as stimuli"), MB_OK, 0);
        return 0;
    }
    return 1;
}

unsigned long CDirectSnd2DBuff::clampPlayBufferBytes(unsigned long ulSize)
{
    if (ulSize < kSmallestBuffer)
    {
        AfxMessageBox(_T("The set play buffer is too small"), MB_OK, 0);
        return kSmallestBuffer;
    }
    if (ulSize > kLargestBuffer)
    {
        AfxMessageBox(_T("The pass play buffer is too large"), MB_OK, 0);
        return kLargestBuffer;
    }
    return ulSize;
}

int CDirectSnd2DBuff::copySndData2DSndBuf2nd(const BYTE* pData, unsigned long ulBytes)
{
    if (m_pDSBuffer == NULL || pData == NULL)
        return 0;
    try
    {
        return lockAndCopy(pData, ulBytes);
    }
    catch (...)
    {
        AfxMessageBox(_T("CDirectSndDevicety::copyWaveSndData2DSndBuffer error"), MB_OK, 0);
        return 0;
    }
}

// Loading again on the same device lets the old buffer go; on another device the old
// pointer is simply overwritten.
int CDirectSnd2DBuff::setSndData2DSndBuf2ndStd(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice)
{
    if (pDevice == m_pDSndDevice)
        releaseDirectSnd2DBuff();
    m_pDSndDevice = pDevice;
    if (pDevice == NULL)
    {
        AfxMessageBox(_T("Set direct sound object as Null in creating sound buffer"), MB_OK, 0);
        return 0;
    }
    unsigned long ulSize = 0;
    const BYTE* pData = NULL;
    if (!takeSndData(pSndData, ulSize, pData))
        return 0;
    unsigned long ulBufferBytes = clampPlayBufferBytes(ulSize);

    m_dsbd.dwBufferBytes = ulBufferBytes;
    m_wfx = pSndData->getAudioWaveDataWfx();
    m_dsbd.lpwfxFormat = reinterpret_cast<LPWAVEFORMATEX>(&m_wfx);
    m_dsbd.dwFlags = DSBCAPS_CTRLPAN;
    if (!pDevice->getDSndBuff2Std(m_dsbd, m_pDSBuffer))
        return 0;

    unsigned long ulCopy = ulSize < ulBufferBytes ? ulSize : ulBufferBytes;
    if (!copySndData2DSndBuf2nd(pData, ulCopy))
    {
        AfxMessageBox(_T("Copy data error!"), MB_OK, 0);
        return 0;
    }
    return 1;
}

int CDirectSnd2DBuff::setSndData2DSndBuf2ndPro(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice)
{
    if (pDevice == NULL)
    {
        AfxMessageBox(_T("Set direct sound object as Null in creating sound buffer"), MB_OK, 0);
        return 0;
    }
    if (pDevice->getDirectSnd() == NULL)
    {
        AfxMessageBox(_T("Get direct sound object error"), MB_OK, 0);
        m_pDSndDevice = NULL;
        return 0;
    }
    m_pDSndDevice = pDevice;
    unsigned long ulSize = 0;
    const BYTE* pData = NULL;
    if (!takeSndData(pSndData, ulSize, pData))
        return 0;
    m_pSndData = pSndData;

    unsigned long ulBufferBytes = createDSndBuff2ndPro(ulSize, pSndData->getAudioWaveDataWfx());
    if (ulBufferBytes == 0)
        return 0;
    unsigned long ulCopy = ulSize < ulBufferBytes ? ulSize : ulBufferBytes;
    if (!copySndData2DSndBuf2nd(pData, ulCopy))
    {
        AfxMessageBox(_T("Copy data error!"), MB_OK, 0);
        return 0;
    }
    return static_cast<int>(ulBufferBytes);
}

// Played twice in every case: the second Play is harmless on a playing buffer and is the
// retry after a restore.
int CDirectSnd2DBuff::playFromStart(DWORD dwFlags)
{
    if (m_pDSBuffer == NULL)
        return 0;

    m_pDSBuffer->SetCurrentPosition(0);
    m_hr = m_pDSBuffer->Play(0, 0, dwFlags);
    if (m_hr == DSERR_BUFFERLOST && FAILED(m_pDSBuffer->Restore()))
        return 0;
    m_hr = m_pDSBuffer->Play(0, 0, dwFlags);
    return SUCCEEDED(m_hr) ? 1 : 0;
}

int CDirectSnd2DBuff::sendAudioStim()
{
    return playFromStart(0);
}

int CDirectSnd2DBuff::sendAudioStimLoop()
{
    return playFromStart(DSBPLAY_LOOPING);
}

int CDirectSnd2DBuff::stopAudioStim()
{
    if (m_pDSBuffer == NULL)
        return 0;
    m_hr = m_pDSBuffer->Stop();
    return SUCCEEDED(m_hr) ? 1 : 0;
}

// Pan results are deliberately not kept in m_hr.
int CDirectSnd2DBuff::setPan(LONG lPan)
{
    if (m_pDSBuffer == NULL)
        return 0;
    return SUCCEEDED(m_pDSBuffer->SetPan(lPan)) ? 1 : 0;
}

int CDirectSnd2DBuff::panCenter()
{
    if (m_pDSBuffer == NULL)
        return 0;
    if (m_dsbd.dwFlags & DSBCAPS_CTRL3D)
    {
        AfxMessageBox(_T("This is 3D sound, pan cannot be set!"), MB_OK, 0);
        return 0;
    }
    return setPan(DSBPAN_CENTER);
}

int CDirectSnd2DBuff::panMuteLeft()
{
    return setPan(DSBPAN_RIGHT);
}

int CDirectSnd2DBuff::panMuteRight()
{
    return setPan(DSBPAN_LEFT);
}
