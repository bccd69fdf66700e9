// Whether a streamed recording loses anything. Plays a 44.1 kHz 16-bit stereo signal whose
// frames tell their own position (left: the position modulo 32768 as a ramp; right: the
// position / 64, a slow counter) in a loop, and records it at the same time twice: through
// the library's CDSndCapturetyStream into a wave file, and by a plain DirectSound capture
// buffer drained into memory as the reference. Each is decoded frame by frame: a gap or a
// repeat shows as a step in the positions; the player's own stalls show as silence in both.
// Halfway through, the library's worker is held up for 3 s, longer than its buffer: the
// frames it lost must stand in the file as silence after which the positions go on where the
// time passed puts them. Prints the frames expected and found, the frames lost against the
// stall, the tail the stop wrote after the last position, the worker's processor time and
// the private bytes; then what refreshing the header after every write costs, against plain
// writes of the same pieces; then, with --rf64, a file written past 4 GiB, left for sox.
// Usage: dsty_bench_record [SECONDS] | --refresh | --rf64 FILE   (default 600 s)

#include "BenchSupport.h"
#include "DirectSndty.h"
#include "SndWaveWriteStreamty.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

using namespace dsty_bench;

namespace
{
// Counts the marked frames of a recording from the first one heard. Silence inside the signal is
// the player's stall (Wine's mixer or the sink fell behind), which every capture records alike;
// a step in the positions between two marked frames with no silence between is the capture's
// own gap (positions skipped) or repeat (positions heard again).
class Continuity
{
public:
    void add(const int16_t* frames, size_t count)
    {
        for (size_t i = 0; i < count; i++)
            addFrame(frames + 2 * i);
    }
    void print(const char* what, double expectedFrames) const
    {
        std::printf("  %-22s frames expected %.0f, found %lu (marked %lu, silent before the signal %lu, after it %lu)\n",
                    what, expectedFrames, m_frames, m_marked, m_leadingSilence, m_silence);
        std::printf("  %-22s gaps %lu (%lu frames), repeats %lu (%lu frames)\n", "", m_gaps, m_gapFrames, m_repeats,
                    m_repeatFrames);
        std::printf("  %-22s player stalls heard %lu (%lu silent frames), %lu of them resumed elsewhere\n", "",
                    m_stalls, m_stallFrames, m_movedStalls);
        std::printf("  %-22s silences that kept the time axis (positions on by their length) %lu, %lu frames\n", "",
                    m_bridges, m_bridgedFrames);
    }

private:
    void addFrame(const int16_t* frame)
    {
        m_frames++;
        const bool silent = frame[0] == 0 && frame[1] == 0;
        if (silent && m_marked == 0)
            m_leadingSilence++;
        else if (silent)
            m_silence++;
        else
            addMarked(positionOf(frame));
    }
    void addMarked(long position)
    {
        if (m_marked > 0)
            countStep(stepFromLast(position));
        m_silence = 0;
        m_last = position;
        m_marked++;
    }
    long stepFromLast(long position) const
    {
        const long step = (position - m_last - 1 + kPositionSpan) % kPositionSpan;
        return step > kPositionSpan / 2 ? step - kPositionSpan : step;
    }
    void countStep(long step)
    {
        if (m_silence > 0 && step == static_cast<long>(m_silence) && m_silence > kRate / 10)
        {
            m_bridges++;
            m_bridgedFrames += m_silence;
            return;
        }
        if (m_silence > 0)
        {
            m_stalls++;
            m_stallFrames += m_silence;
            m_movedStalls += step != 0;
            return;
        }
        if (step > 0)
        {
            m_gaps++;
            m_gapFrames += static_cast<unsigned long>(step);
        }
        if (step < 0)
        {
            m_repeats++;
            m_repeatFrames += static_cast<unsigned long>(-step);
        }
    }

