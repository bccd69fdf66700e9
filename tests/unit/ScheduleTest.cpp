// The scheduler through the tap, with the play cursor in the test's hands: stimuli mixed at
// their frames (overlapping ones clipped, one across the buffer's end), frames counted across
// wraps, refusals, cancelling, clean-up; and the counter-to-frame mapping on its own.

#include "UnitFixtures.h"
#include "schedule/StreamClockty.h"

#include <atomic>
#include <cstring>

namespace
{
const DWORD kRate = 8000;
const DWORD kBufferFrames = kRate; // a second: more than four leads of 50 ms
const unsigned long kLeadMs = 50;
const LONGLONG kLeadFrames = kRate * kLeadMs / 1000;

class TestSchedule : public CDirectSndSchedulety
{
public:
    using CDirectSndSchedulety::m_pDSBuffer;
};

class ScheduleTest : public DeviceTest
{
protected:
    void SetUp() override
    {
        openDevice();
        bringLevel(device, DSSCL_PRIORITY);
        tap.answer("IDirectSoundBuffer::GetCurrentPosition", [this](const dstap::Call& call) {
            for (size_t k = 0; k < 2; k++) // play and write cursor
                if (DWORD* cursor = call.out<DWORD>(k))
                    *cursor = playCursor;
            return DS_OK;
        });
        heldBefore = tap.liveObjects();
    }

    // Moves the play cursor to a stream frame in steps shorter than the lead, as a real
    // cursor moves, each read by the schedule and refilled ahead of by its worker.
    void playUntil(LONGLONG frame)
    {
        for (LONGLONG at = schedule.getPlayFrame(); at < frame;) {
            at = std::min(frame, at + kLeadFrames / 2);
            playCursor = static_cast<DWORD>(at % kBufferFrames) * 2;
            ASSERT_EQ(at, schedule.getPlayFrame());
            for (int waited = 0; schedule.getEarliestFrame() < at + kLeadFrames && waited < 2000; waited++)
                Sleep(1);
            ASSERT_EQ(at + kLeadFrames, schedule.getEarliestFrame());
        }
    }

    int scheduleConstant(short value, size_t frames, LONGLONG at)
    {
        std::vector<short> pcm(frames, value);
        CSndDatatyx data;
        data.setNewSndData(reinterpret_cast<char*>(pcm.data()), static_cast<unsigned long>(2 * frames), pcmFormat(1, kRate, 16));
        return schedule.scheduleStim(&data, at);
    }

    short sampleAt(DWORD bufferFrame)
    {
        const std::vector<BYTE> memory = tap.contents(schedule.m_pDSBuffer);
        short value;
        std::memcpy(&value, &memory.at(bufferFrame * 2), 2);
        return value;
    }

    TestSchedule schedule;
    std::atomic<DWORD> playCursor{0};
    int heldBefore = 0;
};
}

TEST_F(ScheduleTest, MixesStimuliAtTheirFramesAcrossTheBufferEnd)
{
    ASSERT_EQ(1, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), kLeadMs));
    EXPECT_EQ(kLeadFrames, schedule.getEarliestFrame());
    EXPECT_EQ(kBufferFrames * 2, tap.bufferRequests().back().desc.dwBufferBytes);

    const int first = scheduleConstant(1000, 100, 1000);
    EXPECT_GT(first, 0);
    EXPECT_GT(scheduleConstant(32000, 100, 1050), first); // overlaps the first by 50 frames
    EXPECT_GT(scheduleConstant(-5, 200, kBufferFrames - 100), 0);
    playUntil(kBufferFrames + 300);
    EXPECT_EQ(kBufferFrames + 300, schedule.getPlayFrame());

    struct Expected
    {
        DWORD bufferFrame;
        short value;
    } const expected[] = {{999, 0},     {1000, 1000},  {1049, 1000},   {1050, 32767}, {1099, 32767}, {1100, 32000},
                          {1149, 32000}, {1150, 0},    {7899, 0},      {7900, -5},    {7999, -5},    {0, -5},
                          {99, -5},      {100, 0}};
    for (const Expected& row : expected)
        EXPECT_EQ(row.value, sampleAt(row.bufferFrame)) << "buffer frame " << row.bufferFrame;
}

