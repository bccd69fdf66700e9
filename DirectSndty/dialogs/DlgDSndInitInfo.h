#pragma once
// Lists the enumerated output devices and lets the user pick one by number.

#include <afxwin.h>
#include "resource.h"

class CDSndDeviceInfoty;

class CDlgDSndInitInfo : public CDialog
{
    DECLARE_DYNAMIC(CDlgDSndInitInfo)
public:
    enum
    {
        IDD = IDD_DLG_DSND_INIT_INFO
    };

    explicit CDlgDSndInitInfo(CWnd* pParent = NULL);
    virtual ~CDlgDSndInitInfo();

    CComboBox m_cmbDeviceId;
    int m_nDeviceCount;
    CString m_strInfo;
    int m_nDeviceId;                  // the chosen device number, read back by the opener
    CDSndDeviceInfoty* m_pDeviceInfo; // set by the opener, not owned

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()

private:
    void listDevices();
};
