// The settings files of the device and of a 3D buffer: their bytes as stored, a load that
// restores every field, refusals of another magic or version, and cut-off or random files.

#include "UnitFixtures.h"

#include <cstring>

namespace
{
template <class T> Bytes bytesOf(T value)
{
    Bytes out(sizeof value);
    memcpy(out.data(), &value, sizeof value);
    return out;
}

// The header of a file: a wide magic, as the archive stores a wide string.
Bytes wideHeader(const std::string& magic)
{
    Bytes header = {0xFF, 0xFE, 0xFF, static_cast<unsigned char>(magic.size())};
    for (char ch : magic)
        header.insert(header.end(), {static_cast<unsigned char>(ch), 0});
    return header;
}

// Distinct values in every field a 3D buffer's file carries.
void fill(TestBuffer& buffer)
{
    buffer.m_fPlayLength = 1500.0f;
    buffer.m_fElapsedTime = 250.5f;
    buffer.m_dsbd.dwBufferBytes = 88200;
    buffer.m_wfx = pcmFormat(1, 44100, 16);
    buffer.m_ds3dListener = {64, {1, 2, 3}, {4, 5, 6}, {0, 0, 1}, {0, 1, 0}, 1.5f, 2.5f, 3.5f};
    buffer.m_ds3dBuffer = {64, {7, 8, 9}, {10, 11, 12}, 30, 90, {0, 0, -1}, -600, 1.25f, 500.0f, DS3DMODE_HEADRELATIVE};
}

class SettingsFileTest : public DeviceTest
{
protected:
    // The stored file of a filled 3D buffer.
    Bytes filled3DFile()
    {
        TestBuffer source;
        fill(source);
        EXPECT_EQ(1, file.store(source));
        return file.bytes();
    }

    TempFile file;
};

TEST_F(SettingsFileTest, NewDeviceStoresTheExactLayout)
{
    ASSERT_EQ(1, file.store(device));
    const Bytes data = file.bytes();
    ASSERT_EQ(132u, data.size());
    Bytes head = wideHeader("DSNDTYSTIM");
    head.insert(head.end(), {0x65, 0xA3, 0x31, 0x01, 0x00, 0x00, 0x88, 0x58, 0x01, 0x00, 0x04, 0x00, 0x02, 0x00,
                             0x22, 0x56, 0x00, 0x00, 0x10, 0x00, 0x01, 0x00});
    EXPECT_EQ(head, Bytes(data.begin(), data.begin() + head.size()));
    // The level, then the last value: the speaker configuration.
    EXPECT_EQ((Bytes{1, 0, 0, 0}), Bytes(data.begin() + 104, data.begin() + 108));
    EXPECT_EQ((Bytes{0x04, 0x00, 0x14, 0x00}), Bytes(data.end() - 4, data.end()));
}

TEST_F(SettingsFileTest, DeviceRoundTripRestoresEveryFieldInItsPlace)
{
    device.m_wfxPrimary = pcmFormat(1, 11025, 8);
    device.m_wfxSecond = pcmFormat(2, 44100, 16);
    device.m_dsCaps.dwFlags = 0xF5F;
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
    EXPECT_EQ(0, memcmp(&device.m_dsCaps, &restored.m_dsCaps, sizeof(DSCAPS)));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_WRITEPRIMARY), restored.m_dwCoopLevel);
    EXPECT_EQ(0xB40004u, restored.m_dwSpeakerConfig);
    EXPECT_EQ((std::vector<DWORD>{1, 2, 3, 4, 5}),
              (std::vector<DWORD>{restored.m_dwExtra1, restored.m_dwExtra2, restored.m_dwExtra3,
                                  restored.m_dwExtra4, restored.m_dwExtra5}));
}

