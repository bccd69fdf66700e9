#pragma once
// Shows a text its opener composed, such as a 3D buffer's parameter report.

#include <afxwin.h>
#include "resource.h"

class CDlgDirectSnd3DbuffInfoty : public CDialog
{
    DECLARE_DYNAMIC(CDlgDirectSnd3DbuffInfoty)
public:
    enum
    {
        IDD = IDD_DLG_DS3D_BUFF_INFO
    };

    explicit CDlgDirectSnd3DbuffInfoty(CWnd* pParent = NULL);
    virtual ~CDlgDirectSnd3DbuffInfoty();

    // For modeless owners.
    BOOL Create(CWnd* pParentWnd = NULL);

    virtual void BeginModalState();
    virtual void EndModalState();

    CString m_strInfo; // assigned by the opener before the dialog runs

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()
};
