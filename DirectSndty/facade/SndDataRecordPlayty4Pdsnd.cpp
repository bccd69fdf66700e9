#include "SndDataRecordPlayty4Pdsnd.h"
#include "SndDatatyx.h"
#include "../buffer/DirectSnd3DBuffty.h"
#include <new>

CDirectSndDevicety* CSndDataRecordPlayty4Pdsnd::m_pDirectSndDevicety = NULL;

CSndDataRecordPlayty4Pdsnd::CSndDataRecordPlayty4Pdsnd()
    : m_bPlayActive(0),
      m_pDSnd3DBuff(NULL)
{
}

// The playback buffer belongs to this facade and goes with it.
CSndDataRecordPlayty4Pdsnd::~CSndDataRecordPlayty4Pdsnd()
{
    delete m_pDSnd3DBuff;
    m_pDSnd3DBuff = NULL;
}

int CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(CDirectSndDevicety* pDevice)
{
    m_pDirectSndDevicety = pDevice;
    return 1;
}

void CSndDataRecordPlayty4Pdsnd::placeOnRegisteredDevice(CDirectSnd2DBuff& buffer)
{
    buffer.m_pDSndDevice = m_pDirectSndDevicety;
}

bool CSndDataRecordPlayty4Pdsnd::hasPlayableData()
{
    if (m_pSndDataty == NULL || !m_pSndDataty->hasAudioWaveData())
    {
        AfxMessageBox(_T("No sound data for play"), MB_OK, 0);
        return false;
    }
    if (m_pDirectSndDevicety == NULL)
    {
        AfxMessageBox(_T("Please initialize sound card first!"), MB_OK, 0);
        return false;
    }
    return true;
}

bool CSndDataRecordPlayty4Pdsnd::ensurePlayBuffer()
{
    if (m_pDSnd3DBuff == NULL)
        m_pDSnd3DBuff = new (std::nothrow) CDirectSnd3DBuffty;
    return m_pDSnd3DBuff != NULL;
}

int CSndDataRecordPlayty4Pdsnd::playStandbyDSnd(HWND /*hWnd*/, int /*nReserved*/)
{
    m_bPlayActive = 0;
    if (!hasPlayableData() || !ensurePlayBuffer())
        return 0;
    if (!m_pDSnd3DBuff->setSndData2DSndBuf2ndStd(m_pSndDataty, m_pDirectSndDevicety))
    {
        AfxMessageBox(_T("prepare sound data buffer  error"), MB_OK, 0);
        return 0;
    }
    m_bPlayActive = 1;
    return 1;
}

// Refills the buffer an earlier play made; without one the copy fails with its message.
int CSndDataRecordPlayty4Pdsnd::playStandbyProDSnd(HWND /*hWnd*/, int /*nReserved*/)
{
    m_bPlayActive = 0;
    if (!hasPlayableData())
        return 0;
    char* pData = NULL;
    unsigned long ulBytes = 0;
    if (!m_pSndDataty->getBlockDataPointer(&pData, &ulBytes, false))
        return 0;
    if (ulBytes == 0 || pData == NULL)
    {
        AfxMessageBox(_T("No sound data for play"), MB_OK, 0);
        return 0;
    }
    if (!ensurePlayBuffer() ||
        !m_pDSnd3DBuff->copySndData2DSndBuf2nd(reinterpret_cast<const BYTE*>(pData), ulBytes))
    {
        AfxMessageBox(_T("Copy sound data to Direct sound buffer error"), MB_OK, 0);
        return 0;
    }
    m_bPlayActive = 1;
    return 1;
}

int CSndDataRecordPlayty4Pdsnd::playBeginDSnd(HWND hWnd, int nReserved)
{
    if (m_bPlayActive && !playStopDSnd())
        return 0;
    if (!playStandbyDSnd(hWnd, nReserved))
        return 0;
    m_pDSnd3DBuff->playDSnd2ndBuf();
    m_bPlayActive = 1;
    return 1;
}

int CSndDataRecordPlayty4Pdsnd::playBeginLoopDSnd(HWND hWnd, int nReserved)
{
    if (m_bPlayActive && !playStopDSnd())
        return 0;
    if (!playStandbyDSnd(hWnd, nReserved))
        return 0;
    m_pDSnd3DBuff->playDSnd2ndBufLoop();
    m_bPlayActive = 1;
    return 1;
}

int CSndDataRecordPlayty4Pdsnd::playBeginProDSnd(HWND hWnd, int nReserved)
{
    if (m_bPlayActive && !playStopDSnd())
        return 0;
    if (!playStandbyProDSnd(hWnd, nReserved))
        return 0;
    m_pDSnd3DBuff->playDSnd2ndBuf();
    m_bPlayActive = 1;
    return 1;
}

int CSndDataRecordPlayty4Pdsnd::playStopDSnd()
{
    if (m_pDSnd3DBuff != NULL)
        m_pDSnd3DBuff->stopDSnd2ndBuf();
    m_bPlayActive = 0;
    return 1;
}