TEST_F(ScheduleTest, RefusesWhatCannotPlayAsAskedAndCancelsWhatIsPending)
{
    EXPECT_EQ(0, scheduleConstant(100, 10, 1000)); // not open
    ASSERT_EQ(1, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), kLeadMs));
    const LONGLONG earliest = schedule.getEarliestFrame();
    EXPECT_EQ(0, scheduleConstant(100, 10, earliest - 1));
    EXPECT_EQ(0, schedule.scheduleStim(nullptr, earliest));
    EXPECT_EQ(0, schedule.scheduleStim(std::make_unique<CSndDatatyx>().get(), earliest)); // empty
    EXPECT_EQ(0, schedule.scheduleStim(rampData(pcmFormat(2, kRate, 16), 80).get(), earliest));

    const int cancelled = scheduleConstant(7000, 50, 2000);
    ASSERT_GT(cancelled, 0);
    EXPECT_EQ(1, schedule.cancelStim(cancelled));
    EXPECT_EQ(0, schedule.cancelStim(cancelled));
    EXPECT_GT(scheduleConstant(3000, 50, earliest), 0); // at the earliest frame exactly
    playUntil(2100);
    EXPECT_EQ(3000, sampleAt(static_cast<DWORD>(earliest)));
    EXPECT_EQ(0, sampleAt(2000));
    EXPECT_GT(scheduleConstant(1, 1000, 5000), 0); // pending when the schedule closes
}

TEST_F(ScheduleTest, OpeningRefusesBadRequestsAndClosingReleasesEverything)
{
    EXPECT_EQ(0, schedule.openSchedule(nullptr, pcmFormat(1, kRate, 16), kLeadMs));
    EXPECT_EQ(0, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), 5));
    EXPECT_EQ(0, schedule.openSchedule(&device, pcmFormat(1, kRate, 24), kLeadMs));
    EXPECT_EQ(0, tap.count("IDirectSound8::CreateSoundBuffer"));
    EXPECT_EQ(-1, schedule.timeToFrame(0));

    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    EXPECT_EQ(0, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), kLeadMs));
    EXPECT_EQ(heldBefore, tap.liveObjects()) << tap.leakReport();

    ASSERT_EQ(1, schedule.openSchedule(&device, pcmFormat(1, kRate, 8), kLeadMs));
    ASSERT_EQ(1, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), kLeadMs)); // reopening replaces
    EXPECT_EQ(heldBefore + 1, tap.liveObjects()) << tap.leakReport();
    EXPECT_EQ(1, schedule.closeSchedule());
    EXPECT_EQ(heldBefore, tap.liveObjects()) << tap.leakReport();
    EXPECT_EQ(1, schedule.closeSchedule());
}

// Readings lag the true position by up to one mixer period of 80 frames; the mapping follows
// the most advanced of them and inverts itself.
TEST(StreamClock, FollowsTheMostAdvancedReadingsAndInvertsItself)
{
    const LONGLONG hz = 1000000; // counter ticks per second
    CStreamClockty clock;
    clock.restart(hz, kRate, 5000);
    EXPECT_FALSE(clock.isKnown());
    const LONGLONG latency = 123; // frames the stream had played when the counter read 5000
    for (LONGLONG tick = 5000; tick < 5000 + hz; tick += 1700) {
        const LONGLONG trueFrame = latency + (tick - 5000) * kRate / hz;
        clock.observe(tick, trueFrame / 80 * 80);
    }
    ASSERT_TRUE(clock.isKnown());
    for (LONGLONG tick : {LONGLONG(5000), 5000 + hz / 3, 5000 + 2 * hz}) {
        const LONGLONG trueFrame = latency + (tick - 5000) * kRate / hz;
        EXPECT_NEAR(static_cast<double>(trueFrame), static_cast<double>(clock.frameAt(tick)), 1.0);
        EXPECT_NEAR(static_cast<double>(tick), static_cast<double>(clock.counterAt(clock.frameAt(tick))),
                    static_cast<double>(hz / kRate));
    }
}

// A stall of the output delays the stream for good: once every reading of a tenth of a second
// lags, the mapping follows them. A shorter lag, a mixer late once, moves nothing.
TEST(StreamClock, FollowsAStalledStreamButNotABriefLag)
{
    const LONGLONG hz = 1000000;
    const LONGLONG stall = kRate * 30 / 1000;
    CStreamClockty clock;
    clock.restart(hz, kRate, 0);
    LONGLONG tick = 0;
    auto observeFor = [&](LONGLONG ticks, LONGLONG lag) {
        for (const LONGLONG end = tick + ticks; tick < end; tick += 1700)
            clock.observe(tick, (tick * kRate / hz - lag) / 80 * 80);
    };
    observeFor(hz, 0);
    observeFor(hz / 20, stall);
    EXPECT_NEAR(static_cast<double>(tick * kRate / hz), static_cast<double>(clock.frameAt(tick)), 1.0);
    observeFor(hz / 5, stall);
    EXPECT_NEAR(static_cast<double>(tick * kRate / hz - stall), static_cast<double>(clock.frameAt(tick)), 1.0);
}
