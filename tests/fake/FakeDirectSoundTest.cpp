// Checks the simulated DirectSound's own trickier mechanics, which every library test relies on.

#include "DirectSoundSeam.h"
#include "FakeDirectSound.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

using fakeds::FakeDirectSound;

namespace
{

const DWORD kStop = static_cast<DWORD>(DSBPN_OFFSETSTOP);

WAVEFORMATEX mono8(DWORD rate = 8000)
{
    return WAVEFORMATEX{WAVE_FORMAT_PCM, 1, rate, rate, 1, 8, 0};
}

bool signalled(HANDLE event)
{
    return WaitForSingleObject(event, 0) == WAIT_OBJECT_0;
}

HANDLE newEvent()
{
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

template <class T>
T* query(IUnknown* object, REFIID iid)
{
    void* out = nullptr;
    return object->QueryInterface(iid, &out) == S_OK ? static_cast<T*>(out) : nullptr;
}

class FakeDeviceTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(DS_OK, DSndPlatform::createSound8(nullptr, &device_, nullptr)); }
    void TearDown() override { device_->Release(); }

    HRESULT create(DWORD bytes, DWORD flags, IDirectSoundBuffer** out)
    {
        WAVEFORMATEX format = mono8();
        DSBUFFERDESC desc{sizeof(DSBUFFERDESC), flags, bytes, 0, &format, GUID{}};
        return device_->CreateSoundBuffer(&desc, out, nullptr);
    }

    IDirectSoundBuffer8* buffer(DWORD bytes, DWORD flags = 0)
    {
        IDirectSoundBuffer* plain = nullptr;
        EXPECT_EQ(DS_OK, create(bytes, flags, &plain));
        auto* buffer8 = query<IDirectSoundBuffer8>(plain, IID_IDirectSoundBuffer8);
        plain->Release();
        return buffer8;
    }

    DWORD playCursor(IDirectSoundBuffer8* buffer) { return fake_.bufferInfo(buffer).playCursor; }

    FakeDirectSound fake_;
    IDirectSound8* device_ = nullptr;
};

// ---- Lock over the ring --------------------------------------------------------------------

TEST_F(FakeDeviceTest, LockPastTheEndContinuesAtTheStart)
{
    IDirectSoundBuffer8* b = buffer(16);
    void *p1, *p2;
    DWORD n1, n2;
    ASSERT_EQ(DS_OK, b->Lock(12, 8, &p1, &n1, &p2, &n2, 0));
    EXPECT_EQ(4u, n1);
    EXPECT_EQ(4u, n2);
    memset(p1, 0xAA, n1);
    memset(p2, 0xBB, n2);
    EXPECT_EQ(1, fake_.bufferInfo(b).openLocks);
    ASSERT_EQ(DS_OK, b->Unlock(p1, n1, p2, n2));

    const std::vector<BYTE> expected{0xBB, 0xBB, 0xBB, 0xBB, 0, 0, 0, 0, 0, 0, 0, 0, 0xAA, 0xAA, 0xAA, 0xAA};
    EXPECT_EQ(expected, fake_.contents(b));
    EXPECT_EQ(0, fake_.bufferInfo(b).openLocks);
    b->Release();
}

TEST_F(FakeDeviceTest, LockFlagsChooseTheRegion)
{
    IDirectSoundBuffer8* b = buffer(16);
    void *base, *p1, *p2;
    DWORD n1, n2;
    ASSERT_EQ(DS_OK, b->Lock(0, 1, &base, &n1, &p2, &n2, DSBLOCK_ENTIREBUFFER));
    EXPECT_EQ(16u, n1);
    EXPECT_EQ(nullptr, p2);
    EXPECT_EQ(0u, n2);
    b->Unlock(base, n1, nullptr, 0);

    // Without a second region the part past the end is simply not locked.
    ASSERT_EQ(DS_OK, b->Lock(12, 8, &p1, &n1, nullptr, nullptr, 0));
    EXPECT_EQ(4u, n1);

    fake_.setWriteLead(6);
    b->SetCurrentPosition(4);
    b->Play(0, 0, DSBPLAY_LOOPING);
    ASSERT_EQ(DS_OK, b->Lock(0, 4, &p1, &n1, &p2, &n2, DSBLOCK_FROMWRITECURSOR));
    EXPECT_EQ(10, static_cast<BYTE*>(p1) - static_cast<BYTE*>(base));
    b->Release();
}

