// Dialogs, data exchange, message maps and message boxes, on real windows worked from a
// second thread. (The extension-module chain is used for real by the dialog tests of the
// library, whose templates all live in its DLL.)
#include "DialogDriver.h"
#include "MfcTestIds.h"
#include <afxcmn.h>
#include <afxdlgs.h>
#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <tuple>

using namespace dsty_test;

namespace
{
const wchar_t kCaption[] = L"Numbers under test";
const UINT_PTR kTimerId = 7;

// Every exchange the library uses, and a handler of each kind it dispatches.
class CNumbersDialog : public CDialog
{
public:
    CNumbersDialog() : CDialog(IDD_NUMBERS) {}

    int m_nInt = 5;
    float m_fFloat = 2.5f;
    DWORD m_dwUnsigned = 7; // the unsigned width the library exchanges
    CString m_strText = L"abc";
    int m_nRadio = 1, m_nCombo = 2;
    CComboBox m_combo;
    CSliderCtrl m_slider;
    std::atomic<int> m_nPings{0}, m_nSelChanges{0}, m_nTimers{0}, m_nOkCalls{0};
    std::atomic<int> m_nSliderSeen{-1}; // the slider's position, when the scroll came from it
    std::atomic<UINT> m_nScrollPosArg{0};

protected:
    void DoDataExchange(CDataExchange* pDX) override
    {
        CDialog::DoDataExchange(pDX);
        DDX_Control(pDX, IDC_COMBO, m_combo);
        DDX_Control(pDX, IDC_SLIDER, m_slider);
        DDX_Text(pDX, IDC_INT, m_nInt);
        DDV_MinMaxInt(pDX, m_nInt, -42, 100000);
        DDX_Text(pDX, IDC_FLOAT, m_fFloat);
        DDV_MinMaxFloat(pDX, m_fFloat, 0.0f, 10.0f);
        DDX_Text(pDX, IDC_UINT, m_dwUnsigned);
        DDX_Text(pDX, IDC_TEXT, m_strText);
        DDX_Radio(pDX, IDC_RADIO_A, m_nRadio);
        DDX_CBIndex(pDX, IDC_COMBO, m_nCombo);
    }
    BOOL OnInitDialog() override
    {
        // The list is filled before the base class shows the members in the controls.
        for (const wchar_t* item : {L"zero", L"one", L"two"})
            ::SendDlgItemMessageW(m_hWnd, IDC_COMBO, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(item));
        CDialog::OnInitDialog();
        SetTimer(kTimerId, 20, NULL);
        return TRUE;
    }
    void OnOK() override
    {
        ++m_nOkCalls;
        CDialog::OnOK();
    }
    afx_msg void OnPing() { ++m_nPings; }
    afx_msg void OnComboSelChange() { ++m_nSelChanges; }
    afx_msg void OnHScroll(UINT, UINT nPos, CScrollBar* pScrollBar)
    {
        m_nScrollPosArg = nPos;
        m_nSliderSeen = static_cast<CWnd*>(pScrollBar) == &m_slider ? m_slider.GetPos() : -2;
    }
    afx_msg void OnTimer(UINT_PTR nIDEvent)
    {
        if (nIDEvent == kTimerId && KillTimer(kTimerId))
            ++m_nTimers;
    }
    DECLARE_MESSAGE_MAP()
};

BEGIN_MESSAGE_MAP(CNumbersDialog, CDialog)
    ON_BN_CLICKED(IDC_PING, &CNumbersDialog::OnPing)
    ON_CBN_SELCHANGE(IDC_COMBO, &CNumbersDialog::OnComboSelChange)
    ON_WM_HSCROLL()
    ON_WM_TIMER()
END_MESSAGE_MAP()

// Message boxes are answered OK on the dialog's thread; the texts are read there too, the
// count from the driving thread.
std::vector<std::wstring> g_boxes;
std::atomic<size_t> g_boxCount{0};

int CALLBACK recordBox(LPCTSTR text, UINT, UINT)
{
    g_boxes.push_back(text);
    ++g_boxCount;
    return IDOK;
}

struct RecordedBoxes
{
    RecordedBoxes()
    {
        g_boxes.clear();
        g_boxCount = 0;
        AfxSetMessageBoxAnswerer(recordBox);
    }
    ~RecordedBoxes() { AfxSetMessageBoxAnswerer(NULL); }
};

bool waitFor(const std::function<bool()>& condition)
{
    for (int waited = 0; waited < 5000 && !condition(); waited += 10)
        ::Sleep(10);
    return condition();
}

// The modal loop answers a sent message only once the handler now running has returned.
void settle(HWND dialog)
{
    ::SendMessageW(dialog, WM_NULL, 0, 0);
}

void closeWith(HWND window, int button)
{
    pressButton(window, button);
    waitUntilGone(window);
}

// Runs `dialog` modally while `script` works it from a second thread; a window the script
// leaves open is cancelled, so a failing test cannot hang.
template <class Dialog, class Script>
INT_PTR runModal(Dialog& dialog, const wchar_t* caption, Script script)
{
    std::thread user([&] {
        if (HWND window = waitForWindow(caption))
        {
            script(window);
            if (::IsWindow(window))
                closeWith(window, IDCANCEL);
        }
    });
    const INT_PTR result = dialog.DoModal();
    user.join();
    return result;
}
} // namespace

