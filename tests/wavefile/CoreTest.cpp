// The Windows-free core: the format rules, the RIFF size limit, and the chunk walk on files
// that are rearranged, cut at every length or corrupted: it must answer an error or data
// that lies inside the file, and never ask for a byte past the end. Builds natively too.
#include "RiffReader.h"
#include "TestRiff.h"
#include <algorithm>
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

TEST(WaveFormatRules, AcceptIntegerPcmOnlyAndConsistentOnly)
{
    const Bytes pcm16 = fmtBody(2, 22050, 16), ext24 = fmtBody(2, 44100, 24, true);
    const struct { const char* what; Bytes body; uint32_t size; WaveFileResult expected; } cases[] = {
        {"16-bit stereo", pcm16, 16, WAVEFILE_OK},
        {"fmt of 18 bytes with cbSize 0", pcm16, 18, WAVEFILE_OK},
        {"12 bits in two bytes", fmtBody(1, 8000, 12), 16, WAVEFILE_OK},
        {"extensible 24-bit PCM", ext24, 40, WAVEFILE_OK},
        {"extensible float", fmtBody(2, 44100, 32, true, 3), 40, WAVEFILE_ERR_UNSUPPORTED},
        {"IEEE float tag", poke(pcm16, 0, 3, 2), 16, WAVEFILE_ERR_UNSUPPORTED},
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
