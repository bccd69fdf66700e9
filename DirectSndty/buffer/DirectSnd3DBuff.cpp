#include "DirectSnd3DBuff.h"
#include "SndDatatyx.h"
#include "../device/DirectSndDevicety.h"
#include "../dialogs/DlgDirectSnd3DbuffInfoty.h"
#include "../foundation/ComRelease.h"
#include "../foundation/SectionLock.h"

namespace
{
void appendVector(CString& text, LPCTSTR format, const D3DVECTOR& v)
{
    text.AppendFormat(format, (double)v.x, (double)v.y, (double)v.z);
}
}

CDirectSnd3DBuff::CDirectSnd3DBuff()
    : m_pDS3DBuffer(NULL),
      m_fPlayLength(0.0f),
      m_fElapsedTime(0.0f),
      m_nPlaying(0)
{
    ZeroMemory(&m_ds3dBufferSaved, sizeof(m_ds3dBufferSaved));
    ZeroMemory(&m_ds3dBuffer, sizeof(m_ds3dBuffer));
    ZeroMemory(&m_ds3dListenerSaved, sizeof(m_ds3dListenerSaved));
    ZeroMemory(&m_ds3dListener, sizeof(m_ds3dListener));
    m_pDSBuffer = NULL;
    ZeroMemory(&m_wfx, sizeof(m_wfx));
    resetDSBDesc3DBuff();
    InitializeCriticalSection(&m_interfaceLock);
}

CDirectSnd3DBuff::~CDirectSnd3DBuff()
{
    releaseDirectSnd3DBuff();
    DeleteCriticalSection(&m_interfaceLock);
}

int CDirectSnd3DBuff::resetDSBDesc3DBuff()
{
    resetDSBDesc2DBuff();
    m_dsbd.dwFlags = DSBCAPS_CTRL3D;
    return 1;
}

// A moving play ends with the interface it moves.
int CDirectSnd3DBuff::releaseDirectSnd3DBuff()
{
    SectionLock hold(m_interfaceLock);
    m_nPlaying = 0;
    releaseInterface(m_pDS3DBuffer);
    return 1;
}

int CDirectSnd3DBuff::stopAudioStimDS3D()
{
    return CDirectSnd2DBuff::stopAudioStim();
}

int CDirectSnd3DBuff::setNewD3DSnd(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice)
{
    return setSndData2DS3Dbuff2(pSndData, pDevice);
}

int CDirectSnd3DBuff::setSndData2DS3Dbuff2(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice)
{
    if (pDevice == m_pDSndDevice)
    {
        releaseDirectSnd3DBuff();
        releaseDirectSnd2DBuff();
    }
    m_pDSndDevice = pDevice;
    if (pDevice == NULL)
    {
        AfxMessageBox(_T("No sound devide for playing!"), MB_OK, 0);
        return 0;
    }
    if (pSndData == NULL || !pSndData->hasAudioWaveData())
    {
        AfxMessageBox(_T("No sound data to play"), MB_OK, 0);
        return 0;
    }

    m_pSndData = pSndData;
    if (pSndData->getAudioWaveDataWfx().nChannels == 2)
    {
        m_sndDataConvert.setSndDataty(pSndData);
        m_sndDataConvert.sndDataChannel2to1();
    }
    m_wfx = pSndData->getAudioWaveDataWfx();
    m_dsbd.lpwfxFormat = reinterpret_cast<LPWAVEFORMATEX>(&m_wfx);

    unsigned long ulSize = pSndData->getDataSize();
    const BYTE* pData = reinterpret_cast<const BYTE*>(pSndData->getDataPointer());
    if (ulSize == 0 || pData == NULL)
    {
        AfxMessageBox(_T("No sound data as stimuli"), MB_OK, 0);
        return 0;
    }
    unsigned long ulBufferBytes = clampPlayBufferBytes(ulSize);

    // A block alignment of 0 cannot describe whole blocks.
    if (m_wfx.nBlockAlign == 0)
    {
        AfxMessageBox(_T("Create Direct sound buffer 3D error"), MB_OK, 0);
        return 0;
    }
    m_dsbd.dwFlags = DSBCAPS_CTRL3D;
    m_dsbd.dwBufferBytes = ulBufferBytes - ulBufferBytes % m_wfx.nBlockAlign;

    if (!pDevice->getDirectSnd3DBuffer(m_dsbd, m_pDSBuffer, m_pDS3DBuffer))
    {
        AfxMessageBox(_T("Create Direct sound buffer 3D error"), MB_OK, 0);
        return 0;
    }
    unsigned long ulCopy = ulSize < m_dsbd.dwBufferBytes ? ulSize : m_dsbd.dwBufferBytes;
    if (!copySndData2DSndBuf2nd(pData, ulCopy))
        return 0;

    if (pDevice->getDirectSnd3DListener(false) == NULL && pDevice->getDirectSnd3DListener(true) == NULL)
    {
        AfxMessageBox(_T("Create Direct sound 3D listener error"), MB_OK, 0);
        return 0;
    }

    m_fPlayLength = m_wfx.nAvgBytesPerSec == 0
                        ? 0.0f
                        : (float)m_dsbd.dwBufferBytes / (float)m_wfx.nAvgBytesPerSec;
    if (m_ds3dBuffer.dwSize == 0)
        getDS3DBuffPara();
    return 1;
}

