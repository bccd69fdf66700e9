// The device chain through the tap: the format rules, opening, the cooperative level,
// capabilities, the device lists, speakers, the stimulus set-up, the primary buffer, and the
// buffers and listener it hands out.

#include "UnitFixtures.h"

#include "DialogDriver.h"

#include <functional>
#include <thread>

namespace
{
// initDSndStim is private and nothing in the library calls it; an explicit instantiation is
// the one place the language lets a test name it.
using StimSetUp = int (CDirectSndDevice8Stim::*)(HWND, tWAVEFORMATEX*);
StimSetUp plainStimSetUp();
template <StimSetUp Member> struct Reach
{
    friend StimSetUp plainStimSetUp() { return Member; }
};
template struct Reach<&CDirectSndDevice8Stim::initDSndStim>;

// A card that mixes secondary buffers of the given kinds at 100 to 200,000 Hz.
DSCAPS capsWith(DWORD flags)
{
    DSCAPS caps = {};
    caps.dwSize = sizeof caps;
    caps.dwFlags = flags;
    caps.dwMinSecondarySampleRate = 100;
    caps.dwMaxSecondarySampleRate = 200000;
    return caps;
}

DSBUFFERDESC describe(DWORD flags, tWAVEFORMATEX* pWfx)
{
    return {sizeof(DSBUFFERDESC), flags, pWfx->nAvgBytesPerSec, 0, pWfx, GUID_NULL};
}

TEST_F(DeviceTest, AcceptsPcmInTheRateBandWithMatchingAlignmentOnly)
{
    const struct { const char* what; std::function<void(tWAVEFORMATEX&)> change; int supported; } cases[] = {
        {"as made", [](tWAVEFORMATEX&) {}, 1},
        {"44100", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 44100; }, 1},
        {"44101", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 44101; }, 0},
        {"11025", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 11025; }, 1},
        {"11024", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 11024; }, 0},
        {"rate 0 wraps in the unsigned band test", [](tWAVEFORMATEX& w) { w.nSamplesPerSec = 0; }, 0},
        {"3 channels", [](tWAVEFORMATEX& w) { w.nChannels = 3; }, 0},
        {"alignment 0", [](tWAVEFORMATEX& w) { w.nBlockAlign = 0; }, 0},
        {"alignment 5", [](tWAVEFORMATEX& w) { w.nBlockAlign = 5; }, 0},
        {"extra bytes", [](tWAVEFORMATEX& w) { w.cbSize = 22; }, 0},
        {"float", [](tWAVEFORMATEX& w) { w.wFormatTag = WAVE_FORMAT_IEEE_FLOAT; }, 0},
        {"bits and byte rate are not looked at", [](tWAVEFORMATEX& w) { w.wBitsPerSample = 24, w.nAvgBytesPerSec = 1; }, 1},
    };
    for (const auto& c : cases) {
        tWAVEFORMATEX wfx = pcmFormat(2, 22050, 16);
        c.change(wfx);
        EXPECT_EQ(c.supported, device.isSupportWfx(wfx)) << c.what;
    }
}

// A closed device sets no level; a failed level falls back to normal and keeps the window.
TEST_F(DeviceTest, CooperativeLevelReachesThePlatformOneCallLate)
{
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    openDevice();
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_EXCLUSIVE));
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY));
    auto calls = tap.callsTo("IDirectSound8::SetCooperativeLevel");
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(kWindow), calls[0].args[0]);
    EXPECT_EQ((std::vector<std::uintptr_t>{DSSCL_NORMAL, DSSCL_EXCLUSIVE}),
              (std::vector<std::uintptr_t>{calls[0].args[1], calls[1].args[1]}));

    tap.failAlways("IDirectSound8::SetCooperativeLevel", DSERR_INVALIDPARAM);
    EXPECT_EQ(0, device.setDSndCooperatLevelStd(reinterpret_cast<HWND>(0x99), DSSCL_PRIORITY));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
    EXPECT_EQ(kWindow, device.getSndDeviceHwnd());
    EXPECT_EQ((Texts{L"Set direct sound cooperative level error"}), messages.texts());
}

