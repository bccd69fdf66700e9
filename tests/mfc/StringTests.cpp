#include <afx.h>
#include <gtest/gtest.h>
#include <cstring>

TEST(CStringFormat, FollowsMsvcrtConventions)
{
    CString s;
    s.Format(L"%s|%hs|%5d|%.2f", L"wide", "narrow", 42, 2.5);
    EXPECT_STREQ(L"wide|narrow|   42|2.50", s);

    // %d given a double prints the low half of its bits, as msvcrt does.
    double pi = 3.14159265358979;
    unsigned long long bits;
    memcpy(&bits, &pi, sizeof(bits));
    s.Format(L"%d", pi);
    CString expected;
    expected.Format(L"%d", (int)(unsigned)(bits & 0xFFFFFFFFu));
    EXPECT_STREQ(expected, s);
}

TEST(CStringFormat, GrowsAndAppends)
{
    CString s;
    s.Format(L"%0*d", 3000, 7);
    EXPECT_EQ(3000, s.GetLength());
    EXPECT_EQ(L'7', s[2999]);
    s = L"DeviceID: 0 \n";
    s.AppendFormat(L"%d %hs \n", 1, "module");
    EXPECT_STREQ(L"DeviceID: 0 \n1 module \n", s);
}

TEST(CStringCompare, CaseAndOrder)
{
    CString magic(L"DSNDTYSTIM");
    EXPECT_NE(0, magic.Compare(L"dsndtystim"));
    EXPECT_EQ(0, magic.CompareNoCase(L"dsndtystim"));
    EXPECT_TRUE(magic == L"DSNDTYSTIM");
    EXPECT_TRUE(magic != CString(L"DSNDTYSTIM "));
    EXPECT_LT(CString(L"Disable").CompareNoCase(L"normal"), 0);
    EXPECT_TRUE(CString(L"a") < CString(L"b"));
    EXPECT_STREQ(L"abc", CString("abc")); // from the ANSI code page
}

TEST(CStringEdit, ClampsAndSearches)
{
    CString s(L"C:\\Data\\a.wav");
    EXPECT_STREQ(L"C:\\DATA\\A.WAV", CString(s).MakeUpper());
    EXPECT_STREQ(L"a.wav", s.Mid(s.ReverseFind(L'\\') + 1));
    EXPECT_STREQ(L"Data", s.Mid(3, 4));
    EXPECT_STREQ(L"", s.Mid(50));
    EXPECT_STREQ(s, s.Left(100));
    EXPECT_STREQ(L"wav", s.Right(3));
    EXPECT_EQ(-1, s.Find(L'x'));
    EXPECT_EQ(8, s.Find(L"a.w"));
    EXPECT_EQ(-1, s.Find(L'C', 1));

    CString t(L"  1 2 1 \t");
    EXPECT_EQ(2, t.Replace(L"1", L"one"));
    EXPECT_STREQ(L"one 2 one", t.Trim());
}

TEST(CStringBuffer, ReleaseBufferStopsAtFirstNul)
{
    CString s;
    wcscpy(s.GetBuffer(10), L"abc");
    s.ReleaseBuffer();
    EXPECT_EQ(3, s.GetLength());
    s.GetBufferSetLength(2);
    s.ReleaseBuffer(2);
    EXPECT_STREQ(L"ab", s);
}
