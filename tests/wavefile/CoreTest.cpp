// The Windows-free core: the format rules, the RIFF size limit, the chunk walk on files
// that are rearranged, cut at every length or corrupted (it must answer an error or data
// that lies inside the file, and never ask for a byte past the end), RF64 files, and the
// stream writer on memory with its 4 GiB limit lowered. Builds natively too.
#include "RiffReader.h"
#include "StreamWriter.h"
#include "TestRiff.h"
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>

using namespace wavefile;

namespace
{
// Fails the test when the walk asks for bytes beyond the end of the file.
class StrictSource : public MemorySource
{
public:
    explicit StrictSource(const Bytes& b) : MemorySource(b.data(), b.size()) {}
    size_t readAt(uint64_t offset, void* dst, size_t n) override
    {
        EXPECT_LE(offset + n, size()) << "read past the end";
        return MemorySource::readAt(offset, dst, n);
    }
};

WaveFileResult parse(const Bytes& file, WaveLayout& layout)
{
    StrictSource source(file);
    return parseWave(source, layout);
}

// LIST (odd, padded) before fmt, fact between fmt and data, odd 8-bit data, LIST after.
const Bytes kData = {0x80, 0x90, 0xA0, 0xB0, 0xC0, 0xD0, 0xE0};
const Bytes kFile = riff({chunk("LIST", {'I', 'N', 'F', 'O', 'x'}), chunk("fmt ", fmtBody(1, 11025, 8)),
                          chunk("fact", {7, 0, 0, 0}), chunk("data", kData), chunk("LIST", {'I', 'N', 'F', 'O'})});
const uint64_t kDataAt = 12 + 14 + 24 + 12 + 8;

void expectInsideFile(const WaveLayout& layout, size_t fileSize)
{
    EXPECT_LE(layout.dataOffset + layout.dataSize, fileSize);
    EXPECT_EQ(0u, layout.dataSize % layout.format.blockAlign);
}
} // namespace

TEST(WaveFormatRules, AcceptIntegerPcmAndFloatOnlyAndConsistentOnly)
{
    const Bytes pcm16 = fmtBody(2, 22050, 16), ext24 = fmtBody(2, 44100, 24, true);
    const struct { const char* what; Bytes body; uint32_t size; WaveFileResult expected; } cases[] = {
        {"16-bit stereo", pcm16, 16, WAVEFILE_OK},
        {"fmt of 18 bytes with cbSize 0", pcm16, 18, WAVEFILE_OK},
        {"12 bits in two bytes", fmtBody(1, 8000, 12), 16, WAVEFILE_OK},
        {"extensible 24-bit PCM", ext24, 40, WAVEFILE_OK},
        {"extensible float", fmtBody(2, 44100, 32, true, 3), 40, WAVEFILE_OK},
        {"IEEE float tag", poke(fmtBody(2, 22050, 32), 0, 3, 2), 16, WAVEFILE_OK},
        {"64-bit float", poke(fmtBody(1, 8000, 64), 0, 3, 2), 16, WAVEFILE_ERR_UNSUPPORTED},
        {"extensible a-law", fmtBody(1, 8000, 8, true, 6), 40, WAVEFILE_ERR_UNSUPPORTED},
        {"64-bit samples", fmtBody(1, 8000, 64), 16, WAVEFILE_ERR_UNSUPPORTED},
        {"fmt shorter than 16", pcm16, 14, WAVEFILE_ERR_BAD_FORMAT},
        {"extensible without its extension", ext24, 18, WAVEFILE_ERR_BAD_FORMAT},
        {"extension size below 22", poke(ext24, 16, 0, 2), 40, WAVEFILE_ERR_BAD_FORMAT},
        {"valid bits above the container", poke(ext24, 18, 32, 2), 40, WAVEFILE_ERR_BAD_FORMAT},
        {"block align disagrees", poke(pcm16, 12, 3, 2), 16, WAVEFILE_ERR_BAD_FORMAT},
        {"no channels", poke(pcm16, 2, 0, 2), 16, WAVEFILE_ERR_BAD_FORMAT},
        {"byte rate past 32 bits", fmtBody(2, 0xFFFFFFF0u, 16), 16, WAVEFILE_ERR_BAD_FORMAT},
    };
    for (const auto& c : cases)
    {
        Bytes body = c.body;
        body.resize(40);
        PcmFormat format;
        EXPECT_EQ(c.expected, decodeFormat(body.data(), c.size, format)) << c.what;
    }
}

