// Modal dialogs with data exchange, driven from a second thread.
#include "NumbersDialog.h"
#include "TestSupport.h"
#include <gtest/gtest.h>

using namespace mfctest;

namespace
{
const wchar_t kCaption[] = L"Numbers under test";

bool isChecked(HWND dialog, int id)
{
    return sendItem(dialog, id, BM_GETCHECK) == BST_CHECKED;
}

void check(HWND dialog, int id, bool checked)
{
    sendItem(dialog, id, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED);
}

// Types text into one edit, presses OK and waits for the refusal.
void enterAndWaitForRefusal(HWND dialog, const RecordingAnswerer& answerer, int id, const wchar_t* text)
{
    size_t before = answerer.count();
    setItemText(dialog, id, text);
    clickButton(dialog, IDOK);
    EXPECT_TRUE(waitUntil([&] { return answerer.count() > before; })) << "no prompt for " << id;
    ::SendMessageW(dialog, WM_NULL, 0, 0); // the refusal has been handled when this returns
}
} // namespace

TEST(DataExchange, ShowsMembersAndTakesGoodEntriesBack)
{
    RecordingAnswerer answerer;
    CNumbersDialog dialog;
    std::wstring shown[4];
    bool radiosShown = false;
    LRESULT comboShown = -1, sliderShown = -1;
    WindowDriver driver(kCaption, [&](HWND dlg) {
        for (int i = 0; i < 4; ++i)
            shown[i] = itemText(dlg, IDC_INT + i);
        radiosShown = !isChecked(dlg, IDC_RADIO_A) && !isChecked(dlg, IDC_CHECK_IN_GROUP) &&
                      isChecked(dlg, IDC_RADIO_B) && !isChecked(dlg, IDC_RADIO_C);
        comboShown = sendItem(dlg, IDC_COMBO, CB_GETCURSEL);
        sliderShown = sendItem(dlg, IDC_SLIDER, TBM_GETPOS);

        setItemText(dlg, IDC_INT, L" \t-42 ");
        setItemText(dlg, IDC_FLOAT, L"3.25");
        setItemText(dlg, IDC_UINT, L"4000000");
        setItemText(dlg, IDC_TEXT, L"hello");
        check(dlg, IDC_RADIO_B, false);
        check(dlg, IDC_CHECK_IN_GROUP, true); // not a radio: must not count
        check(dlg, IDC_RADIO_C, true);
        sendItem(dlg, IDC_COMBO, CB_SETCURSEL, 0);
        sendItem(dlg, IDC_SLIDER, TBM_SETPOS, TRUE, 75);
        clickButton(dlg, IDOK);
        waitClosed(dlg);
    });
    EXPECT_EQ(IDOK, dialog.DoModal());

    EXPECT_EQ(L"5", shown[0]);
    EXPECT_EQ(L"2.5", shown[1]);
    EXPECT_EQ(L"7", shown[2]);
    EXPECT_EQ(L"abc", shown[3]);
    EXPECT_TRUE(radiosShown);
    EXPECT_EQ(2, comboShown);
    EXPECT_EQ(30, sliderShown);

    EXPECT_EQ(-42, dialog.m_nInt);
    EXPECT_EQ(3.25f, dialog.m_fFloat);
    EXPECT_EQ(4000000u, dialog.m_nUint);
    EXPECT_STREQ(L"hello", dialog.m_strText);
    EXPECT_EQ(2, dialog.m_nRadio);
    EXPECT_EQ(0, dialog.m_nCombo);
    EXPECT_EQ(75, dialog.m_nSlider);
    EXPECT_EQ(0u, answerer.count());
    // The window is gone and every object let go of it.
    EXPECT_EQ(nullptr, dialog.m_hWnd);
    EXPECT_EQ(nullptr, dialog.m_combo.m_hWnd);
    EXPECT_EQ(nullptr, dialog.m_slider.m_hWnd);
}

TEST(DataExchange, NoRadioCheckedGivesMinusOne)
{
    CNumbersDialog dialog;
    WindowDriver driver(kCaption, [](HWND dlg) {
        check(dlg, IDC_RADIO_B, false);
        check(dlg, IDC_RADIO_OTHER, true); // another group
        clickButton(dlg, IDOK);
        waitClosed(dlg);
    });
    EXPECT_EQ(IDOK, dialog.DoModal());
    EXPECT_EQ(-1, dialog.m_nRadio);
}

