#include "SndDataRecordPlayty3R.h"
#include "SndDatatyx.h"
#include "../dialogs/DlgDSndCapturePro.h"
#include <new>

namespace
{
// The dialog is made once for the process; its template is checked by creating it, and
// the window is let go so that the object can run modally.
CDlgDSndCapturePro* makeSettingsDialog(CWnd* pParentWnd)
{
    CDlgDSndCapturePro* pDlg = new (std::nothrow) CDlgDSndCapturePro(NULL);
    if (pDlg == NULL)
        return NULL;
    if (!pDlg->Create(CDlgDSndCapturePro::IDD, pParentWnd))
    {
        delete pDlg;
        return NULL;
    }
    pDlg->DestroyWindow();
    return pDlg;
}
}

CSndDataRecordPlayty3R::CSndDataRecordPlayty3R()
    : m_nRecordDlgResult(1)
{
}

CSndDataRecordPlayty3R::~CSndDataRecordPlayty3R()
{
}

int CSndDataRecordPlayty3R::recordBegin(CWnd* /*pParentWnd*/, int nRecordFlag)
{
    return recordBeginDsnd(nRecordFlag);
}

int CSndDataRecordPlayty3R::recordBeginPro(CWnd* pParentWnd, int nRecordFlag)
{
    if (m_pDlgDSndCapturePro == NULL)
        m_pDlgDSndCapturePro = makeSettingsDialog(pParentWnd);
    if (m_pDlgDSndCapturePro == NULL)
        return 0;

    CDlgDSndCapturePro* pDlg = static_cast<CDlgDSndCapturePro*>(m_pDlgDSndCapturePro);
    INT_PTR result = pDlg->DoModal();
    if (result != IDOK)
        return 0;
    m_nRecordDlgResult = static_cast<int>(result);

    tWAVEFORMATEX wfx = pDlg->m_wfxRecord;
    if (!checkOld_NewRecordWfx(wfx))
        return 0;
    if (pDlg->m_bRecordNew && m_pSndDataty != NULL)
        m_pSndDataty->resetDSndRecord();

    DWORD dwBytes = pDlg->m_bSizeLimited ? pDlg->m_dwRecordBytes
                                         : static_cast<DWORD>(wfx.nAvgBytesPerSec * pDlg->m_dwRecordSeconds);
    if (wfx.nBlockAlign != 0)
        dwBytes -= dwBytes % wfx.nBlockAlign;
    recordBeginProDsnd(dwBytes, wfx, nRecordFlag);
    return 1;
}

int CSndDataRecordPlayty3R::recordStop()
{
    return recordStopDsnd();
}

int CSndDataRecordPlayty3R::recordUpdate()
{
    return recordUpdateDsnd();
}

// "No" keeps the old data in its old format; only "Cancel" stops the recording.
int CSndDataRecordPlayty3R::checkOld_NewRecordWfx(tWAVEFORMATEX wfx)
{
    if (m_pSndDataty == NULL)
    {
        ensureSndData();
        return 1;
    }
    if (!m_pSndDataty->hasAudioWaveData())
        return 1;
    if (m_pSndDataty->isWaveFormatexSame(wfx))
        return 1;

    int answer = AfxMessageBox(
        _T("The sound data to record has different format with old data,do you like delete old data?"),
        MB_YESNOCANCEL, 0);
    if (answer == IDCANCEL)
        return 0;
    if (answer == IDYES)
        m_pSndDataty->resetDSndRecord();
    return 1;
}
