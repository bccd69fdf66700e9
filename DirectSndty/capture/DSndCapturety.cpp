#include "DSndCapturety.h"
#include "../foundation/ComRelease.h"
#include "../platform/DirectSoundSeam.h"

IDirectSoundCapture* CDSndCapturety::m_lpDSndCpt = NULL;

CDSndCapturety::CDSndCapturety()
    : m_pDSndCptMade(NULL)
{
    ZeroMemory(&m_dsccaps, sizeof(m_dsccaps));
}

// A capture instance going away lets go of the device object it made; the next operation
// that needs one makes it again.
CDSndCapturety::~CDSndCapturety()
{
    _freeDSndCpt();
}

int CDSndCapturety::_freeDSndCpt()
{
    if (m_pDSndCptMade == NULL)
        return 1;
    if (m_lpDSndCpt == m_pDSndCptMade)
        releaseInterface(m_lpDSndCpt);
    releaseInterface(m_pDSndCptMade);
    return 1;
}

// The new object becomes the current one; the one before lives on for the recorder that made
// it, which holds its own reference.
int CDSndCapturety::createDSndCaptureObject(GUID* pGuidDevice)
{
    _freeDSndCpt();
    IDirectSoundCapture8* pCapture = NULL;
    m_hr = DSndPlatform::createCapture8(pGuidDevice, &pCapture, NULL);
    if (FAILED(m_hr) || pCapture == NULL)
    {
        releaseInterface(pCapture);
        return 0;
    }
    releaseInterface(m_lpDSndCpt);
    m_lpDSndCpt = pCapture;
    pCapture->AddRef();
    m_pDSndCptMade = pCapture;
    return 1;
}

IDirectSoundCapture* CDSndCapturety::captureDevice() const
{
    return m_pDSndCptMade != NULL ? m_pDSndCptMade : m_lpDSndCpt;
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
