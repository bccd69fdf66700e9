#include "UnitFixtures.h"
#include <algorithm>

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
    void SetUp() override { BufferTest::SetUp(); CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device); }
    void TearDown() override { CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(NULL); }

    std::unique_ptr<CSndDatatyx> data = rampData(pcmFormat(2, 22050, 16), 4000);
};

TEST_F(FacadeTest, OwnsOnlyTheContainerItMadeAndAnyFacadeTakesTheSharedCaptureObject)
{
    CSndDatatyx hosts;
    {
        TestFacade facade;
        facade.setSndData(&hosts);
        ASSERT_EQ(1, facade.recordBegin(NULL, 0));
        EXPECT_EQ(0, facade.m_bSndDataOwned); // the host's container outlives the facade
        TestFacade().playStop();
        EXPECT_EQ(nullptr, TestFacade::m_pDSndCapturetyx);
    }
    TestFacade facade;
    ASSERT_EQ(1, facade.recordBegin(NULL, 0)); // a fresh capture object, and a container of its own
    EXPECT_NE(nullptr, TestFacade::m_pDSndCapturetyx);
    EXPECT_EQ(1, facade.m_bSndDataOwned);
}

TEST_F(FacadeTest, RecordingReservesEightMillionBytesAndUpdatesAddUpToWhatStopLeaves)
{
    TestFacade facade;
    ASSERT_EQ(1, facade.recordBegin(NULL, 0));
    EXPECT_EQ(8000000u, tap.captureBufferRequests().at(0).desc.dwBufferBytes);
    EXPECT_EQ(1, tap.count("IDirectSoundCaptureBuffer::Start"));

    auto ring = scriptCapture(tap, 3000, counting);
    EXPECT_EQ(0, facade.recordUpdate());
    for (size_t bytes : {1002, 2998}) // a half block waits; the next read crosses the ring's end
    {
        ring->advance(bytes);
        ASSERT_EQ(1, facade.recordUpdate());
    }
    EXPECT_EQ(1, facade.playBegin(NULL, 0, 0)); // what an open recording holds plays already
    ring->advance(1000);
    ASSERT_EQ(1, facade.recordStop()); // takes the last bytes itself
    ASSERT_EQ(5000u, facade.m_pSndDataty->getDataSize());
    for (size_t i = 0; i < 5000; i++)
        ASSERT_EQ(counting(i), static_cast<BYTE>(facade.m_pSndDataty->getDataPointer()[i])) << i;
    EXPECT_EQ(0, ring->openLocks);
    EXPECT_EQ(0, facade.recordUpdate()); // after the stop: silently nothing
    EXPECT_EQ((Texts{L"No data for copying"}), messages.texts());
}

TEST_F(FacadeTest, RefusalsSayWhatIsMissing)
{
    TestFacade facade;
    EXPECT_EQ(0, facade.recordStop());
    EXPECT_EQ(1, facade.playStop()); // no buffer to stop is no error
    facade.setSndData(data.get());
    EXPECT_EQ(0, facade.playBeginPro(NULL, 0)); // it refills the buffer an earlier play made
    CSndDatatyx empty;
    facade.setSndData(&empty);
    EXPECT_EQ(0, facade.playBegin(NULL, 0, 0));
    facade.setSndData(data.get());
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(NULL);
    EXPECT_EQ(0, facade.playBegin(NULL, 0, 0)); // the data are checked before the device
    EXPECT_EQ((Texts{L"CSndDataRecordPlayty2Rdsnd1R::m_pSndDataty not initiated",
                     L"Copy sound data to Direct sound buffer error", L"No sound data for play",
                     L"Please initialize sound card first!"}), messages.texts());
}

TEST_F(FacadeTest, EveryPlayStopsFirstAndRewindsBeforePlayingAndMakesTheBufferAnewUnlessRefilled)
{
    TestFacade facade;
    facade.setSndData(data.get());
    CWnd window;
    ASSERT_EQ(1, facade.playBegin(&window, 7, 9));
    ASSERT_EQ(1, facade.playBegin(NULL, 0, 0));
    ASSERT_EQ(1, facade.playBeginLoop(NULL, 0, 0));
    // The buffer played is the one the log saw (a request's out-pointer is not kept).
    const void* played = tap.callsTo("IDirectSoundBuffer::Play").back().object;
    std::vector<char> reversed(data->getDataPointer(), data->getDataPointer() + 4000);
    std::reverse(reversed.begin(), reversed.end());
    data->setNewSndData(reversed.data(), 4000, pcmFormat(2, 22050, 16));
    ASSERT_EQ(1, facade.playBeginPro(NULL, 0));
    EXPECT_EQ(3, tap.count("IDirectSound8::CreateSoundBuffer"));
    EXPECT_EQ((Names{"SetCurrentPosition(0)", "Play(0)", "Stop", "SetCurrentPosition(0)", "Play(0)", "Stop",
                     "SetCurrentPosition(0)", "Play(1)", "Stop", "SetCurrentPosition(0)", "Play(0)"}),
              starts(tap));
    EXPECT_EQ(std::vector<BYTE>(reversed.begin(), reversed.end()), tap.contents(played));
}
}
