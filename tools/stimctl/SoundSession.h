#pragma once
// The default output device brought up for a console program: a hidden window owns the
// cooperative level, and the device is registered with the record/play objects. Objects
// that play through the device must be gone before the session ends.

#include "DirectSndty.h"

#include <string>

class SoundSession
{
public:
    SoundSession();
    ~SoundSession();
    SoundSession(const SoundSession&) = delete;
    SoundSession& operator=(const SoundSession&) = delete;

    // False with the reason when the device cannot be brought up.
    bool open(std::string& reason);
    CDirectSndDevicety& device() { return m_device; }

private:
    HWND m_window;
    CDirectSndDevicety m_device;
    bool m_open;
};
