#include "SndDataRecordPlayty2Rdsnd.h"
#include "SndDatatyx.h"
#include "../capture/DSndCapturetyx.h"
#include <memory>
#include <new>

CDSndCapturetyx* CSndDataRecordPlayty2Rdsnd::m_pDSndCapturetyx = NULL;

CSndDataRecordPlayty2Rdsnd::CSndDataRecordPlayty2Rdsnd()
{
}

CSndDataRecordPlayty2Rdsnd::~CSndDataRecordPlayty2Rdsnd()
{
    killDirectSndCpture();
}

int CSndDataRecordPlayty2Rdsnd::killDirectSndCpture()
{
    delete m_pDSndCapturetyx;
    m_pDSndCapturetyx = NULL;
    return 1;
}

void CSndDataRecordPlayty2Rdsnd::createRecordObjects()
{
    if (m_pDSndCapturetyx == NULL)
        m_pDSndCapturetyx = new (std::nothrow) CDSndCapturetyx;
    ensureSndData();
}

// A fixed 8,000,000 bytes of capture memory in the device's default format.
int CSndDataRecordPlayty2Rdsnd::recordBeginDsnd(int nRecordFlag)
{
    createRecordObjects();
    if (m_pDSndCapturetyx == NULL || m_pSndDataty == NULL)
        return 0;
    if (!m_pDSndCapturetyx->initDataSizeDefaultWFXNonCircle(kStandardRecordBytes))
        return 0;

    tWAVEFORMATEX wfx = {};
    m_pDSndCapturetyx->getCurrentWfx(&wfx);
    if (!m_pSndDataty->initRecordBuffer(kStandardRecordBytes, wfx, nRecordFlag))
        return 0;
    return m_pDSndCapturetyx->recordStart() ? 1 : 0;
}

// Prepares the capture only; recording into the container is the standard path's work.
int CSndDataRecordPlayty2Rdsnd::recordBeginProDsnd(unsigned long ulBytes, tWAVEFORMATEX wfx, int /*nRecordFlag*/)
{
    createRecordObjects();
    if (m_pDSndCapturetyx == NULL)
        return 1;
    unsigned long ulWhole = wfx.nBlockAlign == 0 ? 0 : ulBytes - ulBytes % wfx.nBlockAlign;
    m_pDSndCapturetyx->initDataSizeWfxNonCircle(wfx, ulWhole);
    return 1;
}

// The container keeps its own copy of each block, so the block is freed here.
int CSndDataRecordPlayty2Rdsnd::recordUpdateDsnd()
{
    if (m_pDSndCapturetyx == NULL || m_pSndDataty == NULL)
        return 0;
    char* pData = NULL;
    unsigned long ulBytes = 0;
    m_pDSndCapturetyx->copyUnCircleBufferData(pData, &ulBytes);
    std::unique_ptr<char[]> block(pData);
    if (ulBytes == 0 || pData == NULL)
        return 0;
    m_pSndDataty->insertNewRecordDataDSnd(block.get(), ulBytes);
    return 1;
}

int CSndDataRecordPlayty2Rdsnd::recordStopDsnd()
{
    if (m_pSndDataty == NULL || m_pDSndCapturetyx == NULL)
    {
        AfxMessageBox(_T("CSndDataRecordPlayty2Rdsnd1R::m_pSndDataty not initiated"), MB_OK, 0);
        return 0;
    }
    recordUpdateDsnd();
    m_pDSndCapturetyx->recordStop();
    m_pSndDataty->recordEndProcess();
    return 1;
}
