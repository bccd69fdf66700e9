#pragma once
// Pictures of windows for a person to look at after a run.

#include <windows.h>

#include <string>

namespace dsty_test
{
// Saves what `window` shows as a 24-bit BMP named `name` + ".bmp" in the folder named by
// the environment variable DSTY_SCREENSHOT_DIR. Gives the file's path, or "" when that
// variable is unset or the picture could not be taken or written.
std::wstring saveWindowShot(HWND window, const std::wstring& name);
}
