// The sound-data library as the sound library and hosts use it: loading, reading,
// recording and stereo-to-mono conversion of containers.
#include "SndDataConvertty.h"
#include <climits>
#include <cstring>
#include <gtest/gtest.h>

namespace
{
using Bytes = std::vector<char>;
const Bytes kA = {1, 2, 3, 4}, kB = {5, 6, 7, 8}, kC = {9, 10, 11, 12};

tWAVEFORMATEX pcmWfx(WORD channels, WORD bits, DWORD rate = 22050)
{
    WORD block = static_cast<WORD>(channels * bits / 8);
    return {WAVE_FORMAT_PCM, channels, rate, rate * block, block, bits, 0};
}

Bytes held(const CSndDataty1& snd)
{
    const char* p = snd.getDataPointer();
    return p == nullptr ? Bytes() : Bytes(p, p + snd.getDataSize());
}

Bytes samples16(const std::vector<int16_t>& samples)
{
    Bytes bytes(samples.size() * 2);
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    return bytes;
}

int load(CSndDatatyx& snd, const Bytes& bytes, const tWAVEFORMATEX& wfx)
{
    return snd.setNewSndData(bytes.data(), static_cast<unsigned long>(bytes.size()), wfx);
}

// Scribbles over each block after handing it in, as a capture loop reuses its array.
void record(CSndDatatyx& snd, const tWAVEFORMATEX& wfx, int keepOld, std::vector<Bytes> blocks)
{
    ASSERT_EQ(1, snd.initRecordBuffer(4, wfx, keepOld));
    for (Bytes& block : blocks)
    {
        ASSERT_EQ(1, snd.insertNewRecordDataDSnd(block.data(), static_cast<unsigned long>(block.size())));
        block.assign(block.size(), 0);
    }
    EXPECT_EQ(1, snd.hasAudioWaveData()) << "an open recording holds what it took";
    EXPECT_EQ(1, snd.recordEndProcess());
    EXPECT_EQ(1, snd.hasAudioWaveData());
}

// Converts a container holding bytes in wfx; answers the result and what the container then holds.
int mixDown(Bytes& bytes, tWAVEFORMATEX& wfx)
{
    CSndDatatyx snd;
    CSndDataConvertty convert;
    load(snd, bytes, wfx);
    convert.setSndDataty(&snd);
    int result = convert.sndDataChannel2to1();
    bytes = held(snd);
    wfx = snd.getAudioWaveDataWfx();
    return result;
}
} // namespace

// A load keeps its own copy and closes an open recording; bad input keeps the old content;
// the format comparison sees every byte of the record.
TEST(SndDataLoad, KeepsItsOwnCopyAndRefusesBadInput)
{
    CSndDatatyx snd;
    ASSERT_EQ(1, snd.initRecordBuffer(8, pcmWfx(1, 8), 0));
    Bytes host = kA;
    ASSERT_EQ(1, load(snd, host, pcmWfx(2, 16)));
    host[0] = 99;
    EXPECT_EQ(kA, held(snd));
    EXPECT_EQ(1, snd.hasAudioWaveData());
    EXPECT_EQ(0, snd.setNewSndData(nullptr, 4, pcmWfx(1, 8)));
    EXPECT_EQ(0, snd.setNewSndData(kB.data(), 0, pcmWfx(1, 8)));
    EXPECT_EQ(0, load(snd, kB, tWAVEFORMATEX{WAVE_FORMAT_PCM, 1, 22050, 22050, 0, 8, 0}));
    EXPECT_EQ(kA, held(snd));
    for (size_t i = 0; i < sizeof(tWAVEFORMATEX); ++i)
    {
        tWAVEFORMATEX other = pcmWfx(2, 16);
        reinterpret_cast<unsigned char*>(&other)[i] ^= 0x40;
        EXPECT_EQ(0, snd.isWaveFormatexSame(other)) << "byte " << i;
    }
    EXPECT_EQ(1, snd.isWaveFormatexSame(pcmWfx(2, 16)));
}

TEST(SndDataRecord, BlocksAppendInOrderAndTheKeepFlagJoinsOnlyTheSameFormat)
{
    CSndDatatyx snd;
    record(snd, pcmWfx(2, 16), 0, {kA, kB, kC});
    EXPECT_EQ((Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}), held(snd));
    record(snd, pcmWfx(2, 16), 0, {kA});
    EXPECT_EQ(kA, held(snd)) << "flag 0 starts afresh";
    record(snd, pcmWfx(2, 16), 1, {kB});
    EXPECT_EQ((Bytes{1, 2, 3, 4, 5, 6, 7, 8}), held(snd));
    record(snd, pcmWfx(1, 16), 1, {kC});
    EXPECT_EQ(kC, held(snd)) << "mono cannot follow stereo";
    EXPECT_EQ(1, snd.isWaveFormatexSame(pcmWfx(1, 16)));
}

