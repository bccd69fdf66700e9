#include <afxcmn.h>
#include <afxdlgs.h>
#include <gtest/gtest.h>

namespace
{
class CTestShape : public CObject
{
    DECLARE_DYNCREATE(CTestShape)
public:
    CTestShape() {}
};
IMPLEMENT_DYNCREATE(CTestShape, CObject)
} // namespace

TEST(RuntimeClass, CreatesDynCreateClassesOnly)
{
    CObject* shape = RUNTIME_CLASS(CTestShape)->CreateObject();
    ASSERT_NE(nullptr, shape);
    EXPECT_TRUE(shape->IsKindOf(RUNTIME_CLASS(CTestShape)));
    EXPECT_STREQ("CTestShape", shape->GetRuntimeClass()->m_lpszClassName);
    delete shape;

    CObject* window = RUNTIME_CLASS(CWnd)->CreateObject();
    ASSERT_NE(nullptr, window);
    EXPECT_TRUE(window->IsKindOf(RUNTIME_CLASS(CCmdTarget)));
    delete window;

    EXPECT_EQ(nullptr, RUNTIME_CLASS(CDialog)->CreateObject());
}

TEST(RuntimeClass, KindFollowsTheBaseChain)
{
    CSliderCtrl slider;
    EXPECT_TRUE(slider.IsKindOf(RUNTIME_CLASS(CWnd)));
    EXPECT_TRUE(slider.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(slider.IsKindOf(RUNTIME_CLASS(CButton)));

    CFileDialog dialog(TRUE);
    EXPECT_TRUE(dialog.IsKindOf(RUNTIME_CLASS(CDialog)));
    EXPECT_FALSE(CTestShape().IsKindOf(RUNTIME_CLASS(CCmdTarget)));

    CArchiveException archiveError(CArchiveException::endOfFile);
    EXPECT_TRUE(archiveError.IsKindOf(RUNTIME_CLASS(CException)));
    EXPECT_FALSE(archiveError.IsKindOf(RUNTIME_CLASS(CFileException)));
    EXPECT_TRUE(RUNTIME_CLASS(CUserException)->IsDerivedFrom(RUNTIME_CLASS(CException)));
    EXPECT_FALSE(RUNTIME_CLASS(CException)->IsDerivedFrom(RUNTIME_CLASS(CUserException)));
}

TEST(Exceptions, DeleteHonoursAutoDeleteAndMessagesNameTheFile)
{
    CArchiveException onStack(CArchiveException::endOfFile, L"settings.dat");
    onStack.m_bAutoDelete = FALSE;
    onStack.Delete(); // must not free a stack object

    wchar_t text[256];
    ASSERT_TRUE(onStack.GetErrorMessage(text, 256));
    EXPECT_NE(nullptr, wcsstr(text, L"settings.dat"));
    EXPECT_NE(nullptr, wcsstr(text, L"end of file"));

    CFileException missing(CFileException::OsErrorToException(ERROR_FILE_NOT_FOUND), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(CFileException::fileNotFound, missing.m_cause);
    ASSERT_TRUE(missing.GetErrorMessage(text, 8));
    EXPECT_EQ(7u, wcslen(text)); // cut to the buffer, terminated
}
