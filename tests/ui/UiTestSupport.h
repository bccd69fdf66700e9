#pragma once
// What the dialog tests share: a device whose protected openers are reachable, a host
// window for the cooperative level, message boxes answered and remembered, and a way to
// open a dialog on this thread while another thread drives it.

#include "DirectSndty.h"
#include "dialogs/resource.h"
#include "DialogDriver.h"
#include "WindowShot.h"

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
    using CDirectSndDevice::m_pDirectSound;

    DWORD coopLevel() const { return m_dwCoopLevel; }
    CDSndDeviceInfoty* deviceList() const { return m_pDeviceInfo; }
};

class DialogTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    // Runs `open` here while `drive` works the dialog with this caption from another
    // thread. A dialog that `drive` leaves open is cancelled, so the test cannot hang.
    int runDialog(const std::wstring& caption, const std::function<void(HWND)>& drive,
                  const std::function<int()>& open);
    // Handles this thread's messages, where modeless dialogs live, while `work` runs on
    // another thread.
    static void pumpMessagesWhile(const std::function<void()>& work);
    // Answers the system's file dialog with this caption: enters `file` and confirms, or
    // cancels it when `file` is empty.
    static bool answerFileDialog(const std::wstring& caption, const std::wstring& file);
    // Lets the dialog paint, then saves its picture under the dialog's class name.
    static void shoot(HWND dialog, const std::wstring& name);
    // Checks `id` and clears the other radio buttons from `first` to `last`, as a click would.
    static void chooseRadio(HWND dialog, int first, int last, int id);
    // Ids of the checked buttons from `first` to `last`.
    static std::vector<int> checkedRadios(HWND dialog, int first, int last);
    // Lets the real message box show instead of answering it unseen.
    void showRealMessageBoxes();
    // Texts of the message boxes answered OK without being shown, in order.
    static const std::vector<std::wstring>& answeredBoxes();

    HWND host = nullptr;
};
