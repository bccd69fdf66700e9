// The dialogs that choose the card, show its capabilities and choose its cooperative level.

#include "UiTestSupport.h"

#include <cwchar>

using namespace dsty_test;

namespace
{
const wchar_t kListCaption[] = L"Direct sound device information";
const wchar_t kCapsCaption[] = L"Direct sound capabilities";
const wchar_t kLevelCaption[] = L"Cooperative level";

// Rich edit controls may hand line ends back as "\r\n" or "\r".
std::wstring withNewlines(std::wstring text)
{
    std::wstring out;
    for (size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != L'\r')
            out += text[i];
        else if (i + 1 >= text.size() || text[i + 1] != L'\n')
            out += L'\n';
    }
    return out;
}

std::wstring format(const wchar_t* pattern, ...)
{
    wchar_t text[512];
    va_list args;
    va_start(args, pattern);
    vswprintf(text, 512, pattern, args);
    va_end(args);
    return text;
}

// The report a user must see for one device of the list.
std::wstring deviceBlock(const CDSndDeviceInfoty& list, int i)
{
    const GUID& guid = list.m_guidDevice[i];
    return format(L"DeviceID: %d \n%d %d %d %d \n%ls \n%ls \n \n", i, (int)guid.Data1, (int)guid.Data2,
                  (int)guid.Data3, (int)(DWORD)(UINT_PTR)guid.Data4,
                  (LPCWSTR)list.m_strDescription[i], (LPCWSTR)list.m_strModule[i]);
}

struct ListSeen
{
    std::vector<std::wstring> items;
    std::wstring count, report;
    std::wstring expectedReport;
    int selection = -1;
};
}

class DeviceListDialog : public DialogTest
{
protected:
    // Opens the list through selectSoundCards and reads it, then enters `choice` as the
    // combo's text and presses `button`.
    int pick(const wchar_t* choice, int button, ListSeen& seen)
    {
        return runDialog(kListCaption, [&](HWND dialog) {
            seen.items = comboItems(dialog, IDC_CMB_DEVICE_ID);
            seen.selection = comboSelection(dialog, IDC_CMB_DEVICE_ID);
            seen.count = controlText(dialog, IDC_EDIT_DEVICE_COUNT);
            seen.report = withNewlines(controlText(dialog, IDC_RICHEDIT_DEVICE_INFO));
            if (const CDSndDeviceInfoty* list = device.deviceList())
                for (int i = 0; i < list->m_nDeviceNumber; ++i)
                    seen.expectedReport += deviceBlock(*list, i);
            if (choice)
                setText(dialog, IDC_CMB_DEVICE_ID, choice);
            shoot(dialog, L"CDlgDSndInitInfo");
            pressButton(dialog, button);
        }, [&] { return device.selectSoundCards(); });
    }

    UiDevice device;
};

