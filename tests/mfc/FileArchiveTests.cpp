#include "TestSupport.h"
#include <gtest/gtest.h>

using mfctest::TempFile;

namespace
{
std::string utf16(const char* ascii)
{
    std::string bytes;
    for (; *ascii; ++ascii)
        bytes += std::string(1, *ascii) + '\0';
    return bytes;
}

// Stores through a fresh archive and returns the file's bytes.
template <class Store>
std::string stored(const TempFile& file, Store store)
{
    {
        CFile out(file.path(), CFile::modeCreate | CFile::modeWrite);
        CArchive ar(&out, CArchive::store);
        store(ar);
    }
    return file.bytes();
}

int archiveCause(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (CArchiveException* e)
    {
        int cause = e->m_cause;
        e->Delete();
        return cause;
    }
    return CArchiveException::none;
}
} // namespace

TEST(CFileTest, OpensReadsToTheEndAndKeepsContentOnNoTruncate)
{
    TempFile file(L"file.bin");
    try
    {
        CFile missing(file.path(), CFile::modeRead);
        ADD_FAILURE() << "opened a missing file";
    }
    catch (CFileException* e)
    {
        EXPECT_EQ(CFileException::fileNotFound, e->m_cause);
        e->Delete();
    }

    file.write("abcdef");
    {
        CFile keep(file.path(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeReadWrite);
        EXPECT_EQ(6u, keep.GetLength());
        char buffer[8];
        EXPECT_EQ(6u, keep.Read(buffer, 8));
        EXPECT_EQ(0u, keep.Read(buffer, 8)); // at the end: 0, no exception
    }
    CFile truncate(file.path(), CFile::modeCreate | CFile::modeWrite);
    EXPECT_EQ(0u, truncate.GetLength());
}

TEST(CArchiveTest, EveryWidthIsLittleEndianAndUnpadded)
{
    TempFile file(L"widths.bin");
    std::string bytes = stored(file, [](CArchive& ar) {
        ar << (BYTE)0x12 << (WORD)0x3456 << (LONG)-2 << (DWORD)0x01020304 << (int)-3 << (unsigned)5
           << (short)-4 << 'c' << true << 1.0f << 1.0 << (LONGLONG)-6 << (ULONGLONG)0x0102030405060708ULL;
    });
    const std::string expected("\x12" "\x56\x34" "\xFE\xFF\xFF\xFF" "\x04\x03\x02\x01" "\xFD\xFF\xFF\xFF"
                               "\x05\x00\x00\x00" "\xFC\xFF" "c" "\x01" "\x00\x00\x80\x3F"
                               "\x00\x00\x00\x00\x00\x00\xF0\x3F" "\xFA\xFF\xFF\xFF\xFF\xFF\xFF\xFF"
                               "\x08\x07\x06\x05\x04\x03\x02\x01",
                               1 + 2 + 4 + 4 + 4 + 4 + 2 + 1 + 1 + 4 + 8 + 8 + 8);
    EXPECT_EQ(expected, bytes);

    CFile in(file.path(), CFile::modeRead);
    CArchive ar(&in, CArchive::load);
    BYTE by; WORD w; LONG l; DWORD dw; int i; unsigned u; short sh; char ch; bool b; float f; double d;
    LONGLONG ll; ULONGLONG ull;
    ar >> by >> w >> l >> dw >> i >> u >> sh >> ch >> b >> f >> d >> ll >> ull;
    EXPECT_EQ(0x12, by); EXPECT_EQ(0x3456, w); EXPECT_EQ(-2, l); EXPECT_EQ(0x01020304u, dw);
    EXPECT_EQ(-3, i); EXPECT_EQ(5u, u); EXPECT_EQ(-4, sh); EXPECT_EQ('c', ch); EXPECT_TRUE(b);
    EXPECT_EQ(1.0f, f); EXPECT_EQ(1.0, d); EXPECT_EQ(-6, ll); EXPECT_EQ(0x0102030405060708ULL, ull);
}

TEST(CArchiveTest, StoresStringsInMfcsUnicodeForm)
{
    TempFile file(L"string.bin");
    EXPECT_EQ("\xFF\xFE\xFF\x0A" + utf16("DSNDTYSTIM"),
              stored(file, [](CArchive& ar) { ar << CString(L"DSNDTYSTIM"); }));
    EXPECT_EQ(std::string("\xFF\xFE\xFF\x00", 4), stored(file, [](CArchive& ar) { ar << CString(); }));
}

TEST(CArchiveTest, LengthEscapesAtTheirBoundaries)
{
    TempFile file(L"lengths.bin");
    struct Case { UINT_PTR length; BOOL unicode; std::string prefix; } cases[] = {
        {254, TRUE, std::string("\xFF\xFE\xFF\xFE", 4)},
        {255, TRUE, std::string("\xFF\xFE\xFF\xFF\xFF\x00", 6)},
        {0xFFFD, TRUE, std::string("\xFF\xFE\xFF\xFF\xFD\xFF", 6)},
        {0xFFFE, FALSE, std::string("\xFF\xFF\xFF\xFE\xFF\x00\x00", 7)},
        {0x100000000ULL, FALSE, std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x00\x00\x00\x00\x01\x00\x00\x00", 15)},
    };
    for (const Case& c : cases)
    {
        EXPECT_EQ(c.prefix, stored(file, [&](CArchive& ar) { AfxWriteStringLength(ar, c.length, c.unicode); }))
            << c.length;
        CFile in(file.path(), CFile::modeRead);
        CArchive ar(&in, CArchive::load);
        int charSize = 0;
        EXPECT_EQ(c.length, AfxReadStringLength(ar, charSize));
        EXPECT_EQ(c.unicode ? 2 : 1, charSize);
    }

    CString longText(L'x', 300);
    std::string bytes = stored(file, [&](CArchive& ar) { ar << longText; });
    EXPECT_EQ(6u + 600u, bytes.size());
    CFile in(file.path(), CFile::modeRead);
    CArchive ar(&in, CArchive::load);
    CString loaded;
    ar >> loaded;
    EXPECT_TRUE(loaded == longText);
}

TEST(CArchiveTest, LoadsTheNarrowForm)
{
    TempFile file(L"narrow.bin");
    file.write("\x05hello" + std::string("\xFF\x2C\x01", 3) + std::string(300, 'n'));
    CFile in(file.path(), CFile::modeRead);
    CArchive ar(&in, CArchive::load);
    CString shortText, longText;
    ar >> shortText >> longText;
    EXPECT_STREQ(L"hello", shortText);
    EXPECT_TRUE(longText == CString(L'n', 300));
}

TEST(CArchiveTest, ShortFileThrowsEndOfFileAndKeepsEarlierFields)
{
    TempFile file(L"short.bin");
    file.write(std::string("\x07\x00\x00\x00\x01\x02", 6));
    CFile in(file.path(), CFile::modeRead);
    CArchive ar(&in, CArchive::load);
    DWORD first = 0, second = 0xABCD;
    EXPECT_EQ(CArchiveException::endOfFile, archiveCause([&] { ar >> first >> second; }));
    EXPECT_EQ(7u, first);
    EXPECT_EQ(0xABCDu, second); // a field is read whole or not at all
    char rest[8];
    EXPECT_EQ(2u, ar.Read(rest, 8)); // Read gives what there is
}

TEST(CArchiveTest, HostileStringLengthEndsTheFileInsteadOfAllocating)
{
    TempFile file(L"hostile.bin");
    file.write(std::string("\xFF\xFE\xFF\xFF\xFF\xFF\x00\x00\x00\x30", 10) + "abcd");
    CFile in(file.path(), CFile::modeRead);
    CArchive ar(&in, CArchive::load);
    CString text(L"kept");
    EXPECT_EQ(CArchiveException::endOfFile, archiveCause([&] { ar >> text; }));
    EXPECT_STREQ(L"kept", text);
}

TEST(CArchiveTest, DirectionIsEnforced)
{
    TempFile file(L"direction.bin");
    file.write("abcd");
    {
        CFile in(file.path(), CFile::modeRead);
        CArchive ar(&in, CArchive::load);
        EXPECT_EQ(CArchiveException::readOnly, archiveCause([&] { ar << (DWORD)1; }));
        EXPECT_EQ(CArchiveException::readOnly, archiveCause([&] { ar << CString(L"x"); }));
    }
    CFile out(file.path(), CFile::modeCreate | CFile::modeWrite);
    CArchive ar(&out, CArchive::store);
    DWORD value;
    EXPECT_EQ(CArchiveException::writeOnly, archiveCause([&] { ar >> value; }));
}

TEST(CArchiveTest, StoringIsWrittenOnCloseButNotOnAbort)
{
    TempFile file(L"buffered.bin");
    CFile out(file.path(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone);
    {
        CArchive ar(&out, CArchive::store);
        ar << (DWORD)1;
        EXPECT_EQ("", file.bytes());
        ar.Close();
        EXPECT_EQ(4u, file.bytes().size());
    }
    {
        CArchive ar(&out, CArchive::store);
        ar << (DWORD)2;
        ar.Abort();
    }
    EXPECT_EQ(4u, file.bytes().size());
}
