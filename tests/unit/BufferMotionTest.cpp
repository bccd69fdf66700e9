#include "UnitFixtures.h"
#include <atomic>

namespace
{
class BufferMotionTest : public BufferTest
{
protected:
    void SetUp() override
    {
        BufferTest::SetUp();
        tap.setClock(10000);
        ASSERT_EQ(1, buffer.setSndData2DS3Dbuff2(data.get(), &device));
    }
    // A motion that ends by itself (time up, or a failure) finishes its thread.
    bool motionEnds() { return WaitForSingleObject(buffer.m_pMoveThread->m_hThread, kWait) == WAIT_OBJECT_0; }

    std::unique_ptr<CSndDatatyx> data = rampData(pcmFormat(1, 22050, 16), 44100); // one second
    TestBuffer buffer;
};

TEST_F(BufferMotionTest, MovingMeansAPositiveSumOfAllVelocities)
{
    buffer.m_ds3dBuffer.vVelocity = {1, 2, 3};
    const int alone = buffer.isMovingSound();
    buffer.m_ds3dListener.vVelocity = {-6, 0, 0}; // opposite velocities cancel
    EXPECT_EQ(std::make_pair(1, 0), std::make_pair(alone, buffer.isMovingSound()));
}

TEST_F(BufferMotionTest, StaticStartAppliesTheWorkingRecordsDeferredAndPlaysReportingSetFailuresOnly)
{
    buffer.m_ds3dBuffer.vPosition = {2, 0, 0};
    tap.clearLog();
    tap.failNext("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC); // not reported
    ASSERT_EQ(1, buffer.sendAudStim3DSndStatic());
    EXPECT_EQ((Names{"SetAllParameters(1)", "SetAllParameters(1)", "CommitDeferredSettings",
                                        "SetCurrentPosition(0)", "Play(0)", "Play(0)"}),
              sequence(tap, {"IDirectSound3DBuffer::SetAllParameters", "IDirectSound3DListener::SetAllParameters",
                             "IDirectSound3DListener::CommitDeferredSettings",
                             "IDirectSoundBuffer::SetCurrentPosition", "IDirectSoundBuffer::Play"}));
    EXPECT_FLOAT_EQ(2.0f, tap.buffer3DSets().back().parameters.vPosition.x);

    tap.failNext("IDirectSound3DBuffer::SetAllParameters", DSERR_GENERIC);
    EXPECT_EQ(0, buffer.sendAudStim3DSndStatic());
    tap.failNext("IDirectSound3DListener::SetAllParameters", DSERR_GENERIC);
    EXPECT_EQ(0, buffer.sendAudStim3DSndStatic());
    EXPECT_EQ((Texts{L"Direct sound buffer 3D set all parameters error",
                     L"Direct sound 3D listener set all parameters error"}), messages.texts());
}

// Every clock read moves the clock on by a quarter second, and the motion reads it once a step.
TEST_F(BufferMotionTest, PositionsFollowTheClockUntilThePlayLengthHasPassed)
{
    buffer.m_ds3dBuffer.vVelocity = {2, 0, 0}; // from where the platform placed it: the origin
    buffer.m_ds3dListener.vPosition = {0, 1, 0};
    buffer.m_ds3dListener.vVelocity = {0, 0, -4};
    tap.setClockStep(250);
    ASSERT_EQ(1, buffer.sendAudioStimDS3D());
    ASSERT_TRUE(motionEnds()); // at the first step past the play length
    EXPECT_FLOAT_EQ(1000.0f, buffer.m_fPlayLength);
    const auto sets = tap.buffer3DSets(); // the start's, then one a step: at 250, 500, 750 and 1000 ms
    ASSERT_EQ(5u, sets.size());
    for (size_t step = 0; step < sets.size(); step++)
        EXPECT_FLOAT_EQ(0.5f * step, sets[step].parameters.vPosition.x) << step;
    const auto listenerSets = tap.callsTo("IDirectSound3DListener::SetAllParameters");
    const auto* listener = reinterpret_cast<const DS3DLISTENER*>(listenerSets.at(2).data.data());
    EXPECT_FLOAT_EQ(1.0f, listener->vPosition.y);
    EXPECT_FLOAT_EQ(-2.0f, listener->vPosition.z);
    EXPECT_FLOAT_EQ(0.0f, buffer.m_ds3dBuffer.vPosition.x); // the working records stay where the motion began
}

TEST_F(BufferMotionTest, StoppingRestartingOrDestroyingEndsTheMotion)
{
    buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd());
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd()); // the first motion is joined first
    ASSERT_EQ(1, buffer.stopAudioStimDS3D());
    EXPECT_EQ(nullptr, buffer.m_pMoveThread); // joined

