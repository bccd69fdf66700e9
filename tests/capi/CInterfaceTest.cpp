// The C interface as a host uses it, against Wine's real DirectSound, heard through the
// loopback: a tone played is heard, and a recording made meanwhile holds it; two scheduled
// stimuli land the scheduled number of frames apart; every kind of handle freed from another
// thread while it works; and the library's messages go to the handler, never to a box.

#include "dsty.h"
#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "SndDataReadtyStream.h"
#include "SndWaveWriteStreamty.h"
#include "ToneGenerator.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using namespace dsty_test;

namespace
{
const unsigned kRate = 44100;
const dsty_format kStereo16 = {2, kRate, 16};

std::vector<std::string> g_messages;

void keepMessage(const char* text, void*)
{
    g_messages.push_back(text);
}

std::string tempPath(const char* name)
{
    char dir[MAX_PATH];
    GetTempPathA(MAX_PATH, dir);
    return std::string(dir) + name;
}

// The samples of a 16-bit wave file as the wave-file library reads it.
std::vector<int16_t> readRecording(const std::string& path)
{
    CSndDataReadtyStream reader;
    unsigned long bytes = 0;
    tWAVEFORMATEX wfx = {};
    if (!reader.initStream2Read(CString(path.c_str()), &bytes, &wfx) || wfx.wBitsPerSample != 16)
        return {};
    std::vector<int16_t> pcm(bytes / 2);
    reader.readNewData(pcm.data(), bytes);
    return pcm;
}

// Frames at which each loud stretch of the left channel begins.
std::vector<long long> onsets(const std::vector<int16_t>& recorded, size_t stimulusFrames)
{
    std::vector<long long> found;
    for (size_t frame = 0; frame < recorded.size() / 2; frame++)
    {
        if (std::abs(recorded[2 * frame]) < 4000)
            continue;
        found.push_back(static_cast<long long>(frame));
        frame += 2 * stimulusFrames;
    }
    return found;
}

class CInterface : public ::testing::Test
{
protected:
    void SetUp() override
    {
        g_messages.clear();
        dsty_set_message_handler(keepMessage, nullptr);
        ASSERT_EQ(DSTY_OK, dsty_device_open(-1, &device)) << dsty_last_error();
    }
    void TearDown() override
    {
        dsty_device_close(device);
        dsty_set_message_handler(nullptr, nullptr);
    }

    dsty_sound* sound(const std::vector<int16_t>& stereo)
    {
        dsty_sound* made = nullptr;
        EXPECT_EQ(DSTY_OK, dsty_sound_from_pcm(device, &kStereo16, stereo.data(), stereo.size() * 2, &made))
            << dsty_last_error();
        return made;
    }

    dsty_device* device = nullptr;
};
}

TEST_F(CInterface, AToneIsHeardAndARecordingMadeMeanwhileHoldsIt)
{
    const std::string path = tempPath("capi-recording.wav");
    dsty_recording* recording = nullptr;
    ASSERT_EQ(DSTY_OK, dsty_record_start(&kStereo16, path.c_str(), &recording)) << dsty_last_error();
    LoopbackRecorder loopback;
    ASSERT_TRUE(loopback.start());
    dsty_sound* tone = sound(sineTone(1000.0, -6.0, 1.0, kRate, ToneChannels::Both));
    ASSERT_EQ(DSTY_OK, dsty_sound_play(tone, 0));
    Sleep(100);
    EXPECT_EQ(1, dsty_sound_is_playing(tone));
    Sleep(1200);
    EXPECT_EQ(0, dsty_sound_is_playing(tone));
    loopback.stop();
    EXPECT_EQ(DSTY_OK, dsty_record_status(recording));
    ASSERT_EQ(DSTY_OK, dsty_record_stop(recording)) << dsty_last_error();

    for (const std::vector<int16_t>& heard : {loopback.samples(), readRecording(path)})
    {
        const PcmView all = view(heard, 2);
        const long long onset = onsetFrame(all, -20.0);
        ASSERT_GE(onset, 0) << "the tone is not there";
        const PcmView steady = slice(all, static_cast<size_t>(onset) + kRate / 5, kRate / 2);
        EXPECT_NEAR(1000.0, dominantFrequency(steady, 0, kRate), 5.0);
        EXPECT_NEAR(-9.0, rmsDbfs(steady, 1), 3.0);
    }
    DeleteFileA(path.c_str());
    EXPECT_TRUE(g_messages.empty());
}

