// Whether streamed playback keeps up. Writes a 44.1 kHz 16-bit stereo wave file whose
// samples tell their own frame position (left: the position modulo 32768 as a ramp; right:
// the position / 64, a slow counter), streams it through the library while the loopback
// capture decodes every frame heard, then plays the same frames from memory through a plain
// DirectSound buffer as the reference. A late refill shows as a jump of about a second (a
// repeated or skipped half) or as a stall; Wine and the sound server slip a few frames now
// and then. Also prints the worker's processor time and the process's private bytes.
// Usage: dsty_bench_stream [SECONDS]   (default 600)

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
const long kJumpFrames = kRate / 10;     // a jump this large is a lost or repeated piece
const size_t kStallFrames = kRate / 100; // silence this long inside the stream is a stall

void fillFrames(unsigned long first, unsigned long count, int16_t* out)
{
    for (unsigned long i = 0; i < count; i++)
        frameAt(first + i, out + 2 * i);
}

// Decodes what the loopback hears, frame by frame, keeping only counts. What is heard after
// the file's last frame is counted apart: the stream's stop comes one mixing period after
// the silent end half, so a few frames of the other half may sound once more.
class GapCounter
{
public:
    explicit GapCounter(unsigned long seconds) : m_lastOfFile(static_cast<long long>(seconds) * kRate - 1) {}
    void add(const int16_t* frames, size_t count)
    {
        for (size_t i = 0; i < count; i++)
            addFrame(frames + 2 * i);
    }
    void print(const char* what, double seconds) const
    {
        std::printf("  %-28s frames heard %lu of %.0f, slips (1..%ld frames) %lu, jumps (>= %ld frames) %lu,"
                    " stalls (>= %lu frames of silence) %lu\n",
                    what, m_heard, seconds * kRate, kJumpFrames - 1, m_slips, kJumpFrames, m_jumps,
                    static_cast<unsigned long>(kStallFrames), m_stalls);
        std::printf("  %-28s frames heard after the file's last frame %lu\n", "", m_afterEnd);
    }

private:
    void addFrame(const int16_t* frame)
    {
        if (m_ended)
        {
            m_afterEnd += frame[0] != 0 || frame[1] != 0;
            return;
        }
        if (frame[0] == 0 && frame[1] == 0)
        {
            m_silence++;
            return;
        }
        const long position = positionOf(frame);
        if (m_heard > 0)
        {
            if (m_silence >= kStallFrames)
                note("stall", static_cast<long>(m_silence), m_stalls);
            long step = (position - m_last - 1 + kPositionSpan) % kPositionSpan;
            if (step > kPositionSpan / 2)
                step -= kPositionSpan;
            if (step != 0)
                note(std::labs(step) >= kJumpFrames ? "jump" : "slip", step, std::labs(step) >= kJumpFrames ? m_jumps : m_slips);
            m_position += 1 + step;
        }
        m_silence = 0;
        m_last = position;
        m_heard++;
        m_ended = m_position >= m_lastOfFile;
    }

    // Counts an event and tells where the first few were heard.
    void note(const char* kind, long frames, unsigned long& count)
    {
        if (m_slips + m_jumps + m_stalls < 8)
            std::printf("    %s of %ld frames after %.3f s of the file\n", kind, frames, static_cast<double>(m_position) / kRate);
        count++;
    }

    const long long m_lastOfFile;
    long long m_position = 0; // the frame heard last, counted from the first one heard
    bool m_ended = false;
    unsigned long m_heard = 0, m_slips = 0, m_jumps = 0, m_stalls = 0, m_afterEnd = 0;
    size_t m_silence = 0;
    long m_last = 0;
};

// The default capture device (the sink's monitor) drained into a GapCounter.
class Loopback
{
public:
    bool start(GapCounter& counter)
    {
        m_counter = &counter;
        WAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, kRate * kFrameBytes, kFrameBytes, 16, 0};
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
    GapCounter* m_counter = NULL;
    std::atomic<bool> m_running{false};
    std::thread m_drainer;
};

bool writeMarkedFile(const std::wstring& path, unsigned long seconds)
{
    tWAVEFORMATEX wfx = markedFormat();
    CSndWaveWriteStreamty writer;
    if (!writer.Open(CString(path.c_str()), &wfx))
        return false;
    std::vector<int16_t> piece(2 * kRate);
    for (unsigned long second = 0; second < seconds; second++)
    {
        fillFrames(second * kRate, kRate, piece.data());
        if (!writer.Write(static_cast<unsigned>(piece.size() * 2), reinterpret_cast<unsigned char*>(piece.data()), NULL))
            return false;
    }
    return writer.Close() != 0;
}

struct Worker
{
    CDirectSnd3DBuffty* stream;
    double cpuSeconds;
};

// Its processor time is read by itself: Wine tells it only for the calling thread.
DWORD WINAPI refillUntilOver(LPVOID pParam)
{
    auto* worker = static_cast<Worker*>(pParam);
    while (worker->stream->waitStreamEvt())
    {
    }
    worker->cpuSeconds = threadCpuSeconds(GetCurrentThread());
    return 0;
}

