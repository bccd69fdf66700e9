#pragma once
// Records what the default capture device hears. On the project's machines that device is
// the monitor of the sink the library plays into, so the demo hears its own stimuli.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>
#include <vector>

// Interleaved 16-bit stereo frames at 44100 Hz, measured from where sound was first heard.
class DemoRecording
{
public:
    DemoRecording() : m_onset(-1) {}
    explicit DemoRecording(std::vector<short> samples);

    bool heardAnything() const { return m_onset >= 0; }
    // Level of a channel (0 left, 1 right) in dBFS over `seconds` starting `fromSeconds`
    // after the onset; a sine reads its peak level, silence reads -200.
    double levelDbfs(int channel, double fromSeconds, double seconds) const;
    // Level over the last `seconds` of the recording.
    double tailDbfs(int channel, double seconds) const;

private:
    double levelOver(int channel, size_t first, size_t count) const;
    size_t frames() const { return m_samples.size() / 2; }

    std::vector<short> m_samples;
    long long m_onset; // first frame of the first 10 ms block above -50 dBFS, or -1
};

class DemoRecorder
{
public:
    DemoRecorder() = default;
    ~DemoRecorder();
    DemoRecorder(const DemoRecorder&) = delete;
    DemoRecorder& operator=(const DemoRecorder&) = delete;

    // Starts capturing into a buffer of `maxSeconds` and returns once frames arrive,
    // so that a stimulus started afterwards is heard from its beginning.
    bool start(double maxSeconds);
    // Stops capturing and hands back what was recorded.
    DemoRecording stop();

private:
    bool awaitFirstFrames();
    void release();

    IDirectSoundCapture8* m_capture = nullptr;
    IDirectSoundCaptureBuffer* m_buffer = nullptr;
};

const unsigned kDemoRate = 44100;
