// Dialog data exchange and validation with MFC's parsing rules and standard prompts.
#include "afxwin.h"
#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cwchar>

namespace
{
// MFC's help ids of its data-exchange prompts.
const UINT AFX_IDP_PARSE_INT = 0xF110;
const UINT AFX_IDP_PARSE_REAL = 0xF111;
const UINT AFX_IDP_PARSE_INT_RANGE = 0xF112;
const UINT AFX_IDP_PARSE_REAL_RANGE = 0xF113;
const UINT AFX_IDP_PARSE_UINT = 0xF117;

[[noreturn]] void failWith(CDataExchange* pDX, LPCWSTR pszPrompt, UINT nIDPrompt)
{
    AfxMessageBox(pszPrompt, MB_ICONEXCLAMATION, nIDPrompt);
    pDX->Fail();
}

void failRange(CDataExchange* pDX, LPCWSTR pszPrompt, UINT nIDPrompt, const CString& strMin,
               const CString& strMax)
{
    // Range checks apply to what the user entered, never to values being shown.
    if (!pDX->m_bSaveAndValidate)
        return;
    CString strPrompt(pszPrompt);
    strPrompt.Replace(L"%1", strMin);
    strPrompt.Replace(L"%2", strMax);
    failWith(pDX, strPrompt, nIDPrompt);
}

CString formatted(LPCWSTR pszFormat, ...)
{
    CString str;
    va_list args;
    va_start(args, pszFormat);
    str.FormatV(pszFormat, args);
    va_end(args);
    return str;
}

CString realText(double value, int nDigits)
{
    return formatted(L"%.*g", nDigits, value);
}

CString windowText(HWND hWnd)
{
    int nLength = ::GetWindowTextLengthW(hWnd);
    CString str;
    ::GetWindowTextW(hWnd, str.GetBuffer(nLength), nLength + 1);
    str.ReleaseBuffer();
    return str;
}

// Leaves the text alone when it is already right, so no change notification is sent.
void setWindowText(HWND hWnd, const CString& str)
{
    if (windowText(hWnd) != str)
        ::SetWindowTextW(hWnd, str);
}

// The number must fill the text apart from blanks and tabs around it.
CString numberText(HWND hWnd)
{
    CString str = windowText(hWnd);
    int nFirst = 0;
    int nEnd = str.GetLength();
    while (nFirst < nEnd && (str[nFirst] == L' ' || str[nFirst] == L'\t'))
        ++nFirst;
    while (nEnd > nFirst && (str[nEnd - 1] == L' ' || str[nEnd - 1] == L'\t'))
        --nEnd;
    return str.Mid(nFirst, nEnd - nFirst);
}

bool parseSigned(HWND hWnd, long& value)
{
    CString str = numberText(hWnd);
    if (str.IsEmpty())
        return false;
    wchar_t* pEnd = NULL;
    errno = 0;
    long parsed = wcstol(str, &pEnd, 10);
    if (pEnd == str.GetString() || *pEnd != L'\0' || errno == ERANGE)
        return false;
    value = parsed;
    return true;
}

bool parseUnsigned(HWND hWnd, unsigned long& value)
{
    CString str = numberText(hWnd);
    if (str.IsEmpty() || str[0] == L'-')
        return false;
    wchar_t* pEnd = NULL;
    errno = 0;
    unsigned long parsed = wcstoul(str, &pEnd, 10);
    if (pEnd == str.GetString() || *pEnd != L'\0' || errno == ERANGE)
        return false;
    value = parsed;
    return true;
}

bool parseReal(HWND hWnd, double& value)
{
    CString str = numberText(hWnd);
    if (str.IsEmpty())
        return false;
    wchar_t* pEnd = NULL;
    errno = 0;
    double parsed = wcstod(str, &pEnd);
    if (pEnd == str.GetString() || *pEnd != L'\0')
        return false;
    if (errno == ERANGE && std::fabs(parsed) == HUGE_VAL)
        return false;
    value = parsed;
    return true;
}

void exchangeSigned(CDataExchange* pDX, int nIDC, long& value)
{
    HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    if (!pDX->m_bSaveAndValidate)
    {
        setWindowText(hWndCtrl, formatted(L"%ld", value));
        return;
    }
    if (!parseSigned(hWndCtrl, value))
        failWith(pDX, L"Please enter an integer.", AFX_IDP_PARSE_INT);
}

void exchangeUnsigned(CDataExchange* pDX, int nIDC, unsigned long& value)
{
    HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    if (!pDX->m_bSaveAndValidate)
    {
        setWindowText(hWndCtrl, formatted(L"%lu", value));
        return;
    }
    if (!parseUnsigned(hWndCtrl, value))
        failWith(pDX, L"Please enter a positive integer.", AFX_IDP_PARSE_UINT);
}

void exchangeReal(CDataExchange* pDX, int nIDC, double& value, int nDigits, double maxMagnitude)
{
    HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    if (!pDX->m_bSaveAndValidate)
    {
        setWindowText(hWndCtrl, realText(value, nDigits));
        return;
    }
    double parsed = 0.0;
    if (!parseReal(hWndCtrl, parsed) || std::fabs(parsed) > maxMagnitude)
        failWith(pDX, L"Please enter a number.", AFX_IDP_PARSE_REAL);
    value = parsed;
}
} // namespace