// Answers prefer stereo and eight bits; a positive success counts as failure; a failed report
// shows its message and zeroes the record.
TEST_F(DeviceTest, CapabilityAnswers)
{
    openDevice();
    const struct { DWORD flags; int channels, bits; } rows[] = {
        {DSCAPS_SECONDARYMONO | DSCAPS_SECONDARYSTEREO | DSCAPS_SECONDARY8BIT | DSCAPS_SECONDARY16BIT, 2, 8},
        {DSCAPS_SECONDARYMONO | DSCAPS_SECONDARY16BIT, 1, 16},
        {0, 0, 0}};
    for (const auto& row : rows)
    {
        tap.answerWith("IDirectSound8::GetCaps", 0, capsWith(row.flags));
        EXPECT_EQ(row.channels, device.get2ndChannels()) << row.flags;
        EXPECT_EQ(row.bits, device.get2ndSampleBits()) << row.flags;
    }
    DWORD minRate = 7, maxRate = 8;
    ASSERT_EQ(1, device.getDSnd2ndBufSmpRat(minRate, maxRate));
    EXPECT_EQ(std::make_pair(100ul, 200000ul), std::make_pair(minRate, maxRate));

    tap.clearScript();
    tap.failAlways("IDirectSound8::GetCaps", S_FALSE);
    EXPECT_EQ(0, device.get2ndChannels());
    tap.failAlways("IDirectSound8::GetCaps", DSERR_GENERIC);
    EXPECT_EQ(0, device.getDSCAPSPro());
    EXPECT_EQ((Texts{L"Get sound device capability  error"}), messages.texts());
    EXPECT_EQ(96u, device.m_dsCaps.dwSize);
    EXPECT_EQ(0u, device.m_dsCaps.dwFlags);
}

TEST_F(DeviceTest, ChosenDefaultCardInAnyLetterCaseOpensWithoutAGuid)
{
    tap.setPlaybackDevices({{true, GUID{0xDEADBEEF, 1, 2, {3}}, "primary SOUND driver", ""}});
    std::thread user([] {
        if (HWND dialog = dsty_test::waitForWindow(L"Direct sound device information"))
            dsty_test::pressButton(dialog, IDOK);
    });
    const int opened = device.selectSoundCards();
    user.join();
    EXPECT_EQ(1, opened);
    ASSERT_EQ(1, tap.count("DirectSoundCreate8"));
    EXPECT_EQ(0u, tap.callsTo("DirectSoundCreate8")[0].args[0]);
}

// The entry without a GUID is the default; the list holds 90 entries, and more are dropped.
TEST_F(DeviceTest, DeviceListMarksTheDefaultAndKeepsWithinItsSize)
{
    const GUID card = {0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};
    std::vector<dstap::DeviceEntry> cards = {{true, card, "Null Output", "stim"},
                                             {false, GUID_NULL, "Primary Sound Driver", ""}};
    for (int i = 2; i < 95; i++)
        cards.push_back({true, GUID{static_cast<unsigned long>(i), 0, 0, {0}}, "card " + std::to_string(i), "m"});
    tap.setPlaybackDevices(cards);
    CEnumerateDirectSndDevice enumerator;
    std::unique_ptr<CDSndDeviceInfoty> pInfo(enumerator.getDSndDeviceInfo());
    ASSERT_NE(nullptr, pInfo);
    EXPECT_EQ(90, pInfo->m_nDeviceNumber);
    EXPECT_EQ(1, pInfo->m_nPrimaryDevice);
    EXPECT_TRUE(IsEqualGUID(card, pInfo->m_guidDevice[0]));
    EXPECT_TRUE(IsEqualGUID(GUID_NULL, pInfo->m_guidDevice[1]));
    EXPECT_STREQ(L"stim", pInfo->m_strModule[0]);
    EXPECT_STREQ(L"card 89", pInfo->m_strDescription[89]);

    tap.setPlaybackDevices({});
    tap.failAlways("DirectSoundCaptureEnumerateA", DSERR_NODRIVER);
    EXPECT_EQ(nullptr, enumerator.getDSndDeviceInfo());
    EXPECT_EQ(-1, enumerator.getDSndDeviceCaptureNumber());
    EXPECT_EQ(nullptr, device.enumerateDirectSndDeviceInfo());
    EXPECT_EQ((Texts{L"Enumerating audio devices error"}), messages.texts());
}

