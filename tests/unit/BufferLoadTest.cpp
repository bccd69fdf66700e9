#include "UnitFixtures.h"

namespace
{
using BufferLoadTest = BufferTest;

TEST_F(BufferLoadTest, SizeIsClampedExactlyAtThePlatformsLimits)
{
    const unsigned long largest = 0x0FFFFFFF;
    const std::wstring tooLarge = L"The pass play buffer is too large", tooSmall = L"The set play buffer is too small";
    const struct { unsigned long bytes; DWORD bufferBytes; std::wstring warning; } rows[] = {
        {largest + 1ul, largest, tooLarge}, {largest, largest, L""}, {4, 4, L""}, {3, 4, tooSmall}};
    TestBuffer buffer;
    for (const auto& row : rows)
    {
        auto data = rampData(pcmFormat(1, 22050, 8), row.bytes);
        messages.clear();
        // Wine is spared a quarter-gigabyte buffer: the request alone tells the size asked for.
        if (row.bytes > 4)
            tap.failNext("IDirectSound8::CreateSoundBuffer", DSERR_OUTOFMEMORY);
        EXPECT_EQ(row.bytes > 4 ? 0 : 1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device)) << row.bytes;
        EXPECT_EQ(row.bufferBytes, tap.bufferRequests().back().desc.dwBufferBytes) << row.bytes;
        EXPECT_EQ(row.warning, messages.saw(tooLarge) ? tooLarge : messages.saw(tooSmall) ? tooSmall : L"");
    }
    EXPECT_EQ((std::vector<BYTE>{1, 8, 15, 0}), tap.contents(buffer.m_pDSBuffer)); // the data, then silence
}

TEST_F(BufferLoadTest, LoadCopiesUnderLockRestoringALostBufferAndReloadReleasesTheOldBuffer)
{
    auto data = rampData(pcmFormat(2, 44100, 16), 4000);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
    const std::vector<BYTE> loaded(data->getDataPointer(), data->getDataPointer() + 4000);
    EXPECT_EQ(loaded, tap.contents(buffer.m_pDSBuffer));

    tap.failNext("IDirectSoundBuffer::Lock", DSERR_BUFFERLOST);
    const std::vector<BYTE> reversed(loaded.rbegin(), loaded.rend());
    EXPECT_EQ(1, buffer.copySndData2DSndBuf2nd(reversed.data(), 4000));
    EXPECT_EQ(1, tap.count("IDirectSoundBuffer::Restore"));
    EXPECT_EQ(reversed, tap.contents(buffer.m_pDSBuffer));
    EXPECT_EQ(tap.count("IDirectSoundBuffer::Lock") - 1, tap.count("IDirectSoundBuffer::Unlock"));

    IDirectSoundBuffer8* first = buffer.m_pDSBuffer;
    for (const char* method : {"IDirectSoundBuffer::Lock", "IDirectSoundBuffer::Unlock"})
    {
        tap.failNext(method, DSERR_INVALIDCALL);
        EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(data.get(), &device));
        EXPECT_EQ(DSERR_INVALIDCALL, buffer.m_hr);
    }
    EXPECT_EQ((Texts{L"Copy data error!", L"Copy data error!"}), messages.texts());
    EXPECT_EQ(0, tap.refCount(first)); // reloading on the same device lets the old buffer go
}

TEST_F(BufferLoadTest, ThreeDLoadMakesMonoWholeBlocksAndReleasesOnReload)
{
    auto stereo = rampData(pcmFormat(2, 22050, 16), 4000);
    TestBuffer buffer;
    ASSERT_EQ(1, buffer.setSndData2DS3Dbuff2(stereo.get(), &device));
    EXPECT_EQ(2000u, stereo->getDataSize()); // made mono in the caller's container
    auto requests = tap.bufferRequests(); // the listener's primary buffer comes after the 3D buffer
    ASSERT_GE(requests.size(), 2u);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_CTRL3D), requests[0].desc.dwFlags);
    EXPECT_EQ(1, requests[0].format.nChannels);
    EXPECT_FLOAT_EQ(2000.0f / 44100.0f, buffer.m_fPlayLength);
    EXPECT_EQ(64u, buffer.m_ds3dBuffer.dwSize);

    IDirectSound3DBuffer8* first3D = buffer.m_pDS3DBuffer;
    IDirectSoundBuffer8* first = buffer.m_pDSBuffer;
    auto odd = rampData(pcmFormat(1, 22050, 16), 1001);
    ASSERT_EQ(1, buffer.setNewD3DSnd(odd.get(), &device));
    EXPECT_EQ(1000u, tap.bufferRequests().back().desc.dwBufferBytes);
    EXPECT_EQ(0, tap.refCount(first3D));
    EXPECT_EQ(0, tap.refCount(first));
}

TEST_F(BufferLoadTest, RefusalsAndFailuresNameWhatIsMissing)
{
    auto data = rampData(pcmFormat(1, 22050, 16), 1000);
    CSndDatatyx empty;
    TestBuffer buffer;
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(data.get(), NULL));
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(NULL, &device));
    EXPECT_EQ(0, buffer.setSndData2DSndBuf2ndStd(&empty, &device));
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(data.get(), NULL));
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(&empty, &device));
    EXPECT_EQ(0, tap.count("IDirectSound8::CreateSoundBuffer"));
    tap.failNext("IDirectSoundBuffer::QueryInterface", E_NOINTERFACE);
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(data.get(), &device));
    TestDevice fresh; // no listener yet: the load makes one, from a second buffer request
    ASSERT_EQ(1, fresh.createDSndObject(NULL));
    tap.failNth("IDirectSound8::CreateSoundBuffer", tap.count("IDirectSound8::CreateSoundBuffer") + 2,
                DSERR_ALLOCATED);
    EXPECT_EQ(0, buffer.setSndData2DS3Dbuff2(data.get(), &fresh));
    buffer.release3DBuffers(); // before the device they were made on
    EXPECT_EQ((Texts{L"Set direct sound object as Null in creating sound buffer", L"No sound data for play",
                     L"No sound data for play", L"No sound devide for playing!", L"No sound data to play",
                     L"Query Interface error!", L"Create Direct sound buffer 3D error",
                     L"Create Direct sound 3D listener error"}), messages.texts());
}
}
