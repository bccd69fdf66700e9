#include "DirectSndDevicety.h"
#include "../dialogs/DlgDSndCooperativeLevel.h"
#include "../foundation/ComRelease.h"

CDirectSndDevicety::CDirectSndDevicety()
{
}

// The listener belongs to the device object: it goes first, or its release reaches freed memory.
CDirectSndDevicety::~CDirectSndDevicety()
{
    releaseInterface(m_pDS3DListener);
    releaseDSndty(this);
}

// The dialog may apply a level while it is open; cancelling it restores only the
// level recorded here, not the platform's.
int CDirectSndDevicety::setCooperativeLevel(HWND hWnd, void* pContext)
{
    DWORD dwLevelBefore = m_dwCoopLevel;

    CDlgDSndCooperativeLevel dlg;
    dlg.m_dwCoopLevel = m_dwCoopLevel;
    dlg.m_pDevice = this;
    dlg.m_pContext = pContext;
    dlg.m_hWndCoop = hWnd;
    if (dlg.DoModal() != IDOK)
    {
        m_dwCoopLevel = dwLevelBefore;
        return 0;
    }
    m_dwCoopLevel = dlg.m_dwCoopLevel;
    m_hWndDevice = hWnd;
    return 1;
}

int CDirectSndDevicety::releaseDSndty(CDirectSndDevicety* pDevice)
{
    if (pDevice != this)
        return 0;
    releaseInterface(m_pDSBufferPrimary);
    releaseInterface(m_pDirectSound);
    return 0;
}
