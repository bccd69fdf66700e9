#include "Recording.h"
#include "WaveFileIo.h"

namespace
{
const DWORD kCollectEveryMs = 100;
// How long past the expected end a recording may take before the capture counts as stalled.
const double kStallSeconds = 2.0;
const double kFirstSoundSeconds = 3.0;
const DWORD kFirstSoundPollMs = 10;
}

bool startRecording(CSndDataRecordPlaytyx& recorder, const CSndDatatyx& data, std::string& reason)
{
    if (!recorder.recordBegin(NULL, 0))
    {
        reason = "the capture device could not start recording";
        return false;
    }
    // Until the capture delivers, each collection finds nothing new, and says so.
    QuietMessage nothingYet(L"No data for copying");
    const double deadline = secondsNow() + kFirstSoundSeconds;
    while (data.getDataSize() == 0)
    {
        if (secondsNow() > deadline)
        {
            recorder.recordStop();
            reason = "the capture device delivered no sound";
            return false;
        }
        Sleep(kFirstSoundPollMs);
        recorder.recordUpdate();
    }
    return true;
}

bool recordUntil(CSndDataRecordPlaytyx& recorder, const CSndDatatyx& data, unsigned long bytes,
                 ProgressLine& progress, std::string& reason)
{
    const tWAVEFORMATEX wfx = data.getAudioWaveDataWfx();
    const unsigned long held = data.getDataSize();
    const double deadline = secondsNow() + secondsOf(bytes > held ? bytes - held : 0, wfx) + kStallSeconds;
    while (data.getDataSize() < bytes)
    {
        if (secondsNow() > deadline)
        {
            recorder.recordStop();
            reason = "the capture device stopped delivering sound";
            return false;
        }
        Sleep(kCollectEveryMs);
        recorder.recordUpdate();
        progress.show(secondsOf(data.getDataSize(), wfx));
    }
    // The stop collects once more, right after the last collection: often nothing is new.
    QuietMessage nothingNew(L"No data for copying");
    recorder.recordStop();
    return true;
}

void recordFor(CSndDataRecordPlaytyx& recorder, double seconds)
{
    const double end = secondsNow() + seconds;
    while (secondsNow() < end)
    {
        Sleep(kCollectEveryMs);
        recorder.recordUpdate();
    }
}

unsigned long wholeFrames(double bytes, const tWAVEFORMATEX& wfx)
{
    const unsigned long whole = static_cast<unsigned long>(bytes);
    return wfx.nBlockAlign == 0 ? whole : whole - whole % wfx.nBlockAlign;
}
