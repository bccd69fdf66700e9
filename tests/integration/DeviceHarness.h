#pragma once
// What the device tests share: the device with its protected layers reachable, a plain
// window to own the cooperative level, and the message boxes the library would have shown.

#include "DirectSndty.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Texts of the message boxes shown since the last clear; each was answered IDOK.
std::vector<std::wstring>& shownMessages();

class TestDevice : public CDirectSndDevicety
{
public:
    using CDirectSndDevice::m_dwCoopLevel;
    using CDirectSndDevice::m_hr;
    using CDirectSndDevice::m_pDeviceInfo;
    using CDirectSndDevice::get2ndChannels;
    using CDirectSndDevice::get2ndSampleBits;
    using CDirectSndDevice::getDSCAPS;
    using CDirectSndDevice1BufferPrimary::createDSndBuff1Primary;
    using CDirectSndDevice1BufferPrimary::m_pDSBufferPrimary;
    using CDirectSndDevice1BufferPrimary::m_wfxPrimary;
    using CDirectSndDevice3Speak::m_dwSpeakerConfig;
    using CDirectSndDevice3Speak::isHeadPhone;
    using CDirectSndDevice3Speak::isMonoSpeaker;
    using CDirectSndDevice3Speak::isQuadPhone;
    using CDirectSndDevice3Speak::isSurroundPhone;
    using CDirectSndDevice3Speak::isStereoMin;
    using CDirectSndDevice3Speak::isStereoNarrow;
    using CDirectSndDevice3Speak::isStereoWide;
    using CDirectSndDevice3Speak::isStereMax;
    using CDirectSndDevice3Speak::setHeadPhone;
    using CDirectSndDevice3Speak::setMonoSpeaker;
    using CDirectSndDevice3Speak::setQuadPhone;
    using CDirectSndDevice3Speak::setSurroundPhone;
    using CDirectSndDevice3Speak::setStereoMin;
    using CDirectSndDevice3Speak::setStereoNarrow;
    using CDirectSndDevice3Speak::setStereoWide;
    using CDirectSndDevice3Speak::setStereMax;
};

class DeviceTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Opens the default device with the platform really at DSSCL_PRIORITY: the level
    // passed to the device reaches the platform one call later.
    void bringUpAtPriority();

    HWND window = nullptr;
    TestDevice device;
};

bool sameFormat(const WAVEFORMATEX& a, const WAVEFORMATEX& b);
