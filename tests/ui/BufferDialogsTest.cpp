// The dialogs opened by a sound buffer: play controller, 3D parameters, 3D report, buffer
// format and the basic sound maker, each opened by its buffer operation.

#include "UiTestSupport.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <memory>

using namespace dsty_test;

namespace
{
const wchar_t kPlayCaption[] = L"Sound play controller";
const wchar_t k3DCaption[] = L"Direct sound 3D buffer information";
const wchar_t kConfigCaption[] = L"Sound Buffer Config";
const wchar_t kBasicCaption[] = L"Sound Basic";

std::wstring withNewlines(const std::wstring& text)
{
    std::wstring out;
    for (size_t i = 0; i < text.size(); ++i)
        if (text[i] != L'\r')
            out += text[i];
        else if (i + 1 >= text.size() || text[i + 1] != L'\n')
            out += L'\n';
    return out;
}

// Waits for a control's text to become `want`; gives the last text seen.
std::wstring waitForText(HWND dialog, int id, const std::wstring& want, DWORD timeoutMs = 3000)
{
    const DWORD start = GetTickCount();
    std::wstring text = controlText(dialog, id);
    while (text != want && GetTickCount() - start < timeoutMs)
    {
        Sleep(20);
        text = controlText(dialog, id);
    }
    return text;
}

// Moves a trackbar as a user's drag would end: the position, then the parent's WM_HSCROLL.
void dragSlider(HWND dialog, int id, int position)
{
    HWND slider = GetDlgItem(dialog, id);
    SendMessageW(slider, TBM_SETPOS, TRUE, position);
    PostMessageW(dialog, WM_HSCROLL, MAKEWPARAM(TB_THUMBPOSITION, 0), reinterpret_cast<LPARAM>(slider));
}

class TestBuffer : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::m_pDSBuffer;
};
}

class BufferDialogTest : public DialogTest
{
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        ASSERT_EQ(device.initDSndStimX(host, nullptr, DSSCL_PRIORITY), 1);
        const std::vector<int16_t> tone = sineTone(1000.0, -6.0, 0.5);
        ASSERT_EQ(data.setNewSndData(reinterpret_cast<const char*>(tone.data()),
                                     static_cast<unsigned long>(tone.size() * 2), pcmFormat(44100, 1)), 1);
    }
    void TearDown() override
    {
        buffer.release3DBuffers();
        DialogTest::TearDown();
    }

    LONG pan()
    {
        LONG value = 12345;
        EXPECT_EQ(buffer.m_pDSBuffer->GetPan(&value), DS_OK);
        return value;
    }

    UiDevice device;
    CSndDatatyx data;
    TestBuffer buffer;
};

// ---------------------------------------------------------------------------
// Play controller

struct ControllerSeen
{
    bool panOn = false, volumeOn = true, frequencyOn = true;
    std::vector<int> checked;
    std::wstring panOriginal, panNew, volumeOriginal, volumeNew, frequencyOriginal, frequencyNew;
};

class PlayControllerDialog : public BufferDialogTest
{
protected:
    int open(ControllerSeen& seen, const std::function<void(HWND)>& more)
    {
        return runDialog(kPlayCaption, [&](HWND dialog) {
            seen.panOn = isControlEnabled(dialog, IDC_SLIDER_PAN);
            seen.volumeOn = isControlEnabled(dialog, IDC_SLIDER_VOLUME);
            seen.frequencyOn = isControlEnabled(dialog, IDC_SLIDER_FREQUENCY);
            seen.checked = checkedRadios(dialog, IDC_RADIO_PAN_LEFT, IDC_RADIO_PAN_RIGHT);
            seen.panOriginal = controlText(dialog, IDC_EDIT_PAN_ORIGINAL);
            seen.panNew = controlText(dialog, IDC_EDIT_PAN_NEW);
            seen.volumeOriginal = controlText(dialog, IDC_EDIT_VOLUME_ORIGINAL);
            seen.volumeNew = controlText(dialog, IDC_EDIT_VOLUME_NEW);
            seen.frequencyOriginal = controlText(dialog, IDC_EDIT_FREQUENCY_ORIGINAL);
            seen.frequencyNew = controlText(dialog, IDC_EDIT_FREQUENCY_NEW);
            more(dialog);
        }, [&] { return buffer.setSndPlayCtl(); });
    }
};

