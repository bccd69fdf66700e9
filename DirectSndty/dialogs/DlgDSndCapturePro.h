#pragma once
// Lets the user choose how a recording is made: limited by time or by size, the limit,
// the PCM format, and whether earlier recorded data is discarded.

#include <afxwin.h>
#include "../foundation/WaveFormat.h"
#include "resource.h"

class AFX_EXT_CLASS CDlgDSndCapturePro : public CDialog
{
    DECLARE_DYNAMIC(CDlgDSndCapturePro)
public:
    enum
    {
        IDD = IDD_DLG_DSND_CAPTURE_PRO
    };

    explicit CDlgDSndCapturePro(CWnd* pParent = NULL);
    virtual ~CDlgDSndCapturePro();

    CButton m_btnRecordNew;
    CButton m_btnDirectRecord;
    CButton m_btnTimeLimited;
    CComboBox m_cmbBitsPerSample;
    CComboBox m_cmbSamplingRate;
    CComboBox m_cmbChannel;
    CButton m_btnSizeLimited;
    CButton m_btnTimeCritical;
    DWORD m_dwRecordBytes;
    DWORD m_dwRecordSeconds;
    int m_bRecordNew;
    tWAVEFORMATEX m_wfxRecord; // built on OK
    int m_nSamplingRate;
    int m_nChannel;
    int m_nBitsPerSample;
    int m_bSizeLimited;
    int m_bDirectRecord;

    afx_msg void OnBnClickedOk();

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnCheckSizeRecord();
    afx_msg void OnCheckTimeRecord();
    afx_msg void OnCheckDirectRecord();

    DECLARE_MESSAGE_MAP()
};
