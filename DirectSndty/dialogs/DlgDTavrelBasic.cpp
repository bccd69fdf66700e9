#include "DlgDTavrelBasic.h"
#include "../platform/DirectSoundSeam.h"
#include <cmath>

IMPLEMENT_DYNAMIC(CDlgDTavrelBasic, CDialog)

namespace
{
const int kSourceTone = 0;
const int kSourceRecording = 1;
const UINT_PTR kRecordTimer = 1;
const UINT kRecordPollMs = 50;
// How long past its length a recording may take before the device counts as stalled.
const DWORD kRecordGraceMs = 2000;

const LPCTSTR kChannelChoices[] = {_T("1"), _T("2")};
const DWORD kRates[] = {22050, 44100};
const LPCTSTR kRateChoices[] = {_T("22050"), _T("44100")};

// One sine at the given peak level, the same on every channel; 16-bit samples.
std::vector<char> toneData(const tWAVEFORMATEX& wfx, int nFrequency, int nDurationMs, float fLevelDb)
{
    const size_t frames = static_cast<size_t>(wfx.nSamplesPerSec) * nDurationMs / 1000;
    std::vector<char> data(frames * wfx.nBlockAlign);
    short* pSamples = reinterpret_cast<short*>(data.data());
    const double amplitude = 32767.0 * std::pow(10.0, fLevelDb / 20.0);
    const double step = 2.0 * 3.14159265358979323846 * nFrequency / wfx.nSamplesPerSec;
    for (size_t frame = 0; frame < frames; ++frame)
    {
        const short sample = static_cast<short>(std::lround(amplitude * std::sin(step * frame)));
        for (WORD channel = 0; channel < wfx.nChannels; ++channel)
            *pSamples++ = sample;
    }
    return data;
}
}

CDlgDTavrelBasic::CDlgDTavrelBasic(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDTavrelBasic::IDD, pParent),
      m_nSource(kSourceTone),
      m_nFrequency(1000),
      m_nDurationMs(1000),
      m_fLevelDb(-6.0f),
      m_nChannelIndex(0),
      m_nRateIndex(1),
      m_nRecordSeconds(2),
      m_pCapture(NULL),
      m_pCaptureBuffer(NULL),
      m_dwCaptureBytes(0),
      m_dwReadOffset(0),
      m_dwRecordBytes(0),
      m_dwRecordBegan(0),
      m_dwRecordMs(0)
{
    ZeroMemory(&m_wfx, sizeof(m_wfx));
    ZeroMemory(&m_wfxRecording, sizeof(m_wfxRecording));
}

CDlgDTavrelBasic::~CDlgDTavrelBasic()
{
    releaseCapture();
}

const char* CDlgDTavrelBasic::getDataPointer() const
{
    return m_data.empty() ? NULL : m_data.data();
}

long CDlgDTavrelBasic::getDataSize() const
{
    return static_cast<long>(m_data.size());
}

tWAVEFORMATEX CDlgDTavrelBasic::getWfx() const
{
    return m_wfx;
}

void CDlgDTavrelBasic::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CMB_BASIC_CHANNELS, m_cmbChannels);
    DDX_Control(pDX, IDC_CMB_BASIC_SAMPLING_RATE, m_cmbSamplingRate);
    DDX_Radio(pDX, IDC_RADIO_BASIC_TONE, m_nSource);
    DDX_Text(pDX, IDC_EDIT_BASIC_FREQUENCY, m_nFrequency);
    DDV_MinMaxInt(pDX, m_nFrequency, 1, 20000);
    DDX_Text(pDX, IDC_EDIT_BASIC_DURATION, m_nDurationMs);
    DDV_MinMaxInt(pDX, m_nDurationMs, 1, 60000);
    DDX_Text(pDX, IDC_EDIT_BASIC_LEVEL, m_fLevelDb);
    DDV_MinMaxFloat(pDX, m_fLevelDb, -100.0f, 0.0f);
    DDX_Text(pDX, IDC_EDIT_BASIC_RECORD_SECONDS, m_nRecordSeconds);
    DDV_MinMaxInt(pDX, m_nRecordSeconds, 1, 10);
    DDX_CBIndex(pDX, IDC_CMB_BASIC_CHANNELS, m_nChannelIndex);
    DDX_CBIndex(pDX, IDC_CMB_BASIC_SAMPLING_RATE, m_nRateIndex);
}

