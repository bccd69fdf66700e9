#pragma once
// What the sound-buffer, capture and facade tests share: a buffer whose protected parts are
// reachable, an open device on the tapped DirectSound, containers of generated PCM, the order
// of the calls that start a buffer, and capture data the test writes itself.

#include "DeviceTestSupport.h"
#include <initializer_list>
#include <memory>

// Wine plays and records in real time: waits on its events are generous for a loaded machine.
const DWORD kWait = 5000;

class TestBuffer : public CDirectSnd3DBuffty
{
public:
    // Makes the buffer as a streaming buffer would be made: empty, and accepting notifications.
    void makeNotifiable(CDirectSndDevicety& device, tWAVEFORMATEX wfx, unsigned long bytes)
    {
        m_wfx = wfx;
        m_dsbd.dwFlags = DSBCAPS_CTRLPOSITIONNOTIFY;
        m_dsbd.dwBufferBytes = bytes;
        m_pDSndDevice = &device;
        ASSERT_EQ(bytes, createDSndBuff2ndStd());
        ASSERT_EQ(1, quaryNotify());
    }

    using CDirectSnd2DBuff::copySndData2DSndBuf2nd;
    using CDirectSnd2DBuff::m_pDSBuffer;
    using CDirectSnd3DBuff::m_fPlayLength;
    using CDirectSnd3DBuff2Motion::m_pMoveThread;
    using CDirectSnd3DBuff5Notify::quaryNotify;
    using CDirectSnd3DBuff5Notify::initNotifyEvt;
    using CDirectSnd3DBuff5Notify::initStopEvt;
    using CDirectSnd3DBuff5Notify::m_posNotify;
    using CDirectSndBasicty::m_hr;
};

using Texts = std::vector<std::wstring>; // message boxes shown
using Names = std::vector<std::string>;   // calls made, as sequence() gives them

// A container holding `bytes` bytes of a ramp (byte i is i * 7 + 1) in the given format.
std::unique_ptr<CSndDatatyx> rampData(tWAVEFORMATEX wfx, unsigned long bytes);

// The calls to the given methods in order, as "Method(last argument)", or "Method" without one.
Names sequence(const dstap::DSoundTap& tap, std::initializer_list<const char*> methods);
// How buffers were started and stopped: Stop, SetCurrentPosition, Play and Restore.
Names starts(const dstap::DSoundTap& tap);

// Capture as the test writes it: the capture buffer's cursors, status, Lock and Unlock are
// answered over a ring of test memory, so a read across the ring's end comes in two regions.
// Byte i of the recording is pattern(i).
struct CaptureRing
{
    std::vector<BYTE> memory;
    size_t written = 0;
    int openLocks = 0;
    BYTE (*pattern)(size_t) = nullptr;

    void advance(size_t bytes); // the capture cursor moves on, writing the pattern
};
std::shared_ptr<CaptureRing> scriptCapture(dstap::DSoundTap& tap, size_t ringBytes, BYTE (*pattern)(size_t));

// Buffers must be released before their device (the platform frees a device's buffers with
// it), so a fixture's buffers are declared after the device and the device goes last.
class BufferTest : public DeviceTest
{
protected:
    void SetUp() override { openDevice(device); }

    TestDevice device;
};
