#pragma once
// Chooses the speaker configuration of an output device.

#include <afxwin.h>
#include "resource.h"

class CDlgSpeakerConfig : public CDialog
{
    DECLARE_DYNAMIC(CDlgSpeakerConfig)
public:
    enum
    {
        IDD = IDD_DLG_SPEAKER_CONFIG
    };

    explicit CDlgSpeakerConfig(CWnd* pParent = NULL);
    virtual ~CDlgSpeakerConfig();

    DWORD m_dwSpeakerConfig; // the platform's DSSPEAKER_* value, in and out

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()

private:
    int m_nConfigRadio;
};
