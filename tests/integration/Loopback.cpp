#include "Loopback.h"

#include "SndWaveWriteStreamty.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>

using namespace dsty_test;

std::vector<std::wstring>& shownMessages()
{
    static std::vector<std::wstring> messages;
    return messages;
}

namespace
{
int CALLBACK answerOk(LPCTSTR text, UINT, UINT)
{
    shownMessages().emplace_back(text);
    return IDOK;
}
}

// Message boxes are answered in place, so none can block an unattended run.
int main(int argc, char** argv)
{
    AfxSetMessageBoxAnswerer(answerOk);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

void Loopback::SetUp()
{
    shownMessages().clear();
    window = CreateWindowExW(0, L"STATIC", L"integration host", WS_OVERLAPPEDWINDOW, 0, 0, 200, 100, nullptr,
                             nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_NE(window, nullptr);
}

void Loopback::TearDown()
{
    stim.release3DBuffers();
    device.releaseDSndty(&device);
    DestroyWindow(window);
}

void Loopback::openDevice()
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1) << "no sound device: is the sound server up?";
}

void Loopback::load(const std::vector<int16_t>& pcm, unsigned channels)
{
    ASSERT_EQ(data.setNewSndData(reinterpret_cast<const char*>(pcm.data()),
                                 static_cast<unsigned long>(pcm.size() * sizeof(int16_t)), pcmFormat(kRate, channels)),
              1);
}

void Loopback::loadTone(double hz, double seconds, ToneChannels channels)
{
    load(sineTone(hz, -6.0, seconds, kRate, channels), channels == ToneChannels::Mono ? 1 : 2);
}

void Loopback::startRecording()
{
    ASSERT_TRUE(m_recorder.start()) << "nothing can be heard: is the sink's monitor the default capture source? 0x"
                                    << std::hex << m_recorder.lastResult();
}

void Loopback::finishRecording()
{
    m_recorder.stop();
    heard = m_recorder.samples();
}

PcmView Loopback::heardAt(double from, double seconds)
{
    const PcmView all = view(heard, 2);
    const long long onset = onsetFrame(all, -40.0);
    EXPECT_GE(onset, 0) << "nothing was heard";
    const size_t count = static_cast<size_t>(seconds * kRate);
    const PcmView part = slice(all, static_cast<size_t>(std::max(0LL, onset) + from * kRate), count);
    EXPECT_EQ(part.frames, count) << "the recording ends too early";
    return part;
}

double Loopback::toneFrequency(PcmView pcm, unsigned channel)
{
    std::vector<double> found;
    for (size_t first = 0; first + kRate / 20 <= pcm.frames; first += kRate / 20)
        found.push_back(dominantFrequency(slice(pcm, first, kRate / 20), channel, kRate));
    if (found.empty())
        return 0.0;
    std::nth_element(found.begin(), found.begin() + found.size() / 2, found.end());
    return found[found.size() / 2];
}

double Loopback::leftMinusRightDb(PcmView pcm)
{
    return rmsDbfs(pcm, 0) - rmsDbfs(pcm, 1);
}

std::string waveHeader(size_t size, WORD channels, WORD bits)
{
    const DWORD rate = 44100, dataSize = static_cast<DWORD>(size), riff = 36 + dataSize, fmtSize = 16;
    const DWORD byteRate = rate * channels * bits / 8;
    const WORD align = static_cast<WORD>(channels * bits / 8), pcm = 1;
    std::string header;
    auto put = [&](const void* p, size_t n) { header.append(static_cast<const char*>(p), n); };
    put("RIFF", 4), put(&riff, 4), put("WAVEfmt ", 8), put(&fmtSize, 4), put(&pcm, 2), put(&channels, 2);
    put(&rate, 4), put(&byteRate, 4), put(&align, 2), put(&bits, 2), put("data", 4), put(&dataSize, 4);
    return header;
}

// The canonical header with a JUNK chunk keeping the room of an RF64 header after "WAVE".
static std::string reservedWaveHeader(size_t size)
{
    std::string header = waveHeader(size, 2, 16);
    const DWORD riff = static_cast<DWORD>(72 + size), junk = 28;
    header.replace(4, 4, reinterpret_cast<const char*>(&riff), 4);
    header.insert(12, std::string("JUNK", 4) + std::string(reinterpret_cast<const char*>(&junk), 4) + std::string(28, '\0'));
    return header;
}

std::vector<int16_t> readWave(const std::wstring& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    size_t headerSize = 44;
    if (bytes.size() < 44 || bytes.compare(0, 44, waveHeader(bytes.size() - 44, 2, 16)) != 0)
    {
        headerSize = 80;
        if (bytes.size() < 80 || bytes.compare(0, 80, reservedWaveHeader(bytes.size() - 80)) != 0)
            return {};
    }
    const auto* samples = reinterpret_cast<const int16_t*>(bytes.data() + headerSize);
    return std::vector<int16_t>(samples, samples + (bytes.size() - headerSize) / 2);
}

double stepHz(int second)
{
    return 400.0 * (second + 1);
}

void writeSteppedTone(const std::wstring& path)
{
    std::vector<int16_t> pcm;
    double phase = 0.0;
    for (size_t i = 0; i < static_cast<size_t>(3.5 * 44100); i++)
    {
        phase += 2.0 * 3.14159265358979 * stepHz(static_cast<int>(i / 44100)) / 44100;
        const auto sample = static_cast<int16_t>(8200.0 * std::sin(phase));
        pcm.insert(pcm.end(), {sample, sample});
    }
    tWAVEFORMATEX wfx = pcmFormat(44100, 2);
    CSndWaveWriteStreamty writer;
    ASSERT_EQ(1, writer.Open(CString(path.c_str()), &wfx));
    ASSERT_EQ(1, writer.Write(static_cast<unsigned>(pcm.size() * 2), reinterpret_cast<unsigned char*>(pcm.data()), nullptr));
    ASSERT_EQ(1, writer.Close());
}

void Loopback::expectSteps()
{
    for (int second = 0; second < 4; second++)
        EXPECT_NEAR(stepHz(second), toneFrequency(heardAt(second + 0.15, 0.25), 0), 10.0) << "second " << second;
}