int CDirectSnd3DBuff::getDS3DBuffPara()
{
    if (m_pDS3DBuffer == NULL || m_wfx.nAvgBytesPerSec == 0)
        return 0;

    ZeroMemory(&m_ds3dBuffer, sizeof(m_ds3dBuffer));
    m_ds3dBuffer.dwSize = sizeof(DS3DBUFFER);
    m_pDS3DBuffer->GetAllParameters(&m_ds3dBuffer);

    ZeroMemory(&m_ds3dListener, sizeof(m_ds3dListener));
    m_ds3dListener.dwSize = sizeof(DS3DLISTENER);
    IDirectSound3DListener* pListener = m_pDSndDevice ? m_pDSndDevice->getDirectSnd3DListener(false) : NULL;
    if (pListener == NULL)
        return 1;
    pListener->GetAllParameters(&m_ds3dListener);
    return 1;
}

// Float distances and factors go to %d as the program has always printed them.
CString CDirectSnd3DBuff::composeDirectSnd3DInfo(IDirectSound3DListener* pListener)
{
    DS3DBUFFER buffer = {};
    buffer.dwSize = sizeof(DS3DBUFFER);
    m_pDS3DBuffer->GetAllParameters(&buffer);

    CString text(_T("\n***Direct sound 3D buffer Parameters***\n"));
    appendVector(text, _T("Position:: x: %f y:%f z:%f \n"), buffer.vPosition);
    appendVector(text, _T("Velocity::x:%f y:%f z:%f \n"), buffer.vVelocity);
    text.AppendFormat(_T("dwInsideConeAngle: %d \n"), buffer.dwInsideConeAngle);
    text.AppendFormat(_T("dwOutsideConeAngle%d \n"), buffer.dwOutsideConeAngle);
    text.AppendFormat(_T("Minimum distance:%d Maximum distance: %d \n"), (double)buffer.flMinDistance,
                      (double)buffer.flMaxDistance);
    appendVector(text, _T("Cone orientation:: x:%f  y:%f  z:%f \n"), buffer.vConeOrientation);
    text.AppendFormat(_T("Cone outside volume:%d \n"), buffer.lConeOutsideVolume);
    if (buffer.dwMode == DS3DMODE_NORMAL)
        text += _T("Direct sound 3D processing mode : NORMAL \n");
    else if (buffer.dwMode == DS3DMODE_HEADRELATIVE)
        text += _T("Direct sound 3D processing mode : HEADRELATIVE \n");
    else if (buffer.dwMode == DS3DMODE_DISABLE)
        text += _T("Direct sound 3D processing mode : DISABLE \n");

    if (pListener == NULL)
        return text;

    DS3DLISTENER listener = {};
    listener.dwSize = sizeof(DS3DLISTENER);
    pListener->GetAllParameters(&listener);
    text += _T("\n***Direct sound 3D listener parameters***\n");
    appendVector(text, _T("Position:: x: %f y:%f z:%f \n"), listener.vPosition);
    appendVector(text, _T("Velocity::x:%f y:%f z:%f \n"), listener.vVelocity);
    appendVector(text, _T("Front orientation: x:%f y:%f z:%f \n"), listener.vOrientFront);
    appendVector(text, _T("Top orientation: x:%f y:%f z:%f \n"), listener.vOrientTop);
    text.AppendFormat(_T("Distance factor:%f \n"), (double)listener.flDistanceFactor);
    text.AppendFormat(_T("Doppler factor:%f \n"), (double)listener.flDopplerFactor);
    text.AppendFormat(_T("Rolloff factor:%d \n"), (double)listener.flRolloffFactor);
    return text;
}

// With a listener the result is the dialog's OK; without one it is always 0.
int CDirectSnd3DBuff::showDirectSnd3DInfo()
{
    if (m_pDS3DBuffer == NULL)
        return 0;

    IDirectSound3DListener* pListener = m_pDSndDevice ? m_pDSndDevice->getDirectSnd3DListener(false) : NULL;
    CDlgDirectSnd3DbuffInfoty dlg;
    dlg.m_strInfo = composeDirectSnd3DInfo(pListener);
    INT_PTR result = dlg.DoModal();
    if (pListener == NULL)
        return 0;
    return result == IDOK ? 1 : 0;
}
