#pragma once
// What the dialog tests share: a device whose protected openers are reachable, a host window
// for the cooperative level, a sound buffer with data to load, message boxes answered unseen
// and remembered, and a way to open a dialog on this thread while another thread drives it.

#include "DirectSndty.h"
#include "dialogs/resource.h"
#include "DialogDriver.h"
#include "ToneGenerator.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

class UiDevice : public CDirectSndDevicety
{
public:
    using CDirectSndDevice::createDSndObject;
    using CDirectSndDevice::selectSoundCards;
    using CDirectSndDevice::getDSCAPSPro;
    using CDirectSndDevice1BufferPrimary::createDSndBuff1Primary;
    using CDirectSndDevice3Speak::setSpeakerPro;
    using CDirectSndDevice3Speak::m_dwSpeakerConfig;

    DWORD coopLevel() const { return m_dwCoopLevel; }
    CDSndDeviceInfoty* deviceList() const { return m_pDeviceInfo; }
};

class UiBuffer : public CDirectSnd3DBuffty
{
public:
    using CDirectSnd2DBuff::m_pDSBuffer;
};

class DialogTest : public ::testing::Test
{
public:
    // Runs `open` here while `drive` works the dialog with this caption from another
    // thread. A dialog that `drive` leaves open is cancelled, so the test cannot hang.
    int runDialog(const std::wstring& caption, const std::function<void(HWND)>& drive,
                  const std::function<int()>& open);
    // Handles this thread's messages, where modeless dialogs live, while `work` runs on
    // another thread.
    static void pumpMessagesWhile(const std::function<void()>& work);
    // Answers the system's file dialog with this caption: enters `file` and confirms.
    static bool answerFileDialog(const std::wstring& caption, const std::wstring& file);
    // Lets the dialog paint, then saves its picture under the dialog's class name, once a run.
    static void shoot(HWND dialog, const std::wstring& name);
    // Texts of the controls `ids`, in order.
    static std::vector<std::wstring> texts(HWND dialog, std::initializer_list<int> ids);
    // Whether each of the controls `ids` is enabled, as "1010".
    static std::string enabled(HWND dialog, std::initializer_list<int> ids);
    // Waits until enabled(dialog, ids) gives `states`; false when it does not in time.
    static bool becomes(HWND dialog, std::initializer_list<int> ids, const std::string& states, DWORD timeoutMs = 3000);
    // Ids of the checked buttons from `first` to `last`.
    static std::vector<int> checkedRadios(HWND dialog, int first, int last);
    // Tag, channels, rate, bits, block align and byte rate of a format, to compare formats whole.
    static std::vector<unsigned long> fieldsOf(const WAVEFORMATEX& format);
    // Rich edit controls may hand line ends back as "\r\n" or "\r".
    static std::wstring withNewlines(std::wstring text);
    // Texts of the boxes answered since the test began, from the `from`th on.
    static std::vector<std::wstring> answeredBoxes(size_t from = 0);
    // Presses `button` and gives the text of the box that answers it, "" when none does.
    static std::wstring refusalOf(HWND dialog, int button);

protected:
    void SetUp() override;
    void TearDown() override;
    // Brings the device up at the priority level and puts `seconds` of a 1 kHz tone, 16-bit
    // mono at 44100 Hz, in `data`.
    void openDeviceWithTone(double seconds);

    // Message boxes are answered unseen with this, IDOK until told otherwise.
    static int boxAnswer;
    static int CALLBACK answerBox(LPCTSTR text, UINT, UINT);
    HWND host = nullptr;
    UiDevice device;
    CSndDatatyx data;
    UiBuffer buffer;  // goes before the device that made it
};