// A closed device asks nothing; the stereo tests read configuration and geometry (bits above
// it are ignored), the headphone test the whole value.
TEST_F(DeviceTest, SpeakerTestsReadTheConfiguration)
{
    EXPECT_EQ(0u, device.getSpeakerConfig());
    EXPECT_EQ(0, tap.count("IDirectSound8::GetSpeakerConfig"));
    openDevice();
    const struct { DWORD config; int wide, max, headphone; } rows[] = {
        {0x140004, 1, 0, 0}, {0x140005, 0, 0, 0}, {0xFF140004, 1, 0, 0}, {0x10001, 0, 0, 0}, {1, 0, 0, 1}};
    for (const auto& row : rows)
    {
        tap.answerWith("IDirectSound8::GetSpeakerConfig", 0, row.config);
        EXPECT_EQ((std::vector<int>{row.wide, row.max, row.headphone}),
                  (std::vector<int>{device.isStereoWide(), device.isStereMax(), device.isHeadPhone()}))
            << std::hex << row.config;
    }
}

// Only the headphone setter takes S_FALSE as success, and only it reports a failure.
TEST_F(DeviceTest, SpeakerSettersRecordWhatThePlatformTook)
{
    openDevice();
    // Wine takes a configuration without keeping it: read back what was set last.
    tap.answer("IDirectSound8::GetSpeakerConfig", [this](const dstap::Call& call) {
        *call.out<DWORD>(0) = static_cast<DWORD>(tap.callsTo("IDirectSound8::SetSpeakerConfig").back().args[0]);
        return DS_OK;
    });
    ASSERT_EQ(1, device.setStereMax());
    EXPECT_EQ(0xB40004u, device.m_dwSpeakerConfig);
    ASSERT_EQ(1, device.setHeadPhone());
    EXPECT_EQ(1u, device.m_dwSpeakerConfig);

    tap.failAlways("IDirectSound8::SetSpeakerConfig", S_FALSE);
    EXPECT_EQ(0, device.setMonoSpeaker());
    EXPECT_EQ(1u, device.m_dwSpeakerConfig);
    EXPECT_EQ(1, device.setHeadPhone());
    tap.failAlways("IDirectSound8::SetSpeakerConfig", DSERR_GENERIC);
    EXPECT_EQ(0, device.setMonoSpeaker());
    EXPECT_EQ(0, device.setHeadPhone());
    EXPECT_EQ((Texts{L"Set speaker configuration error"}), messages.texts());
}

