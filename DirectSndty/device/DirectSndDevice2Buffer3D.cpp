#include "DirectSndDevice2Buffer3D.h"
#include "../foundation/ComRelease.h"

CDirectSndDevice2Buffer3D::CDirectSndDevice2Buffer3D()
    : m_pDS3DListener(NULL)
{
    ZeroMemory(&m_ds3dListener, sizeof(m_ds3dListener));
}

// The listener is held until the device goes away.
CDirectSndDevice2Buffer3D::~CDirectSndDevice2Buffer3D()
{
    _closeDirectSndListener();
    releaseInterface(m_pDS3DListener);
}

int CDirectSndDevice2Buffer3D::getDirectSnd3DBuffer(DSBUFFERDESC dsbd, IDirectSoundBuffer8*& pBuffer,
                                                    IDirectSound3DBuffer*& pBuffer3D)
{
    pBuffer = NULL;
    pBuffer3D = NULL;
    IDirectSoundBuffer* pTemporary = NULL;
    if (!createTemporaryBuffer(dsbd, pTemporary))
        return 0;

    if (!queryBuffer8(pTemporary, pBuffer))
    {
        releaseInterface(pTemporary);
        return 0;
    }

    m_hr = pBuffer->QueryInterface(IID_IDirectSound3DBuffer, reinterpret_cast<void**>(&pBuffer3D));
    releaseInterface(pTemporary);
    if (FAILED(m_hr))
    {
        pBuffer3D = NULL;
        releaseInterface(pBuffer);
        return 0;
    }
    return 1;
}

// The listener comes from a primary buffer made with 3D control; that buffer is let go
// at once, so a caller that needs the primary buffer again creates it anew.
IDirectSound3DListener* CDirectSndDevice2Buffer3D::initializeDSndListener()
{
    _closeDirectSndListener();
    _closeDirectSndListener();
    releaseInterface(m_pDS3DListener);

    DSBUFFERDESC dsbd;
    ZeroMemory(&dsbd, sizeof(dsbd));
    dsbd.dwSize = sizeof(DSBUFFERDESC);
    dsbd.dwFlags = DSBCAPS_PRIMARYBUFFER | DSBCAPS_CTRL3D;
    if (m_pDirectSound == NULL)
    {
        m_hr = DSERR_UNINITIALIZED;
        return NULL;
    }
    m_hr = m_pDirectSound->CreateSoundBuffer(&dsbd, &m_pDSBufferPrimary, NULL);
    if (FAILED(m_hr))
    {
        releaseInterface(m_pDSBufferPrimary);
        return NULL;
    }

    m_hr = m_pDSBufferPrimary->QueryInterface(IID_IDirectSound3DListener,
                                              reinterpret_cast<void**>(&m_pDS3DListener));
    releaseInterface(m_pDSBufferPrimary);
    if (FAILED(m_hr))
    {
        m_pDS3DListener = NULL;
        return NULL;
    }
    return m_pDS3DListener;
}

IDirectSound3DListener* CDirectSndDevice2Buffer3D::getDirectSnd3DListener(bool bReinitialise)
{
    if (bReinitialise)
        return initializeDSndListener();
    return m_pDS3DListener;
}

int CDirectSndDevice2Buffer3D::getDS3DListenerPara()
{
    if (m_pDS3DListener == NULL)
    {
        AfxMessageBox(_T("Please initialize Direct3DSndListener first!"), MB_OK, 0);
        return 0;
    }

    ZeroMemory(&m_ds3dListener, sizeof(m_ds3dListener));
    m_ds3dListener.dwSize = sizeof(DS3DLISTENER);
    m_hr = m_pDS3DListener->GetAllParameters(&m_ds3dListener);
    if (FAILED(m_hr))
    {
        ZeroMemory(&m_ds3dListener, sizeof(m_ds3dListener));
        return 0;
    }
    return 1;
}

int CDirectSndDevice2Buffer3D::setCommitDS3DListenerParam()
{
    if (m_pDS3DListener == NULL)
        return 0;

    m_hr = m_pDS3DListener->SetAllParameters(&m_ds3dListener, DS3D_DEFERRED);
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Direct sound 3D listener set all parameters error"), MB_OK, 0);
        return 0;
    }
    return 1;
}

int CDirectSndDevice2Buffer3D::commitDS3DListenerDeferredSettings()
{
    if (m_pDS3DListener == NULL)
        return 0;

    m_hr = m_pDS3DListener->CommitDeferredSettings();
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("CommitDeferredSettings error!"), MB_OK, 0);
        return 0;
    }
    return 1;
}

int CDirectSndDevice2Buffer3D::_closeDirectSndListener()
{
    return _closeDirectSndBufferPrimary();
}
