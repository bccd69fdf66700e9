#include "SoundSession.h"

SoundSession::SoundSession()
    : m_window(CreateWindowExW(0, L"STATIC", L"stimctl", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                               GetModuleHandleW(NULL), NULL)),
      m_open(false)
{
}

SoundSession::~SoundSession()
{
    // The device lets go of DirectSound while the window it was set up with still exists.
    if (m_open)
    {
        CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(NULL);
        m_device.releaseDSndty(&m_device);
    }
    if (m_window != NULL)
        DestroyWindow(m_window);
}

bool SoundSession::open(std::string& reason)
{
    if (m_window == NULL)
    {
        reason = "no window for the sound device";
        return false;
    }
    if (!m_device.initDSndStimX(m_window, NULL, DSSCL_PRIORITY))
    {
        reason = "the default sound device could not be brought up";
        return false;
    }
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&m_device);
    m_open = true;
    return true;
}
