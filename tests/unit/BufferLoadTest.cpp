#include "BufferTestSupport.h"

namespace
{
class BufferLoadTest : public BufferTest
{
};

TEST_F(BufferLoadTest, TinyDataLoadIntoTheSmallestBufferAfterAWarning)
{
    auto data = rampData(pcmFormat(1, 22050, 8), 2);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    EXPECT_EQ((std::vector<std::wstring>{L"The set play buffer is too small"}), messages.texts());
    auto requests = fake.bufferRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(4u, requests[0].desc.dwBufferBytes);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_CTRLPAN), requests[0].desc.dwFlags);
    std::vector<BYTE> held = fake.contents(buffer.m_pDSBuffer);
    EXPECT_EQ((std::vector<BYTE>{1, 8, 0, 0}), held); // the data, then silence
}

TEST_F(BufferLoadTest, LoadedBufferHoldsTheContainersDataAndFormat)
{
    auto data = rampData(pcmFormat(2, 44100, 16), 4000);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    std::vector<BYTE> expected(data->getDataPointer(), data->getDataPointer() + 4000);
    EXPECT_EQ(expected, fake.contents(buffer.m_pDSBuffer));
    EXPECT_EQ(44100u, fake.bufferRequests()[0].format.nSamplesPerSec);
    EXPECT_EQ(0, fake.bufferInfo(buffer.m_pDSBuffer).openLocks);
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(BufferLoadTest, RefusalsNameWhatIsMissing)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 100);
    CSndDatatyx empty;
    TestBuffer buffer;
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(data.get(), NULL));
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(NULL, &device));
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(&empty, &device));
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(data.get(), NULL));
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(&empty, &device));
    EXPECT_EQ((std::vector<std::wstring>{L"Set direct sound object as Null in creating sound buffer",
                                         L"No sound data for play", L"No sound data for play",
                                         L"No sound devide for playing!", L"No sound data to play"}),
              messages.texts());
    EXPECT_EQ(0, fake.count("IDirectSound8::CreateSoundBuffer"));
}

TEST_F(BufferLoadTest, ReloadOnTheSameDeviceReleasesButAnotherDeviceOnlyOverwrites)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 100);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    IDirectSoundBuffer8* first = buffer.m_pDSBuffer;
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    EXPECT_EQ(0, fake.refCount(first));

    IDirectSoundBuffer8* second = buffer.m_pDSBuffer;
    TestDevice other;
    ASSERT_EQ(1, other.createDSndObject(NULL));
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &other));
    EXPECT_EQ(1, fake.refCount(second)); // left to whoever still holds it
    second->Release();
    buffer.releaseDirectSnd2DBuff();
    EXPECT_EQ(1, buffer.releaseDirectSnd2DBuff()); // an empty object is no error
}

TEST_F(BufferLoadTest, FailedLockOrUnlockIsReportedByTheLoad)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 100);
    TestBuffer buffer;
    fake.failAlways("IDirectSoundBuffer::Lock", DSERR_INVALIDCALL);
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    EXPECT_EQ(DSERR_INVALIDCALL, buffer.m_hr);
    fake.clearScript();
    fake.failAlways("IDirectSoundBuffer::Unlock", DSERR_INVALIDCALL);
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    EXPECT_EQ((std::vector<std::wstring>{L"Copy data error!", L"Copy data error!"}), messages.texts());
}

TEST_F(BufferLoadTest, LostBufferIsRestoredBeforeTheCopy)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 100);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    fake.setLost(buffer.m_pDSBuffer, true);
    EXPECT_EQ(1, buffer.copySndData2DSndBuf2nd(reinterpret_cast<const BYTE*>(data->getDataPointer()), 100));
    EXPECT_EQ(1, fake.count("IDirectSoundBuffer::Restore"));
}

TEST_F(BufferLoadTest, ThreeDLoadMakesStereoMonoInTheCallersContainer)
{
    auto data = rampData(pcmFormat(2, 22050, 16), 4000);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DS3Dbuff2(data.get(), &device));
    EXPECT_EQ(1, data->getAudioWaveDataWfx().nChannels);
    EXPECT_EQ(2000u, data->getDataSize());
    auto requests = fake.bufferRequests();
    // The listener's primary buffer is made after the 3D buffer itself.
    ASSERT_GE(requests.size(), 2u);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_CTRL3D), requests[0].desc.dwFlags);
    EXPECT_EQ(1, requests[0].format.nChannels);
    EXPECT_NE(nullptr, device.getDirectSnd3DListener(false));
    EXPECT_FLOAT_EQ(2000.0f / 44100.0f, buffer.m_fPlayLength);
    EXPECT_EQ(64u, buffer.m_ds3dBuffer.dwSize);
}

TEST_F(BufferLoadTest, ThreeDBufferHoldsWholeBlocksAndIsReleasedOnReload)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 1001);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DS3Dbuff2(data.get(), &device));
    EXPECT_EQ(1000u, fake.bufferRequests()[0].desc.dwBufferBytes);
    IDirectSound3DBuffer8* first3D = buffer.m_pDS3DBuffer;
    IDirectSoundBuffer8* first = buffer.m_pDSBuffer;
    ASSERT_EQ(1, buffer.setNewD3DSnd(data.get(), &device));
    EXPECT_EQ(0, fake.refCount(first3D));
    EXPECT_EQ(0, fake.refCount(first));
    EXPECT_EQ(0, buffer.release3DBuffers());
    EXPECT_EQ(nullptr, buffer.m_pDS3DBuffer);
    EXPECT_EQ(nullptr, buffer.m_pDSBuffer);
}

TEST_F(BufferLoadTest, ThreeDFailuresAreReported)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 1000);
    TestBuffer buffer;
    fake.failAlways("IDirectSoundBuffer::QueryInterface", E_NOINTERFACE);
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(data.get(), &device));
    EXPECT_TRUE(messages.saw(L"Create Direct sound buffer 3D error"));

    fake.clearScript();
    messages.clear();
    TestDevice fresh; // no listener yet: the load makes one, from a second buffer request
    ASSERT_EQ(1, fresh.createDSndObject(NULL));
    fake.failNth("IDirectSound8::CreateSoundBuffer", fake.count("IDirectSound8::CreateSoundBuffer") + 2,
                 DSERR_ALLOCATED);
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(data.get(), &fresh));
    EXPECT_TRUE(messages.saw(L"Create Direct sound 3D listener error"));
    buffer.release3DBuffers();
}
}
