// Stimuli placed by the scheduler land exactly the scheduled number of frames apart, as the
// loopback hears them.

#include "DirectSndty.h"
#include "LoopbackRecorder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <sstream>

using namespace dsty_test;

namespace
{
const unsigned kRate = 44100;
const size_t kClickFrames = 441;

// A 10 ms square burst that starts at full strength, so its first frame stands out.
CSndDatatyx* newClick()
{
    std::vector<int16_t> pcm;
    for (size_t k = 0; k < kClickFrames; k++) {
        const int16_t sample = (k / 22) % 2 == 0 ? 16000 : -16000;
        pcm.insert(pcm.end(), {sample, sample});
    }
    auto* click = new CSndDatatyx;
    const tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
    click->setNewSndData(reinterpret_cast<const char*>(pcm.data()), static_cast<unsigned long>(pcm.size() * 2), wfx);
    return click;
}

// Frames at which each loud stretch begins in the left channel.
std::vector<long long> onsets(const std::vector<int16_t>& recorded)
{
    std::vector<long long> found;
    for (size_t frame = 0; frame < recorded.size() / 2; frame++) {
        if (std::abs(recorded[2 * frame]) < 4000)
            continue;
        found.push_back(static_cast<long long>(frame));
        frame += 2 * kClickFrames;
    }
    return found;
}
}

// The loopback itself slips a frame now and then, so a train gets three tries; a scheduler
// that misplaces stimuli misses every time.
TEST(ScheduleLoopback, StimuliLandExactlyTheScheduledFramesApart)
{
    HWND window = CreateWindowW(L"STATIC", L"schedule loopback", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                                GetModuleHandleW(nullptr), nullptr);
    CDirectSndDevicety device;
    ASSERT_EQ(1, device.initDSndStimX(window, nullptr, DSSCL_PRIORITY));
    std::unique_ptr<CSndDatatyx> click(newClick());
    const long long gaps[] = {11025 + 7, 8820 - 3};
    std::ostringstream tries;
    bool exact = false;
    for (int attempt = 0; attempt < 3 && !exact; attempt++) {
        CDirectSndSchedulety schedule;
        ASSERT_EQ(1, schedule.openSchedule(&device, click->getAudioWaveDataWfx(), 50));
        LoopbackRecorder recorder;
        ASSERT_TRUE(recorder.start());
        LONGLONG at = schedule.getEarliestFrame() + kRate / 5;
        ASSERT_GT(schedule.scheduleStim(click.get(), at), 0);
        for (long long gap : gaps)
            ASSERT_GT(schedule.scheduleStim(click.get(), at += gap), 0);
        Sleep(1000);
        recorder.stop();
        const std::vector<long long> heard = onsets(recorder.samples());
        tries << "try " << attempt + 1 << ":";
        for (size_t k = 1; k < heard.size(); k++)
            tries << " " << heard[k] - heard[k - 1];
        tries << "\n";
        exact = heard.size() == 3 && heard[1] - heard[0] == gaps[0] && heard[2] - heard[1] == gaps[1];
    }
    EXPECT_TRUE(exact) << "scheduled " << gaps[0] << " and " << gaps[1] << " frames apart, heard\n" << tries.str();
    device.releaseDSndty(&device);
    DestroyWindow(window);
}
