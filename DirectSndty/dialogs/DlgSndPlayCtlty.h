#pragma once
// Shows a buffer's pan, volume and frequency on sliders, as opened and as moved.
// It reads the buffer and writes nothing back.

#include <afxwin.h>
#include <afxcmn.h>
#include <dsound.h>
#include "resource.h"

class CDlgSndPlayCtlty : public CDialog
{
    DECLARE_DYNAMIC(CDlgSndPlayCtlty)
public:
    enum
    {
        IDD = IDD_DLG_SND_PLAY_CTL
    };

    explicit CDlgSndPlayCtlty(CWnd* pParent = NULL);
    virtual ~CDlgSndPlayCtlty();

    IDirectSoundBuffer* m_pDSBuffer; // set by the opener, not owned
    CSliderCtrl m_sliderFrequency;
    CSliderCtrl m_sliderVolume;
    CButton m_btnCentre;
    CSliderCtrl m_sliderPan;
    long m_lPanNew;
    long m_lPanOriginal;
    long m_lVolumeNew;
    long m_lVolumeOriginal;
    DWORD m_dwFrequencyNew;
    DWORD m_dwFrequencyOriginal;

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    afx_msg void OnHScroll(UINT nSBCode, UINT nPos, CScrollBar* pScrollBar);
    afx_msg void OnBnClickedLeft();
    afx_msg void OnBnClickedCentre();
    afx_msg void OnBnClickedRight();
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()

private:
    void setUpPan(DWORD dwFlags);
    void setUpVolume(DWORD dwFlags);
    void setUpFrequency(DWORD dwFlags);
};
