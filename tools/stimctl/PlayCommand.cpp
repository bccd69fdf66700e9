// stimctl play: plays a wave file once or looped through the library's record/play object,
// panned or as a (moving) 3D source through a sound buffer of the library, or streamed from
// the file through the library's two-second streaming buffer, for files of any length.

#include "Arguments.h"
#include "Commands.h"
#include "Console.h"
#include "SoundSession.h"
#include "WaveFileIo.h"

#include <atomic>
#include <thread>

namespace
{
const char kUsage[] =
    "usage: stimctl play FILE.wav [--loop SECONDS] [--pan left|right|centre]\n"
    "                             [--3d X,Y,Z [--move VX,VY,VZ]] [--stream]\n"
    "Plays FILE.wav (8-, 16-, 24- or 32-bit integer or 32-bit float PCM, mono or stereo;\n"
    "what the buffers cannot take is made 16-bit) once through the default device.\n"
    "  --loop SECONDS   repeat the sound for SECONDS (0.01 to 3600), then stop\n"
    "  --pan SIDE       left: heard on the left only; right: on the right only;\n"
    "                   centre (or center): on both sides\n"
    "  --3d X,Y,Z       play as a 3D source at X,Y,Z; the listener is at the origin facing +Z,\n"
    "                   +X on its right; stereo is mixed to mono first\n"
    "  --move VX,VY,VZ  with --3d: the source moves at this velocity (units per second)\n"
    "                   while the sound plays once\n"
    "  --stream         stream the file through a two-second buffer instead of loading it\n"
    "                   whole: for files of any length, 8- or 16-bit PCM (alone, without\n"
    "                   the options above)";

const double kMaxCoordinate = 10000.0;

struct PlayRequest
{
    std::wstring file;
    double loopSeconds = 0.0; // 0: once
    std::wstring pan;         // empty: as recorded
    bool threeD = false;
    bool stream = false;
    float position[3] = {0.0f, 0.0f, 0.0f};
    float velocity[3] = {0.0f, 0.0f, 0.0f};
};

bool readCombination(const Arguments& args, std::string& reason)
{
    if (args.has(L"--move") && !args.has(L"--3d"))
        reason = "--move needs --3d";
    else if (args.has(L"--3d") && (args.has(L"--pan") || args.has(L"--loop")))
        reason = "--3d cannot be combined with --pan or --loop";
    else if (args.has(L"--stream") && (args.has(L"--pan") || args.has(L"--loop") || args.has(L"--3d")))
        reason = "--stream cannot be combined with --loop, --pan or --3d";
    return reason.empty();
}

bool readRequest(const Arguments& args, PlayRequest& request, std::string& reason)
{
    if (args.positional.empty())
    {
        reason = "no wave file";
        return false;
    }
    request.file = args.positional[0];
    if (!readCombination(args, reason))
        return false;
    if (args.has(L"--loop") && !parseNumber(args.value(L"--loop"), "--loop", 0.01, 3600.0, request.loopSeconds, reason))
        return false;
    if (args.has(L"--pan") && !parseChoice(args.value(L"--pan"), "--pan", {L"left", L"right", L"centre", L"center"}, request.pan, reason))
        return false;
    request.threeD = args.has(L"--3d");
    request.stream = args.has(L"--stream");
    if (request.threeD && !parseTriple(args.value(L"--3d"), "--3d", kMaxCoordinate, request.position, reason))
        return false;
    if (args.has(L"--move") && !parseTriple(args.value(L"--move"), "--move", kMaxCoordinate, request.velocity, reason))
        return false;
    return true;
}

double playSeconds(const PlayRequest& request, const CSndDatatyx& data)
{
    if (request.loopSeconds > 0.0)
        return request.loopSeconds;
    return secondsOf(data.getDataSize(), data.getAudioWaveDataWfx());
}

// Plain and looped plays go through the record/play object, as a host would play.
int playThroughFacade(const PlayRequest& request, CSndDatatyx& data)
{
    CSndDataRecordPlaytyx player;
    player.setSndData(&data);
    const int started = request.loopSeconds > 0.0 ? player.playBeginLoop(NULL, 0, 0) : player.playBegin(NULL, 0, 0);
    if (!started)
        return failRun("play", "the sound could not be played");
    waitShowingProgress("playing", playSeconds(request, data));
    player.playStop();
    return kExitOk;
}

// "left" is heard on the left, so the right side is the one muted.
int pan(CDirectSnd3DBuffty& buffer, const std::wstring& side)
{
    if (side == L"left")
        return buffer.panMuteRight();
    if (side == L"right")
        return buffer.panMuteLeft();
    return buffer.panCenter();
}

int playPanned(const PlayRequest& request, CSndDatatyx& data, CDirectSndDevicety& device)
{
    CDirectSnd3DBuffty buffer;
    if (!buffer.setSndData2DSndBuf2ndStd(&data, &device))
        return failRun("play", "the sound buffer could not be made");
    if (!pan(buffer, request.pan))
        return failRun("play", "the sound could not be panned");
    const int started = request.loopSeconds > 0.0 ? buffer.sendAudioStimLoop() : buffer.sendAudioStim();
    if (!started)
        return failRun("play", "the sound could not be played");
    waitShowingProgress("playing", playSeconds(request, data));
    buffer.stopAudioStim();
    return kExitOk;
}

D3DVECTOR vectorOf(const float (&xyz)[3])
{
    D3DVECTOR v;
    v.x = xyz[0];
    v.y = xyz[1];
    v.z = xyz[2];
    return v;
}

int playIn3D(const PlayRequest& request, CSndDatatyx& data, CDirectSndDevicety& device)
{
    CDirectSnd3DBuffty buffer;
    if (!buffer.setSndData2DS3Dbuff2(&data, &device))
        return failRun("play", "the 3D sound buffer could not be made");
    buffer.m_ds3dBuffer.vPosition = vectorOf(request.position);
    buffer.m_ds3dBuffer.vVelocity = vectorOf(request.velocity);
    if (!buffer.sendAudioStimDS3D())
        return failRun("play", "the 3D sound could not be played");
    waitShowingProgress("playing", playSeconds(request, data));
    buffer.stopAudioStim();
    return kExitOk;
}

// The buffer is given the device by a load of a few bytes of silence, which the stream's
// own buffer then replaces.
bool attachDevice(CDirectSnd3DBuffty& buffer, CDirectSndDevicety& device, const tWAVEFORMATEX& wfx)
{
    const char silence[4] = {};
    CSndDatatyx none;
    return none.setNewSndData(silence, sizeof silence, wfx) && buffer.setSndData2DSndBuf2ndStd(&none, &device);
}

// A worker refills the buffer until the stream has stopped itself after the file's end.
int playStreamed(const std::wstring& file)
{
    std::string reason;
    CSndDataReadtyStream reader;
    unsigned long bytes = 0;
    tWAVEFORMATEX wfx = {};
    if (!openWaveStream(file, reader, bytes, wfx, reason))
        return failRun("play", reason);
    if (!isPlayableFormat(wfx, reason))
        return failRun("play", toUtf8(file) + ": " + reason);
    SoundSession session;
    if (!session.open(reason))
        return failRun("play", reason);
    say("streaming %s: %.3f s, %lu Hz, %u channels, %u bits", toUtf8(file).c_str(), secondsOf(bytes, wfx),
        (unsigned long)wfx.nSamplesPerSec, wfx.nChannels, wfx.wBitsPerSample);

    // The stream asks for the normal level, at which the primary format stays the card's.
    QuietMessage normalLevel(L"To change primary sound buffer formate, direct sound cooperative level at least priority");
    QuietMessage noPrimary(L"Primary sound buffer is not initialized");
    CDirectSnd3DBuffty buffer;
    buffer.m_pSndDataReadStream = &reader;
    if (!attachDevice(buffer, session.device(), wfx) || !buffer.initPlayStream(session.device().getSndDeviceHwnd(), wfx))
        return failRun("play", "the streaming buffer could not be made");
    std::atomic<bool> over(false);
    std::thread worker([&] {
        while (buffer.waitStreamEvt())
        {
        }
        over = true;
    });
    buffer.playDSnd2ndBufLargeFileStream();
    ProgressLine progress("streaming", secondsOf(bytes, wfx));
    const double start = secondsNow();
    while (!over)
    {
        Sleep(50);
        progress.show(secondsNow() - start);
    }
    worker.join();
    return kExitOk;
}
}