// Without a window no level is set and headphones decide; both set-ups at the exclusive level
// record it and compact the device.
TEST_F(DeviceTest, StimulusSetUpSetsLevelSpeakersAndCompacts)
{
    ASSERT_EQ(1, device.initDSndStimX(NULL, NULL, DSSCL_EXCLUSIVE));
    EXPECT_EQ(0, tap.count("IDirectSound8::SetCooperativeLevel"));
    EXPECT_EQ(static_cast<DWORD>(DSSCL_NORMAL), device.m_dwCoopLevel);
    EXPECT_EQ((Names{"SetSpeakerConfig(1)"}), sequence(tap, {"IDirectSound8::SetSpeakerConfig",
                                                             "IDirectSound8::Compact"}));

    TestDevice plain, windowed;
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    ASSERT_EQ(1, (plain.*plainStimSetUp())(kWindow, &wfx)); // the format is refused: no primary buffer yet
    EXPECT_EQ((Texts{L"Primary sound buffer is not initialized"}), messages.texts());
    ASSERT_EQ(1, windowed.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE));
    for (TestDevice* made : {&plain, &windowed})
        EXPECT_EQ(static_cast<DWORD>(DSSCL_EXCLUSIVE), made->m_dwCoopLevel);
    EXPECT_EQ(2, tap.count("IDirectSound8::Compact"));
}

// A format without a primary buffer, a failed open or a failed level ends the set-up there.
TEST_F(DeviceTest, StimulusSetUpStopsAtTheFirstFailedStep)
{
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    EXPECT_EQ(0, device.initDSndStimX(kWindow, &wfx, DSSCL_PRIORITY));
    EXPECT_EQ((Texts{L"Primary sound buffer is not initialized"}), messages.texts());
    EXPECT_NE(nullptr, device.getDirectSnd()); // what was opened stays open
    for (const char* failing : {"DirectSoundCreate8", "IDirectSound8::SetCooperativeLevel"})
    {
        TestDevice other;
        tap.failNext(failing, DSERR_NODRIVER);
        EXPECT_EQ(0, other.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE)) << failing;
    }
    EXPECT_EQ(0, tap.count("IDirectSound8::SetSpeakerConfig"));
}

// Releasing another device touches nothing; releasing this one, or destroying it, lets
// everything go but keeps the level.
TEST_F(DeviceTest, ReleaseAndDestructionLetEverythingGo)
{
    {
        TestDevice local;
        ASSERT_EQ(1, local.createDSndObject(NULL));
        local.createDSndBuff1Primary();
        local.initializeDSndListener();
        local.createDSndBuff1Primary();
        ASSERT_NE(nullptr, local.enumerateDirectSndDeviceInfo());
        ASSERT_NE(nullptr, local.enumerateDirectSndDeviceInfo());
    }
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
    openDevice();
    device.createDSndBuff1Primary();
    TestDevice other;
    EXPECT_EQ(0, device.releaseDSndty(&other));
    EXPECT_NE(nullptr, device.m_pDSBufferPrimary);
    device.m_dwCoopLevel = DSSCL_PRIORITY;
    EXPECT_EQ(0, device.releaseDSndty(&device));
    EXPECT_EQ(nullptr, device.getDirectSnd());
    EXPECT_EQ(nullptr, device.m_pDSBufferPrimary);
    EXPECT_EQ(static_cast<DWORD>(DSSCL_PRIORITY), device.m_dwCoopLevel);
    EXPECT_EQ(0, tap.liveObjects()) << tap.leakReport();
    EXPECT_EQ(0, tap.overReleases());
}

// --- the primary buffer ---

// Made from a plain primary description; a missing buffer is reported with the system's error
// code; the format is checked for device, buffer and level in that order.
TEST_F(DeviceTest, PrimaryBufferIsMadePlainAndItsFormatGuarded)
{
    tWAVEFORMATEX wfx = pcmFormat(2, 44100, 16);
    EXPECT_EQ(0, device.setDSndPrimaryWfx(wfx));
    openDevice();
    EXPECT_EQ(0, device.setDSndPrimaryWfx(wfx));
    ASSERT_EQ(1, device.createDSndBuff1Primary());
    const auto request = tap.bufferRequests().at(0);
    EXPECT_EQ(40u, request.desc.dwSize);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_PRIMARYBUFFER), request.desc.dwFlags);
    EXPECT_EQ(0u, request.desc.dwBufferBytes);
    EXPECT_FALSE(request.hasFormat);
    EXPECT_EQ(0, device.setDSndPrimaryWfx(wfx));
    EXPECT_EQ(0, tap.count("IDirectSoundBuffer::SetFormat"));

    tap.failAlways("IDirectSound8::CreateSoundBuffer", DSERR_ALLOCATED);
    SetLastError(1234);
    EXPECT_EQ(0, device.createDSndBuff1Primary());
    EXPECT_EQ((Texts{L"Direct sound is not initialized", L"Primary sound buffer is not initialized",
                     L"To change primary sound buffer formate, direct sound cooperative level at least priority",
                     L"Create direct sound primary buffer error:1234 \n"}),
              messages.texts());
}

