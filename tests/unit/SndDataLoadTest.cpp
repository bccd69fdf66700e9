// The loader of sound into containers: 8- and 16-bit PCM taken byte for byte; 24- and 32-bit
// integer and 32-bit float PCM, in plain and extensible files and from memory, made 16-bit
// within the dither's step and without bias; what cannot be played refused with its reason.

#include "UnitFixtures.h"
#include "loading/SndDataLoadty.h"

#include <cmath>
#include <cstring>
#include <fstream>

namespace
{
const size_t kFrames = 4000;

// Sample k of channel c, in the 16-bit scale: a slow ramp over most of the range.
double wanted(size_t k, unsigned c)
{
    return -30000.0 + 60000.0 * static_cast<double>(k) / kFrames + 0.37 * c;
}

// The samples as a file stores them: 8-bit unsigned, 16/24/32-bit signed, or float.
std::vector<BYTE> encode(WORD bits, bool isFloat, unsigned channels)
{
    std::vector<BYTE> bytes;
    for (size_t k = 0; k < kFrames; k++)
        for (unsigned c = 0; c < channels; c++)
        {
            const double v = wanted(k, c);
            if (isFloat)
            {
                const float f = static_cast<float>(v / 32768.0);
                bytes.insert(bytes.end(), reinterpret_cast<const BYTE*>(&f), reinterpret_cast<const BYTE*>(&f) + 4);
                continue;
            }
            const long long scaled = std::llround(v * std::pow(2.0, bits - 16));
            for (int b = 0; b < bits / 8; b++)
                bytes.push_back(static_cast<BYTE>((bits == 8 ? scaled + 128 : scaled) >> (8 * b)));
        }
    return bytes;
}

// A wave file of the samples: a plain fmt chunk, or the extensible one with its sub-format.
std::vector<BYTE> waveFile(WORD tag, WORD bits, unsigned channels, bool extensible, const std::vector<BYTE>& data)
{
    const WORD align = static_cast<WORD>(channels * bits / 8);
    std::vector<BYTE> fmt(extensible ? 40 : 16, 0);
    const WORD fileTag = extensible ? 0xFFFE : tag;
    const DWORD rate = 8000, byteRate = rate * align;
    std::memcpy(&fmt[0], &fileTag, 2), fmt[2] = static_cast<BYTE>(channels), std::memcpy(&fmt[4], &rate, 4);
    std::memcpy(&fmt[8], &byteRate, 4), std::memcpy(&fmt[12], &align, 2), std::memcpy(&fmt[14], &bits, 2);
    if (extensible)
    {
        fmt[16] = 22, fmt[18] = static_cast<BYTE>(bits); // cbSize, valid bits
        const BYTE guid[16] = {static_cast<BYTE>(tag), 0, 0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
        std::memcpy(&fmt[24], guid, 16);
    }
    std::vector<BYTE> file = {'R', 'I', 'F', 'F', 0, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' '};
    const DWORD fmtSize = static_cast<DWORD>(fmt.size()), dataSize = static_cast<DWORD>(data.size());
    file.insert(file.end(), reinterpret_cast<const BYTE*>(&fmtSize), reinterpret_cast<const BYTE*>(&fmtSize) + 4);
    file.insert(file.end(), fmt.begin(), fmt.end());
    file.insert(file.end(), {'d', 'a', 't', 'a'});
    file.insert(file.end(), reinterpret_cast<const BYTE*>(&dataSize), reinterpret_cast<const BYTE*>(&dataSize) + 4);
    file.insert(file.end(), data.begin(), data.end());
    const DWORD riff = static_cast<DWORD>(file.size() - 8);
    std::memcpy(&file[4], &riff, 4);
    return file;
}
}

TEST(SndDataLoad, MakesEveryFormatPlayableWithinTheDithersStepWithoutBias)
{
    const struct { WORD tag, bits; bool extensible, fromFile; } rows[] = {
        {WAVE_FORMAT_PCM, 24, false, true}, {WAVE_FORMAT_PCM, 24, true, true},  {WAVE_FORMAT_PCM, 32, false, true},
        {WAVE_FORMAT_IEEE_FLOAT, 32, false, true}, {WAVE_FORMAT_IEEE_FLOAT, 32, true, true},
        {WAVE_FORMAT_PCM, 24, false, false}, {WAVE_FORMAT_IEEE_FLOAT, 32, false, false},
    };
    TempFile file;
    for (const auto& row : rows)
    {
        SCOPED_TRACE(std::to_string(row.tag) + "/" + std::to_string(row.bits) + (row.extensible ? " extensible" : "") +
                     (row.fromFile ? " file" : " memory"));
        const std::vector<BYTE> data = encode(row.bits, row.tag == WAVE_FORMAT_IEEE_FLOAT, 2);
        CSndDatatyx loaded;
        CSndDataLoadty loader;
        if (row.fromFile)
        {
            const std::vector<BYTE> wave = waveFile(row.tag, row.bits, 2, row.extensible, data);
            std::ofstream(file.path.c_str(), std::ios::binary).write(reinterpret_cast<const char*>(wave.data()), wave.size());
            ASSERT_EQ(1, loader.loadWaveFile(file.path.c_str(), &loaded)) << std::wstring(loader.getLoadReason().GetString());
        }
        else
        {
            tWAVEFORMATEX wfx = {row.tag, 2, 8000, 8000u * row.bits / 4, static_cast<WORD>(row.bits / 4), row.bits, 0};
            ASSERT_EQ(1, loader.loadPcm(wfx, data.data(), static_cast<unsigned long>(data.size()), &loaded));
        }
        EXPECT_TRUE(sameFormat(pcmFormat(2, 8000, 16), loaded.getAudioWaveDataWfx()));
        ASSERT_EQ(kFrames * 4, loaded.getDataSize());
        const short* samples = reinterpret_cast<const short*>(loaded.getDataPointer());
        double sum = 0.0, worst = 0.0;
        for (size_t i = 0; i < 2 * kFrames; i++)
        {
            const double error = samples[i] - wanted(i / 2, i % 2);
            sum += error;
            worst = std::max(worst, std::fabs(error));
        }
        EXPECT_LT(worst, 1.5) << "more than the dither's step";
        EXPECT_LT(std::fabs(sum / (2 * kFrames)), 0.05) << "the rounding leans one way";
    }
}

TEST(SndDataLoad, TakesEightAndSixteenBitsAsTheyAreAndRefusesWhatCannotPlay)
{
    for (WORD bits : {8, 16})
    {
        const std::vector<BYTE> data = encode(bits, false, 1);
        tWAVEFORMATEX wfx = pcmFormat(1, 8000, bits);
        CSndDatatyx loaded;
        CSndDataLoadty loader;
        ASSERT_EQ(1, loader.loadPcm(wfx, data.data(), static_cast<unsigned long>(data.size()), &loaded));
        EXPECT_TRUE(sameFormat(wfx, loaded.getAudioWaveDataWfx()));
        EXPECT_EQ(0, std::memcmp(data.data(), loaded.getDataPointer(), data.size())) << bits;
    }
    TempFile file;
    const struct { std::vector<BYTE> bytes; CSndDataLoadty::LoadResult result; const wchar_t* reason; } refused[] = {
        {waveFile(WAVE_FORMAT_PCM, 16, 3, false, encode(16, false, 3)), CSndDataLoadty::kFormatRefused,
         L"3 channels cannot be played (1 or 2 only)"},
        {waveFile(WAVE_FORMAT_PCM, 16, 1, false, {}), CSndDataLoadty::kFileRefused, L"the wave file holds no sound"},
        {{'n', 'o', 't', ' ', 'w', 'a', 'v', 'e'}, CSndDataLoadty::kFileRefused, L"Not a RIFF wave file"},
    };
    for (const auto& row : refused)
    {
        std::ofstream(file.path.c_str(), std::ios::binary)
            .write(reinterpret_cast<const char*>(row.bytes.data()), row.bytes.size());
        CSndDatatyx untouched;
        CSndDataLoadty loader;
        EXPECT_EQ(0, loader.loadWaveFile(file.path.c_str(), &untouched));
        EXPECT_EQ(row.result, loader.getLoadResult());
        EXPECT_EQ(std::wstring(row.reason), std::wstring(loader.getLoadReason().GetString()));
        EXPECT_FALSE(untouched.hasAudioWaveData());
    }
}
