#include "SndDataRecordPlayty.h"
#include "SndDatatyx.h"
#include <new>

CDialog* CSndDataRecordPlayty::m_pDlgDSndCapturePro = NULL;

CSndDataRecordPlayty::CSndDataRecordPlayty()
    : m_pSndDataty(NULL),
      m_bSndDataOwned(0)
{
}

CSndDataRecordPlayty::~CSndDataRecordPlayty()
{
    setSndData(NULL);
}

int CSndDataRecordPlayty::setSndData(CSndDatatyx* pSndData)
{
    if (m_pSndDataty != NULL && m_bSndDataOwned)
        delete m_pSndDataty;
    m_bSndDataOwned = 0;
    m_pSndDataty = pSndData;
    return 1;
}

bool CSndDataRecordPlayty::ensureSndData()
{
    if (m_pSndDataty != NULL)
        return true;
    m_pSndDataty = new (std::nothrow) CSndDatatyx;
    m_bSndDataOwned = m_pSndDataty != NULL ? 1 : 0;
    return m_pSndDataty != NULL;
}
