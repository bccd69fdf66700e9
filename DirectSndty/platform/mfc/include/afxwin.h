#pragma once
// Windows part of the MFC subset: command targets with message maps, windows,
// dialogs with data exchange, the standard controls, worker threads, message boxes,
// resources and extension-module registration.

#include "afx.h"
#include <commctrl.h>

class CCmdTarget;
class CWnd;
class CDialog;
class CDataExchange;
class CScrollBar;

// ---------------------------------------------------------------------------
// Message maps

typedef void (AFX_MSG_CALL CCmdTarget::*AFX_PMSG)(void);
typedef void (AFX_MSG_CALL CWnd::*AFX_PMSGW)(void);

enum AfxSig
{
    AfxSig_end = 0,
    AfxSigCmd_v,  // void (void): control notifications
    AfxSig_vwwW,  // void (UINT, UINT, CScrollBar*): WM_HSCROLL, WM_VSCROLL
    AfxSig_vw_ptr // void (UINT_PTR): WM_TIMER
};

struct AFX_MSGMAP_ENTRY
{
    UINT nMessage;
    UINT nCode;
    UINT nID;
    UINT nLastID;
    UINT_PTR nSig;
    AFX_PMSG pfn;
};

struct AFX_MSGMAP
{
    const AFX_MSGMAP*(PASCAL* pfnGetBaseMap)();
    const AFX_MSGMAP_ENTRY* lpEntries;
};

#define DECLARE_MESSAGE_MAP()                                  \
protected:                                                     \
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();       \
    virtual const AFX_MSGMAP* GetMessageMap() const;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                                      \
    const AFX_MSGMAP* theClass::GetMessageMap() const { return GetThisMessageMap(); } \
    const AFX_MSGMAP* PASCAL theClass::GetThisMessageMap()                          \
    {                                                                               \
        [[maybe_unused]] typedef theClass ThisClass;                                \
        typedef baseClass TheBaseClass;                                             \
        static const AFX_MSGMAP_ENTRY _messageEntries[] = {

#define END_MESSAGE_MAP()                                                   \
    {0, 0, 0, 0, AfxSig_end, (AFX_PMSG)0}};                                  \
    static const AFX_MSGMAP messageMap = {&TheBaseClass::GetThisMessageMap, \
                                          &_messageEntries[0]};             \
    return &messageMap;                                                     \
    }

// Handlers of other signatures are stored as AFX_PMSG and called back through their
// real type, chosen by the entry's signature code, as MFC does. The conversion goes
// through a union: both are plain pointers to members of the same size.
template <class TMemberFunction>
inline AFX_PMSG AfxPmsgFrom(TMemberFunction pmf)
{
    static_assert(sizeof(TMemberFunction) == sizeof(AFX_PMSG), "member pointer size");
    union
    {
        TMemberFunction typed;
        AFX_PMSG stored;
    } cast;
    cast.typed = pmf;
    return cast.stored;
}
#define AFX_PMSG_CAST(pmf) AfxPmsgFrom(pmf)

#define ON_CONTROL(wNotifyCode, id, memberFxn) \
    {WM_COMMAND, (WORD)wNotifyCode, (WORD)id, (WORD)id, AfxSigCmd_v, (static_cast<AFX_PMSG>(memberFxn))},
#define ON_COMMAND(id, memberFxn) ON_CONTROL(0, id, memberFxn)
#define ON_BN_CLICKED(id, memberFxn) ON_CONTROL(BN_CLICKED, id, memberFxn)
#define ON_CBN_SELCHANGE(id, memberFxn) ON_CONTROL(CBN_SELCHANGE, id, memberFxn)
#define ON_EN_CHANGE(id, memberFxn) ON_CONTROL(EN_CHANGE, id, memberFxn)
#define ON_WM_HSCROLL()                                                                  \
    {WM_HSCROLL, 0, 0, 0, AfxSig_vwwW,                                                   \
     AFX_PMSG_CAST((static_cast<void (AFX_MSG_CALL CWnd::*)(UINT, UINT, CScrollBar*)>(   \
         &ThisClass::OnHScroll)))},
#define ON_WM_VSCROLL()                                                                  \
    {WM_VSCROLL, 0, 0, 0, AfxSig_vwwW,                                                   \
     AFX_PMSG_CAST((static_cast<void (AFX_MSG_CALL CWnd::*)(UINT, UINT, CScrollBar*)>(   \
         &ThisClass::OnVScroll)))},
#define ON_WM_TIMER()                                                                                   \
    {WM_TIMER, 0, 0, 0, AfxSig_vw_ptr,                                                                  \
     AFX_PMSG_CAST((static_cast<void (AFX_MSG_CALL CWnd::*)(UINT_PTR)>(&ThisClass::OnTimer)))},

