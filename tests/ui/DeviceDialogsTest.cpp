// The dialogs that choose the card, show its capabilities, and choose its cooperative level,
// its speaker configuration and its primary format, each checked from the thread that drives it.

#include "UiTestSupport.h"

#include <cwchar>

using namespace dsty_test;

// Every device is listed and reported, Wine's primary driver and null sink at least; OK opens
// the device whose number the combo shows, chosen or typed by hand.
TEST_F(DialogTest, DeviceListOpensTheNumberTheComboShows)
{
    // Typed: nothing for item 0 as the list opens.
    const struct { const wchar_t* typed; int result; std::vector<std::wstring> boxes; } choices[] = {
        {nullptr, 1, {}}, {L"   99", 0, {L"Create Direct sound Object err"}}};
    for (const auto& choice : choices)
    {
        UiDevice chooser;
        const size_t seen = answeredBoxes().size();
        EXPECT_EQ(runDialog(L"Direct sound device information", [&](HWND dialog) {
            const CDSndDeviceInfoty* list = chooser.deviceList();
            ASSERT_TRUE(list && list->m_nDeviceNumber >= 2 && list->m_strDescription[0].Compare(L"Primary Sound Driver") == 0);
            std::vector<std::wstring> items;
            const std::wstring report = withNewlines(controlText(dialog, IDC_RICHEDIT_DEVICE_INFO));
            size_t at = 0;  // each device's number, name and module, in turn
            for (int i = 0; i < list->m_nDeviceNumber; ++i)
            {
                items.push_back(L"          " + std::to_wstring(i));
                for (const std::wstring& part : {L"DeviceID: " + std::to_wstring(i) + L" \n", std::wstring(list->m_strDescription[i]),
                                                 std::wstring(list->m_strModule[i])})
                    EXPECT_NE(at = report.find(part, at), std::wstring::npos) << std::string(report.begin(), report.end());
            }
            EXPECT_EQ(comboItems(dialog, IDC_CMB_DEVICE_ID), items);
            EXPECT_EQ(comboSelection(dialog, IDC_CMB_DEVICE_ID), 0);
            EXPECT_EQ(controlText(dialog, IDC_EDIT_DEVICE_COUNT), std::to_wstring(list->m_nDeviceNumber));
            if (choice.typed)
                setText(dialog, IDC_CMB_DEVICE_ID, choice.typed);
            shoot(dialog, L"CDlgDSndInitInfo");
            pressButton(dialog, IDOK);
        }, [&] { return chooser.selectSoundCards(); }), choice.result);
        EXPECT_EQ(chooser.getDirectSnd() != nullptr, choice.result == 1);
        EXPECT_EQ(answeredBoxes(seen), choice.boxes);
    }
}

TEST_F(DialogTest, CapabilitiesReportShowsEveryFieldInOrder)
{
    ASSERT_TRUE(device.createDSndObject(nullptr));
    DSCAPS caps = {};
    caps.dwSize = sizeof caps;
    ASSERT_EQ(device.getDirectSnd()->GetCaps(&caps), DS_OK);
    ASSERT_EQ(caps.dwMaxSecondarySampleRate, 200000u) << "the report must carry the card's own figures";
#define FIELD(name) {L"" #name L": ", caps.name}
    const std::pair<std::wstring, DWORD> fields[] = {
        {L"dwFreeHw3DAllBuffers:", caps.dwFreeHw3DAllBuffers}, FIELD(dwFreeHw3DStaticBuffers),
        FIELD(dwFreeHw3DStreamingBuffers), FIELD(dwFreeHwMemBytes), FIELD(dwFreeHwMixingAllBuffers),
        FIELD(dwFreeHwMixingStaticBuffers), FIELD(dwFreeHwMixingStreamingBuffers), FIELD(dwMaxContigFreeHwMemBytes),
        FIELD(dwMaxHw3DAllBuffers), FIELD(dwMaxHw3DStaticBuffers), FIELD(dwMaxHw3DStreamingBuffers),
        FIELD(dwMaxHwMixingAllBuffers), FIELD(dwMaxHwMixingStaticBuffers), FIELD(dwMaxHwMixingStreamingBuffers),
        FIELD(dwMaxSecondarySampleRate), FIELD(dwMinSecondarySampleRate), FIELD(dwPlayCpuOverheadSwBuffers),
        FIELD(dwPrimaryBuffers), FIELD(dwTotalHwMemBytes), FIELD(dwUnlockTransferRateHwBuffers),
    };
#undef FIELD
    std::wstring expected = L"***DirectSound Capabilities***\n";
    for (const auto& field : fields)
        expected += field.first + std::to_wstring(static_cast<int>(field.second)) + L" \n";
    EXPECT_EQ(runDialog(L"Direct sound capabilities", [&](HWND dialog) {
        EXPECT_EQ(withNewlines(controlText(dialog, IDC_RICHEDIT_CAPS)), expected);
        shoot(dialog, L"CDlgDSndCaps");
        pressButton(dialog, IDOK);
    }, [&] { return device.getDSCAPSPro(); }), 1);
}

