#pragma once
// Drives a modal dialog that runs on the test's main thread, from a second thread.
// Controls are changed with sent messages (the modal loop answers them) and buttons are
// pressed by posting WM_COMMAND to the dialog: a cross-thread BM_CLICK hangs under Wine.

#include <windows.h>

#include <string>
#include <vector>

namespace dsty_test
{
// A visible top-level window of this process with this caption (in any letter case); null after
// the timeout.
HWND waitForWindow(const std::wstring& caption, DWORD timeoutMs = 5000);
// True once `window` no longer exists.
bool waitUntilGone(HWND window, DWORD timeoutMs = 5000);

bool setCheck(HWND dialog, int id, bool checked);  // check box or radio button
bool isChecked(HWND dialog, int id);
// Selects item `index` and tells the dialog, as a user's choice would.
bool selectComboItem(HWND dialog, int id, int index);
int comboSelection(HWND dialog, int id);  // CB_ERR when nothing is selected
std::vector<std::wstring> comboItems(HWND dialog, int id);
bool setText(HWND dialog, int id, const std::wstring& text);
std::wstring controlText(HWND dialog, int id);
std::wstring windowText(HWND window);
bool isControlEnabled(HWND dialog, int id);
// Presses the button `id` (IDOK, IDCANCEL or any push button) by posting its BN_CLICKED.
bool pressButton(HWND dialog, int id);
}
