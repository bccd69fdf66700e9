#pragma once
// A simulated DirectSound 8 for unit tests. A test creates one FakeDirectSound on the stack;
// while it lives, the library's DirectSound seam (createSound8, createCapture8, enumerateSound,
// enumerateCapture, milliseconds) reaches this fake instead of the system. The COM objects it
// hands out behave like DirectSound's (validation, result codes, reference counting) but play
// and capture nothing by themselves: cursors and time move only when the test says so.
//
//   fakeds::FakeDirectSound fake;
//   fake.failNth("IDirectSoundBuffer::Play", 1, DSERR_BUFFERLOST);
//   ... drive the library ...
//   EXPECT_EQ(2, fake.count("IDirectSoundBuffer::Play"));
//   EXPECT_EQ("", fake.leakReport());
//
// Method names are "Interface::Method" with the COM interface that declares the method
// ("IDirectSound8::CreateSoundBuffer", "IDirectSoundBuffer::Lock", "IDirectSoundBuffer8::SetFX",
// "IDirectSound3DListener::CommitDeferredSettings", "IDirectSoundNotify::SetNotificationPositions",
// "IDirectSoundCaptureBuffer::Start"), and the entry functions' own names ("DirectSoundCreate8",
// "DirectSoundCaptureCreate8", "DirectSoundEnumerateA", "DirectSoundCaptureEnumerateA").
// QueryInterface is logged under the object's main interface whatever interface it is called
// on ("IDirectSound8::", "IDirectSoundBuffer::", "IDirectSoundCapture::",
// "IDirectSoundCaptureBuffer::QueryInterface"); AddRef and Release under the interface itself
// ("IDirectSound3DBuffer::Release"). AddRef and Release are logged but not scriptable.
//
// All members are safe to call while library worker threads use the fake, except that the
// references returned by calls(), caps(), captureCaps() and primaryFormat() must only be used
// while no other thread is calling into the fake.

#include "FakeRecords.h"

#include <memory>
#include <string>
#include <vector>

namespace fakeds
{

class FakeState;

class FakeDirectSound
{
public:
    // Installs this fake as the seam's target; throws std::logic_error if one is installed.
    FakeDirectSound();
    // Uninstalls it. Objects the library still holds stay usable (they keep answering and
    // logging) so that a forgotten reference cannot crash later tests.
    ~FakeDirectSound();
    FakeDirectSound(const FakeDirectSound&) = delete;
    FakeDirectSound& operator=(const FakeDirectSound&) = delete;

    // ---- Scripted results ----------------------------------------------------------------
    // A failure code makes the call skip its work and null its out-pointers; a success code
    // other than S_OK (S_FALSE, DS_NO_VIRTUALIZATION) lets the work happen and is then returned.
    // Calls are counted per method over all objects from the start of the test, 1-based.
    // Unknown method names throw std::invalid_argument.
    void failAlways(const std::string& method, HRESULT hr);
    void failNth(const std::string& method, int nth, HRESULT hr);
    void clearScript();

    // ---- Call log ------------------------------------------------------------------------
    const std::vector<Call>& calls() const;
    std::vector<Call> callsTo(const std::string& method) const;
    int count(const std::string& method) const;
    int count(const std::string& method, const void* object) const;
    void clearLog(); // the log only; scripting keeps counting

    // ---- Copies of structured arguments ------------------------------------------------------
    std::vector<CreateRequest> soundCreates() const;
    std::vector<CreateRequest> captureCreates() const;
    std::vector<BufferRequest> bufferRequests() const;
    std::vector<FormatRequest> formatRequests() const;
    std::vector<Buffer3DSet> buffer3DSets() const;
    std::vector<ListenerSet> listenerSets() const;
    std::vector<NotificationSet> notificationSets() const;
    std::vector<CaptureBufferRequest> captureBufferRequests() const;
    std::vector<Signal> signals() const;

