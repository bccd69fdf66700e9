// stimctl as a user runs it: a separate process whose exit status, output and files are
// checked, and whose sound is recorded back through the loopback. Its commands play through
// the library's buffers and record/play object, so these are also the loopback's checks of
// a sound played once, looped, panned, placed and moved in 3D. (A pan changed while a buffer
// plays is the platform's business once the library has set it, which the unit tests check.)

#include "ChildProcess.h"
#include "Loopback.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>

using namespace dsty_test;

namespace
{
Outcome stimctl(const std::wstring& arguments, DWORD timeoutMs = 60000)
{
    return ChildProcess(L"stimctl.exe", arguments).finish(timeoutMs);
}

size_t lineCount(const std::string& text)
{
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Written here without the library.
void writeWave(const std::wstring& path, const std::vector<int16_t>& samples, WORD channels, WORD bits)
{
    std::ofstream file(path.c_str(), std::ios::binary);
    file << waveHeader(samples.size() * 2, channels, bits);
    file.write(reinterpret_cast<const char*>(samples.data()), static_cast<std::streamsize>(samples.size() * 2));
}

// A sine of `hz` at 0.6 of full scale on both channels as 32-bit float, which the library
// makes 16-bit.
void writeFloatTone(const std::wstring& path, double hz, double seconds)
{
    const DWORD frames = static_cast<DWORD>(seconds * 44100), data = frames * 8, riff = 36 + data, fmtSize = 16;
    const DWORD rate = 44100, byteRate = rate * 8;
    const WORD tag = 3, channels = 2, align = 8, bits = 32;
    std::ofstream file(path.c_str(), std::ios::binary);
    auto put = [&](const void* p, size_t n) { file.write(static_cast<const char*>(p), static_cast<std::streamsize>(n)); };
    put("RIFF", 4), put(&riff, 4), put("WAVEfmt ", 8), put(&fmtSize, 4), put(&tag, 2), put(&channels, 2);
    put(&rate, 4), put(&byteRate, 4), put(&align, 2), put(&bits, 2), put("data", 4), put(&data, 4);
    for (DWORD i = 0; i < frames; i++)
    {
        const float sample = static_cast<float>(0.6 * std::sin(2.0 * 3.14159265358979 * hz * i / 44100));
        put(&sample, 4), put(&sample, 4);
    }
}

// Replaces every {name} in `text` by the scratch file of that name.
std::wstring withFiles(std::wstring text, const std::wstring& folder)
{
    for (size_t open; (open = text.find(L'{')) != std::wstring::npos;)
    {
        const size_t close = text.find(L'}', open);
        text.replace(open, close - open + 1, folder + text.substr(open + 1, close - open - 1) + L".wav");
    }
    return text;
}
}

class Stimctl : public Loopback
{
protected:
    void SetUp() override
    {
        Loopback::SetUp();
        wchar_t temp[MAX_PATH] = L"";
        GetTempPathW(MAX_PATH, temp);
        folder = std::wstring(temp) + L"stimctl-test\\";
        CreateDirectoryW(folder.c_str(), nullptr);
        writeWave(folder + L"tone.wav", sineTone(500.0, -6.0, 0.4, kRate, ToneChannels::Both), 2, 16);
    }

    // Runs stimctl while the loopback records; what was heard lands in `heard`.
    Outcome hear(const std::wstring& arguments)
    {
        startRecording();
        const Outcome outcome = stimctl(withFiles(arguments, folder));
        Sleep(200);
        finishRecording();
        return outcome;
    }

    // Seconds during which the loopback was louder than -30 dBFS on either side, in 10 ms windows.
    double loudSeconds() const
    {
        const std::vector<double> left = rmsSeries(view(heard, 2), 0, kRate / 100);
        const std::vector<double> right = rmsSeries(view(heard, 2), 1, kRate / 100);
        size_t loud = 0;
        for (size_t i = 0; i < left.size(); ++i)
            loud += std::max(left[i], right[i]) > -30.0;
        return 0.01 * static_cast<double>(loud);
    }

