#include "DlgDSndCreate2ndBuffer.h"
#include <cerrno>
#include <cwchar>

IMPLEMENT_DYNAMIC(CDlgDSndCreate2ndBuffer, CDialog)

namespace
{
// DirectSound's own limits: DSBSIZE_MIN and DSBSIZE_MAX, and the secondary rates it takes.
const unsigned long kFewestBytes = 4;
const unsigned long kMostBytes = 0x0FFFFFFF;
const unsigned long kLowestRate = 100;
const unsigned long kHighestRate = 200000;

const LPCTSTR kChannelChoices[] = {_T("1"), _T("2")};
const LPCTSTR kRateChoices[] = {_T("8000"), _T("11025"), _T("22050"), _T("44100"), _T("48000")};
const LPCTSTR kBitsChoices[] = {_T("8"), _T("16")};

template <size_t N>
void fillCombo(CComboBox& combo, const LPCTSTR (&choices)[N])
{
    for (size_t i = 0; i < N; ++i)
        combo.InsertString(static_cast<int>(i), choices[i]);
}

// Selects the listed value, or shows a value the list lacks as typed text, so the
// format handed in is what the user sees.
void showNumber(CComboBox& combo, unsigned long ulValue)
{
    CString strValue;
    strValue.Format(_T("%lu"), ulValue);
    int nIndex = combo.FindStringExact(-1, strValue);
    if (nIndex != CB_ERR)
        combo.SetCurSel(nIndex);
    else
        combo.SetWindowText(strValue);
}

// A whole decimal number that fills the text apart from blanks around it.
bool parseWhole(CString strText, unsigned long& ulValue)
{
    strText.Trim();
    if (strText.IsEmpty() || strText[0] == L'-' || strText[0] == L'+')
        return false;
    wchar_t* pEnd = NULL;
    errno = 0;
    unsigned long ulParsed = wcstoul(strText, &pEnd, 10);
    if (*pEnd != L'\0' || errno == ERANGE)
        return false;
    ulValue = ulParsed;
    return true;
}

bool numberIn(const CWnd& control, unsigned long ulLowest, unsigned long ulHighest, unsigned long& ulValue)
{
    CString strText;
    control.GetWindowText(strText);
    return parseWhole(strText, ulValue) && ulValue >= ulLowest && ulValue <= ulHighest;
}
}

CDlgDSndCreate2ndBuffer::CDlgDSndCreate2ndBuffer(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDSndCreate2ndBuffer::IDD, pParent), m_ulBufferBytes(0), m_nSettled(0)
{
    ZeroMemory(&m_wfx, sizeof(m_wfx));
}

CDlgDSndCreate2ndBuffer::~CDlgDSndCreate2ndBuffer()
{
}

void CDlgDSndCreate2ndBuffer::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CMB_2ND_CHANNELS, m_cmbChannels);
    DDX_Control(pDX, IDC_CMB_2ND_SAMPLING_RATE, m_cmbSamplingRate);
    DDX_Control(pDX, IDC_CMB_2ND_BITS_PER_SAMPLE, m_cmbBitsPerSample);
    DDX_Control(pDX, IDC_EDIT_2ND_BUFFER_BYTES, m_editBufferBytes);
}

BEGIN_MESSAGE_MAP(CDlgDSndCreate2ndBuffer, CDialog)
    ON_BN_CLICKED(IDOK, &CDlgDSndCreate2ndBuffer::OnBnClickedOk)
END_MESSAGE_MAP()

BOOL CDlgDSndCreate2ndBuffer::OnInitDialog()
{
    CDialog::OnInitDialog();

    fillCombo(m_cmbChannels, kChannelChoices);
    fillCombo(m_cmbSamplingRate, kRateChoices);
    fillCombo(m_cmbBitsPerSample, kBitsChoices);
    showNumber(m_cmbChannels, m_wfx.nChannels);
    showNumber(m_cmbSamplingRate, m_wfx.nSamplesPerSec);
    showNumber(m_cmbBitsPerSample, m_wfx.wBitsPerSample);

    CString strBytes;
    strBytes.Format(_T("%lu"), m_ulBufferBytes);
    m_editBufferBytes.SetWindowText(strBytes);
    return TRUE;
}

// Nothing is settled until every entry is one DirectSound can make a buffer of.
void CDlgDSndCreate2ndBuffer::OnOK()
{
    tWAVEFORMATEX wfx;
    unsigned long ulBytes = 0;
    if (!readFormat(wfx) || !readBufferBytes(ulBytes))
        return;

    m_wfx = wfx;
    // A partial block at the end could not be played.
    m_ulBufferBytes = ulBytes - ulBytes % wfx.nBlockAlign;
    m_nSettled = 1;
    EndDialog(IDOK);
}

bool CDlgDSndCreate2ndBuffer::readFormat(tWAVEFORMATEX& wfx)
{
    if (m_wfx.wFormatTag != WAVE_FORMAT_PCM)
        return refuse(NULL, _T("Only PCM sound data can be placed in a sound buffer."));

    unsigned long ulChannels = 0;
    unsigned long ulRate = 0;
    unsigned long ulBits = 0;
    if (!numberIn(m_cmbChannels, 1, 2, ulChannels))
        return refuse(&m_cmbChannels, _T("The number of channels must be 1 or 2."));
    if (!numberIn(m_cmbSamplingRate, kLowestRate, kHighestRate, ulRate))
        return refuse(&m_cmbSamplingRate, _T("The sampling rate must be a whole number from 100 to 200000 Hz."));
    if (!numberIn(m_cmbBitsPerSample, 8, 16, ulBits) || (ulBits != 8 && ulBits != 16))
        return refuse(&m_cmbBitsPerSample, _T("The bits per sample must be 8 or 16."));

    ZeroMemory(&wfx, sizeof(wfx));
    wfx.wFormatTag = WAVE_FORMAT_PCM;
    wfx.nChannels = static_cast<WORD>(ulChannels);
    wfx.nSamplesPerSec = ulRate;
    wfx.wBitsPerSample = static_cast<WORD>(ulBits);
    wfx.nBlockAlign = static_cast<WORD>(wfx.nChannels * wfx.wBitsPerSample / 8);
    wfx.nAvgBytesPerSec = wfx.nSamplesPerSec * wfx.nBlockAlign;
    return true;
}

bool CDlgDSndCreate2ndBuffer::readBufferBytes(unsigned long& ulBytes)
{
    if (!numberIn(m_editBufferBytes, kFewestBytes, kMostBytes, ulBytes))
        return refuse(&m_editBufferBytes, _T("The buffer size must be a whole number of bytes from 4 to 268435455."));
    return true;
}

// Tells the user what is wrong and puts the focus where it can be put right.
bool CDlgDSndCreate2ndBuffer::refuse(CWnd* pControl, LPCTSTR lpszWhy)
{
    AfxMessageBox(lpszWhy, MB_OK | MB_ICONEXCLAMATION, 0);
    if (pControl != NULL)
        GotoDlgCtrl(pControl);
    return false;
}

void CDlgDSndCreate2ndBuffer::OnBnClickedOk()
{
    OnOK();
}
