// The scheduler through the tap, with the cursors in the test's hands: stimuli mixed at their
// frames (overlapping ones clipped, one across the buffer's end), frames counted across wraps,
// the lead kept beyond a write cursor that runs ahead, a late wake-up counted and reported,
// refusals, cancelling, clean-up; and the counter-to-frame mapping on its own.

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
            if (DWORD* play = call.out<DWORD>(0))
                *play = playCursor;
            if (DWORD* write = call.out<DWORD>(1))
                *write = (playCursor + 2 * writeAhead) % (2 * kBufferFrames);
            return DS_OK;
        });
        heldBefore = tap.liveObjects();
    }

    // Moves the play cursor to a stream frame in steps shorter than the lead, as a real
    // cursor moves; the earliest frame must stand the lead beyond the write cursor each time.
    void playUntil(LONGLONG frame, LONGLONG leadFrames = kLeadFrames)
    {
        for (LONGLONG at = schedule.getPlayFrame(); at < frame;) {
            at = std::min(frame, at + leadFrames / 2);
            moveTo(at);
            ASSERT_EQ(at, schedule.getPlayFrame());
            ASSERT_EQ(at + writeAhead + leadFrames, schedule.getEarliestFrame());
        }
    }

    void moveTo(LONGLONG frame) { playCursor = static_cast<DWORD>(frame % kBufferFrames) * 2; }

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
    std::atomic<DWORD> writeAhead{0}; // frames the write cursor runs ahead of the play cursor
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

    struct Expected
    {
        DWORD bufferFrame;
        short value;
    };
    auto expectSamples = [this](std::initializer_list<Expected> rows) {
        for (const Expected& row : rows)
            EXPECT_EQ(row.value, sampleAt(row.bufferFrame)) << "buffer frame " << row.bufferFrame;
    };
    playUntil(900); // written, not yet played
    expectSamples({{999, 0}, {1000, 1000}, {1049, 1000}, {1050, 32767}, {1099, 32767}, {1100, 32000}, {1149, 32000},
                   {1150, 0}});
    playUntil(kBufferFrames - 200);
    expectSamples({{7899, 0}, {7900, -5}, {7999, -5}, {0, -5}, {99, -5}, {100, 0}});
    playUntil(kBufferFrames + 300);
    EXPECT_EQ(kBufferFrames + 300, schedule.getPlayFrame());
    // Played stimuli are silenced, so a lap skipped later cannot sound them again.
    expectSamples({{1000, 0}, {1149, 0}, {7900, 0}});
}

// A write cursor 30 ms ahead of the play cursor and a 10 ms lead: every stimulus asked for at
// the earliest frame is written whole, at its frame, beyond what the platform has committed.
TEST_F(ScheduleTest, KeepsTheLeadBeyondAWriteCursorThatRunsAhead)
{
    const LONGLONG leadFrames = kRate * 10 / 1000;
    writeAhead = kRate * 30 / 1000;
    ASSERT_EQ(1, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), 10));
    EXPECT_EQ(writeAhead, schedule.getWriteAheadFrames());
    EXPECT_EQ(writeAhead + leadFrames, schedule.getEffectiveLeadFrames());

    for (short k = 1; k <= 5; k++) {
        const LONGLONG at = schedule.getEarliestFrame();
        const int id = scheduleConstant(k, 20, at);
        ASSERT_GT(id, 0);
        playUntil(schedule.getPlayFrame() + leadFrames / 2, leadFrames); // written, not yet played
        EXPECT_EQ(CDirectSndSchedulety::kStimOnTime, schedule.getStimState(id)) << k;
        const DWORD frame = static_cast<DWORD>(at % kBufferFrames);
        EXPECT_EQ(0, sampleAt(frame - 1)) << k;
        EXPECT_EQ(k, sampleAt(frame)) << k;
        playUntil(schedule.getPlayFrame() + 2 * writeAhead, leadFrames);
    }
    EXPECT_EQ(0, schedule.getSkippedFrames());
    EXPECT_EQ(0, schedule.getLateStimCount());
}

// The cursors jump past what was written, as after a worker that woke too late: the frames in
// between are counted, the stimulus that fell there is reported late and what remained of it
// still plays, and the next one lands where it was asked for.
TEST_F(ScheduleTest, ALateWakeUpIsCountedAndItsStimulusReportedLate)
{
    ASSERT_EQ(1, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), kLeadMs));
    const int lost = scheduleConstant(700, 100, 600);
    const int next = scheduleConstant(900, 100, 2000);
    EXPECT_EQ(CDirectSndSchedulety::kStimPending, schedule.getStimState(lost));

    moveTo(650); // the write cursor too: frames 400 to 650 were never written
    EXPECT_EQ(650 + kLeadFrames, schedule.getEarliestFrame());
    EXPECT_EQ(250, schedule.getSkippedFrames());
    EXPECT_EQ(CDirectSndSchedulety::kStimLate, schedule.getStimState(lost));
    EXPECT_EQ(1, schedule.getLateStimCount());
    EXPECT_EQ(0, sampleAt(649));
    EXPECT_EQ(700, sampleAt(650));

    playUntil(1900);
    EXPECT_EQ(CDirectSndSchedulety::kStimOnTime, schedule.getStimState(next));
    EXPECT_EQ(0, sampleAt(1999));
    EXPECT_EQ(900, sampleAt(2000));
    EXPECT_EQ(250, schedule.getSkippedFrames());
    EXPECT_EQ(CDirectSndSchedulety::kStimUnknown, schedule.getStimState(next + 1));
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
    playUntil(200);
    EXPECT_EQ(3000, sampleAt(static_cast<DWORD>(earliest)));
    playUntil(1700);
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
    writeAhead = kBufferFrames / 2; // a lead beyond it would not fit in half the buffer
    EXPECT_EQ(0, schedule.openSchedule(&device, pcmFormat(1, kRate, 16), kLeadMs));
    EXPECT_EQ(DSERR_UNSUPPORTED, schedule.getLastResult());
    EXPECT_EQ(heldBefore, tap.liveObjects()) << tap.leakReport();
    writeAhead = 0;

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