TEST_F(PlayControllerDialog, TwoDBufferOffersPanOnlyAndTheSlidersChangeOnlyTheNewFigure)
{
    ASSERT_EQ(buffer.setSndData2DSndBuf2ndStd(&data, &device), 1);
    ControllerSeen seen;
    std::wstring afterDrag, afterPreset;
    LRESULT presetPosition = 0;
    EXPECT_EQ(open(seen, [&](HWND dialog) {
        dragSlider(dialog, IDC_SLIDER_PAN, -2500);
        afterDrag = waitForText(dialog, IDC_EDIT_PAN_NEW, L"-2500");
        pressButton(dialog, IDC_RADIO_PAN_RIGHT);
        Sleep(200);
        presetPosition = SendMessageW(GetDlgItem(dialog, IDC_SLIDER_PAN), TBM_GETPOS, 0, 0);
        afterPreset = controlText(dialog, IDC_EDIT_PAN_NEW);
        shoot(dialog, L"CDlgSndPlayCtlty");
        pressButton(dialog, IDOK);
    }), 1);

    EXPECT_TRUE(seen.panOn);
    EXPECT_FALSE(seen.volumeOn);
    EXPECT_FALSE(seen.frequencyOn);
    EXPECT_EQ(seen.checked, std::vector<int>{IDC_RADIO_PAN_CENTRE});
    for (const std::wstring* figure : {&seen.panOriginal, &seen.panNew, &seen.volumeOriginal, &seen.volumeNew,
                                       &seen.frequencyOriginal, &seen.frequencyNew})
        EXPECT_EQ(*figure, L"0");
    EXPECT_EQ(afterDrag, L"-2500");
    EXPECT_EQ(presetPosition, 10000) << "Right moves the slider to full right";
    EXPECT_EQ(afterPreset, L"-2500") << "a preset leaves the New figure for the next slider message";
    EXPECT_EQ(pan(), 0) << "the dialog never writes to the buffer";
}

TEST_F(PlayControllerDialog, ABufferPannedAsideShowsItsPanWithNoPresetChecked)
{
    ASSERT_EQ(buffer.setSndData2DSndBuf2ndStd(&data, &device), 1);
    ASSERT_EQ(buffer.panMuteLeft(), 1);
    ControllerSeen seen;
    LRESULT position = 0;
    EXPECT_EQ(open(seen, [&](HWND dialog) {
        position = SendMessageW(GetDlgItem(dialog, IDC_SLIDER_PAN), TBM_GETPOS, 0, 0);
        pressButton(dialog, IDCANCEL);
    }), 1);

    EXPECT_EQ(seen.panOriginal, L"10000");
    EXPECT_EQ(seen.panNew, L"0");
    EXPECT_EQ(position, 10000);
    EXPECT_TRUE(seen.checked.empty());
    EXPECT_EQ(pan(), 10000);
}

TEST_F(PlayControllerDialog, ThreeDBufferHasEverySliderDisabled)
{
    ASSERT_EQ(buffer.setSndData2DS3Dbuff2(&data, &device), 1);
    ControllerSeen seen;
    EXPECT_EQ(open(seen, [&](HWND dialog) { pressButton(dialog, IDOK); }), 1);

    EXPECT_FALSE(seen.panOn);
    EXPECT_FALSE(seen.volumeOn);
    EXPECT_FALSE(seen.frequencyOn);
    EXPECT_TRUE(seen.checked.empty());
    EXPECT_EQ(seen.panOriginal, L"0");
    EXPECT_EQ(seen.frequencyOriginal, L"0");
    EXPECT_TRUE(answeredBoxes().empty());
}

// ---------------------------------------------------------------------------
// 3D parameters and 3D report

class ThreeDDialogs : public BufferDialogTest
{
protected:
    void SetUp() override
    {
        BufferDialogTest::SetUp();
        ASSERT_EQ(buffer.setSndData2DS3Dbuff2(&data, &device), 1);
    }
};

