#include "DirectSndDevice.h"
#include "DSndDeviceInfoty.h"
#include "EnumerateDirectSndDevice.h"
#include "../dialogs/DlgDSndCaps.h"
#include "../dialogs/DlgDSndCooperativeLevel.h"
#include "../dialogs/DlgDSndInitInfo.h"
#include "../foundation/ComRelease.h"
#include "../platform/DirectSoundSeam.h"

CDirectSndDevice::CDirectSndDevice()
    : m_hWndDevice(NULL),
      m_nReference(0),
      m_dwCoopLevel(DSSCL_NORMAL),
      m_pDirectSound(NULL),
      m_pDeviceInfo(NULL)
{
    ZeroMemory(&m_dsCaps, sizeof(m_dsCaps));
}

CDirectSndDevice::~CDirectSndDevice()
{
    _freeDSndObject();
}

int CDirectSndDevice::createDSndObject(GUID* pGuidDevice)
{
    releaseInterface(m_pDirectSound);
    m_hr = DSndPlatform::createSound8(pGuidDevice, &m_pDirectSound, NULL);
    if (SUCCEEDED(m_hr))
        return 1;

    releaseInterface(m_pDirectSound);
    return 0;
}

int CDirectSndDevice::_freeDSndObject()
{
    releaseInterface(m_pDirectSound);
    delete m_pDeviceInfo;
    m_pDeviceInfo = NULL;
    m_dwCoopLevel = DSSCL_NORMAL;
    return 1;
}

CDSndDeviceInfoty* CDirectSndDevice::enumerateDirectSndDeviceInfo()
{
    CEnumerateDirectSndDevice enumerator;
    CDSndDeviceInfoty* pInfo = enumerator.getDSndDeviceInfo();
    if (pInfo == NULL)
    {
        AfxMessageBox(_T("Enumerating audio devices error"), MB_OK, 0);
        return NULL;
    }
    // A list from an earlier enumeration is not needed once a new one replaces it.
    delete m_pDeviceInfo;
    m_pDeviceInfo = pInfo;
    return pInfo;
}

int CDirectSndDevice::selectSoundCards()
{
    releaseInterface(m_pDirectSound);
    if (enumerateDirectSndDeviceInfo() == NULL)
        return 0;

    CDlgDSndInitInfo dlg;
    dlg.m_pDeviceInfo = m_pDeviceInfo;
    if (dlg.DoModal() != IDOK)
    {
        delete m_pDeviceInfo;
        m_pDeviceInfo = NULL;
        return 0;
    }
    return openChosenCard(dlg.m_nDeviceId);
}

// The default device is opened by a null GUID, whatever GUID its entry carries.
int CDirectSndDevice::openChosenCard(int nDeviceId)
{
    if (nDeviceId < 0 || nDeviceId >= m_pDeviceInfo->m_nDeviceNumber)
    {
        m_hr = DSERR_INVALIDPARAM;
        AfxMessageBox(_T("Create Direct sound Object err"), MB_OK, 0);
        return 0;
    }

    GUID guid = m_pDeviceInfo->m_guidDevice[nDeviceId];
    const CString& description = m_pDeviceInfo->m_strDescription[nDeviceId];
    LPCGUID pGuid = description.CompareNoCase(_T("Primary Sound Driver")) == 0 ? NULL : &guid;

    m_hr = DSndPlatform::createSound8(pGuid, &m_pDirectSound, NULL);
    if (FAILED(m_hr))
    {
        releaseInterface(m_pDirectSound);
        AfxMessageBox(_T("Create Direct sound Object err"), MB_OK, 0);
        return 0;
    }
    return 1;
}

// The platform is given the level recorded so far; the level passed now is recorded
// and reaches the platform at the next call.
int CDirectSndDevice::setDSndCooperatLevelStd(HWND hWnd, DWORD dwLevel)
{
    if (m_pDirectSound == NULL)
        return 0;

    m_hr = m_pDirectSound->SetCooperativeLevel(hWnd, m_dwCoopLevel);
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Set direct sound cooperative level error"), MB_OK, 0);
        m_dwCoopLevel = DSSCL_NORMAL;
        return 0;
    }
    m_dwCoopLevel = dwLevel;
    m_hWndDevice = hWnd;
    return 1;
}

