// Two record/play objects at once, end to end on the loopback: one plays a chirp from its
// container while the other records into its own, collecting every 100 ms. A chirp never
// repeats itself, so a piece of the recording that was lost or handed over twice shifts
// everything after it against the chirp that was played.

#include "Loopback.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

using namespace dsty_test;

namespace
{
constexpr unsigned kFrameBytes = 4;  // 16-bit stereo, the capture device's default format
constexpr double kChirpSeconds = 2.0, kStartHz = 300.0, kEndHz = 3000.0;

// Stereo at -6 dBFS, both channels alike.
std::vector<int16_t> chirp()
{
    const size_t frames = static_cast<size_t>(kChirpSeconds * 44100);
    std::vector<int16_t> pcm(frames * 2);
    for (size_t i = 0; i < frames; ++i)
    {
        const double t = static_cast<double>(i) / 44100;
        const double phase = 2.0 * 3.14159265358979 * (kStartHz * t + (kEndHz - kStartHz) / kChirpSeconds * t * t / 2);
        pcm[2 * i] = pcm[2 * i + 1] = static_cast<int16_t>(std::lround(32767.0 * dbfsToAmplitude(-6.0) * std::sin(phase)));
    }
    return pcm;
}

// Normalized correlation of `count` frames of the left channels, from `a` in one and `b` in the other.
double correlation(PcmView one, size_t a, PcmView other, size_t b, size_t count)
{
    double both = 0.0, first = 0.0, second = 0.0;
    for (size_t i = 0; i < count && a + i < one.frames && b + i < other.frames; ++i)
    {
        const double x = one.samples[(a + i) * 2], y = other.samples[(b + i) * 2];
        both += x * y;
        first += x * x;
        second += y * y;
    }
    return first > 0.0 && second > 0.0 ? both / std::sqrt(first * second) : 0.0;
}

// The frame of `recorded` at which the chirp's frame 0 lies: the best match of its first 4096
// frames within 64 frames of `guess`.
long long chirpStart(PcmView recorded, PcmView reference, long long guess)
{
    long long best = -1;
    double bestMatch = 0.0;
    for (long long at = std::max(0LL, guess - 64); at <= guess + 64; ++at)
    {
        const double match = correlation(recorded, static_cast<size_t>(at), reference, 0, 4096);
        if (match > bestMatch)
            bestMatch = match, best = at;
    }
    return best;
}

// The stereo recording from `from` on without the player's stalls: when the platform's mixer
// falls behind, the sink plays exact silence and the sound goes on where it stopped, later. A
// chirp at -6 dBFS has no such run, so cutting them leaves what the recorder itself kept.
std::vector<int16_t> withoutStalls(const std::vector<int16_t>& stereo, size_t from)
{
    const size_t kStallFrames = 8;
    std::vector<int16_t> kept(stereo.begin(), stereo.begin() + 2 * from);
    size_t frame = from;
    while (frame < stereo.size() / 2)
    {
        size_t silent = 0;
        while (frame + silent < stereo.size() / 2 && stereo[2 * (frame + silent)] == 0 && stereo[2 * (frame + silent) + 1] == 0)
            ++silent;
        if (silent < kStallFrames)
            kept.insert(kept.end(), stereo.begin() + 2 * frame, stereo.begin() + 2 * (frame + std::max<size_t>(silent, 1)));
        frame += std::max<size_t>(silent, 1);
    }
    return kept;
}

class FacadeLoopback : public Loopback
{
protected:
    void TearDown() override
    {
        CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(nullptr);
        Loopback::TearDown();
    }

    // Collects what arrived. (What a collection answers, and that it hands over whole frames,
    // is the unit tests' business.)
    void collect()
    {
        const unsigned long before = recorded.getDataSize();
        recorder.recordUpdate();
        handedOver += recorded.getDataSize() - before;
    }

    void collectFor(double seconds)
    {
        const LONGLONG end = performanceCounter() + static_cast<LONGLONG>(seconds / counterSeconds(0, 1));
        while (performanceCounter() < end)
        {
            Sleep(100);
            collect();
        }
    }

