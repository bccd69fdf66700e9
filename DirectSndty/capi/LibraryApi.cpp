// The library as a whole: its version, what the codes mean, the last error, the messages.

#include "DstyHost.h"

#ifndef DSTY_VERSION_STRING
#error "the build gives the project's version"
#endif

const char* dsty_version(void)
{
    return DSTY_VERSION_STRING;
}

const char* dsty_error_text(int code)
{
    switch (code)
    {
    case DSTY_OK: return "no error";
    case DSTY_E_ARGUMENT: return "a null or out-of-range argument";
    case DSTY_E_HANDLE: return "the handle is not open";
    case DSTY_E_FORMAT: return "the format cannot be used here";
    case DSTY_E_FILE: return "the file cannot be read";
    case DSTY_E_WRITE: return "the file cannot be written";
    case DSTY_E_DEVICE: return "the sound device refused";
    case DSTY_E_LATE: return "the frame has already been written";
    case DSTY_E_LEAD: return "the platform cannot keep this lead";
    case DSTY_E_TIMEOUT: return "the wait ended first";
    case DSTY_E_MEMORY: return "not enough memory";
    default: return "unknown error code";
    }
}

const char* dsty_last_error(void)
{
    return CDstyHost::instance().lastError();
}

void dsty_set_message_handler(dsty_message_fn fn, void* user)
{
    DstyCall call;
    CDstyHost::instance().setMessageHandler(fn, user);
}
