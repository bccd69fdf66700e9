#pragma once
// What the sound-buffer tests share: a buffer object with its protected parts reachable,
// a tone loaded into a sound-data container, and a loopback recording of what plays.

#include "DeviceHarness.h"
#include "LoopbackRecorder.h"
#include "SignalAnalysis.h"
#include "ToneGenerator.h"

#include <cstdint>
#include <vector>

class TestBuffer : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::copySndData2DSndBuf2nd;
    using CDirectSnd2DBuff::m_pDSBuffer;
    using CDirectSndBasicty::m_hr;
};

class BufferLoopback : public DeviceTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Puts a sine of `hz` into `data`: 16-bit PCM at `rate`, `channels` as the generator lays them out.
    void loadTone(double hz, double dbfs, double seconds, unsigned rate = 44100,
                  dsty_test::ToneChannels channels = dsty_test::ToneChannels::Both);

    // Starts the loopback capture; the stimulus is started after this returns.
    void startRecording();
    // Stops it and hands back interleaved 16-bit stereo frames at 44100 Hz.
    std::vector<int16_t> finishRecording();
    // Records for `ms` after `play` has been called once capture runs.
    template <class Play> std::vector<int16_t> recordWhile(DWORD ms, Play play)
    {
        startRecording();
        play();
        Sleep(ms);
        return finishRecording();
    }

    // First frame at which the stimulus is heard; fails the test when nothing is.
    static size_t onset(dsty_test::PcmView recorded);
    // `seconds` of the recording starting `fromSeconds` after the stimulus was first heard.
    static dsty_test::PcmView afterOnset(dsty_test::PcmView recorded, double fromSeconds, double seconds);
    // The last `seconds` of the recording.
    static dsty_test::PcmView tail(dsty_test::PcmView recorded, double seconds);
    static double leftMinusRightDb(dsty_test::PcmView pcm);
    // The tone's frequency as the median over 50 ms pieces: a dropout of a few milliseconds
    // (the sound server short of processor time) spoils one piece, not the measurement.
    static double toneFrequency(dsty_test::PcmView pcm, unsigned channel);

    static constexpr unsigned kRate = 44100;  // the sink's and the recorder's rate
    static constexpr double kSilentDbfs = -60.0;

    CSndDatatyx data;
    TestBuffer stim;

private:
    dsty_test::LoopbackRecorder m_recorder;
};
