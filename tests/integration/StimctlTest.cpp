// stimctl as a user runs it: a separate process whose exit status, output and files are
// checked, and whose sound is recorded back through the loopback.

#include "ChildProcess.h"
#include "DeviceHarness.h"
#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>

using namespace dsty_test;

namespace
{
std::wstring scratchFolder()
{
    wchar_t temp[MAX_PATH] = L"";
    GetTempPathW(MAX_PATH, temp);
    const std::wstring folder = std::wstring(temp) + L"stimctl-test\\";
    CreateDirectoryW(folder.c_str(), nullptr);
    return folder;
}

// stimctl, started from beside this test program.
class Stimctl : public ChildProcess
{
public:
    explicit Stimctl(const std::wstring& arguments) : ChildProcess(L"stimctl.exe", arguments) {}
};

Outcome stimctl(const std::wstring& arguments)
{
    return Stimctl(arguments).finish();
}

size_t lineCount(const std::string& text)
{
    size_t lines = 0;
    for (char c : text)
        lines += c == '\n';
    return lines;
}

// A canonical 44-byte-header wave file, written here without the library.
void writeWave(const std::wstring& path, const std::vector<char>& data, WORD channels, WORD bits)
{
    const DWORD rate = 44100, size = static_cast<DWORD>(data.size());
    const WORD align = static_cast<WORD>(channels * bits / 8);
    const DWORD riff = 36 + size, fmtSize = 16, byteRate = rate * align;
    const WORD pcm = 1;
    std::ofstream file(path.c_str(), std::ios::binary);
    auto put = [&](const void* p, size_t n) { file.write(static_cast<const char*>(p), static_cast<std::streamsize>(n)); };
    put("RIFF", 4), put(&riff, 4), put("WAVEfmt ", 8), put(&fmtSize, 4), put(&pcm, 2), put(&channels, 2);
    put(&rate, 4), put(&byteRate, 4), put(&align, 2), put(&bits, 2), put("data", 4), put(&size, 4);
    put(data.data(), data.size());
}

std::vector<char> bytesOf(const std::vector<int16_t>& pcm)
{
    return std::vector<char>(reinterpret_cast<const char*>(pcm.data()), reinterpret_cast<const char*>(pcm.data() + pcm.size()));
}

struct WaveFile
{
    bool valid = false;
    WAVEFORMATEX format{};
    std::vector<int16_t> samples;
};

// Reads a canonical wave file; valid only when its header's sizes agree with the file.
WaveFile readWave(const std::wstring& path)
{
    WaveFile wave;
    std::ifstream file(path.c_str(), std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (bytes.size() < 44 || std::memcmp(bytes.data(), "RIFF", 4) != 0 || std::memcmp(bytes.data() + 8, "WAVEfmt ", 8) != 0 ||
        std::memcmp(bytes.data() + 36, "data", 4) != 0)
        return wave;
    DWORD riff = 0, fmtSize = 0, dataSize = 0;
    std::memcpy(&riff, bytes.data() + 4, 4);
    std::memcpy(&fmtSize, bytes.data() + 16, 4);
    std::memcpy(&wave.format, bytes.data() + 20, 16);
    std::memcpy(&dataSize, bytes.data() + 40, 4);
    wave.valid = riff == bytes.size() - 8 && fmtSize == 16 && dataSize == bytes.size() - 44;
    wave.samples.resize(dataSize / 2);
    std::memcpy(wave.samples.data(), bytes.data() + 44, wave.samples.size() * 2);
    return wave;
}

constexpr unsigned kRate = 44100;
}

class StimctlRun : public ::testing::Test
{
protected:
    void SetUp() override
    {
        folder = scratchFolder();
        good = folder + L"tone500.wav";
        writeWave(good, bytesOf(sineTone(500.0, -6.0, 0.4, kRate, ToneChannels::Both)), 2, 16);
    }

