#pragma once
// Chooses the cooperative level of an output device, and can apply it at once.

#include <afxwin.h>
#include "resource.h"

class CDirectSndDevice;

class CDlgDSndCooperativeLevel : public CDialog
{
    DECLARE_DYNAMIC(CDlgDSndCooperativeLevel)
public:
    enum
    {
        IDD = IDD_DLG_DSND_COOPERATIVE_LEVEL
    };

    explicit CDlgDSndCooperativeLevel(CWnd* pParent = NULL);
    virtual ~CDlgDSndCooperativeLevel();

    DWORD m_dwCoopLevel;         // a DSSCL_* level
    int m_nLevelRadio;           // index of the checked radio button
    CDirectSndDevice* m_pDevice; // enables "Apply"; not owned
    void* m_pContext;            // opener's context; enables "Play"
    HWND m_hWndCoop;             // window the level is set for
    CButton m_btnApply;
    CButton m_btnPlay;

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnBnClickedApply();
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()

private:
    void levelToRadio();
    void radioToLevel();
};