TEST_F(ThreeDDialogs, FieldsShowTheWorkingRecordsAndOkCommitsTheEditedOnes)
{
    DS3DBUFFER& source = buffer.m_ds3dBuffer;
    source.vPosition = {1.5f, -2.0f, 3.0f};
    source.dwInsideConeAngle = 40;
    source.lConeOutsideVolume = -300;
    source.dwMode = DS3DMODE_HEADRELATIVE;
    buffer.m_ds3dListener.flDopplerFactor = 2.5f;
    buffer.m_ds3dListener.vOrientFront = {0.0f, 0.0f, 1.0f};

    std::wstring posX, posY, inside, volume, doppler, frontZ, modeText;
    std::vector<std::wstring> modes;
    int mode = -1;
    EXPECT_EQ(runDialog(k3DCaption, [&](HWND dialog) {
        posX = controlText(dialog, IDC_EDIT_DS3D_POS_X);
        posY = controlText(dialog, IDC_EDIT_DS3D_POS_Y);
        inside = controlText(dialog, IDC_EDIT_DS3D_CONE_INSIDE);
        volume = controlText(dialog, IDC_EDIT_DS3D_CONE_VOLUME);
        doppler = controlText(dialog, IDC_EDIT_LISTENER_DOPPLER);
        frontZ = controlText(dialog, IDC_EDIT_LISTENER_FRONT_Z);
        modes = comboItems(dialog, IDC_CMB_DS3D_MODE);
        mode = comboSelection(dialog, IDC_CMB_DS3D_MODE);
        modeText = controlText(dialog, IDC_CMB_DS3D_MODE);
        setText(dialog, IDC_EDIT_DS3D_POS_X, L"4.25");
        setText(dialog, IDC_EDIT_LISTENER_POS_Z, L"-7");
        shoot(dialog, L"CDlgDS3Dparameterty");
        pressButton(dialog, IDOK);
    }, [&] { return buffer.setDirectSnd3Dparameters(); }), 1);

    EXPECT_EQ(posX, L"1.5");
    EXPECT_EQ(posY, L"-2");
    EXPECT_EQ(inside, L"40");
    EXPECT_EQ(volume, L"-300");
    EXPECT_EQ(doppler, L"2.5");
    EXPECT_EQ(frontZ, L"1");
    EXPECT_EQ(modes, (std::vector<std::wstring>{L"Normal", L"Head relative", L"Disable"}));
    EXPECT_EQ(mode, 0) << "the list opens on Normal whatever the buffer's mode";
    EXPECT_EQ(modeText, L"Normal");

    EXPECT_FLOAT_EQ(buffer.m_ds3dBufferSaved.vPosition.x, 4.25f);
    EXPECT_FLOAT_EQ(buffer.m_ds3dBufferSaved.vPosition.y, -2.0f);
    EXPECT_EQ(buffer.m_ds3dBufferSaved.dwMode, static_cast<DWORD>(DS3DMODE_NORMAL));
    EXPECT_FLOAT_EQ(buffer.m_ds3dListenerSaved.vPosition.z, -7.0f);
    EXPECT_FLOAT_EQ(device.m_ds3dListener.vPosition.z, -7.0f);
    EXPECT_FLOAT_EQ(device.m_ds3dListener.flDopplerFactor, 2.5f);
}

// Both the apply step and the closing exchange check the entry, so the prompt comes twice.
TEST_F(ThreeDDialogs, DopplerAboveTenIsRefusedAndTenAccepted)
{
    showRealMessageBoxes();
    std::vector<std::optional<std::wstring>> prompts;
    bool openAfterRefusal = false;
    EXPECT_EQ(runDialog(k3DCaption, [&](HWND dialog) {
        setText(dialog, IDC_EDIT_LISTENER_DOPPLER, L"10.5");
        pressButton(dialog, IDOK);
        prompts.push_back(answerMessageBox(AfxGetAppName(), IDOK));
        prompts.push_back(answerMessageBox(AfxGetAppName(), IDOK));
        Sleep(200);
        openAfterRefusal = IsWindow(dialog) != FALSE;
        setText(dialog, IDC_EDIT_LISTENER_DOPPLER, L"10");
        pressButton(dialog, IDOK);
    }, [&] { return buffer.setDirectSnd3Dparameters(); }), 1);

    const std::optional<std::wstring> standard(L"Please enter a number between 0 and 10.");
    EXPECT_EQ(prompts, (std::vector<std::optional<std::wstring>>{standard, standard}));
    EXPECT_TRUE(openAfterRefusal);
    EXPECT_FLOAT_EQ(device.m_ds3dListener.flDopplerFactor, 10.0f);
}

TEST_F(ThreeDDialogs, ReportShowsTheBufferAndListenerAsDirectSoundHasThem)
{
    ASSERT_EQ(buffer.m_pDS3DBuffer->SetMode(DS3DMODE_HEADRELATIVE, DS3D_IMMEDIATE), DS_OK);
    ASSERT_NE(device.m_pDS3DListener, nullptr);
    ASSERT_EQ(device.m_pDS3DListener->SetDopplerFactor(2.5f, DS3D_IMMEDIATE), DS_OK);

    std::wstring report;
    EXPECT_EQ(runDialog(k3DCaption, [&](HWND dialog) {
        report = withNewlines(controlText(dialog, IDC_RICHEDIT_DS3D_INFO));
        shoot(dialog, L"CDlgDirectSnd3DbuffInfoty");
        pressButton(dialog, IDOK);
    }, [&] { return buffer.showDirectSnd3DInfo(); }), 1);

    EXPECT_EQ(report.rfind(L"\n***Direct sound 3D buffer Parameters***\nPosition:: x: 0.000000 y:0.000000 z:0.000000 \n", 0),
              0u)
        << std::string(report.begin(), report.end());
    for (const wchar_t* line : {L"\nDirect sound 3D processing mode : HEADRELATIVE \n",
                                L"\n***Direct sound 3D listener parameters***\n", L"\nDoppler factor:2.500000 \n"})
        EXPECT_NE(report.find(line), std::wstring::npos) << std::string(line, line + wcslen(line));
    EXPECT_LT(report.find(L"Doppler factor"), report.find(L"Rolloff factor"));
}

