// Files and archives: the byte layouts other MFC programs read, and the failures a short or
// hostile file must end in.
#include <afx.h>
#include <functional>
#include <tuple>
#include <gtest/gtest.h>

namespace
{
struct TempFile
{
    explicit TempFile(const wchar_t* name)
    {
        wchar_t folder[MAX_PATH];
        ::GetTempPathW(MAX_PATH, folder);
        path = std::wstring(folder) + L"mfc_tests_" + name;
        ::DeleteFileW(path.c_str());
    }
    ~TempFile() { ::DeleteFileW(path.c_str()); }
    std::string bytes() const
    {
        CFile in(path.c_str(), CFile::modeRead | CFile::shareDenyNone);
        std::string content(static_cast<size_t>(in.GetLength()), '\0');
        in.Read(&content[0], static_cast<UINT>(content.size()));
        return content;
    }
    void write(const std::string& content) const
    {
        CFile out(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        out.Write(content.data(), static_cast<UINT>(content.size()));
    }
    std::wstring path;
};

std::string utf16(const CString& text)
{
    std::string bytes;
    for (int i = 0; i < text.GetLength(); ++i)
        bytes += std::string{static_cast<char>(text[i]), static_cast<char>(text[i] >> 8)};
    return bytes;
}

// Stores through a fresh archive and returns the file's bytes.
std::string stored(const TempFile& file, const std::function<void(CArchive&)>& store)
{
    {
        CFile out(file.path.c_str(), CFile::modeCreate | CFile::modeWrite);
        CArchive ar(&out, CArchive::store);
        store(ar);
    }
    return file.bytes();
}

int archiveCause(const std::function<void()>& action)
{
    int cause = CArchiveException::none;
    try
    {
        action();
    }
    catch (CArchiveException* e)
    {
        cause = e->m_cause;
        e->Delete();
    }
    return cause;
}
} // namespace

// The widths the library's settings files hold.
TEST(CArchiveTest, EveryWidthIsLittleEndianAndUnpadded)
{
    TempFile file(L"widths.bin");
    EXPECT_EQ(std::string("\x56\x34" "\xFE\xFF\xFF\xFF" "\x04\x03\x02\x01" "\x00\x00\x80\x3F", 14),
              stored(file, [](CArchive& ar) { ar << (WORD)0x3456 << (LONG)-2 << (DWORD)0x01020304 << 1.0f; }));
    CFile in(file.path.c_str(), CFile::modeRead);
    CArchive ar(&in, CArchive::load);
    WORD w;
    LONG l;
    DWORD dw;
    float f;
    ar >> w >> l >> dw >> f;
    EXPECT_EQ(std::make_tuple(0x3456, -2L, 0x01020304UL, 1.0f), std::make_tuple(w, l, dw, f));
}

// Strings are stored in MFC's UTF-16 form, the length escaped at its byte and word limits.
// (The narrow form of older files is loaded in the settings-file tests.)
TEST(CArchiveTest, StringLayouts)
{
    TempFile file(L"string.bin");
    const struct { CString text; std::string prefix; } strings[] = {
        {L"DSNDTYSTIM", "\xFF\xFE\xFF\x0A"},
        {L"", std::string("\xFF\xFE\xFF\x00", 4)},
        {CString(L'x', 254), "\xFF\xFE\xFF\xFE"},
        {CString(L'x', 255), std::string("\xFF\xFE\xFF\xFF\xFF\x00", 6)},
        {CString(L'x', 0xFFFD), "\xFF\xFE\xFF\xFF\xFD\xFF"},
        {CString(L'x', 0xFFFE), std::string("\xFF\xFE\xFF\xFF\xFF\xFF\xFE\xFF\x00\x00", 10)},
    };
    for (const auto& c : strings)
    {
        EXPECT_EQ(c.prefix + utf16(c.text), stored(file, [&](CArchive& ar) { ar << c.text; })) << c.text.GetLength();
        CFile in(file.path.c_str(), CFile::modeRead);
        CArchive ar(&in, CArchive::load);
        CString loaded;
        ar >> loaded;
        EXPECT_TRUE(loaded == c.text) << c.text.GetLength();
    }
}

// (The library never stores into a loading archive or the reverse, nor reads raw blocks.)
TEST(CArchiveTest, ShortOrHostileFilesEndTheFile)
{
    TempFile file(L"short.bin");
    file.write(std::string("\x07\x00\x00\x00\x01\x02", 6));
    {
        CFile in(file.path.c_str(), CFile::modeRead);
        CArchive ar(&in, CArchive::load);
        DWORD first = 0, second = 0xABCD;
        EXPECT_EQ(CArchiveException::endOfFile, archiveCause([&] { ar >> first >> second; }));
        EXPECT_EQ(7u, first);
        EXPECT_EQ(0xABCDu, second); // a field is read whole or not at all
    }
    // A length of three quarters of a gigabyte ends the file instead of allocating.
    file.write(std::string("\xFF\xFE\xFF\xFF\xFF\xFF\x00\x00\x00\x30", 10) + "abcd");
    CFile in(file.path.c_str(), CFile::modeRead);
    CArchive ar(&in, CArchive::load);
    CString text(L"kept");
    EXPECT_EQ(CArchiveException::endOfFile, archiveCause([&] { ar >> text; }));
    EXPECT_STREQ(L"kept", text);
}