TEST_F(DeviceListDialog, ListsTheDevicesAndItemZeroOpensThePrimaryDriver)
{
    ListSeen seen;
    EXPECT_EQ(pick(nullptr, IDOK, seen), 1);

    ASSERT_NE(device.deviceList(), nullptr);
    const int count = device.deviceList()->m_nDeviceNumber;
    ASSERT_GE(count, 2) << "Wine offers the primary driver and the null sink";
    ASSERT_EQ(seen.items.size(), static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(seen.items[i], format(L"          %d", i));
    EXPECT_EQ(seen.selection, 0);
    EXPECT_EQ(seen.count, std::to_wstring(count));
    EXPECT_EQ(seen.report, seen.expectedReport);
    EXPECT_EQ(device.deviceList()->m_strDescription[0], CString(L"Primary Sound Driver"));
    EXPECT_NE(device.getDirectSnd(), nullptr);
    EXPECT_TRUE(answeredBoxes().empty());
}

// The opener gets the number the combo shows, not the selected item's index.
TEST_F(DeviceListDialog, ANumberTypedByHandIsTheOneChosen)
{
    ListSeen seen;
    EXPECT_EQ(pick(L"   99", IDOK, seen), 0);
    EXPECT_EQ(answeredBoxes(), std::vector<std::wstring>{L"Create Direct sound Object err"});
    EXPECT_EQ(device.getDirectSnd(), nullptr);
}

TEST_F(DeviceListDialog, CancelDeletesTheListAndLeavesTheDeviceClosed)
{
    ListSeen seen;
    EXPECT_EQ(pick(nullptr, IDCANCEL, seen), 0);
    EXPECT_FALSE(seen.items.empty());
    EXPECT_EQ(device.deviceList(), nullptr);
    EXPECT_EQ(device.getDirectSnd(), nullptr);
}

class CapabilitiesDialog : public DialogTest
{
};

TEST_F(CapabilitiesDialog, ReportShowsEveryFieldInOrder)
{
    UiDevice device;
    ASSERT_TRUE(device.createDSndObject(nullptr));
    DSCAPS caps{};
    caps.dwSize = sizeof caps;
    ASSERT_EQ(device.getDirectSnd()->GetCaps(&caps), DS_OK);

    std::wstring report;
    EXPECT_EQ(runDialog(kCapsCaption, [&](HWND dialog) {
        report = withNewlines(controlText(dialog, IDC_RICHEDIT_CAPS));
        shoot(dialog, L"CDlgDSndCaps");
        pressButton(dialog, IDOK);
    }, [&] { return device.getDSCAPSPro(); }), 1);

    const std::pair<const wchar_t*, DWORD> fields[] = {
        {L"dwFreeHw3DAllBuffers:", caps.dwFreeHw3DAllBuffers},
        {L"dwFreeHw3DStaticBuffers: ", caps.dwFreeHw3DStaticBuffers},
        {L"dwFreeHw3DStreamingBuffers: ", caps.dwFreeHw3DStreamingBuffers},
        {L"dwFreeHwMemBytes: ", caps.dwFreeHwMemBytes},
        {L"dwFreeHwMixingAllBuffers: ", caps.dwFreeHwMixingAllBuffers},
        {L"dwFreeHwMixingStaticBuffers: ", caps.dwFreeHwMixingStaticBuffers},
        {L"dwFreeHwMixingStreamingBuffers: ", caps.dwFreeHwMixingStreamingBuffers},
        {L"dwMaxContigFreeHwMemBytes: ", caps.dwMaxContigFreeHwMemBytes},
        {L"dwMaxHw3DAllBuffers: ", caps.dwMaxHw3DAllBuffers},
        {L"dwMaxHw3DStaticBuffers: ", caps.dwMaxHw3DStaticBuffers},
        {L"dwMaxHw3DStreamingBuffers: ", caps.dwMaxHw3DStreamingBuffers},
        {L"dwMaxHwMixingAllBuffers: ", caps.dwMaxHwMixingAllBuffers},
        {L"dwMaxHwMixingStaticBuffers: ", caps.dwMaxHwMixingStaticBuffers},
        {L"dwMaxHwMixingStreamingBuffers: ", caps.dwMaxHwMixingStreamingBuffers},
        {L"dwMaxSecondarySampleRate: ", caps.dwMaxSecondarySampleRate},
        {L"dwMinSecondarySampleRate: ", caps.dwMinSecondarySampleRate},
        {L"dwPlayCpuOverheadSwBuffers: ", caps.dwPlayCpuOverheadSwBuffers},
        {L"dwPrimaryBuffers: ", caps.dwPrimaryBuffers},
        {L"dwTotalHwMemBytes: ", caps.dwTotalHwMemBytes},
        {L"dwUnlockTransferRateHwBuffers: ", caps.dwUnlockTransferRateHwBuffers},
    };
    std::wstring expected = L"***DirectSound Capabilities***\n";
    for (const auto& field : fields)
        expected += field.first + std::to_wstring(static_cast<int>(field.second)) + L" \n";
    EXPECT_EQ(report, expected);
    EXPECT_EQ(caps.dwMaxSecondarySampleRate, 200000u) << "the report must carry the card's own figures";
}

class LevelDialog : public DialogTest
{
protected:
    struct Seen
    {
        std::vector<int> checked;
        bool applyEnabled = false, playEnabled = false;
    };

    static void look(HWND dialog, Seen& seen)
    {
        seen.checked = checkedRadios(dialog, IDC_RADIO_COOP_NORMAL, IDC_RADIO_COOP_PRIMARY);
        seen.applyEnabled = isControlEnabled(dialog, IDC_BTN_COOP_APPLY);
        seen.playEnabled = isControlEnabled(dialog, IDC_BTN_COOP_PLAY);
    }

    // Waits for a level that Apply sets while the dialog is still open.
    bool levelBecomes(DWORD level)
    {
        for (int tries = 0; tries < 100 && device.coopLevel() != level; ++tries)
            Sleep(20);
        return device.coopLevel() == level;
    }

    UiDevice device;
};

TEST_F(LevelDialog, ExclusiveOpensOnNormalAndOkAdoptsIt)
{
    ASSERT_TRUE(device.initDSndStimX(host, nullptr, DSSCL_EXCLUSIVE));
    ASSERT_EQ(device.coopLevel(), static_cast<DWORD>(DSSCL_EXCLUSIVE));

    Seen seen;
    EXPECT_EQ(runDialog(kLevelCaption, [&](HWND dialog) {
        look(dialog, seen);
        shoot(dialog, L"CDlgDSndCooperativeLevel");
        pressButton(dialog, IDOK);
    }, [&] { return device.setCooperativeLevel(host, nullptr); }), 1);

    EXPECT_EQ(seen.checked, std::vector<int>{IDC_RADIO_COOP_NORMAL}) << "Exclusive has no button of its own";
    EXPECT_TRUE(seen.applyEnabled);
    EXPECT_FALSE(seen.playEnabled);
    EXPECT_EQ(device.coopLevel(), static_cast<DWORD>(DSSCL_NORMAL));
    EXPECT_EQ(device.getSndDeviceHwnd(), host);
}

TEST_F(LevelDialog, ApplySetsTheLevelAtOnceAndCancelRestoresTheRecordedOne)
{
    ASSERT_TRUE(device.initDSndStimX(host, nullptr, DSSCL_EXCLUSIVE));
    int context = 0;

    Seen seen;
    bool appliedWhileOpen = false, openAfterPlay = false;
    EXPECT_EQ(runDialog(kLevelCaption, [&](HWND dialog) {
        look(dialog, seen);
        pressButton(dialog, IDC_BTN_COOP_PLAY);
        chooseRadio(dialog, IDC_RADIO_COOP_NORMAL, IDC_RADIO_COOP_PRIMARY, IDC_RADIO_COOP_PRIORITY);
        pressButton(dialog, IDC_BTN_COOP_APPLY);
        appliedWhileOpen = levelBecomes(DSSCL_PRIORITY) && IsWindow(dialog);
        openAfterPlay = IsWindow(dialog);
        pressButton(dialog, IDCANCEL);
    }, [&] { return device.setCooperativeLevel(host, &context); }), 0);

    EXPECT_TRUE(seen.playEnabled) << "a context enables Play";
    EXPECT_TRUE(openAfterPlay) << "Play does nothing";
    EXPECT_TRUE(appliedWhileOpen);
    EXPECT_EQ(device.coopLevel(), static_cast<DWORD>(DSSCL_EXCLUSIVE));
    EXPECT_TRUE(answeredBoxes().empty());
}

TEST_F(LevelDialog, WithoutADeviceApplyIsDisabledAndOkSetsTheChosenLevel)
{
    ASSERT_TRUE(device.createDSndObject(nullptr));

    Seen seen;
    EXPECT_EQ(runDialog(kLevelCaption, [&](HWND dialog) {
        look(dialog, seen);
        chooseRadio(dialog, IDC_RADIO_COOP_NORMAL, IDC_RADIO_COOP_PRIMARY, IDC_RADIO_COOP_PRIMARY);
        pressButton(dialog, IDOK);
    }, [&] { return device.setDsndCoopLevelPro(host); }), 1);

    EXPECT_EQ(seen.checked, std::vector<int>{IDC_RADIO_COOP_PRIORITY});
    EXPECT_FALSE(seen.applyEnabled);
    EXPECT_FALSE(seen.playEnabled);
    EXPECT_EQ(device.coopLevel(), static_cast<DWORD>(DSSCL_WRITEPRIMARY));
}

TEST_F(LevelDialog, WithNoButtonCheckedOkKeepsTheLevel)
{
    ASSERT_TRUE(device.initDSndStimX(host, nullptr, DSSCL_EXCLUSIVE));

    EXPECT_EQ(runDialog(kLevelCaption, [&](HWND dialog) {
        chooseRadio(dialog, IDC_RADIO_COOP_NORMAL, IDC_RADIO_COOP_PRIMARY, 0);
        pressButton(dialog, IDOK);
    }, [&] { return device.setCooperativeLevel(host, nullptr); }), 1);

    EXPECT_EQ(device.coopLevel(), static_cast<DWORD>(DSSCL_EXCLUSIVE));
}
