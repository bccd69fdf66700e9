// Long runs of what a host does most, on the real DirectSound: 2D plays stopped at once, loads
// and releases, recordings through the facade, streamed plays and recordings, moving 3D plays
// stopped early. For each kind it prints the process's handle count and private bytes after a
// warm-up (the first 5% of the cycles) and at the end, and whether they stayed flat; then the
// same for plain DirectSound captures, as the platform's own share of the recordings' figures.
// Usage: dsty_soak [SCALE]   (default 1: 10,000 / 1,000 / 500 / 200 / 100 cycles; 0.05 for a quick run)

#include "DirectSndty.h"
#include "SndDataReadtyStream.h"
#include "SndWaveWriteStreamty.h"

#include <psapi.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace
{
const unsigned kRate = 44100;

// Memory is reserved in 64 KiB granules: the heap grows and shrinks, and DirectSound's mixer and
// the sound server's client take and give back their period buffers, in steps up to that size.
// Four such steps either way is noise (kinds that keep nothing moved by 0 to 72 KiB here). A leak
// of one small object per cycle still shows over the long runs: each kind prints what the
// tolerance comes to per cycle.
const SIZE_T kPrivateTolerance = 4 * 64 * 1024;

std::atomic<int> g_messages{0};
std::mutex g_textsLock;
std::set<std::wstring> g_textsSeen;

// Each text is printed the first time it comes, so a message of every cycle does not flood the run.
int CALLBACK printMessage(LPCTSTR lpszText, UINT /*nType*/, UINT /*nIDHelp*/)
{
    g_messages++;
    std::lock_guard<std::mutex> hold(g_textsLock);
    if (g_textsSeen.insert(lpszText).second)
        std::printf("  [library message, first of its text] %ls\n", lpszText);
    return IDOK;
}

struct Usage
{
    DWORD handles;
    SIZE_T privateBytes;
};

// Wine answers GetProcessHandleCount with 0; there the process's handles are counted by asking
// for each handle value in turn. Wine hands out the lowest free values (multiples of 4), so a
// long run of values that are not handles means the table has ended.
DWORD handleCount()
{
    DWORD count = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &count) && count != 0)
        return count;
    DWORD flags = 0;
    for (ULONG_PTR value = 4, misses = 0; misses < 4096; value += 4)
    {
        const bool isHandle = GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != 0;
        count += isHandle ? 1 : 0;
        misses = isHandle ? 0 : misses + 1;
    }
    return count;
}

// Read after a short pause, so that threads that are ending and the mixer's deferred frees
// have settled on both readings alike.
Usage usageNow()
{
    Sleep(300);
    PROCESS_MEMORY_COUNTERS_EX counters = {};
    counters.cb = sizeof counters;
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters), sizeof counters);
    // Wine leaves PrivateUsage at 0 and gives the process's anonymous memory as PagefileUsage,
    // which on Windows is the same commit charge.
    return Usage{handleCount(), counters.PrivateUsage != 0 ? counters.PrivateUsage : counters.PagefileUsage};
}

double nowSeconds()
{
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart) / static_cast<double>(frequency.QuadPart);
}

// Prints both readings and says whether they are flat.
bool printUsage(const Usage& warm, const Usage& end, int measured)
{
    const long long grown = static_cast<long long>(end.privateBytes) - static_cast<long long>(warm.privateBytes);
    const bool handlesFlat = end.handles == warm.handles;
    const bool bytesFlat = std::llabs(grown) <= static_cast<long long>(kPrivateTolerance);
    std::printf("  handles:       after warm-up %lu, at end %lu, change %+ld: %s\n", warm.handles, end.handles,
                static_cast<long>(end.handles) - static_cast<long>(warm.handles), handlesFlat ? "flat" : "GROWN");
    std::printf("  private bytes: after warm-up %.0f KiB, at end %.0f KiB, change %+.0f KiB (%+.0f bytes a cycle;"
                " tolerance %.0f KiB, %.0f bytes a cycle): %s\n",
                warm.privateBytes / 1024.0, end.privateBytes / 1024.0, grown / 1024.0,
                static_cast<double>(grown) / measured, kPrivateTolerance / 1024.0,
                static_cast<double>(kPrivateTolerance) / measured, bytesFlat ? "flat" : "GROWN");
    return handlesFlat && bytesFlat;
}

// Runs the cycles of one kind; a cycle says whether the library did what was asked.
bool soak(const char* kind, int cycles, const std::function<bool()>& cycle)
{
    const int warmUp = cycles / 20 > 0 ? cycles / 20 : 1;
    const int messagesBefore = g_messages;
    const double start = nowSeconds();
    int failed = 0;
    for (int i = 0; i < warmUp; i++)
        failed += cycle() ? 0 : 1;
    const Usage warm = usageNow();
    for (int i = warmUp; i < cycles; i++)
        failed += cycle() ? 0 : 1;
    const Usage end = usageNow();
    std::printf("%s: %d cycles (warm-up %d), %d failed, %d library messages, %.1f s\n", kind, cycles, warmUp, failed,
                g_messages - messagesBefore, nowSeconds() - start);
    return printUsage(warm, end, cycles > warmUp ? cycles - warmUp : 1);
}

