#pragma once
// A tap on the system's DirectSound 8 for unit tests. While a DSoundTap lives, the library's
// DirectSound seam (createSound8, createCapture8, enumerateSound, enumerateCapture,
// milliseconds) goes through it: every interface the library obtains is wrapped, every call is
// forwarded to the real DirectSound and logged with its arguments, any call's result can be
// scripted or the call answered by the test, and COM references and notification events are
// counted. The clock is the test's: it moves only when the test says so.
//
//   dstap::DSoundTap tap;
//   tap.failNth("IDirectSoundBuffer::Play", 1, DSERR_BUFFERLOST);
//   ... drive the library ...
//   EXPECT_EQ(2, tap.count("IDirectSoundBuffer::Play"));
//   EXPECT_EQ("", tap.leakReport());
//
// Method names are "Interface::Method" with the interface that declares the method
// ("IDirectSound8::CreateSoundBuffer", "IDirectSoundBuffer::Lock", "IDirectSoundBuffer8::SetFX",
// "IDirectSound3DListener::CommitDeferredSettings", "IDirectSoundNotify::SetNotificationPositions",
// "IDirectSoundCaptureBuffer::Start"); the entry functions go by their own names
// ("DirectSoundCreate8", "DirectSoundCaptureCreate8", "DirectSoundEnumerateA",
// "DirectSoundCaptureEnumerateA"). QueryInterface, AddRef and Release are logged under the
// interface they are called on ("IDirectSound3DBuffer::Release"); AddRef and Release cannot
// be scripted. Names are checked: a misspelt one throws std::invalid_argument.
//
// Every member may be called while library worker threads call through the tap.

#include "TapRecords.h"

#include <memory>
#include <string>
#include <vector>

namespace dstap
{

struct TapState;

class DSoundTap
{
public:
    // Installs the tap in the seam; throws std::logic_error if one is installed already.
    DSoundTap();
    // Uninstalls it. Interfaces the library still holds keep forwarding, so a forgotten
    // reference cannot crash a later test.
    ~DSoundTap();
    DSoundTap(const DSoundTap&) = delete;
    DSoundTap& operator=(const DSoundTap&) = delete;

    // ---- Scripted results ----------------------------------------------------------------
    // A failure code skips the platform's work (or the test's answer) and nulls the interface
    // the call would hand out; a success code other than S_OK (S_FALSE) lets the work happen
    // and is returned instead of the platform's. Calls are counted per method from the tap's start, 1-based.
    void failAlways(const std::string& method, HRESULT hr);
    void failNth(const std::string& method, int nth, HRESULT hr);
    void failNext(const std::string& method, HRESULT hr); // the next call only
    // The test does the call's work instead of the platform, from now on.
    void answer(const std::string& method, Answer answer);
    // Shorthand: the out-value at `index` becomes `value`, and the call succeeds.
    template <class T>
    void answerWith(const std::string& method, size_t index, T value)
    {
        answer(method, [index, value](const Call& call) {
            if (T* target = call.out<T>(index))
                *target = value;
            return DS_OK;
        });
    }
    void clearScript(); // results and answers; the counts go on

    // ---- Call log ------------------------------------------------------------------------
    std::vector<Call> calls() const;
    std::vector<Call> callsTo(const std::string& method) const;
    int count(const std::string& method) const;
    int count(const std::string& method, const void* object) const;
    void clearLog(); // the log only; scripting keeps counting

    std::vector<BufferRequest> bufferRequests() const;
    std::vector<CaptureBufferRequest> captureBufferRequests() const;
    std::vector<NotificationSet> notificationSets() const;
    std::vector<Buffer3DSet> buffer3DSets() const;

    // ---- Device lists ----------------------------------------------------------------------
    // Enumeration offers these instead of the system's devices (the library's callback sees
    // them in order); creating a device still goes to the system.
    void setPlaybackDevices(std::vector<DeviceEntry> devices);
    void setCaptureDevices(std::vector<DeviceEntry> devices);

    // ---- The platform behind the tap ---------------------------------------------------------
    // The system's interface behind one the library got from the tap (no reference added;
    // calls on it are not logged), or null for anything the tap did not hand out.
    IUnknown* real(const void* tapped) const;
    template <class I>
    I* real(const void* tapped) const { return reinterpret_cast<I*>(real(tapped)); }
    // The sample memory of a playback or capture buffer, read under the platform's lock.
    std::vector<BYTE> contents(const void* buffer) const;

    // ---- Clock (what the library's milliseconds() reads) -------------------------------------
    void setClock(DWORD ms);
    void setClockStep(DWORD ms); // added after every read, to drive a time loop step by step

    // ---- Accounting --------------------------------------------------------------------------
    int liveObjects() const; // interfaces the library still holds references on
    // One line per interface still held, with its count, then the faults: a Release past
    // zero, or a call through an interface already released (answered E_UNEXPECTED and not
    // forwarded). Empty when the library cleaned up.
    std::string leakReport() const;
    LONG refCount(const void* tapped) const; // -1 for anything the tap did not hand out
    int overReleases() const;
    int deadObjectCalls() const;
    // Events given to SetNotificationPositions that the library has not closed yet.
    int openNotificationHandles() const;

private:
    std::shared_ptr<TapState> state_;
};

} // namespace dstap