// A file streamed (750 Hz for its first second, 1500 Hz after) plays out whole and the wait
// returns at its end; a play stopped early and played again starts from the file's beginning;
// no message on the way.
TEST_F(CInterface, AStreamedFilePlaysOutAndAfterAStopPlaysAgainFromItsStart)
{
    const std::string path = tempPath("capi-stream-tone.wav");
    {
        std::vector<int16_t> tone = sineTone(750.0, -6.0, 1.0, kRate, ToneChannels::Both);
        const std::vector<int16_t> second = sineTone(1500.0, -6.0, 1.5, kRate, ToneChannels::Both);
        tone.insert(tone.end(), second.begin(), second.end());
        tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
        CSndWaveWriteStreamty writer;
        ASSERT_EQ(1, writer.Open(CString(path.c_str()), &wfx));
        ASSERT_EQ(1, writer.Write(static_cast<unsigned>(tone.size() * 2),
                                  reinterpret_cast<unsigned char*>(const_cast<int16_t*>(tone.data())), nullptr));
    }
    dsty_stream* stream = nullptr;
    ASSERT_EQ(DSTY_OK, dsty_stream_open(device, path.c_str(), &stream)) << dsty_last_error();
    ASSERT_EQ(DSTY_OK, dsty_stream_play(stream)) << dsty_last_error();
    Sleep(400);
    ASSERT_EQ(DSTY_OK, dsty_stream_stop(stream));
    EXPECT_EQ(0, dsty_stream_is_playing(stream));
    LoopbackRecorder loopback;
    ASSERT_TRUE(loopback.start());
    ASSERT_EQ(DSTY_OK, dsty_stream_play(stream)) << dsty_last_error();
    EXPECT_EQ(1, dsty_stream_is_playing(stream));
    EXPECT_EQ(DSTY_E_TIMEOUT, dsty_stream_wait(stream, 500));
    ASSERT_EQ(DSTY_OK, dsty_stream_wait(stream, 10000)) << "the stream did not end";
    EXPECT_EQ(0, dsty_stream_is_playing(stream));
    loopback.stop();
    const std::vector<int16_t> heard = loopback.samples();
    const PcmView all = view(heard, 2);
    const long long onset = onsetFrame(all, -20.0);
    ASSERT_GE(onset, 0) << "the second play was not heard";
    EXPECT_NEAR(750.0, dominantFrequency(slice(all, static_cast<size_t>(onset) + kRate / 4, kRate / 2), 0, kRate), 5.0)
        << "the second play did not start at the file's beginning";
    EXPECT_NEAR(1500.0, dominantFrequency(slice(all, static_cast<size_t>(onset) + kRate * 2, kRate / 4), 0, kRate), 5.0)
        << "the second play did not reach the file's end";
    dsty_stream_close(stream);
    DeleteFileA(path.c_str());
    EXPECT_TRUE(g_messages.empty()) << g_messages.front();
}

// The loopback slips a frame now and then, so the pair gets three tries.
TEST_F(CInterface, TwoScheduledStimuliLandTheScheduledFramesApart)
{
    std::vector<int16_t> burst;
    for (size_t k = 0; k < 441; k++)
    {
        const int16_t sample = (k / 22) % 2 == 0 ? 16000 : -16000;
        burst.insert(burst.end(), {sample, sample});
    }
    dsty_sound* click = sound(burst);
    const long long gap = 11025 + 7;
    std::string tries;
    for (int attempt = 0; attempt < 3; attempt++)
    {
        dsty_schedule* schedule = nullptr;
        ASSERT_EQ(DSTY_OK, dsty_schedule_open(device, &kStereo16, 10, &schedule)) << dsty_last_error();
        LoopbackRecorder loopback;
        ASSERT_TRUE(loopback.start());
        const long long first = dsty_schedule_earliest_frame(schedule) + kRate / 5;
        const int ids[] = {dsty_schedule_stim(schedule, click, first), dsty_schedule_stim(schedule, click, first + gap)};
        Sleep(700);
        loopback.stop();
        const bool onTime = dsty_schedule_stim_on_time(schedule, ids[0]) == 1 &&
                            dsty_schedule_stim_on_time(schedule, ids[1]) == 1;
        dsty_schedule_close(schedule);
        const std::vector<long long> found = onsets(loopback.samples(), 441);
        if (onTime && found.size() == 2 && found[1] - found[0] == gap)
            return;
        tries += "try " + std::to_string(attempt + 1) + ": " + std::to_string(found.size()) + " onsets" +
                 (found.size() == 2 ? ", " + std::to_string(found[1] - found[0]) + " frames apart" : "") +
                 (onTime ? "" : ", reported late") + "\n";
    }
    ADD_FAILURE() << "scheduled " << gap << " frames apart\n" << tries;
}

