// The recording settings dialog, opened by the record/play object's recordBeginPro: its
// defaults, its enabling rules, what typed values make of the format, what OK prepares in
// the shared capture object, and the question asked when the held data has another format.

#include "UiTestSupport.h"
#include "ToneGenerator.h"

#include <memory>
#include <optional>

using namespace dsty_test;

namespace
{
const wchar_t kCaption[] = L"Direct sound record professional dialog";
const wchar_t kQuestion[] =
    L"The sound data to record has different format with old data,do you like delete old data?";

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
    if (capture == nullptr || capture->m_pDSCBuffer == nullptr)
        return 0;
    DSCBCAPS caps{};
    caps.dwSize = sizeof caps;
    EXPECT_EQ(capture->m_pDSCBuffer->GetCaps(&caps), DS_OK);
    return caps.dwBufferBytes;
}

bool sameFormat(const tWAVEFORMATEX& a, const WAVEFORMATEX& b)
{
    return a.wFormatTag == b.wFormatTag && a.nChannels == b.nChannels && a.nSamplesPerSec == b.nSamplesPerSec &&
           a.nAvgBytesPerSec == b.nAvgBytesPerSec && a.nBlockAlign == b.nBlockAlign &&
           a.wBitsPerSample == b.wBitsPerSample && a.cbSize == b.cbSize;
}

// A check box clicked as a user would: its state changes, then the dialog hears the click.
void click(HWND dialog, int id, bool checked)
{
    setCheck(dialog, id, checked);
    pressButton(dialog, id);
    Sleep(150);
}

// Enabled state of "Time limited record", "Size limited record", seconds and bytes, as "1010".
std::string limitControls(HWND dialog)
{
    std::string state;
    for (int id : {IDC_CHECK_TIME_RECORD, IDC_CHECK_SIZE_RECORD, IDC_EDIT_RECORD_SECONDS, IDC_EDIT_RECORD_BYTES})
        state += isControlEnabled(dialog, id) ? '1' : '0';
    return state;
}

struct Shown
{
    std::wstring bytes, seconds, bits, channels, rate;
    std::vector<std::wstring> bitsItems;
    bool sizeLimited = false, timeLimited = true, directRecord = false, recordNew = true;
    std::string limits;
};

Shown readShown(HWND dialog)
{
    Shown shown;
    shown.bytes = controlText(dialog, IDC_EDIT_RECORD_BYTES);
    shown.seconds = controlText(dialog, IDC_EDIT_RECORD_SECONDS);
    shown.bits = controlText(dialog, IDC_CMB_RECORD_BITS_PER_SAMPLE);
    shown.channels = controlText(dialog, IDC_CMB_RECORD_CHANNEL);
    shown.rate = controlText(dialog, IDC_CMB_RECORD_SAMPLING_RATE);
    shown.bitsItems = comboItems(dialog, IDC_CMB_RECORD_BITS_PER_SAMPLE);
    shown.sizeLimited = isChecked(dialog, IDC_CHECK_SIZE_RECORD);
    shown.timeLimited = isChecked(dialog, IDC_CHECK_TIME_RECORD);
    shown.directRecord = isChecked(dialog, IDC_CHECK_DIRECT_RECORD);
    shown.recordNew = isChecked(dialog, IDC_CHECK_RECORD_NEW);
    shown.limits = limitControls(dialog);
    return shown;
}

void expectDefaultsShown(const Shown& shown)
{
    EXPECT_EQ(shown.bytes, L"4000000");
    EXPECT_EQ(shown.seconds, L"180");
    EXPECT_EQ(shown.bits, L"16");
    EXPECT_EQ(shown.channels, L"2");
    EXPECT_EQ(shown.rate, L"44100");
    EXPECT_EQ(shown.bitsItems, (std::vector<std::wstring>{L"16", L"8"})) << "the list is sorted as text";
    EXPECT_TRUE(shown.sizeLimited);
    EXPECT_FALSE(shown.timeLimited);
    EXPECT_TRUE(shown.directRecord);
    EXPECT_FALSE(shown.recordNew);
    EXPECT_EQ(shown.limits, "0101");
}
}

class CaptureDialog : public DialogTest
{
protected:
    void TearDown() override
    {
        facade.reset();  // takes the shared capture object with it
        DialogTest::TearDown();
    }

    int open(const std::function<void(HWND)>& drive)
    {
        return runDialog(kCaption, drive, [&] { return facade->recordBeginPro(nullptr, 0); });
    }

    static CDlgDSndCapturePro& dialog()
    {
        return *static_cast<CDlgDSndCapturePro*>(CSndDataRecordPlayty::m_pDlgDSndCapturePro);
    }

