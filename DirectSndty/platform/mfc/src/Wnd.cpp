// CWnd's core: the handle maps, subclassing and message-map dispatch.
#include "AfxState.h"
#include <unordered_map>

IMPLEMENT_DYNCREATE(CWnd, CCmdTarget)

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
END_MESSAGE_MAP()

using afx_internal::DispatchScope;
using afx_internal::threadState;

namespace
{
// Objects attached by Attach or SubclassWindow, for the whole process.
SRWLOCK g_mapLock = SRWLOCK_INIT;
std::unordered_map<HWND, CWnd*> g_permanentMap;

// The class procedure is also kept on the window, so that a window whose object was
// detached without unsubclassing still reaches its own procedure.
const wchar_t kSuperProp[] = L"AfxSubsetSuperProc";

WNDPROC superOf(HWND hWnd)
{
    return reinterpret_cast<WNDPROC>(::GetPropW(hWnd, kSuperProp));
}

// Handlers of other signatures were stored as AFX_PMSG through a union (AfxPmsgFrom);
// they are read back the same way.
template <class TMemberFunction>
TMemberFunction memberFrom(AFX_PMSG pfn)
{
    static_assert(sizeof(TMemberFunction) == sizeof(AFX_PMSG), "member pointer size");
    union
    {
        AFX_PMSG stored;
        TMemberFunction typed;
    } cast;
    cast.stored = pfn;
    return cast.typed;
}

typedef void (AFX_MSG_CALL CWnd::*PMSG_SCROLL)(UINT, UINT, CScrollBar*);
typedef void (AFX_MSG_CALL CWnd::*PMSG_TIMER)(UINT_PTR);

// Default processing of the message being dispatched to pWnd, as MFC's Default().
void defaultProcessing(CWnd* pWnd)
{
    const MSG& msg = threadState().currentMsg;
    if (msg.hwnd == pWnd->m_hWnd && msg.hwnd != NULL)
        pWnd->DefWindowProc(msg.message, msg.wParam, msg.lParam);
}
} // namespace

CWnd::CWnd() : m_hWnd(NULL), m_pfnSuper(NULL) {}

CWnd::~CWnd()
{
    if (m_hWnd == NULL || FromHandlePermanent(m_hWnd) != this)
        return;
    // Destroying detaches through WM_NCDESTROY; a window of another thread cannot be
    // destroyed from here, so it is at least given back its own procedure.
    DestroyWindow();
    if (m_hWnd != NULL)
        UnsubclassWindow();
    if (m_hWnd != NULL)
        Detach();
}

CWnd::operator HWND() const
{
    return GetSafeHwnd();
}

// MFC lets a null CWnd* answer NULL here (pParent->GetSafeHwnd()); the library is built
// with -fno-delete-null-pointer-checks so that the test survives optimisation.
HWND CWnd::GetSafeHwnd() const
{
    return reinterpret_cast<UINT_PTR>(this) == 0 ? NULL : m_hWnd;
}

CWnd* PASCAL CWnd::FromHandlePermanent(HWND hWnd)
{
    ::AcquireSRWLockShared(&g_mapLock);
    auto it = g_permanentMap.find(hWnd);
    CWnd* pWnd = it == g_permanentMap.end() ? NULL : it->second;
    ::ReleaseSRWLockShared(&g_mapLock);
    return pWnd;
}

CWnd* PASCAL CWnd::FromHandle(HWND hWnd)
{
    if (hWnd == NULL)
        return NULL;
    if (CWnd* pWnd = FromHandlePermanent(hWnd))
        return pWnd;
    // A temporary object, valid until the outermost message being handled ends.
    CWnd*& pTemp = threadState().tempMap[hWnd];
    if (pTemp == NULL)
    {
        pTemp = new CWnd;
        pTemp->m_hWnd = hWnd;
    }
    return pTemp;
}

void PASCAL CWnd::DeleteTempMap()
{
    auto& tempMap = threadState().tempMap;
    for (auto& entry : tempMap)
    {
        entry.second->m_hWnd = NULL; // the window is not the temporary object's to destroy
        delete entry.second;
    }
    tempMap.clear();
}

BOOL CWnd::Attach(HWND hWndNew)
{
    if (hWndNew == NULL || m_hWnd != NULL)
        return FALSE;
    ::AcquireSRWLockExclusive(&g_mapLock);
    bool bInserted = g_permanentMap.emplace(hWndNew, this).second;
    ::ReleaseSRWLockExclusive(&g_mapLock);
    if (!bInserted)
        return FALSE; // another object owns the window already
    m_hWnd = hWndNew;
    return TRUE;
}

HWND CWnd::Detach()
{
    HWND hWnd = m_hWnd;
    if (hWnd == NULL)
        return NULL;
    ::AcquireSRWLockExclusive(&g_mapLock);
    auto it = g_permanentMap.find(hWnd);
    if (it != g_permanentMap.end() && it->second == this)
        g_permanentMap.erase(it);
    ::ReleaseSRWLockExclusive(&g_mapLock);
    m_hWnd = NULL;
    return hWnd;
}

