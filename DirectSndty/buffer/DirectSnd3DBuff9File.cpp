#include "DirectSnd3DBuff9File.h"

namespace
{
const LPCTSTR kMagic = _T("DIRECTSND3DTYX");
const DWORD kVersion = 20040320;

template <class TValue>
void exchange(CArchive& ar, TValue& value)
{
    if (ar.IsStoring())
        ar << value;
    else
        ar >> value;
}

void exchange(CArchive& ar, D3DVECTOR& v)
{
    exchange(ar, v.x);
    exchange(ar, v.y);
    exchange(ar, v.z);
}
}

CDirectSnd3DBuff9File::CDirectSnd3DBuff9File()
{
}

CDirectSnd3DBuff9File::~CDirectSnd3DBuff9File()
{
}

int CDirectSnd3DBuff9File::serialize(CArchive& ar)
{
    if (ar.IsStoring())
    {
        ar << CString(kMagic);
        ar << kVersion;
        return serialize20040320(ar);
    }

    CString magic;
    ar >> magic;
    DWORD dwVersion = 0;
    if (magic == kMagic)
        ar >> dwVersion;
    if (dwVersion != kVersion)
    {
        AfxMessageBox(_T("CDirectSnd3DBuffty: bad format!"), MB_OK, 0);
        return 0;
    }
    return serialize20040320(ar);
}

// The listener comes before the buffer in the file; a load makes the committed records
// equal to the working ones.
int CDirectSnd3DBuff9File::serialize20040320(CArchive& ar)
{
    exchange(ar, m_fPlayLength);
    exchange(ar, m_fElapsedTime);
    exchange(ar, m_dsbd.dwBufferBytes);
    exchange(ar, m_wfx.wFormatTag);
    exchange(ar, m_wfx.nChannels);
    exchange(ar, m_wfx.nSamplesPerSec);
    exchange(ar, m_wfx.nAvgBytesPerSec);
    exchange(ar, m_wfx.nBlockAlign);
    exchange(ar, m_wfx.wBitsPerSample);
    exchange(ar, m_wfx.cbSize);
    serializeListener(ar);
    serializeBuffer3D(ar);
    if (ar.IsLoading())
    {
        m_ds3dBufferSaved = m_ds3dBuffer;
        m_ds3dListenerSaved = m_ds3dListener;
    }
    return 1;
}

void CDirectSnd3DBuff9File::serializeListener(CArchive& ar)
{
    exchange(ar, m_ds3dListener.dwSize);
    exchange(ar, m_ds3dListener.vPosition);
    exchange(ar, m_ds3dListener.vVelocity);
    exchange(ar, m_ds3dListener.vOrientFront);
    exchange(ar, m_ds3dListener.vOrientTop);
    exchange(ar, m_ds3dListener.flDistanceFactor);
    exchange(ar, m_ds3dListener.flRolloffFactor);
    exchange(ar, m_ds3dListener.flDopplerFactor);
}

void CDirectSnd3DBuff9File::serializeBuffer3D(CArchive& ar)
{
    exchange(ar, m_ds3dBuffer.dwSize);
    exchange(ar, m_ds3dBuffer.vPosition);
    exchange(ar, m_ds3dBuffer.vVelocity);
    exchange(ar, m_ds3dBuffer.dwInsideConeAngle);
    exchange(ar, m_ds3dBuffer.dwOutsideConeAngle);
    exchange(ar, m_ds3dBuffer.vConeOrientation);
    exchange(ar, m_ds3dBuffer.lConeOutsideVolume);
    exchange(ar, m_ds3dBuffer.flMinDistance);
    exchange(ar, m_ds3dBuffer.flMaxDistance);
    exchange(ar, m_ds3dBuffer.dwMode);
}
