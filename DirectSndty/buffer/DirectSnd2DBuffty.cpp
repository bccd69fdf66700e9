#include "DirectSnd2DBuffty.h"
#include "SndDatatyx.h"
#include "../dialogs/DlgDTavrelBasic.h"
#include "../dialogs/DlgSndPlayCtlty.h"
#include <new>

CDirectSnd2DBuffty::CDirectSnd2DBuffty()
{
}

CDirectSnd2DBuffty::~CDirectSnd2DBuffty()
{
}

int CDirectSnd2DBuffty::setSndPlayCtl()
{
    if (m_pDSBuffer == NULL)
        return 0;

    CDlgSndPlayCtlty dlg;
    // IDirectSoundBuffer8 extends IDirectSoundBuffer's vtable; the headers do not say so.
    dlg.m_pDSBuffer = reinterpret_cast<IDirectSoundBuffer*>(m_pDSBuffer);
    dlg.DoModal();
    return 1;
}

CSndDatatyx* CDirectSnd2DBuffty::showTavrelerBasic()
{
    CDlgDTavrelBasic dlg;
    if (dlg.DoModal() != IDOK)
        return NULL;
    if (dlg.getDataPointer() == NULL || dlg.getDataSize() <= 0)
        return NULL;

    CSndDatatyx* pSndData = new (std::nothrow) CSndDatatyx;
    if (pSndData == NULL)
        return NULL;
    pSndData->setNewSndData(dlg.getDataPointer(), static_cast<unsigned long>(dlg.getDataSize()), dlg.getWfx());
    return pSndData;
}
