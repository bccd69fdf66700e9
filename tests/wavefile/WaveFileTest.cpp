// The stream reader as the stream player uses it (initStream2Read, readNewData until fewer
// bytes come back, closeSndFileMmio), on files made by sox, libsndfile and ALSA and on
// rearranged and damaged copies. What sox reads from each file (its .raw twin) is what
// the reader must deliver.
#include "SndDataReadtyStream.h"
#include "TestFiles.h"
#include <algorithm>
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

Bytes poke(Bytes b, size_t at, uint8_t v)
{
    b[at] = v;
    return b;
}

Bytes poke32(Bytes b, size_t at, uint32_t v)
{
    putLe32(b, at, v);
    return b;
}

Bytes cut(Bytes b, size_t n)
{
    b.resize(n);
    return b;
}

#define SKIP_WITHOUT(have) \
    if (!(have))           \
    GTEST_SKIP() << #have " is 0: the program that makes the input was not installed at build time"

struct Made
{
    const wchar_t* name;
    WORD channels;
    DWORD rate;
    WORD bits;
    WORD fileTag;
    int have;
};

void PrintTo(const Made& made, std::ostream* os)
{
    const std::wstring name = made.name;
    *os << std::string(name.begin(), name.end());
}

class OtherProgramsFiles : public ::testing::TestWithParam<Made>
{
};

// 24 bits are accepted and reported as they are: whether to play them is the player's call.
const Made kMade[] = {
    {L"pcm8_mono", 1, 11025, 8, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
    {L"pcm16_stereo", 2, 22050, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
    {L"pcm24_plain", 2, 22050, 24, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
    {L"pcm24_ext", 1, 44100, 24, WAVE_FORMAT_EXTENSIBLE, WAVEFILE_HAVE_SOX},
    {L"pcm16_quad_ext", 4, 22050, 16, WAVE_FORMAT_EXTENSIBLE, WAVEFILE_HAVE_SOX},
    {L"meta16", 2, 22050, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SNDFILE}, // bext before data
    {L"meta8", 1, 11025, 8, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SNDFILE},   // odd data, pad, LIST
    {L"alsa", 1, 48000, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_ALSA},
};
} // namespace

TEST_P(OtherProgramsFiles, DeliverTheFormatAndExactlyTheSamplesSoxReads)
{
    const Made& m = GetParam();
    SKIP_WITHOUT(m.have);
    const Bytes raw = readFile(dataPath(std::wstring(m.name) + L".raw"));
    ASSERT_FALSE(raw.empty());
    CSndDataReadtyStream reader;
    const Opened o = openWith(reader, dataPath(std::wstring(m.name) + L".wav"));
    ASSERT_EQ(1, o.result) << describeWaveFileResult(reader.getSndFileResult());
    const WORD align = static_cast<WORD>(m.channels * m.bits / 8);
    const tWAVEFORMATEX expected = {WAVE_FORMAT_PCM, m.channels, m.rate, m.rate * align, align, m.bits, 0};
    EXPECT_EQ(0, std::memcmp(&expected, &o.wfx, sizeof expected));
    EXPECT_EQ(m.fileTag, reader.getSndFileFormatTag());
    EXPECT_EQ(raw.size(), o.size);
    EXPECT_EQ(raw, readAll(reader));
}

INSTANTIATE_TEST_SUITE_P(WaveReader, OtherProgramsFiles, ::testing::ValuesIn(kMade),
                         [](const ::testing::TestParamInfo<Made>& info) {
                             const std::wstring n = info.param.name;
                             return std::string(n.begin(), n.end());
                         });

TEST(WaveReader, LibsndfileFilesCarryTheChunksTheyAreMeantToTest)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SNDFILE);
    const Bytes meta16 = readData(L"meta16.wav"), meta8 = readData(L"meta8.wav");
    auto at = [](const Bytes& b, const char* id) { return std::search(b.begin(), b.end(), id, id + 4) - b.begin(); };
    EXPECT_LT(at(meta16, "bext"), at(meta16, "data"));
    EXPECT_EQ(1u, getLe32(meta8, at(meta8, "data") + 4) % 2);
    EXPECT_LT(at(meta8, "LIST"), static_cast<long long>(meta8.size()));
}

