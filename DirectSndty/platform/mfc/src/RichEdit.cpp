// Loading the rich-edit DLLs, which register the classes dialog templates name.
#include "afxwin.h"

namespace
{
// Each DLL is loaded once and kept for the life of the process, as MFC does.
bool loadOnce(LPCWSTR pszDll, HMODULE& hModule)
{
    if (hModule == NULL)
        hModule = ::LoadLibraryW(pszDll);
    return hModule != NULL;
}

HMODULE g_hRichEdit1 = NULL; // "RICHEDIT"
HMODULE g_hRichEdit2 = NULL; // "RichEdit20W"
} // namespace

BOOL AFXAPI AfxInitRichEdit2()
{
    return loadOnce(L"riched20.dll", g_hRichEdit2);
}

BOOL AFXAPI AfxInitRichEdit()
{
    bool bVersion1 = loadOnce(L"riched32.dll", g_hRichEdit1);
    bool bVersion2 = AfxInitRichEdit2() != FALSE;
    return bVersion1 && bVersion2;
}