// Each handle is freed by another thread while it works: a looping sound, a moving 3D sound,
// a stream, a recording, a schedule with stimuli pending, and last the device itself with a
// sound still playing. Every later call on them is refused, and nothing crashes or hangs.
TEST_F(CInterface, HandlesFreedFromAnotherThreadWhileTheyWork)
{
    const std::string wav = tempPath("capi-stream.wav"), recorded = tempPath("capi-freed.wav");
    {
        dsty_recording* recording = nullptr;
        ASSERT_EQ(DSTY_OK, dsty_record_start(&kStereo16, wav.c_str(), &recording));
        Sleep(1500);
        ASSERT_EQ(DSTY_OK, dsty_record_stop(recording));
    }
    const std::vector<int16_t> tone = sineTone(500.0, -12.0, 0.5, kRate, ToneChannels::Both);
    dsty_sound* looping = sound(tone);
    dsty_sound* moving = sound(tone);
    dsty_sound* lastOne = sound(tone);
    dsty_stream* stream = nullptr;
    dsty_recording* recording = nullptr;
    dsty_schedule* schedule = nullptr;
    ASSERT_EQ(DSTY_OK, dsty_stream_open(device, wav.c_str(), &stream)) << dsty_last_error();
    ASSERT_EQ(DSTY_OK, dsty_record_start(&kStereo16, recorded.c_str(), &recording));
    ASSERT_EQ(DSTY_OK, dsty_schedule_open(device, &kStereo16, 20, &schedule));
    ASSERT_EQ(DSTY_OK, dsty_sound_play(looping, 1));
    const float from[3] = {-3.0f, 0.0f, 1.0f}, velocity[3] = {6.0f, 0.0f, 0.0f};
    ASSERT_EQ(DSTY_OK, dsty_sound_play_3d(moving, from, velocity));
    ASSERT_EQ(DSTY_OK, dsty_stream_play(stream));
    ASSERT_EQ(DSTY_OK, dsty_sound_play(lastOne, 1));
    const long long first = dsty_schedule_earliest_frame(schedule) + kRate;
    for (long long k = 0; k < 5; k++)
        ASSERT_GT(dsty_schedule_stim(schedule, looping, first + k * kRate / 2), 0);
    Sleep(300);

    std::thread freer([&] {
        dsty_sound_free(looping);
        dsty_sound_free(moving);
        dsty_stream_close(stream);
        EXPECT_EQ(DSTY_OK, dsty_record_stop(recording));
        dsty_schedule_close(schedule);
        dsty_device_close(device);
    });
    freer.join();
    EXPECT_EQ(DSTY_E_HANDLE, dsty_sound_play(looping, 0));
    EXPECT_EQ(DSTY_E_HANDLE, dsty_sound_is_playing(lastOne));
    EXPECT_EQ(DSTY_E_HANDLE, dsty_stream_play(stream));
    EXPECT_EQ(DSTY_E_HANDLE, dsty_record_status(recording));
    EXPECT_EQ(DSTY_E_HANDLE, dsty_schedule_earliest_frame(schedule));
    EXPECT_EQ(DSTY_E_HANDLE, dsty_device_caps(device, nullptr));
    EXPECT_FALSE(readRecording(recorded).empty()) << "the recording freed mid-way is no whole file";
    device = nullptr;
    ASSERT_EQ(DSTY_OK, dsty_device_open(-1, &device)) << "a device opens again after the last closed";
    DeleteFileA(wav.c_str());
    DeleteFileA(recorded.c_str());
}

// A sound of two bytes is too short for a buffer: the library says so through the handler.
TEST_F(CInterface, TheLibrarysMessagesGoToTheHandler)
{
    const int16_t frame = 4096;
    const dsty_format mono = {1, kRate, 16};
    dsty_sound* tiny = nullptr;
    dsty_sound_from_pcm(device, &mono, &frame, sizeof frame, &tiny);
    dsty_sound_play(tiny, 0);
    ASSERT_FALSE(g_messages.empty());
    EXPECT_EQ("The set play buffer is too small", g_messages.front());
}