BEGIN_MESSAGE_MAP(CDlgDTavrelBasic, CDialog)
    ON_WM_TIMER()
    ON_BN_CLICKED(IDOK, &CDlgDTavrelBasic::OnBnClickedOk)
    ON_BN_CLICKED(IDC_BTN_BASIC_RECORD, &CDlgDTavrelBasic::OnBnClickedRecord)
END_MESSAGE_MAP()

BOOL CDlgDTavrelBasic::OnInitDialog()
{
    CDialog::OnInitDialog();

    for (int i = 0; i < 2; ++i)
    {
        m_cmbChannels.InsertString(i, kChannelChoices[i]);
        m_cmbSamplingRate.InsertString(i, kRateChoices[i]);
    }
    SetDlgItemText(IDC_STATIC_BASIC_STATUS, _T("Nothing recorded"));
    UpdateData(FALSE);
    return TRUE;
}

tWAVEFORMATEX CDlgDTavrelBasic::chosenFormat() const
{
    tWAVEFORMATEX wfx;
    ZeroMemory(&wfx, sizeof(wfx));
    wfx.wFormatTag = WAVE_FORMAT_PCM;
    wfx.nChannels = static_cast<WORD>(m_nChannelIndex == 1 ? 2 : 1);
    wfx.nSamplesPerSec = kRates[m_nRateIndex == 0 ? 0 : 1];
    wfx.wBitsPerSample = 16;
    wfx.nBlockAlign = static_cast<WORD>(wfx.nChannels * wfx.wBitsPerSample / 8);
    wfx.nAvgBytesPerSec = wfx.nSamplesPerSec * wfx.nBlockAlign;
    return wfx;
}

// The data are made only when OK is pressed, so they always match the entries shown.
void CDlgDTavrelBasic::OnBnClickedOk()
{
    if (m_pCaptureBuffer != NULL || !UpdateData(TRUE))
        return;
    if (m_nSource == kSourceRecording)
    {
        if (m_recording.empty())
        {
            AfxMessageBox(_T("Nothing has been recorded yet: press Record first, or choose the tone."), MB_OK, 0);
            return;
        }
        m_data = m_recording;
        m_wfx = m_wfxRecording;
        EndDialog(IDOK);
        return;
    }
    if (makeTone())
        EndDialog(IDOK);
}

bool CDlgDTavrelBasic::makeTone()
{
    const tWAVEFORMATEX wfx = chosenFormat();
    // A tone at or above half the rate cannot be represented; it would alias.
    if (static_cast<DWORD>(m_nFrequency) * 2 >= wfx.nSamplesPerSec)
    {
        AfxMessageBox(_T("The frequency must be below half the sampling rate."), MB_OK, 0);
        GotoDlgCtrl(GetDlgItem(IDC_EDIT_BASIC_FREQUENCY));
        return false;
    }
    m_data = toneData(wfx, m_nFrequency, m_nDurationMs, m_fLevelDb);
    m_wfx = wfx;
    return true;
}

void CDlgDTavrelBasic::OnCancel()
{
    releaseCapture();
    m_data.clear();
    CDialog::OnCancel();
}

// Records in the background: a timer moves what was captured out of a looping buffer
// until the recording is long enough.
void CDlgDTavrelBasic::OnBnClickedRecord()
{
    if (m_pCaptureBuffer != NULL || !UpdateData(TRUE))
        return;
    const tWAVEFORMATEX wfx = chosenFormat();
    if (!startCapture(wfx))
    {
        releaseCapture();
        AfxMessageBox(_T("The default capture device could not record."), MB_OK, 0);
        return;
    }
    m_wfxRecording = wfx;
    m_recording.clear();
    m_dwRecordBytes = wfx.nAvgBytesPerSec * static_cast<DWORD>(m_nRecordSeconds);
    m_dwRecordBegan = DSndPlatform::milliseconds();
    m_dwRecordMs = static_cast<DWORD>(m_nRecordSeconds) * 1000;
    SetTimer(kRecordTimer, kRecordPollMs, NULL);
    showRecording(true);
}

