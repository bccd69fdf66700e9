// The stream reader as the stream player uses it (initStream2Read, readNewData until fewer
// bytes come back, closeSndFileMmio), on files made by sox, libsndfile and ALSA and on
// rearranged and damaged copies. What sox reads from each file (its .raw twin) is what
// the reader must deliver.
#include "SndDataReadtyStream.h"
#include "TestFiles.h"
#include <gtest/gtest.h>

namespace
{
struct Opened
{
    int result;
    unsigned long size;
    tWAVEFORMATEX wfx;
};

Opened openWith(CSndDataReadtyStream& reader, const std::wstring& path)
{
    Opened o = {-1, 12345, {}};
    std::memset(&o.wfx, 0xCD, sizeof o.wfx);
    o.result = reader.initStream2Read(path.c_str(), &o.size, &o.wfx);
    return o;
}

// All the reader gives in pieces of `piece` bytes, up to the first short piece.
Bytes readAll(CSndDataReadtyStream& reader, unsigned int piece = 999)
{
    Bytes all, buffer(piece);
    for (unsigned int got = piece; got == piece;)
    {
        EXPECT_EQ(1, reader.readNewData(buffer.data(), got));
        all.insert(all.end(), buffer.begin(), buffer.begin() + got);
    }
    return all;
}

Bytes readData(const wchar_t* name)
{
    return readFile(dataPath(name));
}

Bytes poke32(Bytes b, size_t at, uint32_t v)
{
    putLe32(b, at, v);
    return b;
}

#define SKIP_WITHOUT(have) \
    if (!(have))           \
    GTEST_SKIP() << #have " is 0: the program that makes the input was not installed at build time"
} // namespace

