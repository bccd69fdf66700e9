#pragma once
// Joining a worker from the user-interface thread. A worker that shows a message box or
// touches this thread's windows sends messages to this thread and waits for them to be
// handled; a join that only waited would never end.

#include <windows.h>

// Waits up to dwTimeoutMs (INFINITE: for good) for the thread, handling sent messages only:
// posted ones stay queued, so no handler of the host runs inside the join. True once ended.
inline bool joinHandlingSentMessages(HANDLE hThread, DWORD dwTimeoutMs = INFINITE)
{
    const DWORD dwStart = GetTickCount();
    for (;;)
    {
        DWORD dwLeft = INFINITE;
        if (dwTimeoutMs != INFINITE)
        {
            const DWORD dwSpent = GetTickCount() - dwStart;
            dwLeft = dwSpent >= dwTimeoutMs ? 0 : dwTimeoutMs - dwSpent;
        }
        const DWORD dwWoken = MsgWaitForMultipleObjects(1, &hThread, FALSE, dwLeft, QS_SENDMESSAGE);
        if (dwWoken == WAIT_OBJECT_0)
            return true;
        if (dwWoken != WAIT_OBJECT_0 + 1)
            return false;
        MSG msg;
        PeekMessageW(&msg, NULL, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}