    CSndDatatyx recorded;
    CSndDataRecordPlaytyx recorder;  // shares the capture object with the player; either takes it
    unsigned long handedOver = 0;
};
}

TEST_F(FacadeLoopback, RecordingHoldsThePlayedChirpWholeInOrderAndAtItsLevel)
{
    openDevice();
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device);
    const std::vector<int16_t> played = chirp();
    load(played, 2);
    // Held before in the recording's format: recording with the flag set appends to it.
    const std::vector<char> old(4000, 7);
    ASSERT_EQ(recorded.setNewSndData(old.data(), 4000, pcmFormat(kRate, 2)), 1);
    CSndDataRecordPlaytyx player;
    player.setSndData(&data);
    recorder.setSndData(&recorded);
    ASSERT_EQ(recorder.recordBegin(nullptr, 1), 1);

    // A process's first capture delivers nothing for most of a second.
    for (int waited = 0; waited < 300 && handedOver == 0; waited++, Sleep(10))
        collect();
    ASSERT_GT(handedOver, 0u) << "the capture delivered nothing";
    const unsigned long firstBytes = recorded.getDataSize();
    const LONGLONG firstHeard = performanceCounter();
    collectFor(0.2);
    const size_t playFrame = (recorded.getDataSize() - old.size()) / kFrameBytes;
    ASSERT_EQ(player.playBegin(nullptr, 0, 0), 1);
    collectFor(kChirpSeconds + 0.4);
    const unsigned long beforeStop = recorded.getDataSize();
    ASSERT_EQ(recorder.recordStop(), 1);
    handedOver += recorded.getDataSize() - beforeStop;
    const double capturedSeconds = counterSeconds(firstHeard, performanceCounter());

    // Every byte handed over is in the container once, after what it held; together they
    // cover the capture time, where a lost or a repeated 100 ms block is well outside.
    EXPECT_EQ(old.size() + handedOver, recorded.getDataSize());
    EXPECT_TRUE(std::equal(old.begin(), old.end(), recorded.getDataPointer())) << "the old recording changed";
    EXPECT_FALSE(recorded.isRecording()) << "the stop left the recording open";
    const double heldSeconds = static_cast<double>(recorded.getDataSize() - firstBytes) / (kRate * kFrameBytes);
    EXPECT_NEAR(heldSeconds, capturedSeconds, 0.04);

    const auto* samples = reinterpret_cast<const int16_t*>(recorded.getDataPointer() + old.size());
    heard.assign(samples, samples + (recorded.getDataSize() - old.size()) / 2);
    const long long onset = onsetFrame(view(heard, 2), -40.0, 16);
    ASSERT_GE(onset, static_cast<long long>(playFrame)) << "nothing heard after the play call";
    heard = withoutStalls(heard, static_cast<size_t>(onset));
    const PcmView all = view(heard, 2), reference = view(played, 2);
    const long long start = chirpStart(all, reference, onset);
    ASSERT_GE(start, 0) << "the chirp's beginning is not in the recording";
    ASSERT_LE(static_cast<size_t>(start) + reference.frames, all.frames) << "the recording ends inside the chirp";
    std::printf("[ measure  ] chirp heard %.1f ms after the play call\n", 1000.0 * (start - playFrame) / kRate);

    for (unsigned channel : {0u, 1u})
        EXPECT_NEAR(rmsDbfs(slice(all, start + kRate / 10, reference.frames - kRate / 5), channel), -6.0, 3.0);
    // Sample for sample from its first frame to its last: a join that lost or repeated a
    // piece leaves every later window out of line.
    for (size_t at = 0; at + 1024 <= reference.frames; at += 1024)
    {
        double match = 0.0;
        for (long long shift = -2; shift <= 2; ++shift)
            match = std::max(match, correlation(all, static_cast<size_t>(start + shift) + at, reference, at, 1024));
        ASSERT_GE(match, 0.9) << "the chirp is out of line " << 1000.0 * at / kRate << " ms in";
    }
    for (const std::wstring& message : shownMessages())
        EXPECT_EQ(message, L"No data for copying") << "only the wait for the first sound may find nothing new";
}