namespace
{
struct Refused
{
    const char* what;
    Bytes (*make)();
    WaveFileResult expected;
};

// sox's pcm16_stereo is canonical: fmt at 12, data header at 36, samples at 44.
Bytes pcm16()
{
    return readData(L"pcm16_stereo.wav");
}

const Refused kRefused[] = {
    {"IEEE float", [] { return readData(L"float32.wav"); }, WAVEFILE_ERR_UNSUPPORTED},
    {"a-law", [] { return readData(L"alaw.wav"); }, WAVEFILE_ERR_UNSUPPORTED},
    {"extensible float", [] { return poke(readData(L"pcm24_ext.wav"), 44, 3); }, WAVEFILE_ERR_UNSUPPORTED},
    {"empty file", [] { return Bytes(); }, WAVEFILE_ERR_NOT_WAVE},
    {"RIFX", [] { return poke(pcm16(), 3, 'X'); }, WAVEFILE_ERR_NOT_WAVE},
    {"cut in RIFF header", [] { return cut(pcm16(), 8); }, WAVEFILE_ERR_NOT_WAVE},
    {"cut in fmt", [] { return cut(pcm16(), 30); }, WAVEFILE_ERR_TRUNCATED},
    {"cut after fmt", [] { return cut(pcm16(), 36); }, WAVEFILE_ERR_TRUNCATED},
    {"cut in data header", [] { return cut(pcm16(), 40); }, WAVEFILE_ERR_TRUNCATED},
    {"fmt size past the end", [] { return poke32(pcm16(), 16, 0x7FFFFFF0); }, WAVEFILE_ERR_TRUNCATED},
    {"fmt missing", [] { return poke(pcm16(), 12, 'X'); }, WAVEFILE_ERR_NO_FORMAT},
    {"data missing", [] { return poke(pcm16(), 36, 'X'); }, WAVEFILE_ERR_NO_DATA},
    {"block align falsified", [] { return poke(pcm16(), 32, 3); }, WAVEFILE_ERR_BAD_FORMAT},
};

void PrintTo(const Refused& refused, std::ostream* os)
{
    *os << refused.what;
}

class RefusedFiles : public ::testing::TestWithParam<Refused>
{
};
} // namespace

// The stream player does not look at the result: it must get a zero format and no data.
TEST_P(RefusedFiles, GiveAReasonAZeroFormatAndNothingToRead)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    writeFile(dataPath(L"refused.wav"), GetParam().make());
    CSndDataReadtyStream reader;
    const Opened o = openWith(reader, dataPath(L"refused.wav"));
    EXPECT_EQ(0, o.result);
    EXPECT_EQ(GetParam().expected, reader.getSndFileResult());
    EXPECT_EQ(0u, o.size);
    EXPECT_EQ(0, o.wfx.wFormatTag);
    char buffer[8];
    unsigned long count = sizeof buffer;
    EXPECT_EQ(0, reader.readNewData(buffer, count));
    EXPECT_EQ(0u, count);
}

INSTANTIATE_TEST_SUITE_P(WaveReader, RefusedFiles, ::testing::ValuesIn(kRefused));

TEST(WaveReader, MissingFileAndEmptyName)
{
    CSndDataReadtyStream reader;
    EXPECT_EQ(0, openWith(reader, dataPath(L"no such file.wav")).result);
    EXPECT_EQ(WAVEFILE_ERR_OPEN, reader.getSndFileResult());
    EXPECT_EQ(0, openWith(reader, L"").result);
    EXPECT_EQ(WAVEFILE_ERR_ARGUMENT, reader.getSndFileResult());
}

// Rearranged: LIST (odd, padded) first, or odd data before fmt; the RIFF size as streaming
// writers leave it (0, or the maximum); data cut off or overstated, clipped to whole frames.
TEST(WaveReader, OtherLayoutsAndCutDataStillPlay)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    const Bytes sox8 = readData(L"pcm8_mono.wav"), raw8 = readData(L"pcm8_mono.raw");
    const Bytes fmt(sox8.begin() + 20, sox8.begin() + 36), raw16 = readData(L"pcm16_stereo.raw");
    ASSERT_EQ(1u, raw8.size() % 2);
    const Bytes listFirst = riff({chunk("LIST", {'I', 'N', 'F', 'O', '!'}), chunk("fmt ", fmt), chunk("data", raw8)});
    const Bytes dataFirst = riff({chunk("data", raw8), chunk("fmt ", fmt), chunk("LIST", {'I', 'N', 'F', 'O'})});
        const struct
    {
        Bytes file, samples;
        bool clipped;
    } cases[] = {
        {listFirst, raw8, false},
        {poke32(listFirst, 4, 0), raw8, false},
        {poke32(dataFirst, 4, 0xFFFFFFFF), raw8, false},
        {cut(pcm16(), 44 + 4 * 25 + 3), cut(raw16, 4 * 25), true},
        {poke32(pcm16(), 40, 0xFFFFFFF0), raw16, true},
    };
    for (const auto& c : cases)
    {
        writeFile(dataPath(L"layout.wav"), c.file);
        CSndDataReadtyStream reader;
        ASSERT_EQ(1, openWith(reader, dataPath(L"layout.wav")).result);
        EXPECT_EQ(c.clipped, reader.isSndDataClipped() != FALSE);
        EXPECT_EQ(c.samples, readAll(reader, 64));
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
