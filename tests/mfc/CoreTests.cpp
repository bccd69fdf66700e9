// Strings as the library uses them.
// (Members of the subset the library never calls are not tested here.)
#include <afx.h>
#include <cstring>
#include <gtest/gtest.h>

TEST(CStringTest, FormatsAsMsvcrtDoes)
{
    CString s;
    s.Format(L"%s|%hs|%5d|%.2f", L"wide", "narrow", 42, 2.5);
    EXPECT_STREQ(L"wide|narrow|   42|2.50", s);
    // %d given a double prints the low half of its bits.
    const double pi = 3.14159265358979;
    unsigned long long bits;
    memcpy(&bits, &pi, sizeof(bits));
    s.Format(L"%d", pi);
    EXPECT_EQ(static_cast<int>(bits & 0xFFFFFFFFu), _wtoi(s));
    s.Format(L"%0*d", 3000, 7);
    EXPECT_EQ(3000, s.GetLength());
    EXPECT_EQ(L'7', s[2999]);
    s = L"DeviceID: 0 \n";
    s.AppendFormat(L"%d %hs \n", 1, "module");
    EXPECT_STREQ(L"DeviceID: 0 \n1 module \n", s);
}

TEST(CStringTest, ComparesTrimsAndConverts)
{
    CString magic(L"DSNDTYSTIM");
    EXPECT_NE(0, magic.Compare(L"dsndtystim"));
    EXPECT_EQ(0, magic.CompareNoCase(L"dsndtystim"));
    EXPECT_LT(CString(L"Disable").CompareNoCase(L"normal"), 0);
    EXPECT_STREQ(L"abc", CString("abc")); // from the ANSI code page
    EXPECT_STREQ(L"C:\\DATA\\A.WAV", CString(L"C:\\Data\\a.wav").MakeUpper());
    EXPECT_STREQ(L"1 2", CString(L"  1 2 \t").Trim());
}
