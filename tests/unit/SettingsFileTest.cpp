#include "DeviceTestSupport.h"
#include <fstream>
#include <iterator>

namespace
{
class SettingsFileTest : public DeviceTest
{
protected:
    SettingsFileTest()
    {
        wchar_t dir[MAX_PATH];
        GetTempPathW(MAX_PATH, dir);
        wchar_t name[MAX_PATH];
        GetTempFileNameW(dir, L"dst", 0, name);
        path = name;
    }
    ~SettingsFileTest() override { DeleteFileW(path.c_str()); }

    int store(TestDevice& device)
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        CArchive ar(&file, CArchive::store);
        int result = device.serialize(ar);
        ar.Close();
        return result;
    }

    int load(TestDevice& device)
    {
        CFile file(path.c_str(), CFile::modeRead);
        CArchive ar(&file, CArchive::load);
        return device.serialize(ar);
    }

    std::vector<unsigned char> bytes()
    {
        CFile file(path.c_str(), CFile::modeRead);
        std::vector<unsigned char> data(static_cast<size_t>(file.GetLength()));
        if (!data.empty())
            file.Read(data.data(), static_cast<UINT>(data.size()));
        return data;
    }

    void write(const std::vector<unsigned char>& data)
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        file.Write(data.data(), static_cast<UINT>(data.size()));
    }

    std::wstring path;
    TestDevice device;
};

TEST_F(SettingsFileTest, NewDeviceStoresTheExactLayout)
{
    ASSERT_EQ(1, store(device));
    std::vector<unsigned char> data = bytes();
    ASSERT_EQ(132u, data.size());

    std::vector<unsigned char> head = {0xFF, 0xFE, 0xFF, 0x0A};
    for (char c : std::string("DSNDTYSTIM"))
    {
        head.push_back(static_cast<unsigned char>(c));
        head.push_back(0);
    }
    for (unsigned char b : {0x65, 0xA3, 0x31, 0x01})
        head.push_back(b);
    for (unsigned char b : {0x00, 0x00, 0x88, 0x58, 0x01, 0x00, 0x04, 0x00, 0x02, 0x00, 0x22, 0x56, 0x00, 0x00,
                            0x10, 0x00, 0x01, 0x00})
        head.push_back(b);
    EXPECT_EQ(head, std::vector<unsigned char>(data.begin(), data.begin() + head.size()));
    // The level, then the last value: the speaker configuration.
    EXPECT_EQ((std::vector<unsigned char>{1, 0, 0, 0}), std::vector<unsigned char>(data.begin() + 104, data.begin() + 108));
    EXPECT_EQ((std::vector<unsigned char>{0x04, 0x00, 0x14, 0x00}), std::vector<unsigned char>(data.end() - 4, data.end()));
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
    device.m_dwExtra1 = 1;
    device.m_dwExtra2 = 2;
    device.m_dwExtra3 = 3;
    device.m_dwExtra4 = 4;
    device.m_dwExtra5 = 5;
    ASSERT_EQ(1, store(device));
    std::vector<unsigned char> data = bytes();
    EXPECT_EQ(4, data[112]); // the fourth extra value is stored second
    EXPECT_EQ(2, data[124]);

    TestDevice restored;
    ASSERT_EQ(1, load(restored));
    EXPECT_EQ(1, restored.isSoundFormatSame(device.m_wfxPrimary, restored.m_wfxPrimary));
    EXPECT_EQ(1, restored.isSoundFormatSame(device.m_wfxSecond, restored.m_wfxSecond));
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
    ASSERT_EQ(1, store(device));
    std::vector<unsigned char> good = bytes();

    std::vector<unsigned char> lower = good;
    for (size_t i = 4; i < 24; i += 2)
        lower[i] = static_cast<unsigned char>(tolower(lower[i]));
    std::vector<unsigned char> newer = good;
    newer[24] = 0x66; // 20030310

    for (const auto& data : {lower, newer})
    {
        write(data);
        TestDevice other;
        other.m_dwCoopLevel = DSSCL_PRIORITY;
        messages.clear();
        EXPECT_EQ(0, load(other));
        EXPECT_EQ((std::vector<std::wstring>{L"CDirectSndDevicety:: wrong file format!"}), messages.texts());
        EXPECT_EQ(static_cast<DWORD>(DSSCL_PRIORITY), other.m_dwCoopLevel);
    }
}

TEST_F(SettingsFileTest, TruncatedFileThrowsEndOfFileKeepingWhatWasRead)
{
    device.m_wfxPrimary = pcmFormat(1, 11025, 8);
    ASSERT_EQ(1, store(device));
    std::vector<unsigned char> data = bytes();
    data.resize(60); // past the first format record, inside the second
    write(data);

    TestDevice other;
    int cause = -1;
    try
    {
        load(other);
    }
    catch (CArchiveException* e)
    {
        cause = e->m_cause;
        e->Delete();
    }
    EXPECT_EQ(CArchiveException::endOfFile, cause);
    EXPECT_EQ(11025u, other.m_wfxPrimary.nSamplesPerSec);
}

TEST_F(SettingsFileTest, EmptyOrRandomFilesNeverCrash)
{
    for (const auto& data : {std::vector<unsigned char>{}, std::vector<unsigned char>{0xFF, 0xFF, 0xFF},
                             std::vector<unsigned char>{0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F}})
    {
        write(data);
        TestDevice other;
        try
        {
            EXPECT_EQ(0, load(other));
        }
        catch (CArchiveException* e)
        {
            EXPECT_EQ(CArchiveException::endOfFile, e->m_cause);
            e->Delete();
        }
    }
}
}
