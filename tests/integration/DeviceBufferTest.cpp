// The primary buffer, the speaker configuration and the 3D listener of the default device.

#include "DeviceHarness.h"
#include "ToneGenerator.h"

using dsty_test::pcmFormat;

TEST_F(DeviceTest, PrimaryFormatChangesAtPriorityAndReadsBack)
{
    bringUpAtPriority();
    ASSERT_EQ(device.createDSndBuff1Primary(), 1);
    for (const WAVEFORMATEX& wanted : {pcmFormat(22050, 1), pcmFormat(44100, 2), pcmFormat(11025, 2, 8)})
    {
        ASSERT_EQ(device.setDSndPrimaryWfx(wanted), 1) << wanted.nSamplesPerSec;
        tWAVEFORMATEX read{};
        ASSERT_EQ(device.getDSndBuffer1PrimaryWfx(&read), 1);
        EXPECT_TRUE(sameFormat(read, wanted)) << read.nSamplesPerSec << " Hz " << read.nChannels << " ch";
        EXPECT_TRUE(sameFormat(device.m_wfxPrimary, wanted));
    }
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(DeviceTest, UnusualPrimaryFormatWarnsAndIsStillApplied)
{
    bringUpAtPriority();
    ASSERT_EQ(device.createDSndBuff1Primary(), 1);
    EXPECT_EQ(device.setDSndPrimaryWfx(pcmFormat(8000, 1)), 1);
    EXPECT_EQ(shownMessages(), std::vector<std::wstring>{L"Sound data format is out of control range"});
    tWAVEFORMATEX read{};
    ASSERT_EQ(device.getDSndBuffer1PrimaryWfx(&read), 1);
    EXPECT_EQ(read.nSamplesPerSec, 8000u);
}

TEST_F(DeviceTest, PrimaryFormatRefusedBelowPriority)
{
    ASSERT_EQ(device.initDSndStimX(nullptr, nullptr, DSSCL_NORMAL), 1);
    ASSERT_EQ(device.createDSndBuff1Primary(), 1);
    EXPECT_EQ(device.setDSndPrimaryWfx(pcmFormat(44100, 2)), 0);
    EXPECT_EQ(shownMessages(), std::vector<std::wstring>{
                                   L"To change primary sound buffer formate, direct sound cooperative level at least priority"});
}

TEST_F(DeviceTest, PrimaryPlayFailsOnlyForALostBuffer)
{
    bringUpAtPriority();
    ASSERT_EQ(device.playDSnd1PrimaryBuf(), 1);  // makes the primary buffer itself
    ASSERT_NE(device.m_pDSBufferPrimary, nullptr);
    // Wine plays a primary buffer only when asked to loop; that refusal is not a lost buffer.
    EXPECT_EQ(device.m_hr, DSERR_INVALIDPARAM);

    DWORD status = 0;
    ASSERT_EQ(device.m_pDSBufferPrimary->Play(0, 0, DSBPLAY_LOOPING), DS_OK);
    EXPECT_EQ(device.stopDSnd1PrimaryBuf(), 1);
    ASSERT_EQ(device.m_pDSBufferPrimary->GetStatus(&status), DS_OK);
    EXPECT_FALSE(status & DSBSTATUS_PLAYING);

    device._closeDirectSndBufferPrimary();
    EXPECT_EQ(device.stopDSnd1PrimaryBuf(), 0);
}

TEST_F(DeviceTest, EverySpeakerSetterIsAcceptedAndRecorded)
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    const struct
    {
        int (TestDevice::*set)();
        DWORD value;
    } setters[] = {
        {&TestDevice::setMonoSpeaker, DSSPEAKER_MONO},          {&TestDevice::setQuadPhone, DSSPEAKER_QUAD},
        {&TestDevice::setSurroundPhone, DSSPEAKER_SURROUND},     {&TestDevice::setStereoMin, 0x50004},
        {&TestDevice::setStereoNarrow, 0xA0004},                 {&TestDevice::setStereoWide, 0x140004},
        {&TestDevice::setStereMax, 0xB40004},                    {&TestDevice::setHeadPhone, DSSPEAKER_HEADPHONE},
    };
    for (const auto& setter : setters)
    {
        EXPECT_EQ((device.*setter.set)(), 1) << std::hex << setter.value;
        EXPECT_EQ(device.m_dwSpeakerConfig, setter.value);
    }
    EXPECT_TRUE(shownMessages().empty());
}