    // Records the loopback while `run` runs stimctl; gives interleaved stereo frames.
    std::vector<int16_t> hear(const std::wstring& arguments, Outcome& outcome)
    {
        LoopbackRecorder recorder;
        EXPECT_TRUE(recorder.start());
        outcome = stimctl(arguments);
        Sleep(200);
        recorder.stop();
        return recorder.samples();
    }

    // Seconds during which the loopback was louder than -30 dBFS, in 10 ms windows.
    static double loudSeconds(const std::vector<int16_t>& heard)
    {
        const std::vector<double> levels = rmsSeries(view(heard, 2), 0, kRate / 100);
        return 0.01 * static_cast<double>(std::count_if(levels.begin(), levels.end(), [](double db) { return db > -30.0; }));
    }

    // Left minus right level over the middle of what was heard, dB.
    static double leftOverRight(const std::vector<int16_t>& heard, double fromSeconds, double seconds)
    {
        const PcmView all = view(heard, 2);
        const long long onset = onsetFrame(all, -40.0);
        EXPECT_GE(onset, 0) << "nothing was heard";
        const PcmView part = slice(all, static_cast<size_t>(onset < 0 ? 0 : onset) + static_cast<size_t>(fromSeconds * kRate),
                                   static_cast<size_t>(seconds * kRate));
        return rmsDbfs(part, 0) - rmsDbfs(part, 1);
    }

