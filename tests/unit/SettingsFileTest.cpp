// The device settings file: its bytes as stored, a round trip of every field, refusals of
// another magic or version, and cut-off or random files.
#include "DeviceTestSupport.h"

namespace
{
using Bytes = std::vector<unsigned char>;

class SettingsFileTest : public DeviceTest
{
protected:
    ArchiveFile file;
    TestDevice device;
};

TEST_F(SettingsFileTest, NewDeviceStoresTheExactLayout)
{
    ASSERT_EQ(1, file.store(device));
    const Bytes data = file.bytes();
    ASSERT_EQ(132u, data.size());
    Bytes head = {0xFF, 0xFE, 0xFF, 0x0A};
    for (char c : std::string("DSNDTYSTIM"))
        head.insert(head.end(), {static_cast<unsigned char>(c), 0});
    head.insert(head.end(), {0x65, 0xA3, 0x31, 0x01, 0x00, 0x00, 0x88, 0x58, 0x01, 0x00, 0x04, 0x00, 0x02, 0x00,
                             0x22, 0x56, 0x00, 0x00, 0x10, 0x00, 0x01, 0x00});
    EXPECT_EQ(head, Bytes(data.begin(), data.begin() + head.size()));
    // The level, then the last value: the speaker configuration.
    EXPECT_EQ((Bytes{1, 0, 0, 0}), Bytes(data.begin() + 104, data.begin() + 108));
    EXPECT_EQ((Bytes{0x04, 0x00, 0x14, 0x00}), Bytes(data.end() - 4, data.end()));
}

TEST_F(SettingsFileTest, RoundTripRestoresEveryFieldInItsPlace)
{
    device.m_wfxPrimary = pcmFormat(1, 11025, 8);
    device.m_wfxSecond = pcmFormat(2, 44100, 16);
    device.m_dsCaps.dwFlags = 0xF5F;
    device.m_dsCaps.dwMaxHw3DAllBuffers = 33;
    device.m_dsCaps.dwFreeHwMemBytes = 1 << 20;
    device.m_dwCoopLevel = DSSCL_WRITEPRIMARY;
    device.m_dwSpeakerConfig = 0xB40004;
    device.m_dwExtra1 = 1, device.m_dwExtra2 = 2, device.m_dwExtra3 = 3, device.m_dwExtra4 = 4, device.m_dwExtra5 = 5;
    ASSERT_EQ(1, file.store(device));
    const Bytes data = file.bytes();
    EXPECT_EQ(4, data[112]); // the fourth extra value is stored second
    EXPECT_EQ(2, data[124]);

    TestDevice restored;
    ASSERT_EQ(1, file.load(restored));
    EXPECT_TRUE(sameFormat(device.m_wfxPrimary, restored.m_wfxPrimary));
    EXPECT_TRUE(sameFormat(device.m_wfxSecond, restored.m_wfxSecond));
    EXPECT_EQ(0xF5Fu, restored.m_dsCaps.dwFlags);
    EXPECT_EQ(33u, restored.m_dsCaps.dwMaxHw3DAllBuffers);
    EXPECT_EQ(1u << 20, restored.m_dsCaps.dwFreeHwMemBytes);
    EXPECT_EQ(static_cast<DWORD>(DSSCL_WRITEPRIMARY), restored.m_dwCoopLevel);
    EXPECT_EQ(0xB40004u, restored.m_dwSpeakerConfig);
    EXPECT_EQ((std::vector<DWORD>{1, 2, 3, 4, 5}),
              (std::vector<DWORD>{restored.m_dwExtra1, restored.m_dwExtra2, restored.m_dwExtra3,
                                  restored.m_dwExtra4, restored.m_dwExtra5}));
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(SettingsFileTest, ForeignMagicOrVersionIsRefusedAndNothingLoaded)
{
    ASSERT_EQ(1, file.store(device));
    Bytes lower = file.bytes(), newer = lower;
    for (size_t i = 4; i < 24; i += 2)
        lower[i] = static_cast<unsigned char>(tolower(lower[i]));
    newer[24] = 0x66; // 20030310
    for (const Bytes& data : {lower, newer})
    {
        file.write(data);
        TestDevice other;
        other.m_dwCoopLevel = DSSCL_PRIORITY;
        messages.clear();
        EXPECT_EQ(0, file.load(other));
        EXPECT_EQ((std::vector<std::wstring>{L"CDirectSndDevicety:: wrong file format!"}), messages.texts());
        EXPECT_EQ(static_cast<DWORD>(DSSCL_PRIORITY), other.m_dwCoopLevel);
    }
}

// A cut-off file ends in end-of-file keeping what was read; an empty or random one never crashes.
TEST_F(SettingsFileTest, ShortOrRandomFilesEndTheLoad)
{
    device.m_wfxPrimary = pcmFormat(1, 11025, 8);
    ASSERT_EQ(1, file.store(device));
    Bytes data = file.bytes();
    data.resize(60); // past the first format record, inside the second
    file.write(data);
    TestDevice other;
    EXPECT_EQ(CArchiveException::endOfFile, file.loadFailure(other));
    EXPECT_EQ(11025u, other.m_wfxPrimary.nSamplesPerSec);

    for (const Bytes& random : {Bytes{}, Bytes{0xFF, 0xFF, 0xFF}, Bytes{0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}})
    {
        file.write(random);
        TestDevice fresh;
        const int cause = file.loadFailure(fresh);
        EXPECT_TRUE(cause == CArchiveException::none || cause == CArchiveException::endOfFile) << cause;
    }
}
}