// From the priority level the same format is not set again; one out of the control range warns
// and still reaches the platform; a refusal fails silently and keeps the platform's format.
TEST_F(DeviceTest, PrimaryFormatIsSetOnlyWhenNew)
{
    openDevice();
    bringLevel(device, DSSCL_PRIORITY);
    ASSERT_EQ(1, device.createDSndBuff1Primary());
    WAVEFORMATEX reported;
    tWAVEFORMATEX cd = pcmFormat(2, 44100, 16);
    memcpy(&reported, &cd, sizeof reported);
    tap.answerWith("IDirectSoundBuffer::GetFormat", 0, reported);
    EXPECT_EQ(1, device.setDSndPrimaryWfx(cd));
    EXPECT_EQ(0, tap.count("IDirectSoundBuffer::SetFormat"));
    EXPECT_EQ(1, device.setDSndPrimaryWfx(pcmFormat(1, 8000, 8)));
    EXPECT_EQ((Texts{L"Sound data format is out of control range"}), messages.texts());
    EXPECT_EQ(8000u, device.m_wfxPrimary.nSamplesPerSec);
    EXPECT_EQ(8000u, reinterpret_cast<const WAVEFORMATEX*>(
                         tap.callsTo("IDirectSoundBuffer::SetFormat").back().data.data())->nSamplesPerSec);
    for (const char* method : {"IDirectSoundBuffer::GetStatus", "IDirectSoundBuffer::SetFormat"})
    {
        tap.failNext(method, DSERR_BADFORMAT);
        EXPECT_EQ(0, device.setDSndPrimaryWfx(pcmFormat(1, 11025, 8))) << method;
        EXPECT_EQ(44100u, device.m_wfxPrimary.nSamplesPerSec); // as last read from the platform
    }
}