    unsigned long m_frames = 0, m_marked = 0, m_leadingSilence = 0, m_silence = 0;
    unsigned long m_gaps = 0, m_gapFrames = 0, m_repeats = 0, m_repeatFrames = 0;
    unsigned long m_stalls = 0, m_stallFrames = 0, m_movedStalls = 0;
    unsigned long m_bridges = 0, m_bridgedFrames = 0;
    long m_last = 0;
};

// A plain DirectSound capture buffer, drained into a Continuity every 10 ms.
class RawCapture
{
public:
    bool start(Continuity& counter)
    {
        m_counter = &counter;
        WAVEFORMATEX wfx = markedFormat();
        DSCBUFFERDESC desc = {sizeof desc, 0, 2 * wfx.nAvgBytesPerSec, 0, &wfx, 0, NULL};
        if (FAILED(DirectSoundCaptureCreate8(NULL, &m_capture, NULL)) ||
            FAILED(m_capture->CreateCaptureBuffer(&desc, &m_buffer, NULL)) || FAILED(m_buffer->Start(DSCBSTART_LOOPING)))
            return false;
        m_bytes = desc.dwBufferBytes;
        m_running = true;
        m_drainer = std::thread([this] {
            while (m_running)
            {
                drain();
                Sleep(10);
            }
            drain();
        });
        return true;
    }
    void stop()
    {
        m_running = false;
        if (m_drainer.joinable())
            m_drainer.join();
        if (m_buffer)
            m_buffer->Release();
        if (m_capture)
            m_capture->Release();
        m_buffer = NULL;
        m_capture = NULL;
    }

private:
    void drain()
    {
        DWORD capture = 0, read = 0;
        if (FAILED(m_buffer->GetCurrentPosition(&capture, &read)))
            return;
        const DWORD available = (read + m_bytes - m_offset) % m_bytes;
        void *first = NULL, *second = NULL;
        DWORD firstBytes = 0, secondBytes = 0;
        if (available == 0 || FAILED(m_buffer->Lock(m_offset, available, &first, &firstBytes, &second, &secondBytes, 0)))
            return;
        m_counter->add(static_cast<const int16_t*>(first), firstBytes / kFrameBytes);
        if (second)
            m_counter->add(static_cast<const int16_t*>(second), secondBytes / kFrameBytes);
        m_buffer->Unlock(first, firstBytes, second, secondBytes);
        m_offset = (m_offset + available) % m_bytes;
    }

    IDirectSoundCapture8* m_capture = NULL;
    IDirectSoundCaptureBuffer* m_buffer = NULL;
    DWORD m_bytes = 0, m_offset = 0;
    Continuity* m_counter = NULL;
    std::atomic<bool> m_running{false};
    std::thread m_drainer;
};

// The marked signal played in a loop from one buffer that holds every position once.
class MarkedPlayer
{
public:
    bool start(HWND window)
    {
        WAVEFORMATEX wfx = markedFormat();
        DSBUFFERDESC desc = {sizeof desc, DSBCAPS_GETCURRENTPOSITION2, kPositionSpan * kFrameBytes, 0, &wfx, GUID_NULL};
        void* memory = NULL;
        DWORD bytes = 0;
        if (FAILED(DirectSoundCreate8(NULL, &m_sound, NULL)) || FAILED(m_sound->SetCooperativeLevel(window, DSSCL_PRIORITY)) ||
            FAILED(m_sound->CreateSoundBuffer(&desc, &m_buffer, NULL)) ||
            FAILED(m_buffer->Lock(0, 0, &memory, &bytes, NULL, NULL, DSBLOCK_ENTIREBUFFER)))
            return false;
        int16_t* frames = static_cast<int16_t*>(memory);
        for (unsigned long i = 0; i < bytes / kFrameBytes; i++)
            frameAt(i, frames + 2 * i);
        m_buffer->Unlock(memory, bytes, NULL, 0);
        return SUCCEEDED(m_buffer->Play(0, 0, DSBPLAY_LOOPING));
    }
    ~MarkedPlayer()
    {
        if (m_buffer)
            m_buffer->Release();
        if (m_sound)
            m_sound->Release();
    }

private:
    IDirectSound8* m_sound = NULL;
    IDirectSoundBuffer* m_buffer = NULL;
};

const DWORD kStallMs = 3000;

struct Worker
{
    CDSndCapturetyStream* capture;
    std::atomic<bool> recording;
    double stallAt;    // seconds from the start at which the worker is held up
    double cpuSeconds;
};

// Loops until the stop wakes it, held up once for kStallMs. Its processor time is read by
// itself: Wine tells it only for the calling thread.
DWORD WINAPI serviceUntilStopped(LPVOID pParam)
{
    auto* worker = static_cast<Worker*>(pParam);
    const double start = nowSeconds();
    bool held = false;
    while (worker->recording)
    {
        if (!held && nowSeconds() - start >= worker->stallAt)
            held = true, Sleep(kStallMs);
        worker->capture->waitRecordStreamEvt();
    }
    worker->cpuSeconds = threadCpuSeconds(GetCurrentThread());
    return 0;
}

bool decodeFile(const std::wstring& path, Continuity& counter)
{
    HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, NULL, OPEN_EXISTING, 0, NULL);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    std::vector<int16_t> piece(2 * kRate);
    DWORD got = 0;
    SetFilePointer(file, 80, NULL, FILE_BEGIN); // opened to grow: the header keeps an RF64 header's room
    while (ReadFile(file, piece.data(), static_cast<DWORD>(piece.size() * 2), &got, NULL) && got > 0)
        counter.add(piece.data(), got / kFrameBytes);
    CloseHandle(file);
    return true;
}

