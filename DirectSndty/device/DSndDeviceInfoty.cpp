#include "DSndDeviceInfoty.h"

IMPLEMENT_DYNCREATE(CDSndDeviceInfoty, CObject)

CDSndDeviceInfoty::CDSndDeviceInfoty()
{
    resetDeviceInfo();
}

CDSndDeviceInfoty::~CDSndDeviceInfoty()
{
}

int CDSndDeviceInfoty::resetDeviceInfo()
{
    for (int i = 0; i < kCapacity; i++)
    {
        ZeroMemory(&m_guidDevice[i], sizeof(GUID));
        m_strDescription[i] = _T(" ");
        m_strModule[i] = _T(" ");
    }
    m_nDeviceNumber = 0;
    m_nPrimaryDevice = -1;
    return 1;
}