TEST_F(FakeDeviceTest, RefusedLockLeavesNothingLocked)
{
    IDirectSoundBuffer8* b = buffer(16);
    void* p1 = &p1;
    DWORD n1 = 99;
    EXPECT_EQ(DSERR_INVALIDPARAM, b->Lock(16, 1, &p1, &n1, nullptr, nullptr, 0));
    EXPECT_EQ(nullptr, p1);
    EXPECT_EQ(0u, n1);

    fake_.setLost(b, true);
    EXPECT_EQ(DSERR_BUFFERLOST, b->Lock(0, 4, &p1, &n1, nullptr, nullptr, 0));
    EXPECT_EQ(DSERR_BUFFERLOST, b->Play(0, 0, 0));
    EXPECT_EQ(DS_OK, b->Restore());
    EXPECT_EQ(DS_OK, b->Play(0, 0, 0));
    EXPECT_EQ(0, fake_.bufferInfo(b).openLocks);
    b->Release();
}

// ---- Cursors and notifications -------------------------------------------------------------

TEST_F(FakeDeviceTest, LoopingPlaySignalsEachPositionItPassesInOrder)
{
    IDirectSoundBuffer8* b = buffer(100, DSBCAPS_CTRLPOSITIONNOTIFY);
    auto* notify = query<IDirectSoundNotify>(b, IID_IDirectSoundNotify);
    ASSERT_NE(nullptr, notify);
    HANDLE at10 = newEvent(), at90 = newEvent(), stop = newEvent();
    DSBPOSITIONNOTIFY positions[] = {{90, at90}, {10, at10}, {kStop, stop}};
    ASSERT_EQ(DS_OK, notify->SetNotificationPositions(3, positions));

    b->Play(0, 0, DSBPLAY_LOOPING);
    fake_.advancePlay(b, 50);
    EXPECT_TRUE(signalled(at10));
    EXPECT_FALSE(signalled(at90));
    fake_.advancePlay(b, 70); // 50 -> 120: passes 90, wraps, passes 10 again
    EXPECT_EQ(20u, playCursor(b));
    std::vector<DWORD> offsets;
    for (const auto& s : fake_.signals())
        offsets.push_back(s.offset);
    EXPECT_EQ((std::vector<DWORD>{10, 90, 10}), offsets);

    EXPECT_EQ(DSERR_INVALIDCALL, notify->SetNotificationPositions(3, positions));
    EXPECT_FALSE(signalled(stop));
    b->Stop();
    EXPECT_TRUE(signalled(stop));
    notify->Release();
    b->Release();
    for (HANDLE h : {at10, at90, stop})
        CloseHandle(h);
}

TEST_F(FakeDeviceTest, OneShotPlayStopsAtTheEnd)
{
    IDirectSoundBuffer8* b = buffer(100, DSBCAPS_CTRLPOSITIONNOTIFY);
    auto* notify = query<IDirectSoundNotify>(b, IID_IDirectSoundNotify);
    HANDLE at90 = newEvent(), stop = newEvent();
    DSBPOSITIONNOTIFY positions[] = {{90, at90}, {kStop, stop}};
    notify->SetNotificationPositions(2, positions);

    b->SetCurrentPosition(40);
    b->Play(0, 0, 0);
    fake_.advancePlay(b, 500);
    EXPECT_TRUE(signalled(at90));
    EXPECT_TRUE(signalled(stop));
    EXPECT_EQ(0u, fake_.bufferInfo(b).status);
    EXPECT_EQ(0u, playCursor(b));
    fake_.advancePlay(b, 500); // a stopped buffer does not move
    EXPECT_EQ(2u, fake_.signals().size());
    notify->Release();
    b->Release();
    CloseHandle(at90);
    CloseHandle(stop);
}

TEST_F(FakeDeviceTest, OffsetsBeyondTheBufferAreRefusedUnlessToleranceIsAskedFor)
{
    IDirectSoundBuffer8* b = buffer(100, DSBCAPS_CTRLPOSITIONNOTIFY);
    auto* notify = query<IDirectSoundNotify>(b, IID_IDirectSoundNotify);
    HANDLE unreachable = newEvent();
    DSBPOSITIONNOTIFY beyond{100, unreachable};
    EXPECT_EQ(DSERR_INVALIDPARAM, notify->SetNotificationPositions(1, &beyond));
    fake_.setStrictNotifyOffsets(false);
    EXPECT_EQ(DS_OK, notify->SetNotificationPositions(1, &beyond));
    b->Play(0, 0, DSBPLAY_LOOPING);
    fake_.advancePlay(b, 1000);
    EXPECT_FALSE(signalled(unreachable));
    notify->Release();
    b->Release();
    CloseHandle(unreachable);
}

