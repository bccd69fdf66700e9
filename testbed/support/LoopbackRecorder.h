#pragma once
// Records what the default capture device hears. On the test machine that device is the
// monitor of the sink everything plays into, so a test hears what the library played.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>

#include <cstdint>
#include <vector>

namespace dsty_test
{
class LoopbackRecorder
{
public:
    // 16-bit PCM; 44100 Hz stereo unless told otherwise.
    explicit LoopbackRecorder(unsigned sampleRate = 44100, unsigned channels = 2)
        : m_sampleRate(sampleRate), m_channels(channels) {}
    ~LoopbackRecorder();
    LoopbackRecorder(const LoopbackRecorder&) = delete;
    LoopbackRecorder& operator=(const LoopbackRecorder&) = delete;

    // Opens the default capture device and starts capturing, for at most a minute; returns
    // once frames arrive. False on failure, with the platform's code in lastResult().
    bool start();
    // Stops capturing; what was recorded stays available.
    void stop();

    std::vector<int16_t> samples() const;  // interleaved frames recorded so far
    HRESULT lastResult() const { return m_result; }

private:
    void release();

    unsigned m_sampleRate, m_channels;
    IDirectSoundCapture8* m_capture = nullptr;
    IDirectSoundCaptureBuffer* m_buffer = nullptr;
    std::vector<int16_t> m_stopped;  // what was recorded, once stopped
    HRESULT m_result = S_OK;
};

LONGLONG performanceCounter();
double counterSeconds(LONGLONG from, LONGLONG to);
}
