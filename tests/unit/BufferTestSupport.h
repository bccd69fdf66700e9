#pragma once
// What the sound-buffer tests share: a buffer whose protected parts are reachable, an open
// device on the simulated DirectSound, and containers of generated PCM.

#include "DeviceTestSupport.h"
#include <memory>

class TestBuffer : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::createDSndBuff2ndStd;
    using CDirectSnd2DBuff::copySndData2DSndBuf2nd;
    using CDirectSnd2DBuff::m_dsbd;
    using CDirectSnd2DBuff::m_pDSBuffer;
    using CDirectSnd2DBuff::m_wfx;
    using CDirectSnd2DBuff::m_pDSndDevice;
    using CDirectSnd3DBuff::m_fPlayLength;
    using CDirectSnd3DBuff::m_fElapsedTime;
    using CDirectSnd3DBuff::m_nPlaying;
    using CDirectSnd3DBuff2Motion::m_moveStartTime;
    using CDirectSnd3DBuff5Notify::quaryNotify;
    using CDirectSnd3DBuff5Notify::initNotifyEvt;
    using CDirectSnd3DBuff5Notify::initStopEvt;
    using CDirectSnd3DBuff5Notify::m_posNotify;
    using CDirectSnd3DBuff5Notify::m_pDSNotify;
    using CDirectSndBasicty::m_hr;
};

// A container holding `bytes` bytes of a ramp in the given format.
std::unique_ptr<CSndDatatyx> rampData(tWAVEFORMATEX wfx, unsigned long bytes);

class BufferTest : public DeviceTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    TestDevice device;
};