    std::wstring folder, good;
};

// ---------------------------------------------------------------------------
// Wrong arguments and failing files: a non-zero status and one line saying why.

struct Refusal
{
    const char* name;
    const wchar_t* arguments;  // {good}, {folder}: replaced by the test's files
    DWORD status;
    const char* reason;
};

class StimctlRefuses : public StimctlRun, public ::testing::WithParamInterface<Refusal>
{
};

TEST_P(StimctlRefuses, WithOneLineAndItsStatus)
{
    std::wstring arguments = GetParam().arguments;
    for (const auto& [token, value] : {std::make_pair(std::wstring(L"{good}"), good), std::make_pair(std::wstring(L"{folder}"), folder)})
        for (size_t at; (at = arguments.find(token)) != std::wstring::npos;)
            arguments.replace(at, token.size(), value);
    writeWave(folder + L"deep.wav", std::vector<char>(600, 0), 2, 24);
    std::ofstream((folder + L"text.wav").c_str()) << "not a wave file at all\n";

    const Outcome outcome = stimctl(arguments);
    EXPECT_EQ(outcome.status, GetParam().status);
    EXPECT_EQ(lineCount(outcome.err), 1u) << outcome.err;
    EXPECT_NE(outcome.err.find(GetParam().reason), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find("--help") != std::string::npos, GetParam().status == 2) << outcome.err;
    EXPECT_EQ(outcome.out, "");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, StimctlRefuses,
    ::testing::Values(Refusal{"NoCommand", L"", 2, "no command"},
                      Refusal{"UnknownCommand", L"frobnicate", 2, "unknown command \"frobnicate\""},
                      Refusal{"PlayNoFile", L"play", 2, "no wave file"},
                      Refusal{"PlayMissingFile", L"play {folder}missing.wav", 1, "cannot be opened"},
                      Refusal{"PlayTextFile", L"play {folder}text.wav", 1, "Not a RIFF wave file"},
                      Refusal{"Play24Bit", L"play {folder}deep.wav", 1, "24-bit sound cannot be played"},
                      Refusal{"PlayLoopNotANumber", L"play {good} --loop soon", 2, "--loop must be a number"},
                      Refusal{"PlayLoopZero", L"play {good} --loop 0", 2, "--loop must be from"},
                      Refusal{"PlayPanUp", L"play {good} --pan up", 2, "--pan must be left|right|centre"},
                      Refusal{"PlayTwoCoordinates", L"play {good} --3d 1,2", 2, "three numbers"},
                      Refusal{"PlayMoveAlone", L"play {good} --move 1,0,0", 2, "--move needs --3d"},
                      Refusal{"Play3DPanned", L"play {good} --3d 1,0,0 --pan left", 2, "cannot be combined"},
                      Refusal{"PlayUnknownOption", L"play {good} --volume 3", 2, "unknown option --volume"},
                      Refusal{"PlayOptionWithoutValue", L"play {good} --loop", 2, "--loop needs a value"},
                      Refusal{"ToneNoLength", L"tone 1000", 2, "no length"},
                      Refusal{"ToneHexFrequency", L"tone 0x100 1", 2, "HZ must be a number"},
                      Refusal{"ToneNegativeLength", L"tone 1000 -1", 2, "SECONDS must be from"},
                      Refusal{"ToneExtraArgument", L"tone 1000 1 2", 2, "unexpected argument 2"},
                      Refusal{"RecordNoLength", L"record {folder}r.wav", 2, "either --seconds or --bytes"},
                      Refusal{"RecordBothLengths", L"record {folder}r.wav --seconds 1 --bytes 400", 2, "either"},
                      Refusal{"RecordTooLong", L"record {folder}r.wav --seconds 100", 2, "--seconds must be from"},
                      Refusal{"RecordBytesNotWhole", L"record {folder}r.wav --bytes 1e3", 2, "whole number"},
                      Refusal{"RecordNowhere", L"record {folder}no\\such\\folder.wav --bytes 4000", 1, "cannot be opened"},
                      Refusal{"PlayrecNoOutput", L"playrec {good}", 2, "no output file"}),
    [](const ::testing::TestParamInfo<Refusal>& info) { return std::string(info.param.name); });

// ---------------------------------------------------------------------------
// Help and the device reports.

class StimctlHelp : public StimctlRun, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(StimctlHelp, PrintsItsUsageAndSucceeds)
{
    const std::string command = GetParam();
    const Outcome outcome = stimctl(std::wstring(command.begin(), command.end()) + L" --help");
    EXPECT_EQ(outcome.status, 0u);
    EXPECT_EQ(outcome.out.rfind("usage: stimctl " + (command.empty() ? "COMMAND" : command), 0), 0u) << outcome.out;
    EXPECT_EQ(outcome.err, "");
}

INSTANTIATE_TEST_SUITE_P(Commands, StimctlHelp,
                         ::testing::Values("", "devices", "caps", "play", "tone", "record", "playrec"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             return *info.param ? std::string(info.param) : std::string("stimctl");
                         });

TEST_F(StimctlRun, DevicesListsADefaultPlaybackAndACaptureDevice)
{
    const Outcome outcome = stimctl(L"devices");
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    int playback = 0, capture = 0;
    ASSERT_EQ(std::sscanf(outcome.out.c_str(), "playback devices: %d", &playback), 1) << outcome.out;
    const size_t captureAt = outcome.out.find("capture devices: ");
    ASSERT_NE(captureAt, std::string::npos);
    std::sscanf(outcome.out.c_str() + captureAt, "capture devices: %d", &capture);
    EXPECT_GE(playback, 1);
    EXPECT_GE(capture, 1);
    EXPECT_LT(outcome.out.find(" default "), captureAt) << "no default playback device";
    EXPECT_EQ(lineCount(outcome.out), static_cast<size_t>(playback + capture + 2));
}

TEST_F(StimctlRun, CapsReportsPlaybackAndTheCaptureFormat)
{
    const Outcome outcome = stimctl(L"caps");
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_NE(outcome.out.find("secondary rates 100..200000 Hz"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("capture default format: 44100 Hz, 2 channels, 16 bits"), std::string::npos);
    EXPECT_EQ(outcome.err, "");
}

// A box would wait for a click that never comes; the message is printed instead.
TEST_F(StimctlRun, LibraryMessagesArePrintedNotShown)
{
    const std::wstring tiny = folder + L"tiny.wav";
    writeWave(tiny, std::vector<char>{0, 16}, 1, 16);
    const Outcome outcome = Stimctl(L"play " + tiny).finish(10000);
    EXPECT_EQ(outcome.status, 0u);
    EXPECT_EQ(outcome.err, "stimctl: The set play buffer is too small\n");
}

// ---------------------------------------------------------------------------
// What plays is heard, once, looped, on one side or from a place.

TEST_F(StimctlRun, ToneIsHeardAtItsPitchLevelAndLengthWithProgress)
{
    Outcome outcome;
    const auto heard = hear(L"tone 1000 1.5", outcome);
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_NE(outcome.out.find("playing 1/1.5 s\n"), std::string::npos) << outcome.out;
    const PcmView all = view(heard, 2);
    const PcmView steady = slice(all, static_cast<size_t>(std::max(0LL, onsetFrame(all, -40.0))) + kRate / 2, kRate / 2);
    for (unsigned channel : {0u, 1u})
    {
        EXPECT_NEAR(dominantFrequency(steady, channel, kRate), 1000.0, 5.0);
        EXPECT_NEAR(rmsDbfs(steady, channel), -6.0, 3.0);
    }
    EXPECT_NEAR(loudSeconds(heard), 1.5, 0.1);
}

TEST_F(StimctlRun, FilePlaysOnceOrLoopsForTheGivenTime)
{
    Outcome once, looped;
    EXPECT_NEAR(loudSeconds(hear(L"play " + good, once)), 0.4, 0.05);
    EXPECT_EQ(once.status, 0u) << once.err;
    EXPECT_NEAR(loudSeconds(hear(L"play " + good + L" --loop 1.2", looped)), 1.2, 0.1);
    EXPECT_EQ(looped.status, 0u) << looped.err;
    EXPECT_NE(looped.out.find("playing 1/1.2 s"), std::string::npos) << looped.out;
}

TEST_F(StimctlRun, PanAndPlaceDecideTheSideItIsHeardOn)
{
    const auto balance = [&](const std::wstring& options) {
        Outcome outcome;
        const double leftOverRightDb = leftOverRight(hear(L"play " + good + L" " + options, outcome), 0.1, 0.2);
        EXPECT_EQ(outcome.status, 0u) << outcome.err;
        return leftOverRightDb;
    };
    EXPECT_GT(balance(L"--pan left"), 20.0);
    EXPECT_LT(balance(L"--pan right"), -20.0);
    EXPECT_NEAR(balance(L"--pan centre"), 0.0, 1.0);
    EXPECT_LT(balance(L"--3d 5,0,0"), -10.0);
}

TEST_F(StimctlRun, MovingSourceCrossesFromLeftToRight)
{
    const std::wstring second = folder + L"second.wav";
    writeWave(second, bytesOf(sineTone(500.0, -6.0, 1.0, kRate, ToneChannels::Mono)), 1, 16);
    Outcome outcome;
    const auto heard = hear(L"play " + second + L" --3d -5,0,1 --move 10,0,0", outcome);
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_GT(leftOverRight(heard, 0.0, 0.2), 6.0);
    EXPECT_LT(leftOverRight(heard, 0.8, 0.2), -6.0);
}

// ---------------------------------------------------------------------------
// Recording: a valid wave file of the asked length that holds what played meanwhile.

TEST_F(StimctlRun, RecordWhileATonePlaysWritesItToAValidWaveFile)
{
    const std::wstring out = folder + L"recorded.wav";
    DeleteFileW(out.c_str());
    Stimctl recording(L"record " + out + L" --seconds 2");
    ASSERT_TRUE(recording.awaitOutput("recording ")) << "the recording did not start";
    const Outcome tone = stimctl(L"tone 1000 0.5");
    const Outcome outcome = recording.finish();
    ASSERT_EQ(tone.status, 0u) << tone.err;
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_NE(outcome.out.find("recording 1/2 s\nrecording 2/2 s\n"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("recorded 2.000 s (352800 bytes)"), std::string::npos) << outcome.out;

    const WaveFile wave = readWave(out);
    ASSERT_TRUE(wave.valid) << "the header's sizes disagree with the file";
    EXPECT_TRUE(sameFormat(wave.format, pcmFormat(kRate, 2)));
    ASSERT_EQ(wave.samples.size() * 2, 352800u);
    const PcmView all = view(wave.samples, 2);
    const long long onset = onsetFrame(all, -40.0);
    ASSERT_GE(onset, 0) << "the tone is not in the recording";
    const PcmView steady = slice(all, static_cast<size_t>(onset) + kRate / 10, kRate / 4);
    EXPECT_NEAR(dominantFrequency(steady, 0, kRate), 1000.0, 5.0);
    EXPECT_NEAR(rmsDbfs(steady, 1), -6.0, 3.0);
}

TEST_F(StimctlRun, StreamedRecordOutlastsTheCaptureBufferAndHoldsWhatPlayed)
{
    const std::wstring out = folder + L"streamed.wav";
    DeleteFileW(out.c_str());
    Stimctl recording(L"record " + out + L" --stream --seconds 3.5");
    ASSERT_TRUE(recording.awaitOutput("recording ")) << "the recording did not start";
    const Outcome tone = stimctl(L"tone 1000 0.5");
    const Outcome outcome = recording.finish();
    ASSERT_EQ(tone.status, 0u) << tone.err;
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_NE(outcome.out.find("recording 1 s\nrecording 2 s\nrecording 3 s\n"), std::string::npos) << outcome.out;

    const WaveFile wave = readWave(out);
    ASSERT_TRUE(wave.valid) << "the header's sizes disagree with the file";
    EXPECT_TRUE(sameFormat(wave.format, pcmFormat(kRate, 2)));
    EXPECT_NEAR(wave.samples.size() / 2.0 / kRate, 3.5, 0.3); // the tail after the last position is in
    const PcmView all = view(wave.samples, 2);
    const long long onset = onsetFrame(all, -40.0);
    ASSERT_GE(onset, 0) << "the tone is not in the recording";
    EXPECT_NEAR(dominantFrequency(slice(all, static_cast<size_t>(onset) + kRate / 10, kRate / 4), 0, kRate), 1000.0, 5.0);
}

TEST_F(StimctlRun, RecordByBytesKeepsWholeFrames)
{
    const std::wstring out = folder + L"bytes.wav";
    const Outcome outcome = stimctl(L"record " + out + L" --bytes 10001");
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    const WaveFile wave = readWave(out);
    EXPECT_TRUE(wave.valid);
    EXPECT_EQ(wave.samples.size() * 2, 10000u);
}

TEST_F(StimctlRun, PlayrecMeasuresWhatItPlayed)
{
    const std::wstring out = folder + L"playrec.wav";
    const Outcome outcome = stimctl(L"playrec " + good + L" " + out + L" --pad 0.3");
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    double leftPeak = 0.0, rightPeak = 0.0, rms = 0.0, onsetMs = -1.0;
    const size_t left = outcome.out.find("level left:"), right = outcome.out.find("level right:"),
                 onset = outcome.out.find("onset:");
    ASSERT_TRUE(left != std::string::npos && right != std::string::npos && onset != std::string::npos) << outcome.out;
    std::sscanf(outcome.out.c_str() + left, "level left: peak %lf dBFS, rms %lf", &leftPeak, &rms);
    std::sscanf(outcome.out.c_str() + right, "level right: peak %lf", &rightPeak);
    std::sscanf(outcome.out.c_str() + onset, "onset: %lf ms", &onsetMs);
    EXPECT_NEAR(leftPeak, -6.0, 1.0);
    EXPECT_NEAR(rightPeak, -6.0, 1.0);
    EXPECT_NEAR(rms, -9.0, 1.0);
    EXPECT_GT(onsetMs, 0.0);
    EXPECT_LT(onsetMs, 300.0);
    std::printf("[ measure  ] playrec onset %.1f ms after the play call\n", onsetMs);
    const WaveFile wave = readWave(out);
    EXPECT_TRUE(wave.valid);
    EXPECT_GT(wave.samples.size() / 2, static_cast<size_t>(0.7 * kRate)) << "shorter than the sound and the pad";
}
