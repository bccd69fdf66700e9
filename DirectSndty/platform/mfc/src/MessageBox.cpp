// AfxMessageBox with the application's name as caption, or the installed answerer.
#include "afxwin.h"
#include <atomic>

namespace
{
std::atomic<AFX_MSGBOX_ANSWERER> g_pfnAnswerer{NULL};

// MFC gives a box without an icon the one that suits its buttons.
UINT withDefaultIcon(UINT nType)
{
    if ((nType & MB_ICONMASK) != 0)
        return nType;
    switch (nType & MB_TYPEMASK)
    {
    case MB_OK:
    case MB_OKCANCEL:
        return nType | MB_ICONEXCLAMATION;
    case MB_YESNO:
    case MB_YESNOCANCEL:
        return nType | MB_ICONQUESTION;
    default:
        return nType;
    }
}
} // namespace

AFX_MSGBOX_ANSWERER AFXAPI AfxSetMessageBoxAnswerer(AFX_MSGBOX_ANSWERER pfnAnswerer)
{
    return g_pfnAnswerer.exchange(pfnAnswerer);
}

int AFXAPI AfxMessageBox(LPCTSTR lpszText, UINT nType, UINT nIDHelp)
{
    if (AFX_MSGBOX_ANSWERER pfnAnswerer = g_pfnAnswerer.load())
        return pfnAnswerer(lpszText, nType, nIDHelp);
    return ::MessageBoxW(::GetActiveWindow(), lpszText, AfxGetAppName(), withDefaultIcon(nType));
}

LPCTSTR AFXAPI AfxGetAppName()
{
    // The executable's file name without folder and extension, computed once.
    static const std::wstring appName = [] {
        wchar_t szPath[MAX_PATH] = L"";
        ::GetModuleFileNameW(NULL, szPath, MAX_PATH);
        std::wstring name(szPath);
        size_t nSlash = name.find_last_of(L"\\/");
        if (nSlash != std::wstring::npos)
            name.erase(0, nSlash + 1);
        size_t nDot = name.rfind(L'.');
        if (nDot != std::wstring::npos)
            name.resize(nDot);
        return name;
    }();
    return appName.c_str();
}