    std::unique_ptr<CSndDataRecordPlaytyx> facade = std::make_unique<CSndDataRecordPlaytyx>();
};

TEST_F(CaptureDialog, OkAtOnceTakesTheDefaultsAndPreparesA4000000ByteCapture)
{
    Shown shown;
    ASSERT_EQ(open([&](HWND dlg) {
        shown = readShown(dlg);
        shoot(dlg, L"CDlgDSndCapturePro");
        pressButton(dlg, IDOK);
    }), 1);

    expectDefaultsShown(shown);
    const CDlgDSndCapturePro& dlg = dialog();
    EXPECT_EQ(dlg.m_bSizeLimited, 1);
    EXPECT_EQ(dlg.m_dwRecordBytes, 4000000u);
    EXPECT_EQ(dlg.m_dwRecordSeconds, 180u);
    EXPECT_EQ(dlg.m_bRecordNew, 0);
    EXPECT_EQ(dlg.m_bDirectRecord, 1);
    EXPECT_TRUE(sameFormat(dlg.m_wfxRecord, pcmFormat(44100, 2, 16)));
    EXPECT_EQ(facade->m_nRecordDlgResult, IDOK);

    EXPECT_EQ(preparedCaptureBytes(), 4000000u);
    tWAVEFORMATEX captured{};
    ASSERT_NE(CSndDataRecordPlayty2Rdsnd::m_pDSndCapturetyx, nullptr);
    CSndDataRecordPlayty2Rdsnd::m_pDSndCapturetyx->getCurrentWfx(&captured);
    EXPECT_TRUE(sameFormat(captured, pcmFormat(44100, 2, 16)));
    ASSERT_NE(facade->m_pSndDataty, nullptr) << "no container was made";
    EXPECT_EQ(facade->m_bSndDataOwned, 1);
    EXPECT_FALSE(facade->m_pSndDataty->isRecording()) << "the settings path only prepares the capture";
    EXPECT_TRUE(answeredBoxes().empty());
}

TEST_F(CaptureDialog, EachLimitCheckEnablesItsOwnEditAndLocksTheOtherCheck)
{
    // Time, size, seconds, bytes: 1 enabled. Unchecking leaves the other limit's edit as it was.
    std::vector<std::string> seen;
    std::wstring bytesAfterDirect;
    EXPECT_EQ(open([&](HWND dlg) {
        seen.push_back(limitControls(dlg));
        click(dlg, IDC_CHECK_SIZE_RECORD, false);
        seen.push_back(limitControls(dlg));
        click(dlg, IDC_CHECK_TIME_RECORD, true);
        seen.push_back(limitControls(dlg));
        click(dlg, IDC_CHECK_TIME_RECORD, false);
        seen.push_back(limitControls(dlg));
        click(dlg, IDC_CHECK_SIZE_RECORD, true);
        seen.push_back(limitControls(dlg));
        click(dlg, IDC_CHECK_DIRECT_RECORD, false);
        seen.push_back(limitControls(dlg));
        bytesAfterDirect = controlText(dlg, IDC_EDIT_RECORD_BYTES);
        pressButton(dlg, IDCANCEL);
    }), 0);

    EXPECT_EQ(seen, (std::vector<std::string>{"0101", "1100", "1010", "1100", "0101", "0101"}));
    EXPECT_EQ(bytesAfterDirect, L"4000000") << "Direct record changes nothing on screen";
}

struct TypedCase
{
    const char* name;
    bool sizeLimited;
    const wchar_t* bytes;
    const wchar_t* seconds;
    DWORD captureBytes;  // what the shared capture object is prepared with
};

class CaptureDialogTyped : public CaptureDialog, public ::testing::WithParamInterface<TypedCase>
{
};

TEST_P(CaptureDialogTyped, LengthIsTheLimitInWholeFrames)
{
    const TypedCase& c = GetParam();
    ASSERT_EQ(open([&](HWND dlg) {
        if (!c.sizeLimited)
        {
            click(dlg, IDC_CHECK_SIZE_RECORD, false);
            click(dlg, IDC_CHECK_TIME_RECORD, true);
        }
        setText(dlg, IDC_EDIT_RECORD_BYTES, c.bytes);
        setText(dlg, IDC_EDIT_RECORD_SECONDS, c.seconds);
        pressButton(dlg, IDOK);
    }), 1);

    EXPECT_EQ(dialog().m_bSizeLimited, c.sizeLimited ? 1 : 0);
    EXPECT_EQ(preparedCaptureBytes(), c.captureBytes);
}