BOOL CWnd::UpdateData(BOOL bSaveAndValidate)
{
    CDataExchange dx(this, bSaveAndValidate);
    try
    {
        DoDataExchange(&dx);
    }
    catch (CUserException* e)
    {
        // The user has been told and the offending control has the focus.
        e->Delete();
        return FALSE;
    }
    return TRUE;
}

void CWnd::DoDataExchange(CDataExchange*) {}

CDataExchange::CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate)
    : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd), m_idLastControl(0), m_bEditLastControl(FALSE)
{
}

HWND CDataExchange::PrepareCtrl(int nIDC)
{
    m_idLastControl = (UINT)nIDC;
    m_bEditLastControl = FALSE;
    return ::GetDlgItem(m_pDlgWnd->GetSafeHwnd(), nIDC);
}

HWND CDataExchange::PrepareEditCtrl(int nIDC)
{
    HWND hWndCtrl = PrepareCtrl(nIDC);
    m_bEditLastControl = TRUE;
    return hWndCtrl;
}

void CDataExchange::Fail()
{
    // Put the user back on the entry that was refused, its text selected for retyping.
    if (m_bSaveAndValidate && m_idLastControl != 0 && m_bEditLastControl)
    {
        HWND hWndLast = ::GetDlgItem(m_pDlgWnd->GetSafeHwnd(), (int)m_idLastControl);
        ::SetFocus(hWndLast);
        ::SendMessageW(hWndLast, EM_SETSEL, 0, -1);
    }
    AfxThrowUserException();
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, int& value)
{
    long exchanged = value;
    exchangeSigned(pDX, nIDC, exchanged);
    value = (int)exchanged;
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, long& value)
{
    exchangeSigned(pDX, nIDC, value);
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, UINT& value)
{
    unsigned long exchanged = value;
    exchangeUnsigned(pDX, nIDC, exchanged);
    value = (UINT)exchanged;
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, DWORD& value)
{
    exchangeUnsigned(pDX, nIDC, value);
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, float& value)
{
    double exchanged = value;
    exchangeReal(pDX, nIDC, exchanged, FLT_DIG, FLT_MAX);
    value = (float)exchanged;
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, double& value)
{
    exchangeReal(pDX, nIDC, value, DBL_DIG, DBL_MAX);
}

void AFXAPI DDX_Text(CDataExchange* pDX, int nIDC, CString& value)
{
    HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = windowText(hWndCtrl);
    else
        setWindowText(hWndCtrl, value);
}

void AFXAPI DDX_Check(CDataExchange* pDX, int nIDC, int& value)
{
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
    {
        value = (int)::SendMessageW(hWndCtrl, BM_GETCHECK, 0, 0);
        return;
    }
    if (value < 0 || value > 2)
        value = 0; // not a check state: shown unchecked, as MFC does
    ::SendMessageW(hWndCtrl, BM_SETCHECK, (WPARAM)value, 0);
}