TEST(WaveFormatRules, RiffLimitIsTight)
{
    PcmFormat format;
    for (uint32_t n : {kMaxDataBytes - 1, kMaxDataBytes})
    {
        EXPECT_TRUE(fitsInRiff(n));
        // The RIFF size plus its 8-byte chunk header is the whole file, with the pad byte.
        const auto header = buildPcmHeader(format, n);
        EXPECT_EQ(getLe32(Bytes(header.begin(), header.end()), 4) + 8ull, 44ull + n + (n & 1)) << n;
    }
    EXPECT_FALSE(fitsInRiff(uint64_t(kMaxDataBytes) + 1));
}

// The whole file is read with LIST, fact and pad bytes skipped; cut anywhere before the
// data chunk's header it is refused as cut off, cut inside the data it is clipped.
TEST(RiffWalk, CutAtEveryLength)
{
    for (size_t length = 0; length <= kFile.size(); ++length)
    {
        const Bytes cut(kFile.begin(), kFile.begin() + length);
        WaveLayout layout;
        const WaveFileResult result = parse(cut, layout);
        EXPECT_EQ(length >= kDataAt, result == WAVEFILE_OK) << length << " bytes: " << result;
        if (result == WAVEFILE_OK)
        {
            expectInsideFile(layout, length);
            EXPECT_EQ(kDataAt, layout.dataOffset);
            EXPECT_EQ(std::min<size_t>(length - kDataAt, kData.size()), layout.dataSize);
            EXPECT_EQ(length < kDataAt + kData.size(), layout.clipped);
        }
        else
            EXPECT_EQ(length < 12 ? WAVEFILE_ERR_NOT_WAVE : WAVEFILE_ERR_TRUNCATED, result) << length;
    }
}

TEST(RiffWalk, CorruptedHeadersNeverLeadOutsideTheFile)
{
    uint32_t seed = 12345;
    auto next = [&seed] { return seed = seed * 1664525u + 1013904223u, seed >> 8; };
    int accepted = 0;
    for (int round = 0; round < 5000; ++round)
    {
        Bytes file = kFile;
        for (int n = 1 + next() % 3; n > 0; --n)
            file[next() % kDataAt] = static_cast<uint8_t>(next());
        WaveLayout layout;
        if (parse(file, layout) != WAVEFILE_OK)
            continue;
        ++accepted;
        expectInsideFile(layout, file.size());
    }
    EXPECT_GT(accepted, 0) << "the corruptions should leave some files readable";
}

namespace
{
PcmFormat stereo16()
{
    PcmFormat format;
    format.fileTag = kFormatPcm, format.channels = 2, format.samplesPerSec = 22050, format.blockAlign = 4;
    format.bitsPerSample = 16;
    EXPECT_EQ(WAVEFILE_OK, checkWritableFormat(format));
    return format;
}

// What the walk finds in the file as it stands: the data size, or -1 when refused.
long long readableData(const Bytes& file, WaveLayout& layout)
{
    return parse(file, layout) == WAVEFILE_OK ? static_cast<long long>(layout.dataSize) : -1;
}
} // namespace

