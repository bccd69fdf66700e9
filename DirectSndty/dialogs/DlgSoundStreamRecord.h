#pragma once
// "Direct sound record stream": records from the capture device straight into a wave file
// of any length. The user picks the PCM format and a file ("Setup stream"), then records
// and stops; one worker thread per Record services the capture's notifications, writing
// each new piece to the file. The file is created under its bare name in the current
// folder. The worker has ended, and so finished the file, before the writer goes (OK, the
// next "Setup stream", destruction); destroying the dialog mid-recording leaves a valid file.
// A file that refuses a write (a full disk) ends the recording: the user is told, and the
// dialog returns to its stopped state. The file may grow past 4 GiB, as RF64.

#include <afxwin.h>
#include "../capture/DSndCapturetyStream.h"
#include "resource.h"

class CSndWaveWriteStreamty;

class AFX_EXT_CLASS CDlgSoundStreamRecord : public CDialog
{
    DECLARE_DYNAMIC(CDlgSoundStreamRecord)
public:
    enum
    {
        IDD = IDD_DLG_SOUND_STREAM_RECORD
    };

    explicit CDlgSoundStreamRecord(CWnd* pParent = NULL);
    virtual ~CDlgSoundStreamRecord();

    CString m_strPathName;   // the full path chosen, kept for the owner
    tWAVEFORMATEX m_wfxStream; // built by "Setup stream"
    CButton m_btnSetupStream;
    CButton m_btnStop;
    CButton m_btnRecord;
    CComboBox m_cmbSamplingRate;
    CComboBox m_cmbChannel;
    CComboBox m_cmbBitsPerSample;
    CString m_strFilePath;   // the bare file name the writer creates
    volatile int m_bRecording;  // the worker loops while it is 1
    int m_nSamplingRate;
    int m_nChannel;
    int m_nBitsPerSample;
    CSndWaveWriteStreamty* m_pWaveWriter; // owned
    CDSndCapturetyStream m_dsndCaptureStream;

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnBnClickedRecord();
    afx_msg void OnBnClickedStop();
    afx_msg void OnBnClickedSetupStream();
    afx_msg void OnStreamEnded();

    DECLARE_MESSAGE_MAP()

private:
    static UINT AFX_CDECL recordThreadProc(LPVOID pParam);
    void readStreamFormat();
    void chooseStreamFile();
    void openStreamFile();
    void startRecordThread();
    void endRecordThread();
    void deleteWaveWriter();

    CWinThread* m_pRecordThread; // the worker of the last Record, until it is joined
};
