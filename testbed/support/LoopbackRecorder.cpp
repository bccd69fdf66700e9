#include "LoopbackRecorder.h"

#include "ToneGenerator.h"

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

LoopbackRecorder::~LoopbackRecorder()
{
    release();
}

// A minute of buffer, not looping: nothing has to drain it while a test runs. Wine's first
// capture in a process delivers nothing for most of a second, and what was heard meanwhile
// is lost; waiting for the cursor to move makes a test's sound start after recording has.
bool LoopbackRecorder::start()
{
    release();
    m_stopped.clear();
    WAVEFORMATEX format = pcmFormat(m_sampleRate, m_channels);
    DSCBUFFERDESC desc{sizeof desc, 0, 60 * format.nAvgBytesPerSec, 0, &format, 0, nullptr};
    if (FAILED(m_result = DirectSoundCaptureCreate8(nullptr, &m_capture, nullptr)) ||
        FAILED(m_result = m_capture->CreateCaptureBuffer(&desc, &m_buffer, nullptr)) ||
        FAILED(m_result = m_buffer->Start(0)))
        return false;
    DWORD capturePos = 0, readPos = 0;
    for (int waited = 0; waited < 300; waited++, Sleep(10))
        if (FAILED(m_result = m_buffer->GetCurrentPosition(&capturePos, &readPos)) || capturePos != 0)
            return SUCCEEDED(m_result);
    m_result = HRESULT_FROM_WIN32(ERROR_TIMEOUT);
    return false;
}

void LoopbackRecorder::stop()
{
    if (!m_buffer)
        return;
    m_stopped = samples();
    release();
}

void LoopbackRecorder::release()
{
    if (m_buffer)
    {
        m_buffer->Stop();
        m_buffer->Release();
    }
    if (m_capture)
        m_capture->Release();
    m_buffer = nullptr;
    m_capture = nullptr;
}

// Everything up to the device's read cursor; once stopped, what was recorded.
std::vector<int16_t> LoopbackRecorder::samples() const
{
    DWORD capturePos = 0, readPos = 0, bytes = 0;
    void* data = nullptr;
    if (!m_buffer || FAILED(m_buffer->GetCurrentPosition(&capturePos, &readPos)) || readPos == 0 ||
        FAILED(m_buffer->Lock(0, readPos, &data, &bytes, nullptr, nullptr, 0)))
        return m_stopped;
    const auto* first = static_cast<const int16_t*>(data);
    std::vector<int16_t> copy(first, first + bytes / 2);
    m_buffer->Unlock(data, bytes, nullptr, 0);
    return copy;
}
}