// With the limit lowered: a file opened to grow keeps an 80-byte header with a JUNK chunk, and
// becomes RF64 in place once its data passes the limit; after every piece the file reads whole
// as it stands. A file not opened to grow refuses the piece whole and stays valid.
TEST(StreamWriter, GrowsPastTheLimitAsRf64AndReadsWholeAfterEveryPiece)
{
    const Bytes piece(600, 0x5A);
    for (const bool mayGrow : {true, false})
    {
        SCOPED_TRACE(mayGrow);
        MemorySink sink;
        StreamWriter writer(sink, stereo16(), mayGrow, 1000);
        ASSERT_EQ(WAVEFILE_OK, writer.start());
        const size_t header = mayGrow ? kReservedHeaderSize : kCanonicalHeaderSize;
        ASSERT_EQ(header, sink.bytes.size());
        WaveLayout layout;
        size_t written = 0;
        EXPECT_EQ(WAVEFILE_OK, writer.append(piece.data(), piece.size(), written));
        EXPECT_EQ(600, readableData(sink.bytes, layout));
        EXPECT_FALSE(layout.rf64);
        EXPECT_EQ(mayGrow ? WAVEFILE_OK : WAVEFILE_ERR_TOO_LARGE, writer.append(piece.data(), piece.size(), written));
        EXPECT_EQ(mayGrow ? 1200 : 600, readableData(sink.bytes, layout));
        EXPECT_EQ(mayGrow, layout.rf64);
        EXPECT_EQ(header, layout.dataOffset);
        EXPECT_EQ(mayGrow ? 2 : 1, sink.commits);
        ASSERT_EQ(WAVEFILE_OK, writer.finish(writer.dataBytes()));
        EXPECT_EQ(header + (mayGrow ? 1200 : 600), sink.bytes.size());
        EXPECT_EQ(0, std::memcmp(sink.bytes.data(), mayGrow ? "RF64" : "RIFF", 4));
        if (mayGrow)
        {
            EXPECT_EQ(0u + 1200 + 72, getLe32(sink.bytes, 20)) << "the ds64 chunk's RIFF size";
        }
    }
}

// A full disk takes part of a piece: what reached the file is counted, and the header counts it.
TEST(StreamWriter, APieceCutShortByAFullDiskIsCountedAsFarAsItReached)
{
    MemorySink sink;
    sink.limit = kReservedHeaderSize + 1000;
    StreamWriter writer(sink, stereo16(), true);
    ASSERT_EQ(WAVEFILE_OK, writer.start());
    const Bytes piece(700, 0x33);
    size_t written = 0;
    EXPECT_EQ(WAVEFILE_OK, writer.append(piece.data(), piece.size(), written));
    EXPECT_EQ(WAVEFILE_ERR_IO, writer.append(piece.data(), piece.size(), written));
    EXPECT_EQ(300u, written);
    EXPECT_EQ(1000u, writer.dataBytes());
    WaveLayout layout;
    EXPECT_EQ(1000, readableData(sink.bytes, layout));
}

// An RF64 file must open with its ds64 chunk, whose sizes stand for the 32-bit fields of
// 0xFFFFFFFF (the LIST chunk after the data is no sound); a ds64 data size beyond the file is
// clipped like any other.
TEST(RiffWalk, Rf64SizesComeFromTheDs64Chunk)
{
    auto rf64 = [](uint64_t dataSize, const Bytes& data, bool withDs64) {
        Bytes ds64(28, 0);
        std::memcpy(&ds64[8], &dataSize, 8);
        Bytes file = riff({chunk(withDs64 ? "ds64" : "JUNK", ds64), chunk("fmt ", fmtBody(1, 8000, 8)),
                           chunk("data", data), chunk("LIST", {'I', 'N', 'F', 'O'})});
        std::memcpy(file.data(), "RF64", 4);
        putLe32(file, 4, 0xFFFFFFFFu);
        putLe32(file, 12 + 36 + 24 + 4, 0xFFFFFFFFu);
        return file;
    };
    const Bytes data(10, 0x80);
    WaveLayout layout;
    EXPECT_EQ(10, readableData(rf64(10, data, true), layout));
    EXPECT_TRUE(layout.rf64);
    EXPECT_EQ(10 + 12, readableData(rf64(1ull << 33, data, true), layout)); // to the end of the file
    EXPECT_TRUE(layout.clipped);
    EXPECT_EQ(-1, readableData(rf64(10, data, false), layout));
    Bytes cut = rf64(10, data, true);
    cut.resize(30);
    EXPECT_EQ(WAVEFILE_ERR_TRUNCATED, parse(cut, layout));
}