// A radio button by its style, or by what it says of itself when its class is its own.
static bool isRadioButton(HWND hWnd)
{
    wchar_t szClass[16] = L"";
    ::GetClassNameW(hWnd, szClass, _countof(szClass));
    if (_wcsicmp(szClass, L"Button") == 0)
    {
        DWORD dwType = (DWORD)::GetWindowLongW(hWnd, GWL_STYLE) & BS_TYPEMASK;
        if (dwType == BS_RADIOBUTTON || dwType == BS_AUTORADIOBUTTON)
            return true;
    }
    return (::SendMessageW(hWnd, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0;
}

void AFXAPI DDX_Radio(CDataExchange* pDX, int nIDC, int& value)
{
    // nIDC starts a group; the group runs to the next control with WS_GROUP.
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = -1;
    int iButton = 0;
    while (hWndCtrl != NULL)
    {
        if (isRadioButton(hWndCtrl))
        {
            if (pDX->m_bSaveAndValidate)
            {
                if (::SendMessageW(hWndCtrl, BM_GETCHECK, 0, 0) != BST_UNCHECKED)
                    value = iButton;
            }
            else
            {
                ::SendMessageW(hWndCtrl, BM_SETCHECK, iButton == value ? BST_CHECKED : BST_UNCHECKED, 0);
            }
            ++iButton;
        }
        hWndCtrl = ::GetWindow(hWndCtrl, GW_HWNDNEXT);
        if (hWndCtrl != NULL && (::GetWindowLongW(hWndCtrl, GWL_STYLE) & WS_GROUP))
            break;
    }
}

void AFXAPI DDX_CBIndex(CDataExchange* pDX, int nIDC, int& index)
{
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        index = (int)::SendMessageW(hWndCtrl, CB_GETCURSEL, 0, 0);
    else
        ::SendMessageW(hWndCtrl, CB_SETCURSEL, (WPARAM)index, 0);
}

void AFXAPI DDX_Slider(CDataExchange* pDX, int nIDC, int& value)
{
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = (int)::SendMessageW(hWndCtrl, TBM_GETPOS, 0, 0);
    else
        ::SendMessageW(hWndCtrl, TBM_SETPOS, TRUE, value);
}

void AFXAPI DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl)
{
    // Bound once: later exchanges of the same open dialog leave the member as it is.
    if (rControl.m_hWnd != NULL)
        return;
    rControl.SubclassWindow(pDX->PrepareCtrl(nIDC));
}

void AFXAPI DDV_MinMaxInt(CDataExchange* pDX, int value, int minVal, int maxVal)
{
    if (value < minVal || value > maxVal)
        failRange(pDX, L"Please enter an integer between %1 and %2.", AFX_IDP_PARSE_INT_RANGE,
                  formatted(L"%d", minVal), formatted(L"%d", maxVal));
}

void AFXAPI DDV_MinMaxUInt(CDataExchange* pDX, UINT value, UINT minVal, UINT maxVal)
{
    if (value < minVal || value > maxVal)
        failRange(pDX, L"Please enter a positive integer between %1 and %2.", AFX_IDP_PARSE_INT_RANGE,
                  formatted(L"%u", minVal), formatted(L"%u", maxVal));
}

void AFXAPI DDV_MinMaxDWord(CDataExchange* pDX, DWORD const& value, DWORD minVal, DWORD maxVal)
{
    if (value < minVal || value > maxVal)
        failRange(pDX, L"Please enter a positive integer between %1 and %2.", AFX_IDP_PARSE_INT_RANGE,
                  formatted(L"%lu", minVal), formatted(L"%lu", maxVal));
}

void AFXAPI DDV_MinMaxFloat(CDataExchange* pDX, float const& value, float minVal, float maxVal)
{
    if (value < minVal || value > maxVal)
        failRange(pDX, L"Please enter a number between %1 and %2.", AFX_IDP_PARSE_REAL_RANGE,
                  realText(minVal, FLT_DIG), realText(maxVal, FLT_DIG));
}

void AFXAPI DDV_MinMaxDouble(CDataExchange* pDX, double const& value, double minVal, double maxVal)
{
    if (value < minVal || value > maxVal)
        failRange(pDX, L"Please enter a number between %1 and %2.", AFX_IDP_PARSE_REAL_RANGE,
                  realText(minVal, DBL_DIG), realText(maxVal, DBL_DIG));
}
