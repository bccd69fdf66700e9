// Per-thread dispatch state, kept in a Win32 TLS slot so that it is freed
// deterministically when a thread detaches from this DLL.
#include "AfxState.h"

namespace afx_internal
{
namespace
{
const DWORD g_tlsIndex = ::TlsAlloc();
} // namespace

ThreadState& threadState()
{
    auto* pState = static_cast<ThreadState*>(::TlsGetValue(g_tlsIndex));
    if (pState == NULL)
    {
        pState = new ThreadState;
        ::TlsSetValue(g_tlsIndex, pState);
    }
    return *pState;
}

void freeThreadState()
{
    auto* pState = static_cast<ThreadState*>(::TlsGetValue(g_tlsIndex));
    if (pState == NULL)
        return;
    CWnd::DeleteTempMap();
    ::TlsSetValue(g_tlsIndex, NULL);
    delete pState;
}

DispatchScope::DispatchScope(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
    : m_state(threadState()), m_saved(m_state.currentMsg)
{
    ++m_state.dispatchDepth;
    m_state.currentMsg.hwnd = hWnd;
    m_state.currentMsg.message = message;
    m_state.currentMsg.wParam = wParam;
    m_state.currentMsg.lParam = lParam;
}

DispatchScope::~DispatchScope()
{
    m_state.currentMsg = m_saved;
    if (--m_state.dispatchDepth == 0)
        CWnd::DeleteTempMap();
}

void reportHandlerException(CException* e)
{
    // The user was already told about a failed data exchange.
    if (!e->IsKindOf(RUNTIME_CLASS(CUserException)))
        e->ReportError(MB_ICONEXCLAMATION);
    e->Delete();
}

} // namespace afx_internal
