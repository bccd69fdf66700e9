// The 3D buffer settings file: its bytes as stored, a load that restores and commits the
// records without reaching DirectSound, header refusals, a narrow magic and a cut-off file.

#include "DeviceTestSupport.h"

#include <cstring>
#include <tuple>

namespace
{
class File3DBuffer : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::m_dsbd;
    using CDirectSnd2DBuff::m_wfx;
    using CDirectSnd3DBuff::m_fPlayLength;
    using CDirectSnd3DBuff::m_fElapsedTime;

    // Distinct values in every field the file carries.
    void fill()
    {
        m_fPlayLength = 1500.0f;
        m_fElapsedTime = 250.5f;
        m_dsbd.dwBufferBytes = 88200;
        m_wfx = pcmFormat(1, 44100, 16);
        m_ds3dListener = {64, {1, 2, 3}, {4, 5, 6}, {0, 0, 1}, {0, 1, 0}, 1.5f, 2.5f, 3.5f};
        m_ds3dBuffer = {64, {7, 8, 9}, {10, 11, 12}, 30, 90, {0, 0, -1}, -600, 1.25f, 500.0f, DS3DMODE_HEADRELATIVE};
    }
};

template <class T> std::vector<unsigned char> bytesOf(T value)
{
    std::vector<unsigned char> out(sizeof value);
    memcpy(out.data(), &value, sizeof value);
    return out;
}

class Buffer3DFileTest : public DeviceTest
{
protected:
    // The stored file of a filled buffer.
    std::vector<unsigned char> filledFile()
    {
        File3DBuffer source;
        source.fill();
        EXPECT_EQ(1, file.store(source));
        return file.bytes();
    }

    ArchiveFile file;
};

TEST_F(Buffer3DFileTest, StoresHeaderThenEveryFieldAtItsOffsetListenerFirst)
{
    const std::vector<unsigned char> data = filledFile();
    ASSERT_EQ(194u, data.size());
    std::vector<unsigned char> header = {0xFF, 0xFE, 0xFF, 14};
    for (char ch : std::string("DIRECTSND3DTYX"))
        header.insert(header.end(), {static_cast<unsigned char>(ch), 0});
    EXPECT_EQ(header, std::vector<unsigned char>(data.begin(), data.begin() + 32));

    struct Field
    {
        size_t offset;
        std::vector<unsigned char> value;
    };
    const Field fields[] = {{32, bytesOf<DWORD>(20040320)}, {36, bytesOf(1500.0f)},  {40, bytesOf(250.5f)},
                            {44, bytesOf<DWORD>(88200)},    {48, bytesOf<WORD>(1)},   {50, bytesOf<WORD>(1)},
                            {52, bytesOf<DWORD>(44100)},    {56, bytesOf<DWORD>(88200)}, {60, bytesOf<WORD>(2)},
                            {62, bytesOf<WORD>(16)},        {64, bytesOf<WORD>(0)},   {66, bytesOf<DWORD>(64)},
                            {70, bytesOf(1.0f)},            {82, bytesOf(4.0f)},      {102, bytesOf(1.0f)},
                            {110, bytesOf(1.0f)},           {118, bytesOf(1.5f)},     {122, bytesOf(2.5f)},
                            {126, bytesOf(3.5f)},           {130, bytesOf<DWORD>(64)}, {134, bytesOf(7.0f)},
                            {146, bytesOf(10.0f)},          {158, bytesOf<DWORD>(30)}, {162, bytesOf<DWORD>(90)},
                            {174, bytesOf(-1.0f)},          {178, bytesOf<LONG>(-600)}, {182, bytesOf(1.25f)},
                            {186, bytesOf(500.0f)},         {190, bytesOf<DWORD>(DS3DMODE_HEADRELATIVE)}};
    for (const Field& field : fields)
        EXPECT_EQ(field.value, std::vector<unsigned char>(data.begin() + field.offset,
                                                           data.begin() + field.offset + field.value.size()))
            << "offset " << field.offset;
}

TEST_F(Buffer3DFileTest, LoadRestoresEveryFieldAndCommitsTheRecordsWithoutDirectSound)
{
    filledFile();
    File3DBuffer expected, loaded;
    expected.fill();
    ASSERT_EQ(1, file.load(loaded));
    EXPECT_EQ(std::make_tuple(expected.m_fPlayLength, expected.m_fElapsedTime, expected.m_dsbd.dwBufferBytes),
              std::make_tuple(loaded.m_fPlayLength, loaded.m_fElapsedTime, loaded.m_dsbd.dwBufferBytes));
    EXPECT_TRUE(sameFormat(expected.m_wfx, loaded.m_wfx));
    EXPECT_EQ(0, memcmp(&expected.m_ds3dBuffer, &loaded.m_ds3dBuffer, sizeof(DS3DBUFFER)));
    EXPECT_EQ(0, memcmp(&expected.m_ds3dListener, &loaded.m_ds3dListener, sizeof(DS3DLISTENER)));
    EXPECT_EQ(0, memcmp(&loaded.m_ds3dBufferSaved, &loaded.m_ds3dBuffer, sizeof(DS3DBUFFER)));
    EXPECT_EQ(0, memcmp(&loaded.m_ds3dListenerSaved, &loaded.m_ds3dListener, sizeof(DS3DLISTENER)));
    EXPECT_TRUE(tap.calls().empty());
    EXPECT_TRUE(messages.texts().empty());
}

TEST_F(Buffer3DFileTest, AnotherMagicOrVersionIsRefusedBeforeTheBody)
{
    const std::vector<unsigned char> good = filledFile();
    for (size_t at : {size_t(4 + 2 * 13), size_t(32)})
    {
        std::vector<unsigned char> bad = good;
        bad[at] += 1; // "DIRECTSND3DTYY", version 20040321
        file.write(bad);
        messages.clear();
        File3DBuffer loaded;
        EXPECT_EQ(0, file.load(loaded)) << at;
        EXPECT_EQ((std::vector<std::wstring>{L"CDirectSnd3DBuffty: bad format!"}), messages.texts());
        EXPECT_EQ(0u, loaded.m_ds3dBuffer.dwSize);
        EXPECT_EQ(0u, loaded.m_dsbd.dwBufferBytes);
    }
}

TEST_F(Buffer3DFileTest, NarrowMagicIsAcceptedAndACutOffFileThrowsAfterTheFieldsItHeld)
{
    const std::vector<unsigned char> good = filledFile();
    std::vector<unsigned char> narrow = {14};
    for (char ch : std::string("DIRECTSND3DTYX"))
        narrow.push_back(static_cast<unsigned char>(ch));
    narrow.insert(narrow.end(), good.begin() + 32, good.end());
    file.write(narrow);
    File3DBuffer loaded;
    EXPECT_EQ(1, file.load(loaded));
    EXPECT_EQ(88200u, loaded.m_dsbd.dwBufferBytes);

    file.write(std::vector<unsigned char>(good.begin(), good.begin() + 100));
    File3DBuffer cut;
    EXPECT_EQ(CArchiveException::endOfFile, file.loadFailure(cut));
    EXPECT_EQ(44100u, cut.m_wfx.nSamplesPerSec);
    EXPECT_EQ(4.0f, cut.m_ds3dListener.vVelocity.x);
    EXPECT_EQ(0u, cut.m_ds3dBuffer.dwSize);
}
}
