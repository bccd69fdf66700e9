// The stream writer as the capture-to-file path uses it (Open, Write piece by piece, Close
// with the byte count, or deletion without Close), checked on the file's own bytes and
// read back with the reader. writer_s16.wav and writer_u8_odd.wav stay for sox to read.
#include "SndDataReadtyStream.h"
#include "SndWaveWriteStreamty.h"
#include "TestFiles.h"
#include <gtest/gtest.h>
#include <memory>

namespace
{
tWAVEFORMATEX pcm(WORD channels, DWORD rate, WORD bits)
{
    const WORD align = static_cast<WORD>(channels * bits / 8);
    return {WAVE_FORMAT_PCM, channels, rate, 0, align, bits, 0}; // no byte rate given
}

Bytes ramp(size_t n)
{
    Bytes b(n);
    for (size_t i = 0; i < n; ++i)
        b[i] = static_cast<uint8_t>(i * 7 + i / 251);
    return b;
}

int write(CSndWaveWriteStreamty& writer, Bytes bytes)
{
    return writer.Write(static_cast<unsigned int>(bytes.size()), bytes.data(), nullptr);
}

// What readers rely on: RIFF size = file size - 8, fmt of 16, data size, one pad byte if odd.
void expectHeaderSizes(const std::wstring& path, uint32_t data)
{
    const Bytes file = readFile(path);
    ASSERT_GE(file.size(), 44u);
    EXPECT_EQ(0, std::memcmp(file.data(), "RIFF", 4));
    EXPECT_EQ(0, std::memcmp(&file[8], "WAVEfmt \x10\0\0\0\x01\0", 14));
    EXPECT_EQ(0, std::memcmp(&file[36], "data", 4));
    EXPECT_EQ(data, getLe32(file, 40));
    EXPECT_EQ(file.size() - 8, getLe32(file, 4));
    EXPECT_EQ(44u + data + data % 2, file.size());
}

Bytes readBack(const std::wstring& path, tWAVEFORMATEX& wfx)
{
    CSndDataReadtyStream reader;
    unsigned long size = 0;
    EXPECT_EQ(1, reader.initStream2Read(path.c_str(), &size, &wfx));
    Bytes data(size + 1);
    reader.readNewData(data.data(), size = size + 1);
    data.resize(size);
    return data;
}
} // namespace

TEST(WaveWriter, RoundTripInUnevenPieces)
{
    const std::wstring path = dataPath(L"writer_s16.wav");
    const Bytes samples = ramp(2205 * 4);
    tWAVEFORMATEX wfx = pcm(2, 22050, 16), back;
    CSndWaveWriteStreamty writer;
    ASSERT_EQ(1, writer.Open(path.c_str(), &wfx));
    for (size_t at = 0, piece = 1001; at < samples.size(); at += piece)
    {
        Bytes part(samples.begin() + at, samples.begin() + std::min(samples.size(), at + piece));
        unsigned int written = 0;
        EXPECT_EQ(1, writer.Write(static_cast<unsigned int>(part.size()), part.data(), &written));
        EXPECT_EQ(part.size(), written);
    }
    EXPECT_EQ(1, writer.Close(writer.GetDataBytesWritten()));
    expectHeaderSizes(path, 2205 * 4);
    EXPECT_EQ(samples, readBack(path, back));
    wfx.nAvgBytesPerSec = 88200; // derived from rate and block align
    EXPECT_EQ(0, std::memcmp(&wfx, &back, sizeof wfx));
}

TEST(WaveWriter, DeletedWithoutCloseLeavesAPaddedValidFile)
{
    const std::wstring path = dataPath(L"writer_u8_odd.wav");
    tWAVEFORMATEX wfx = pcm(1, 11025, 8), back;
    auto writer = std::make_unique<CSndWaveWriteStreamty>();
    ASSERT_EQ(1, writer->Open(path.c_str(), &wfx));
    ASSERT_EQ(1, write(*writer, {0x10, 0x80, 0xF0}));
    writer.reset();
    expectHeaderSizes(path, 3);
    EXPECT_EQ(0, readFile(path).back()) << "pad byte";
    EXPECT_EQ(Bytes({0x10, 0x80, 0xF0}), readBack(path, back));
}

// Close cuts to the size given but never claims more; opening another file finishes the first.
TEST(WaveWriter, CloseCutsToTheSizeGivenAndOpeningAgainFinishesTheFile)
{
    const std::wstring path = dataPath(L"writer_close.wav");
    tWAVEFORMATEX wfx = pcm(1, 8000, 8);
    CSndWaveWriteStreamty writer;
    ASSERT_EQ(1, writer.Open(path.c_str(), &wfx));
    ASSERT_EQ(1, write(writer, ramp(10)));
    EXPECT_EQ(1, writer.Close(7));
    expectHeaderSizes(path, 7);
    ASSERT_EQ(1, writer.Open(path.c_str(), &wfx));
    ASSERT_EQ(1, write(writer, ramp(10)));
    EXPECT_EQ(0, writer.Close(11));
    EXPECT_EQ(WAVEFILE_ERR_SIZE_MISMATCH, writer.GetResult());
    expectHeaderSizes(path, 10);
    ASSERT_EQ(1, writer.Open(path.c_str(), &wfx));
    ASSERT_EQ(1, write(writer, ramp(6)));
    ASSERT_EQ(1, writer.Open(dataPath(L"writer_second.wav").c_str(), &wfx));
    expectHeaderSizes(path, 6);
}

TEST(WaveWriter, DataPastTheRiffLimitIsRefusedWhole)
{
    const std::wstring path = dataPath(L"writer_limit.wav");
    tWAVEFORMATEX wfx = pcm(2, 44100, 16);
    CSndWaveWriteStreamty writer;
    ASSERT_EQ(1, writer.Open(path.c_str(), &wfx));
    unsigned char byte = 0;
    unsigned int written = 99;
    // Refused on the size alone: the one real byte behind the pointer is never reached.
    EXPECT_EQ(0, writer.Write(0xFFFFFFF0u, &byte, &written));
    EXPECT_EQ(WAVEFILE_ERR_TOO_LARGE, writer.GetResult());
    EXPECT_EQ(0u, written);
    EXPECT_EQ(1, write(writer, ramp(4))) << "data that fits is still taken";
    EXPECT_EQ(1, writer.Close());
    expectHeaderSizes(path, 4);
}

TEST(WaveWriter, RefusesWhatItCannotWriteAndCreatesNoFile)
{
    const std::wstring path = dataPath(L"writer_refused.wav");
    DeleteFileW(path.c_str());
    tWAVEFORMATEX floats = pcm(1, 8000, 32), twelveBits = pcm(1, 8000, 12), badAlign = pcm(2, 8000, 16);
    floats.wFormatTag = WAVE_FORMAT_IEEE_FLOAT;
    twelveBits.nBlockAlign = badAlign.nBlockAlign = 2;
    CSndWaveWriteStreamty writer;
    for (tWAVEFORMATEX* wfx : {&floats, &twelveBits, &badAlign, static_cast<tWAVEFORMATEX*>(nullptr)})
        EXPECT_EQ(0, writer.Open(path.c_str(), wfx));
    EXPECT_EQ(0, writer.Open(L"", &floats));
    EXPECT_FALSE(fileExists(path));
    EXPECT_EQ(0, writer.Write(1, &ramp(1)[0], nullptr));
    EXPECT_EQ(0, writer.Close(0));
    EXPECT_EQ(WAVEFILE_ERR_NOT_OPEN, writer.GetResult());
}