TEST(SndDataRecord, RefusesBlocksOutsideARecordingOrNotWholeAndResetDiscards)
{
    CSndDatatyx snd;
    EXPECT_EQ(0, snd.insertNewRecordDataDSnd(kA.data(), 4));
    EXPECT_EQ(0, snd.recordEndProcess());
    EXPECT_EQ(0, snd.initRecordBuffer(64, tWAVEFORMATEX{WAVE_FORMAT_PCM, 2, 22050, 0, 0, 16, 0}, 0));
    ASSERT_EQ(1, snd.initRecordBuffer(ULONG_MAX, pcmWfx(2, 16), 0)) << "the size is only a hint";
    EXPECT_EQ(0, snd.insertNewRecordDataDSnd(kA.data(), 3));
    EXPECT_EQ(0, snd.recordEndProcess()) << "nothing was recorded";
    // A reset discards what came so far and the recording goes on.
    ASSERT_EQ(1, snd.initRecordBuffer(16, pcmWfx(2, 16), 0));
    ASSERT_EQ(1, snd.insertNewRecordDataDSnd(kA.data(), 4));
    EXPECT_EQ(1, snd.resetDSndRecord());
    EXPECT_EQ(nullptr, snd.getDataPointer());
    ASSERT_EQ(1, snd.insertNewRecordDataDSnd(kB.data(), 4));
    EXPECT_EQ(1, snd.recordEndProcess());
    EXPECT_EQ(kB, held(snd));
}

TEST(SndDataConvert, AveragesStereoIntoMonoWithoutOverflow)
{
    Bytes bytes = samples16({32767, 32767, -32768, -32768, 1000, -1000, 100, 301});
    bytes.insert(bytes.end(), {5, 6, 7}); // a partial trailing frame is dropped
    tWAVEFORMATEX wfx = pcmWfx(2, 16, 44100);
    ASSERT_EQ(1, mixDown(bytes, wfx));
    EXPECT_EQ(samples16({32767, -32768, 0, 200}), bytes);
    EXPECT_TRUE(wfx.nChannels == 1 && wfx.nBlockAlign == 2 && wfx.nAvgBytesPerSec == 88200);

    const unsigned char unsigned8[] = {255, 255, 0, 0, 0, 255, 128, 128, 100, 201};
    bytes.assign(unsigned8, unsigned8 + sizeof(unsigned8));
    wfx = pcmWfx(2, 8, 11025);
    ASSERT_EQ(1, mixDown(bytes, wfx));
    const unsigned char mono8[] = {255, 0, 127, 128, 150};
    EXPECT_EQ(Bytes(mono8, mono8 + sizeof(mono8)), bytes);
    EXPECT_TRUE(wfx.nChannels == 1 && wfx.nBlockAlign == 1 && wfx.nAvgBytesPerSec == 11025);
}

TEST(SndDataConvert, LeavesOtherDataUntouched)
{
    tWAVEFORMATEX floatTag = pcmWfx(2, 16), badAlign = pcmWfx(2, 16);
    floatTag.wFormatTag = 3;
    badAlign.nBlockAlign = 2;
    const Bytes stereo = samples16({1, 2, 3, 4, 5, 6});
    for (tWAVEFORMATEX wfx : {pcmWfx(1, 16), pcmWfx(2, 24), floatTag, badAlign})
    {
        Bytes bytes = stereo;
        EXPECT_EQ(0, mixDown(bytes, wfx));
        EXPECT_EQ(stereo, bytes);
    }
    Bytes partFrame = {1, 2, 3};
    tWAVEFORMATEX wfx = pcmWfx(2, 16);
    EXPECT_EQ(0, mixDown(partFrame, wfx)) << "less than one frame";
    CSndDataConvertty convert;
    EXPECT_EQ(0, convert.sndDataChannel2to1()) << "nothing bound";
    CSndDatatyx snd;
    ASSERT_EQ(1, snd.initRecordBuffer(8, pcmWfx(2, 16), 0));
    ASSERT_EQ(1, snd.insertNewRecordDataDSnd(kA.data(), 4));
    convert.setSndDataty(&snd);
    EXPECT_EQ(0, convert.sndDataChannel2to1()) << "recording open";
}
