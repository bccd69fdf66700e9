// The recording settings dialog, opened by the record/play object's recordBeginPro: its
// defaults, its enabling rules, what typed values make of the format, what OK prepares in
// the shared capture object, and the question asked when the held data has another format.

#include "UiTestSupport.h"

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

// A check box clicked as a user would: its state changes, then the dialog hears the click.
void click(HWND dialog, int id, bool checked)
{
    setCheck(dialog, id, checked);
    pressButton(dialog, id);
    Sleep(150);
}

// The settings are opened on a record/play object of its own, holding `held` when given: a
// capture object is set up once. The object takes the shared capture object with it.
class CaptureDialog : public DialogTest
{
protected:
    int open(const std::function<void(HWND)>& drive, CSndDatatyx* held = nullptr)
    {
        facade = std::make_unique<CSndDataRecordPlaytyx>();
        facade->setSndData(held);
        return runDialog(L"Direct sound record professional dialog", drive,
                         [&] { return facade->recordBeginPro(nullptr, 0); });
    }
    std::unique_ptr<CSndDataRecordPlaytyx> facade;
};
}

// Every opening shows the defaults, whatever was entered before. The capture is sized by the
// checked limit in whole frames of the typed format, which need not be one the list offers;
// a format DirectSound cannot capture prepares nothing, and the settings path answers 1 all
// the same.
TEST_F(CaptureDialog, OpensOnTheDefaultsAndPreparesWhatIsEntered)
{
    const struct { bool sizeLimited; const wchar_t *bytes, *seconds, *bits; DWORD captureBytes;
                   std::vector<std::wstring> boxes; } rows[] = {
        {true, L"4000000", L"180", L"16", 4000000, {}},  // the defaults
        {false, L"1001", L"10", L"16", 1764000, {}},
        {true, L"1001", L"180", L"16", 1000, {}},
        {true, L"4000000", L"180", L"12", 0, {L"make DSnd catpure error"}},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.captureBytes);
        const size_t seen = answeredBoxes().size();
        ASSERT_EQ(open([&](HWND dlg) {
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
                click(dlg, IDC_CHECK_SIZE_RECORD, false);
                EXPECT_EQ(enabled(dlg, kLimits), "1100");
                click(dlg, IDC_CHECK_TIME_RECORD, true);
                EXPECT_EQ(enabled(dlg, kLimits), "1010");
            }
            setText(dlg, IDC_EDIT_RECORD_BYTES, row.bytes);
            setText(dlg, IDC_EDIT_RECORD_SECONDS, row.seconds);
            setText(dlg, IDC_CMB_RECORD_BITS_PER_SAMPLE, row.bits);
            pressButton(dlg, IDOK);
        }), 1);
        const auto& dlg = *static_cast<CDlgDSndCapturePro*>(CSndDataRecordPlayty::m_pDlgDSndCapturePro);
        EXPECT_EQ(dlg.m_bSizeLimited, row.sizeLimited ? 1 : 0);
        EXPECT_EQ(fieldsOf(dlg.m_wfxRecord), fieldsOf(pcmFormat(44100, 2, _wtoi(row.bits))));
        EXPECT_EQ(preparedCaptureBytes(), row.captureBytes);
        EXPECT_EQ(answeredBoxes(seen), row.boxes);
        ASSERT_NE(facade->m_pSndDataty, nullptr) << "no container was made";
        EXPECT_FALSE(facade->m_pSndDataty->isRecording()) << "the settings path only prepares the capture";
    }
}

// The held data are 22050 Hz mono; the defaults ask for 44100 Hz stereo. Cancel gives up the
// recording, No keeps the old data and Yes deletes it.
TEST_F(CaptureDialog, AnswerToTheFormatQuestionDecidesWhatIsKept)
{
    const struct { int answer, result; bool oldDataKept; DWORD captureBytes; } answers[] = {
        {IDCANCEL, 0, true, 0}, {IDNO, 1, true, 4000000}, {IDYES, 1, false, 4000000}};
    const std::vector<int16_t> tone = sineTone(1000.0, -6.0, 0.2, 22050);
    for (const auto& a : answers)
    {
        SCOPED_TRACE(a.answer);
        CSndDatatyx old;
        ASSERT_EQ(old.setNewSndData(reinterpret_cast<const char*>(tone.data()),
                                    static_cast<unsigned long>(tone.size() * 2), pcmFormat(22050, 1)),
                  1);
        boxAnswer = a.answer;
        const size_t seen = answeredBoxes().size();
        EXPECT_EQ(open([&](HWND dlg) { pressButton(dlg, IDOK); }, &old), a.result);
        EXPECT_EQ(answeredBoxes(seen), std::vector<std::wstring>{L"The sound data to record has different format "
                                                                 L"with old data,do you like delete old data?"});
        EXPECT_EQ(old.getDataSize(), a.oldDataKept ? tone.size() * 2 : 0u);
        EXPECT_EQ(fieldsOf(old.getAudioWaveDataWfx()), fieldsOf(pcmFormat(22050, 1)));
        EXPECT_EQ(preparedCaptureBytes(), a.captureBytes);
        facade->setSndData(nullptr);
    }
}