// Wine 8's DirectSound capture keeps the memory of a started capture buffer after its device
// object is released. This cycle on plain DirectSound shows how much, so that the library's
// recordings, which release the device object at every stop, can be read against it.
bool plainCaptureOnce(DWORD bytes)
{
    WAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
    DSCBUFFERDESC desc = {sizeof desc, 0, bytes, 0, &wfx, 0, NULL};
    IDirectSoundCapture8* capture = NULL;
    IDirectSoundCaptureBuffer* buffer = NULL;
    if (FAILED(DirectSoundCaptureCreate8(NULL, &capture, NULL)))
        return false;
    const bool made = SUCCEEDED(capture->CreateCaptureBuffer(&desc, &buffer, NULL));
    if (made)
    {
        buffer->Start(0);
        Sleep(40);
        buffer->Stop();
        buffer->Release();
    }
    capture->Release();
    return made;
}

// A mono 1 kHz tone at -12 dBFS, 16-bit (3D buffers take mono only).
bool loadTone(CSndDatatyx& data, unsigned frames)
{
    std::vector<short> pcm(frames);
    for (unsigned i = 0; i < frames; i++)
        pcm[i] = static_cast<short>(8200.0 * std::sin(2.0 * 3.14159265358979 * 1000.0 * i / kRate));
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 1, kRate, 2 * kRate, 2, 16, 0};
    return data.setNewSndData(reinterpret_cast<const char*>(pcm.data()),
                              static_cast<unsigned long>(pcm.size() * sizeof(short)), wfx) != 0;
}

bool writeToneFile(const std::wstring& path, unsigned frames)
{
    CSndDatatyx tone;
    CSndWaveWriteStreamty writer;
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 1, kRate, 2 * kRate, 2, 16, 0};
    return loadTone(tone, frames) && writer.Open(CString(path.c_str()), &wfx) &&
           writer.Write(tone.getDataSize(), reinterpret_cast<unsigned char*>(tone.getDataPointer()), NULL) &&
           writer.Close();
}

DWORD WINAPI refillUntilOver(LPVOID pParam)
{
    auto* stream = static_cast<CDirectSnd3DBuffty*>(pParam);
    while (stream->waitStreamEvt())
    {
    }
    return 0;
}

struct RecordWorker
{
    CDSndCapturetyStream* capture;
    std::atomic<bool> recording;
};

DWORD WINAPI writeUntilStopped(LPVOID pParam)
{
    auto* worker = static_cast<RecordWorker*>(pParam);
    while (worker->recording)
        worker->capture->waitRecordStreamEvt();
    return 0;
}

// The streamed player as a host drives it: a fresh buffer placed on the device by a load of a
// few bytes of silence, the reader opened on the file, a refill worker, play, stop, join.
bool streamPlayOnce(CDirectSndDevicety& device, HWND window, const std::wstring& path)
{
    CDirectSnd3DBuffty stream;
    CSndDataReadtyStream reader;
    unsigned long bytes = 0;
    tWAVEFORMATEX wfx = {};
    const char silence[4] = {};
    CSndDatatyx none;
    tWAVEFORMATEX mono = {WAVE_FORMAT_PCM, 1, kRate, 2 * kRate, 2, 16, 0};
    none.setNewSndData(silence, sizeof silence, mono);
    if (!stream.setSndData2DSndBuf2ndStd(&none, &device) || !reader.initStream2Read(CString(path.c_str()), &bytes, &wfx))
        return false;
    stream.m_pSndDataReadStream = &reader;
    if (!stream.initPlayStream(window, wfx))
        return false;
    HANDLE worker = CreateThread(NULL, 0, refillUntilOver, &stream, 0, NULL);
    const bool played = stream.playDSnd2ndBufLargeFileStream() != 0;
    Sleep(30);
    stream.stopDSnd2ndBufLargeFileStream();
    WaitForSingleObject(worker, INFINITE);
    CloseHandle(worker);
    return played;
}

