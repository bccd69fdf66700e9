#include "DeviceTestSupport.h"

namespace
{
class ListenerFactoryTest : public DeviceTest
{
protected:
    DSBUFFERDESC describe(DWORD flags, tWAVEFORMATEX* pWfx)
    {
        DSBUFFERDESC dsbd = {};
        dsbd.dwSize = sizeof(DSBUFFERDESC);
        dsbd.dwFlags = flags;
        dsbd.dwBufferBytes = pWfx->nAvgBytesPerSec;
        dsbd.lpwfxFormat = pWfx;
        return dsbd;
    }

    TestDevice device;
};

// The caller owns the buffer; a failed interface query is reported and leaves nothing.
TEST_F(ListenerFactoryTest, HandsOutSecondaryBuffersTheCallerOwns)
{
    openDevice(device);
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    IDirectSoundBuffer8* pBuffer = nullptr;
    ASSERT_EQ(1, device.getDSndBuff2Std(describe(DSBCAPS_CTRLPAN, &wfx), pBuffer));
    ASSERT_NE(nullptr, pBuffer);
    EXPECT_EQ(1, tap.refCount(pBuffer));
    pBuffer->Release();
    tap.failAlways("IDirectSoundBuffer::QueryInterface", E_NOINTERFACE);
    EXPECT_EQ(0, device.getDSndBuff2Std(describe(DSBCAPS_CTRLPAN, &wfx), pBuffer));
    EXPECT_EQ(nullptr, pBuffer);
    EXPECT_EQ((std::vector<std::wstring>{L"Query Interface error!"}), messages.texts());
    EXPECT_EQ(1, tap.liveObjects()) << tap.leakReport(); // the device alone
}

TEST_F(ListenerFactoryTest, ThreeDBufferNeedsThreeDControlAndFailsQuietlyWithout)
{
    openDevice(device);
    tWAVEFORMATEX wfx = pcmFormat(1, 22050, 16);
    IDirectSoundBuffer8* pBuffer = nullptr;
    IDirectSound3DBuffer* p3D = nullptr;
    EXPECT_EQ(0, device.getDirectSnd3DBuffer(describe(DSBCAPS_CTRLPAN, &wfx), pBuffer, p3D));
    EXPECT_EQ(nullptr, pBuffer);
    EXPECT_EQ(nullptr, p3D);
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(1, tap.liveObjects()) << tap.leakReport();

    ASSERT_EQ(1, device.getDirectSnd3DBuffer(describe(DSBCAPS_CTRL3D, &wfx), pBuffer, p3D));
    ASSERT_NE(nullptr, p3D);
    p3D->Release();
    pBuffer->Release();
    EXPECT_EQ(1, tap.liveObjects()) << tap.leakReport();
}

TEST_F(ListenerFactoryTest, ListenerComesFromAThreeDPrimaryThatIsLetGo)
{
    openDevice(device);
    EXPECT_EQ(nullptr, device.getDirectSnd3DListener(false));
    EXPECT_EQ(0, device.getDS3DListenerPara());
    EXPECT_EQ((std::vector<std::wstring>{L"Please initialize Direct3DSndListener first!"}), messages.texts());
    IDirectSound3DListener* pListener = device.getDirectSnd3DListener(true);
    ASSERT_NE(nullptr, pListener);
    EXPECT_EQ(nullptr, device.m_pDSBufferPrimary);
    auto requests = tap.bufferRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_PRIMARYBUFFER | DSBCAPS_CTRL3D), requests[0].desc.dwFlags);
    EXPECT_EQ(pListener, device.getDirectSnd3DListener(false));

    ASSERT_NE(nullptr, device.initializeDSndListener()); // replacing it leaks nothing
    device.releaseDSndty(&device);
    device._closeDirectSndListener();
}

TEST_F(ListenerFactoryTest, ListenerParametersAreReadSetDeferredAndCommitted)
{
    openDevice(device);
    ASSERT_NE(nullptr, device.initializeDSndListener());
    ASSERT_EQ(1, device.getDS3DListenerPara());
    EXPECT_EQ(64u, device.m_ds3dListener.dwSize);

    device.m_ds3dListener.vPosition.x = 2.5f;
    device.m_ds3dListener.flDopplerFactor = 1.5f;
    ASSERT_EQ(1, device.setCommitDS3DListenerParam());
    auto sets = tap.callsTo("IDirectSound3DListener::SetAllParameters");
    ASSERT_EQ(1u, sets.size());
    EXPECT_EQ(static_cast<std::uintptr_t>(DS3D_DEFERRED), sets[0].args[1]);
    ASSERT_EQ(1, device.commitDS3DListenerDeferredSettings());
    ASSERT_EQ(1, device.getDS3DListenerPara());
    EXPECT_FLOAT_EQ(2.5f, device.m_ds3dListener.vPosition.x);
}

TEST_F(ListenerFactoryTest, ListenerFailuresAreReported)
{
    openDevice(device);
    ASSERT_NE(nullptr, device.initializeDSndListener());
    device.m_ds3dListener.dwSize = 64;
    device.m_ds3dListener.flRolloffFactor = 3.0f;
    tap.failAlways("IDirectSound3DListener::GetAllParameters", DSERR_GENERIC);
    EXPECT_EQ(0, device.getDS3DListenerPara());
    DS3DLISTENER zero = {};
    EXPECT_EQ(0, memcmp(&zero, &device.m_ds3dListener, sizeof(zero)));

    tap.failAlways("IDirectSound3DListener::SetAllParameters", DSERR_GENERIC);
    tap.failAlways("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC);
    EXPECT_EQ(0, device.setCommitDS3DListenerParam());
    EXPECT_EQ(0, device.commitDS3DListenerDeferredSettings());
    EXPECT_EQ((std::vector<std::wstring>{L"Direct sound 3D listener set all parameters error",
                                         L"CommitDeferredSettings error!"}),
              messages.texts());
}
}
