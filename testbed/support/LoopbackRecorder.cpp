#include "LoopbackRecorder.h"

#include <chrono>

namespace dsty_test
{
LONGLONG performanceCounter()
{
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

double counterSeconds(LONGLONG from, LONGLONG to)
{
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(to - from) / static_cast<double>(frequency.QuadPart);
}

LoopbackRecorder::LoopbackRecorder(unsigned sampleRate, unsigned channels)
    : m_sampleRate(sampleRate), m_channels(channels)
{
}

LoopbackRecorder::~LoopbackRecorder()
{
    stop();
    release();
}

bool LoopbackRecorder::start()
{
    stop();
    release();
    m_samples.clear();
    m_readOffset = 0;

    m_result = DirectSoundCaptureCreate8(nullptr, &m_capture, nullptr);
    if (FAILED(m_result))
        return false;

    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = static_cast<WORD>(m_channels);
    format.nSamplesPerSec = m_sampleRate;
    format.wBitsPerSample = 16;
    format.nBlockAlign = static_cast<WORD>(2 * m_channels);
    format.nAvgBytesPerSec = m_sampleRate * format.nBlockAlign;

    // One second of buffer: the drainer wakes every few ms, so it never falls a lap behind.
    m_bufferBytes = format.nAvgBytesPerSec;
    DSCBUFFERDESC desc{};
    desc.dwSize = sizeof desc;
    desc.dwBufferBytes = m_bufferBytes;
    desc.lpwfxFormat = &format;
    m_result = m_capture->CreateCaptureBuffer(&desc, &m_buffer, nullptr);
    if (FAILED(m_result))
        return false;

    m_result = m_buffer->Start(DSCBSTART_LOOPING);
    if (FAILED(m_result) || !awaitFirstFrames())
        return false;

    m_running = true;
    m_drainer = std::thread(&LoopbackRecorder::drainLoop, this);
    return true;
}

// Wine's first capture in a process delivers nothing for most of a second, and what was
// heard meanwhile is lost. Waiting for the cursor to move makes a test's sound start after
// recording really has, and the cursor then tells when the first frame was heard.
bool LoopbackRecorder::awaitFirstFrames()
{
    const LONGLONG deadline = performanceCounter() + static_cast<LONGLONG>(3.0 / counterSeconds(0, 1));
    DWORD capturePos = 0, readPos = 0;
    while (SUCCEEDED(m_result = m_buffer->GetCurrentPosition(&capturePos, &readPos)))
    {
        const LONGLONG now = performanceCounter();
        if (capturePos != 0)
        {
            const double heardSeconds = static_cast<double>(capturePos) / (2.0 * m_channels * m_sampleRate);
            m_firstFrameCounter = now - static_cast<LONGLONG>(heardSeconds / counterSeconds(0, 1));
            return true;
        }
        if (now > deadline)
        {
            m_result = HRESULT_FROM_WIN32(ERROR_TIMEOUT);
            return false;
        }
        Sleep(1);
    }
    return false;
}

void LoopbackRecorder::stop()
{
    if (!m_running.exchange(false))
        return;
    m_drainer.join();
    drain();
    m_buffer->Stop();
}

void LoopbackRecorder::release()
{
    if (m_buffer)
        m_buffer->Release();
    if (m_capture)
        m_capture->Release();
    m_buffer = nullptr;
    m_capture = nullptr;
}

void LoopbackRecorder::drainLoop()
{
    while (m_running)
    {
        drain();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

// Copies everything between our last read and the device's read cursor.
void LoopbackRecorder::drain()
{
    DWORD capturePos = 0, readPos = 0;
    if (FAILED(m_buffer->GetCurrentPosition(&capturePos, &readPos)))
        return;
    const DWORD available = (readPos + m_bufferBytes - m_readOffset) % m_bufferBytes;
    if (available == 0)
        return;

    void *first = nullptr, *second = nullptr;
    DWORD firstBytes = 0, secondBytes = 0;
    if (FAILED(m_buffer->Lock(m_readOffset, available, &first, &firstBytes, &second, &secondBytes, 0)))
        return;
    {
        std::lock_guard<std::mutex> hold(m_lock);
        const auto* a = static_cast<const int16_t*>(first);
        const auto* b = static_cast<const int16_t*>(second);
        m_samples.insert(m_samples.end(), a, a + firstBytes / 2);
        if (b)
            m_samples.insert(m_samples.end(), b, b + secondBytes / 2);
    }
    m_buffer->Unlock(first, firstBytes, second, secondBytes);
    m_readOffset = (m_readOffset + available) % m_bufferBytes;
}

std::vector<int16_t> LoopbackRecorder::samples() const
{
    std::lock_guard<std::mutex> hold(m_lock);
    return m_samples;
}

size_t LoopbackRecorder::frames() const
{
    std::lock_guard<std::mutex> hold(m_lock);
    return m_samples.size() / m_channels;
}

double LoopbackRecorder::secondsSinceFirstFrame(LONGLONG counter) const
{
    return counterSeconds(m_firstFrameCounter, counter);
}
}
