#pragma once
// Edits the 3D parameters of one buffer and of the listener as plain numbers, with a test
// sound; on OK the edited values stay in the buffer's working records.

#include <afxwin.h>
#include <dsound.h>
#include "resource.h"

class CDirectSnd3DBuffty;
class CDirectSndDevicety;

class CDlgDS3Dparameterty : public CDialog
{
    DECLARE_DYNAMIC(CDlgDS3Dparameterty)
public:
    enum
    {
        IDD = IDD_DLG_DS3D_PARAMETER
    };

    explicit CDlgDS3Dparameterty(CWnd* pParent = NULL);
    virtual ~CDlgDS3Dparameterty();

    CComboBox m_cmbMode;
    float m_fPositionX, m_fPositionY, m_fPositionZ;
    float m_fVelocityX, m_fVelocityY, m_fVelocityZ;
    float m_fMaxDistance;
    float m_fMinDistance;
    DWORD m_dwInsideConeAngle;
    DWORD m_dwOutsideConeAngle;
    float m_fConeX, m_fConeY, m_fConeZ;
    long m_lConeOutsideVolume;
    float m_fListenerPositionX, m_fListenerPositionY, m_fListenerPositionZ;
    float m_fListenerVelocityX, m_fListenerVelocityY, m_fListenerVelocityZ;
    float m_fRolloffFactor;
    float m_fFrontX, m_fFrontY, m_fFrontZ;
    float m_fTopX, m_fTopY, m_fTopZ;
    float m_fDistanceFactor;
    float m_fDopplerFactor;
    float m_fUnused;                     // 30.0, kept for the record layout
    CDirectSndDevicety* m_pDevice;       // set by the opener, not used here
    CDirectSnd3DBuffty* m_pSnd3DBuff;    // the buffer edited, not owned
    int m_nReserved;
    int m_bTestPlaying;

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    afx_msg void OnBnClickedTest();
    afx_msg void OnBnClickedStop();
    afx_msg void OnBnClickedOk();
    afx_msg void OnCbnSelchangeMode();

    DECLARE_MESSAGE_MAP()

private:
    void readWorkingRecords();
    void applyToWorkingRecords();
    void applyMode(DS3DBUFFER& buffer);
};
