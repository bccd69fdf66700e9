#pragma once
// What the device tests share: a device whose protected operations are reachable, the tap on
// the system's DirectSound it runs through, and a record of the message boxes it showed.

#include "DirectSndty.h"
#include "DSoundTap.h"
#include <gtest/gtest.h>
#include <string>
#include <vector>

class TestDevice : public CDirectSndDevicety
{
public:
    using CDirectSndBasicty::isSoundFormatSame;
    using CDirectSndBasicty::isSupportWfx;
    using CDirectSndBasicty::traceHR;
    using CDirectSndBasicty::m_hr;
    using CDirectSndDevice::createDSndObject;
    using CDirectSndDevice::selectSoundCards;
    using CDirectSndDevice::getDSCAPS;
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

// Message boxes are answered OK and remembered in order, from any thread.
class MessageBoxLog
{
public:
    MessageBoxLog();
    ~MessageBoxLog();
    std::vector<std::wstring> texts() const;
    bool saw(const std::wstring& text) const;
    void clear();
};

// A file in the temporary folder, for the objects that store their settings with serialize.
class ArchiveFile
{
public:
    ArchiveFile();
    ~ArchiveFile();
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
    std::vector<unsigned char> bytes() const;
    void write(const std::vector<unsigned char>& data) const;

    std::wstring path;
};

tWAVEFORMATEX pcmFormat(WORD channels, DWORD rate, WORD bits);
bool sameFormat(const tWAVEFORMATEX& a, const tWAVEFORMATEX& b);

class DeviceTest : public ::testing::Test
{
protected:
    // Opens the default device through the tap, keeping nothing of it in the log.
    void openDevice(TestDevice& device);
    // The platform takes a level one call late: asking twice puts it there.
    void bringLevel(TestDevice& device, DWORD level);

    dstap::DSoundTap tap;
    MessageBoxLog messages;
};