BOOL CWnd::SubclassWindow(HWND hWnd)
{
    if (!Attach(hWnd))
        return FALSE;
    WNDPROC pfnOld = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&CWnd::subclassProc)));
    if (pfnOld == NULL)
    {
        Detach();
        return FALSE;
    }
    m_pfnSuper = pfnOld;
    ::SetPropW(hWnd, kSuperProp, reinterpret_cast<HANDLE>(pfnOld));
    return TRUE;
}

BOOL CWnd::SubclassDlgItem(UINT nID, CWnd* pParent)
{
    HWND hWndControl = ::GetDlgItem(pParent->GetSafeHwnd(), nID);
    return hWndControl != NULL && SubclassWindow(hWndControl);
}

HWND CWnd::UnsubclassWindow()
{
    if (m_hWnd != NULL && m_pfnSuper != NULL)
    {
        ::SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper));
        ::RemovePropW(m_hWnd, kSuperProp);
    }
    m_pfnSuper = NULL;
    return Detach();
}

BOOL CWnd::DestroyWindow()
{
    HWND hWnd = m_hWnd;
    if (hWnd == NULL)
        return FALSE;
    BOOL bResult = ::DestroyWindow(hWnd);
    // A window that was only attached never passes WM_NCDESTROY through this object.
    if (bResult && m_hWnd == hWnd)
        Detach();
    return bResult;
}

void CWnd::detachOnNcDestroy()
{
    // The window is going: give it back its own procedure for anything still to come.
    HWND hWnd = m_hWnd;
    if (m_pfnSuper != NULL &&
        ::GetWindowLongPtrW(hWnd, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(&CWnd::subclassProc))
        ::SetWindowLongPtrW(hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_pfnSuper));
    ::RemovePropW(hWnd, kSuperProp);
    m_pfnSuper = NULL;
    Detach();
    PostNcDestroy();
}

LRESULT CALLBACK CWnd::subclassProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    CWnd* pWnd = FromHandlePermanent(hWnd);
    if (pWnd == NULL)
    {
        WNDPROC pfnSuper = superOf(hWnd);
        return pfnSuper != NULL ? ::CallWindowProcW(pfnSuper, hWnd, message, wParam, lParam)
                                : ::DefWindowProcW(hWnd, message, wParam, lParam);
    }
    DispatchScope scope(hWnd, message, wParam, lParam);
    LRESULT lResult = 0;
    try
    {
        lResult = pWnd->WindowProc(message, wParam, lParam);
    }
    catch (CException* e)
    {
        afx_internal::reportHandlerException(e);
    }
    if (message == WM_NCDESTROY && pWnd->m_hWnd == hWnd)
        pWnd->detachOnNcDestroy();
    return lResult;
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT lResult = 0;
    if (!OnWndMsg(message, wParam, lParam, &lResult))
        lResult = DefWindowProc(message, wParam, lParam);
    return lResult;
}

LRESULT CWnd::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (m_pfnSuper != NULL)
        return ::CallWindowProcW(m_pfnSuper, m_hWnd, message, wParam, lParam);
    return ::DefWindowProcW(m_hWnd, message, wParam, lParam);
}

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult)
{
    const AFX_MSGMAP_ENTRY* pEntry = message == WM_COMMAND
                                         ? FindMessageEntry(WM_COMMAND, HIWORD(wParam), LOWORD(wParam))
                                         : FindMessageEntry(message, 0, 0);
    if (pEntry == NULL)
        return FALSE;
    switch (pEntry->nSig)
    {
    case AfxSigCmd_v:
        (this->*pEntry->pfn)();
        break;
    case AfxSig_vwwW:
        (this->*memberFrom<PMSG_SCROLL>(pEntry->pfn))(
            LOWORD(wParam), (UINT)(short)HIWORD(wParam),
            reinterpret_cast<CScrollBar*>(FromHandle(reinterpret_cast<HWND>(lParam))));
        break;
    case AfxSig_vw_ptr:
        (this->*memberFrom<PMSG_TIMER>(pEntry->pfn))((UINT_PTR)wParam);
        break;
    default:
        return FALSE;
    }
    if (pResult != NULL)
        *pResult = 0;
    return TRUE;
}

void CWnd::PostNcDestroy() {}

void CWnd::OnHScroll(UINT, UINT, CScrollBar*)
{
    defaultProcessing(this);
}

void CWnd::OnVScroll(UINT, UINT, CScrollBar*)
{
    defaultProcessing(this);
}

void CWnd::OnTimer(UINT_PTR)
{
    defaultProcessing(this);
}

void CWnd::BeginModalState()
{
    EnableWindow(FALSE);
}

void CWnd::EndModalState()
{
    EnableWindow(TRUE);
}
