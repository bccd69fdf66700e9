// Scheduled stimuli at short leads, heard back through the loopback and read against a
// reference: beside the schedule, whose bursts sound on the left channel only, a plain
// DirectSound buffer on the same device plays a ramp rising by one per frame on the right
// channel. The platform mixes both in the same periods, so a stall of the sound server delays
// them alike, and the ramp's value at each heard onset tells where in the output stream it
// fell. For leads of 10, 20 and 40 ms: stimuli heard, intervals exact to the frame, stimuli
// the schedule reported late. Then trains of some minutes from the shortest lead up, until
// one passes with no late stimulus.

#include "BurstTrain.h"
#include "LoopbackRecorder.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

using dsty_test::LoopbackRecorder;
using namespace dsty_bench;

namespace
{
const unsigned kRate = kBurstRate;
const size_t kStimuli = 100;
const DWORD kRampFrames = 65536; // one whole turn of a 16-bit sample, so the ramp loops seamlessly
const unsigned long kLeadsMs[] = {10, 20, 40};

// A looping buffer whose right channel rises by one per frame, through the device's own
// factory and then plain DirectSound.
class ReferenceRamp
{
public:
    explicit ReferenceRamp(CDirectSndDevicety& device)
    {
        tWAVEFORMATEX wfx = kBurstFormat;
        DSBUFFERDESC desc = {sizeof(DSBUFFERDESC), DSBCAPS_GETCURRENTPOSITION2 | DSBCAPS_GLOBALFOCUS,
                             kRampFrames * wfx.nBlockAlign, 0, reinterpret_cast<LPWAVEFORMATEX>(&wfx), {}};
        if (!device.getDSndBuff2Std(desc, m_buffer) || !fill() || FAILED(m_buffer->Play(0, 0, DSBPLAY_LOOPING)))
            release();
    }
    ~ReferenceRamp() { release(); }
    bool playing() const { return m_buffer != NULL; }

private:
    bool fill()
    {
        void* memory = NULL;
        DWORD bytes = 0;
        if (FAILED(m_buffer->Lock(0, 0, &memory, &bytes, NULL, NULL, DSBLOCK_ENTIREBUFFER)))
            return false;
        int16_t* frames = static_cast<int16_t*>(memory);
        for (DWORD k = 0; k < bytes / 4; k++)
        {
            frames[2 * k] = 0;
            frames[2 * k + 1] = static_cast<int16_t>(static_cast<int32_t>(k) - 32768);
        }
        return SUCCEEDED(m_buffer->Unlock(memory, bytes, NULL, 0));
    }

    void release()
    {
        if (m_buffer == NULL)
            return;
        m_buffer->Stop();
        m_buffer->Release();
        m_buffer = NULL;
    }