INSTANTIATE_TEST_SUITE_P(Limits, CaptureDialogTyped,
                         ::testing::Values(TypedCase{"TenSeconds", false, L"4000000", L"10", 1764000},
                                           TypedCase{"BytesRoundedDown", true, L"1001", L"180", 1000}),
                         [](const ::testing::TestParamInfo<TypedCase>& info) { return std::string(info.param.name); });

TEST_F(CaptureDialog, TypedBitsCountEvenWhenNotListedAndTheOutcomeIsOneRegardless)
{
    ASSERT_EQ(open([&](HWND dlg) {
        setText(dlg, IDC_CMB_RECORD_BITS_PER_SAMPLE, L"12");
        pressButton(dlg, IDOK);
    }), 1);

    const tWAVEFORMATEX& wfx = dialog().m_wfxRecord;
    EXPECT_EQ(wfx.wBitsPerSample, 12);
    EXPECT_EQ(wfx.nChannels, 2);
    EXPECT_EQ(wfx.nBlockAlign, 3);
    EXPECT_EQ(wfx.nAvgBytesPerSec, 3u * 44100u);
    // DirectSound makes no 12-bit capture buffer; the settings path says 1 all the same.
    EXPECT_EQ(preparedCaptureBytes(), 0u);
    EXPECT_EQ(answeredBoxes(), std::vector<std::wstring>{L"make DSnd catpure error"});
}

TEST_F(CaptureDialog, CancelGivesZeroAndPreparesNothing)
{
    EXPECT_EQ(open([&](HWND dlg) {
        setText(dlg, IDC_EDIT_RECORD_BYTES, L"5000");
        pressButton(dlg, IDCANCEL);
    }), 0);

    EXPECT_EQ(CSndDataRecordPlayty2Rdsnd::m_pDSndCapturetyx, nullptr);
    EXPECT_EQ(facade->m_pSndDataty, nullptr);
}

TEST_F(CaptureDialog, ReopeningShowsTheDefaultsAgain)
{
    ASSERT_EQ(open([&](HWND dlg) {
        setText(dlg, IDC_EDIT_RECORD_BYTES, L"1234");
        selectComboItem(dlg, IDC_CMB_RECORD_BITS_PER_SAMPLE, 1);
        click(dlg, IDC_CHECK_RECORD_NEW, true);
        pressButton(dlg, IDOK);
    }), 1);
    ASSERT_EQ(dialog().m_dwRecordBytes, 1234u);
    ASSERT_EQ(dialog().m_bRecordNew, 1);

    Shown shown;
    EXPECT_EQ(open([&](HWND dlg) {
        shown = readShown(dlg);
        pressButton(dlg, IDCANCEL);
    }), 0);
    expectDefaultsShown(shown);
}

struct QuestionCase
{
    const char* name;
    int answer;
    int result;
    bool oldDataKept;
    DWORD captureBytes;
};

class OldDataQuestion : public CaptureDialog, public ::testing::WithParamInterface<QuestionCase>
{
};

// The held data are 22050 Hz mono; the defaults ask for 44100 Hz stereo.
TEST_P(OldDataQuestion, AnswerDecidesWhetherToRecordAndWhatIsKept)
{
    const QuestionCase& c = GetParam();
    const std::vector<int16_t> tone = sineTone(1000.0, -6.0, 0.2, 22050);
    CSndDatatyx old;
    ASSERT_EQ(old.setNewSndData(reinterpret_cast<const char*>(tone.data()), static_cast<unsigned long>(tone.size() * 2),
                                pcmFormat(22050, 1)),
              1);
    facade->setSndData(&old);
    showRealMessageBoxes();

    std::optional<std::wstring> asked;
    EXPECT_EQ(open([&](HWND dlg) {
        pressButton(dlg, IDOK);
        asked = answerMessageBox(L"ui_tests", c.answer);
    }), c.result);

    ASSERT_TRUE(asked.has_value()) << "no question was asked";
    EXPECT_EQ(*asked, kQuestion);
    EXPECT_EQ(old.getDataSize(), c.oldDataKept ? tone.size() * 2 : 0u);
    EXPECT_TRUE(sameFormat(old.getAudioWaveDataWfx(), pcmFormat(22050, 1)));
    EXPECT_EQ(preparedCaptureBytes(), c.captureBytes);
    facade->setSndData(nullptr);
}

INSTANTIATE_TEST_SUITE_P(Answers, OldDataQuestion,
                         ::testing::Values(QuestionCase{"Cancel", IDCANCEL, 0, true, 0},
                                           QuestionCase{"No", IDNO, 1, true, 4000000},
                                           QuestionCase{"Yes", IDYES, 1, false, 4000000}),
                         [](const ::testing::TestParamInfo<QuestionCase>& info) { return std::string(info.param.name); });