// ---------------------------------------------------------------------------
// CCmdTarget

class AFX_SUBSET_API CCmdTarget : public CObject
{
    DECLARE_DYNAMIC(CCmdTarget)
public:
    CCmdTarget();
    virtual ~CCmdTarget();

    // Finds the handler for a message in this class's map and its bases' maps.
    const AFX_MSGMAP_ENTRY* FindMessageEntry(UINT nMessage, UINT nCode, UINT nID) const;

protected:
    static const AFX_MSGMAP* PASCAL GetThisMessageMap();
    virtual const AFX_MSGMAP* GetMessageMap() const;
};

// ---------------------------------------------------------------------------
// CWnd: a C++ object attached to a window handle. FromHandle gives the attached object
// or a temporary one that lives until the current message has been handled.

class AFX_SUBSET_API CWnd : public CCmdTarget
{
    DECLARE_DYNCREATE(CWnd)
public:
    CWnd();
    virtual ~CWnd();

    HWND m_hWnd;

    operator HWND() const;
    HWND GetSafeHwnd() const;
    static CWnd* PASCAL FromHandle(HWND hWnd);
    static CWnd* PASCAL FromHandlePermanent(HWND hWnd);
    static void PASCAL DeleteTempMap();

    BOOL Attach(HWND hWndNew);
    HWND Detach();
    BOOL SubclassWindow(HWND hWnd);
    BOOL SubclassDlgItem(UINT nID, CWnd* pParent);
    HWND UnsubclassWindow();
    virtual BOOL DestroyWindow();

    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const;

    void SetWindowText(LPCTSTR lpszString);
    int GetWindowText(LPTSTR lpszStringBuf, int nMaxCount) const;
    void GetWindowText(CString& rString) const;
    int GetWindowTextLength() const;

    BOOL EnableWindow(BOOL bEnable = TRUE);
    BOOL IsWindowEnabled() const;
    BOOL ShowWindow(int nCmdShow);
    BOOL IsWindowVisible() const;
    void Invalidate(BOOL bErase = TRUE);
    void InvalidateRect(LPCRECT lpRect, BOOL bErase = TRUE);
    void UpdateWindow();
    void GetWindowRect(LPRECT lpRect) const;
    void GetClientRect(LPRECT lpRect) const;
    void MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint = TRUE);
    DWORD GetStyle() const;
    CWnd* GetParent() const;
    CWnd* SetFocus();

    CWnd* GetDlgItem(int nID) const;
    int GetDlgCtrlID() const;
    void SetDlgItemText(int nID, LPCTSTR lpszString);
    int GetDlgItemText(int nID, CString& rString) const;
    UINT GetDlgItemInt(int nID, BOOL* lpTrans = NULL, BOOL bSigned = TRUE) const;
    void SetDlgItemInt(int nID, UINT nValue, BOOL bSigned = TRUE);
    void CheckDlgButton(int nIDButton, UINT nCheck);
    UINT IsDlgButtonChecked(int nIDButton) const;
    void CheckRadioButton(int nIDFirstButton, int nIDLastButton, int nIDCheckButton);
    int GetCheckedRadioButton(int nIDFirstButton, int nIDLastButton);

    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse,
                      void(CALLBACK* lpfnTimer)(HWND, UINT, UINT_PTR, DWORD));
    BOOL KillTimer(UINT_PTR nIDEvent);

    int MessageBox(LPCTSTR lpszText, LPCTSTR lpszCaption = NULL, UINT nType = MB_OK);

    BOOL UpdateData(BOOL bSaveAndValidate = TRUE);
    virtual void DoDataExchange(CDataExchange* pDX);

    // Disables this window while a window it opened is modal, as frames do.
    virtual void BeginModalState();
    virtual void EndModalState();

    afx_msg void OnHScroll(UINT nSBCode, UINT nPos, CScrollBar* pScrollBar);
    afx_msg void OnVScroll(UINT nSBCode, UINT nPos, CScrollBar* pScrollBar);
    afx_msg void OnTimer(UINT_PTR nIDEvent);

    // Dispatches a message through the message map; FALSE when no entry handles it.
    virtual BOOL OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual void PostNcDestroy();

protected:
    WNDPROC m_pfnSuper; // the class procedure of a subclassed window

    DECLARE_MESSAGE_MAP()

private:
    static LRESULT CALLBACK subclassProc(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
    void detachOnNcDestroy();
};

// ---------------------------------------------------------------------------
// Dialog data exchange

