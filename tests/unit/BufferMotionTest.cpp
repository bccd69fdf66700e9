#include "BufferTestSupport.h"
#include <chrono>
#include <thread>

namespace
{
class BufferMotionTest : public BufferTest
{
protected:
    void SetUp() override
    {
        BufferTest::SetUp();
        fake.setClock(10000);
        // One second of 16-bit mono at 22050 Hz.
        data = rampData(pcmFormat(1, 22050, 16), 44100);
        ASSERT_EQ(1, buffer.setSndData2DS3Dbuff2(data.get(), &device));
        messages.clear();
    }

    // The motion thread runs on its own; wait until it has committed what we expect.
    bool waitForSourceAt(float x)
    {
        for (int i = 0; i < 500; i++)
        {
            auto sets = fake.buffer3DSets();
            if (!sets.empty() && sets.back().parameters.vPosition.x == x)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }

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

TEST_F(BufferMotionTest, StaticStartAppliesTheWorkingRecordsDeferredAndPlays)
{
    buffer.m_ds3dBuffer.vPosition = {2, 0, 0};
    ASSERT_EQ(1, buffer.sendAudStim3DSndStatic());
    EXPECT_EQ(1, buffer.m_nPlaying);
    auto sets = fake.buffer3DSets();
    ASSERT_FALSE(sets.empty());
    EXPECT_EQ(static_cast<DWORD>(DS3D_DEFERRED), sets.back().apply);
    EXPECT_EQ(1, fake.count("IDirectSound3DListener::CommitDeferredSettings"));
    EXPECT_EQ(2, fake.count("IDirectSoundBuffer::Play"));
    EXPECT_FLOAT_EQ(2.0f, fake.parameters3D(buffer.m_pDS3DBuffer, fakeds::Stage::Applied).vPosition.x);
}

TEST_F(BufferMotionTest, StaticStartReportsSetFailuresButNotACommitFailure)
{
    fake.failAlways("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC);
    EXPECT_EQ(1, buffer.sendAudStim3DSndStatic());
    EXPECT_TRUE(messages.texts().empty());

    fake.failAlways("IDirectSound3DBuffer::SetAllParameters", DSERR_GENERIC);
    EXPECT_EQ(0, buffer.sendAudStim3DSndStatic());
    fake.clearScript();
    fake.failAlways("IDirectSound3DListener::SetAllParameters", DSERR_GENERIC);
    EXPECT_EQ(0, buffer.sendAudStim3DSndStatic());
    EXPECT_EQ((std::vector<std::wstring>{L"Direct sound buffer 3D set all parameters error",
                                         L"Direct sound 3D listener set all parameters error"}),
              messages.texts());
}

TEST_F(BufferMotionTest, PositionsFollowElapsedTimeUntilThePlayLengthHasPassed)
{
    buffer.m_ds3dBuffer.vPosition = {0, 0, 0};
    buffer.m_ds3dBuffer.vVelocity = {2, 0, 0};
    buffer.m_ds3dListener.vPosition = {0, 1, 0};
    buffer.m_ds3dListener.vVelocity = {0, 0, -4};
    ASSERT_EQ(1, buffer.sendAudioStimDS3D());
    EXPECT_FLOAT_EQ(1000.0f, buffer.m_fPlayLength);
    EXPECT_FLOAT_EQ(10000.0f, buffer.m_moveStartTime);

    fake.advanceClock(500);
    ASSERT_TRUE(waitForSourceAt(1.0f));
    DS3DLISTENER listener = fake.listenerParameters(fakeds::Stage::Applied);
    EXPECT_FLOAT_EQ(1.0f, listener.vPosition.y);
    EXPECT_FLOAT_EQ(-2.0f, listener.vPosition.z);
    // The working records stay where the motion began.
    EXPECT_FLOAT_EQ(0.0f, buffer.m_ds3dBuffer.vPosition.x);

    fake.advanceClock(501);
    for (int i = 0; i < 500 && buffer.m_fElapsedTime < 1001.0f; i++)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_FLOAT_EQ(1001.0f, buffer.m_fElapsedTime);
    const int setsAtEnd = fake.count("IDirectSound3DBuffer::SetAllParameters");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(setsAtEnd, fake.count("IDirectSound3DBuffer::SetAllParameters")); // motion has ended
}

TEST_F(BufferMotionTest, StoppingRestartingOrDestroyingEndsTheMotion)
{
    buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd());
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd()); // the first motion is joined first
    ASSERT_EQ(1, buffer.stopAudioStimDS3D());
    EXPECT_EQ(0, buffer.m_nPlaying);
    const int sets = fake.count("IDirectSound3DBuffer::SetAllParameters");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(sets, fake.count("IDirectSound3DBuffer::SetAllParameters"));

    auto other = rampData(pcmFormat(1, 22050, 16), 44100);
    auto moving = std::make_unique<TestBuffer>();
    ASSERT_EQ(1, moving->setSndData2DS3Dbuff2(other.get(), &device));
    moving->m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, moving->sendAudioStimDS3D());
    moving.reset(); // with the clock standing still the motion would never end by itself
    EXPECT_EQ(0, fake.deadObjectCalls());
}

TEST_F(BufferMotionTest, MotionFailureEndsTheMotionWithItsMessage)
{
    buffer.m_ds3dBuffer.vVelocity = {1, 0, 0};
    ASSERT_EQ(1, buffer.sendAudioStimMovingSnd());
    fake.failAlways("IDirectSound3DListener::CommitDeferredSettings", DSERR_GENERIC);
    fake.advanceClock(10);
    for (int i = 0; i < 500 && messages.texts().empty(); i++)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ((std::vector<std::wstring>{L"Direct sound listener 3D set all parameters error"}), messages.texts());
}
}
