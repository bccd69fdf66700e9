#pragma once
// A basic sound maker: records from the default capture device or generates a tone, and
// hands the PCM data back to its opener.

#include <afxwin.h>
#include <dsound.h>
#include <vector>
#include "../foundation/WaveFormat.h"
#include "resource.h"

class CDlgDTavrelBasic : public CDialog
{
    DECLARE_DYNAMIC(CDlgDTavrelBasic)
public:
    enum
    {
        IDD = IDD_DLG_DT_AVREL_BASIC
    };

    explicit CDlgDTavrelBasic(CWnd* pParent = NULL);
    virtual ~CDlgDTavrelBasic();

    // What the dialog made; valid while the dialog object lives.
    const char* getDataPointer() const;
    long getDataSize() const;
    tWAVEFORMATEX getWfx() const;

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnCancel();
    afx_msg void OnBnClickedOk();
    afx_msg void OnBnClickedRecord();
    afx_msg void OnTimer(UINT_PTR nIDEvent);

    DECLARE_MESSAGE_MAP()

    std::vector<char> m_data;
    tWAVEFORMATEX m_wfx;

private:
    tWAVEFORMATEX chosenFormat() const;
    bool makeTone();
    bool startCapture(const tWAVEFORMATEX& wfx);
    bool drainCapture();
    void finishRecording(bool bComplete);
    void releaseCapture();
    void showRecording(bool bRecording);

    // What OK hands back: 0 the tone, 1 the recording (radio group from IDC_RADIO_BASIC_TONE).
    int m_nSource;
    int m_nFrequency;    // Hz
    int m_nDurationMs;
    float m_fLevelDb;    // peak level, dB below full scale
    int m_nChannelIndex; // 0 mono, 1 stereo
    int m_nRateIndex;    // 0 22050 Hz, 1 44100 Hz
    int m_nRecordSeconds;

    CComboBox m_cmbChannels;
    CComboBox m_cmbSamplingRate;

    std::vector<char> m_recording;
    tWAVEFORMATEX m_wfxRecording;
    IDirectSoundCapture8* m_pCapture;
    IDirectSoundCaptureBuffer* m_pCaptureBuffer;
    DWORD m_dwCaptureBytes;  // size of the looping capture buffer
    DWORD m_dwReadOffset;    // where the next unread byte of it lies
    DWORD m_dwRecordBytes;   // how much the recording is to hold
    DWORD m_dwRecordBegan;   // milliseconds
    DWORD m_dwRecordMs;
};
