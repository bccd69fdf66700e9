#include "BufferHarness.h"

#include <algorithm>

using namespace dsty_test;

void BufferLoopback::SetUp()
{
    DeviceTest::SetUp();
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
}

// The buffer's interfaces go before the device that made them.
void BufferLoopback::TearDown()
{
    stim.release3DBuffers();
    DeviceTest::TearDown();
}

void BufferLoopback::loadTone(double hz, double dbfs, double seconds, unsigned rate, ToneChannels channels)
{
    const std::vector<int16_t> pcm = sineTone(hz, dbfs, seconds, rate, channels);
    const unsigned width = channels == ToneChannels::Mono ? 1 : 2;
    ASSERT_EQ(data.setNewSndData(reinterpret_cast<const char*>(pcm.data()),
                                 static_cast<unsigned long>(pcm.size() * sizeof(int16_t)), pcmFormat(rate, width)),
              1);
}

void BufferLoopback::startRecording()
{
    ASSERT_TRUE(m_recorder.start()) << std::hex << m_recorder.lastResult();
}

std::vector<int16_t> BufferLoopback::finishRecording()
{
    m_recorder.stop();
    return m_recorder.samples();
}

size_t BufferLoopback::onset(PcmView recorded)
{
    const long long frame = onsetFrame(recorded, -40.0);
    EXPECT_GE(frame, 0) << "nothing was heard";
    return frame < 0 ? 0 : static_cast<size_t>(frame);
}

PcmView BufferLoopback::afterOnset(PcmView recorded, double fromSeconds, double seconds)
{
    const size_t first = onset(recorded) + static_cast<size_t>(fromSeconds * kRate);
    const size_t count = static_cast<size_t>(seconds * kRate);
    const PcmView part = slice(recorded, first, count);
    EXPECT_EQ(part.frames, count) << "the recording ends too early";
    return part;
}

PcmView BufferLoopback::tail(PcmView recorded, double seconds)
{
    const size_t count = static_cast<size_t>(seconds * kRate);
    return slice(recorded, recorded.frames > count ? recorded.frames - count : 0, count);
}

double BufferLoopback::leftMinusRightDb(PcmView pcm)
{
    return rmsDbfs(pcm, 0) - rmsDbfs(pcm, 1);
}

double BufferLoopback::toneFrequency(PcmView pcm, unsigned channel)
{
    const size_t piece = kRate / 20;
    std::vector<double> found;
    for (size_t first = 0; first + piece <= pcm.frames; first += piece)
        found.push_back(dominantFrequency(slice(pcm, first, piece), channel, kRate));
    if (found.empty())
        return 0.0;
    std::nth_element(found.begin(), found.begin() + found.size() / 2, found.end());
    return found[found.size() / 2];
}
