// Each step loads a 1 kHz tone at -6 dBFS into a sound-data container, plays it through a
// CDirectSnd3DBuffty while a loopback recording runs, and prints what was heard on each
// channel. A level below -150 dBFS is printed as silence.

#include "StimulusDemo.h"
#include "DemoRecorder.h"
#include "DirectSndty.h"
#include <cmath>
#include <cstdio>
#include <vector>

namespace
{
// The recording starts before the stimulus and runs this long past the given play time.
const DWORD kTrailMs = 400;

int loadTone(CSndDatatyx& data, double seconds, WORD channels)
{
    const double peak = 32767.0 * std::pow(10.0, -6.0 / 20.0);
    size_t frames = static_cast<size_t>(seconds * kDemoRate);
    std::vector<short> pcm(frames * channels);
    for (size_t i = 0; i < pcm.size(); i++)
        pcm[i] = static_cast<short>(peak * std::sin(2.0 * 3.14159265358979 * 1000.0 * (i / channels) / kDemoRate));
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, channels, kDemoRate, kDemoRate * 2u * channels,
                         static_cast<WORD>(2 * channels), 16, 0};
    return data.setNewSndData(reinterpret_cast<const char*>(pcm.data()),
                              static_cast<unsigned long>(pcm.size() * sizeof(short)), wfx);
}

void printLevel(double dbfs)
{
    if (dbfs < -150.0)
        std::printf("silent");
    else
        std::printf("%.1f dBFS", dbfs);
}

// "left L, right R" over a window after the onset.
void printWindow(const char* label, const DemoRecording& heard, double fromSeconds, double seconds)
{
    std::printf("    %s: left ", label);
    printLevel(heard.levelDbfs(0, fromSeconds, seconds));
    std::printf(", right ");
    printLevel(heard.levelDbfs(1, fromSeconds, seconds));
    std::printf("\n");
}

void printTail(const char* label, const DemoRecording& heard, double seconds)
{
    std::printf("    %s: left ", label);
    printLevel(heard.tailDbfs(0, seconds));
    std::printf(", right ");
    printLevel(heard.tailDbfs(1, seconds));
    std::printf("\n");
}

// Records while `play` starts the stimulus and for `ms` afterwards.
template <class Play> bool record(DemoRecording& heard, DWORD ms, Play play)
{
    DemoRecorder recorder;
    if (!recorder.start(ms / 1000.0 + 2.0))
    {
        std::printf("    the loopback capture could not be started\n");
        return false;
    }
    play();
    Sleep(ms);
    heard = recorder.stop();
    if (!heard.heardAnything())
        std::printf("    nothing was heard\n");
    return heard.heardAnything();
}

void playOnce(CDirectSndDevicety& device, CSndDatatyx& data, CDirectSnd3DBuffty& buffer)
{
    std::printf("stimulus once (0.5 s):\n");
    if (!loadTone(data, 0.5, 2) || !buffer.setSndData2DSndBuf2ndStd(&data, &device))
        return;
    DemoRecording heard;
    if (record(heard, 500 + kTrailMs, [&] { std::printf("    sendAudioStim: %d\n", buffer.sendAudioStim()); }))
        printWindow("heard", heard, 0.1, 0.3);
}

void playLooped(CDirectSndDevicety& device, CSndDatatyx& data, CDirectSnd3DBuffty& buffer)
{
    std::printf("stimulus looped (0.3 s tone, stopped after 1 s):\n");
    if (!loadTone(data, 0.3, 2) || !buffer.setSndData2DSndBuf2ndStd(&data, &device))
        return;
    DemoRecording heard;
    bool ok = record(heard, kTrailMs, [&] {
        std::printf("    sendAudioStimLoop: %d\n", buffer.sendAudioStimLoop());
        Sleep(1000);
        std::printf("    stopAudioStim: %d\n", buffer.stopAudioStim());
    });
    if (!ok)
        return;
    printWindow("0.6 s in, twice its length", heard, 0.6, 0.3);
    printTail("after the stop", heard, 0.2);
}

void playMuted(CDirectSndDevicety& device, CSndDatatyx& data, CDirectSnd3DBuffty& buffer, bool muteLeft)
{
    std::printf("stimulus %s-muted (0.5 s):\n", muteLeft ? "left" : "right");
    if (!loadTone(data, 0.5, 2) || !buffer.setSndData2DSndBuf2ndStd(&data, &device))
        return;
    int panned = muteLeft ? buffer.panMuteLeft() : buffer.panMuteRight();
    std::printf("    %s: %d\n", muteLeft ? "panMuteLeft" : "panMuteRight", panned);
    DemoRecording heard;
    if (record(heard, 500 + kTrailMs, [&] { buffer.sendAudioStim(); }))
        printWindow("heard", heard, 0.1, 0.3);
}

void playMoving3D(CDirectSndDevicety& device, CSndDatatyx& data, CDirectSnd3DBuffty& buffer)
{
    std::printf("3D source moving from (-5,0,1) to (5,0,1) in 1 s:\n");
    if (!loadTone(data, 1.0, 1) || !buffer.setSndData2DS3Dbuff2(&data, &device))
        return;
    buffer.m_ds3dBuffer.vPosition = D3DVECTOR{-5.0f, 0.0f, 1.0f};
    buffer.m_ds3dBuffer.vVelocity = D3DVECTOR{10.0f, 0.0f, 0.0f};
    DemoRecording heard;
    if (!record(heard, 1000 + kTrailMs, [&] { std::printf("    sendAudioStimDS3D: %d\n", buffer.sendAudioStimDS3D()); }))
        return;
    printWindow("first 0.3 s", heard, 0.0, 0.3);
    printWindow("middle 0.2 s", heard, 0.4, 0.2);
    printWindow("last 0.3 s", heard, 0.7, 0.3);
}
}

void playStimuli(CDirectSndDevicety& device)
{
    CSndDatatyx data;
    CDirectSnd3DBuffty buffer;
    playOnce(device, data, buffer);
    playLooped(device, data, buffer);
    playMuted(device, data, buffer, true);
    playMuted(device, data, buffer, false);
    playMoving3D(device, data, buffer);
    buffer.release3DBuffers();
}
