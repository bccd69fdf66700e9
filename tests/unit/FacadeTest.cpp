#include "BufferTestSupport.h"

namespace
{
BYTE counting(size_t index)
{
    return static_cast<BYTE>(index * 5 + 3);
}

class TestFacade : public CSndDataRecordPlaytyx
{
public:
    using CSndDataRecordPlayty2Rdsnd::m_pDSndCapturetyx;
};

class FacadeTest : public BufferTest
{
protected:
    void SetUp() override
    {
        BufferTest::SetUp();
        fake.setCaptureLead(0);
    }
    void TearDown() override
    {
        CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(NULL);
        BufferTest::TearDown();
    }

    unsigned long bytesHeld(TestFacade& facade) { return facade.m_pSndDataty->getDataSize(); }
};

TEST_F(FacadeTest, OwnsOnlyTheContainerItMadeItself)
{
    CSndDatatyx hosts;
    {
        TestFacade facade;
        facade.setSndData(&hosts);
        EXPECT_EQ(0, facade.m_bSndDataOwned);
        ASSERT_EQ(1, facade.recordBegin(NULL, 0));
        EXPECT_EQ(&hosts, facade.m_pSndDataty);
    } // the host's container outlives the facade

    TestFacade facade;
    ASSERT_EQ(1, facade.recordBegin(NULL, 0));
    EXPECT_EQ(1, facade.m_bSndDataOwned);
    facade.setSndData(NULL);
    EXPECT_EQ(nullptr, facade.m_pSndDataty);
    ASSERT_EQ(1, facade.recordBegin(NULL, 0));
    EXPECT_NE(nullptr, facade.m_pSndDataty);
    EXPECT_EQ(1, facade.m_bSndDataOwned);
}

TEST_F(FacadeTest, StandardRecordingReservesEightMillionBytesInTheDefaultFormat)
{
    TestFacade facade;
    ASSERT_EQ(1, facade.recordBegin(NULL, 0));
    auto requests = fake.captureBufferRequests();
    ASSERT_EQ(1u, requests.size());
    EXPECT_EQ(8000000u, requests[0].desc.dwBufferBytes);
    EXPECT_EQ(0u, requests[0].desc.dwFlags);
    EXPECT_EQ(44100u, requests[0].format.nSamplesPerSec);
    EXPECT_EQ(1, fake.count("IDirectSoundCaptureBuffer::Start"));
}

TEST_F(FacadeTest, UpdatesAddUpToExactlyWhatStopLeaves)
{
    TestFacade facade;
    ASSERT_EQ(1, facade.recordBegin(NULL, 0));
    EXPECT_EQ(0, facade.recordUpdate());
    EXPECT_EQ((std::vector<std::wstring>{L"No data for copying"}), messages.texts());

    fake.advanceCapture(4002, counting);
    ASSERT_EQ(1, facade.recordUpdate());
    fake.advanceCapture(1398, counting);
    ASSERT_EQ(1, facade.recordUpdate());
    fake.advanceCapture(600, counting);
    ASSERT_EQ(1, facade.recordStop()); // takes the last bytes itself
    EXPECT_EQ(1, facade.m_pSndDataty->hasAudioWaveData());
    ASSERT_EQ(6000u, bytesHeld(facade));
    const char* pData = facade.m_pSndDataty->getDataPointer();
    for (size_t i = 0; i < 6000; i++)
        ASSERT_EQ(counting(i), static_cast<BYTE>(pData[i])) << i;

    messages.clear();
    EXPECT_EQ(0, facade.recordUpdate()); // after the stop: silently nothing
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(FacadeTest, StopWithoutARecordingSaysWhatIsMissing)
{
    TestFacade facade;
    EXPECT_EQ(0, facade.recordStop());
    EXPECT_EQ((std::vector<std::wstring>{L"CSndDataRecordPlayty2Rdsnd1R::m_pSndDataty not initiated"}),
              messages.texts());
}

TEST_F(FacadeTest, DestroyingAnyFacadeTakesTheSharedCaptureObject)
{
    TestFacade first;
    ASSERT_EQ(1, first.recordBegin(NULL, 0));
    {
        TestFacade second;
        EXPECT_EQ(first.m_pDSndCapturetyx, second.m_pDSndCapturetyx);
    }
    EXPECT_EQ(nullptr, first.m_pDSndCapturetyx);
    ASSERT_EQ(1, first.recordBegin(NULL, 0)); // the next record call makes a fresh one
    EXPECT_NE(nullptr, first.m_pDSndCapturetyx);
}

TEST_F(FacadeTest, PlayChecksDataBeforeTheDevice)
{
    TestFacade facade;
    CSndDatatyx empty;
    facade.setSndData(&empty);
    EXPECT_EQ(0, facade.playBegin(NULL, 0, 0));
    auto data = rampData(pcmFormat(2, 22050, 16), 4000);
    facade.setSndData(data.get());
    EXPECT_EQ(0, facade.playBegin(NULL, 0, 0));
    EXPECT_EQ((std::vector<std::wstring>{L"No sound data for play", L"Please initialize sound card first!"}),
              messages.texts());
    facade.setSndData(NULL);
}

TEST_F(FacadeTest, PlayMakesTheBufferAnewEachTimeAndStopsFirst)
{
    auto data = rampData(pcmFormat(2, 22050, 16), 4000);
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device);
    TestFacade facade;
    facade.setSndData(data.get());
    CWnd window;
    ASSERT_EQ(1, facade.playBegin(&window, 7, 9));
    ASSERT_EQ(1, facade.playBegin(NULL, 0, 0));
    EXPECT_EQ(2, fake.count("IDirectSound8::CreateSoundBuffer"));
    EXPECT_EQ(1, fake.count("IDirectSoundBuffer::Stop"));
    EXPECT_EQ(0, facade.getPlayPosition());
    ASSERT_EQ(1, facade.playBeginLoop(NULL, 0, 0));
    EXPECT_EQ(static_cast<std::uintptr_t>(DSBPLAY_LOOPING), fake.callsTo("IDirectSoundBuffer::Play").back().args[2]);
    EXPECT_EQ(1, facade.playStop());
    EXPECT_EQ(0, facade.m_bPlayActive);
    facade.setSndData(NULL);
}

TEST_F(FacadeTest, ProPlayRefillsTheExistingBufferAndNeedsOne)
{
    auto data = rampData(pcmFormat(2, 22050, 16), 4000);
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device);
    TestFacade facade;
    facade.setSndData(data.get());
    EXPECT_EQ(0, facade.playBeginPro(NULL, 0));
    EXPECT_TRUE(messages.saw(L"Copy sound data to Direct sound buffer error"));

    ASSERT_EQ(1, facade.playBegin(NULL, 0, 0));
    auto refill = rampData(pcmFormat(2, 22050, 16), 4000);
    std::vector<char> reversed(refill->getDataPointer(), refill->getDataPointer() + 4000);
    std::reverse(reversed.begin(), reversed.end());
    data->setNewSndData(reversed.data(), 4000, pcmFormat(2, 22050, 16));
    ASSERT_EQ(1, facade.playBeginPro(NULL, 0));
    EXPECT_EQ(1, fake.count("IDirectSound8::CreateSoundBuffer"));
    std::vector<BYTE> held = fake.contents(fake.bufferRequests().back().buffer);
    EXPECT_EQ(std::vector<BYTE>(reversed.begin(), reversed.end()), held);
    facade.setSndData(NULL);
}

TEST_F(FacadeTest, StopWithoutABufferIsQuietlyDone)
{
    TestFacade facade;
    EXPECT_EQ(1, facade.playStop());
    EXPECT_TRUE(messages.texts().empty());
}
}