class AFX_SUBSET_API CDataExchange
{
public:
    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate);

    BOOL m_bSaveAndValidate;
    CWnd* m_pDlgWnd;

    HWND PrepareCtrl(int nIDC);
    HWND PrepareEditCtrl(int nIDC);
    // Returns focus to the last control prepared and abandons the exchange.
    [[noreturn]] void Fail();

    UINT m_idLastControl;
    BOOL m_bEditLastControl;
};

AFX_SUBSET_API void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, int& value);
AFX_SUBSET_API void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, UINT& value);
AFX_SUBSET_API void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, long& value);
AFX_SUBSET_API void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, DWORD& value);
AFX_SUBSET_API void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, float& value);
AFX_SUBSET_API void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, double& value);
AFX_SUBSET_API void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, CString& value);
AFX_SUBSET_API void AFXAPI DDX_Check(CDataExchange* pDX, int nIDC, int& value);
AFX_SUBSET_API void AFXAPI DDX_Radio(CDataExchange* pDX, int nIDC, int& value);
AFX_SUBSET_API void AFXAPI DDX_CBIndex(CDataExchange* pDX, int nIDC, int& index);
AFX_SUBSET_API void AFXAPI DDX_Slider(CDataExchange* pDX, int nIDC, int& value);
AFX_SUBSET_API void AFXAPI DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);

AFX_SUBSET_API void AFXAPI DDV_MinMaxInt(CDataExchange* pDX, int value, int minVal, int maxVal);
AFX_SUBSET_API void AFXAPI DDV_MinMaxUInt(CDataExchange* pDX, UINT value, UINT minVal, UINT maxVal);
AFX_SUBSET_API void AFXAPI DDV_MinMaxDWord(CDataExchange* pDX, DWORD const& value, DWORD minVal, DWORD maxVal);
AFX_SUBSET_API void AFXAPI DDV_MinMaxFloat(CDataExchange* pDX, float const& value, float minVal, float maxVal);
AFX_SUBSET_API void AFXAPI DDV_MinMaxDouble(CDataExchange* pDX, double const& value, double minVal, double maxVal);

// ---------------------------------------------------------------------------
// CDialog: modal (DoModal) or modeless (Create) from a template in the resource chain.

class AFX_SUBSET_API CDialog : public CWnd
{
    DECLARE_DYNAMIC(CDialog)
public:
    CDialog();
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = NULL);
    explicit CDialog(LPCTSTR lpszTemplateName, CWnd* pParentWnd = NULL);
    virtual ~CDialog();

    virtual INT_PTR DoModal();
    virtual BOOL Create(UINT nIDTemplate, CWnd* pParentWnd = NULL);
    virtual BOOL Create(LPCTSTR lpszTemplateName, CWnd* pParentWnd = NULL);
    void EndDialog(int nResult);
    void GotoDlgCtrl(CWnd* pWndCtrl);

    virtual BOOL OnInitDialog();

protected:
    virtual void OnOK();
    virtual void OnCancel();

    LPCTSTR m_lpszTemplateName;
    UINT m_nIDHelp;
    CWnd* m_pParentWnd;

    DECLARE_MESSAGE_MAP()

private:
    void setTemplateName(LPCTSTR lpszTemplateName);
    const DLGTEMPLATE* loadTemplate(HINSTANCE* phInst) const;

    CString m_strTemplateName; // a named template's name, which m_lpszTemplateName points into
    friend INT_PTR CALLBACK AfxDlgProc(HWND, UINT, WPARAM, LPARAM);
};

// ---------------------------------------------------------------------------
// Controls: thin wrappers over their window messages.

class AFX_SUBSET_API CStatic : public CWnd
{
    DECLARE_DYNAMIC(CStatic)
public:
    CStatic();
};

class AFX_SUBSET_API CButton : public CWnd
{
    DECLARE_DYNAMIC(CButton)
public:
    CButton();
    int GetCheck() const;
    void SetCheck(int nCheck);
    UINT GetState() const;
    void SetState(BOOL bHighlight);
};

class AFX_SUBSET_API CEdit : public CWnd
{
    DECLARE_DYNAMIC(CEdit)
public:
    CEdit();
    void SetSel(int nStartChar, int nEndChar, BOOL bNoScroll = FALSE);
    void ReplaceSel(LPCTSTR lpszNewText, BOOL bCanUndo = FALSE);
    void LimitText(int nChars = 0);
    BOOL SetReadOnly(BOOL bReadOnly = TRUE);
    int GetLineCount() const;
};

