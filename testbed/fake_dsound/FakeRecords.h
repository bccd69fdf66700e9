#pragma once
// What the simulated DirectSound remembers for a test to look at afterwards: the calls made
// on it, copies of the structured arguments, and snapshots of buffer state.

#include <windows.h>
#include <mmsystem.h>
#include <dsound.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fakeds
{

// One call as the library made it.
struct Call
{
    std::string method;               // "Interface::Method", or the entry function's name
    const void* object;               // interface the call came through; null for entry functions
    std::vector<std::uintptr_t> args; // in order; pointers as addresses, floats as their bit pattern
    HRESULT result = S_OK;            // what the fake answered (AddRef/Release: the new count)

    LONG argLong(size_t index) const;   // a signed argument such as a pan or a volume
    float argFloat(size_t index) const; // a D3DVALUE argument
};

// DirectSoundCreate8 / DirectSoundCaptureCreate8.
struct CreateRequest
{
    const GUID* guidPointer; // as passed, possibly null
    GUID guid;               // its value then (zero for null)
    HRESULT result;
    const void* object;      // the device handed out, or null
};

// IDirectSound8::CreateSoundBuffer. desc.lpwfxFormat is the caller's address (may be stale by
// now); format is the copy taken during the call.
struct BufferRequest
{
    const void* device;
    DSBUFFERDESC desc;
    bool hasFormat;
    WAVEFORMATEX format;
    HRESULT result;
    IDirectSoundBuffer* buffer; // the buffer handed out, or null
};

// IDirectSoundBuffer::SetFormat.
struct FormatRequest
{
    const void* buffer;
    bool hasFormat;
    WAVEFORMATEX format;
    HRESULT result;
};

// IDirectSound3DBuffer::SetAllParameters.
struct Buffer3DSet
{
    const void* object;
    DS3DBUFFER parameters;
    DWORD apply; // DS3D_IMMEDIATE or DS3D_DEFERRED (or whatever was passed)
    HRESULT result;
};

// IDirectSound3DListener::SetAllParameters.
struct ListenerSet
{
    const void* object;
    DS3DLISTENER parameters;
    DWORD apply;
    HRESULT result;
};

// IDirectSoundNotify::SetNotificationPositions, on a playback or a capture buffer.
struct NotificationSet
{
    const void* object;   // the notify interface
    const void* buffer;   // the buffer behind it
    std::vector<DSBPOSITIONNOTIFY> positions;
    HRESULT result;
};

// IDirectSoundCapture::CreateCaptureBuffer.
struct CaptureBufferRequest
{
    const void* device;
    DSCBUFFERDESC desc;
    bool hasFormat;
    WAVEFORMATEX format;
    HRESULT result;
    IDirectSoundCaptureBuffer* buffer;
};

// An event the fake set because a cursor passed its offset (or the buffer stopped).
struct Signal
{
    const void* buffer;
    DWORD offset; // DSBPN_OFFSETSTOP for stop notifications
    HANDLE event;
};

// Snapshot of a playback buffer, read without going through COM (so nothing is logged).
struct BufferInfo
{
    bool primary;
    DWORD flags;       // as created, plus DSBCAPS_LOCSOFTWARE when no location was asked for
    DWORD bytes;
    WAVEFORMATEX format;
    DWORD status;      // DSBSTATUS_* as GetStatus would report it
    DWORD playCursor;
    DWORD writeCursor;
    LONG pan;
    LONG volume;
    DWORD frequency;
    bool lost;
    int openLocks;     // Lock calls not yet matched by Unlock
};

// Snapshot of a capture buffer.
struct CaptureInfo
{
    DWORD flags;
    DWORD bytes;
    WAVEFORMATEX format;
    DWORD status;      // DSCBSTATUS_*
    DWORD capturePosition;
    DWORD readPosition;
    size_t captured;   // bytes written since the last Start
    int openLocks;
};

// Which copy of 3D parameters to read: the values last set (what Get* returns), or the ones in
// effect (changed at once by DS3D_IMMEDIATE, by CommitDeferredSettings for DS3D_DEFERRED).
enum class Stage
{
    Set,
    Applied
};

// Produces the captured byte for a running index counted from the capture buffer's Start.
using SampleSource = std::function<BYTE(size_t index)>;

} // namespace fakeds
