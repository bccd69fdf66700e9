// The recording settings dialog, opened by the record/play object's recordBeginPro: its
// defaults, its enabling rules, what typed values make of the format, what OK prepares in
// the shared capture object, and the question asked when the held data has another format.

#include "UiTestSupport.h"

#include <algorithm>
#include <memory>

using namespace dsty_test;

namespace
{
// A view of the shared capture object's buffer. It adds no members, so the object the
// record/play objects made can be looked at through it.
class CaptureView : public CDSndCapturetyx
{
public:
    using CDSndCapturety1Buff::m_pDSCBuffer;
};

// Bytes of the capture buffer DirectSound made for the shared capture object; 0 when none.
DWORD preparedCaptureBytes()
{
    auto* capture = static_cast<CaptureView*>(CSndDataRecordPlayty2Rdsnd::m_pDSndCapturetyx);
    DSCBCAPS caps{sizeof caps, 0, 0, 0};
    if (capture == nullptr || capture->m_pDSCBuffer == nullptr)
        return 0;
    EXPECT_EQ(capture->m_pDSCBuffer->GetCaps(&caps), DS_OK);
    return caps.dwBufferBytes;
}

// "Time limited record", "Size limited record", the seconds and the bytes.
const auto kLimits = {IDC_CHECK_TIME_RECORD, IDC_CHECK_SIZE_RECORD, IDC_EDIT_RECORD_SECONDS, IDC_EDIT_RECORD_BYTES};
}

// Every opening shows the defaults, whatever was entered before. The capture is sized by the
// checked limit in whole frames of the typed format, which need not be one the list offers;
// a format DirectSound cannot capture prepares nothing (its message is checked in the unit
// tests), and the settings path answers 1 all the same. Held data of another format (22050 Hz
// mono against the defaults' 44100 Hz stereo) bring a question: Cancel gives up the
// recording, No keeps the old data and Yes deletes it. Each opening is on a record/play object
// of its own, which takes the shared capture object with it when it goes.
TEST_F(DialogTest, CaptureSettingsOpenOnTheDefaultsPrepareWhatIsEnteredAndAskAboutOtherData)
{
    // Answer: to the question about the held data; 0 when none are held.
    const struct { int answer; bool sizeLimited; const wchar_t *bytes, *seconds, *bits; DWORD captureBytes; } rows[] = {
        {0, true, L"4000000", L"180", L"16", 4000000},  // the defaults
        {0, false, L"1001", L"10", L"16", 1764000},
        {0, true, L"1001", L"180", L"16", 1000},
        {0, true, L"4000000", L"180", L"12", 0},
        {IDCANCEL, true, L"4000000", L"180", L"16", 0},
        {IDNO, true, L"4000000", L"180", L"16", 4000000},
        {IDYES, true, L"4000000", L"180", L"16", 4000000},
    };
    const std::wstring question = L"The sound data to record has different format with old data,do you like delete old data?";
    const std::vector<int16_t> tone = sineTone(1000.0, -6.0, 0.2, 22050);
    std::unique_ptr<CSndDataRecordPlaytyx> facade;
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.answer + row.captureBytes);
        CSndDatatyx old;
        ASSERT_EQ(old.setNewSndData(reinterpret_cast<const char*>(tone.data()),
                                    static_cast<unsigned long>(tone.size() * 2), pcmFormat(22050, 1)),
                  1);
        boxAnswer = row.answer;
        const size_t seen = answeredBoxes().size();
        facade = std::make_unique<CSndDataRecordPlaytyx>();
        facade->setSndData(row.answer ? &old : nullptr);
        ASSERT_EQ(runDialog(L"Direct sound record professional dialog", [&](HWND dlg) {
            EXPECT_EQ(texts(dlg, {IDC_EDIT_RECORD_BYTES, IDC_EDIT_RECORD_SECONDS, IDC_CMB_RECORD_BITS_PER_SAMPLE,
                                  IDC_CMB_RECORD_CHANNEL, IDC_CMB_RECORD_SAMPLING_RATE}),
                      (std::vector<std::wstring>{L"4000000", L"180", L"16", L"2", L"44100"}));
            EXPECT_EQ(comboItems(dlg, IDC_CMB_RECORD_BITS_PER_SAMPLE), (std::vector<std::wstring>{L"16", L"8"}))
                << "the list is sorted as text";
            for (int id : {IDC_CHECK_SIZE_RECORD, IDC_CHECK_DIRECT_RECORD, IDC_CHECK_TIME_RECORD, IDC_CHECK_RECORD_NEW})
                EXPECT_EQ(isChecked(dlg, id), id == IDC_CHECK_SIZE_RECORD || id == IDC_CHECK_DIRECT_RECORD) << id;
            EXPECT_EQ(enabled(dlg, kLimits), "0101");
            shoot(dlg, L"CDlgDSndCapturePro");
            if (!row.sizeLimited)
            {
                // Each limit enables its own edit and, checked, locks the other limit's check.
                // A click as a user's: the state changes, then the dialog hears it.
                setCheck(dlg, IDC_CHECK_SIZE_RECORD, false);
                pressButton(dlg, IDC_CHECK_SIZE_RECORD);
                EXPECT_TRUE(becomes(dlg, kLimits, "1100"));
                setCheck(dlg, IDC_CHECK_TIME_RECORD, true);
                pressButton(dlg, IDC_CHECK_TIME_RECORD);
                EXPECT_TRUE(becomes(dlg, kLimits, "1010"));
            }
            setText(dlg, IDC_EDIT_RECORD_BYTES, row.bytes);
            setText(dlg, IDC_EDIT_RECORD_SECONDS, row.seconds);
            setText(dlg, IDC_CMB_RECORD_BITS_PER_SAMPLE, row.bits);
            pressButton(dlg, IDOK);
        }, [&] { return facade->recordBeginPro(nullptr, 0); }), row.answer == IDCANCEL ? 0 : 1);
        const auto& dlg = *static_cast<CDlgDSndCapturePro*>(CSndDataRecordPlayty::m_pDlgDSndCapturePro);
        EXPECT_EQ(dlg.m_bSizeLimited, row.sizeLimited ? 1 : 0);
        EXPECT_EQ(fieldsOf(dlg.m_wfxRecord), fieldsOf(pcmFormat(44100, 2, _wtoi(row.bits))));
        EXPECT_EQ(preparedCaptureBytes(), row.captureBytes);
        const std::vector<std::wstring> boxes = answeredBoxes(seen);
        EXPECT_EQ(std::count(boxes.begin(), boxes.end(), question), row.answer ? 1 : 0);
        EXPECT_EQ(old.getDataSize(), row.answer == IDYES ? 0u : tone.size() * 2);
        EXPECT_EQ(fieldsOf(old.getAudioWaveDataWfx()), fieldsOf(pcmFormat(22050, 1)));
        ASSERT_NE(facade->m_pSndDataty, nullptr) << "no container was made";
        EXPECT_FALSE(facade->m_pSndDataty->isRecording()) << "the settings path only prepares the capture";
        if (row.answer)
            facade->setSndData(nullptr);  // before the held data go
    }
}