// Lower-case magic or a newer version: refused, nothing loaded. A cut-off file ends in
// end-of-file keeping what was read; an empty or random one never crashes.
TEST_F(SettingsFileTest, DeviceLoadRefusesForeignOrShortFiles)
{
    device.m_wfxPrimary = pcmFormat(1, 11025, 8);
    ASSERT_EQ(1, file.store(device));
    Bytes lower = file.bytes(), newer = lower, cut(lower.begin(), lower.begin() + 60);
    for (size_t i = 4; i < 24; i += 2)
        lower[i] = static_cast<unsigned char>(tolower(lower[i]));
    newer[24] = 0x66; // 20030310
    for (const Bytes& data : {lower, newer})
    {
        file.write(data);
        TestDevice other;
        other.m_dwCoopLevel = DSSCL_PRIORITY;
        EXPECT_EQ(0, file.load(other));
        EXPECT_EQ(static_cast<DWORD>(DSSCL_PRIORITY), other.m_dwCoopLevel);
    }
    EXPECT_EQ(Texts(2, L"CDirectSndDevicety:: wrong file format!"), messages.texts());

    file.write(cut); // past the first format record, inside the second
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

// The header, version, play length, elapsed time and size, then the platform's records as
// they lie in memory: the format, the listener, the buffer.
TEST_F(SettingsFileTest, Buffer3DStoresHeaderThenEveryFieldListenerFirst)
{
    TestBuffer source;
    fill(source);
    Bytes expected = wideHeader("DIRECTSND3DTYX");
    for (const Bytes& field : {bytesOf<DWORD>(20040320), bytesOf(1500.0f), bytesOf(250.5f), bytesOf<DWORD>(88200),
                               bytesOf(source.m_wfx), bytesOf(source.m_ds3dListener), bytesOf(source.m_ds3dBuffer)})
        expected.insert(expected.end(), field.begin(), field.end());
    ASSERT_EQ(194u, expected.size());
    EXPECT_EQ(expected, filled3DFile());
}

// A load restores the working and the saved records without reaching DirectSound; a narrow
// magic is accepted too.
TEST_F(SettingsFileTest, Buffer3DLoadRestoresEveryField)
{
    const Bytes good = filled3DFile();
    Bytes narrow = {14};
    narrow.insert(narrow.end(), std::begin("DIRECTSND3DTYX"), std::end("DIRECTSND3DTYX") - 1);
    narrow.insert(narrow.end(), good.begin() + 32, good.end());
    for (const Bytes& data : {good, narrow})
    {
        file.write(data);
        TestBuffer expected, loaded;
        fill(expected);
        ASSERT_EQ(1, file.load(loaded));
        EXPECT_EQ(std::make_pair(expected.m_fPlayLength, expected.m_fElapsedTime),
                  std::make_pair(loaded.m_fPlayLength, loaded.m_fElapsedTime));
        EXPECT_EQ(88200u, loaded.m_dsbd.dwBufferBytes);
        EXPECT_TRUE(sameFormat(expected.m_wfx, loaded.m_wfx));
        EXPECT_EQ(0, memcmp(&expected.m_ds3dBuffer, &loaded.m_ds3dBuffer, sizeof(DS3DBUFFER)));
        EXPECT_EQ(0, memcmp(&expected.m_ds3dListener, &loaded.m_ds3dListener, sizeof(DS3DLISTENER)));
        EXPECT_EQ(0, memcmp(&loaded.m_ds3dBufferSaved, &loaded.m_ds3dBuffer, sizeof(DS3DBUFFER)));
        EXPECT_EQ(0, memcmp(&loaded.m_ds3dListenerSaved, &loaded.m_ds3dListener, sizeof(DS3DLISTENER)));
    }
    EXPECT_TRUE(tap.calls().empty());
    EXPECT_TRUE(messages.texts().empty());
}

// Another magic or version is refused before the body; a cut-off file throws after the fields
// it held.
TEST_F(SettingsFileTest, Buffer3DLoadRefusesForeignOrShortFiles)
{
    const Bytes good = filled3DFile();
    for (size_t at : {size_t(4 + 2 * 13), size_t(32)})
    {
        Bytes bad = good;
        bad[at] += 1; // "DIRECTSND3DTYY", version 20040321
        file.write(bad);
        TestBuffer loaded;
        EXPECT_EQ(0, file.load(loaded)) << at;
        EXPECT_EQ(0u, loaded.m_ds3dBuffer.dwSize);
        EXPECT_EQ(0u, loaded.m_dsbd.dwBufferBytes);
    }
    EXPECT_EQ(Texts(2, L"CDirectSnd3DBuffty: bad format!"), messages.texts());

    file.write(Bytes(good.begin(), good.begin() + 100));
    TestBuffer cut;
    EXPECT_EQ(CArchiveException::endOfFile, file.loadFailure(cut));
    EXPECT_EQ(44100u, cut.m_wfx.nSamplesPerSec);
    EXPECT_EQ(4.0f, cut.m_ds3dListener.vVelocity.x);
    EXPECT_EQ(0u, cut.m_ds3dBuffer.dwSize);
}
}
