#include "DirectSndDevice9File.h"

namespace
{
const LPCTSTR kMagic = _T("DSNDTYSTIM");
const DWORD kVersion = 20030309;

template <class TValue>
void exchange(CArchive& ar, TValue& value)
{
    if (ar.IsStoring())
        ar << value;
    else
        ar >> value;
}
}

CDirectSndDevice9File::CDirectSndDevice9File()
    : m_dwExtra1(0),
      m_dwExtra2(0),
      m_dwExtra3(0),
      m_dwExtra4(0),
      m_dwExtra5(0)
{
    ZeroMemory(&m_wfxSecond, sizeof(m_wfxSecond));
}

CDirectSndDevice9File::~CDirectSndDevice9File()
{
}

int CDirectSndDevice9File::serialize(CArchive& ar)
{
    if (ar.IsStoring())
    {
        ar << CString(kMagic);
        ar << kVersion;
        return serialize2003_03_09(ar);
    }

    CString magic;
    ar >> magic;
    if (magic != kMagic)
    {
        AfxMessageBox(_T("CDirectSndDevicety:: wrong file format!"), MB_OK, 0);
        return 0;
    }
    DWORD dwVersion = 0;
    ar >> dwVersion;
    if (dwVersion != kVersion)
    {
        AfxMessageBox(_T("CDirectSndDevicety:: wrong file format!"), MB_OK, 0);
        return 0;
    }
    return serialize2003_03_09(ar);
}

// The order of the extra values is part of the file format.
int CDirectSndDevice9File::serialize2003_03_09(CArchive& ar)
{
    _01serializeWaveformatex(ar, m_wfxPrimary);
    _01serializeWaveformatex(ar, m_wfxSecond);
    serializeCaps(ar);
    exchange(ar, m_dwCoopLevel);
    exchange(ar, m_dwExtra1);
    exchange(ar, m_dwExtra4);
    exchange(ar, m_dwExtra3);
    exchange(ar, m_dwExtra5);
    exchange(ar, m_dwExtra2);
    exchange(ar, m_dwSpeakerConfig);
    return 1;
}

// The capability fields from dwFlags to dwMaxHw3DAllBuffers, in the order of their names.
void CDirectSndDevice9File::serializeCaps(CArchive& ar)
{
    exchange(ar, m_dsCaps.dwFlags);
    exchange(ar, m_dsCaps.dwFreeHw3DAllBuffers);
    exchange(ar, m_dsCaps.dwFreeHw3DStaticBuffers);
    exchange(ar, m_dsCaps.dwFreeHw3DStreamingBuffers);
    exchange(ar, m_dsCaps.dwFreeHwMemBytes);
    exchange(ar, m_dsCaps.dwFreeHwMixingAllBuffers);
    exchange(ar, m_dsCaps.dwFreeHwMixingStaticBuffers);
    exchange(ar, m_dsCaps.dwFreeHwMixingStreamingBuffers);
    exchange(ar, m_dsCaps.dwMaxContigFreeHwMemBytes);
    exchange(ar, m_dsCaps.dwMaxHw3DAllBuffers);
}

// The seven fields in the order of their names, not their order in memory.
int CDirectSndDevice9File::_01serializeWaveformatex(CArchive& ar, tWAVEFORMATEX& wfx)
{
    exchange(ar, wfx.cbSize);
    exchange(ar, wfx.nAvgBytesPerSec);
    exchange(ar, wfx.nBlockAlign);
    exchange(ar, wfx.nChannels);
    exchange(ar, wfx.nSamplesPerSec);
    exchange(ar, wfx.wBitsPerSample);
    exchange(ar, wfx.wFormatTag);
    return 1;
}
