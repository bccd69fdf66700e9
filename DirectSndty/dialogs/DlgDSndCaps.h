#pragma once
// Shows the fields of an output device's capability record as text.

#include <afxwin.h>
#include <dsound.h>
#include "resource.h"

class CDlgDSndCaps : public CDialog
{
    DECLARE_DYNAMIC(CDlgDSndCaps)
public:
    enum
    {
        IDD = IDD_DLG_DSND_CAPS
    };

    explicit CDlgDSndCaps(CWnd* pParent = NULL);
    virtual ~CDlgDSndCaps();

    CString m_strInfo;
    DSCAPS m_dsCaps; // filled by the opener

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()
};