// The library streams the file; the worker is the host's thread that refills.
void streamThroughLibrary(const std::wstring& path, unsigned long seconds, HWND window)
{
    CDirectSndDevicety device;
    if (!device.initDSndStimX(window, NULL, DSSCL_PRIORITY))
        return;
    {
        CDirectSnd3DBuffty stream;
        CSndDataReadtyStream reader;
        unsigned long bytes = 0;
        tWAVEFORMATEX wfx = markedFormat();
        // A load of a few bytes of silence gives the buffer its device.
        const char silence[4] = {};
        CSndDatatyx none;
        none.setNewSndData(silence, sizeof silence, wfx);
        stream.setSndData2DSndBuf2ndStd(&none, &device);
        reader.initStream2Read(CString(path.c_str()), &bytes, &wfx);
        stream.m_pSndDataReadStream = &reader;

        GapCounter gaps(seconds);
        Loopback loopback;
        if (!loopback.start(gaps))
            std::printf("  loopback capture failed\n");
        Sleep(1000);
        const double privateStart = privateMegabytes();
        double privateMost = privateStart;
        stream.initPlayStream(window, wfx);
        Worker work = {&stream, 0.0};
        HANDLE worker = CreateThread(NULL, 0, refillUntilOver, &work, 0, NULL);
        const double start = nowSeconds();
        stream.playDSnd2ndBufLargeFileStream();
        while (WaitForSingleObject(worker, 1000) == WAIT_TIMEOUT)
        {
            const double now = privateMegabytes();
            privateMost = now > privateMost ? now : privateMost;
        }
        const double wall = nowSeconds() - start;
        const double privateEnd = privateMegabytes();
        Sleep(500);
        loopback.stop();
        gaps.print("library stream:", seconds);
        std::printf("  worker processor time %.3f s over %.1f s: %.4f%% of one core\n", work.cpuSeconds, wall,
                    100.0 * work.cpuSeconds / wall);
        std::printf("  private bytes at start %.1f MB, at end %.1f MB, most %.1f MB\n", privateStart, privateEnd,
                    privateMost);
        CloseHandle(worker);
    }
    device.releaseDSndty(&device);
}

// The same frames from memory through one plain DirectSound buffer, played once.
void playRawFromMemory(unsigned long seconds, HWND window)
{
    IDirectSound8* sound = NULL;
    if (FAILED(DirectSoundCreate8(NULL, &sound, NULL)) || FAILED(sound->SetCooperativeLevel(window, DSSCL_PRIORITY)))
        return;
    WAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, kRate, kRate * kFrameBytes, kFrameBytes, 16, 0};
    DSBUFFERDESC desc = {sizeof desc, DSBCAPS_GETCURRENTPOSITION2, seconds * wfx.nAvgBytesPerSec, 0, &wfx, GUID_NULL};
    IDirectSoundBuffer* buffer = NULL;
    void* memory = NULL;
    DWORD bytes = 0;
    if (SUCCEEDED(sound->CreateSoundBuffer(&desc, &buffer, NULL)) &&
        SUCCEEDED(buffer->Lock(0, 0, &memory, &bytes, NULL, NULL, DSBLOCK_ENTIREBUFFER)))
    {
        fillFrames(0, bytes / kFrameBytes, static_cast<int16_t*>(memory));
        buffer->Unlock(memory, bytes, NULL, 0);
        GapCounter gaps(seconds);
        Loopback loopback;
        loopback.start(gaps);
        Sleep(1000);
        buffer->Play(0, 0, 0);
        DWORD status = DSBSTATUS_PLAYING;
        while (SUCCEEDED(buffer->GetStatus(&status)) && (status & DSBSTATUS_PLAYING))
            Sleep(200);
        Sleep(500);
        loopback.stop();
        gaps.print("raw DirectSound (memory):", seconds);
    }
    if (buffer)
        buffer->Release();
    sound->Release();
}
}

int main(int argc, char** argv)
{
    AfxSetMessageBoxAnswerer(printMessage);
    const unsigned long seconds = argc > 1 ? std::strtoul(argv[1], NULL, 10) : 600;
    if (seconds == 0)
    {
        std::printf("usage: dsty_bench_stream [SECONDS]\n");
        return 2;
    }
    const std::wstring path = L"bench-stream.wav";
    std::printf("streamed playback of %lu s of 44.1 kHz 16-bit stereo, heard back through the loopback\n", seconds);
    if (!writeMarkedFile(path, seconds))
    {
        std::printf("  the marked wave file could not be written\n");
        return 1;
    }
    HWND window = CreateWindowW(L"STATIC", L"dsty_bench_stream", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                GetModuleHandleW(NULL), NULL);
    streamThroughLibrary(path, seconds, window);
    playRawFromMemory(seconds, window);
    DestroyWindow(window);
    DeleteFileW(path.c_str());
    return 0;
}
