#pragma once
// Records what the default capture device hears. On the test machine that device is the
// monitor of the sink everything plays into, so a test hears what the library played.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

namespace dsty_test
{
class LoopbackRecorder
{
public:
    // 16-bit PCM; 44100 Hz stereo unless told otherwise.
    explicit LoopbackRecorder(unsigned sampleRate = 44100, unsigned channels = 2);
    ~LoopbackRecorder();
    LoopbackRecorder(const LoopbackRecorder&) = delete;
    LoopbackRecorder& operator=(const LoopbackRecorder&) = delete;

    // Opens the default capture device and starts a looping capture drained by a
    // background thread; returns once frames arrive. False on failure, with the
    // platform's code in lastResult().
    bool start();
    // Stops capturing; what was recorded stays available.
    void stop();

    std::vector<int16_t> samples() const;  // interleaved frames recorded so far
    size_t frames() const;
    // QueryPerformanceCounter value at which the first recorded frame was heard.
    LONGLONG firstFrameCounter() const { return m_firstFrameCounter; }
    // Seconds from the first recorded frame to a QueryPerformanceCounter value.
    double secondsSinceFirstFrame(LONGLONG counter) const;

    unsigned sampleRate() const { return m_sampleRate; }
    unsigned channels() const { return m_channels; }
    HRESULT lastResult() const { return m_result; }

private:
    bool awaitFirstFrames();
    void drainLoop();
    void drain();
    void release();

    unsigned m_sampleRate, m_channels;
    DWORD m_bufferBytes = 0;
    IDirectSoundCapture8* m_capture = nullptr;
    IDirectSoundCaptureBuffer* m_buffer = nullptr;
    DWORD m_readOffset = 0;
    HRESULT m_result = S_OK;
    LONGLONG m_firstFrameCounter = 0;
    std::atomic<bool> m_running{false};
    std::thread m_drainer;
    mutable std::mutex m_lock;
    std::vector<int16_t> m_samples;
};

LONGLONG performanceCounter();
double counterSeconds(LONGLONG from, LONGLONG to);
}
