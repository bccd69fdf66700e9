#include "DirectSnd3DBuffty.h"
#include "../device/DirectSndDevicety.h"
#include "../dialogs/DlgDS3Dparameterty.h"

CDirectSnd3DBuffty::CDirectSnd3DBuffty()
{
    m_moveStartTime = 0.0f;
}

// The motion worker is ended before any layer lets go of what it uses.
CDirectSnd3DBuffty::~CDirectSnd3DBuffty()
{
    endMotion();
}

// On OK the edited working records become the committed ones and the device's listener record.
int CDirectSnd3DBuffty::setDirectSnd3Dparameters()
{
    if (m_pDS3DBuffer == NULL || m_wfx.nAvgBytesPerSec == 0)
        return 0;

    CDlgDS3Dparameterty dlg;
    dlg.m_pSnd3DBuff = this;
    dlg.m_pDevice = m_pDSndDevice;
    if (dlg.DoModal() != IDOK)
        return 0;

    m_ds3dBufferSaved = m_ds3dBuffer;
    m_ds3dListenerSaved = m_ds3dListener;
    if (m_pDSndDevice != NULL)
        m_pDSndDevice->m_ds3dListener = m_ds3dListener;
    return 1;
}

int CDirectSnd3DBuffty::release3DBuffers()
{
    endMotion();
    releaseDirectSnd3DBuff();
    releaseDirectSnd2DBuff();
    return 0;
}

int CDirectSnd3DBuffty::releaseRelatedBuffers(CDirectSndDevicety* pDevice)
{
    if (pDevice != m_pDSndDevice)
        return 0;
    return release3DBuffers();
}

int CDirectSnd3DBuffty::sendAudioStimDS3D()
{
    return sendAudioStimMovingSnd();
}