int CDirectSndDevice::setDsndCoopLevelPro(HWND hWnd)
{
    m_dwCoopLevel = DSSCL_PRIORITY;

    CDlgDSndCooperativeLevel dlg;
    dlg.m_dwCoopLevel = DSSCL_PRIORITY;
    if (dlg.DoModal() != IDOK)
        return 0;

    m_dwCoopLevel = dlg.m_dwCoopLevel;
    if (m_pDirectSound == NULL)
        return 0;
    m_hr = m_pDirectSound->SetCooperativeLevel(hWnd, m_dwCoopLevel);
    if (FAILED(m_hr))
    {
        AfxMessageBox(_T("Set direct sound cooperative level error"), MB_OK, 0);
        m_dwCoopLevel = DSSCL_NORMAL;
        return 0;
    }
    m_hWndDevice = hWnd;
    return 1;
}

IDirectSound8* CDirectSndDevice::getDirectSnd() const
{
    return m_pDirectSound;
}

HWND CDirectSndDevice::getSndDeviceHwnd()
{
    return m_hWndDevice;
}

int CDirectSndDevice::addReference()
{
    return ++m_nReference;
}

int CDirectSndDevice::removeReference()
{
    return --m_nReference;
}

int CDirectSndDevice::getReferenceNumber()
{
    return m_nReference;
}

// A closed device keeps its cached record and reports the failure in m_hr.
HRESULT CDirectSndDevice::refreshCaps()
{
    m_dsCaps.dwSize = sizeof(DSCAPS);
    if (m_pDirectSound == NULL)
    {
        m_hr = DSERR_UNINITIALIZED;
        return m_hr;
    }
    m_hr = m_pDirectSound->GetCaps(&m_dsCaps);
    return m_hr;
}

DSCAPS CDirectSndDevice::getDSCAPS()
{
    refreshCaps();
    return m_dsCaps;
}

int CDirectSndDevice::getDSCAPSPro()
{
    ZeroMemory(&m_dsCaps, sizeof(m_dsCaps));
    if (FAILED(refreshCaps()))
    {
        AfxMessageBox(_T("Get sound device capability  error"), MB_OK, 0);
        return 0;
    }

    CDlgDSndCaps dlg;
    dlg.m_dsCaps = m_dsCaps;
    dlg.DoModal();
    return 1;
}

int CDirectSndDevice::get2ndChannels()
{
    refreshCaps();
    if (!traceHR())
        return 0;
    if (m_dsCaps.dwFlags & DSCAPS_SECONDARYSTEREO)
        return 2;
    if (m_dsCaps.dwFlags & DSCAPS_SECONDARYMONO)
        return 1;
    return 0;
}

// 8 bits is tested first: a card that supports both widths reports 8.
int CDirectSndDevice::get2ndSampleBits()
{
    refreshCaps();
    if (!traceHR())
        return 0;
    if (m_dsCaps.dwFlags & DSCAPS_SECONDARY8BIT)
        return 8;
    if (m_dsCaps.dwFlags & DSCAPS_SECONDARY16BIT)
        return 16;
    return 0;
}

int CDirectSndDevice::getDSnd2ndBufSmpRat(DWORD& dwMinRate, DWORD& dwMaxRate)
{
    refreshCaps();
    if (!traceHR())
        return 0;
    dwMinRate = m_dsCaps.dwMinSecondarySampleRate;
    dwMaxRate = m_dsCaps.dwMaxSecondarySampleRate;
    return 1;
}

DWORD CDirectSndDevice::getTotalHwMemBytes()
{
    refreshCaps();
    return m_dsCaps.dwTotalHwMemBytes;
}

DWORD CDirectSndDevice::getFreeHwMemBytes()
{
    refreshCaps();
    return m_dsCaps.dwFreeHwMemBytes;
}

DWORD CDirectSndDevice::getMaxHwMixingStaticBuffers()
{
    refreshCaps();
    return m_dsCaps.dwMaxHwMixingStaticBuffers;
}

DWORD CDirectSndDevice::getFreeHwMixingStaticBufferSize() const
{
    return m_dsCaps.dwFreeHwMixingStaticBuffers;
}
