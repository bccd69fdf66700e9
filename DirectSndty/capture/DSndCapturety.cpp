#include "DSndCapturety.h"
#include "../foundation/ComRelease.h"
#include "../platform/DirectSoundSeam.h"

IDirectSoundCapture* CDSndCapturety::m_lpDSndCpt = NULL;

CDSndCapturety::CDSndCapturety()
{
    ZeroMemory(&m_dsccaps, sizeof(m_dsccaps));
}

// Any capture instance going away takes the shared device object with it; the next
// operation that needs it makes it again.
CDSndCapturety::~CDSndCapturety()
{
    _freeDSndCpt();
}

int CDSndCapturety::_freeDSndCpt()
{
    releaseInterface(m_lpDSndCpt);
    return 1;
}

int CDSndCapturety::createDSndCaptureObject(GUID* pGuidDevice)
{
    _freeDSndCpt();
    IDirectSoundCapture8* pCapture = NULL;
    m_hr = DSndPlatform::createCapture8(pGuidDevice, &pCapture, NULL);
    m_lpDSndCpt = pCapture;
    if (SUCCEEDED(m_hr) && m_lpDSndCpt != NULL)
        return 1;
    _freeDSndCpt();
    return 0;
}

DSCCAPS CDSndCapturety::getDSndCptCap()
{
    if (m_lpDSndCpt == NULL)
        createDSndCaptureObject(NULL);
    if (m_lpDSndCpt == NULL)
    {
        AfxMessageBox(_T("Sound capturer has not been initialized!"), MB_OK, 0);
        return m_dsccaps;
    }
    ZeroMemory(&m_dsccaps, sizeof(m_dsccaps));
    m_dsccaps.dwSize = sizeof(DSCCAPS);
    m_hr = m_lpDSndCpt->GetCaps(&m_dsccaps);
    traceHR();
    return m_dsccaps;
}

int CDSndCapturety::isDSCsupport2c4kh16b()
{
    DSCCAPS caps = getDSndCptCap();
    return caps.dwChannels == 2 && (caps.dwFormats & WAVE_FORMAT_4S16) ? 1 : 0;
}
