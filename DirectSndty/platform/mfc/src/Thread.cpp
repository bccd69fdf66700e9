// Worker threads that run a function and, unless told otherwise, delete their object.
#include "afxwin.h"
#include <process.h>

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)

namespace
{
unsigned __stdcall threadStart(void* pParam)
{
    auto* pThread = static_cast<CWinThread*>(pParam);
    UINT nResult = pThread->m_pfnThreadProc(pThread->m_pThreadParams);
    // After this the object may be gone: only its creator's contract says otherwise.
    pThread->Delete();
    return nResult;
}
} // namespace

CWinThread::CWinThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam)
    : m_hThread(NULL), m_nThreadID(0), m_bAutoDelete(TRUE), m_pfnThreadProc(pfnThreadProc),
      m_pThreadParams(pParam)
{
}

CWinThread::~CWinThread()
{
    if (m_hThread != NULL)
        ::CloseHandle(m_hThread);
}

BOOL CWinThread::CreateThread(DWORD dwCreateFlags, UINT nStackSize, LPSECURITY_ATTRIBUTES lpSecurityAttrs)
{
    // Always made suspended, so that m_hThread is set before the function can run.
    unsigned nThreadID = 0;
    uintptr_t hThread = _beginthreadex(lpSecurityAttrs, nStackSize, &threadStart, this,
                                       dwCreateFlags | CREATE_SUSPENDED, &nThreadID);
    if (hThread == 0)
        return FALSE;
    m_hThread = reinterpret_cast<HANDLE>(hThread);
    m_nThreadID = nThreadID;
    if (!(dwCreateFlags & CREATE_SUSPENDED))
        ::ResumeThread(m_hThread);
    return TRUE;
}

DWORD CWinThread::ResumeThread()
{
    return ::ResumeThread(m_hThread);
}

DWORD CWinThread::SuspendThread()
{
    return ::SuspendThread(m_hThread);
}

int CWinThread::GetThreadPriority()
{
    return ::GetThreadPriority(m_hThread);
}

BOOL CWinThread::SetThreadPriority(int nPriority)
{
    return ::SetThreadPriority(m_hThread, nPriority);
}

CWinThread::operator HANDLE() const
{
    return m_hThread;
}

void CWinThread::Delete()
{
    if (m_bAutoDelete)
        delete this;
}

CWinThread* AFXAPI AfxBeginThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam, int nPriority, UINT nStackSize,
                                  DWORD dwCreateFlags, LPSECURITY_ATTRIBUTES lpSecurityAttrs)
{
    auto* pThread = new CWinThread(pfnThreadProc, pParam);
    if (!pThread->CreateThread(dwCreateFlags | CREATE_SUSPENDED, nStackSize, lpSecurityAttrs))
    {
        pThread->Delete();
        return NULL;
    }
    pThread->SetThreadPriority(nPriority);
    if (!(dwCreateFlags & CREATE_SUSPENDED))
        pThread->ResumeThread();
    return pThread;
}
