#include "DlgSoundStreamRecord.h"
#include "FormatCombos.h"
#include "SndWaveWriteStreamty.h"
#include "../foundation/ThreadJoin.h"
#include <afxdlgs.h>
#include <new>

IMPLEMENT_DYNAMIC(CDlgSoundStreamRecord, CDialog)

namespace
{
const LPCTSTR kFileFilter = _T("Wave sound files(*.WAV)|*.WAV|All files(*.*)|*.*||");
const DWORD kFileFilterIndex = 1; // "Wave sound files(*.WAV)"
const DWORD kWakeIntervalMs = 50;
// Posted by the worker on the Stop button's id when the recording ended by itself.
const WORD kStreamEnded = 0x8000;
}

CDlgSoundStreamRecord::CDlgSoundStreamRecord(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgSoundStreamRecord::IDD, pParent),
      m_bRecording(0),
      m_nSamplingRate(44100),
      m_nChannel(2),
      m_nBitsPerSample(16),
      m_pWaveWriter(NULL),
      m_pRecordThread(NULL)
{
    ZeroMemory(&m_wfxStream, sizeof(m_wfxStream));
}

// The worker's last act finishes the file, so a recording still running ends in a valid one.
CDlgSoundStreamRecord::~CDlgSoundStreamRecord()
{
    endRecordThread();
    deleteWaveWriter();
}

void CDlgSoundStreamRecord::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_BTN_STREAM_SETUP, m_btnSetupStream);
    DDX_Control(pDX, IDC_BTN_STREAM_RECORD_STOP, m_btnStop);
    DDX_Control(pDX, IDC_BTN_STREAM_RECORD, m_btnRecord);
    DDX_Control(pDX, IDC_CMB_RECORD_SAMPLING_RATE, m_cmbSamplingRate);
    DDX_Control(pDX, IDC_CMB_RECORD_CHANNEL, m_cmbChannel);
    DDX_Control(pDX, IDC_CMB_RECORD_BITS_PER_SAMPLE, m_cmbBitsPerSample);
    DDX_Text(pDX, IDC_EDIT_STREAM_FILE_NAME, m_strFilePath);
}

BEGIN_MESSAGE_MAP(CDlgSoundStreamRecord, CDialog)
    ON_BN_CLICKED(IDC_BTN_STREAM_RECORD, &CDlgSoundStreamRecord::OnBnClickedRecord)
    ON_BN_CLICKED(IDC_BTN_STREAM_RECORD_STOP, &CDlgSoundStreamRecord::OnBnClickedStop)
    ON_BN_CLICKED(IDC_BTN_STREAM_SETUP, &CDlgSoundStreamRecord::OnBnClickedSetupStream)
    ON_CONTROL(kStreamEnded, IDC_BTN_STREAM_RECORD_STOP, &CDlgSoundStreamRecord::OnStreamEnded)
END_MESSAGE_MAP()

BOOL CDlgSoundStreamRecord::OnInitDialog()
{
    CDialog::OnInitDialog();
    fillFormatCombos(m_cmbBitsPerSample, m_cmbChannel, m_cmbSamplingRate);
    m_nBitsPerSample = 16;
    m_nChannel = 2;
    m_nSamplingRate = 44100;
    m_btnRecord.EnableWindow(FALSE);
    m_btnStop.EnableWindow(FALSE);
    m_btnSetupStream.EnableWindow(TRUE);
    return TRUE;
}

void CDlgSoundStreamRecord::OnOK()
{
    endRecordThread();
    deleteWaveWriter();
    CDialog::OnOK();
}

// Neither the file dialog's answer nor the results of opening the file and the capture
// are examined: a cancelled choice keeps the previous name, and "Record" is offered anyway.
void CDlgSoundStreamRecord::OnBnClickedSetupStream()
{
    readStreamFormat();
    chooseStreamFile();
    openStreamFile();
    m_dsndCaptureStream.initCapture2stream(m_wfxStream, 2 * m_wfxStream.nAvgBytesPerSec);
    m_btnRecord.EnableWindow(TRUE);
    m_btnSetupStream.EnableWindow(TRUE);
    m_btnStop.EnableWindow(FALSE);
    UpdateData(FALSE);
}

// A capture that did not start gets no worker: there would be nothing for it to wait for.
void CDlgSoundStreamRecord::OnBnClickedRecord()
{
    endRecordThread();
    const int bStarted = m_dsndCaptureStream.startCaptureStream();
    m_btnStop.EnableWindow(TRUE);
    m_btnRecord.EnableWindow(FALSE);
    m_btnSetupStream.EnableWindow(FALSE);
    if (bStarted)
        startRecordThread();
}

