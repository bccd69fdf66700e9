// Stimuli placed by the scheduler at the shortest lead it takes land exactly the scheduled
// number of frames apart, as the loopback hears them, and each is reported on time.

#include "Loopback.h"

#include <cstdlib>
#include <sstream>

using namespace dsty_test;

namespace
{
const size_t kClickFrames = 441;

// A 10 ms square burst that starts at full strength, so its first frame stands out.
std::vector<int16_t> click()
{
    std::vector<int16_t> pcm;
    for (size_t k = 0; k < kClickFrames; k++) {
        const int16_t sample = (k / 22) % 2 == 0 ? 16000 : -16000;
        pcm.insert(pcm.end(), {sample, sample});
    }
    return pcm;
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
TEST_F(Loopback, ScheduledStimuliLandExactlyTheScheduledFramesApart)
{
    openDevice();
    load(click(), 2);
    const long long gaps[] = {11025 + 7, 8820 - 3};
    std::ostringstream tries;
    bool exact = false;
    for (int attempt = 0; attempt < 3 && !exact; attempt++) {
        CDirectSndSchedulety schedule;
        ASSERT_EQ(1, schedule.openSchedule(&device, data.getAudioWaveDataWfx(), 10));
        startRecording();
        LONGLONG at = schedule.getEarliestFrame() + kRate / 5;
        std::vector<int> ids{schedule.scheduleStim(&data, at)};
        for (long long gap : gaps)
            ids.push_back(schedule.scheduleStim(&data, at += gap));
        Sleep(1000);
        finishRecording();
        bool onTime = true;
        for (int id : ids)
            onTime = onTime && id > 0 && schedule.getStimState(id) == CDirectSndSchedulety::kStimOnTime;
        const std::vector<long long> found = onsets(heard);
        tries << "try " << attempt + 1 << ":";
        for (size_t k = 1; k < found.size(); k++)
            tries << " " << found[k] - found[k - 1];
        tries << (onTime ? "\n" : " (a stimulus reported late)\n");
        exact = onTime && found.size() == 3 && found[1] - found[0] == gaps[0] && found[2] - found[1] == gaps[1];
    }
    EXPECT_TRUE(exact) << "scheduled " << gaps[0] << " and " << gaps[1] << " frames apart, heard\n" << tries.str();
}
