// Registers the library with the framework as an extension module, so that its dialog
// templates are found from the host's resource chain.

#include <afxdllx.h>

static AFX_EXTENSION_MODULE DirectSndtyDLL = {FALSE, NULL, NULL, NULL, NULL};

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID /*lpReserved*/)
{
    if (dwReason == DLL_PROCESS_ATTACH)
    {
        if (!AfxInitExtensionModule(DirectSndtyDLL, hInstance))
            return FALSE;
        new CDynLinkLibrary(DirectSndtyDLL);
        return TRUE;
    }
    if (dwReason == DLL_PROCESS_DETACH)
        AfxTermExtensionModule(DirectSndtyDLL);
    return TRUE;
}
