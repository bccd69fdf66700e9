#include "DirectSnd3DBuff5Notify.h"
#include "../foundation/ComRelease.h"
#include "../foundation/NotifyEvents.h"

namespace
{
const unsigned long kSpacingUnits = 6;
const int kMostPositions = CDirectSnd3DBuff5Notify::kNotifyEntries - 1;
}

CDirectSnd3DBuff5Notify::CDirectSnd3DBuff5Notify()
    : m_pDSNotify(NULL)
{
    ZeroMemory(m_posNotify, sizeof(m_posNotify));
}

CDirectSnd3DBuff5Notify::~CDirectSnd3DBuff5Notify()
{
    releaseInterface(m_pDSNotify);
    closeNotifyEvents(m_posNotify, kNotifyEntries);
}

int CDirectSnd3DBuff5Notify::quaryNotify()
{
    releaseInterface(m_pDSNotify);
    if (m_pDSBuffer == NULL)
        return 0;
    m_hr = m_pDSBuffer->QueryInterface(IID_IDirectSoundNotify, reinterpret_cast<void**>(&m_pDSNotify));
    if (traceHR())
        return 1;
    releaseInterface(m_pDSNotify);
    return 0;
}

// The stop entry is auto-reset, the position entries manual-reset. The platform is told
// of `count` entries starting at the stop entry, so the last position made is never among
// them; that is how this table has always been registered.
int CDirectSnd3DBuff5Notify::initNotifyEvt(unsigned long ulTotal, unsigned long ulUnit, tWAVEFORMATEX /*wfx*/)
{
    unsigned long ulStep = kSpacingUnits * ulUnit;
    if (ulStep == 0 || m_pDSNotify == NULL)
        return 0;

    m_retiredEvents.retire(m_posNotify, kNotifyEntries);
    m_posNotify[0].dwOffset = DSBPN_OFFSETSTOP;
    m_posNotify[0].hEventNotify = CreateEventW(NULL, FALSE, FALSE, NULL);

    int count = static_cast<int>(ulTotal / ulStep);
    if (count >= kNotifyEntries || count < 0)
        count = kMostPositions;
    int made = 0;
    for (int k = 1; k <= count; k++)
    {
        HANDLE hEvent = CreateEventW(NULL, TRUE, FALSE, NULL);
        if (hEvent == NULL)
            break;
        m_posNotify[k].dwOffset = k * ulStep;
        m_posNotify[k].hEventNotify = hEvent;
        made = k;
    }

    m_hr = m_pDSNotify->SetNotificationPositions(made, m_posNotify);
    m_retiredEvents.settle(m_hr);
    return traceHR();
}

int CDirectSnd3DBuff5Notify::initStopEvt()
{
    if (m_pDSNotify == NULL)
        return 0;
    m_retiredEvents.retire(m_posNotify, kNotifyEntries);
    m_posNotify[0].dwOffset = DSBPN_OFFSETSTOP;
    m_posNotify[0].hEventNotify = CreateEventW(NULL, TRUE, FALSE, NULL);
    m_hr = m_pDSNotify->SetNotificationPositions(1, m_posNotify);
    m_retiredEvents.settle(m_hr);
    return traceHR();
}

int CDirectSnd3DBuff5Notify::hasStatus(DWORD dwBit)
{
    if (m_pDSBuffer == NULL)
        return 0;
    DWORD dwStatus = 0;
    m_hr = m_pDSBuffer->GetStatus(&dwStatus);
    if (!traceHR())
        return 0;
    return (dwStatus & dwBit) ? 1 : 0;
}

int CDirectSnd3DBuff5Notify::isDSndBufferPlaying()
{
    return hasStatus(DSBSTATUS_PLAYING);
}

int CDirectSnd3DBuff5Notify::isDSndBufferLost()
{
    return hasStatus(DSBSTATUS_BUFFERLOST);
}

int CDirectSnd3DBuff5Notify::isDSndBufferLooping()
{
    return hasStatus(DSBSTATUS_LOOPING);
}