int runPlay(const Words& words)
{
    Arguments args;
    std::string reason;
    PlayRequest request;
    if (!splitArguments(words, {L"--loop", L"--pan", L"--3d", L"--move"}, 1, args, reason, {L"--stream"}))
        return failUsage("play", reason);
    if (args.help)
    {
        say("%s", kUsage);
        return kExitOk;
    }
    if (!readRequest(args, request, reason))
        return failUsage("play", reason);
    if (request.stream)
    {
        const int status = playStreamed(request.file);
        if (status == kExitOk)
            say("played");
        return status;
    }

    CSndDatatyx data;
    if (!readWaveFile(request.file, data, reason))
        return failRun("play", reason);
    const tWAVEFORMATEX wfx = data.getAudioWaveDataWfx();
    if (!isPlayableFormat(wfx, reason))
        return failRun("play", toUtf8(request.file) + ": " + reason);

    SoundSession session;
    if (!session.open(reason))
        return failRun("play", reason);
    say("playing %s: %.3f s, %lu Hz, %u channels, %u bits", toUtf8(request.file).c_str(),
        secondsOf(data.getDataSize(), wfx), (unsigned long)wfx.nSamplesPerSec, wfx.nChannels, wfx.wBitsPerSample);
    int status = kExitOk;
    if (request.threeD)
        status = playIn3D(request, data, session.device());
    else if (!request.pan.empty())
        status = playPanned(request, data, session.device());
    else
        status = playThroughFacade(request, data);
    if (status == kExitOk)
        say("played");
    return status;
}