// Played without the looping flag the platform refuses a primary buffer: not a loss. A lost
// buffer is restored and played again; a failed restore gives up without a retry.
TEST_F(DeviceTest, PrimaryPlayTreatsOnlyALostBufferAsFailure)
{
    openDevice();
    bringLevel(device, DSSCL_PRIORITY);
    ASSERT_EQ(1, device.createDSndBuff1Primary());
    EXPECT_EQ(1, device.playDSnd1PrimaryBuf());
    EXPECT_TRUE(FAILED(device.m_hr));
    tap.failNext("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    EXPECT_EQ(0, device.playDSnd1PrimaryBuf()); // the retry is refused too
    tap.failAlways("IDirectSoundBuffer::Play", DSERR_BUFFERLOST);
    tap.failAlways("IDirectSoundBuffer::Restore", DSERR_BUFFERLOST);
    EXPECT_EQ(1, device.playDSnd1PrimaryBuf());
    EXPECT_EQ((Names{"SetCurrentPosition(0)", "Play(0)", "SetCurrentPosition(0)", "Play(0)", "Restore", "Play(0)",
                     "SetCurrentPosition(0)", "Play(0)", "Restore"}),
              starts(tap));
    EXPECT_EQ(1, device.stopDSnd1PrimaryBuf());
    device._closeDirectSndBufferPrimary();
    EXPECT_EQ(0, device.stopDSnd1PrimaryBuf());
}

// --- buffers and the listener handed out ---

// The caller owns the buffer; a 3D one needs 3D control and fails quietly without (3D loads
// show the rest); a failed interface query is reported and leaves nothing.
TEST_F(DeviceTest, HandsOutBuffersTheCallerOwns)
{
    openDevice();
    tWAVEFORMATEX wfx = pcmFormat(1, 22050, 16);
    IDirectSoundBuffer8* pBuffer = nullptr;
    IDirectSound3DBuffer* p3D = nullptr;
    ASSERT_EQ(1, device.getDSndBuff2Std(describe(DSBCAPS_CTRLPAN, &wfx), pBuffer));
    EXPECT_EQ(1, tap.refCount(pBuffer));
    pBuffer->Release();
    EXPECT_EQ(0, device.getDirectSnd3DBuffer(describe(DSBCAPS_CTRLPAN, &wfx), pBuffer, p3D));
    EXPECT_EQ(nullptr, p3D);

    tap.failAlways("IDirectSoundBuffer::QueryInterface", E_NOINTERFACE);
    EXPECT_EQ(0, device.getDSndBuff2Std(describe(DSBCAPS_CTRLPAN, &wfx), pBuffer));
    EXPECT_EQ(nullptr, pBuffer);
    EXPECT_EQ((Texts{L"Query Interface error!"}), messages.texts());
    EXPECT_EQ(1, tap.liveObjects()) << tap.leakReport(); // the device alone
}

// The listener comes from a 3D primary buffer that is then let go; its parameters are read,
// set deferred and committed, and failures are reported.
TEST_F(DeviceTest, ListenerIsMadeReadSetAndCommitted)
{
    openDevice();
    EXPECT_EQ(nullptr, device.getDirectSnd3DListener(false));
    EXPECT_EQ(0, device.getDS3DListenerPara());
    IDirectSound3DListener* pListener = device.getDirectSnd3DListener(true);
    ASSERT_NE(nullptr, pListener);
    EXPECT_EQ(nullptr, device.m_pDSBufferPrimary);
    EXPECT_EQ(static_cast<DWORD>(DSBCAPS_PRIMARYBUFFER | DSBCAPS_CTRL3D), tap.bufferRequests().at(0).desc.dwFlags);
    EXPECT_EQ(pListener, device.getDirectSnd3DListener(false));
    ASSERT_NE(nullptr, device.initializeDSndListener()); // replacing it: see the destruction test

    ASSERT_EQ(1, device.getDS3DListenerPara());
    EXPECT_EQ(64u, device.m_ds3dListener.dwSize);
    device.m_ds3dListener.vPosition.x = 2.5f;
    ASSERT_EQ(1, device.setCommitDS3DListenerParam());
    EXPECT_EQ(static_cast<std::uintptr_t>(DS3D_DEFERRED),
              tap.callsTo("IDirectSound3DListener::SetAllParameters").at(0).args[1]);
    ASSERT_EQ(1, device.commitDS3DListenerDeferredSettings());
    ASSERT_EQ(1, device.getDS3DListenerPara());
    EXPECT_FLOAT_EQ(2.5f, device.m_ds3dListener.vPosition.x);

    for (const char* method : {"IDirectSound3DListener::GetAllParameters", "IDirectSound3DListener::SetAllParameters",
                               "IDirectSound3DListener::CommitDeferredSettings"})
        tap.failAlways(method, DSERR_GENERIC);
    EXPECT_EQ(0, device.getDS3DListenerPara());
    EXPECT_EQ(0.0f, device.m_ds3dListener.vPosition.x);
    EXPECT_EQ(0, device.setCommitDS3DListenerParam());
    EXPECT_EQ(0, device.commitDS3DListenerDeferredSettings());
    EXPECT_EQ((Texts{L"Please initialize Direct3DSndListener first!", L"Direct sound 3D listener set all parameters error",
                     L"CommitDeferredSettings error!"}),
              messages.texts());
}
}