// Exclusive has no button of its own; a device not yet at any level opens on Priority and
// cannot apply; with no button checked OK keeps the level. Given a context the dialog offers
// Play; Apply sets the level while the dialog stays open, and Cancel puts back the recorded one.
TEST_F(DialogTest, LevelDialogShowsTheLevelAndOkSetsTheCheckedOne)
{
    // Opened: brought up at the exclusive level, else only made. Choice: the radio button to
    // check; 0 none.
    const struct { bool opened; int choice; int checkedAtOpen; bool applyThenCancel; DWORD level; } rows[] = {
        {true, IDC_RADIO_COOP_PRIORITY, IDC_RADIO_COOP_NORMAL, false, DSSCL_PRIORITY},
        {true, 0, IDC_RADIO_COOP_NORMAL, false, DSSCL_EXCLUSIVE},
        {false, IDC_RADIO_COOP_PRIMARY, IDC_RADIO_COOP_PRIORITY, false, DSSCL_WRITEPRIMARY},
        {true, IDC_RADIO_COOP_PRIORITY, IDC_RADIO_COOP_NORMAL, true, DSSCL_EXCLUSIVE},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.level);
        UiDevice leveled;
        ASSERT_TRUE(row.opened ? leveled.initDSndStimX(host, nullptr, DSSCL_EXCLUSIVE) : leveled.createDSndObject(nullptr));
        int context = 0;
        EXPECT_EQ(runDialog(L"Cooperative level", [&](HWND dialog) {
            EXPECT_EQ(checkedRadios(dialog, IDC_RADIO_COOP_NORMAL, IDC_RADIO_COOP_PRIMARY), std::vector<int>{row.checkedAtOpen});
            EXPECT_EQ(isControlEnabled(dialog, IDC_BTN_COOP_APPLY), row.opened);
            EXPECT_EQ(isControlEnabled(dialog, IDC_BTN_COOP_PLAY), row.applyThenCancel);
            CheckRadioButton(dialog, IDC_RADIO_COOP_NORMAL, IDC_RADIO_COOP_PRIMARY, row.choice);
            shoot(dialog, L"CDlgDSndCooperativeLevel");
            if (row.applyThenCancel)
            {
                pressButton(dialog, IDC_BTN_COOP_PLAY);
                pressButton(dialog, IDC_BTN_COOP_APPLY);
                for (int tries = 0; tries < 100 && leveled.coopLevel() != DSSCL_PRIORITY; ++tries)
                    Sleep(20);
                EXPECT_TRUE(leveled.coopLevel() == DSSCL_PRIORITY && IsWindow(dialog)) << "not applied while open";
            }
            pressButton(dialog, row.applyThenCancel ? IDCANCEL : IDOK);
        }, [&] {
            return row.opened ? leveled.setCooperativeLevel(host, row.applyThenCancel ? &context : nullptr)
                              : leveled.setDsndCoopLevelPro(host);
        }), row.applyThenCancel ? 0 : 1);
        EXPECT_EQ(leveled.coopLevel(), row.level);
    }
}

