#include "DeviceTestSupport.h"

namespace
{
class SpeakerTest : public DeviceTest
{
protected:
    TestDevice device;
};

TEST_F(SpeakerTest, NewDeviceAssumesWideStereo)
{
    EXPECT_EQ(0x140004u, device.m_dwSpeakerConfig);
}

TEST_F(SpeakerTest, StereoTestsReadConfigurationAndGeometryButPlainTestsTheWholeValue)
{
    openDevice(device);
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0x140004});
    EXPECT_EQ(1, device.isStereoWide());
    EXPECT_EQ(0, device.isStereMax());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0x140005});
    EXPECT_EQ(0, device.isStereoWide());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0xFF140004}); // bits above the geometry are ignored
    EXPECT_EQ(1, device.isStereoWide());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{0x10001});
    EXPECT_EQ(0, device.isHeadPhone());
    tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, DWORD{1});
    EXPECT_EQ(1, device.isHeadPhone());
    EXPECT_EQ(0x140004u, device.m_dwSpeakerConfig);
}

TEST_F(SpeakerTest, SettersRecordWhatThePlatformTook)
{
    openDevice(device);
    // Wine takes a configuration without keeping it: read back what was set last.
    tap.answer("IDirectSound8::GetSpeakerConfig", [this](const dstap::Call& call) {
        *call.out<DWORD>(0) = static_cast<DWORD>(tap.callsTo("IDirectSound8::SetSpeakerConfig").back().args[0]);
        return DS_OK;
    });
    ASSERT_EQ(1, device.setStereMax());
    EXPECT_EQ(0xB40004u, device.m_dwSpeakerConfig);
    EXPECT_EQ(0xB40004u, device.getSpeakerConfig());
    ASSERT_EQ(1, device.setHeadPhone());
    EXPECT_EQ(1u, device.m_dwSpeakerConfig);
}

TEST_F(SpeakerTest, OnlyHeadphoneSetterAcceptsPositiveSuccessAndReportsFailure)
{
    openDevice(device);
    tap.failAlways("IDirectSound8::SetSpeakerConfig", S_FALSE);
    EXPECT_EQ(0, device.setMonoSpeaker());
    EXPECT_EQ(0x140004u, device.m_dwSpeakerConfig);
    EXPECT_EQ(1, device.setHeadPhone());

    tap.failAlways("IDirectSound8::SetSpeakerConfig", DSERR_GENERIC);
    EXPECT_EQ(0, device.setMonoSpeaker());
    EXPECT_TRUE(messages.texts().empty());
    EXPECT_EQ(0, device.setHeadPhone());
    EXPECT_TRUE(messages.saw(L"Set speaker configuration error"));
}

TEST_F(SpeakerTest, ClosedDeviceAsksThePlatformNothing)
{
    EXPECT_EQ(0u, device.getSpeakerConfig());
    EXPECT_EQ(0, device.setHeadPhone());
    EXPECT_EQ(0, device.isHeadPhone());
    EXPECT_EQ(0, tap.count("IDirectSound8::GetSpeakerConfig"));
    EXPECT_TRUE(messages.texts().empty());
}
}