// The streamed recorder: a fresh capture object writing through the host's writer, its worker,
// a few tens of milliseconds of capture, stop (which finishes the file), join.
bool streamRecordOnce(const std::wstring& path)
{
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, 4 * kRate, 4, 16, 0};
    CSndWaveWriteStreamty writer;
    CDSndCapturetyStream capture;
    capture.m_pSndWaveWriteStream = &writer;
    if (!writer.Open(CString(path.c_str()), &wfx) || !capture.initCapture2stream(wfx, 2 * wfx.nAvgBytesPerSec) ||
        !capture.startCaptureStream())
        return false;
    RecordWorker work = {&capture, {true}};
    HANDLE worker = CreateThread(NULL, 0, writeUntilStopped, &work, 0, NULL);
    Sleep(30);
    work.recording = false;
    capture.stopCaptureStream();
    WaitForSingleObject(worker, INFINITE);
    CloseHandle(worker);
    return !writer.IsOpen();
}

// At least two cycles, so that one is measured after the warm-up.
int scaled(double scale, int full)
{
    const int count = static_cast<int>(std::lround(full * scale));
    return count > 2 ? count : 2;
}

std::wstring tempPath(const wchar_t* name)
{
    wchar_t folder[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, folder);
    return std::wstring(folder) + name;
}

bool runAll(double scale, CDirectSndDevicety& device, HWND window)
{
    CSndDatatyx shortTone, longTone;
    CDirectSnd3DBuffty buffer, moving;
    const std::wstring playFile = tempPath(L"dsty-soak-play.wav"), recordFile = tempPath(L"dsty-soak-record.wav");
    if (!loadTone(shortTone, kRate / 200) || !loadTone(longTone, kRate / 2) || !writeToneFile(playFile, kRate) ||
        !buffer.setSndData2DSndBuf2ndStd(&shortTone, &device) || !moving.setSndData2DS3Dbuff2(&longTone, &device))
    {
        std::printf("the stimuli could not be prepared\n");
        return false;
    }
    moving.m_ds3dBuffer.vPosition = D3DVECTOR{-5.0f, 0.0f, 1.0f};
    moving.m_ds3dBuffer.vVelocity = D3DVECTOR{10.0f, 0.0f, 0.0f};
    CSndDataRecordPlaytyx facade;

    bool flat = soak("2D play/stop of a 5 ms tone", scaled(scale, 10000),
                     [&] { return buffer.sendAudioStim() && buffer.stopAudioStim(); });
    flat &= soak("load/release of the 5 ms tone", scaled(scale, 1000), [&] {
        const bool loaded = buffer.setSndData2DSndBuf2ndStd(&shortTone, &device) != 0;
        buffer.release3DBuffers();
        return loaded;
    });
    flat &= soak("facade recording of about 60 ms", scaled(scale, 500), [&] {
        if (!facade.recordBegin(NULL, 0))
            return false;
        Sleep(60);
        return facade.recordStop() && facade.m_pSndDataty->hasAudioWaveData();
    });
    flat &= soak("streamed play of about 30 ms", scaled(scale, 200),
                 [&] { return streamPlayOnce(device, window, playFile); });
    flat &= soak("streamed recording of about 30 ms", scaled(scale, 200),
                 [&] { return streamRecordOnce(recordFile); });
    flat &= soak("moving 3D play of 500 ms stopped after 30 ms", scaled(scale, 100), [&] {
        const bool started = moving.sendAudioStimDS3D() != 0;
        Sleep(30);
        return moving.stopAudioStimDS3D() && started;
    });
    // The sizes of the facade's capture buffer and of the streamed recorder's.
    soak("for comparison, no library call: plain DirectSound capture of 8,000,000 bytes", scaled(scale, 20),
         [] { return plainCaptureOnce(8000000); });
    soak("for comparison, no library call: plain DirectSound capture of 352,800 bytes", scaled(scale, 20),
         [] { return plainCaptureOnce(352800); });
    DeleteFileW(playFile.c_str());
    DeleteFileW(recordFile.c_str());
    return flat;
}
}

int main(int argc, char** argv)
{
    const double scale = argc > 1 ? std::atof(argv[1]) : 1.0;
    if (scale <= 0.0)
    {
        std::printf("usage: dsty_soak [SCALE]   (a positive factor on every count; 1 for full counts)\n");
        return 2;
    }
    AfxSetMessageBoxAnswerer(printMessage);
    HWND window = CreateWindowExW(0, L"STATIC", L"DirectSndty soak", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                  GetModuleHandleW(NULL), NULL);
    CDirectSndDevicety device;
    if (!device.initDSndStimX(window, NULL, DSSCL_PRIORITY))
    {
        std::printf("the default device could not be brought up\n");
        return 1;
    }
    std::printf("soak at %.3g of the full counts\n", scale);
    const double start = nowSeconds();
    const bool flat = runAll(scale, device, window);
    std::printf("%s; whole run %.1f s\n", flat ? "every kind of the library's flat" : "SOME KIND OF THE LIBRARY'S GREW",
                nowSeconds() - start);
    device.releaseDSndty(&device);
    DestroyWindow(window);
    return 0;
}