// ---------------------------------------------------------------------------
// Buffer format and size

class BufferConfigDialog : public BufferDialogTest
{
protected:
    DWORD bufferBytes()
    {
        DSBCAPS caps{};
        caps.dwSize = sizeof caps;
        EXPECT_EQ(buffer.m_pDSBuffer->GetCaps(&caps), DS_OK);
        return caps.dwBufferBytes;
    }
};

TEST_F(BufferConfigDialog, OpensOnTheDataAndRefusesWhatNoBufferCanHold)
{
    showRealMessageBoxes();
    std::wstring channels, rate, bits, bytes;
    std::optional<std::wstring> bitsRefusal, sizeRefusal;
    EXPECT_EQ(runDialog(kConfigCaption, [&](HWND dialog) {
        channels = controlText(dialog, IDC_CMB_2ND_CHANNELS);
        rate = controlText(dialog, IDC_CMB_2ND_SAMPLING_RATE);
        bits = controlText(dialog, IDC_CMB_2ND_BITS_PER_SAMPLE);
        bytes = controlText(dialog, IDC_EDIT_2ND_BUFFER_BYTES);
        shoot(dialog, L"CDlgDSndCreate2ndBuffer");
        setText(dialog, IDC_CMB_2ND_BITS_PER_SAMPLE, L"12");
        pressButton(dialog, IDOK);
        bitsRefusal = answerMessageBox(AfxGetAppName(), IDOK);
        setText(dialog, IDC_CMB_2ND_BITS_PER_SAMPLE, L"16");
        setText(dialog, IDC_EDIT_2ND_BUFFER_BYTES, L"3");
        pressButton(dialog, IDOK);
        sizeRefusal = answerMessageBox(AfxGetAppName(), IDOK);
        setText(dialog, IDC_CMB_2ND_SAMPLING_RATE, L"16000");
        setText(dialog, IDC_EDIT_2ND_BUFFER_BYTES, L"1003");
        pressButton(dialog, IDOK);
    }, [&] { return buffer.setSndData2DSndBuf2ndPro(&data, &device); }), 1002) << "rounded down to whole 16-bit samples";
    ASSERT_NE(buffer.m_pDSBuffer, nullptr);

    EXPECT_EQ(channels, L"1");
    EXPECT_EQ(rate, L"44100");
    EXPECT_EQ(bits, L"16");
    EXPECT_EQ(bytes, std::to_wstring(data.getDataSize()));
    EXPECT_EQ(bitsRefusal, std::wstring(L"The bits per sample must be 8 or 16."));
    EXPECT_EQ(sizeRefusal, std::wstring(L"The buffer size must be a whole number of bytes from 4 to 268435455."));
    EXPECT_EQ(bufferBytes(), 1002u);
    WAVEFORMATEX made{};
    ASSERT_EQ(buffer.m_pDSBuffer->GetFormat(&made, sizeof made, nullptr), DS_OK);
    EXPECT_EQ(made.nSamplesPerSec, 16000u);
    EXPECT_EQ(made.nBlockAlign, 2);
    EXPECT_EQ(made.nAvgBytesPerSec, 32000u);
}

TEST_F(BufferConfigDialog, CancelMakesNoBuffer)
{
    EXPECT_EQ(runDialog(kConfigCaption, [&](HWND dialog) { pressButton(dialog, IDCANCEL); },
                        [&] { return buffer.setSndData2DSndBuf2ndPro(&data, &device); }),
              0);
    EXPECT_EQ(buffer.m_pDSBuffer, nullptr);
}

// ---------------------------------------------------------------------------
// Basic sound maker

class BasicDialog : public BufferDialogTest
{
protected:
    std::unique_ptr<CSndDatatyx> open(const std::function<void(HWND)>& drive)
    {
        CSndDatatyx* made = nullptr;
        runDialog(kBasicCaption, drive, [&] {
            made = buffer.showTavrelerBasic();
            return 0;
        });
        return std::unique_ptr<CSndDatatyx>(made);
    }
};

