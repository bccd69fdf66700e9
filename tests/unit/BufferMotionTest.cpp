#include "BufferTestSupport.h"
#include <chrono>
#include <thread>

namespace
{
const DWORD kWait = 5000; // generous: the motion thread runs on its own

class BufferMotionTest : public BufferTest
{
protected:
    void SetUp() override
    {
        BufferTest::SetUp();
        tap.setClock(10000);
        data = rampData(pcmFormat(1, 22050, 16), 44100); // one second
        ASSERT_EQ(1, buffer.setSndData2DS3Dbuff2(data.get(), &device));
        messages.clear();
    }
    // The motion thread runs on its own: wait until it has set the source where expected.
    bool waitForSourceAt(float x)
    {
        for (DWORD waited = 0; waited < kWait; waited += 2)
        {
            auto sets = tap.buffer3DSets();
            if (!sets.empty() && sets.back().parameters.vPosition.x == x)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }
    // A motion that ends by itself (time up, or a failure) finishes its thread.
    bool motionEnds() { return WaitForSingleObject(buffer.m_pMoveThread->m_hThread, kWait) == WAIT_OBJECT_0; }

    std::unique_ptr<CSndDatatyx> data;
    TestBuffer buffer;
};

TEST_F(BufferMotionTest, MovingMeansAPositiveSumOfAllVelocities)
{
    buffer.m_ds3dBuffer.vVelocity = {1, 2, 3};
    buffer.m_ds3dListener.vVelocity = {0, 0, 0};
    EXPECT_EQ(1, buffer.isMovingSound());
    buffer.m_ds3dBuffer.vVelocity = {-1, 0, 0};
    EXPECT_EQ(0, buffer.isMovingSound());
    buffer.m_ds3dListener.vVelocity = {1, 0, 0}; // opposite velocities cancel
    EXPECT_EQ(0, buffer.isMovingSound());
}

TEST_F(BufferMotionTest, StaticStartAppliesTheWorkingRecordsDeferredAndPlaysReportingSetFailuresOnly)
{
    buffer.m_ds3dBuffer.vPosition = {2, 0, 0};
    tap.clearLog();
    tap.failNext("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC); // not reported
    ASSERT_EQ(1, buffer.sendAudStim3DSndStatic());
    EXPECT_EQ((std::vector<std::string>{"SetAllParameters(1)", "SetAllParameters(1)", "CommitDeferredSettings",
                                        "SetCurrentPosition(0)", "Play(0)", "Play(0)"}),
              sequence(tap, {"IDirectSound3DBuffer::SetAllParameters", "IDirectSound3DListener::SetAllParameters",
                             "IDirectSound3DListener::CommitDeferredSettings",
                             "IDirectSoundBuffer::SetCurrentPosition", "IDirectSoundBuffer::Play"}));
    EXPECT_FLOAT_EQ(2.0f, tap.buffer3DSets().back().parameters.vPosition.x);
    EXPECT_TRUE(messages.texts().empty());

    tap.failNext("IDirectSound3DBuffer::SetAllParameters", DSERR_GENERIC);
    EXPECT_EQ(0, buffer.sendAudStim3DSndStatic());
    tap.failNext("IDirectSound3DListener::SetAllParameters", DSERR_GENERIC);
    EXPECT_EQ(0, buffer.sendAudStim3DSndStatic());
    EXPECT_EQ((std::vector<std::wstring>{L"Direct sound buffer 3D set all parameters error",
                                         L"Direct sound 3D listener set all parameters error"}),
              messages.texts());
}

TEST_F(BufferMotionTest, PositionsFollowTheClockUntilThePlayLengthHasPassed)
{
    buffer.m_ds3dBuffer.vPosition = {0, 0, 0};
    buffer.m_ds3dBuffer.vVelocity = {2, 0, 0};
    buffer.m_ds3dListener.vPosition = {0, 1, 0};
    buffer.m_ds3dListener.vVelocity = {0, 0, -4};
    ASSERT_EQ(1, buffer.sendAudioStimDS3D());
    EXPECT_FLOAT_EQ(1000.0f, buffer.m_fPlayLength);

    tap.advanceClock(500);
    ASSERT_TRUE(waitForSourceAt(1.0f));
    DS3DLISTENER listener = {};
    const std::vector<BYTE> set = tap.callsTo("IDirectSound3DListener::SetAllParameters").back().data;
    memcpy(&listener, set.data(), std::min(set.size(), sizeof(listener)));
    EXPECT_FLOAT_EQ(1.0f, listener.vPosition.y);
    EXPECT_FLOAT_EQ(-2.0f, listener.vPosition.z);
    EXPECT_FLOAT_EQ(0.0f, buffer.m_ds3dBuffer.vPosition.x); // the working records stay where the motion began

    tap.advanceClock(500);
    ASSERT_TRUE(waitForSourceAt(2.0f)); // the last step still inside the play length
    tap.advanceClock(1);
    EXPECT_TRUE(motionEnds());
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

TEST_F(BufferMotionTest, MotionFailureEndsTheMotionWithItsMessage)
{
    buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd());
    tap.failAlways("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC);
    ASSERT_TRUE(motionEnds());
    EXPECT_EQ((std::vector<std::wstring>{L"Direct sound listener 3D set all parameters error"}), messages.texts());
}
}
