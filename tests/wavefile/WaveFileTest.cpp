// The stream reader as the stream player uses it (initStream2Read, readNewData until fewer
// bytes come back), on files made by sox, libsndfile and ALSA and on
// rearranged and damaged copies. What sox reads from each file (its .raw twin) is what
// the reader must deliver. (That each Play reads the file from its start again is heard in
// the streaming loopback test.)
#include "TestFiles.h"

#define SKIP_WITHOUT(have) \
    if (!(have)) GTEST_SKIP() << #have " is 0: the program that makes the input was not installed at build time"

// 24 bits and float are accepted and reported as they are: whether to play them is the
// player's call.
TEST(WaveReader, DeliversTheFormatAndExactlyTheSamplesSoxReadsFromOtherProgramsFiles)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    const struct { const wchar_t* name; WORD channels; DWORD rate; WORD bits; WORD fileTag; int have; } made[] = {
        {L"pcm8_mono", 1, 11025, 8, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
        {L"float32", 1, 22050, 32, WAVE_FORMAT_IEEE_FLOAT, WAVEFILE_HAVE_SOX},
        {L"pcm16_stereo", 2, 22050, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
        {L"pcm24_plain", 2, 22050, 24, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SOX},
        {L"pcm24_ext", 1, 44100, 24, WAVE_FORMAT_EXTENSIBLE, WAVEFILE_HAVE_SOX},
        {L"pcm16_quad_ext", 4, 22050, 16, WAVE_FORMAT_EXTENSIBLE, WAVEFILE_HAVE_SOX},
        {L"meta16", 2, 22050, 16, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SNDFILE}, // bext before data
        {L"meta8", 1, 11025, 8, WAVE_FORMAT_PCM, WAVEFILE_HAVE_SNDFILE},   // odd data, pad, LIST
        {L"rf64_16", 2, 22050, 16, WAVE_FORMAT_EXTENSIBLE, WAVEFILE_HAVE_SNDFILE}, // RF64, ds64 first
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
        const WORD tag = m.fileTag == WAVE_FORMAT_IEEE_FLOAT ? WAVE_FORMAT_IEEE_FLOAT : WAVE_FORMAT_PCM;
        const tWAVEFORMATEX expected = {tag, m.channels, m.rate, m.rate * align, align, m.bits, 0};
        EXPECT_EQ(0, std::memcmp(&expected, &o.wfx, sizeof expected));
        EXPECT_EQ(m.fileTag, reader.getSndFileFormatTag());
        EXPECT_EQ(raw.size(), o.size);
        EXPECT_EQ(raw, readAll(reader));
    }
}

// Altered copies of sox's canonical file (fmt at 12, data header at 36). A RIFF size as
// streaming writers leave it (0, or the maximum) or data overstated and clipped to whole
// frames still plays. A refused file gives its reason and, as the stream player does not
// look at the result, a zero format and nothing to read. (Rearranged chunks, odd data and
// files cut anywhere are the core's tests.)
TEST(WaveReader, AlteredFilesPlayOrAreRefusedWithAZeroFormat)
{
    SKIP_WITHOUT(WAVEFILE_HAVE_SOX);
    const Bytes pcm16 = readFile(dataPath(L"pcm16_stereo.wav")), raw16 = readFile(dataPath(L"pcm16_stereo.raw"));
    const struct { const char* what; Bytes file; WaveFileResult expected; bool clipped; } files[] = {
        {"RIFF size 0", poke(pcm16, 4, 0), WAVEFILE_OK, false},
        {"RIFF size at its maximum", poke(pcm16, 4, 0xFFFFFFFF), WAVEFILE_OK, false},
        {"data overstated", poke(pcm16, 40, 0xFFFFFFF0), WAVEFILE_OK, true},
        {"a-law", readFile(dataPath(L"alaw.wav")), WAVEFILE_ERR_UNSUPPORTED, false},
        {"empty file", Bytes(), WAVEFILE_ERR_NOT_WAVE, false},
        {"RIFX", poke(pcm16, 3, 'X', 1), WAVEFILE_ERR_NOT_WAVE, false},
        {"fmt missing", poke(pcm16, 12, 'X', 1), WAVEFILE_ERR_NO_FORMAT, false},
        {"data missing", poke(pcm16, 36, 'X', 1), WAVEFILE_ERR_NO_DATA, false},
    };
    for (const auto& f : files)
    {
        SCOPED_TRACE(f.what);
        writeFile(dataPath(L"altered.wav"), f.file);
        CSndDataReadtyStream reader;
        const Opened o = openWith(reader, dataPath(L"altered.wav"));
        const bool plays = f.expected == WAVEFILE_OK;
        EXPECT_EQ(plays ? 1 : 0, o.result);
        EXPECT_EQ(f.expected, reader.getSndFileResult());
        EXPECT_EQ(f.clipped, reader.isSndDataClipped() != FALSE);
        EXPECT_EQ(plays ? WAVE_FORMAT_PCM : 0, o.wfx.wFormatTag);
        EXPECT_EQ(plays ? raw16.size() : 0u, o.size);
        if (plays)
        {
            EXPECT_EQ(raw16, readAll(reader, 64));
            continue;
        }
        unsigned int count = 8;
        EXPECT_EQ(0, reader.readNewData(Bytes(8).data(), count));
        EXPECT_EQ(0u, count);
    }
    CSndDataReadtyStream reader;
    EXPECT_EQ(0, openWith(reader, dataPath(L"no such file.wav")).result);
    EXPECT_EQ(WAVEFILE_ERR_OPEN, reader.getSndFileResult());
}
