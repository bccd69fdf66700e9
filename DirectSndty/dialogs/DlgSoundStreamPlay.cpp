#include "DlgSoundStreamPlay.h"
#include <afxdlgs.h>
#include "../buffer/DirectSnd3DBuff7PlayStream.h"
#include "../foundation/ThreadJoin.h"

IMPLEMENT_DYNAMIC(CDlgSoundStreamPlay, CDialog)

namespace
{
const LPCTSTR kFileFilter = _T("All Files(*.*)|*.*|Wave Files(*.wav)|*.wav||");
const DWORD kFileFilterIndex = 1; // "All Files(*.*)"
}

CDlgSoundStreamPlay::CDlgSoundStreamPlay(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgSoundStreamPlay::IDD, pParent),
      m_pStreamThread(NULL),
      m_pSndBuffStream(NULL)
{
}

CDlgSoundStreamPlay::~CDlgSoundStreamPlay()
{
    endStreamThread();
}

void CDlgSoundStreamPlay::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDOK, m_btnExit);
    DDX_Control(pDX, IDC_BTN_STREAM_OPEN_FILE, m_btnOpenFile);
    DDX_Control(pDX, IDC_BTN_STREAM_STOP, m_btnStop);
    DDX_Control(pDX, IDC_BTN_STREAM_PLAY, m_btnPlay);
}

BEGIN_MESSAGE_MAP(CDlgSoundStreamPlay, CDialog)
    ON_BN_CLICKED(IDC_BTN_STREAM_OPEN_FILE, &CDlgSoundStreamPlay::OnBnClickedOpenFile)
    ON_BN_CLICKED(IDC_BTN_STREAM_PLAY, &CDlgSoundStreamPlay::OnBnClickedPlay)
    ON_BN_CLICKED(IDC_BTN_STREAM_STOP, &CDlgSoundStreamPlay::OnBnClickedStop)
END_MESSAGE_MAP()

BOOL CDlgSoundStreamPlay::OnInitDialog()
{
    CDialog::OnInitDialog();
    showIdleButtons(FALSE);
    UpdateData(FALSE);
    return TRUE;
}

// "Exit" only hides a modeless dialog; its owner deletes it.
void CDlgSoundStreamPlay::OnOK()
{
    CDialog::OnOK();
}

void CDlgSoundStreamPlay::showIdleButtons(BOOL bCanPlay)
{
    m_btnStop.EnableWindow(FALSE);
    m_btnPlay.EnableWindow(bCanPlay);
    m_btnOpenFile.EnableWindow(TRUE);
    m_btnExit.EnableWindow(TRUE);
}

// Neither the reader's nor the buffer's result is examined: Play is offered even for a
// file that could not be opened.
void CDlgSoundStreamPlay::OnBnClickedOpenFile()
{
    CFileDialog dlg(TRUE, NULL, NULL, OFN_HIDEREADONLY, kFileFilter, NULL, 0, TRUE);
    dlg.m_ofn.nFilterIndex = kFileFilterIndex;
    if (dlg.DoModal() != IDOK)
        return;

    m_strFilePath = dlg.GetPathName();
    m_strFilePath.MakeUpper();
    tWAVEFORMATEX wfx;
    openStreamAtStart(wfx);
    showIdleButtons(TRUE);
}

// Each Play opens the file again, so it starts from the beginning.
void CDlgSoundStreamPlay::OnBnClickedPlay()
{
    if (m_pSndBuffStream == NULL)
        return; // an owner that gave no buffer gets a player that does nothing
    tWAVEFORMATEX wfx;
    openStreamAtStart(wfx);
    m_btnStop.EnableWindow(TRUE);
    m_btnPlay.EnableWindow(FALSE);
    m_btnOpenFile.EnableWindow(FALSE);
    m_btnExit.EnableWindow(FALSE);
    startStreamThread();
    m_pSndBuffStream->playDSnd2ndBufLargeFileStream();
}

// Runs on the user's thread for a click and once more on the worker as it ends; the
// second run finds nothing left to stop.
void CDlgSoundStreamPlay::OnBnClickedStop()
{
    if (m_pSndBuffStream != NULL)
        m_pSndBuffStream->stopDSnd2ndBufLargeFileStream();
    if (GetSafeHwnd() == NULL)
        return; // the window went before its worker ended
    showIdleButtons(TRUE);
    InvalidateRect(NULL, TRUE);
}

// The worker of an earlier stream is ended first: it reads from the same reader and waits
// on the events the buffer is about to replace.
void CDlgSoundStreamPlay::openStreamAtStart(tWAVEFORMATEX& wfx)
{
    endStreamThread();
    unsigned long ulDataSize = 0;
    m_sndReadStream.initStream2Read(CString(m_strFilePath), &ulDataSize, &wfx);
    if (m_pSndBuffStream == NULL)
        return;
    m_pSndBuffStream->m_pSndDataReadStream = &m_sndReadStream;
    m_pSndBuffStream->initPlayStream(GetSafeHwnd(), wfx);
}

// Kept until joined, so that the dialog knows when its worker has ended.
void CDlgSoundStreamPlay::startStreamThread()
{
    m_pStreamThread = AfxBeginThread(streamThreadProc, this, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    if (m_pStreamThread == NULL)
        return;
    m_pStreamThread->m_bAutoDelete = FALSE;
    m_pStreamThread->ResumeThread();
}

// A worker still streaming is woken by stopping the stream.
void CDlgSoundStreamPlay::endStreamThread()
{
    if (m_pStreamThread == NULL)
        return;
    if (WaitForSingleObject(m_pStreamThread->m_hThread, 0) == WAIT_TIMEOUT && m_pSndBuffStream != NULL)
        m_pSndBuffStream->stopDSnd2ndBufLargeFileStream();
    joinHandlingSentMessages(m_pStreamThread->m_hThread);
    delete m_pStreamThread;
    m_pStreamThread = NULL;
}

UINT AFX_CDECL CDlgSoundStreamPlay::streamThreadProc(LPVOID pParam)
{
    auto* pDlg = static_cast<CDlgSoundStreamPlay*>(pParam);
    if (pDlg == NULL)
        return 0;
    while (pDlg->m_pSndBuffStream->waitStreamEvt())
    {
    }
    pDlg->OnBnClickedStop();
    return 1;
}