// The dialog opens on what Wine reports (wide stereo: Wine ignores the configuration set),
// and each button sets its own configuration.
TEST_F(DialogTest, SpeakerDialogOpensOnTheCardsConfigurationAndOkSetsTheChosenOne)
{
    const DWORD configs[] = {DSSPEAKER_HEADPHONE, DSSPEAKER_MONO, DSSPEAKER_QUAD, DSSPEAKER_SURROUND, 0x50004, 0xA0004, 0x140004, 0xB40004};
    for (int i = 0; i < 8; ++i)
    {
        SCOPED_TRACE(i);
        UiDevice speakers;
        ASSERT_TRUE(speakers.createDSndObject(nullptr));
        EXPECT_EQ(runDialog(L"Setup the speaker configuration", [&](HWND dialog) {
            EXPECT_EQ(checkedRadios(dialog, IDC_RADIO_SPEAKER_HEADPHONE, IDC_RADIO_SPEAKER_STEREO_MAX),
                      std::vector<int>{IDC_RADIO_SPEAKER_STEREO_WIDE});
            shoot(dialog, L"CDlgSpeakerConfig");
            CheckRadioButton(dialog, IDC_RADIO_SPEAKER_HEADPHONE, IDC_RADIO_SPEAKER_STEREO_MAX, IDC_RADIO_SPEAKER_HEADPHONE + i);
            pressButton(dialog, IDOK);
        }, [&] { return speakers.setSpeakerPro(); }), 1);
        EXPECT_EQ(speakers.m_dwSpeakerConfig, configs[i]);
    }
}

// The lists open on the current format (a rate not offered shows the highest); OK applies the
// items chosen, and a rate typed by hand after the range warning.
TEST_F(DialogTest, PrimaryFormatOpensOnTheCurrentFormatAndOkAppliesTheChosenOne)
{
    // Item: chosen in each list. Opened: the selections of the channels, rates and bits as the
    // dialog opens. (A rate typed by hand draws a range warning, which the unit tests check.)
    const struct { unsigned rateBefore; int item; std::vector<int> opened; WAVEFORMATEX applied; } rows[] = {
        {48000, 0, {1, 2, 1}, pcmFormat(11025, 1, 8)}, {11025, 1, {1, 0, 1}, pcmFormat(22050, 2, 16)}};
    // The platform gets the level recorded by the call before.
    ASSERT_TRUE(device.initDSndStimX(host, nullptr, DSSCL_PRIORITY));
    ASSERT_TRUE(device.setDSndCooperatLevelStd(host, DSSCL_PRIORITY));
    ASSERT_TRUE(device.createDSndBuff1Primary());
    const int lists[] = {IDC_CMB_PRIMARY_CHANNEL, IDC_CMB_PRIMARY_SAMPLING_RATE, IDC_CMB_PRIMARY_BITS_PER_SAMPLE};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.rateBefore);
        ASSERT_TRUE(device.setDSndPrimaryWfx(pcmFormat(row.rateBefore, 2)));
        EXPECT_EQ(runDialog(L"Setup direct sound primary format", [&](HWND dialog) {
            std::vector<std::vector<std::wstring>> items;
            std::vector<int> opened;
            for (int list : lists)
            {
                items.push_back(comboItems(dialog, list));
                opened.push_back(comboSelection(dialog, list));
                selectComboItem(dialog, list, row.item);
            }
            EXPECT_EQ(items, (std::vector<std::vector<std::wstring>>{{L"1", L"2"}, {L"11025", L"22050", L"44100"}, {L"8", L"16"}}));
            EXPECT_EQ(opened, row.opened);
            shoot(dialog, L"CDlgDSndPrimaryWfx");
            pressButton(dialog, IDOK);
        }, [&] { return device.setDSndPrimaryWfxPro(); }), 1);

        tWAVEFORMATEX applied{};
        ASSERT_TRUE(device.getDSndBuffer1PrimaryWfx(&applied));
        EXPECT_EQ(fieldsOf(applied), fieldsOf(row.applied));
    }
}
