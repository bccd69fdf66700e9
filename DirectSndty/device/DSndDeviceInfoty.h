#pragma once
// A fixed-capacity list of enumerated playback or capture devices.

#include <afxwin.h>
#include <dsound.h>

class AFX_EXT_CLASS CDSndDeviceInfoty : public CObject
{
    DECLARE_DYNCREATE(CDSndDeviceInfoty)
public:
    enum
    {
        kCapacity = 90
    };

    CDSndDeviceInfoty();
    virtual ~CDSndDeviceInfoty();

    int resetDeviceInfo();

    GUID m_guidDevice[kCapacity];       // all zero stands for the default device
    CString m_strDescription[kCapacity];
    CString m_strModule[kCapacity];
    int m_nDeviceNumber;
    int m_nPrimaryDevice;               // the entry delivered without a GUID, or -1
};