TEST_F(BasicDialog, OkHandsBackTheToneAsEnteredOnceItCanBeSampled)
{
    showRealMessageBoxes();
    std::optional<std::wstring> refusal;
    auto made = open([&](HWND dialog) {
        selectComboItem(dialog, IDC_CMB_BASIC_SAMPLING_RATE, 0);
        setText(dialog, IDC_EDIT_BASIC_FREQUENCY, L"11025");
        pressButton(dialog, IDOK);
        refusal = answerMessageBox(AfxGetAppName(), IDOK);
        setText(dialog, IDC_EDIT_BASIC_FREQUENCY, L"500");
        setText(dialog, IDC_EDIT_BASIC_DURATION, L"200");
        setText(dialog, IDC_EDIT_BASIC_LEVEL, L"-12");
        selectComboItem(dialog, IDC_CMB_BASIC_CHANNELS, 1);
        shoot(dialog, L"CDlgDTavrelBasic");
        pressButton(dialog, IDOK);
    });
    EXPECT_EQ(refusal, std::wstring(L"The frequency must be below half the sampling rate."));
    ASSERT_NE(made, nullptr);
    const tWAVEFORMATEX wfx = made->getAudioWaveDataWfx();
    EXPECT_EQ(wfx.nChannels, 2);
    EXPECT_EQ(wfx.nSamplesPerSec, 22050u);
    EXPECT_EQ(wfx.wBitsPerSample, 16);
    EXPECT_EQ(wfx.nBlockAlign, 4);
    ASSERT_EQ(made->getDataSize(), 17640u) << "4410 stereo frames";

    const int16_t* samples = reinterpret_cast<const int16_t*>(made->getDataPointer());
    const std::vector<int16_t> pcm(samples, samples + made->getDataSize() / 2);
    const PcmView both = view(pcm, 2);
    EXPECT_NEAR(dominantFrequency(both, 0, 22050), 500.0, 2.0);
    EXPECT_NEAR(rmsDbfs(both, 0), -12.0, 0.1) << "the analysis reads a sine's level by its peak";
    EXPECT_NEAR(rmsDbfs(both, 1), rmsDbfs(both, 0), 0.01);
}

TEST_F(BasicDialog, CancelHandsBackNothing)
{
    EXPECT_EQ(open([&](HWND dialog) { pressButton(dialog, IDCANCEL); }), nullptr);
}

// The default capture device is the loopback of the output: it records the tone played.
TEST_F(BasicDialog, RecordingIsHandedBackOnceMadeAndRefusedBefore)
{
    ASSERT_EQ(buffer.setSndData2DSndBuf2ndStd(&data, &device), 1);
    ASSERT_EQ(buffer.sendAudioStimLoop(), 1);
    showRealMessageBoxes();
    std::optional<std::wstring> refusal;
    std::wstring status;
    auto made = open([&](HWND dialog) {
        chooseRadio(dialog, IDC_RADIO_BASIC_TONE, IDC_RADIO_BASIC_RECORDING, IDC_RADIO_BASIC_RECORDING);
        pressButton(dialog, IDOK);
        refusal = answerMessageBox(AfxGetAppName(), IDOK);
        chooseRadio(dialog, IDC_RADIO_BASIC_TONE, IDC_RADIO_BASIC_RECORDING, IDC_RADIO_BASIC_TONE);
        setText(dialog, IDC_EDIT_BASIC_RECORD_SECONDS, L"1");
        pressButton(dialog, IDC_BTN_BASIC_RECORD);
        status = waitForText(dialog, IDC_STATIC_BASIC_STATUS, L"Recorded 88200 bytes", 6000);
        pressButton(dialog, IDOK);
    });
    EXPECT_EQ(refusal, std::wstring(L"Nothing has been recorded yet: press Record first, or choose the tone."));
    EXPECT_EQ(status, L"Recorded 88200 bytes");
    ASSERT_NE(made, nullptr) << "a finished recording selects itself";
    EXPECT_EQ(made->getDataSize(), 88200u);
    EXPECT_EQ(made->getAudioWaveDataWfx().nChannels, 1);
    EXPECT_EQ(made->getAudioWaveDataWfx().nSamplesPerSec, 44100u);
    const int16_t* samples = reinterpret_cast<const int16_t*>(made->getDataPointer());
    const std::vector<int16_t> pcm(samples + 22050, samples + 44100);
    EXPECT_NEAR(dominantFrequency(view(pcm, 1), 0, 44100), 1000.0, 5.0);
}