    auto moving = std::make_unique<TestBuffer>();
    ASSERT_EQ(1, moving->setSndData2DS3Dbuff2(data.get(), &device));
    moving->m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, moving->sendAudioStimDS3D());
    moving.reset(); // with the clock standing still the motion would never end by itself
    EXPECT_EQ(0, tap.deadObjectCalls());
}

// The host's thread reloads or releases the buffer at any moment of a motion step: the worker
// never calls through a released interface, and the play that follows joins it.
TEST_F(BufferMotionTest, ReloadOrReleaseDuringAMotionNeverReachesAReleasedInterface)
{
    for (int round = 0; round < 2000; round++)
    {
        buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
        ASSERT_EQ(1, buffer.sendAudioStimMovingSnd()) << round;
        for (volatile int spin = (round * 7919) % 40000; spin > 0; spin--)
        {
        }
        if (round % 2)
            buffer.releaseDirectSnd3DBuff();
        ASSERT_EQ(1, buffer.setSndData2DS3Dbuff2(data.get(), &device)) << round;
    }
    buffer.stopAudioStim();
    EXPECT_EQ(0, tap.deadObjectCalls());
    EXPECT_TRUE(messages.texts().empty());

    // The moment a bare repetition rarely meets: a release while a step is under way waits for it.
    std::atomic<int> step{0}; // 1 while the step's call runs, 2 once it is over
    buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd());
    tap.answer("IDirectSound3DBuffer::SetAllParameters", [&step](const dstap::Call&) {
        step = 1;
        Sleep(100);
        step = 2;
        return DS_OK;
    });
    for (DWORD waited = 0; step != 1 && waited < kWait; waited++)
        Sleep(1);
    ASSERT_EQ(1, step.load());
    buffer.releaseDirectSnd3DBuff();
    EXPECT_EQ(2, step.load());
}

// A message box with an owner talks to the owner's thread while it is up. A stop from that
// thread keeps answering it; a stop that only waited and the box would wait for each other.
HWND g_owner;
HANDLE g_boxUp;
LRESULT g_ownerAnswered;
int CALLBACK boxTalkingToItsOwner(LPCTSTR, UINT, UINT)
{
    SetEvent(g_boxUp);
    DWORD_PTR result = 0;
    g_ownerAnswered = SendMessageTimeoutW(g_owner, WM_NULL, 0, 0, SMTO_NORMAL, 3000, &result);
    return IDOK;
}

TEST_F(BufferMotionTest, StopKeepsAnsweringTheWorkersMessageBox)
{
    g_owner = CreateWindowW(L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, NULL, NULL, NULL);
    g_boxUp = CreateEventW(NULL, TRUE, FALSE, NULL);
    const AFX_MSGBOX_ANSWERER previous = AfxSetMessageBoxAnswerer(boxTalkingToItsOwner);
    buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd());
    tap.failAlways("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC);
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(g_boxUp, kWait));
    buffer.stopAudioStim();
    AfxSetMessageBoxAnswerer(previous);
    EXPECT_NE(0, g_ownerAnswered);
    CloseHandle(g_boxUp);
    DestroyWindow(g_owner);
}

TEST_F(BufferMotionTest, MotionFailureEndsTheMotionWithItsMessage)
{
    buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd());
    tap.failAlways("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC);
    ASSERT_TRUE(motionEnds());
    EXPECT_EQ((Texts{L"Direct sound listener 3D set all parameters error"}), messages.texts());
}
}