TEST(FakeCaptureTest, CaptureWritesRunningSamplesRoundTheBuffer)
{
    FakeDirectSound fake;
    IDirectSoundCapture* capture = nullptr;
    ASSERT_EQ(DS_OK, DSndPlatform::createCapture8(nullptr, &capture, nullptr));
    WAVEFORMATEX format = mono8();
    DSCBUFFERDESC desc{sizeof(DSCBUFFERDESC), 0, 8, 0, &format, 0, nullptr};
    IDirectSoundCaptureBuffer* buffer = nullptr;
    ASSERT_EQ(DS_OK, capture->CreateCaptureBuffer(&desc, &buffer, nullptr));
    auto* notify = query<IDirectSoundNotify>(buffer, IID_IDirectSoundNotify);
    HANDLE at4 = newEvent(), stop = newEvent();
    DSBPOSITIONNOTIFY positions[] = {{4, at4}, {kStop, stop}};
    ASSERT_EQ(DS_OK, notify->SetNotificationPositions(2, positions));

    buffer->Start(DSCBSTART_LOOPING);
    fake.advanceCapture(10, [](size_t i) { return static_cast<BYTE>(i); });
    EXPECT_EQ((std::vector<BYTE>{8, 9, 2, 3, 4, 5, 6, 7}), fake.contents(buffer));
    DWORD captured = 0, read = 0;
    buffer->GetCurrentPosition(&captured, &read);
    EXPECT_EQ(2u, read);
    EXPECT_TRUE(signalled(at4));

    buffer->Stop();
    EXPECT_TRUE(signalled(stop));
    buffer->Start(0); // a one-shot capture ends by itself when the buffer is full
    fake.advanceCapture(20, [](size_t) { return BYTE{0x55}; });
    EXPECT_EQ(std::vector<BYTE>(8, 0x55), fake.contents(buffer));
    EXPECT_TRUE(signalled(stop));
    EXPECT_EQ(0u, fake.captureInfo(buffer).status);

    notify->Release();
    buffer->Release();
    capture->Release();
    EXPECT_EQ("", fake.leakReport());
    CloseHandle(at4);
    CloseHandle(stop);
}

// ---- Scripted results ----------------------------------------------------------------------