TEST_F(DeviceTest, SpeakerConfigurationIsReadFromTheDevice)
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    ASSERT_EQ(device.m_dwSpeakerConfig, static_cast<DWORD>(DSSPEAKER_HEADPHONE));
    DWORD reported = 0;
    ASSERT_EQ(device.getDirectSnd()->GetSpeakerConfig(&reported), DS_OK);
    // Wine ignores the set value and always reports wide stereo.
    ASSERT_EQ(reported, 0x140004u);

    EXPECT_EQ(device.getSpeakerConfig(), reported);
    EXPECT_EQ(device.m_dwSpeakerConfig, reported);
    EXPECT_EQ(device.isStereoWide(), 1);
    for (auto test : {&TestDevice::isHeadPhone, &TestDevice::isMonoSpeaker, &TestDevice::isQuadPhone,
                      &TestDevice::isSurroundPhone, &TestDevice::isStereoMin, &TestDevice::isStereoNarrow,
                      &TestDevice::isStereMax})
        EXPECT_EQ((device.*test)(), 0);
}

TEST_F(DeviceTest, ListenerIsAbsentUntilInitialised)
{
    ASSERT_EQ(device.initDSndStimX(window, nullptr, DSSCL_PRIORITY), 1);
    EXPECT_EQ(device.getDirectSnd3DListener(false), nullptr);
    EXPECT_EQ(device.getDS3DListenerPara(), 0);
    EXPECT_EQ(shownMessages(), std::vector<std::wstring>{L"Please initialize Direct3DSndListener first!"});
}

TEST_F(DeviceTest, InitialisedListenerReadsItsDefaults)
{
    bringUpAtPriority();
    IDirectSound3DListener* listener = device.initializeDSndListener();
    ASSERT_NE(listener, nullptr);
    EXPECT_EQ(device.m_pDSBufferPrimary, nullptr);  // the primary buffer was only borrowed
    EXPECT_EQ(device.getDirectSnd3DListener(false), listener);

    ASSERT_EQ(device.getDS3DListenerPara(), 1);
    const DS3DLISTENER& read = device.m_ds3dListener;
    EXPECT_EQ(read.dwSize, sizeof(DS3DLISTENER));
    EXPECT_FLOAT_EQ(read.flDistanceFactor, 1.0f);
    EXPECT_FLOAT_EQ(read.flRolloffFactor, 1.0f);
    EXPECT_FLOAT_EQ(read.flDopplerFactor, 1.0f);
    EXPECT_FLOAT_EQ(read.vOrientFront.z, 1.0f);
    EXPECT_FLOAT_EQ(read.vOrientTop.y, 1.0f);
}

TEST_F(DeviceTest, ListenerParametersAreSetAndCommitted)
{
    bringUpAtPriority();
    ASSERT_NE(device.initializeDSndListener(), nullptr);
    ASSERT_EQ(device.getDS3DListenerPara(), 1);
    device.m_ds3dListener.vPosition = {1.0f, 2.0f, 3.0f};
    device.m_ds3dListener.flRolloffFactor = 2.0f;
    ASSERT_EQ(device.setCommitDS3DListenerParam(), 1);
    ASSERT_EQ(device.commitDS3DListenerDeferredSettings(), 1);

    device.m_ds3dListener = DS3DLISTENER{};
    ASSERT_EQ(device.getDS3DListenerPara(), 1);
    EXPECT_FLOAT_EQ(device.m_ds3dListener.vPosition.y, 2.0f);
    EXPECT_FLOAT_EQ(device.m_ds3dListener.vPosition.z, 3.0f);
    EXPECT_FLOAT_EQ(device.m_ds3dListener.flRolloffFactor, 2.0f);
    EXPECT_TRUE(shownMessages().empty());
}
