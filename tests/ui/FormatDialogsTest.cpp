// The dialogs that choose the primary buffer's format and the speaker configuration.

#include "UiTestSupport.h"

#include <algorithm>
#include <iterator>

using namespace dsty_test;

namespace
{
const wchar_t kFormatCaption[] = L"Setup direct sound primary format";
const wchar_t kSpeakerCaption[] = L"Setup the speaker configuration";

tWAVEFORMATEX pcm(WORD channels, DWORD rate, WORD bits)
{
    const WORD block = static_cast<WORD>(channels * bits / 8);
    return tWAVEFORMATEX{WAVE_FORMAT_PCM, channels, rate, rate * block, block, bits, 0};
}
}

class PrimaryFormatDialog : public DialogTest
{
protected:
    // A device at the priority level on the platform, with its primary buffer at `format`.
    void SetUp() override
    {
        DialogTest::SetUp();
        ASSERT_TRUE(device.createDSndObject(nullptr));
        // The platform gets the level recorded by the call before.
        ASSERT_TRUE(device.setDSndCooperatLevelStd(host, DSSCL_PRIORITY));
        ASSERT_TRUE(device.setDSndCooperatLevelStd(host, DSSCL_PRIORITY));
        ASSERT_TRUE(device.createDSndBuff1Primary());
    }

    tWAVEFORMATEX primaryFormat()
    {
        tWAVEFORMATEX format{};
        EXPECT_TRUE(device.getDSndBuffer1PrimaryWfx(&format));
        return format;
    }

    UiDevice device;
};

TEST_F(PrimaryFormatDialog, OpensOnTheCurrentFormatAndOkAppliesTheChosenOne)
{
    ASSERT_TRUE(device.setDSndPrimaryWfx(pcm(2, 48000, 16)));
    ASSERT_EQ(primaryFormat().nSamplesPerSec, 48000u);

    std::vector<std::wstring> channels, rates, bits;
    int channel = -1, rate = -1, bit = -1;
    EXPECT_EQ(runDialog(kFormatCaption, [&](HWND dialog) {
        channels = comboItems(dialog, IDC_CMB_PRIMARY_CHANNEL);
        rates = comboItems(dialog, IDC_CMB_PRIMARY_SAMPLING_RATE);
        bits = comboItems(dialog, IDC_CMB_PRIMARY_BITS_PER_SAMPLE);
        channel = comboSelection(dialog, IDC_CMB_PRIMARY_CHANNEL);
        rate = comboSelection(dialog, IDC_CMB_PRIMARY_SAMPLING_RATE);
        bit = comboSelection(dialog, IDC_CMB_PRIMARY_BITS_PER_SAMPLE);
        shoot(dialog, L"CDlgDSndPrimaryWfx");
        selectComboItem(dialog, IDC_CMB_PRIMARY_CHANNEL, 0);
        selectComboItem(dialog, IDC_CMB_PRIMARY_SAMPLING_RATE, 1);
        selectComboItem(dialog, IDC_CMB_PRIMARY_BITS_PER_SAMPLE, 0);
        pressButton(dialog, IDOK);
    }, [&] { return device.setDSndPrimaryWfxPro(); }), 1);

    EXPECT_EQ(channels, (std::vector<std::wstring>{L"1", L"2"}));
    EXPECT_EQ(rates, (std::vector<std::wstring>{L"11025", L"22050", L"44100"}));
    EXPECT_EQ(bits, (std::vector<std::wstring>{L"8", L"16"}));
    EXPECT_EQ(channel, 1);
    EXPECT_EQ(rate, 2) << "a rate not offered shows the highest";
    EXPECT_EQ(bit, 1);
    const tWAVEFORMATEX applied = primaryFormat();
    EXPECT_EQ(applied.nChannels, 1);
    EXPECT_EQ(applied.nSamplesPerSec, 22050u);
    EXPECT_EQ(applied.wBitsPerSample, 8);
    EXPECT_EQ(applied.nBlockAlign, 1);
    EXPECT_EQ(applied.nAvgBytesPerSec, 22050u);
}

TEST_F(PrimaryFormatDialog, ARateTypedByHandIsAppliedAfterTheRangeWarning)
{
    ASSERT_TRUE(device.setDSndPrimaryWfx(pcm(2, 11025, 16)));
    showRealMessageBoxes();

    std::optional<std::wstring> warning;
    int rate = -1;
    EXPECT_EQ(runDialog(kFormatCaption, [&](HWND dialog) {
        rate = comboSelection(dialog, IDC_CMB_PRIMARY_SAMPLING_RATE);
        setText(dialog, IDC_CMB_PRIMARY_SAMPLING_RATE, L"48000");
        pressButton(dialog, IDOK);
        warning = answerMessageBox(AfxGetAppName(), IDOK);
    }, [&] { return device.setDSndPrimaryWfxPro(); }), 1);

    EXPECT_EQ(rate, 0);
    EXPECT_EQ(warning, std::wstring(L"Sound data format is out of control range"));
    const tWAVEFORMATEX applied = primaryFormat();
    EXPECT_EQ(applied.nSamplesPerSec, 48000u);
    EXPECT_EQ(applied.nChannels, 2);
    EXPECT_EQ(applied.nAvgBytesPerSec, 192000u);
}

namespace
{
// The configurations in the order of their buttons.
const DWORD kConfigs[] = {DSSPEAKER_HEADPHONE, DSSPEAKER_MONO, DSSPEAKER_QUAD, DSSPEAKER_SURROUND,
                          0x50004, 0xA0004, 0x140004, 0xB40004};
const int kConfigCount = sizeof kConfigs / sizeof kConfigs[0];

// Wine, like Windows since Vista, ignores SetSpeakerConfig and always reports its mixer's
// configuration. This stands in for a card that keeps what it is told; all else goes to Wine.
class SpeakerKeepingSound final : public IDirectSound8
{
public:
    SpeakerKeepingSound(IDirectSound8* real, DWORD config) : real(real), config(config) {}

