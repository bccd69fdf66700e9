// Message boxes, the application name, the extension-module resource chain, file dialogs.
#include "MfcTestIds.h"
#include "TestSupport.h"
#include <afxdlgs.h>
#include <gtest/gtest.h>

using namespace mfctest;

namespace
{
int CALLBACK answerNo(LPCTSTR, UINT, UINT)
{
    return IDNO;
}
} // namespace

TEST(MessageBoxes, AnswererReplacesTheBox)
{
    RecordingAnswerer answerer;
    EXPECT_EQ(IDOK, AfxMessageBox(L"Please initialize sound card first!"));
    AFX_MSGBOX_ANSWERER recorder = AfxSetMessageBoxAnswerer(answerNo);
    EXPECT_EQ(IDNO, AfxMessageBox(L"Replace?", MB_YESNOCANCEL, 3));
    EXPECT_EQ(answerNo, AfxSetMessageBoxAnswerer(recorder));

    auto boxes = answerer.boxes();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Please initialize sound card first!", boxes[0].text);
    EXPECT_EQ((UINT)MB_OK, boxes[0].type);
    EXPECT_EQ(0u, boxes[0].helpId);
}

TEST(MessageBoxes, WithoutAnswererTheBoxCarriesTheAppName)
{
    EXPECT_STREQ(L"mfc_tests", AfxGetAppName());
    AFX_MSGBOX_ANSWERER previous = AfxSetMessageBoxAnswerer(NULL);
    std::wstring text;
    WindowDriver driver(AfxGetAppName(), [&](HWND box) {
        text = itemText(box, 0xFFFF);
        ::PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDNO, BN_CLICKED), 0);
        waitClosed(box);
    });
    EXPECT_EQ(IDNO, AfxMessageBox(L"Shown for real", MB_YESNO));
    EXPECT_EQ(L"Shown for real", text);
    AfxSetMessageBoxAnswerer(previous);
}

TEST(ExtensionModules, TemplatesAreFoundInRegisteredDllsAfterTheHost)
{
    HINSTANCE host = AfxGetResourceHandle();
    EXPECT_EQ(::GetModuleHandleW(NULL), host);
    HMODULE dll = ::LoadLibraryW(L"mfc_test_resources.dll");
    ASSERT_NE(nullptr, dll);
    LPCWSTR dllOnly = MAKEINTRESOURCEW(IDD_DLL_ONLY);
    EXPECT_EQ(host, AfxFindResourceHandle(dllOnly, RT_DIALOG)); // not registered yet

    AFX_EXTENSION_MODULE module = {};
    ASSERT_TRUE(AfxInitExtensionModule(module, dll));
    EXPECT_EQ(dll, module.hResource);
    new CDynLinkLibrary(module);
    EXPECT_EQ(dll, AfxFindResourceHandle(dllOnly, RT_DIALOG));
    EXPECT_EQ(host, AfxFindResourceHandle(MAKEINTRESOURCEW(IDD_NUMBERS), RT_DIALOG));

    CDialog fromDll(IDD_DLL_ONLY);
    WindowDriver driver(L"Dialog from the extension DLL", [](HWND dlg) {
        clickButton(dlg, IDOK);
        waitClosed(dlg);
    });
    EXPECT_EQ(IDOK, fromDll.DoModal());

    AfxTermExtensionModule(module);
    EXPECT_EQ(host, AfxFindResourceHandle(dllOnly, RT_DIALOG));
    ::FreeLibrary(dll);
}

TEST(FileDialogs, FilterAndNamesInMfcsForm)
{
    CFileDialog dialog(FALSE, NULL, NULL, OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY,
                       L"Wave sound files(*.WAV)|*.WAV|All files(*.*)|*.*||");
    const wchar_t expected[] = L"Wave sound files(*.WAV)\0*.WAV\0All files(*.*)\0*.*\0";
    EXPECT_EQ(0, memcmp(expected, dialog.m_ofn.lpstrFilter, sizeof(expected)));
    EXPECT_TRUE(dialog.m_ofn.Flags & OFN_OVERWRITEPROMPT);

    lstrcpyW(dialog.m_ofn.lpstrFile, L"C:\\Data\\take.one.wav");
    EXPECT_STREQ(L"C:\\Data\\take.one.wav", dialog.GetPathName());
    EXPECT_STREQ(L"take.one.wav", dialog.GetFileName());
    EXPECT_STREQ(L"wav", dialog.GetFileExt());
    EXPECT_STREQ(L"take.one", dialog.GetFileTitle());
}

TEST(RichEdit, ClassesAreRegistered)
{
    ASSERT_TRUE(AfxInitRichEdit());
    WNDCLASSW info;
    EXPECT_TRUE(::GetClassInfoW(NULL, L"RICHEDIT", &info));
    EXPECT_TRUE(::GetClassInfoW(NULL, L"RichEdit20W", &info));
}

TEST(FileDialogs, SaveDialogReturnsTheTypedPath)
{
    TempFile target(L"chosen.wav");
    CFileDialog dialog(FALSE, NULL, NULL, OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY,
                       L"Wave sound files(*.WAV)|*.WAV|All files(*.*)|*.*||");
    dialog.m_ofn.lpstrTitle = L"Save under test";
    WindowDriver driver(L"Save under test", [&](HWND box) {
        // The explorer-style dialog names its file field edt1 or, as a combo box, cmb13.
        HWND name = ::GetDlgItem(box, 0x480);
        if (name == NULL)
            name = ::GetDlgItem(box, 0x47C);
        ::SendMessageW(name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(target.path()));
        ::PostMessageW(box, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        waitClosed(box);
    });
    ASSERT_EQ(IDOK, dialog.DoModal());
    EXPECT_EQ(0, lstrcmpiW(target.path(), dialog.GetPathName()));
    EXPECT_STREQ(L"mfc_tests_chosen.wav", dialog.GetFileName());
    EXPECT_EQ(1u, dialog.m_ofn.nFilterIndex);
}
