#pragma once
// Lets the user settle the size and format of a secondary buffer before it is made.

#include <afxwin.h>
#include "../foundation/WaveFormat.h"
#include "resource.h"

class CDlgDSndCreate2ndBuffer : public CDialog
{
    DECLARE_DYNAMIC(CDlgDSndCreate2ndBuffer)
public:
    enum
    {
        IDD = IDD_DLG_DSND_CREATE_2ND_BUFFER
    };

    explicit CDlgDSndCreate2ndBuffer(CWnd* pParent = NULL);
    virtual ~CDlgDSndCreate2ndBuffer();

    tWAVEFORMATEX m_wfx;         // in: the data's format; out: the chosen one
    unsigned long m_ulBufferBytes; // in: the data's size; out: the chosen size
    int m_nSettled;              // in: 0, nothing settled yet

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    afx_msg void OnBnClickedOk();

    DECLARE_MESSAGE_MAP()

private:
    // Each gives false after telling the user what is wrong.
    bool readFormat(tWAVEFORMATEX& wfx);
    bool readBufferBytes(unsigned long& ulBytes);
    bool refuse(CWnd* pControl, LPCTSTR lpszWhy);

    CComboBox m_cmbChannels;
    CComboBox m_cmbSamplingRate;
    CComboBox m_cmbBitsPerSample;
    CEdit m_editBufferBytes;
};
