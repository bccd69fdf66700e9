// The one module state of the process: the resource handle and the chain of extension
// DLLs. It lives in this DLL, so the host and every extension DLL see the same one.
#include "AfxState.h"

IMPLEMENT_DYNAMIC(CDynLinkLibrary, CCmdTarget)

namespace
{
SRWLOCK g_libraryLock = SRWLOCK_INIT;
CDynLinkLibrary* g_pFirstLibrary = NULL; // newest first
HINSTANCE g_hResource = NULL;            // NULL: the host executable

bool hasResource(HINSTANCE hInst, LPCTSTR lpszName, LPCTSTR lpszType)
{
    return hInst != NULL && ::FindResourceW(hInst, lpszName, lpszType) != NULL;
}
} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD dwReason, LPVOID)
{
    // Temporary window objects of a thread go with the thread.
    if (dwReason == DLL_THREAD_DETACH || dwReason == DLL_PROCESS_DETACH)
        afx_internal::freeThreadState();
    return TRUE;
}

HINSTANCE AFXAPI AfxGetInstanceHandle()
{
    return ::GetModuleHandleW(NULL);
}

HINSTANCE AFXAPI AfxGetResourceHandle()
{
    HINSTANCE hResource = g_hResource;
    return hResource != NULL ? hResource : ::GetModuleHandleW(NULL);
}

void AFXAPI AfxSetResourceHandle(HINSTANCE hInstResource)
{
    g_hResource = hInstResource;
}

HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR lpszName, LPCTSTR lpszType)
{
    // The host first, so that it can replace an extension's resources with its own.
    HINSTANCE hHost = AfxGetResourceHandle();
    if (hasResource(hHost, lpszName, lpszType))
        return hHost;
    ::AcquireSRWLockShared(&g_libraryLock);
    HINSTANCE hFound = hHost;
    for (CDynLinkLibrary* pDLL = g_pFirstLibrary; pDLL != NULL; pDLL = pDLL->m_pNextDLL)
    {
        if (hasResource(pDLL->m_hResource, lpszName, lpszType))
        {
            hFound = pDLL->m_hResource;
            break;
        }
    }
    ::ReleaseSRWLockShared(&g_libraryLock);
    return hFound;
}

BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule)
{
    if (state.bInitialized)
        return TRUE;
    state.bInitialized = TRUE;
    state.hModule = hModule;
    state.hResource = hModule;
    return TRUE;
}

void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL)
{
    // Unlink under the lock, delete outside it: the destructor takes the lock itself.
    for (;;)
    {
        CDynLinkLibrary* pVictim = NULL;
        ::AcquireSRWLockShared(&g_libraryLock);
        for (CDynLinkLibrary* pDLL = g_pFirstLibrary; pDLL != NULL; pDLL = pDLL->m_pNextDLL)
        {
            if (pDLL->m_hModule == state.hModule)
            {
                pVictim = pDLL;
                break;
            }
        }
        ::ReleaseSRWLockShared(&g_libraryLock);
        if (pVictim == NULL)
            return;
        delete pVictim;
    }
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem)
    : m_hModule(state.hModule), m_hResource(state.hResource), m_bSystem(bSystem), m_pNextDLL(NULL)
{
    ::AcquireSRWLockExclusive(&g_libraryLock);
    m_pNextDLL = g_pFirstLibrary;
    g_pFirstLibrary = this;
    ::ReleaseSRWLockExclusive(&g_libraryLock);
}

CDynLinkLibrary::~CDynLinkLibrary()
{
    ::AcquireSRWLockExclusive(&g_libraryLock);
    for (CDynLinkLibrary** ppLink = &g_pFirstLibrary; *ppLink != NULL; ppLink = &(*ppLink)->m_pNextDLL)
    {
        if (*ppLink == this)
        {
            *ppLink = m_pNextDLL;
            break;
        }
    }
    ::ReleaseSRWLockExclusive(&g_libraryLock);
}