// One second of buffer leaves the timer ample slack.
bool CDlgDTavrelBasic::startCapture(const tWAVEFORMATEX& wfx)
{
    if (FAILED(DSndPlatform::createCapture8(NULL, &m_pCapture, NULL)))
        return false;
    tWAVEFORMATEX wfxCapture = wfx;
    DSCBUFFERDESC desc;
    ZeroMemory(&desc, sizeof(desc));
    desc.dwSize = sizeof(desc);
    desc.dwBufferBytes = wfx.nAvgBytesPerSec;
    desc.lpwfxFormat = &wfxCapture;
    if (FAILED(m_pCapture->CreateCaptureBuffer(&desc, &m_pCaptureBuffer, NULL)))
        return false;
    m_dwCaptureBytes = desc.dwBufferBytes;
    m_dwReadOffset = 0;
    return SUCCEEDED(m_pCaptureBuffer->Start(DSCBSTART_LOOPING));
}

void CDlgDTavrelBasic::OnTimer(UINT_PTR nIDEvent)
{
    if (nIDEvent != kRecordTimer || m_pCaptureBuffer == NULL)
    {
        CDialog::OnTimer(nIDEvent);
        return;
    }
    if (!drainCapture())
    {
        finishRecording(false);
        return;
    }
    if (m_recording.size() >= m_dwRecordBytes)
    {
        finishRecording(true);
        return;
    }
    // A device that stops delivering would otherwise keep the dialog recording for ever.
    if (DSndPlatform::milliseconds() - m_dwRecordBegan > m_dwRecordMs + kRecordGraceMs)
        finishRecording(false);
}

// Appends what was captured since the last call, up to the length wanted.
bool CDlgDTavrelBasic::drainCapture()
{
    DWORD dwReadCursor = 0;
    if (FAILED(m_pCaptureBuffer->GetCurrentPosition(NULL, &dwReadCursor)))
        return false;
    DWORD dwAvailable = (dwReadCursor + m_dwCaptureBytes - m_dwReadOffset) % m_dwCaptureBytes;
    const DWORD dwWanted = m_dwRecordBytes - static_cast<DWORD>(m_recording.size());
    if (dwAvailable > dwWanted)
        dwAvailable = dwWanted;
    if (dwAvailable == 0)
        return true;

    void* pFirst = NULL;
    void* pSecond = NULL;
    DWORD dwFirst = 0;
    DWORD dwSecond = 0;
    if (FAILED(m_pCaptureBuffer->Lock(m_dwReadOffset, dwAvailable, &pFirst, &dwFirst, &pSecond, &dwSecond, 0)))
        return false;
    m_recording.insert(m_recording.end(), static_cast<const char*>(pFirst), static_cast<const char*>(pFirst) + dwFirst);
    if (pSecond != NULL)
        m_recording.insert(m_recording.end(), static_cast<const char*>(pSecond),
                           static_cast<const char*>(pSecond) + dwSecond);
    m_pCaptureBuffer->Unlock(pFirst, dwFirst, pSecond, dwSecond);
    m_dwReadOffset = (m_dwReadOffset + dwAvailable) % m_dwCaptureBytes;
    return true;
}

void CDlgDTavrelBasic::finishRecording(bool bComplete)
{
    KillTimer(kRecordTimer);
    releaseCapture();
    showRecording(false);
    if (!bComplete)
    {
        m_recording.clear();
        SetDlgItemText(IDC_STATIC_BASIC_STATUS, _T("Nothing recorded"));
        AfxMessageBox(_T("The capture device stopped before the recording was complete."), MB_OK, 0);
        return;
    }
    CheckRadioButton(IDC_RADIO_BASIC_TONE, IDC_RADIO_BASIC_RECORDING, IDC_RADIO_BASIC_RECORDING);
    CString strStatus;
    strStatus.Format(_T("Recorded %lu bytes"), static_cast<unsigned long>(m_recording.size()));
    SetDlgItemText(IDC_STATIC_BASIC_STATUS, strStatus);
}

void CDlgDTavrelBasic::releaseCapture()
{
    if (m_pCaptureBuffer != NULL)
    {
        m_pCaptureBuffer->Stop();
        m_pCaptureBuffer->Release();
        m_pCaptureBuffer = NULL;
    }
    if (m_pCapture != NULL)
    {
        m_pCapture->Release();
        m_pCapture = NULL;
    }
}

// While recording, nothing else may start or end the dialog except Cancel.
void CDlgDTavrelBasic::showRecording(bool bRecording)
{
    GetDlgItem(IDC_BTN_BASIC_RECORD)->EnableWindow(!bRecording);
    GetDlgItem(IDOK)->EnableWindow(!bRecording);
    if (bRecording)
        SetDlgItemText(IDC_STATIC_BASIC_STATUS, _T("Recording..."));
}