TEST(DataExchange, ShowsMembersAndTakesGoodEntriesBack)
{
    RecordedBoxes boxes;
    CNumbersDialog dialog;
    std::wstring shown[4];
    bool radiosShown = false;
    LRESULT comboShown = -1;
    EXPECT_EQ(IDOK, runModal(dialog, kCaption, [&](HWND dlg) {
        for (int i = 0; i < 4; ++i)
            shown[i] = controlText(dlg, IDC_INT + i);
        radiosShown = !isChecked(dlg, IDC_RADIO_A) && isChecked(dlg, IDC_RADIO_B) && !isChecked(dlg, IDC_RADIO_C);
        comboShown = comboSelection(dlg, IDC_COMBO);
        // Both range limits are accepted.
        setText(dlg, IDC_INT, L" \t-42 ");
        setText(dlg, IDC_FLOAT, L"10.0");
        setText(dlg, IDC_UINT, L"4000000");
        setText(dlg, IDC_TEXT, L"hello");
        setCheck(dlg, IDC_RADIO_B, false);
        setCheck(dlg, IDC_CHECK_IN_GROUP, true); // not a radio: must not count
        setCheck(dlg, IDC_RADIO_C, true);
        ::SendDlgItemMessageW(dlg, IDC_COMBO, CB_SETCURSEL, 0, 0);
        closeWith(dlg, IDOK);
    }));
    EXPECT_EQ((std::vector<std::wstring>{L"5", L"2.5", L"7", L"abc"}), std::vector<std::wstring>(shown, shown + 4));
    EXPECT_TRUE(radiosShown);
    EXPECT_EQ(2, comboShown);
    EXPECT_EQ(std::make_tuple(-42, 10.0f, 4000000ul, std::wstring(L"hello"), 2, 0),
              std::make_tuple(dialog.m_nInt, dialog.m_fFloat, dialog.m_dwUnsigned, std::wstring(dialog.m_strText),
                              dialog.m_nRadio, dialog.m_nCombo));
    EXPECT_TRUE(g_boxes.empty());
    // The window is gone and every object let go of it.
    EXPECT_EQ(nullptr, dialog.m_hWnd);
    EXPECT_EQ(nullptr, dialog.m_combo.m_hWnd);

    EXPECT_EQ(IDOK, runModal(dialog, kCaption, [](HWND dlg) {
        setCheck(dlg, IDC_RADIO_C, false);
        setCheck(dlg, IDC_RADIO_OTHER, true); // another group
        closeWith(dlg, IDOK);
    }));
    EXPECT_EQ(-1, dialog.m_nRadio) << "no button of the group checked";
}

// A refused entry keeps the dialog open with the whole entry selected for retyping; all
// entries are refused in one opening, each put right before the next.
TEST(DataExchange, RefusesWhatIsNotWhollyANumberInRange)
{
    const struct { int id; const wchar_t* text; const wchar_t* prompt; } cases[] = {
        {IDC_INT, L"", L"Please enter an integer."},
        {IDC_INT, L"1 2", L"Please enter an integer."},
        {IDC_INT, L"99999999999", L"Please enter an integer."},
        {IDC_INT, L"-43", L"Please enter an integer between -42 and 100000."},
        {IDC_FLOAT, L"abc", L"Please enter a number."},
        {IDC_FLOAT, L"1e999", L"Please enter a number."},
        {IDC_FLOAT, L"10.5", L"Please enter a number between 0 and 10."},
        {IDC_FLOAT, L"-0.001", L"Please enter a number between 0 and 10."},
        {IDC_UINT, L"-1", L"Please enter a positive integer."},
        {IDC_UINT, L"5x", L"Please enter a positive integer."},
    };
    RecordedBoxes boxes;
    CNumbersDialog dialog;
    EXPECT_EQ(IDCANCEL, runModal(dialog, kCaption, [&](HWND dlg) {
        for (const auto& c : cases)
        {
            const std::wstring good = controlText(dlg, c.id);
            const size_t seen = g_boxCount;
            setText(dlg, c.id, c.text);
            pressButton(dlg, IDOK);
            EXPECT_TRUE(waitFor([&] { return g_boxCount > seen; })) << c.text;
            settle(dlg);
            EXPECT_EQ(c.prompt, g_boxes.back()) << c.text;
            GUITHREADINFO info = {sizeof info};
            ::GetGUIThreadInfo(::GetWindowThreadProcessId(dlg, NULL), &info);
            EXPECT_EQ(::GetDlgItem(dlg, c.id), info.hwndFocus) << c.text;
            EXPECT_EQ(MAKELONG(0, wcslen(c.text)), static_cast<LONG>(::SendDlgItemMessageW(dlg, c.id, EM_GETSEL, 0, 0)))
                << c.text;
            setText(dlg, c.id, good);
        }
    }));
    EXPECT_EQ(std::size(cases), g_boxes.size()) << "one prompt for each refusal";
}

