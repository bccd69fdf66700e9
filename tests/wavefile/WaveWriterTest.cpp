// The stream writer as the capture-to-file path uses it (Open, Write piece by piece, Close
// with the byte count, or deletion without Close), checked on the file's own bytes and
// read back with the reader. writer_s16.wav, writer_u8_odd.wav, writer_reserved.wav and
// writer_rf64.wav stay for sox to read.
#include "SndWaveWriteStreamty.h"
#include "TestFiles.h"
#include <memory>

namespace
{
// PCM formats with no byte rate given: the writer derives it.
const tWAVEFORMATEX kS16Stereo = {WAVE_FORMAT_PCM, 2, 22050, 0, 4, 16, 0}, kU8Mono = {WAVE_FORMAT_PCM, 1, 11025, 0, 1, 8, 0};

Bytes ramp(size_t n)
{
    Bytes b(n);
    for (size_t i = 0; i < n; ++i)
        b[i] = static_cast<uint8_t>(i * 7 + i / 251);
    return b;
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
    EXPECT_TRUE(data % 2 == 0 || file.back() == 0) << "pad byte";
}
} // namespace

// Written in uneven pieces and closed, or deleted without Close (the odd size padded): the
// reader gets back the samples and the format, its byte rate derived from rate and block align.
TEST(WaveWriter, WrittenInPiecesThenClosedOrDeletedReadsBackWhole)
{
    const struct { const wchar_t* name; tWAVEFORMATEX wfx; size_t bytes, piece; bool closed; } files[] = {
        {L"writer_s16.wav", kS16Stereo, 2205 * 4, 1001, true},
        {L"writer_u8_odd.wav", kU8Mono, 3, 3, false},
    };
    for (const auto& f : files)
    {
        const std::wstring path = dataPath(f.name);
        tWAVEFORMATEX wfx = f.wfx;
        Bytes samples = ramp(f.bytes);
        auto writer = std::make_unique<CSndWaveWriteStreamty>();
        ASSERT_EQ(1, writer->Open(path.c_str(), &wfx));
        for (size_t at = 0; at < samples.size(); at += f.piece)
        {
            const auto piece = static_cast<unsigned int>(std::min(f.piece, samples.size() - at));
            unsigned int written = 0;
            EXPECT_EQ(1, writer->Write(piece, &samples[at], &written));
            EXPECT_EQ(piece, written);
        }
        if (f.closed)
        {
            EXPECT_EQ(1, writer->Close(writer->GetDataBytesWritten()));
        }
        writer.reset();
        expectHeaderSizes(path, static_cast<uint32_t>(f.bytes));
        CSndDataReadtyStream reader;
        const Opened o = openWith(reader, path);
        wfx.nAvgBytesPerSec = wfx.nSamplesPerSec * wfx.nBlockAlign;
        EXPECT_EQ(0, std::memcmp(&wfx, &o.wfx, sizeof wfx));
        EXPECT_EQ(samples, readAll(reader));
    }
}

// Close cuts to the size given but never claims more; opening another file finishes the first.
TEST(WaveWriter, CloseCutsToTheSizeGivenAndOpeningAgainFinishesTheFile)
{
    const std::wstring path = dataPath(L"writer_close.wav");
    tWAVEFORMATEX wfx = kU8Mono;
    CSndWaveWriteStreamty writer;
    // Finished by: Close with this size, or by opening another file when -1.
    const struct { size_t written; int finishedBy, result; uint32_t header; } files[] = {
        {10, 7, 1, 7}, {10, 11, 0, 10}, {6, -1, 1, 6}};
    for (const auto& f : files)
    {
        ASSERT_EQ(1, writer.Open(path.c_str(), &wfx));
        ASSERT_EQ(1, writer.Write(static_cast<unsigned int>(f.written), ramp(f.written).data(), nullptr));
        EXPECT_EQ(f.result, f.finishedBy >= 0 ? writer.Close(f.finishedBy)
                                              : writer.Open(dataPath(L"writer_second.wav").c_str(), &wfx));
        EXPECT_TRUE(f.result || writer.GetResult() == WAVEFILE_ERR_SIZE_MISMATCH) << writer.GetResult();
        expectHeaderSizes(path, f.header);
    }
}

