#include "DlgDSndCaps.h"

IMPLEMENT_DYNAMIC(CDlgDSndCaps, CDialog)

CDlgDSndCaps::CDlgDSndCaps(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDSndCaps::IDD, pParent)
{
    ZeroMemory(&m_dsCaps, sizeof(m_dsCaps));
    // The template holds a rich edit control, whose window class must be registered first.
    AfxInitRichEdit();
}

CDlgDSndCaps::~CDlgDSndCaps()
{
}

void CDlgDSndCaps::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_RICHEDIT_CAPS, m_strInfo);
}

BEGIN_MESSAGE_MAP(CDlgDSndCaps, CDialog)
    ON_BN_CLICKED(IDOK, &CDlgDSndCaps::OnBnClickedOk)
END_MESSAGE_MAP()

// One line per field, in the alphabetical order of the field names; the size and
// the flags are not part of the report.
BOOL CDlgDSndCaps::OnInitDialog()
{
    CDialog::OnInitDialog();

    const DSCAPS& caps = m_dsCaps;
    m_strInfo = _T("***DirectSound Capabilities***\n");
    m_strInfo.AppendFormat(_T("dwFreeHw3DAllBuffers:%d \n"), (int)caps.dwFreeHw3DAllBuffers);
    m_strInfo.AppendFormat(_T("dwFreeHw3DStaticBuffers: %d \n"), (int)caps.dwFreeHw3DStaticBuffers);
    m_strInfo.AppendFormat(_T("dwFreeHw3DStreamingBuffers: %d \n"), (int)caps.dwFreeHw3DStreamingBuffers);
    m_strInfo.AppendFormat(_T("dwFreeHwMemBytes: %d \n"), (int)caps.dwFreeHwMemBytes);
    m_strInfo.AppendFormat(_T("dwFreeHwMixingAllBuffers: %d \n"), (int)caps.dwFreeHwMixingAllBuffers);
    m_strInfo.AppendFormat(_T("dwFreeHwMixingStaticBuffers: %d \n"), (int)caps.dwFreeHwMixingStaticBuffers);
    m_strInfo.AppendFormat(_T("dwFreeHwMixingStreamingBuffers: %d \n"), (int)caps.dwFreeHwMixingStreamingBuffers);
    m_strInfo.AppendFormat(_T("dwMaxContigFreeHwMemBytes: %d \n"), (int)caps.dwMaxContigFreeHwMemBytes);
    m_strInfo.AppendFormat(_T("dwMaxHw3DAllBuffers: %d \n"), (int)caps.dwMaxHw3DAllBuffers);
    m_strInfo.AppendFormat(_T("dwMaxHw3DStaticBuffers: %d \n"), (int)caps.dwMaxHw3DStaticBuffers);
    m_strInfo.AppendFormat(_T("dwMaxHw3DStreamingBuffers: %d \n"), (int)caps.dwMaxHw3DStreamingBuffers);
    m_strInfo.AppendFormat(_T("dwMaxHwMixingAllBuffers: %d \n"), (int)caps.dwMaxHwMixingAllBuffers);
    m_strInfo.AppendFormat(_T("dwMaxHwMixingStaticBuffers: %d \n"), (int)caps.dwMaxHwMixingStaticBuffers);
    m_strInfo.AppendFormat(_T("dwMaxHwMixingStreamingBuffers: %d \n"), (int)caps.dwMaxHwMixingStreamingBuffers);
    m_strInfo.AppendFormat(_T("dwMaxSecondarySampleRate: %d \n"), (int)caps.dwMaxSecondarySampleRate);
    m_strInfo.AppendFormat(_T("dwMinSecondarySampleRate: %d \n"), (int)caps.dwMinSecondarySampleRate);
    m_strInfo.AppendFormat(_T("dwPlayCpuOverheadSwBuffers: %d \n"), (int)caps.dwPlayCpuOverheadSwBuffers);
    m_strInfo.AppendFormat(_T("dwPrimaryBuffers: %d \n"), (int)caps.dwPrimaryBuffers);
    m_strInfo.AppendFormat(_T("dwTotalHwMemBytes: %d \n"), (int)caps.dwTotalHwMemBytes);
    m_strInfo.AppendFormat(_T("dwUnlockTransferRateHwBuffers: %d \n"), (int)caps.dwUnlockTransferRateHwBuffers);

    UpdateData(FALSE);
    return TRUE;
}

void CDlgDSndCaps::OnBnClickedOk()
{
    OnOK();
}