    // ---- Device settings (defaults: Wine's DirectSound on a PulseAudio null sink) -----------
    DSCAPS& caps();                // dwFlags 0xF5F, secondary rates 100..200000
    DSCCAPS& captureCaps();        // dwFormats 0xFFFFF, 2 channels
    WAVEFORMATEX& primaryFormat(); // PCM, 2 channels, 22050 Hz, 16 bits
    DWORD speakerConfig() const;   // 0x140004: stereo, wide geometry
    void setSpeakerConfig(DWORD config);
    DWORD primaryStatus() const;   // what the primary buffer's GetStatus reports
    void setPrimaryStatus(DWORD status);
    DWORD cooperativeLevel() const; // of the device made last; 0 if none or never set
    HWND cooperativeWindow() const;
    // The device lists enumeration offers, in order. By default: "Primary Sound Driver" (no
    // GUID) and "Null Output"; for capture "Primary Sound Capture Driver" and "Monitor of Null
    // Output". With an empty list, creating even the default device fails with DSERR_NODRIVER.
    void addPlaybackDevice(const GUID* guidOrNull, std::string description, std::string module);
    void addCaptureDevice(const GUID* guidOrNull, std::string description, std::string module);
    void clearPlaybackDevices();
    void clearCaptureDevices();
    // How far the write cursor runs ahead of the play cursor while a buffer plays, and the
    // capture position ahead of the read position while capturing (both 0 by default).
    void setWriteLead(DWORD bytes);
    void setCaptureLead(DWORD bytes);
    // Whether SetNotificationPositions refuses offsets beyond the buffer (as documented by
    // Microsoft; the default) or accepts and never reaches them (as Wine does).
    void setStrictNotifyOffsets(bool strict);

    // ---- Objects handed out ------------------------------------------------------------------
    // Each the one made last (even if released since), or null.
    IDirectSound8* device() const;
    IDirectSoundBuffer* primaryBuffer() const; // of that device
    IDirectSoundCapture* captureDevice() const;
    IDirectSoundCaptureBuffer8* captureBuffer() const;
    // The functions below take a buffer (playback or capture, as named) or any interface of
    // it, and throw std::invalid_argument for anything else.
    BufferInfo bufferInfo(IUnknown* buffer) const;
    CaptureInfo captureInfo(IUnknown* captureBuffer) const;
    // The sample memory of a playback or capture buffer; throws std::logic_error once the
    // buffer has been destroyed.
    std::vector<BYTE> contents(IUnknown* buffer) const;
    // A lost buffer stops; Play and Lock then fail with DSERR_BUFFERLOST until Restore.
    void setLost(IUnknown* buffer, bool lost);

    // ---- Simulation --------------------------------------------------------------------------
    // Moves the play cursor of a playing secondary buffer: round and round when looping; a
    // one-shot buffer stops at its end and its cursor returns to 0. Sets every notification
    // event whose offset lies in [cursor, cursor + bytes), in order, and the DSBPN_OFFSETSTOP
    // events when the buffer stops (also on Stop). Does nothing to a stopped buffer.
    void advancePlay(IUnknown* buffer, DWORD bytes);
    // Captures `bytes` bytes made by `sample` (given a running index counted from Start) into
    // every capturing buffer, or into the one named, with the same rules for wrapping, stopping
    // and notifications as playback.
    void advanceCapture(DWORD bytes, const SampleSource& sample);
    void advanceCapture(IUnknown* captureBuffer, DWORD bytes, const SampleSource& sample);
    // 3D parameters of a 3D buffer (the buffer or its IDirectSound3DBuffer) and of the
    // listener of the device made last.
    DS3DBUFFER parameters3D(IUnknown* buffer, Stage stage = Stage::Set) const;
    DS3DLISTENER listenerParameters(Stage stage = Stage::Set) const;
    // Deferred 3D changes on the device made last not yet committed.
    int pendingDeferred() const;

    // ---- Clock (what the library's milliseconds() reads) -------------------------------------
    void setClock(DWORD ms);
    void advanceClock(DWORD ms);
    void setClockStep(DWORD ms); // added after every read, to drive a time loop step by step
    DWORD clock() const;

    // ---- Accounting --------------------------------------------------------------------------
    // Interfaces whose reference count is above 0.
    int liveObjects() const;
    // One line per live interface with its count, then any faults (Release past zero, calls
    // through released interfaces, which answer E_UNEXPECTED). Empty when the library cleaned
    // up properly.
    std::string leakReport() const;
    LONG refCount(IUnknown* object) const; // -1 for an object the fake did not make
    int overReleases() const;
    int deadObjectCalls() const;
    // Event handles given to SetNotificationPositions that the library has not closed yet.
    int openNotificationHandles() const;
    // The process's open handles (GetProcessHandleCount, or the system's handle table under
    // Wine, which does not implement it), leaving out the duplicates this fake keeps of
    // notification events, for before/after comparisons.
    static DWORD processHandleCount();

private:
    std::shared_ptr<FakeState> state_;
};

} // namespace fakeds
