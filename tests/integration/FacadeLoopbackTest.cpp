// Two record/play objects at once, end to end on the loopback: one plays a chirp from its
// container while the other records into its own, collecting every 100 ms. A chirp never
// repeats itself, so a piece of the recording that was lost or handed over twice shifts
// everything after it against the chirp that was played.

#include "DeviceHarness.h"
#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

using namespace dsty_test;

namespace
{
constexpr unsigned kRate = 44100;
constexpr unsigned kFrameBytes = 4;  // 16-bit stereo, the capture device's default format
constexpr double kChirpSeconds = 2.0;
constexpr double kStartHz = 300.0, kEndHz = 3000.0, kLevelDbfs = -6.0;
constexpr double kPi = 3.14159265358979323846;

double chirpHzAt(double seconds)
{
    return kStartHz + (kEndHz - kStartHz) * seconds / kChirpSeconds;
}

// Stereo, both channels alike.
std::vector<int16_t> chirp()
{
    const size_t frames = static_cast<size_t>(kChirpSeconds * kRate);
    const double peak = 32767.0 * dbfsToAmplitude(kLevelDbfs);
    const double sweep = (kEndHz - kStartHz) / kChirpSeconds;
    std::vector<int16_t> pcm(frames * 2);
    for (size_t i = 0; i < frames; ++i)
    {
        const double t = static_cast<double>(i) / kRate;
        const auto value = static_cast<int16_t>(std::lround(peak * std::sin(2.0 * kPi * (kStartHz * t + sweep * t * t / 2.0))));
        pcm[2 * i] = pcm[2 * i + 1] = value;
    }
    return pcm;
}

// Normalized correlation of `count` frames of the left channels, from `a` in one and `b` in the other.
double correlation(PcmView one, size_t a, PcmView other, size_t b, size_t count)
{
    double both = 0.0, first = 0.0, second = 0.0;
    for (size_t i = 0; i < count; ++i)
    {
        const double x = one.samples[(a + i) * one.channels], y = other.samples[(b + i) * other.channels];
        both += x * y;
        first += x * x;
        second += y * y;
    }
    return first > 0.0 && second > 0.0 ? both / std::sqrt(first * second) : 0.0;
}

// The recording frame at which the chirp's frame 0 lies: the best match of its first
// 4096 frames within `search` frames of `guess`.
long long chirpStart(PcmView recorded, PcmView reference, long long guess, long long search)
{
    long long best = -1;
    double bestMatch = 0.0;
    for (long long at = std::max(0LL, guess - search); at <= guess + search; ++at)
    {
        if (static_cast<size_t>(at) + 4096 > recorded.frames)
            break;
        const double match = correlation(recorded, static_cast<size_t>(at), reference, 0, 4096);
        if (match > bestMatch)
            bestMatch = match, best = at;
    }
    return best;
}

// What one recordUpdate returned and how many bytes it added to the container.
struct Collection
{
    int result;
    unsigned long added;
};

class FacadeLoopback : public DeviceTest
{
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
        CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device);
        const std::vector<int16_t> pcm = chirp();
        ASSERT_EQ(stimulus.setNewSndData(reinterpret_cast<const char*>(pcm.data()),
                                         static_cast<unsigned long>(pcm.size() * 2), pcmFormat(kRate, 2)),
                  1);
    }

    void TearDown() override
    {
        CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(nullptr);
        DeviceTest::TearDown();
    }

    void collect(CSndDataRecordPlaytyx& recorder)
    {
        const unsigned long before = recorded.getDataSize();
        const int result = recorder.recordUpdate();
        collections.push_back({result, recorded.getDataSize() - before});
    }

    // A process's first capture delivers nothing for most of a second.
    void awaitFirstSound(CSndDataRecordPlaytyx& recorder)
    {
        const LONGLONG deadline = performanceCounter() + static_cast<LONGLONG>(3.0 / counterSeconds(0, 1));
        while (recorded.getDataSize() == 0 && performanceCounter() < deadline)
        {
            Sleep(10);
            collect(recorder);
        }
        ASSERT_GT(recorded.getDataSize(), 0u) << "the capture delivered nothing";
    }

    void collectFor(CSndDataRecordPlaytyx& recorder, double seconds)
    {
        const LONGLONG end = performanceCounter() + static_cast<LONGLONG>(seconds / counterSeconds(0, 1));
        while (performanceCounter() < end)
        {
            Sleep(100);
            collect(recorder);
        }
    }

    // The stop collects once more itself; what that added is kept apart.
    void stop(CSndDataRecordPlaytyx& recorder)
    {
        const unsigned long before = recorded.getDataSize();
        ASSERT_EQ(recorder.recordStop(), 1);
        stopAdded = recorded.getDataSize() - before;
    }

    // Frames at which one collection's block ends and the next begins.
    std::vector<size_t> joins() const
    {
        std::vector<size_t> at;
        unsigned long bytes = 0;
        for (const Collection& c : collections)
            if (c.added > 0)
                at.push_back((bytes += c.added) / kFrameBytes);
        return at;
    }

    CSndDatatyx stimulus, recorded;
    std::vector<Collection> collections;
    unsigned long stopAdded = 0;
};
}

