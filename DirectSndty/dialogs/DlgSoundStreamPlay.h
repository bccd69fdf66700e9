#pragma once
// "Huge sound file player": a small modeless window from which the user opens a wave file
// and plays and stops it through a streaming sound buffer, refilled from the wave-file
// stream reader by one worker thread per Play. The owner supplies the buffer
// (m_pSndBuffStream) before the user opens a file, and must keep it alive while the dialog
// exists. Destroying the dialog ends a stream still playing and waits for its worker.

#include <afxwin.h>
#include "SndDataReadtyStream.h"
#include "resource.h"

class CDirectSnd3DBuff7PlayStream;

class AFX_EXT_CLASS CDlgSoundStreamPlay : public CDialog
{
    DECLARE_DYNAMIC(CDlgSoundStreamPlay)
public:
    enum
    {
        IDD = IDD_DLG_SOUND_STREAM_PLAY
    };

    explicit CDlgSoundStreamPlay(CWnd* pParent = NULL);
    virtual ~CDlgSoundStreamPlay();

    CButton m_btnExit;
    CButton m_btnOpenFile;
    CButton m_btnStop;
    CButton m_btnPlay;
    CWinThread* m_pStreamThread; // the worker of the last Play, until the next one is started
    CString m_strFilePath;       // upper-cased
    CSndDataReadtyStream m_sndReadStream;
    CDirectSnd3DBuff7PlayStream* m_pSndBuffStream; // set by the owner, not owned

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnBnClickedOpenFile();
    afx_msg void OnBnClickedPlay();
    afx_msg void OnBnClickedStop();

    // Stops a stream still playing and waits for its worker.
    void endStreamThread();

    DECLARE_MESSAGE_MAP()

private:
    static UINT AFX_CDECL streamThreadProc(LPVOID pParam);
    void openStreamAtStart(tWAVEFORMATEX& wfx);
    void startStreamThread();
    void showIdleButtons(BOOL bCanPlay);
};
