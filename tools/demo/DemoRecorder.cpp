#include "DemoRecorder.h"
#include <cmath>
#include <utility>

namespace
{
const size_t kBlockFrames = kDemoRate / 100;
const double kSilenceDb = -200.0;
const double kOnsetDb = -50.0;
}

DemoRecording::DemoRecording(std::vector<short> samples)
    : m_samples(std::move(samples)),
      m_onset(-1)
{
    for (size_t first = 0; first + kBlockFrames <= frames() && m_onset < 0; first += kBlockFrames)
    {
        if (levelOver(0, first, kBlockFrames) >= kOnsetDb || levelOver(1, first, kBlockFrames) >= kOnsetDb)
            m_onset = static_cast<long long>(first);
    }
}

// +3.01 dB so that a sine reads its peak level, as the stimuli are specified.
double DemoRecording::levelOver(int channel, size_t first, size_t count) const
{
    if (first >= frames())
        return kSilenceDb;
    if (count > frames() - first)
        count = frames() - first;
    double sum = 0.0;
    for (size_t i = first; i < first + count; i++)
    {
        double sample = m_samples[2 * i + channel] / 32768.0;
        sum += sample * sample;
    }
    if (sum == 0.0)
        return kSilenceDb;
    return 10.0 * std::log10(sum / count) + 3.0103;
}

double DemoRecording::levelDbfs(int channel, double fromSeconds, double seconds) const
{
    if (m_onset < 0)
        return kSilenceDb;
    size_t first = static_cast<size_t>(m_onset) + static_cast<size_t>(fromSeconds * kDemoRate);
    return levelOver(channel, first, static_cast<size_t>(seconds * kDemoRate));
}

double DemoRecording::tailDbfs(int channel, double seconds) const
{
    size_t count = static_cast<size_t>(seconds * kDemoRate);
    size_t first = frames() > count ? frames() - count : 0;
    return levelOver(channel, first, count);
}

DemoRecorder::~DemoRecorder()
{
    release();
}

void DemoRecorder::release()
{
    if (m_buffer != NULL)
        m_buffer->Release();
    if (m_capture != NULL)
        m_capture->Release();
    m_buffer = NULL;
    m_capture = NULL;
}

bool DemoRecorder::start(double maxSeconds)
{
    release();
    if (FAILED(DirectSoundCaptureCreate8(NULL, &m_capture, NULL)))
        return false;
    WAVEFORMATEX format = {WAVE_FORMAT_PCM, 2, kDemoRate, 4 * kDemoRate, 4, 16, 0};
    DSCBUFFERDESC desc = {};
    desc.dwSize = sizeof(desc);
    desc.dwBufferBytes = static_cast<DWORD>(maxSeconds * kDemoRate) * format.nBlockAlign;
    desc.lpwfxFormat = &format;
    if (FAILED(m_capture->CreateCaptureBuffer(&desc, &m_buffer, NULL)))
        return false;
    // Not looping: the buffer is made longer than any recording and read once at the end.
    if (FAILED(m_buffer->Start(0)))
        return false;
    return awaitFirstFrames();
}

// Wine's first capture in a process delivers nothing for most of a second.
bool DemoRecorder::awaitFirstFrames()
{
    DWORD started = GetTickCount();
    DWORD capturePos = 0, readPos = 0;
    while (SUCCEEDED(m_buffer->GetCurrentPosition(&capturePos, &readPos)))
    {
        if (capturePos != 0)
            return true;
        if (GetTickCount() - started > 3000)
            return false;
        Sleep(1);
    }
    return false;
}

DemoRecording DemoRecorder::stop()
{
    std::vector<short> samples;
    DWORD capturePos = 0, readPos = 0;
    if (m_buffer == NULL || FAILED(m_buffer->GetCurrentPosition(&capturePos, &readPos)))
        return DemoRecording();
    m_buffer->Stop();
    void* data = NULL;
    DWORD bytes = 0;
    if (readPos > 0 && SUCCEEDED(m_buffer->Lock(0, readPos, &data, &bytes, NULL, NULL, 0)))
    {
        const short* first = static_cast<const short*>(data);
        samples.assign(first, first + bytes / sizeof(short));
        m_buffer->Unlock(data, bytes, NULL, 0);
    }
    release();
    return DemoRecording(std::move(samples));
}
