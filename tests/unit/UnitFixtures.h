#pragma once
// What the unit tests share: a device and a buffer whose protected parts are reachable, the tap
// on the system's DirectSound they run through, the message boxes shown, generated PCM, the
// calls that start a buffer, capture memory the test writes itself, and temporary files.

#include "DirectSndty.h"
#include "DSoundTap.h"
#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

// Wine plays and records in real time: waits on its events are generous for a loaded machine.
const DWORD kWait = 5000;
const HWND kWindow = reinterpret_cast<HWND>(0x1234);

class TestDevice : public CDirectSndDevicety
{
public:
    using CDirectSndBasicty::isSoundFormatSame;
    using CDirectSndBasicty::isSupportWfx;
    using CDirectSndBasicty::traceHR;
    using CDirectSndBasicty::m_hr;
    using CDirectSndDevice::createDSndObject;
    using CDirectSndDevice::selectSoundCards;
    using CDirectSndDevice::getDSCAPSPro;
    using CDirectSndDevice::get2ndChannels;
    using CDirectSndDevice::get2ndSampleBits;
    using CDirectSndDevice::m_dwCoopLevel;
    using CDirectSndDevice::m_dsCaps;
    using CDirectSndDevice1BufferPrimary::createDSndBuff1Primary;
    using CDirectSndDevice1BufferPrimary::m_wfxPrimary;
    using CDirectSndDevice1BufferPrimary::m_pDSBufferPrimary;
    using CDirectSndDevice3Speak::isHeadPhone;
    using CDirectSndDevice3Speak::isStereoWide;
    using CDirectSndDevice3Speak::isStereMax;
    using CDirectSndDevice3Speak::setHeadPhone;
    using CDirectSndDevice3Speak::setMonoSpeaker;
    using CDirectSndDevice3Speak::setStereMax;
    using CDirectSndDevice3Speak::m_dwSpeakerConfig;
    using CDirectSndDevice6Play::compactDSmem;
};

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
    using CDirectSnd2DBuff::createDSndBuff2ndStd;
    using CDirectSnd2DBuff::m_pDSBuffer;
    using CDirectSnd2DBuff::m_pDSndDevice;
    using CDirectSnd2DBuff::m_dsbd;
    using CDirectSnd2DBuff::m_wfx;
    using CDirectSnd3DBuff::m_fPlayLength;
    using CDirectSnd3DBuff::m_fElapsedTime;
    using CDirectSnd3DBuff2Motion::m_pMoveThread;
    using CDirectSnd3DBuff5Notify::m_pDSNotify;
    using CDirectSnd3DBuff5Notify::quaryNotify;
    using CDirectSnd3DBuff5Notify::initNotifyEvt;
    using CDirectSnd3DBuff5Notify::initStopEvt;
    using CDirectSnd3DBuff5Notify::m_posNotify;
    using CDirectSnd3DBuff7PlayStream::streamData2Buffer;
    using CDirectSnd3DBuff7PlayStream::m_streamEndHalf;
    using CDirectSnd3DBuff7PlayStream::m_hStreamEvent;
    using CDirectSndBasicty::m_hr;
};

using Texts = std::vector<std::wstring>; // message boxes shown
using Names = std::vector<std::string>;   // calls made, as sequence() gives them
using Bytes = std::vector<unsigned char>;

// Message boxes are answered OK and remembered in order, from any thread.
class MessageBoxLog
{
public:
    MessageBoxLog();
    ~MessageBoxLog();
    Texts texts() const;
    bool saw(const std::wstring& text) const;
    void clear();
};

// A file in the temporary folder, gone with the object; objects keeping their settings with
// serialize are stored in it and loaded from it.
class TempFile
{
public:
    TempFile();
    ~TempFile();
    template <class T> int store(T& object)
    {
        CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
        CArchive ar(&file, CArchive::store);
        const int result = object.serialize(ar);
        ar.Close();
        return result;
    }
    template <class T> int load(T& object)
    {
        CFile file(path.c_str(), CFile::modeRead);
        CArchive ar(&file, CArchive::load);
        return object.serialize(ar);
    }
    // The cause of the archive exception a load ends in; CArchiveException::none if none.
    template <class T> int loadFailure(T& object)
    {
        try
        {
            load(object);
        }
        catch (CArchiveException* e)
        {
            const int cause = e->m_cause;
            e->Delete();
            return cause;
        }
        return CArchiveException::none;
    }
    Bytes bytes() const;
    void write(const Bytes& data) const;

    std::wstring path;
};

tWAVEFORMATEX pcmFormat(WORD channels, DWORD rate, WORD bits);
bool sameFormat(const tWAVEFORMATEX& a, const tWAVEFORMATEX& b);
// A container holding `bytes` bytes of a ramp (byte i is i * 7 + 1) in the given format.
std::unique_ptr<CSndDatatyx> rampData(tWAVEFORMATEX wfx, unsigned long bytes);

// The calls to the given methods in order, as "Method(last argument)", or "Method" without one.
Names sequence(const dstap::DSoundTap& tap, std::initializer_list<const char*> methods);
// How buffers were started and stopped: Stop, SetCurrentPosition, Play and Restore.
Names starts(const dstap::DSoundTap& tap);

// Capture as the test writes it: the capture buffer's cursors, status, Lock and Unlock are
// answered over a ring of test memory, so a read across the ring's end comes in two regions.
// Byte i of the recording is pattern(i). The cursors wrap with the ring when `wrapCursors`.
// As on Windows, the read cursor may trail the capture cursor by `readLag` bytes, which hold
// kNotYet until the capture moves past them; a buffer that stops when full says so in its
// status. Given a byte rate, the tap's clock runs with the capture, as the platform's does.
struct CaptureRing
{
    static const BYTE kNotYet = 0xEE;

    std::vector<BYTE> memory;
    size_t written = 0;
    size_t readLag = 0;
    bool stopsWhenFull = false;
    int openLocks = 0;
    BYTE (*pattern)(size_t) = nullptr;
    dstap::DSoundTap* clock = nullptr;
    DWORD bytesPerSecond = 0;

    void advance(size_t bytes); // the capture cursor moves on, writing the pattern
    bool capturing() const { return !stopsWhenFull || written < memory.size(); }
};
std::shared_ptr<CaptureRing> scriptCapture(dstap::DSoundTap& tap, size_t ringBytes, BYTE (*pattern)(size_t),
                                           bool wrapCursors = false, DWORD bytesPerSecond = 0);

// Buffers must be released before their device (the platform frees a device's buffers with
// it), so a fixture's buffers are declared after the device, which goes last.
class DeviceTest : public ::testing::Test
{
protected:
    // Opens the default device through the tap, keeping nothing of it in the log.
    void openDevice();
    // The platform takes a level one call late: asking twice puts it there.
    void bringLevel(TestDevice& target, DWORD level);

    dstap::DSoundTap tap;
    MessageBoxLog messages;
    TestDevice device;
};

class BufferTest : public DeviceTest
{
protected:
    void SetUp() override { openDevice(); }
};
