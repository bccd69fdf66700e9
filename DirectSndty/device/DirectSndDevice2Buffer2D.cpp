#include "DirectSndDevice2Buffer2D.h"
#include "../foundation/ComRelease.h"

CDirectSndDevice2Buffer2D::CDirectSndDevice2Buffer2D()
{
}

CDirectSndDevice2Buffer2D::~CDirectSndDevice2Buffer2D()
{
}

int CDirectSndDevice2Buffer2D::createTemporaryBuffer(DSBUFFERDESC& dsbd, IDirectSoundBuffer*& pTemporary)
{
    pTemporary = NULL;
    if (m_pDirectSound == NULL)
    {
        m_hr = DSERR_UNINITIALIZED;
        return 0;
    }
    m_hr = m_pDirectSound->CreateSoundBuffer(&dsbd, &pTemporary, NULL);
    if (FAILED(m_hr))
    {
        releaseInterface(pTemporary);
        return 0;
    }
    return 1;
}

int CDirectSndDevice2Buffer2D::queryBuffer8(IDirectSoundBuffer* pTemporary, IDirectSoundBuffer8*& pBuffer)
{
    m_hr = pTemporary->QueryInterface(IID_IDirectSoundBuffer8, reinterpret_cast<void**>(&pBuffer));
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Query Interface error!"), MB_OK, 0);
        pBuffer = NULL;
        return 0;
    }
    return 1;
}

int CDirectSndDevice2Buffer2D::getDSndBuff2Std(DSBUFFERDESC dsbd, IDirectSoundBuffer8*& pBuffer)
{
    pBuffer = NULL;
    IDirectSoundBuffer* pTemporary = NULL;
    if (!createTemporaryBuffer(dsbd, pTemporary))
        return 0;

    int result = queryBuffer8(pTemporary, pBuffer);
    releaseInterface(pTemporary);
    return result;
}
