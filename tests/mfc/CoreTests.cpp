// Strings and run-time classes as the library uses them.
#include <afxcmn.h>
#include <afxdlgs.h>
#include <cstring>
#include <gtest/gtest.h>

namespace
{
class CTestShape : public CObject
{
    DECLARE_DYNCREATE(CTestShape)
};
IMPLEMENT_DYNCREATE(CTestShape, CObject)

} // namespace

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

TEST(CStringTest, ComparesEditsAndSearches)
{
    CString magic(L"DSNDTYSTIM");
    EXPECT_NE(0, magic.Compare(L"dsndtystim"));
    EXPECT_EQ(0, magic.CompareNoCase(L"dsndtystim"));
    EXPECT_LT(CString(L"Disable").CompareNoCase(L"normal"), 0);
    EXPECT_STREQ(L"abc", CString("abc")); // from the ANSI code page

    CString s(L"C:\\Data\\a.wav");
    EXPECT_STREQ(L"C:\\DATA\\A.WAV", CString(s).MakeUpper());
    EXPECT_STREQ(L"a.wav", s.Mid(s.ReverseFind(L'\\') + 1));
    EXPECT_STREQ(L"Data", s.Mid(3, 4));
    EXPECT_STREQ(L"", s.Mid(50));
    EXPECT_STREQ(L"wav", s.Right(3));
    EXPECT_EQ(8, s.Find(L"a.w"));
    EXPECT_EQ(-1, s.Find(L'C', 1));
    CString t(L"  1 2 1 \t");
    EXPECT_EQ(2, t.Replace(L"1", L"one"));
    EXPECT_STREQ(L"one 2 one", t.Trim());

    wcscpy(s.GetBuffer(10), L"abc");
    s.ReleaseBuffer(); // stops at the first NUL
    EXPECT_EQ(3, s.GetLength());
}

TEST(RuntimeClass, CreatesDynCreateClassesOnlyAndKindFollowsTheBaseChain)
{
    CObject* shape = RUNTIME_CLASS(CTestShape)->CreateObject();
    ASSERT_NE(nullptr, shape);
    EXPECT_STREQ("CTestShape", shape->GetRuntimeClass()->m_lpszClassName);
    EXPECT_FALSE(shape->IsKindOf(RUNTIME_CLASS(CCmdTarget)));
    delete shape;
    EXPECT_EQ(nullptr, RUNTIME_CLASS(CDialog)->CreateObject());

    CSliderCtrl slider;
    EXPECT_TRUE(slider.IsKindOf(RUNTIME_CLASS(CWnd)));
    EXPECT_FALSE(slider.IsKindOf(RUNTIME_CLASS(CButton)));
    EXPECT_TRUE(CFileDialog(TRUE).IsKindOf(RUNTIME_CLASS(CDialog)));
    CArchiveException archiveError(CArchiveException::endOfFile);
    EXPECT_TRUE(archiveError.IsKindOf(RUNTIME_CLASS(CException)));
    EXPECT_FALSE(archiveError.IsKindOf(RUNTIME_CLASS(CFileException)));
}