// 24 bits are accepted and reported as they are: whether to play them is the player's call.
TEST(WaveReader, DeliversTheFormatAndExactlyTheSamplesSoxReadsFromOtherProgramsFiles)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    const struct { const wchar_t* name; WORD channels; DWORD rate; WORD bits; WORD fileTag; int have; } made[] = {
        {L"pcm8_mono", 1, 11025, 8, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
        {L"pcm16_stereo", 2, 22050, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
        {L"pcm24_plain", 2, 22050, 24, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
        {L"pcm24_ext", 1, 44100, 24, WAVE_FORMAT_EXTENSIBLE, WAVEFILE_HAVE_SOX},
        {L"pcm16_quad_ext", 4, 22050, 16, WAVE_FORMAT_EXTENSIBLE, WAVEFILE_HAVE_SOX},
        {L"meta16", 2, 22050, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SNDFILE}, // bext before data
        {L"meta8", 1, 11025, 8, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SNDFILE},   // odd data, pad, LIST
        {L"alsa", 1, 48000, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_ALSA},
    };
    for (const auto& m : made)
    {
        if (!m.have)
            continue;
        const std::wstring name = m.name;
        SCOPED_TRACE(std::string(name.begin(), name.end()));
        const Bytes raw = readFile(dataPath(name + L".raw"));
        ASSERT_FALSE(raw.empty());
        CSndDataReadtyStream reader;
        const Opened o = openWith(reader, dataPath(name + L".wav"));
        ASSERT_EQ(1, o.result) << describeWaveFileResult(reader.getSndFileResult());
        const WORD align = static_cast<WORD>(m.channels * m.bits / 8);
        const tWAVEFORMATEX expected = {WAVE_FORMAT_PCM, m.channels, m.rate, m.rate * align, align, m.bits, 0};
        EXPECT_EQ(0, std::memcmp(&expected, &o.wfx, sizeof expected));
        EXPECT_EQ(m.fileTag, reader.getSndFileFormatTag());
        EXPECT_EQ(raw.size(), o.size);
        EXPECT_EQ(raw, readAll(reader));
    }
}

// The stream player does not look at the result: it must get a zero format and no data.
// (Cut-off files and every format refusal are the core's tests.)
TEST(WaveReader, RefusedFilesGiveAReasonAZeroFormatAndNothingToRead)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    Bytes rifx = readData(L"pcm16_stereo.wav"), noFmt = rifx, noData = rifx;
    rifx[3] = 'X';
    noFmt[12] = 'X'; // sox's file is canonical: fmt at 12, data header at 36
    noData[36] = 'X';
    const struct { const char* what; Bytes file; WaveFileResult expected; } refused[] = {
        {"IEEE float", readData(L"float32.wav"), WAVEFILE_ERR_UNSUPPORTED},
        {"a-law", readData(L"alaw.wav"), WAVEFILE_ERR_UNSUPPORTED},
        {"empty file", Bytes(), WAVEFILE_ERR_NOT_WAVE},
        {"RIFX", rifx, WAVEFILE_ERR_NOT_WAVE},
        {"fmt missing", noFmt, WAVEFILE_ERR_NO_FORMAT},
        {"data missing", noData, WAVEFILE_ERR_NO_DATA},
    };
    for (const auto& r : refused)
    {
        writeFile(dataPath(L"refused.wav"), r.file);
        CSndDataReadtyStream reader;
        const Opened o = openWith(reader, dataPath(L"refused.wav"));
        EXPECT_EQ(0, o.result) << r.what;
        EXPECT_EQ(r.expected, reader.getSndFileResult()) << r.what;
        EXPECT_EQ(0u, o.size) << r.what;
        EXPECT_EQ(0, o.wfx.wFormatTag) << r.what;
        char buffer[8];
        unsigned long count = sizeof buffer;
        EXPECT_EQ(0, reader.readNewData(buffer, count)) << r.what;
        EXPECT_EQ(0u, count) << r.what;
    }
    CSndDataReadtyStream reader;
    EXPECT_EQ(0, openWith(reader, dataPath(L"no such file.wav")).result);
    EXPECT_EQ(WAVEFILE_ERR_OPEN, reader.getSndFileResult());
}

// The RIFF size as streaming writers leave it (0, or the maximum), or data overstated and
// clipped to whole frames: the samples still play. (Rearranged chunks, odd data and files cut
// anywhere are the core's tests.)
TEST(WaveReader, UnfinishedHeadersStillPlay)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    const Bytes pcm16 = readData(L"pcm16_stereo.wav"), raw16 = readData(L"pcm16_stereo.raw");
    const struct { Bytes file; bool clipped; } cases[] = {
        {poke32(pcm16, 4, 0), false}, {poke32(pcm16, 4, 0xFFFFFFFF), false}, {poke32(pcm16, 40, 0xFFFFFFF0), true}};
    for (const auto& c : cases)
    {
        writeFile(dataPath(L"layout.wav"), c.file);
        CSndDataReadtyStream reader;
        ASSERT_EQ(1, openWith(reader, dataPath(L"layout.wav")).result);
        EXPECT_EQ(c.clipped, reader.isSndDataClipped() != FALSE);
        EXPECT_EQ(raw16, readAll(reader, 64));
    }
}

// As the stream player drives it: each Play opens the file again from its start; the end
// of the data closes the file, after which reads give nothing.
TEST(WaveReader, ReopenRestartsAndCloseEndsReading)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    const Bytes raw = readData(L"pcm16_stereo.raw");
    CSndDataReadtyStream reader;
    unsigned int size = 0, count = 100;
    Bytes piece(100);
    for (int play = 0; play < 2; ++play)
    {
        ASSERT_EQ(1, reader.initStream2Read(dataPath(L"pcm16_stereo.wav").c_str(), &size, nullptr));
        EXPECT_EQ(1, reader.readNewData(piece.data(), count = 100));
        EXPECT_EQ(Bytes(raw.begin(), raw.begin() + 100), piece);
        EXPECT_EQ(size - 100, reader.getSndDataLeft());
    }
    EXPECT_EQ(1, reader.closeSndFileMmio());
    EXPECT_EQ(1, reader.closeSndFileMmio());
    EXPECT_EQ(0, reader.readNewData(piece.data(), count = 100));
    EXPECT_EQ(0u, count);
}