TEST_F(FacadeLoopback, RecordingHoldsThePlayedChirpWholeInOrderAndAtItsLevel)
{
    // Both live to the end of the test: they share the one capture object, which goes with either.
    CSndDataRecordPlaytyx player, recorder;
    player.setSndData(&stimulus);
    recorder.setSndData(&recorded);
    ASSERT_EQ(recorder.recordBegin(nullptr, 0), 1);
    awaitFirstSound(recorder);
    const unsigned long firstBytes = recorded.getDataSize();
    const LONGLONG firstHeard = performanceCounter();
    collectFor(recorder, 0.2);
    const size_t playFrame = recorded.getDataSize() / kFrameBytes;
    ASSERT_EQ(player.playBegin(nullptr, 0, 0), 1);
    collectFor(recorder, kChirpSeconds + 0.4);
    stop(recorder);
    const double capturedSeconds = counterSeconds(firstHeard, performanceCounter());

    // Every byte handed over is in the container once: the blocks add up to what the stop leaves.
    unsigned long handedOver = stopAdded;
    for (const Collection& c : collections)
    {
        EXPECT_EQ(c.added % kFrameBytes, 0u) << "a block of partial frames";
        EXPECT_EQ(c.result != 0, c.added > 0) << "a collection's result disagrees with what it added";
        handedOver += c.added;
    }
    EXPECT_EQ(handedOver, recorded.getDataSize());
    EXPECT_FALSE(recorded.isRecording()) << "the stop left the recording open";
    // ... and they cover the capture time: a lost or a repeated 100 ms block is well outside.
    const double heldSeconds = static_cast<double>(recorded.getDataSize() - firstBytes) / (kRate * kFrameBytes);
    EXPECT_NEAR(heldSeconds, capturedSeconds, 0.04);
    std::printf("[ measure  ] %zu collections; %.3f s held over %.3f s of capture\n", collections.size(),
                heldSeconds, capturedSeconds);

    const std::vector<int16_t> samples(reinterpret_cast<const int16_t*>(recorded.getDataPointer()),
                                       reinterpret_cast<const int16_t*>(recorded.getDataPointer()) +
                                           recorded.getDataSize() / 2);
    const PcmView heard = view(samples, 2);
    const std::vector<int16_t> played = chirp();
    const PcmView reference = view(played, 2);
    const long long onset = onsetFrame(heard, -40.0, 16);
    ASSERT_GE(onset, static_cast<long long>(playFrame)) << "nothing heard after the play call";
    const long long start = chirpStart(heard, reference, onset, 64);
    ASSERT_GE(start, 0) << "the chirp's beginning is not in the recording";
    ASSERT_LE(static_cast<size_t>(start) + reference.frames, heard.frames) << "the recording ends inside the chirp";
    std::printf("[ measure  ] chirp heard %.1f ms after the play call\n", 1000.0 * (start - playFrame) / kRate);

    for (unsigned channel : {0u, 1u})
        EXPECT_NEAR(rmsDbfs(slice(heard, start + kRate / 10, reference.frames - kRate / 5), channel), kLevelDbfs, 3.0)
            << "channel " << channel;
    for (double t : {0.5, 1.0, 1.5})
    {
        const PcmView piece = slice(heard, start + static_cast<size_t>((t - 0.01) * kRate), kRate / 50);
        EXPECT_NEAR(dominantFrequency(piece, 0, kRate), chirpHzAt(t), chirpHzAt(t) * 0.03) << "at " << t << " s";
    }

    // Sample for sample from its first frame to its last: any join that lost or repeated a
    // piece leaves every later window out of line.
    const std::vector<size_t> blockEnds = joins();
    for (size_t at = 0; at + 1024 <= reference.frames; at += 1024)
    {
        double match = 0.0;
        for (long long shift = -2; shift <= 2; ++shift)
            match = std::max(match, correlation(heard, static_cast<size_t>(start + shift) + at, reference, at, 1024));
        if (match >= 0.9)
            continue;
        const double frame = static_cast<double>(start) + at;
        double nearest = 1e9;
        for (size_t join : blockEnds)
            if (std::fabs(join - frame) < std::fabs(nearest))
                nearest = join - frame;
        ADD_FAILURE() << "the chirp is out of line " << 1000.0 * at / kRate << " ms in (match " << match
                      << "); the nearest join is " << 1000.0 * nearest / kRate << " ms from there";
        break;
    }
    for (const std::wstring& message : shownMessages())
        EXPECT_EQ(message, L"No data for copying") << "only the wait for the first sound may find nothing new";
}

// The record flag reaches the container: nonzero appends to what it holds, zero starts afresh.
TEST_F(FacadeLoopback, RecordFlagAppendsOrStartsAfresh)
{
    CSndDataRecordPlaytyx recorder;
    recorder.setSndData(&recorded);
    ASSERT_EQ(recorder.recordBegin(nullptr, 0), 1);
    awaitFirstSound(recorder);
    collectFor(recorder, 0.3);
    stop(recorder);
    const std::vector<char> first(recorded.getDataPointer(), recorded.getDataPointer() + recorded.getDataSize());

    const unsigned long tenth = kRate * kFrameBytes / 10;
    ASSERT_EQ(recorder.recordBegin(nullptr, 1), 1);
    collectFor(recorder, 0.3);
    stop(recorder);
    const unsigned long appended = recorded.getDataSize();
    ASSERT_GT(appended, first.size() + tenth);
    EXPECT_TRUE(std::equal(first.begin(), first.end(), recorded.getDataPointer())) << "the old recording changed";

    ASSERT_EQ(recorder.recordBegin(nullptr, 0), 1);
    collectFor(recorder, 0.3);
    stop(recorder);
    EXPECT_GT(recorded.getDataSize(), 0u);
    EXPECT_LT(recorded.getDataSize(), appended - tenth) << "the old recording was kept";
}