    std::wstring folder;
};

// Help, wrong arguments and failing files, all at once: none of them reaches the sound
// device. Help goes to standard output; a refusal is one line saying why with a non-zero
// status, and usage mistakes (status 2) point to --help.
TEST_F(Stimctl, HelpsAndRefusesWithOneLineAndItsStatus)
{
    writeWave(folder + L"three.wav", std::vector<int16_t>(300, 0), 3, 16);
    std::ofstream((folder + L"text.wav").c_str()) << "not a wave file at all\n";
    // {name} in the arguments stands for the scratch file name.wav. Text: how the help begins,
    // or what the refusal says.
    const struct { const wchar_t* arguments; DWORD status; const char* text; } runs[] = {
        {L"--help", 0, "usage: stimctl COMMAND"},       {L"devices --help", 0, "usage: stimctl devices"},
        {L"caps --help", 0, "usage: stimctl caps"},     {L"play --help", 0, "usage: stimctl play"},
        {L"tone --help", 0, "usage: stimctl tone"},     {L"record --help", 0, "usage: stimctl record"},
        {L"playrec --help", 0, "usage: stimctl playrec"}, {L"train --help", 0, "usage: stimctl train"},
        {L"", 2, "no command"},
        {L"frobnicate", 2, "unknown command \"frobnicate\""},
        {L"play", 2, "no wave file"},
        {L"play {missing}", 1, "cannot be opened"},
        {L"play {text}", 1, "Not a RIFF wave file"},
        {L"play {three}", 1, "3 channels cannot be played"},
        {L"play {tone} --loop soon", 2, "--loop must be a number"},
        {L"play {tone} --loop 0", 2, "--loop must be from"},
        {L"play {tone} --pan up", 2, "--pan must be left|right|centre"},
        {L"play {tone} --3d 1,2", 2, "three numbers"},
        {L"play {tone} --move 1,0,0", 2, "--move needs --3d"},
        {L"play {tone} --3d 1,0,0 --pan left", 2, "cannot be combined"},
        {L"play {tone} --stream --pan left", 2, "--stream cannot be combined"},
        {L"play {tone} --volume 3", 2, "unknown option --volume"},
        {L"play {tone} --loop", 2, "--loop needs a value"},
        {L"tone 1000", 2, "no length"},
        {L"tone 0x100 1", 2, "HZ must be a number"},
        {L"tone 1000 -1", 2, "SECONDS must be from"},
        {L"tone 1000 1 2", 2, "unexpected argument 2"},
        {L"record {r}", 2, "either --seconds or --bytes"},
        {L"record {r} --seconds 1 --bytes 400", 2, "either"},
        {L"record {r} --seconds 100", 2, "--seconds must be from"},
        {L"record {r} --bytes 1e3", 2, "whole number"},
        {L"record {no\\such\\folder} --bytes 4000", 1, "cannot be opened"},
        {L"playrec {tone}", 2, "no output file"},
    };
    std::vector<std::unique_ptr<ChildProcess>> started;
    for (const auto& run : runs)
        started.emplace_back(new ChildProcess(L"stimctl.exe", withFiles(run.arguments, folder)));
    for (size_t i = 0; i < started.size(); ++i)
    {
        const auto& run = runs[i];
        const Outcome outcome = started[i]->finish();
        SCOPED_TRACE(run.text);
        EXPECT_EQ(outcome.status, run.status);
        const bool help = run.status == 0;
        const size_t at = (help ? outcome.out : outcome.err).find(run.text);
        EXPECT_TRUE(at == 0 || (!help && at != std::string::npos)) << outcome.out << outcome.err;
        EXPECT_EQ(help ? outcome.err : outcome.out, "");
        EXPECT_TRUE(help || lineCount(outcome.err) == 1u) << outcome.err;
        EXPECT_EQ(outcome.err.find("--help") != std::string::npos, run.status == 2) << outcome.err;
    }
}

TEST_F(Stimctl, DeviceReports)
{
    const Outcome devices = stimctl(L"devices");
    ASSERT_EQ(devices.status, 0u) << devices.err;
    int playback = 0, capture = 0;
    const size_t captureAt = devices.out.find("capture devices: ");
    ASSERT_EQ(std::sscanf(devices.out.c_str(), "playback devices: %d", &playback), 1) << devices.out;
    ASSERT_NE(captureAt, std::string::npos) << devices.out;
    std::sscanf(devices.out.c_str() + captureAt, "capture devices: %d", &capture);
    EXPECT_LT(devices.out.find(" default "), captureAt) << "no default playback device";
    EXPECT_GE(capture, 1);
    EXPECT_EQ(lineCount(devices.out), static_cast<size_t>(playback + capture + 2)) << "a line for each device";

    const Outcome caps = stimctl(L"caps");
    ASSERT_EQ(caps.status, 0u) << caps.err;
    EXPECT_NE(caps.out.find("secondary rates 100..200000 Hz"), std::string::npos) << caps.out;
    EXPECT_NE(caps.out.find("capture default format: 44100 Hz, 2 channels, 16 bits"), std::string::npos);
}

// A box would wait for a click that never comes; the message is printed instead.
TEST_F(Stimctl, LibraryMessagesArePrintedNotShown)
{
    writeWave(folder + L"tiny.wav", {4096}, 1, 16);
    const Outcome outcome = stimctl(withFiles(L"play {tiny}", folder), 10000);
    EXPECT_EQ(outcome.status, 0u);
    EXPECT_EQ(outcome.err, "stimctl: The set play buffer is too small\n");
}

// What is heard: for how long, on which side, and for the tone at which pitch and level.
TEST_F(Stimctl, PlaysAsAsked)
{
    writeSteppedTone(folder + L"steps.wav");
    writeFloatTone(folder + L"float.wav", 1000.0, 1.2);
    // Output: what standard output holds. At least, at most: left minus right from 0.1 s after
    // the first sound, dB.
    const struct { const wchar_t* arguments; const char* output; double loudSeconds, atLeast, atMost; } plays[] = {
        {L"tone 1000 1.5", "playing 1/1.5 s\n", 1.5, -1.0, 1.0},
        {L"play {tone}", "played\n", 0.4, -1.0, 1.0},
        {L"play {tone} --loop 1.2", "playing 1/1.2 s", 1.2, -1.0, 1.0},
        {L"play {tone} --pan left", "played\n", 0.4, 20.0, 300.0},
        {L"play {tone} --pan right", "played\n", 0.4, -300.0, -20.0},
        {L"play {tone} --pan centre", "played\n", 0.4, -1.0, 1.0},
        {L"play {tone} --3d 5,0,0", "played\n", 0.4, -300.0, -10.0},
        {L"play {float}", "played\n", 1.2, -1.0, 1.0}, // 32-bit float, made 16-bit
        {L"play {steps} --stream", "streaming 3/3.5 s\nplayed\n", 3.5, -1.0, 1.0},
    };
    for (const auto& play : plays)
    {
        const Outcome outcome = hear(play.arguments);
        const std::wstring arguments(play.arguments);
        SCOPED_TRACE(std::string(arguments.begin(), arguments.end()));
        ASSERT_EQ(outcome.status, 0u) << outcome.err;
        EXPECT_NE(outcome.out.find(play.output), std::string::npos) << outcome.out;
        EXPECT_NEAR(loudSeconds(), play.loudSeconds, 0.1);
        const double balance = leftMinusRightDb(heardAt(0.1, 0.2));
        EXPECT_GE(balance, play.atLeast);
        EXPECT_LE(balance, play.atMost);
        if (arguments.rfind(L"tone", 0) == 0 || arguments.find(L"float") != std::wstring::npos)
            for (unsigned channel : {0u, 1u})
            {
                EXPECT_NEAR(toneFrequency(heardAt(0.5, 0.5), channel), 1000.0, 5.0);
                EXPECT_NEAR(rmsDbfs(heardAt(0.5, 0.5), channel), -6.0, 3.0);
            }
        if (arguments.find(L"--stream") != std::wstring::npos)
            expectSteps();
    }
}

// Mono data from (-5,0,1) at 10 units a second for one second: far left, past the front
// halfway, far right at last.
TEST_F(Stimctl, MovingSourceCrossesFromLeftToRight)
{
    writeWave(folder + L"second.wav", sineTone(500.0, -6.0, 1.0, kRate, ToneChannels::Mono), 1, 16);
    const Outcome outcome = hear(L"play {second} --3d -5,0,1 --move 10,0,0");
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    EXPECT_GT(leftMinusRightDb(heardAt(0.0, 0.2)), 6.0) << "not on the left at first";
    EXPECT_NEAR(leftMinusRightDb(heardAt(0.4, 0.2)), 0.0, 3.0) << "not in front halfway through";
    EXPECT_LT(leftMinusRightDb(heardAt(0.8, 0.2)), -6.0) << "not on the right at last";
}

// Recording while a tone plays, by time into the capture buffer or streamed past its two
// seconds: a valid wave file of the asked length that holds the tone, its tail after the last
// notification included.
TEST_F(Stimctl, RecordWhileATonePlaysWritesItToAValidWaveFile)
{
    // Within: how far the length may be from the asked one, seconds.
    const struct { const wchar_t* options; const char *progress, *summary; double seconds, within; } records[] = {
        {L" --seconds 2", "recording 1/2 s\nrecording 2/2 s\n", "recorded 2.000 s (352800 bytes)", 2.0, 0.0},
        {L" --stream --seconds 3.5", "recording 1 s\nrecording 2 s\nrecording 3 s\n", "", 3.5, 0.3},
    };
    for (const auto& record : records)
    {
        SCOPED_TRACE(record.seconds);
        const std::wstring out = folder + L"recorded.wav";
        DeleteFileW(out.c_str());
        ChildProcess recording(L"stimctl.exe", L"record " + out + record.options);
        ASSERT_TRUE(recording.awaitOutput("recording ")) << "the recording did not start";
        const Outcome tone = stimctl(L"tone 1000 0.5");
        const Outcome outcome = recording.finish();
        ASSERT_EQ(tone.status, 0u) << tone.err;
        ASSERT_EQ(outcome.status, 0u) << outcome.err;
        EXPECT_NE(outcome.out.find(record.progress), std::string::npos) << outcome.out;
        EXPECT_NE(outcome.out.find(record.summary), std::string::npos) << outcome.out;
        heard = readWave(out);
        ASSERT_FALSE(heard.empty()) << "no 44.1 kHz 16-bit stereo file whose header agrees with its size";
        EXPECT_NEAR(heard.size() / 2.0 / kRate, record.seconds, record.within);
        const PcmView steady = heardAt(0.1, 0.25);
        EXPECT_NEAR(dominantFrequency(steady, 0, kRate), 1000.0, 5.0);
        EXPECT_NEAR(rmsDbfs(steady, 1), -6.0, 3.0);
    }
}

// A train at the shortest lead: the lead in effect is the platform's write-ahead and the lead
// asked for, every burst is heard, none is reported late.
TEST_F(Stimctl, TrainAtTheShortestLeadIsHeardAndOnTime)
{
    writeWave(folder + L"burst.wav", sineTone(1000.0, -6.0, 0.1, kRate, ToneChannels::Both), 2, 16);
    const Outcome outcome = hear(L"train {burst} --every 300 --count 4 --lead 10");
    ASSERT_EQ(outcome.status, 0u) << outcome.out << outcome.err;
    const size_t at = outcome.out.find("write-ahead ");
    ASSERT_NE(at, std::string::npos) << outcome.out;
    unsigned long ahead = 0, lead = 0;
    ASSERT_EQ(std::sscanf(outcome.out.c_str() + at, "write-ahead %lu frames (%*f ms), lead in effect %lu", &ahead,
                          &lead), 2) << outcome.out;
    EXPECT_EQ(lead, ahead + kRate / 100);
    EXPECT_EQ(outcome.out.find("late"), std::string::npos) << outcome.out;
    // Runs of loud 10 ms windows: one per burst, each over its whole length.
    std::vector<int> runs;
    bool loud = false;
    for (double dbfs : rmsSeries(view(heard, 2), 0, kRate / 100))
    {
        if (dbfs > -30.0 && !loud)
            runs.push_back(0);
        loud = dbfs > -30.0;
        if (loud)
            runs.back()++;
    }
    EXPECT_EQ(runs.size(), 4u);
    for (int windows : runs)
        EXPECT_GE(windows, 10) << "a burst of 100 ms was cut";
}

// Recording by size keeps whole frames; playrec reports what it heard and keeps it.
TEST_F(Stimctl, RecordBySizeAndPlayrec)
{
    const Outcome bytes = stimctl(withFiles(L"record {bytes} --bytes 10001", folder));
    ASSERT_EQ(bytes.status, 0u) << bytes.err;
    EXPECT_EQ(readWave(folder + L"bytes.wav").size() * 2, 10000u);

    const Outcome outcome = stimctl(withFiles(L"playrec {tone} {playrec} --pad 0.3", folder));
    ASSERT_EQ(outcome.status, 0u) << outcome.err;
    // The figure after the first `label` in the report; not a number when it is missing.
    const auto figure = [&](const char* label) {
        const size_t at = outcome.out.find(label);
        return at == std::string::npos ? NAN : std::atof(outcome.out.c_str() + at + std::strlen(label));
    };
    EXPECT_NEAR(figure("level left: peak "), -6.0, 1.0) << outcome.out;
    EXPECT_NEAR(figure("level right: peak "), -6.0, 1.0);
    EXPECT_NEAR(figure("dBFS, rms "), -9.0, 1.0);
    EXPECT_NEAR(figure("onset: "), 150.0, 150.0) << "ms after the start of the recording";
    EXPECT_GT(readWave(folder + L"playrec.wav").size() / 2, static_cast<size_t>(0.7 * kRate))
        << "shorter than the sound and the pad";
}
