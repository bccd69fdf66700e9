#include "DirectSnd3DBuff8PlayControl.h"

namespace
{
template <class TValue>
TValue clamp(TValue value, TValue lowest, TValue highest)
{
    if (value < lowest)
        return lowest;
    if (value > highest)
        return highest;
    return value;
}
}

CDirectSnd3DBuff8PlayControl::CDirectSnd3DBuff8PlayControl()
{
}

CDirectSnd3DBuff8PlayControl::~CDirectSnd3DBuff8PlayControl()
{
}

unsigned long CDirectSnd3DBuff8PlayControl::getFrequency()
{
    if (m_pDSBuffer == NULL)
        return 0;
    DWORD dwFrequency = 0;
    m_hr = m_pDSBuffer->GetFrequency(&dwFrequency);
    return traceHR() ? dwFrequency : 0;
}

int CDirectSnd3DBuff8PlayControl::setFrequency(unsigned long ulHertz)
{
    if (m_pDSBuffer == NULL)
        return 0;
    ulHertz = clamp<unsigned long>(ulHertz, DSBFREQUENCY_MIN, DSBFREQUENCY_MAX);
    m_hr = m_pDSBuffer->SetFrequency(ulHertz);
    return traceHR();
}

// 0 on failure reads the same as full volume.
long CDirectSnd3DBuff8PlayControl::getVolume()
{
    if (m_pDSBuffer == NULL)
        return 0;
    LONG lVolume = 0;
    m_hr = m_pDSBuffer->GetVolume(&lVolume);
    return traceHR() ? lVolume : 0;
}

int CDirectSnd3DBuff8PlayControl::setVolume(long lVolume)
{
    if (m_pDSBuffer == NULL)
        return 0;
    lVolume = clamp<long>(lVolume, DSBVOLUME_MIN, DSBVOLUME_MAX);
    m_hr = m_pDSBuffer->SetVolume(lVolume);
    return traceHR();
}

int CDirectSnd3DBuff8PlayControl::getPlayPosition(unsigned long* pulPlayCursor, unsigned long* pulWriteCursor)
{
    if (m_pDSBuffer == NULL || pulPlayCursor == NULL || pulWriteCursor == NULL)
        return 0;
    DWORD dwPlay = 0;
    DWORD dwWrite = 0;
    m_hr = m_pDSBuffer->GetCurrentPosition(&dwPlay, &dwWrite);
    if (!traceHR())
        return 0;
    *pulPlayCursor = dwPlay;
    *pulWriteCursor = dwWrite;
    return 1;
}