void recordBoth(const std::wstring& path, unsigned long seconds, HWND window)
{
    MarkedPlayer player;
    if (!player.start(window))
    {
        std::printf("  the marked signal could not be played\n");
        return;
    }
    Sleep(500);
    Continuity raw, library;
    RawCapture reference;
    if (!reference.start(raw))
        std::printf("  the raw capture could not be started\n");

    tWAVEFORMATEX wfx = markedFormat();
    CSndWaveWriteStreamty writer;
    CDSndCapturetyStream capture;
    capture.m_pSndWaveWriteStream = &writer;
    if (!writer.Open(CString(path.c_str()), &wfx, TRUE) || !capture.initCapture2stream(wfx, 2 * wfx.nAvgBytesPerSec))
    {
        std::printf("  the streamed recording could not be set up\n");
        reference.stop();
        return;
    }
    const double privateStart = privateMegabytes();
    double privateMost = privateStart;
    capture.startCaptureStream();
    const double start = nowSeconds();
    Worker work = {&capture, {true}, seconds / 2.0, 0.0};
    HANDLE worker = CreateThread(NULL, 0, serviceUntilStopped, &work, 0, NULL);
    for (unsigned long s = 0; s < seconds; s++)
    {
        Sleep(1000);
        const double now = privateMegabytes();
        privateMost = now > privateMost ? now : privateMost;
    }
    const unsigned long beforeStop = writer.GetDataBytesWritten();
    work.recording = false;
    capture.stopCaptureStream();
    WaitForSingleObject(worker, INFINITE);
    const double wall = nowSeconds() - start;
    const double privateEnd = privateMegabytes();
    CloseHandle(worker);
    reference.stop();
    const unsigned long total = writer.GetDataBytesWritten();

    decodeFile(path, library);
    library.print("library stream (file):", wall * kRate);
    std::printf("  %-22s tail written at stop %lu bytes (%.3f s); file data %lu bytes\n", "", total - beforeStop,
                static_cast<double>(total - beforeStop) / wfx.nAvgBytesPerSec, total);
    std::printf("  %-22s worker held up %.1f s at %.0f s: %llu frames lost (%.3f s), silence in their place\n", "",
                kStallMs / 1000.0, work.stallAt, capture.getLostFrames(),
                static_cast<double>(capture.getLostFrames()) / kRate);
    raw.print("raw DirectSound:", wall * kRate);
    std::printf("  worker processor time %.3f s over %.1f s: %.4f%% of one core\n", work.cpuSeconds, wall,
                100.0 * work.cpuSeconds / wall);
    std::printf("  private bytes at start %.1f MB, at end %.1f MB, most %.1f MB\n", privateStart, privateEnd,
                privateMost);
}
}

// The writer puts the file on disk once a second: what that costs, after a second of sound.
void flushCost(const std::wstring& path, int seconds)
{
    std::vector<unsigned char> second(markedFormat().nAvgBytesPerSec, 0x22);
    HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
    double flushing = 0.0, most = 0.0;
    for (int k = 0; k < seconds; k++)
    {
        DWORD put = 0;
        WriteFile(file, second.data(), static_cast<DWORD>(second.size()), &put, NULL);
        const double start = nowSeconds();
        FlushFileBuffers(file);
        const double took = nowSeconds() - start;
        flushing += took;
        most = took > most ? took : most;
    }
    CloseHandle(file);
    std::printf("putting each second of sound on disk: %.3f ms on average, %.3f ms at most, over %d seconds\n",
                1000.0 * flushing / seconds, 1000.0 * most, seconds);
}