// Formats it cannot write are refused before a file is made; data that would take the file
// past the RIFF limit is refused whole, on its size alone (the one real byte behind the
// pointer is never reached), and what fits is still taken.
TEST(WaveWriter, RefusesFormatsBeforeMakingAFileAndDataPastTheRiffLimitWhole)
{
    const std::wstring path = dataPath(L"writer_refused.wav");
    DeleteFileW(path.c_str());
    // Floats, 12 bits (which the reader takes, in two bytes), a block align that disagrees.
    tWAVEFORMATEX refused[] = {{WAVE_FORMAT_IEEE_FLOAT, 1, 8000, 0, 4, 32, 0}, {WAVE_FORMAT_PCM, 1, 8000, 0, 2, 12, 0},
                               {WAVE_FORMAT_PCM, 2, 8000, 0, 2, 16, 0}}, wfx = kS16Stereo;
    CSndWaveWriteStreamty writer;
    for (tWAVEFORMATEX& format : refused)
        EXPECT_EQ(0, writer.Open(path.c_str(), &format)) << format.wFormatTag << " " << format.wBitsPerSample;
    EXPECT_EQ(0, writer.Open(path.c_str(), nullptr));
    EXPECT_EQ(0, writer.Open(L"", &wfx));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(path.c_str())) << "a file was made";
    EXPECT_EQ(0, writer.Write(1, &ramp(1)[0], nullptr));
    EXPECT_EQ(0, writer.Close(0));
    EXPECT_EQ(WAVEFILE_ERR_NOT_OPEN, writer.GetResult());

    ASSERT_EQ(1, writer.Open(path.c_str(), &wfx));
    unsigned char byte = 0;
    unsigned int written = 99;
    EXPECT_EQ(0, writer.Write(0xFFFFFFF0u, &byte, &written));
    EXPECT_EQ(WAVEFILE_ERR_TOO_LARGE, writer.GetResult());
    EXPECT_EQ(0u, written);
    EXPECT_EQ(1, writer.Write(4, ramp(4).data(), nullptr)) << "data that fits is still taken";
    EXPECT_EQ(1, writer.Close());
    expectHeaderSizes(path, 4);
}


// A file opened to grow past 4 GiB carries a JUNK chunk and reads as a plain wave file; the
// same writer with its limit lowered makes an RF64 file, which the reader reads back.
TEST(WaveWriter, FilesOpenedToGrowReadBackAsPlainWaveAndPastTheLimitAsRf64)
{
    const Bytes samples = ramp(2205 * 4);
    tWAVEFORMATEX wfx = kS16Stereo;
    const std::wstring reserved = dataPath(L"writer_reserved.wav"), rf64 = dataPath(L"writer_rf64.wav");
    CSndWaveWriteStreamty writer;
    ASSERT_EQ(1, writer.Open(reserved.c_str(), &wfx, TRUE));
    ASSERT_EQ(1, writer.Write(static_cast<unsigned int>(samples.size()), const_cast<uint8_t*>(samples.data()), nullptr));
    EXPECT_FALSE(writer.IsRf64());
    ASSERT_EQ(1, writer.Close());
    EXPECT_EQ(0, std::memcmp(&readFile(reserved)[12], "JUNK", 4));

    MemorySink sink;
    wavefile::PcmFormat format;
    format.fileTag = 1, format.channels = 2, format.samplesPerSec = 22050, format.blockAlign = 4;
    format.bitsPerSample = 16, format.avgBytesPerSec = 88200;
    wavefile::StreamWriter small(sink, format, true, 4000);
    ASSERT_EQ(WAVEFILE_OK, small.start());
    for (size_t at = 0; at < samples.size(); at += 1000)
    {
        size_t written = 0;
        ASSERT_EQ(WAVEFILE_OK, small.append(&samples[at], std::min<size_t>(1000, samples.size() - at), written));
    }
    ASSERT_EQ(WAVEFILE_OK, small.finish(small.dataBytes()));
    writeFile(rf64, sink.bytes);

    for (const std::wstring& path : {reserved, rf64})
    {
        CSndDataReadtyStream reader;
        const Opened o = openWith(reader, path);
        ASSERT_EQ(1, o.result);
        EXPECT_EQ(path == rf64, reader.isSndFileRf64() != FALSE);
        EXPECT_EQ(samples.size(), reader.getSndDataSize64());
        EXPECT_EQ(samples, readAll(reader));
    }
}
