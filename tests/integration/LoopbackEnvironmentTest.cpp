// The machine's sound path itself, through raw DirectSound: what a secondary buffer plays
// must come back through the default capture device. Every device test relies on this.

#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

using namespace dsty_test;

namespace
{
class RawPlayer
{
public:
    RawPlayer() { result = DirectSoundCreate8(nullptr, &sound, nullptr); }
    ~RawPlayer()
    {
        if (buffer)
            buffer->Release();
        if (sound)
            sound->Release();
    }

    // Plays interleaved stereo 16-bit PCM once.
    bool play(const std::vector<int16_t>& pcm)
    {
        if (FAILED(result) || FAILED(result = sound->SetCooperativeLevel(GetDesktopWindow(), DSSCL_PRIORITY)))
            return false;
        WAVEFORMATEX format = pcmFormat(44100, 2);
        DSBUFFERDESC desc{};
        desc.dwSize = sizeof desc;
        desc.dwFlags = DSBCAPS_GLOBALFOCUS | DSBCAPS_GETCURRENTPOSITION2;
        desc.dwBufferBytes = static_cast<DWORD>(pcm.size() * sizeof(int16_t));
        desc.lpwfxFormat = &format;
        if (FAILED(result = sound->CreateSoundBuffer(&desc, &buffer, nullptr)))
            return false;
        void* data = nullptr;
        DWORD bytes = 0;
        if (FAILED(result = buffer->Lock(0, 0, &data, &bytes, nullptr, nullptr, DSBLOCK_ENTIREBUFFER)))
            return false;
        std::memcpy(data, pcm.data(), bytes);
        buffer->Unlock(data, bytes, nullptr, 0);
        playCounter = performanceCounter();
        return SUCCEEDED(result = buffer->Play(0, 0, 0));
    }

    IDirectSound8* sound = nullptr;
    IDirectSoundBuffer* buffer = nullptr;
    HRESULT result = S_OK;
    LONGLONG playCounter = 0;
};

class LoopbackEnvironment : public ::testing::Test
{
protected:
    // Records while `pcm` plays once, with some margin after it.
    std::vector<int16_t> recordWhilePlaying(const std::vector<int16_t>& pcm)
    {
        EXPECT_TRUE(recorder.start()) << std::hex << recorder.lastResult();
        RawPlayer player;
        EXPECT_TRUE(player.play(pcm)) << std::hex << player.result;
        playCounter = player.playCounter;
        Sleep(static_cast<DWORD>(pcm.size() / 2 * 1000 / 44100) + 400);
        recorder.stop();
        return recorder.samples();
    }

    LoopbackRecorder recorder;
    LONGLONG playCounter = 0;
};
}

TEST_F(LoopbackEnvironment, ToneComesBackAtItsFrequencyAndLevel)
{
    const auto recorded = recordWhilePlaying(sineTone(1000.0, -6.0, 1.0, 44100, ToneChannels::Both));
    const PcmView all = view(recorded, 2);
    ASSERT_GT(all.frames, 44100u);

    const long long onset = onsetFrame(all, -30.0);
    ASSERT_GE(onset, 0);
    const PcmView tone = slice(all, static_cast<size_t>(onset) + 4410, 22050);
    EXPECT_NEAR(dominantFrequency(tone, 0, 44100), 1000.0, 5.0);
    EXPECT_NEAR(dominantFrequency(tone, 1, 44100), 1000.0, 5.0);
    EXPECT_NEAR(rmsDbfs(tone, 0), -6.0, 3.0);
    EXPECT_GT(goertzelAmplitude(tone, 0, 1000.0, 44100), 10.0 * goertzelAmplitude(tone, 0, 1500.0, 44100));

    const double delay = onset / 44100.0 - recorder.secondsSinceFirstFrame(playCounter);
    std::printf("[   INFO   ] sound heard %.1f ms after Play\n", delay * 1000.0);
}

TEST_F(LoopbackEnvironment, LeftOnlyToneIsLouderOnTheLeft)
{
    const auto recorded = recordWhilePlaying(sineTone(440.0, -6.0, 0.8, 44100, ToneChannels::LeftOnly));
    const PcmView all = view(recorded, 2);
    const long long onset = onsetFrame(all, -30.0);
    ASSERT_GE(onset, 0);
    const PcmView tone = slice(all, static_cast<size_t>(onset) + 2205, 22050);
    EXPECT_GT(rmsDbfs(tone, 0) - rmsDbfs(tone, 1), 20.0);
    EXPECT_NEAR(dominantFrequency(tone, 0, 44100), 440.0, 3.0);
}

TEST_F(LoopbackEnvironment, NothingPlayedRecordsSilence)
{
    ASSERT_TRUE(recorder.start()) << std::hex << recorder.lastResult();
    Sleep(300);
    recorder.stop();
    const auto recorded = recorder.samples();
    // About 300 ms of frames: the recorder neither drops nor repeats data.
    EXPECT_NEAR(static_cast<double>(recorded.size() / 2), 0.3 * 44100, 0.1 * 44100);
    EXPECT_LT(rmsDbfs(view(recorded, 2), 0), -60.0);
    EXPECT_EQ(onsetFrame(view(recorded, 2), -40.0), -1);
}