TEST(DataExchange, BadIntegerKeepsTheDialogOpenUntilCorrected)
{
    RecordingAnswerer answerer;
    CNumbersDialog dialog;
    bool openAfterRefusal = false;
    HWND focus = NULL, intEdit = NULL;
    DWORD selection = 0;
    WindowDriver driver(kCaption, [&](HWND dlg) {
        enterAndWaitForRefusal(dlg, answerer, IDC_INT, L"12abc");
        openAfterRefusal = ::IsWindow(dlg) != FALSE;
        GUITHREADINFO info = {};
        info.cbSize = sizeof(info);
        ::GetGUIThreadInfo(::GetWindowThreadProcessId(dlg, NULL), &info);
        focus = info.hwndFocus;
        intEdit = ::GetDlgItem(dlg, IDC_INT);
        selection = (DWORD)sendItem(dlg, IDC_INT, EM_GETSEL);
        setItemText(dlg, IDC_INT, L"12");
        clickButton(dlg, IDOK);
        waitClosed(dlg);
    });
    EXPECT_EQ(IDOK, dialog.DoModal());
    EXPECT_TRUE(openAfterRefusal);
    EXPECT_EQ(intEdit, focus);
    EXPECT_EQ(MAKELONG(0, 5), (LONG)selection); // all of "12abc" selected for retyping
    EXPECT_EQ(12, dialog.m_nInt);
    EXPECT_EQ(2, dialog.m_nOkCalls.load());
    auto boxes = answerer.boxes();
    ASSERT_EQ(1u, boxes.size());
    EXPECT_EQ(L"Please enter an integer.", boxes[0].text);
    EXPECT_EQ((UINT)MB_ICONEXCLAMATION, boxes[0].type);
    EXPECT_EQ(0xF110u, boxes[0].helpId);
}

TEST(DataExchange, RefusesWhatIsNotWhollyANumber)
{
    struct Case { int id; const wchar_t* text; const wchar_t* prompt; } cases[] = {
        {IDC_INT, L"", L"Please enter an integer."},
        {IDC_INT, L"1 2", L"Please enter an integer."},
        {IDC_INT, L"99999999999", L"Please enter an integer."},
        {IDC_FLOAT, L"abc", L"Please enter a number."},
        {IDC_FLOAT, L"1e999", L"Please enter a number."},
        {IDC_FLOAT, L"10.5", L"Please enter a number between 0 and 10."},
        {IDC_FLOAT, L"-0.001", L"Please enter a number between 0 and 10."},
        {IDC_UINT, L"-1", L"Please enter a positive integer."},
        {IDC_UINT, L"5x", L"Please enter a positive integer."},
    };
    for (const Case& c : cases)
    {
        RecordingAnswerer answerer;
        CNumbersDialog dialog;
        WindowDriver driver(kCaption, [&](HWND dlg) {
            enterAndWaitForRefusal(dlg, answerer, c.id, c.text);
            clickButton(dlg, IDCANCEL);
            waitClosed(dlg);
        });
        EXPECT_EQ(IDCANCEL, dialog.DoModal()) << c.text;
        auto boxes = answerer.boxes();
        ASSERT_EQ(1u, boxes.size()) << c.text;
        EXPECT_EQ(c.prompt, boxes[0].text) << c.text;
    }
}

TEST(DataExchange, FloatAtTheRangeLimitIsAccepted)
{
    RecordingAnswerer answerer;
    CNumbersDialog dialog;
    WindowDriver driver(kCaption, [](HWND dlg) {
        setItemText(dlg, IDC_FLOAT, L"10.0");
        clickButton(dlg, IDOK);
        waitClosed(dlg);
    });
    EXPECT_EQ(IDOK, dialog.DoModal());
    EXPECT_EQ(10.0f, dialog.m_fFloat);
    EXPECT_EQ(0u, answerer.count());
}

TEST(Dialogs, MissingTemplateFailsWithoutAWindow)
{
    CDialog missing(IDD_NOWHERE);
    EXPECT_EQ(-1, missing.DoModal());
    EXPECT_FALSE(missing.Create(IDD_NOWHERE));
}

TEST(Dialogs, ModelessDialogIsDestroyedWithItsObject)
{
    HWND window = NULL, combo = NULL;
    {
        CNumbersDialog dialog;
        ASSERT_TRUE(dialog.Create(IDD_NUMBERS));
        window = dialog.m_hWnd;
        combo = dialog.m_combo.m_hWnd;
        EXPECT_EQ(&dialog, CWnd::FromHandlePermanent(window));
        EXPECT_EQ(&dialog.m_combo, CWnd::FromHandle(combo));
        EXPECT_EQ(L"abc", itemText(window, IDC_TEXT));

        // Outside any message an unattached window gets a temporary object.
        HWND edit = ::GetDlgItem(window, IDC_INT);
        CWnd* temporary = dialog.GetDlgItem(IDC_INT);
        EXPECT_EQ(edit, temporary->m_hWnd);
        EXPECT_EQ(nullptr, CWnd::FromHandlePermanent(edit));
        CWnd::DeleteTempMap();
        EXPECT_TRUE(::IsWindow(edit));
    }
    EXPECT_FALSE(::IsWindow(window));
    EXPECT_EQ(nullptr, CWnd::FromHandlePermanent(window));
    EXPECT_EQ(nullptr, CWnd::FromHandlePermanent(combo));
}
