// The dialogs opened by a sound buffer: play controller, 3D parameters, 3D report, buffer
// format and the basic sound maker, each opened by its buffer operation; and the stream player
// the facade shows. What the dialog shows is checked from the thread that drives it.

#include "UiTestSupport.h"
#include "SignalAnalysis.h"
#include "SndWaveWriteStreamty.h"

#include <cstring>
#include <cwchar>
#include <iterator>
#include <memory>

using namespace dsty_test;

namespace
{
const wchar_t k3DCaption[] = L"Direct sound 3D buffer information";

// The stream player's Exit, Open file, Play and Stop, and which of them are enabled when.
const auto kPlayerButtons = {IDOK, IDC_BTN_STREAM_OPEN_FILE, IDC_BTN_STREAM_PLAY, IDC_BTN_STREAM_STOP};
const char kIdle[] = "1100", kReady[] = "1110", kPlaying[] = "0001";

bool threadEnds(CWinThread* thread, DWORD timeoutMs)
{
    return thread != nullptr && WaitForSingleObject(thread->m_hThread, timeoutMs) == WAIT_OBJECT_0;
}

// `seconds` of a 1 kHz tone as a wave file in the temporary folder.
std::wstring writeToneFile(double seconds)
{
    wchar_t folder[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    const std::wstring path = std::wstring(folder) + L"stream-ui-tone.wav";
    std::vector<int16_t> pcm = sineTone(1000.0, -12.0, seconds, 44100, ToneChannels::Both);
    tWAVEFORMATEX wfx = pcmFormat(44100, 2);
    CSndWaveWriteStreamty writer;
    const bool written = writer.Open(CString(path.c_str()), &wfx) &&
                         writer.Write(static_cast<unsigned>(pcm.size() * 2), reinterpret_cast<unsigned char*>(pcm.data()), nullptr) &&
                         writer.Close();
    return written ? path : std::wstring();
}
}

// Only a 2D buffer can be panned. The controller opens on the buffer's pan, with the preset of
// that pan checked, and writes nothing back to the buffer.
TEST_F(DialogTest, PlayControllerOpensOnTheBuffersPanAndWritesNothingBack)
{
    openDeviceWithTone(0.5);
    // The pan is applied before opening.
    const struct { bool threeD; int (CDirectSnd3DBuffty::*pan)(); std::vector<int> checked; const wchar_t* panShown; } rows[] = {
        {false, &CDirectSnd3DBuffty::panCenter, {IDC_RADIO_PAN_CENTRE}, L"0"},
        {false, &CDirectSnd3DBuffty::panMuteLeft, {}, L"10000"},
        {true, nullptr, {}, L"0"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.panShown);
        ASSERT_EQ(row.threeD ? buffer.setSndData2DS3Dbuff2(&data, &device) : buffer.setSndData2DSndBuf2ndStd(&data, &device), 1);
        ASSERT_TRUE(!row.pan || (buffer.*row.pan)());
        EXPECT_EQ(runDialog(L"Sound play controller", [&](HWND dialog) {
            EXPECT_EQ(enabled(dialog, {IDC_SLIDER_PAN, IDC_SLIDER_VOLUME, IDC_SLIDER_FREQUENCY}), row.threeD ? "000" : "100");
            EXPECT_EQ(checkedRadios(dialog, IDC_RADIO_PAN_LEFT, IDC_RADIO_PAN_RIGHT), row.checked);
            EXPECT_EQ(texts(dialog, {IDC_EDIT_PAN_ORIGINAL, IDC_EDIT_PAN_NEW, IDC_EDIT_VOLUME_ORIGINAL, IDC_EDIT_VOLUME_NEW,
                                     IDC_EDIT_FREQUENCY_ORIGINAL, IDC_EDIT_FREQUENCY_NEW}),
                      (std::vector<std::wstring>{row.panShown, L"0", L"0", L"0", L"0", L"0"}));
            EXPECT_EQ(SendMessageW(GetDlgItem(dialog, IDC_SLIDER_PAN), TBM_GETPOS, 0, 0), _wtoi(row.panShown));
            shoot(dialog, L"CDlgSndPlayCtlty");
            pressButton(dialog, IDOK);
        }, [&] { return buffer.setSndPlayCtl(); }), 1);
        LONG pan = 12345;
        EXPECT_TRUE(row.threeD || (buffer.m_pDSBuffer->GetPan(&pan) == DS_OK && pan == _wtoi(row.panShown)))
            << "the dialog never writes to the buffer";
        buffer.release3DBuffers();
    }
}

// Every edit box shows its own field of the working records and hands an entry back to that
// field once a Doppler factor above ten has been refused (by the apply step and by the closing
// exchange, so the prompt comes twice). The mode list opens on Normal whatever the mode.
TEST_F(DialogTest, ThreeDParametersTakeBackEveryFieldAndTheReportShowsDirectSound)
{
    openDeviceWithTone(0.5);
    ASSERT_EQ(buffer.setSndData2DS3Dbuff2(&data, &device), 1);
    DS3DBUFFER& source = buffer.m_ds3dBuffer;
    DS3DLISTENER& listener = buffer.m_ds3dListener;
    const std::pair<int, float*> fields[] = {
        {IDC_EDIT_DS3D_POS_X, &source.vPosition.x}, {IDC_EDIT_DS3D_POS_Y, &source.vPosition.y},
        {IDC_EDIT_DS3D_POS_Z, &source.vPosition.z}, {IDC_EDIT_DS3D_VEL_X, &source.vVelocity.x},
        {IDC_EDIT_DS3D_VEL_Y, &source.vVelocity.y}, {IDC_EDIT_DS3D_VEL_Z, &source.vVelocity.z},
        {IDC_EDIT_DS3D_MAX_DISTANCE, &source.flMaxDistance}, {IDC_EDIT_DS3D_MIN_DISTANCE, &source.flMinDistance},
        {IDC_EDIT_DS3D_CONE_X, &source.vConeOrientation.x}, {IDC_EDIT_DS3D_CONE_Y, &source.vConeOrientation.y},
        {IDC_EDIT_DS3D_CONE_Z, &source.vConeOrientation.z}, {IDC_EDIT_LISTENER_POS_X, &listener.vPosition.x},
        {IDC_EDIT_LISTENER_POS_Y, &listener.vPosition.y}, {IDC_EDIT_LISTENER_POS_Z, &listener.vPosition.z},
        {IDC_EDIT_LISTENER_VEL_X, &listener.vVelocity.x}, {IDC_EDIT_LISTENER_VEL_Y, &listener.vVelocity.y},
        {IDC_EDIT_LISTENER_VEL_Z, &listener.vVelocity.z}, {IDC_EDIT_LISTENER_ROLLOFF, &listener.flRolloffFactor},
        {IDC_EDIT_LISTENER_FRONT_X, &listener.vOrientFront.x}, {IDC_EDIT_LISTENER_FRONT_Y, &listener.vOrientFront.y},
        {IDC_EDIT_LISTENER_FRONT_Z, &listener.vOrientFront.z}, {IDC_EDIT_LISTENER_TOP_X, &listener.vOrientTop.x},
        {IDC_EDIT_LISTENER_TOP_Y, &listener.vOrientTop.y}, {IDC_EDIT_LISTENER_TOP_Z, &listener.vOrientTop.z},
        {IDC_EDIT_LISTENER_DISTANCE, &listener.flDistanceFactor}, {IDC_EDIT_LISTENER_DOPPLER, &listener.flDopplerFactor},
    };
    // Each field its own value, so a box exchanged with another field's shows.
    for (size_t i = 0; i < std::size(fields); ++i)
        *fields[i].second = -0.5f * static_cast<float>(i + 1);
    source.dwMode = DS3DMODE_HEADRELATIVE;

    EXPECT_EQ(runDialog(k3DCaption, [&](HWND dialog) {
        for (size_t i = 0; i < std::size(fields); ++i)
        {
            wchar_t shown[32];
            swprintf(shown, 32, L"%g", -0.5 * static_cast<double>(i + 1));
            EXPECT_EQ(controlText(dialog, fields[i].first), shown) << "box " << fields[i].first;
            setText(dialog, fields[i].first, std::to_wstring(0.25 * static_cast<double>(i + 1)));
        }
        EXPECT_EQ(comboItems(dialog, IDC_CMB_DS3D_MODE), (std::vector<std::wstring>{L"Normal", L"Head relative", L"Disable"}));
        EXPECT_EQ(comboSelection(dialog, IDC_CMB_DS3D_MODE), 0);
        shoot(dialog, L"CDlgDS3Dparameterty");
        setText(dialog, IDC_EDIT_LISTENER_DOPPLER, L"10.5");
        const size_t seen = answeredBoxes().size();
        pressButton(dialog, IDOK);
        for (int waited = 0; answeredBoxes(seen).size() < 2 && waited < 3000; waited += 20)
            Sleep(20);
        EXPECT_EQ(answeredBoxes(seen), std::vector<std::wstring>(2, L"Please enter a number between 0 and 10."));
        setText(dialog, IDC_EDIT_LISTENER_DOPPLER, L"10");
        pressButton(dialog, IDOK);
    }, [&] { return buffer.setDirectSnd3Dparameters(); }), 1);

    for (size_t i = 0; i + 1 < std::size(fields); ++i)
        EXPECT_FLOAT_EQ(*fields[i].second, 0.25f * static_cast<float>(i + 1)) << "box " << fields[i].first;
    EXPECT_FLOAT_EQ(listener.flDopplerFactor, 10.0f);
    EXPECT_EQ(source.dwMode, static_cast<DWORD>(DS3DMODE_NORMAL));
    EXPECT_EQ(std::memcmp(&buffer.m_ds3dBufferSaved, &source, sizeof source), 0) << "OK keeps the edited records";
    EXPECT_EQ(std::memcmp(&device.m_ds3dListener, &listener, sizeof listener), 0) << "the device's listener too";

    // The report shows the buffer as DirectSound has it, not the records.
    ASSERT_EQ(buffer.m_pDS3DBuffer->SetMode(DS3DMODE_HEADRELATIVE, DS3D_IMMEDIATE), DS_OK);
    EXPECT_EQ(runDialog(k3DCaption, [&](HWND dialog) {
        const std::wstring report = withNewlines(controlText(dialog, IDC_RICHEDIT_DS3D_INFO));
        for (const wchar_t* line : {L"\n***Direct sound 3D buffer Parameters***\nPosition:: x: 0.000000 y:0.000000 z:0.000000 \n",
                                    L"\nDirect sound 3D processing mode : HEADRELATIVE \n",
                                    L"\n***Direct sound 3D listener parameters***\n"})
            EXPECT_NE(report.find(line), std::wstring::npos) << std::string(report.begin(), report.end());
        shoot(dialog, L"CDlgDirectSnd3DbuffInfoty");
        pressButton(dialog, IDOK);
    }, [&] { return buffer.showDirectSnd3DInfo(); }), 1);
}

// The dialog opens on the data's format and size, refuses each entry no buffer can hold, and
// takes the largest size DirectSound allows, rounded down to whole samples.
TEST_F(DialogTest, BufferConfigRefusesWhatNoBufferCanHold)
{
    openDeviceWithTone(0.5);
    const std::wstring channels = L"The number of channels must be 1 or 2.",
                       rate = L"The sampling rate must be a whole number from 100 to 200000 Hz.",
                       bits = L"The bits per sample must be 8 or 16.",
                       bytes = L"The buffer size must be a whole number of bytes from 4 to 268435455.";
    const struct { int id; const wchar_t* entry; const std::wstring& refusal; } entries[] = {
        {IDC_CMB_2ND_CHANNELS, L"0", channels},          {IDC_CMB_2ND_CHANNELS, L"3", channels},
        {IDC_CMB_2ND_SAMPLING_RATE, L"99", rate},        {IDC_CMB_2ND_SAMPLING_RATE, L"200001", rate},
        {IDC_CMB_2ND_BITS_PER_SAMPLE, L"12", bits},      {IDC_EDIT_2ND_BUFFER_BYTES, L"3", bytes},
        {IDC_EDIT_2ND_BUFFER_BYTES, L"268435456", bytes}, {IDC_EDIT_2ND_BUFFER_BYTES, L"1e3", bytes},
    };
    EXPECT_EQ(runDialog(L"Sound Buffer Config", [&](HWND dialog) {
        EXPECT_EQ(texts(dialog, {IDC_CMB_2ND_CHANNELS, IDC_CMB_2ND_SAMPLING_RATE, IDC_CMB_2ND_BITS_PER_SAMPLE,
                                 IDC_EDIT_2ND_BUFFER_BYTES}),
                  (std::vector<std::wstring>{L"1", L"44100", L"16", std::to_wstring(data.getDataSize())}));
        shoot(dialog, L"CDlgDSndCreate2ndBuffer");
        for (const auto& entry : entries)
        {
            const std::wstring before = controlText(dialog, entry.id);
            setText(dialog, entry.id, entry.entry);
            EXPECT_EQ(refusalOf(dialog, IDOK), entry.refusal) << std::string(entry.entry, entry.entry + wcslen(entry.entry));
            setText(dialog, entry.id, before);
        }
        setText(dialog, IDC_CMB_2ND_SAMPLING_RATE, L"16000");
        setText(dialog, IDC_EDIT_2ND_BUFFER_BYTES, L"268435455");
        pressButton(dialog, IDOK);
    }, [&] { return buffer.setSndData2DSndBuf2ndPro(&data, &device); }), 268435454);

    ASSERT_NE(buffer.m_pDSBuffer, nullptr);
    DSBCAPS caps{sizeof caps, 0, 0, 0, 0};
    WAVEFORMATEX made{};
    ASSERT_EQ(buffer.m_pDSBuffer->GetCaps(&caps), DS_OK);
    ASSERT_EQ(buffer.m_pDSBuffer->GetFormat(&made, sizeof made, nullptr), DS_OK);
    EXPECT_EQ(caps.dwBufferBytes, 268435454u);
    EXPECT_EQ(fieldsOf(made), fieldsOf(pcmFormat(16000, 1)));
}

// A tone that cannot be sampled is refused; the tone entered, and the lowest recording length
// accepted, are taken. A recording, in the format chosen, is refused until one is made; the
// default capture device is the loopback of the output, so it records the tone that plays,
// and a finished recording is chosen by itself.
TEST_F(DialogTest, BasicDialogHandsBackTheToneOrTheRecordingAsEntered)
{
    openDeviceWithTone(0.5);
    ASSERT_EQ(buffer.setSndData2DSndBuf2ndStd(&data, &device), 1);
    ASSERT_EQ(buffer.sendAudioStimLoop(), 1);
    for (const bool recording : {false, true})
    {
        CSndDatatyx* sound = nullptr;
        runDialog(L"Sound Basic", [&](HWND dialog) {
            selectComboItem(dialog, IDC_CMB_BASIC_SAMPLING_RATE, 0);
            setText(dialog, IDC_EDIT_BASIC_FREQUENCY, L"11025");
            EXPECT_EQ(refusalOf(dialog, IDOK), L"The frequency must be below half the sampling rate.");
            setText(dialog, IDC_EDIT_BASIC_FREQUENCY, L"500");
            setText(dialog, IDC_EDIT_BASIC_DURATION, L"200");
            setText(dialog, IDC_EDIT_BASIC_LEVEL, L"-12");
            setText(dialog, IDC_EDIT_BASIC_RECORD_SECONDS, L"1");
            selectComboItem(dialog, IDC_CMB_BASIC_CHANNELS, 1);
            shoot(dialog, L"CDlgDTavrelBasic");
            if (recording)
            {
                CheckRadioButton(dialog, IDC_RADIO_BASIC_TONE, IDC_RADIO_BASIC_RECORDING, IDC_RADIO_BASIC_RECORDING);
                EXPECT_EQ(refusalOf(dialog, IDOK), L"Nothing has been recorded yet: press Record first, or choose the tone.");
                CheckRadioButton(dialog, IDC_RADIO_BASIC_TONE, IDC_RADIO_BASIC_RECORDING, IDC_RADIO_BASIC_TONE);
                pressButton(dialog, IDC_BTN_BASIC_RECORD);
                for (int waited = 0; controlText(dialog, IDC_STATIC_BASIC_STATUS) != L"Recorded 88200 bytes" && waited < 6000; waited += 20)
                    Sleep(20);
                EXPECT_EQ(controlText(dialog, IDC_STATIC_BASIC_STATUS), L"Recorded 88200 bytes");
            }
            pressButton(dialog, IDOK);
        }, [&] { return (sound = buffer.showTavrelerBasic()) != nullptr; });
        const std::unique_ptr<CSndDatatyx> made(sound);
        ASSERT_NE(made, nullptr) << (recording ? "a finished recording selects itself" : "no tone");
        const PcmView all{reinterpret_cast<const int16_t*>(made->getDataPointer()), made->getDataSize() / 4, 2};
        EXPECT_EQ(fieldsOf(made->getAudioWaveDataWfx()), fieldsOf(pcmFormat(22050, 2)));
        EXPECT_EQ(made->getDataSize(), recording ? 88200u : 17640u) << "a second, or 4410 frames";
        // The second half: the first moments of a recording may be silent.
        const PcmView half = slice(all, all.frames / 2, all.frames);
        EXPECT_NEAR(dominantFrequency(half, 0, 22050), recording ? 1000.0 : 500.0, 5.0);
        EXPECT_NEAR(rmsDbfs(half, 0), recording ? -6.0 : -12.0, recording ? 3.0 : 0.1) << "a sine's level by its peak";
    }
}

// The facade's player streams on the registered device: it plays the chosen file and stops,
// plays it to the end and is ready again, plays it once more, and the next facade call
// replaces it mid-play.
TEST_F(DialogTest, StreamPlayerPlaysStopsIsReadyAtTheEndOfTheFileAndIsReplacedMidPlay)
{
    openDeviceWithTone(0.1);
    const std::wstring path = writeToneFile(1.5);
    ASSERT_FALSE(path.empty());
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device);
    ASSERT_EQ(CSndDataRecordPlaytyx().playStreamty(), 1);
    CDlgSoundStreamPlay* player = CSndDataRecordPlaytyx::m_pPlayStream;
    pumpMessagesWhile([&] {
        const HWND dlg = player->m_hWnd;
        EXPECT_EQ(enabled(dlg, kPlayerButtons), kIdle);
        EXPECT_TRUE(pressButton(dlg, IDC_BTN_STREAM_OPEN_FILE) && answerFileDialog(L"Open", path) &&
                    becomes(dlg, kPlayerButtons, kReady));
        pressButton(dlg, IDC_BTN_STREAM_PLAY);
        EXPECT_TRUE(becomes(dlg, kPlayerButtons, kPlaying));
        EXPECT_NE(static_cast<UiBuffer*>(player->m_pSndBuffStream)->m_pDSBuffer, nullptr) << "nothing streams";
        shoot(dlg, L"CDlgSoundStreamPlay");
        Sleep(400);
        pressButton(dlg, IDC_BTN_STREAM_STOP);
        EXPECT_TRUE(becomes(dlg, kPlayerButtons, kReady) && threadEnds(player->m_pStreamThread, 3000)) << "Stop";
        pressButton(dlg, IDC_BTN_STREAM_PLAY);
        EXPECT_TRUE(becomes(dlg, kPlayerButtons, kPlaying));
        EXPECT_TRUE(becomes(dlg, kPlayerButtons, kReady, 6000) && threadEnds(player->m_pStreamThread, 3000)) << "the end of the file";
        pressButton(dlg, IDC_BTN_STREAM_PLAY);
        EXPECT_TRUE(becomes(dlg, kPlayerButtons, kPlaying));
    });
    EXPECT_EQ(0, player->m_strFilePath.CompareNoCase(path.c_str()));
    const HWND first = player->m_hWnd;
    EXPECT_EQ(CSndDataRecordPlaytyx().playStreamty(), 1);
    EXPECT_FALSE(IsWindow(first));
    EXPECT_TRUE(IsWindowVisible(CSndDataRecordPlaytyx::m_pPlayStream->GetSafeHwnd()));
    delete CSndDataRecordPlaytyx::m_pPlayStream;
    CSndDataRecordPlaytyx::m_pPlayStream = nullptr;
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(nullptr);
    DeleteFileW(path.c_str());
}