    IDirectSoundBuffer8* m_buffer = NULL;
};

// The reference position, modulo the ramp's length, of a heard frame.
long rampAt(const std::vector<int16_t>& recorded, long long frame)
{
    return static_cast<long>(recorded[2 * frame + 1]) + 32768;
}

struct TrainResult
{
    size_t heard = 0;
    size_t intervals = 0;
    size_t exact = 0;
    int late = 0;
    LONGLONG skipped = 0;
    DWORD writeAhead = 0;
    DWORD effectiveLead = 0;
};

// Schedules the train at stream frames (the first half a second ahead), at most a second
// ahead of the play cursor, and waits until the last has played.
std::vector<LONGLONG> playTrain(CDirectSndSchedulety& schedule, CSndDatatyx& burst, const std::vector<int>& spacings,
                                std::vector<int>& ids)
{
    std::vector<LONGLONG> frames(1, schedule.getEarliestFrame() + kRate / 2);
    for (int spacingMs : spacings)
        frames.push_back(frames.back() + static_cast<LONGLONG>(spacingMs) * kRate / 1000);
    size_t next = 0;
    while (schedule.getPlayFrame() < frames.back() + static_cast<LONGLONG>(kRate / 2))
    {
        for (; next < frames.size() && frames[next] < schedule.getPlayFrame() + kRate; next++)
        {
            ids.push_back(schedule.scheduleStim(&burst, frames[next]));
            if (ids.back() == 0)
                std::printf("  stimulus %zu could not be placed\n", next + 1);
        }
        Sleep(20);
    }
    return frames;
}

// Each heard onset is matched in order to the asked one whose reference interval fits; an
// interval is exact when the ramp moved by the asked number of frames between two onsets.
void readAgainstRamp(const std::vector<int16_t>& recorded, const std::vector<LONGLONG>& asked, TrainResult& result)
{
    const std::vector<long long> onsets = heardOnsets(recorded);
    result.heard = onsets.size();
    const size_t pairs = std::min(onsets.size(), asked.size());
    for (size_t k = 1; k < pairs; k++)
    {
        const long wanted = static_cast<long>(asked[k] - asked[k - 1]);
        const long moved = (rampAt(recorded, onsets[k]) - rampAt(recorded, onsets[k - 1]) + kRampFrames) % kRampFrames;
        result.intervals++;
        result.exact += moved == wanted ? 1 : 0;
    }
}

TrainResult scheduledTrain(CDirectSndDevicety& device, CSndDatatyx& burst, unsigned long leadMs,
                           const std::vector<int>& spacings, LoopbackRecorder* recorder)
{
    TrainResult result;
    CDirectSndSchedulety schedule;
    if (!schedule.openSchedule(&device, kBurstFormat, leadMs))
    {
        std::printf("  the schedule did not open (0x%08lx)\n", static_cast<unsigned long>(schedule.getLastResult()));
        return result;
    }
    if (recorder != NULL && !recorder->start())
        std::printf("  the loopback did not start\n");
    std::vector<int> ids;
    const std::vector<LONGLONG> asked = playTrain(schedule, burst, spacings, ids);
    if (recorder != NULL)
    {
        recorder->stop();
        readAgainstRamp(recorder->samples(), asked, result);
    }
    result.late = schedule.getLateStimCount();
    result.skipped = schedule.getSkippedFrames();
    result.writeAhead = schedule.getWriteAheadFrames();
    result.effectiveLead = schedule.getEffectiveLeadFrames();
    return result;
}

void printResult(unsigned long leadMs, size_t stimuli, const TrainResult& r, bool heard)
{
    std::printf("lead %2lu ms: write-ahead %.1f ms, lead in effect %.1f ms;", leadMs, 1000.0 * r.writeAhead / kRate,
                1000.0 * r.effectiveLead / kRate);
    if (heard)
        std::printf(" %zu of %zu stimuli heard, intervals exact %zu of %zu;", r.heard, stimuli, r.exact, r.intervals);
    std::printf(" late %d of %zu, frames skipped %lld\n", r.late, stimuli, static_cast<long long>(r.skipped));
}
}

// Usage: dsty_bench_schedule_lead [MINUTES]   (the long trains; default 10, 0 for none)
int main(int argc, char** argv)
{
    const double minutes = argc > 1 ? std::atof(argv[1]) : 10.0;
    HWND window = CreateWindowW(L"STATIC", L"schedule lead bench", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                GetModuleHandleW(NULL), NULL);
    CDirectSndDevicety device;
    if (!device.initDSndStimX(window, NULL, DSSCL_PRIORITY))
    {
        std::printf("the default device could not be opened\n");
        return 1;
    }
    CSndDatatyx burst;
    makeBurst(burst, true);
    {
        ReferenceRamp ramp(device);
        if (!ramp.playing())
            std::printf("the reference ramp did not play\n");
        std::printf("%zu bursts at random spacings of 150 to 350 ms, read against the reference ramp\n", kStimuli);
        const std::vector<int> spacings = randomSpacingsMs(kStimuli - 1);
        for (unsigned long leadMs : kLeadsMs)
        {
            LoopbackRecorder recorder;
            printResult(leadMs, kStimuli, scheduledTrain(device, burst, leadMs, spacings, &recorder), true);
        }
    }
    if (minutes > 0.0)
    {
        const size_t stimuli = static_cast<size_t>(minutes * 60.0 / 0.25);
        std::printf("trains of %.0f minutes (%zu bursts), from the shortest lead up until none is late\n", minutes,
                    stimuli);
        const std::vector<int> spacings = randomSpacingsMs(stimuli - 1);
        for (unsigned long leadMs : kLeadsMs)
        {
            const TrainResult result = scheduledTrain(device, burst, leadMs, spacings, NULL);
            printResult(leadMs, stimuli, result, false);
            if (result.late == 0)
            {
                std::printf("shortest lead with no late stimulus over %.0f minutes: %lu ms\n", minutes, leadMs);
                break;
            }
        }
    }
    device.releaseDSndty(&device);
    DestroyWindow(window);
    return 0;
}
