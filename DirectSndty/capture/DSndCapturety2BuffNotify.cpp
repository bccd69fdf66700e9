#include "DSndCapturety2BuffNotify.h"
#include "../foundation/ComRelease.h"
#include "../foundation/NotifyEvents.h"

namespace
{
const unsigned long kSpacingUnits = 6;
const unsigned long kMostPositions = CDSndCapturety2BuffNotify::kNotifyEntries - 1;
}

CDSndCapturety2BuffNotify::CDSndCapturety2BuffNotify()
    : m_nNotifyPositions(0),
      m_pDSNotify(NULL)
{
    ZeroMemory(m_posNotify, sizeof(m_posNotify));
}

CDSndCapturety2BuffNotify::~CDSndCapturety2BuffNotify()
{
    _freeNotify();
    closeNotifyEvents(m_posNotify, kNotifyEntries);
}

int CDSndCapturety2BuffNotify::_freeNotify()
{
    releaseInterface(m_pDSNotify);
    return 1;
}

int CDSndCapturety2BuffNotify::initNotify()
{
    _freeNotify();
    m_hr = m_pDSCBuffer == NULL
               ? DSERR_UNINITIALIZED
               : m_pDSCBuffer->QueryInterface(IID_IDirectSoundNotify, reinterpret_cast<void**>(&m_pDSNotify));
    if (FAILED(m_hr) || m_pDSNotify == NULL)
    {
        m_pDSNotify = NULL;
        AfxMessageBox(_T("Query Direct Sound notify error"), MB_OK, 0);
        return 0;
    }
    m_pDSCBuffer->GetFormat(reinterpret_cast<LPWAVEFORMATEX>(&m_wfxCurrent), sizeof(tWAVEFORMATEX), NULL);
    return 1;
}

int CDSndCapturety2BuffNotify::initDSBNevt()
{
    if (m_pDSNotify == NULL)
        return 0;
    m_retiredEvents.retire(m_posNotify, kNotifyEntries);
    m_posNotify[0].hEventNotify = CreateEventW(NULL, TRUE, FALSE, NULL);
    m_posNotify[0].dwOffset = DSBPN_OFFSETSTOP;
    m_hr = m_pDSNotify->SetNotificationPositions(1, m_posNotify);
    m_retiredEvents.settle(m_hr);
    return traceHR();
}

// The platform is told of `count` entries starting at the stop entry, so the last
// position prepared is not among them; that is how this table has always been registered.
int CDSndCapturety2BuffNotify::initDSBNoteEvt(unsigned long ulBytes, unsigned long ulUnit, tWAVEFORMATEX /*wfx*/)
{
    unsigned long ulStep = kSpacingUnits * ulUnit;
    if (m_pDSNotify == NULL || ulStep == 0)
        return 0;
    m_retiredEvents.retire(m_posNotify, kNotifyEntries);
    m_posNotify[0].hEventNotify = CreateEventW(NULL, TRUE, FALSE, NULL);
    m_posNotify[0].dwOffset = DSBPN_OFFSETSTOP;

    unsigned long ulCount = ulBytes / ulStep;
    if (ulCount > kMostPositions)
        ulCount = kMostPositions;
    unsigned long ulMade = 0;
    for (unsigned long i = 1; i <= ulCount; i++)
    {
        HANDLE hEvent = CreateEventW(NULL, TRUE, FALSE, NULL);
        if (hEvent == NULL)
            break;
        m_posNotify[i].dwOffset = i * ulStep;
        m_posNotify[i].hEventNotify = hEvent;
        ulMade = i;
    }
    m_hr = m_pDSNotify->SetNotificationPositions(ulMade, m_posNotify);
    m_retiredEvents.settle(m_hr);
    m_nNotifyPositions = static_cast<int>(ulMade);
    return traceHR();
}

int CDSndCapturety2BuffNotify::isStopNotified()
{
    if (m_posNotify[0].hEventNotify == NULL)
        return 0;
    return WaitForSingleObject(m_posNotify[0].hEventNotify, 0) == WAIT_OBJECT_0 ? 1 : 0;
}
