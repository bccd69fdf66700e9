#pragma once
// What the loopback tests share: a plain window for the cooperative level, the default device
// opened for it, the message boxes the library would have shown, and a recorder that hears
// what plays, with the measures taken on what it heard.

#include "DirectSndty.h"
#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Texts of the message boxes shown since the test began; each was answered OK.
std::vector<std::wstring>& shownMessages();

// The canonical 44-byte header of a 44100 Hz PCM wave file holding `size` bytes, written here
// without the library.
std::string waveHeader(size_t size, WORD channels, WORD bits);
// The samples of a 16-bit stereo wave file; none unless its header is the canonical one for
// its size, or that with a JUNK chunk keeping room for an RF64 header.
std::vector<int16_t> readWave(const std::wstring& path);

// Second k of the stepped tone carries 400 x (k + 1) Hz, so which part of a file is heard can
// be told from its frequency.
double stepHz(int second);
// Writes 3.5 s of the stepped tone as a 44100 Hz 16-bit stereo wave file.
void writeSteppedTone(const std::wstring& path);

class Loopback : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Opens the default device for the window at the priority level.
    void openDevice();
    // Puts interleaved 16-bit PCM at 44100 Hz into `data`.
    void load(const std::vector<int16_t>& pcm, unsigned channels);
    // Puts a -6 dBFS sine of `hz` into `data`.
    void loadTone(double hz, double seconds, dsty_test::ToneChannels channels);

    // Starts hearing; what is played after this returns is in the recording.
    void startRecording();
    // Stops, and keeps what was heard in `heard` (16-bit stereo at 44100 Hz).
    void finishRecording();
    // `seconds` of what was heard, from `from` seconds after the first sound; the test fails
    // when nothing was heard or the recording ends before.
    dsty_test::PcmView heardAt(double from, double seconds);

    // The tone's frequency as the median over 50 ms pieces: a dropout of a few milliseconds
    // (the sound server short of processor time) spoils one piece, not the measurement.
    // Expects the stepped tone, second by second from the first sound.
    void expectSteps();
    static double toneFrequency(dsty_test::PcmView pcm, unsigned channel);
    static double leftMinusRightDb(dsty_test::PcmView pcm);

    static constexpr unsigned kRate = 44100;
    static constexpr double kSilentDbfs = -60.0;

    HWND window = nullptr;
    CDirectSndDevicety device;
    CSndDatatyx data;
    CDirectSnd3DBuffty stim;  // goes before the device that made it
    std::vector<int16_t> heard;

private:
    dsty_test::LoopbackRecorder m_recorder;
};
