// Message-map dispatch of the dialog under test, driven from a second thread.
#include "NumbersDialog.h"
#include "TestSupport.h"
#include <gtest/gtest.h>

using namespace mfctest;

TEST(MessageMap, RoutesNotificationsByCodeAndId)
{
    CNumbersDialog dialog;
    WindowDriver driver(L"Numbers under test", [&](HWND dlg) {
        clickButton(dlg, IDC_PING);
        postNotification(dlg, IDC_PING, CBN_SELCHANGE); // right id, wrong code: no handler
        postNotification(dlg, IDC_COMBO, CBN_SELCHANGE);
        postNotification(dlg, IDC_COMBO, CBN_SELCHANGE);
        ::SendMessageW(dlg, WM_NULL, 0, 0);
        waitUntil([&] { return dialog.m_nSelChanges == 2; });
        clickButton(dlg, IDOK);
        waitClosed(dlg);
    });
    EXPECT_EQ(IDOK, dialog.DoModal());
    EXPECT_EQ(1, dialog.m_nPings.load());
    EXPECT_EQ(2, dialog.m_nSelChanges.load());
    EXPECT_EQ(1, dialog.m_nOkCalls.load()); // the override ran, then the base closed
}

TEST(MessageMap, ScrollAndTimerReachTheirHandlers)
{
    CNumbersDialog dialog;
    WindowDriver driver(L"Numbers under test", [&](HWND dlg) {
        EXPECT_TRUE(waitUntil([&] { return dialog.m_nTimers == 1; }));

        // A real notification: the trackbar moves one line on a key and tells its parent.
        HWND slider = ::GetDlgItem(dlg, IDC_SLIDER);
        ::SendMessageW(slider, TBM_SETPOS, TRUE, 40);
        ::PostMessageW(slider, WM_KEYDOWN, VK_RIGHT, 0);
        EXPECT_TRUE(waitUntil([&] { return dialog.m_nScrolls > 0; }));
        EXPECT_EQ(41, dialog.m_nSliderPosSeen.load());
        EXPECT_TRUE(dialog.m_bScrollBarIsMember.load());

        // The position word is signed, as MFC passes it.
        ::SendMessageW(dlg, WM_HSCROLL, MAKEWPARAM(SB_THUMBTRACK, 0xFFFF), reinterpret_cast<LPARAM>(slider));
        EXPECT_EQ((UINT)-1, dialog.m_nScrollPosArg.load());
        clickButton(dlg, IDCANCEL);
        waitClosed(dlg);
    });
    EXPECT_EQ(IDCANCEL, dialog.DoModal());
    EXPECT_EQ(0, dialog.m_nOkCalls.load());
}

TEST(MessageMap, SameObjectRunsTwice)
{
    // The controls' objects were let go when the first window went, so they bind again.
    CNumbersDialog dialog;
    for (int run = 0; run < 2; ++run)
    {
        WindowDriver driver(L"Numbers under test", [&](HWND dlg) {
            clickButton(dlg, IDC_PING);
            clickButton(dlg, IDOK);
            waitClosed(dlg);
        });
        EXPECT_EQ(IDOK, dialog.DoModal());
    }
    EXPECT_EQ(2, dialog.m_nPings.load());
}
