#include "DlgDSndInitInfo.h"
#include "../device/DSndDeviceInfoty.h"

IMPLEMENT_DYNAMIC(CDlgDSndInitInfo, CDialog)

CDlgDSndInitInfo::CDlgDSndInitInfo(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDSndInitInfo::IDD, pParent),
      m_nDeviceCount(0),
      m_nDeviceId(0),
      m_pDeviceInfo(NULL)
{
    // The template holds a rich edit control, whose window class must be registered first.
    AfxInitRichEdit();
}

CDlgDSndInitInfo::~CDlgDSndInitInfo()
{
}

void CDlgDSndInitInfo::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CMB_DEVICE_ID, m_cmbDeviceId);
    DDX_Text(pDX, IDC_EDIT_DEVICE_COUNT, m_nDeviceCount);
    DDX_Text(pDX, IDC_RICHEDIT_DEVICE_INFO, m_strInfo);
}

BEGIN_MESSAGE_MAP(CDlgDSndInitInfo, CDialog)
    ON_BN_CLICKED(IDOK, &CDlgDSndInitInfo::OnBnClickedOk)
END_MESSAGE_MAP()

BOOL CDlgDSndInitInfo::OnInitDialog()
{
    CDialog::OnInitDialog();

    if (m_pDeviceInfo != NULL)
        listDevices();

    m_nDeviceId = 0;
    UpdateData(FALSE);
    return TRUE;
}

// One combo item and one block of the report per device. The fourth figure of the
// identifier line is the address of the GUID's last eight bytes, not their value: the
// report has always been built so.
void CDlgDSndInitInfo::listDevices()
{
    m_nDeviceCount = m_pDeviceInfo->m_nDeviceNumber;
    const int nListed = m_nDeviceCount < CDSndDeviceInfoty::kCapacity ? m_nDeviceCount : CDSndDeviceInfoty::kCapacity;
    for (int i = 0; i < nListed; i++)
    {
        const GUID& guid = m_pDeviceInfo->m_guidDevice[i];
        CString item;
        item.Format(_T("          %d"), i);
        m_cmbDeviceId.InsertString(i, item);

        m_strInfo.AppendFormat(_T("DeviceID: %d \n"), i);
        m_strInfo.AppendFormat(_T("%d %d %d %d \n"), (int)guid.Data1, (int)guid.Data2, (int)guid.Data3,
                               (int)(DWORD)(UINT_PTR)guid.Data4);
        m_strInfo.AppendFormat(_T("%s \n"), (LPCTSTR)m_pDeviceInfo->m_strDescription[i]);
        m_strInfo.AppendFormat(_T("%s \n \n"), (LPCTSTR)m_pDeviceInfo->m_strModule[i]);
    }
    m_cmbDeviceId.SetCurSel(0);
}

// The number is read from the combo's text, so a number typed by hand counts too;
// text that is not a number keeps the number chosen so far.
void CDlgDSndInitInfo::OnOK()
{
    CString text;
    m_cmbDeviceId.GetWindowText(text);
    _stscanf((LPCTSTR)text, _T("%d"), &m_nDeviceId);
    CDialog::OnOK();
}

void CDlgDSndInitInfo::OnBnClickedOk()
{
    OnOK();
}
