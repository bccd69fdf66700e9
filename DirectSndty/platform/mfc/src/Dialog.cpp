// CDialog: modal and modeless dialogs from templates found in the resource chain.
#include "AfxState.h"

IMPLEMENT_DYNAMIC(CDialog, CWnd)

BEGIN_MESSAGE_MAP(CDialog, CWnd)
    ON_COMMAND(IDOK, &CDialog::OnOK)
    ON_COMMAND(IDCANCEL, &CDialog::OnCancel)
END_MESSAGE_MAP()

namespace afx_internal
{
void registerCommonControls()
{
    // Templates may hold trackbars and progress bars; their classes must exist first.
    static const BOOL bRegistered = [] {
        INITCOMMONCONTROLSEX icc = {sizeof(icc), ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
        return ::InitCommonControlsEx(&icc);
    }();
    (void)bRegistered;
}
} // namespace afx_internal

// The dialog procedure of every CDialog: attaches the object when the dialog starts,
// routes messages through the message map, detaches when the window goes.
INT_PTR CALLBACK AfxDlgProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG)
    {
        auto* pDialog = reinterpret_cast<CDialog*>(lParam);
        pDialog->Attach(hWnd);
        afx_internal::DispatchScope scope(hWnd, message, wParam, lParam);
        try
        {
            return pDialog->OnInitDialog();
        }
        catch (CException* e)
        {
            afx_internal::reportHandlerException(e);
            return TRUE;
        }
    }
    // Messages that come before WM_INITDIALOG have no object yet.
    CWnd* pWnd = CWnd::FromHandlePermanent(hWnd);
    if (pWnd == NULL)
        return FALSE;
    BOOL bHandled = FALSE;
    {
        afx_internal::DispatchScope scope(hWnd, message, wParam, lParam);
        LRESULT lResult = 0;
        try
        {
            bHandled = pWnd->OnWndMsg(message, wParam, lParam, &lResult);
        }
        catch (CException* e)
        {
            afx_internal::reportHandlerException(e);
            bHandled = TRUE;
        }
    }
    if (message == WM_NCDESTROY)
    {
        pWnd->Detach();
        pWnd->PostNcDestroy();
    }
    return bHandled;
}

CDialog::CDialog() : m_lpszTemplateName(NULL), m_nIDHelp(0), m_pParentWnd(NULL) {}

CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd)
    : m_lpszTemplateName(MAKEINTRESOURCEW(nIDTemplate)), m_nIDHelp(nIDTemplate), m_pParentWnd(pParentWnd)
{
}

CDialog::CDialog(LPCTSTR lpszTemplateName, CWnd* pParentWnd)
    : m_lpszTemplateName(NULL), m_nIDHelp(0), m_pParentWnd(pParentWnd)
{
    setTemplateName(lpszTemplateName);
}

CDialog::~CDialog()
{
    // A modeless dialog still open is closed with its object.
    if (m_hWnd != NULL)
        DestroyWindow();
}

void CDialog::setTemplateName(LPCTSTR lpszTemplateName)
{
    // A name is copied, so the caller's string need not outlive the object.
    if (IS_INTRESOURCE(lpszTemplateName))
    {
        m_lpszTemplateName = lpszTemplateName;
        return;
    }
    m_strTemplateName = lpszTemplateName;
    m_lpszTemplateName = m_strTemplateName;
}

const DLGTEMPLATE* CDialog::loadTemplate(HINSTANCE* phInst) const
{
    if (m_lpszTemplateName == NULL)
        return NULL;
    HINSTANCE hInst = AfxFindResourceHandle(m_lpszTemplateName, RT_DIALOG);
    HRSRC hResource = ::FindResourceW(hInst, m_lpszTemplateName, RT_DIALOG);
    if (hResource == NULL)
        return NULL;
    HGLOBAL hTemplate = ::LoadResource(hInst, hResource);
    if (hTemplate == NULL)
        return NULL;
    *phInst = hInst;
    return static_cast<const DLGTEMPLATE*>(::LockResource(hTemplate));
}

// Without a parent the dialog belongs to the thread's active window, so that it stays
// on top of it and disables it while modal.
static HWND ownerWindow(CWnd* pParentWnd)
{
    HWND hWndParent = pParentWnd->GetSafeHwnd();
    return hWndParent != NULL ? hWndParent : ::GetActiveWindow();
}

INT_PTR CDialog::DoModal()
{
    HINSTANCE hInst = NULL;
    const DLGTEMPLATE* pTemplate = loadTemplate(&hInst);
    if (pTemplate == NULL)
        return -1;
    afx_internal::registerCommonControls();
    return ::DialogBoxIndirectParamW(hInst, pTemplate, ownerWindow(m_pParentWnd), AfxDlgProc,
                                     reinterpret_cast<LPARAM>(this));
}

BOOL CDialog::Create(UINT nIDTemplate, CWnd* pParentWnd)
{
    m_nIDHelp = nIDTemplate;
    return Create(MAKEINTRESOURCEW(nIDTemplate), pParentWnd);
}

BOOL CDialog::Create(LPCTSTR lpszTemplateName, CWnd* pParentWnd)
{
    setTemplateName(lpszTemplateName);
    m_pParentWnd = pParentWnd;
    HINSTANCE hInst = NULL;
    const DLGTEMPLATE* pTemplate = loadTemplate(&hInst);
    if (pTemplate == NULL)
        return FALSE;
    afx_internal::registerCommonControls();
    HWND hWnd = ::CreateDialogIndirectParamW(hInst, pTemplate, pParentWnd->GetSafeHwnd(), AfxDlgProc,
                                             reinterpret_cast<LPARAM>(this));
    return hWnd != NULL;
}

void CDialog::EndDialog(int nResult)
{
    ::EndDialog(m_hWnd, nResult);
}

void CDialog::GotoDlgCtrl(CWnd* pWndCtrl)
{
    ::SendMessageW(m_hWnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(pWndCtrl->GetSafeHwnd()), TRUE);
}

BOOL CDialog::OnInitDialog()
{
    if (!UpdateData(FALSE))
    {
        EndDialog(-1);
        return FALSE;
    }
    return TRUE;
}

void CDialog::OnOK()
{
    // An entry the exchange refused keeps the dialog open; the user was told why.
    if (!UpdateData(TRUE))
        return;
    EndDialog(IDOK);
}

void CDialog::OnCancel()
{
    EndDialog(IDCANCEL);
}
