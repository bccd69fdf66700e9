// Recording what plays, through the loopback: a streamed recording of a signal whose frames
// tell their own position holds every frame once, in order, up to the stop, and keeps its time
// axis through a worker held up past its buffer; a streamed and a facade recording overlap; a
// circular recording brings a played tone into the caller's block.

#include "Loopback.h"
#include "SndWaveWriteStreamty.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <thread>

using namespace dsty_test;

namespace
{
const unsigned kRate = 44100;
const long kMarkSpan = 1L << 20; // frames whose positions the marked signal tells apart

// Left: the position modulo 32768 as a ramp; right: the position / 64, a slow counter.
void markedFrame(size_t frame, int16_t* out)
{
    out[0] = static_cast<int16_t>(static_cast<long>(frame & 0x7FFF) - 16384);
    out[1] = static_cast<int16_t>(static_cast<long>((frame >> 6) & 0xFFFF) - 32768);
}

long positionOf(const int16_t* frame)
{
    const long fine = frame[0] + 16384;
    const long estimate = (static_cast<long>(frame[1]) + 32768) * 64 + 32;
    long position = estimate - ((estimate - fine) & 0x7FFF);
    if (estimate - position > 16384)
        position += 32768;
    return (position + kMarkSpan) % kMarkSpan;
}

void toneFrame(size_t frame, int16_t* out)
{
    out[0] = out[1] = static_cast<int16_t>(8200.0 * std::sin(2.0 * 3.14159265358979 * 1050.0 * frame / kRate));
}

// Plays `frames` frames made by `make` in a loop through plain DirectSound.
class LoopPlayer
{
public:
    bool start(size_t frames, const std::function<void(size_t, int16_t*)>& make)
    {
        m_window = CreateWindowW(L"STATIC", L"record loopback", WS_OVERLAPPED, 0, 0, 10, 10, nullptr, nullptr,
                                 GetModuleHandleW(nullptr), nullptr);
        WAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
        DSBUFFERDESC desc = {sizeof desc, DSBCAPS_GETCURRENTPOSITION2, static_cast<DWORD>(4 * frames), 0, &wfx, GUID_NULL};
        void* memory = nullptr;
        DWORD bytes = 0;
        if (FAILED(DirectSoundCreate8(nullptr, &m_sound, nullptr)) ||
            FAILED(m_sound->SetCooperativeLevel(m_window, DSSCL_PRIORITY)) ||
            FAILED(m_sound->CreateSoundBuffer(&desc, &m_buffer, nullptr)) ||
            FAILED(m_buffer->Lock(0, 0, &memory, &bytes, nullptr, nullptr, DSBLOCK_ENTIREBUFFER)))
            return false;
        for (size_t i = 0; i < bytes / 4; i++)
            make(i, static_cast<int16_t*>(memory) + 2 * i);
        m_buffer->Unlock(memory, bytes, nullptr, 0);
        return SUCCEEDED(m_buffer->Play(0, 0, DSBPLAY_LOOPING));
    }
    ~LoopPlayer()
    {
        if (m_buffer)
            m_buffer->Release();
        if (m_sound)
            m_sound->Release();
        if (m_window)
            DestroyWindow(m_window);
    }

private:
    HWND m_window = nullptr;
    IDirectSound8* m_sound = nullptr;
    IDirectSoundBuffer* m_buffer = nullptr;
};

class StopSignalledCapture : public CDSndCapturetyx
{
public:
    void signalStop() { SetEvent(m_posNotify[0].hEventNotify); }
};

std::wstring tempWavePath()
{
    wchar_t dir[MAX_PATH], name[MAX_PATH];
    GetTempPathW(MAX_PATH, dir);
    GetTempFileNameW(dir, L"rlb", 0, name);
    return name;
}

struct MarkedRecording
{
    std::vector<int16_t> pcm;
    ULONGLONG lostFrames = 0;
    std::string fault; // why nothing could be recorded
};

// Records `seconds` of the marked signal through the streamed capture, the worker held up for
// `stallSeconds` once the first second has passed.
MarkedRecording recordMarkedSignal(double seconds, double stallSeconds)
{
    MarkedRecording result;
    LoopPlayer player;
    if (!player.start(kMarkSpan, markedFrame))
        return result.fault = "the marked signal cannot be played", result;
    Sleep(300);
    const std::wstring name = tempWavePath();
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
    CSndWaveWriteStreamty writer;
    auto capture = std::make_unique<CDSndCapturetyStream>();
    capture->m_pSndWaveWriteStream = &writer;
    if (!writer.Open(CString(name.c_str()), &wfx) || !capture->initCapture2stream(wfx, 2 * wfx.nAvgBytesPerSec) ||
        !capture->startCaptureStream())
        return result.fault = "the streamed capture did not start", result;
    std::atomic<bool> recording{true};
    std::thread worker([&] {
        const LONGLONG start = performanceCounter();
        for (bool held = stallSeconds <= 0.0; recording;)
        {
            if (!held && counterSeconds(start, performanceCounter()) > 1.0)
                held = true, Sleep(static_cast<DWORD>(1000 * stallSeconds));
            capture->waitRecordStreamEvt();
        }
    });
    Sleep(static_cast<DWORD>(1000 * seconds)); // stopped between positions
    recording = false;
    capture->stopCaptureStream(); // wakes the worker
    worker.join();
    result.lostFrames = capture->getLostFrames();
    capture.reset();
    result.pcm = readWave(name);
    DeleteFileW(name.c_str());
    if (result.pcm.empty())
        result.fault = "the header's sizes disagree with the file";
    return result;
}

// Empty when the file holds every frame once and in order up to the stop, else what was
// wrong. A run of silence is either the player's stall, after which its signal goes on where
// it stopped, or silence the recorder wrote for frames it lost, after which the signal stands
// where the time passed puts it; those runs must add up to the frames the recorder lost.
std::string checkMarkedRecording(const MarkedRecording& recording, double seconds)
{
    const std::vector<int16_t>& pcm = recording.pcm;
    if (!recording.fault.empty())
        return recording.fault;
    if (std::fabs(seconds - pcm.size() / 2.0 / kRate) > 0.4)
        return "the file holds " + std::to_string(pcm.size() / 2.0 / kRate) + " s, not " + std::to_string(seconds) +
               " s with its tail";
    size_t first = 0;
    while (first < pcm.size() && pcm[first] == 0 && pcm[first + 1] == 0)
        first += 2;
    if (first >= pcm.size() / 4)
        return "the signal is not in the recording";
    long last = positionOf(&pcm[first]);
    size_t lastFrame = first / 2;
    long slipped = 0;
    ULONGLONG bridged = 0;
    for (size_t i = first + 2; i < pcm.size(); i += 2)
    {
        if (pcm[i] == 0 && pcm[i + 1] == 0)
            continue;
        const long position = positionOf(&pcm[i]);
        const long moved = (position - last + kMarkSpan) % kMarkSpan, distance = static_cast<long>(i / 2 - lastFrame);
        const long step = std::min(moved - 1, kMarkSpan - moved + 1);
        if (distance > static_cast<long>(kRate / 10) && std::labs(moved - distance) < 16)
            bridged += static_cast<ULONGLONG>(distance - 1);
        else if (step >= static_cast<long>(kRate / 10))
            return "a block lost or repeated at frame " + std::to_string(i / 2) + " (step " + std::to_string(step) + ")";
        else
            slipped += step;
        last = position;
        lastFrame = i / 2;
    }
    if (bridged < recording.lostFrames || bridged > recording.lostFrames + kRate / 10)
        return "the recorder lost " + std::to_string(recording.lostFrames) + " frames, and silence kept the time axis over " +
               std::to_string(bridged);
    return slipped < 64 ? "" : "frames out of order"; // the sound server slips a few now and then
}

// The player's own output glitches now and then on a busy machine, which the recording then
// holds faithfully; so a recording gets three tries, and a recorder that loses or repeats
// blocks fails every one.
TEST(RecordLoopback, StreamedRecordingHoldsEveryFrameOnceInOrderUpToTheStop)
{
    std::string tries;
    for (int attempt = 0; attempt < 3; attempt++)
    {
        const std::string fault = checkMarkedRecording(recordMarkedSignal(5.3, 0.0), 5.3);
        if (fault.empty())
            return;
        tries += "try " + std::to_string(attempt + 1) + ": " + fault + "\n";
    }
    ADD_FAILURE() << tries;
}

// A worker held up for 3 s, longer than the 2 s buffer: the laps overwritten meanwhile are
// counted, within a position's spacing of the stall, and stand in the file as silence of their
// length, so everything after them is where it was captured.
TEST(RecordLoopback, StreamedRecordingHeldUpPastItsBufferCountsTheLossAndKeepsItsTimeAxis)
{
    std::string tries;
    for (int attempt = 0; attempt < 3; attempt++)
    {
        const MarkedRecording recording = recordMarkedSignal(7.0, 3.0);
        const double lostSeconds = static_cast<double>(recording.lostFrames) / kRate;
        std::string fault = checkMarkedRecording(recording, 7.0);
        std::printf("[ measure  ] held up 3 s: %.3f s lost (%llu frames)\n", lostSeconds, recording.lostFrames);
        if (fault.empty() && std::fabs(lostSeconds - 3.0) > 1.5)
            fault = "lost " + std::to_string(lostSeconds) + " s for a stall of 3 s";
        if (fault.empty())
            return;
        tries += "try " + std::to_string(attempt + 1) + ": " + fault + "\n";
    }
    ADD_FAILURE() << tries;
}

// A streamed recording and a facade recording at once, each on a capture device object of its
// own: the streamed one stops first and its file holds the tone; the facade goes on and holds
// the tone after that stop too.
TEST(RecordLoopback, StreamedAndFacadeRecordingsOverlapAndBothHoldTheTone)
{
    LoopPlayer player;
    ASSERT_TRUE(player.start(kRate, toneFrame));
    Sleep(300);
    CSndDatatyx held;
    CSndDataRecordPlaytyx facade;
    facade.setSndData(&held);
    ASSERT_EQ(1, facade.recordBegin(nullptr, 0));
    const std::wstring name = tempWavePath();
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
    CSndWaveWriteStreamty writer;
    auto capture = std::make_unique<CDSndCapturetyStream>();
    capture->m_pSndWaveWriteStream = &writer;
    ASSERT_EQ(1, writer.Open(CString(name.c_str()), &wfx));
    ASSERT_EQ(1, capture->initCapture2stream(wfx, 2 * wfx.nAvgBytesPerSec));
    ASSERT_EQ(1, capture->startCaptureStream());
    std::atomic<bool> recording{true};
    std::thread worker([&] {
        while (recording)
            capture->waitRecordStreamEvt();
    });
    auto collectFor = [&](int tenths) {
        for (int k = 0; k < tenths; k++, Sleep(100))
            facade.recordUpdate();
    };
    collectFor(15);
    recording = false;
    capture->stopCaptureStream();
    worker.join();
    capture.reset();
    const unsigned long atStreamStop = held.getDataSize();
    collectFor(10);
    ASSERT_EQ(1, facade.recordStop());

    const std::vector<int16_t> streamed = readWave(name);
    DeleteFileW(name.c_str());
    ASSERT_GT(streamed.size(), 2u * kRate);
    EXPECT_NEAR(1050.0, dominantFrequency(slice(view(streamed, 2), streamed.size() / 2 - kRate / 2, kRate / 4), 0, kRate),
                10.0);
    ASSERT_GT(held.getDataSize(), atStreamStop + 4 * kRate / 2) << "the facade took nothing after the streamed stop";
    const auto* samples = reinterpret_cast<const int16_t*>(held.getDataPointer());
    const std::vector<int16_t> facadePcm(samples + atStreamStop / 2, samples + held.getDataSize() / 2);
    EXPECT_NEAR(1050.0, dominantFrequency(slice(view(facadePcm, 2), 0, kRate / 4), 0, kRate), 10.0);
}

// Wine keeps a capture started without looping running past the buffer's end and never
// signals its stop, so the test signals it while the buffer is still filling.
TEST(RecordLoopback, CircularRecordingBringsThePlayedToneIntoTheBlock)
{
    LoopPlayer player;
    ASSERT_TRUE(player.start(kRate, toneFrame));
    Sleep(300);
    const unsigned long kBytes = 1587600; // one position step: the stop entry alone is registered
    std::vector<char> block(kBytes);
    auto capture = std::make_unique<StopSignalledCapture>();
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
    ASSERT_EQ(1, capture->initDataSizeWfxCirclePro(wfx, kBytes, block.data()));
    ASSERT_EQ(1, capture->recordStart());
    Sleep(1100); // of the 1.5 s the 264,600-byte buffer holds
    EXPECT_EQ(0u, capture->getNewRecordDataSize());
    capture->signalStop();
    const unsigned long got = capture->getNewRecordDataSize();
    EXPECT_EQ(0u, capture->getNewRecordDataSize());
    capture->recordStop();
    capture.reset();
    ASSERT_GE(got, 4u * kRate * 3 / 4);
    ASSERT_LE(got, 264600u);
    const auto* samples = reinterpret_cast<const int16_t*>(block.data());
    const std::vector<int16_t> pcm(samples, samples + got / 2);
    const PcmView recorded = view(pcm, 2);
    EXPECT_NEAR(1050.0, dominantFrequency(slice(recorded, kRate / 2, kRate / 4), 0, kRate), 10.0);
}
}