// The worker stops the capture and finishes the file itself once it sees the flag;
// "Stop" stays enabled.
void CDlgSoundStreamRecord::OnBnClickedStop()
{
    m_bRecording = 0;
    if (m_pRecordThread != NULL)
        PostThreadMessageW(m_pRecordThread->m_nThreadID, WM_NULL, 0, 0);
    m_btnStop.EnableWindow(TRUE);
    m_btnRecord.EnableWindow(TRUE);
    m_btnSetupStream.EnableWindow(TRUE);
}

// The file could not take the recording: the user is told, and the dialog is as after Stop.
void CDlgSoundStreamRecord::OnStreamEnded()
{
    AfxMessageBox(_T("The wave file cannot be written: the recording has stopped"), MB_OK, 0);
    OnBnClickedStop();
}

void CDlgSoundStreamRecord::readStreamFormat()
{
    readComboNumber(m_cmbBitsPerSample, m_nBitsPerSample);
    readComboNumber(m_cmbChannel, m_nChannel);
    readComboNumber(m_cmbSamplingRate, m_nSamplingRate);
    m_wfxStream = pcmFormatOf(m_nChannel, m_nSamplingRate, m_nBitsPerSample);
}

// Only the bare name is kept for the writer, so the file lands in the current folder.
void CDlgSoundStreamRecord::chooseStreamFile()
{
    CFileDialog dlg(FALSE, NULL, NULL, OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY, kFileFilter, NULL, 0, TRUE);
    dlg.m_ofn.nFilterIndex = kFileFilterIndex;
    if (dlg.DoModal() != IDOK)
        return;
    m_strFilePath = dlg.GetFileName();
    m_strPathName = dlg.GetPathName();
}

// The previous file is finished first; a worker still writing to it has ended before.
void CDlgSoundStreamRecord::openStreamFile()
{
    endRecordThread();
    deleteWaveWriter();
    m_pWaveWriter = new (std::nothrow) CSndWaveWriteStreamty;
    if (m_pWaveWriter != NULL)
        m_pWaveWriter->Open(m_strFilePath, &m_wfxStream, TRUE);
    m_dsndCaptureStream.m_pSndWaveWriteStream = m_pWaveWriter;
}

void CDlgSoundStreamRecord::deleteWaveWriter()
{
    m_dsndCaptureStream.m_pSndWaveWriteStream = NULL;
    delete m_pWaveWriter;
    m_pWaveWriter = NULL;
}

// The flag is set before the worker first looks at it, so it cannot stop a capture just begun.
void CDlgSoundStreamRecord::startRecordThread()
{
    m_pRecordThread = AfxBeginThread(recordThreadProc, this, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    if (m_pRecordThread == NULL)
    {
        m_dsndCaptureStream.stopCaptureStream();
        return;
    }
    m_pRecordThread->m_bAutoDelete = FALSE;
    m_bRecording = 1;
    m_pRecordThread->ResumeThread();
}

// The worker's wait also ends for a message to its thread, so it is nudged until it has
// ended rather than left to wait for the capture's next notification.
void CDlgSoundStreamRecord::endRecordThread()
{
    m_bRecording = 0;
    if (m_pRecordThread == NULL)
        return;
    while (!joinHandlingSentMessages(m_pRecordThread->m_hThread, kWakeIntervalMs))
        PostThreadMessageW(m_pRecordThread->m_nThreadID, WM_NULL, 0, 0);
    delete m_pRecordThread;
    m_pRecordThread = NULL;
}

// A recording that ended by itself (its file refused a write) ends the loop too, and the
// dialog hears of it.
UINT AFX_CDECL CDlgSoundStreamRecord::recordThreadProc(LPVOID pParam)
{
    auto* pDlg = static_cast<CDlgSoundStreamRecord*>(pParam);
    CDSndCapturetyStream& capture = pDlg->m_dsndCaptureStream;
    while (pDlg->m_bRecording && capture.getStreamResult() == S_OK)
        capture.waitRecordStreamEvt();
    capture.stopCaptureStream();
    if (pDlg->m_bRecording && pDlg->m_hWnd != NULL)
        ::PostMessageW(pDlg->m_hWnd, WM_COMMAND, MAKEWPARAM(IDC_BTN_STREAM_RECORD_STOP, kStreamEnded),
                     reinterpret_cast<LPARAM>(pDlg->m_btnStop.m_hWnd));
    return 1;
}
