#pragma once
// What each handle of the C interface holds: the library's objects it calls into, and, for a
// device, the handles made on it, which go when it goes (the device must outlive its buffers).

#include "DirectSndty.h"
#include "SndWaveWriteStreamty.h"
#include "DstyHost.h"

#include <atomic>
#include <thread>
#include <vector>

// The device as the C interface brings it up: a chosen card at the priority level, with the
// primary buffer that streamed playback sets its format on.
class CDstyDevicety : public CDirectSndDevicety
{
public:
    int bringUp(HWND hWnd, GUID* pGuid);
};

struct dsty_device
{
    CDstyDevicety device;
    std::vector<dsty_sound*> sounds;
    std::vector<dsty_stream*> streams;
    std::vector<dsty_schedule*> schedules;
};

struct dsty_sound
{
    dsty_device* owner;
    CSndDatatyx data;
    CDirectSnd3DBuffty buffer;
};

struct dsty_stream
{
    dsty_device* owner;
    std::wstring path;
    tWAVEFORMATEX wfx;
    CSndDataReadtyStream reader;
    CSndDatatyx silence; // the few bytes that place the streaming buffer on its device
    CDirectSnd3DBuffty buffer;
    std::thread worker;
    HANDLE ended; // set once the worker's refills have ended: the file played out or was stopped
};

struct dsty_recording
{
    CSndWaveWriteStreamty writer;
    CDSndCapturetyStream capture;
    std::thread worker;
    std::atomic<bool> recording{true};
};

struct dsty_schedule
{
    dsty_device* owner;
    CDirectSndSchedulety schedule;
    tWAVEFORMATEX wfx;
};

// Frees what a device made; the device itself is freed by dsty_device_close.
void freeSound(dsty_sound* sound);
void freeStream(dsty_stream* stream);
void freeSchedule(dsty_schedule* schedule);

// An integer PCM format of one or two channels and 8 to 32 bits, in the library's record.
bool toWaveFormat(const dsty_format* format, tWAVEFORMATEX& wfx);

// The start of a call that makes a handle on a device: the device open, the out-pointer given
// (and cleared), and the call's other arguments present.
template <class T>
int beginMaking(const dsty_device* device, T** out, bool bArgumentsGiven = true)
{
    const int checked = checkHandle(device, DstyKind::Device);
    if (checked != DSTY_OK)
        return checked;
    if (out == nullptr || !bArgumentsGiven)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT);
    *out = nullptr;
    return DSTY_OK;
}
