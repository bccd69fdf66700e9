#include "SndDataRecordPlayty6P.h"

namespace
{
HWND handleOf(const CWnd* pWnd)
{
    return pWnd == NULL ? NULL : pWnd->m_hWnd;
}
}

CSndDataRecordPlayty6P::CSndDataRecordPlayty6P()
    : m_nReserved(0)
{
}

CSndDataRecordPlayty6P::~CSndDataRecordPlayty6P()
{
}

int CSndDataRecordPlayty6P::playBegin(const CWnd* pWnd, int nFirst, int /*nSecond*/)
{
    return playBeginDSnd(handleOf(pWnd), nFirst);
}

int CSndDataRecordPlayty6P::playBeginLoop(const CWnd* pWnd, int nFirst, int /*nSecond*/)
{
    return playBeginLoopDSnd(handleOf(pWnd), nFirst);
}

int CSndDataRecordPlayty6P::playBeginPro(const CWnd* pWnd, int nFirst)
{
    return playBeginProDSnd(handleOf(pWnd), nFirst);
}

int CSndDataRecordPlayty6P::playStop()
{
    return playStopDSnd();
}

int CSndDataRecordPlayty6P::getPlayPosition()
{
    return 0;
}