// Seconds spent writing `pieces` half-second pieces through the writer, whose header is
// refreshed after each, and through plain writes of the same file.
void refreshCost(const std::wstring& path, int pieces)
{
    tWAVEFORMATEX wfx = markedFormat();
    std::vector<unsigned char> piece(wfx.nAvgBytesPerSec / 2, 0x11);
    double writerSeconds = 0.0, plainSeconds = 0.0;
    for (int round = 0; round < 2; round++) // alternate, so that neither gets a warmer disk cache
    {
        CSndWaveWriteStreamty writer;
        double start = nowSeconds();
        writer.Open(CString(path.c_str()), &wfx, TRUE);
        for (int k = 0; k < pieces; k++)
            writer.Write(static_cast<unsigned>(piece.size()), piece.data(), NULL);
        writer.Close();
        writerSeconds += nowSeconds() - start;
        start = nowSeconds();
        HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, NULL, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, NULL);
        DWORD put = 0;
        for (int k = 0; k < pieces; k++)
            WriteFile(file, piece.data(), static_cast<DWORD>(piece.size()), &put, NULL);
        CloseHandle(file);
        plainSeconds += nowSeconds() - start;
    }
    const double audioSeconds = 2.0 * pieces / 2.0;
    std::printf("header refresh: %d half-second pieces written twice: %.3f s through the writer, %.3f s plainly;"
                " %.3f ms per second of sound\n",
                pieces, writerSeconds, plainSeconds, 1000.0 * (writerSeconds - plainSeconds) / audioSeconds);
    flushCost(path, 30);
    DeleteFileW(path.c_str());
}

// A file written past 4 GiB through the writer, in pieces of 4 MiB, for sox to read back.
void writePast4GiB(const std::wstring& path)
{
    tWAVEFORMATEX wfx = markedFormat();
    std::vector<unsigned char> piece(4u << 20);
    for (size_t i = 0; i < piece.size() / 2; i++)
        reinterpret_cast<int16_t*>(piece.data())[i] = static_cast<int16_t>(i % 2000 - 1000);
    const unsigned long long target = (1ull << 32) + (64ull << 20);
    CSndWaveWriteStreamty writer;
    const double start = nowSeconds();
    if (!writer.Open(CString(path.c_str()), &wfx, TRUE))
    {
        std::printf("rf64: the file could not be made\n");
        return;
    }
    int ok = 1;
    for (unsigned long long done = 0; done < target && ok; done += piece.size())
        ok = writer.Write(static_cast<unsigned>(piece.size()), piece.data(), NULL);
    const BOOL rf64 = writer.IsRf64();
    const unsigned long long bytes = writer.GetDataBytesWritten64();
    ok = ok && writer.Close();
    std::printf("rf64: %llu bytes of data (%llu frames) written in %.1f s, RF64 %s, %s\n", bytes, bytes / kFrameBytes,
                nowSeconds() - start, rf64 ? "yes" : "no", ok ? "closed" : "failed");
}

int main(int argc, char** argv)
{
    AfxSetMessageBoxAnswerer(printMessage);
    if (argc > 1 && std::string(argv[1]) == "--refresh")
    {
        refreshCost(L"bench-refresh.wav", 600);
        return 0;
    }
    if (argc > 2 && std::string(argv[1]) == "--rf64")
    {
        const std::string name = argv[2];
        writePast4GiB(std::wstring(name.begin(), name.end()));
        return 0;
    }
    const unsigned long seconds = argc > 1 ? std::strtoul(argv[1], NULL, 10) : 600;
    if (seconds == 0)
    {
        std::printf("usage: dsty_bench_record [SECONDS] | --rf64 FILE\n");
        return 2;
    }
    const std::wstring path = L"bench-record.wav";
    std::printf("streamed recording of %lu s of a marked 44.1 kHz 16-bit stereo signal played meanwhile\n", seconds);
    HWND window = CreateWindowW(L"STATIC", L"dsty_bench_record", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                GetModuleHandleW(NULL), NULL);
    recordBoth(path, seconds, window);
    DestroyWindow(window);
    DeleteFileW(path.c_str());
    refreshCost(path, 600);
    return 0;
}