TEST_F(FakeDeviceTest, FailNthCountsEveryCallSinceTheStart)
{
    IDirectSoundBuffer8* first = buffer(16);
    fake_.failNth("IDirectSound8::CreateSoundBuffer", 3, DSERR_OUTOFMEMORY);
    IDirectSoundBuffer8* second = buffer(16);
    auto* out = reinterpret_cast<IDirectSoundBuffer*>(&fake_);
    EXPECT_EQ(DSERR_OUTOFMEMORY, create(16, 0, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(DS_OK, create(16, 0, &out));
    ASSERT_EQ(4u, fake_.bufferRequests().size());
    EXPECT_EQ(DSERR_OUTOFMEMORY, fake_.bufferRequests()[2].result);
    EXPECT_EQ(16u, fake_.bufferRequests()[2].desc.dwBufferBytes);
    for (IUnknown* b : {static_cast<IUnknown*>(first), static_cast<IUnknown*>(second), static_cast<IUnknown*>(out)})
        b->Release();
}

// ---- Reference accounting ------------------------------------------------------------------

TEST_F(FakeDeviceTest, TearOffInterfacesKeepTheBufferUntilTheLastRelease)
{
    IDirectSoundBuffer8* b = buffer(16, DSBCAPS_CTRL3D);
    auto* b3d = query<IDirectSound3DBuffer>(b, IID_IDirectSound3DBuffer);
    ASSERT_NE(nullptr, b3d);
    EXPECT_EQ(1, fake_.refCount(b));
    EXPECT_EQ(1, fake_.refCount(b3d));
    EXPECT_EQ(0u, b->Release());
    EXPECT_NO_THROW(fake_.contents(b3d));
    EXPECT_EQ(0u, b3d->Release());
    EXPECT_THROW(fake_.contents(b3d), std::logic_error);

    EXPECT_EQ(0u, b->Release());
    EXPECT_EQ(1, fake_.overReleases());
    EXPECT_EQ(E_UNEXPECTED, b->Play(0, 0, 0));
    EXPECT_EQ(1, fake_.deadObjectCalls());
    EXPECT_EQ(1, fake_.liveObjects()); // the device
}

TEST_F(FakeDeviceTest, ClosedNotificationEventsStopCountingEvenWhenTheirValueIsReused)
{
    const DWORD before = FakeDirectSound::processHandleCount();
    IDirectSoundBuffer8* b = buffer(100, DSBCAPS_CTRLPOSITIONNOTIFY);
    auto* notify = query<IDirectSoundNotify>(b, IID_IDirectSoundNotify);
    HANDLE first = newEvent(), second = newEvent();
    DSBPOSITIONNOTIFY positions[] = {{10, first}, {20, second}};
    ASSERT_EQ(DS_OK, notify->SetNotificationPositions(2, positions));
    EXPECT_EQ(2, fake_.openNotificationHandles());
    EXPECT_EQ(before + 2, FakeDirectSound::processHandleCount());

    CloseHandle(first);
    HANDLE reuse = newEvent(); // may well get the value just freed
    EXPECT_EQ(1, fake_.openNotificationHandles());
    CloseHandle(second);
    CloseHandle(reuse);
    EXPECT_EQ(0, fake_.openNotificationHandles());
    EXPECT_EQ(before, FakeDirectSound::processHandleCount());
    notify->Release();
    b->Release();
}

// ---- 3D and device state -------------------------------------------------------------------

TEST_F(FakeDeviceTest, DeferredChangesTakeEffectAtCommit)
{
    IDirectSoundBuffer* primary = nullptr;
    DSBUFFERDESC desc{sizeof(DSBUFFERDESC), DSBCAPS_PRIMARYBUFFER | DSBCAPS_CTRL3D, 0, 0, nullptr, GUID{}};
    ASSERT_EQ(DS_OK, device_->CreateSoundBuffer(&desc, &primary, nullptr));
    auto* listener = query<IDirectSound3DListener>(primary, IID_IDirectSound3DListener);
    IDirectSoundBuffer8* b = buffer(16, DSBCAPS_CTRL3D);
    auto* b3d = query<IDirectSound3DBuffer>(b, IID_IDirectSound3DBuffer);

    ASSERT_EQ(DS_OK, b3d->SetPosition(1, 2, 3, DS3D_DEFERRED));
    EXPECT_EQ(2.0f, fake_.parameters3D(b).vPosition.y);
    EXPECT_EQ(0.0f, fake_.parameters3D(b, fakeds::Stage::Applied).vPosition.y);
    EXPECT_EQ(1, fake_.pendingDeferred());
    ASSERT_EQ(DS_OK, listener->CommitDeferredSettings());
    EXPECT_EQ(2.0f, fake_.parameters3D(b3d, fakeds::Stage::Applied).vPosition.y);
    EXPECT_EQ(0, fake_.pendingDeferred());
    EXPECT_EQ(2.0f, fake_.callsTo("IDirectSound3DBuffer::SetPosition")[0].argFloat(1));

    for (IUnknown* i : {static_cast<IUnknown*>(b3d), static_cast<IUnknown*>(b),
                        static_cast<IUnknown*>(listener), static_cast<IUnknown*>(primary)})
        i->Release();
}

// ---- Entry functions and clock -------------------------------------------------------------

TEST(FakeSeamTest, WithoutAFakeThereIsNoSoundCard)
{
    IDirectSound8* sound = reinterpret_cast<IDirectSound8*>(&sound);
    EXPECT_EQ(DSERR_NODRIVER, DSndPlatform::createSound8(nullptr, &sound, nullptr));
    EXPECT_EQ(nullptr, sound);
    EXPECT_EQ(0u, DSndPlatform::milliseconds());
}

TEST(FakeSeamTest, ClockStepAdvancesAfterEachRead)
{
    FakeDirectSound fake;
    fake.setClock(100);
    fake.setClockStep(10);
    EXPECT_EQ(100u, DSndPlatform::milliseconds());
    EXPECT_EQ(110u, DSndPlatform::milliseconds());
    fake.advanceClock(1000);
    EXPECT_EQ(1120u, fake.clock());
}

} // namespace