// The same object runs twice: its controls' objects bind again to the new window.
TEST(MessageMap, RoutesNotificationsScrollAndTimerToTheirHandlers)
{
    CNumbersDialog dialog;
    for (int run = 1; run <= 2; ++run)
    {
        EXPECT_EQ(IDOK, runModal(dialog, kCaption, [&](HWND dlg) {
            EXPECT_TRUE(waitFor([&] { return dialog.m_nTimers == run; }));
            pressButton(dlg, IDC_PING);
            ::PostMessageW(dlg, WM_COMMAND, MAKEWPARAM(IDC_PING, CBN_SELCHANGE), // right id, wrong code
                           reinterpret_cast<LPARAM>(::GetDlgItem(dlg, IDC_PING)));
            selectComboItem(dlg, IDC_COMBO, 1);
            // A real notification: the trackbar moves one line on a key and tells its parent.
            HWND slider = ::GetDlgItem(dlg, IDC_SLIDER);
            ::SendMessageW(slider, TBM_SETPOS, TRUE, 40);
            dialog.m_nSliderSeen = -1;
            ::PostMessageW(slider, WM_KEYDOWN, VK_RIGHT, 0);
            EXPECT_TRUE(waitFor([&] { return dialog.m_nSliderSeen == 41; }));
            // The position word is signed, as MFC passes it.
            ::SendMessageW(dlg, WM_HSCROLL, MAKEWPARAM(SB_THUMBTRACK, 0xFFFF), reinterpret_cast<LPARAM>(slider));
            EXPECT_EQ(static_cast<UINT>(-1), dialog.m_nScrollPosArg.load());
            closeWith(dlg, IDOK);
        }));
    }
    EXPECT_EQ(2, dialog.m_nPings.load());
    EXPECT_EQ(2, dialog.m_nSelChanges.load());
    EXPECT_EQ(2, dialog.m_nOkCalls.load()); // the override ran, then the base closed
}

TEST(MessageBoxes, AnswererReplacesTheBoxAndWithoutOneTheBoxCarriesTheAppName)
{
    {
        RecordedBoxes boxes;
        EXPECT_EQ(IDOK, AfxMessageBox(L"Please initialize sound card first!", MB_YESNO));
        EXPECT_EQ(std::vector<std::wstring>{L"Please initialize sound card first!"}, g_boxes);
    }
    EXPECT_STREQ(L"mfc_tests", AfxGetAppName());
    std::optional<std::wstring> text;
    std::thread user([&] {
        if (HWND box = waitForWindow(AfxGetAppName())) {
            text = controlText(box, 0xFFFF); // a message box's text control
            pressButton(box, IDNO);
        }
    });
    EXPECT_EQ(IDNO, AfxMessageBox(L"Shown for real", MB_YESNO));
    user.join();
    EXPECT_EQ(L"Shown for real", text.value_or(L""));
}

// (The name chosen is read back in the stream recorder's dialog test.)
TEST(FileDialogs, FilterInMfcsForm)
{
    CFileDialog dialog(FALSE, NULL, NULL, OFN_OVERWRITEPROMPT, L"Wave sound files(*.WAV)|*.WAV|All files(*.*)|*.*||");
    const wchar_t filter[] = L"Wave sound files(*.WAV)\0*.WAV\0All files(*.*)\0*.*\0";
    EXPECT_EQ(0, memcmp(filter, dialog.m_ofn.lpstrFilter, sizeof(filter)));
}

TEST(Dialogs, MissingTemplateFailsWithoutAWindow)
{
    CDialog missing(IDD_NOWHERE);
    EXPECT_EQ(-1, missing.DoModal());
}
