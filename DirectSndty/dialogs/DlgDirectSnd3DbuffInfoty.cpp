#include "DlgDirectSnd3DbuffInfoty.h"

IMPLEMENT_DYNAMIC(CDlgDirectSnd3DbuffInfoty, CDialog)

CDlgDirectSnd3DbuffInfoty::CDlgDirectSnd3DbuffInfoty(CWnd* pParent /*=NULL*/)
    : CDialog(CDlgDirectSnd3DbuffInfoty::IDD, pParent)
{
    // The template holds a rich edit control, whose window class must be registered first.
    AfxInitRichEdit();
}

CDlgDirectSnd3DbuffInfoty::~CDlgDirectSnd3DbuffInfoty()
{
}

BOOL CDlgDirectSnd3DbuffInfoty::Create(CWnd* pParentWnd /*=NULL*/)
{
    return CDialog::Create(CDlgDirectSnd3DbuffInfoty::IDD, pParentWnd);
}

// While a window opened from this one is modal, this one takes no input.
void CDlgDirectSnd3DbuffInfoty::BeginModalState()
{
    EnableWindow(FALSE);
}

void CDlgDirectSnd3DbuffInfoty::EndModalState()
{
    EnableWindow(TRUE);
}

void CDlgDirectSnd3DbuffInfoty::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Text(pDX, IDC_RICHEDIT_DS3D_INFO, m_strInfo);
}

BEGIN_MESSAGE_MAP(CDlgDirectSnd3DbuffInfoty, CDialog)
    ON_BN_CLICKED(IDOK, &CDlgDirectSnd3DbuffInfoty::OnBnClickedOk)
END_MESSAGE_MAP()

void CDlgDirectSnd3DbuffInfoty::OnBnClickedOk()
{
    OnOK();
}