class AFX_SUBSET_API CComboBox : public CWnd
{
    DECLARE_DYNAMIC(CComboBox)
public:
    CComboBox();
    int GetCount() const;
    int GetCurSel() const;
    int SetCurSel(int nSelect);
    int AddString(LPCTSTR lpszString);
    int InsertString(int nIndex, LPCTSTR lpszString);
    int DeleteString(UINT nIndex);
    void ResetContent();
    int GetLBText(int nIndex, LPTSTR lpszText) const;
    void GetLBText(int nIndex, CString& rString) const;
    int GetLBTextLen(int nIndex) const;
    int FindStringExact(int nIndexStart, LPCTSTR lpszFind) const;
    int SelectString(int nStartAfter, LPCTSTR lpszString);
    DWORD_PTR GetItemData(int nIndex) const;
    int SetItemData(int nIndex, DWORD_PTR dwItemData);
};

class AFX_SUBSET_API CScrollBar : public CWnd
{
    DECLARE_DYNAMIC(CScrollBar)
public:
    CScrollBar();
    int GetScrollPos() const;
    int SetScrollPos(int nPos, BOOL bRedraw = TRUE);
    void GetScrollRange(LPINT lpMinPos, LPINT lpMaxPos) const;
    void SetScrollRange(int nMinPos, int nMaxPos, BOOL bRedraw = TRUE);
};

// ---------------------------------------------------------------------------
// Worker threads. The thread object deletes itself when its function returns unless
// m_bAutoDelete has been cleared (create suspended, clear it, then ResumeThread).

typedef UINT(AFX_CDECL* AFX_THREADPROC)(LPVOID);

class AFX_SUBSET_API CWinThread : public CCmdTarget
{
    DECLARE_DYNAMIC(CWinThread)
public:
    CWinThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam);
    virtual ~CWinThread();

    BOOL CreateThread(DWORD dwCreateFlags = 0, UINT nStackSize = 0,
                      LPSECURITY_ATTRIBUTES lpSecurityAttrs = NULL);
    DWORD ResumeThread();
    DWORD SuspendThread();
    int GetThreadPriority();
    BOOL SetThreadPriority(int nPriority);
    operator HANDLE() const;
    virtual void Delete();

    HANDLE m_hThread;
    DWORD m_nThreadID;
    BOOL m_bAutoDelete;
    AFX_THREADPROC m_pfnThreadProc;
    LPVOID m_pThreadParams;
};

AFX_SUBSET_API CWinThread* AFXAPI AfxBeginThread(AFX_THREADPROC pfnThreadProc, LPVOID pParam,
                                                 int nPriority = THREAD_PRIORITY_NORMAL,
                                                 UINT nStackSize = 0, DWORD dwCreateFlags = 0,
                                                 LPSECURITY_ATTRIBUTES lpSecurityAttrs = NULL);

// ---------------------------------------------------------------------------
// Message boxes. The caption is the application's name, as in MFC.
// A host without a user (a test, a service) installs an answerer, which is asked
// instead of showing the box; MFC hosts get the same effect by overriding
// CWinApp::DoMessageBox. The answerer is one per process.

AFX_SUBSET_API int AFXAPI AfxMessageBox(LPCTSTR lpszText, UINT nType = MB_OK, UINT nIDHelp = 0);

typedef int(CALLBACK* AFX_MSGBOX_ANSWERER)(LPCTSTR lpszText, UINT nType, UINT nIDHelp);
// Returns the answerer installed before; NULL restores the real box.
AFX_SUBSET_API AFX_MSGBOX_ANSWERER AFXAPI AfxSetMessageBoxAnswerer(AFX_MSGBOX_ANSWERER pfnAnswerer);
AFX_SUBSET_API LPCTSTR AFXAPI AfxGetAppName();

// ---------------------------------------------------------------------------
// Modules and resources. One module state per process, shared by the host and every
// extension DLL; resources are looked up in the host first, then in each extension.

struct AFX_EXTENSION_MODULE
{
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
    CRuntimeClass* pFirstSharedClass;
    void* pFirstSharedFactory;
};

class AFX_SUBSET_API CDynLinkLibrary : public CCmdTarget
{
    DECLARE_DYNAMIC(CDynLinkLibrary)
public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem = FALSE);
    virtual ~CDynLinkLibrary();

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;
    CDynLinkLibrary* m_pNextDLL;
};

AFX_SUBSET_API BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
AFX_SUBSET_API void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

AFX_SUBSET_API HINSTANCE AFXAPI AfxGetInstanceHandle();
AFX_SUBSET_API HINSTANCE AFXAPI AfxGetResourceHandle();
AFX_SUBSET_API void AFXAPI AfxSetResourceHandle(HINSTANCE hInstResource);
AFX_SUBSET_API HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR lpszName, LPCTSTR lpszType);

// Loads the rich-edit control classes so that dialog templates can create them.
AFX_SUBSET_API BOOL AFXAPI AfxInitRichEdit();
AFX_SUBSET_API BOOL AFXAPI AfxInitRichEdit2();
