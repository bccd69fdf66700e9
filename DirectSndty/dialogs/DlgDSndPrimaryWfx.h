#pragma once
// Chooses the PCM format of the primary buffer.

#include <afxwin.h>
#include "../foundation/WaveFormat.h"
#include "resource.h"

class CDlgDSndPrimaryWfx : public CDialog
{
    DECLARE_DYNAMIC(CDlgDSndPrimaryWfx)
public:
    enum
    {
        IDD = IDD_DLG_DSND_PRIMARY_WFX
    };

    explicit CDlgDSndPrimaryWfx(CWnd* pParent = NULL);
    virtual ~CDlgDSndPrimaryWfx();

    CComboBox m_cmbChannel;
    CComboBox m_cmbSamplingRate;
    CComboBox m_cmbBitsPerSample;
    tWAVEFORMATEX m_wfxPrimary; // filled by the opener, rebuilt on OK

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()
};