    STDMETHOD(QueryInterface)(REFIID iid, void** out) override { return real->QueryInterface(iid, out); }
    STDMETHOD_(ULONG, AddRef)() override { return ++references; }
    STDMETHOD_(ULONG, Release)() override
    {
        if (--references)
            return references;
        real->Release();
        delete this;
        return 0;
    }
    STDMETHOD(CreateSoundBuffer)(LPCDSBUFFERDESC desc, LPLPDIRECTSOUNDBUFFER out, IUnknown* outer) override
    {
        return real->CreateSoundBuffer(desc, out, outer);
    }
    STDMETHOD(GetCaps)(LPDSCAPS caps) override { return real->GetCaps(caps); }
    STDMETHOD(DuplicateSoundBuffer)(LPDIRECTSOUNDBUFFER from, LPLPDIRECTSOUNDBUFFER out) override
    {
        return real->DuplicateSoundBuffer(from, out);
    }
    STDMETHOD(SetCooperativeLevel)(HWND window, DWORD level) override { return real->SetCooperativeLevel(window, level); }
    STDMETHOD(Compact)() override { return real->Compact(); }
    STDMETHOD(GetSpeakerConfig)(LPDWORD out) override
    {
        *out = config;
        return DS_OK;
    }
    STDMETHOD(SetSpeakerConfig)(DWORD value) override
    {
        config = value;
        return real->SetSpeakerConfig(value);
    }
    STDMETHOD(Initialize)(LPCGUID device) override { return real->Initialize(device); }
    STDMETHOD(VerifyCertification)(LPDWORD out) override { return real->VerifyCertification(out); }

private:
    IDirectSound8* real;
    DWORD config;
    ULONG references = 1;
};
}

class SpeakerDialog : public DialogTest
{
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        ASSERT_TRUE(device.createDSndObject(nullptr));
    }

    // Opens the dialog through setSpeakerPro and notes the checked buttons, then chooses
    // the button `choice` (none when negative) and presses OK.
    int choose(int choice, std::vector<int>& checked, const wchar_t* shot = nullptr)
    {
        return runDialog(kSpeakerCaption, [&](HWND dialog) {
            checked = checkedRadios(dialog, IDC_RADIO_SPEAKER_HEADPHONE, IDC_RADIO_SPEAKER_STEREO_MAX);
            if (shot)
                shoot(dialog, shot);
            if (choice >= 0)
                chooseRadio(dialog, IDC_RADIO_SPEAKER_HEADPHONE, IDC_RADIO_SPEAKER_STEREO_MAX,
                            IDC_RADIO_SPEAKER_HEADPHONE + choice);
            pressButton(dialog, IDOK);
        }, [&] { return device.setSpeakerPro(); });
    }

    void cardKeeps(DWORD config) { device.m_pDirectSound = new SpeakerKeepingSound(device.m_pDirectSound, config); }

    UiDevice device;
};

TEST_F(SpeakerDialog, OpensOnWhatTheCardReports)
{
    const DWORD reported = device.getSpeakerConfig();
    const auto offered = std::find(std::begin(kConfigs), std::end(kConfigs), reported);
    ASSERT_NE(offered, std::end(kConfigs)) << "Wine reports stereo, 0x" << std::hex << reported;

    std::vector<int> checked;
    EXPECT_EQ(choose(-1, checked, L"CDlgSpeakerConfig"), 1);
    EXPECT_EQ(checked, std::vector<int>{IDC_RADIO_SPEAKER_HEADPHONE + int(offered - std::begin(kConfigs))});
}

class SpeakerOffer : public SpeakerDialog, public ::testing::WithParamInterface<int>
{
};

// Each configuration checks its own button, and each button sets its own configuration.
TEST_P(SpeakerOffer, ShowsTheCurrentConfigurationAndOkSetsTheChosenOne)
{
    const int current = GetParam(), next = (current + 1) % kConfigCount;
    cardKeeps(kConfigs[current]);
    std::vector<int> checked;
    EXPECT_EQ(choose(next, checked), 1);

    EXPECT_EQ(checked, std::vector<int>{IDC_RADIO_SPEAKER_HEADPHONE + current});
    EXPECT_EQ(device.getSpeakerConfig(), kConfigs[next]);
}

INSTANTIATE_TEST_SUITE_P(EveryOffer, SpeakerOffer, ::testing::Range(0, kConfigCount));

TEST_F(SpeakerDialog, StereoIsRecognisedByItsGeometryAlone)
{
    cardKeeps(0x140004 | 0x100);
    std::vector<int> checked;
    EXPECT_EQ(choose(-1, checked), 1);
    EXPECT_EQ(checked, std::vector<int>{IDC_RADIO_SPEAKER_STEREO_WIDE});
    EXPECT_EQ(device.getSpeakerConfig(), 0x140004u) << "OK hands back the offered value";
}

TEST_F(SpeakerDialog, AConfigurationNotOfferedChecksNothingAndOkKeepsIt)
{
    cardKeeps(DSSPEAKER_5POINT1);
    std::vector<int> checked;
    EXPECT_EQ(choose(-1, checked), 1);
    EXPECT_TRUE(checked.empty());
    EXPECT_EQ(device.getSpeakerConfig(), static_cast<DWORD>(DSSPEAKER_5POINT1));
}
