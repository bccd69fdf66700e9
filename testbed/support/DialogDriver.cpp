#include "DialogDriver.h"

#include <algorithm>

namespace dsty_test
{
namespace
{
// A sent message must not block the test forever if the dialog's thread stops answering.
LRESULT sendTo(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, 5000, &result) ? result : 0;
}

LRESULT sendToControl(HWND dialog, int id, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    HWND control = GetDlgItem(dialog, id);
    return control ? sendTo(control, message, wParam, lParam) : 0;
}

// A visible top-level window of this process with this caption.
HWND findWindow(const std::wstring& caption)
{
    HWND window = nullptr;
    while ((window = FindWindowExW(nullptr, window, nullptr, caption.c_str())) != nullptr)
    {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == GetCurrentProcessId() && IsWindowVisible(window))
            return window;
    }
    return nullptr;
}

// Whether `done` became true within the timeout, looking every 20 ms.
template <class Done> bool within(DWORD timeoutMs, Done done)
{
    for (const ULONGLONG deadline = GetTickCount64() + timeoutMs; !done(); Sleep(20))
        if (GetTickCount64() >= deadline)
            return false;
    return true;
}
}

HWND waitForWindow(const std::wstring& caption, DWORD timeoutMs)
{
    HWND found = nullptr;
    within(timeoutMs, [&] { return (found = findWindow(caption)) != nullptr; });
    return found;
}

bool waitUntilGone(HWND window, DWORD timeoutMs)
{
    return within(timeoutMs, [&] { return !IsWindow(window); });
}

bool setCheck(HWND dialog, int id, bool checked)
{
    HWND control = GetDlgItem(dialog, id);
    if (control)
        sendTo(control, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED);
    return control != nullptr;
}

bool isChecked(HWND dialog, int id)
{
    return sendToControl(dialog, id, BM_GETCHECK) == BST_CHECKED;
}

// CB_SETCURSEL alone does not notify; the dialog reacts to CBN_SELCHANGE.
bool selectComboItem(HWND dialog, int id, int index)
{
    if (sendToControl(dialog, id, CB_SETCURSEL, static_cast<WPARAM>(index)) != index)
        return false;
    sendTo(dialog, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
    return true;
}

int comboSelection(HWND dialog, int id)
{
    return GetDlgItem(dialog, id) ? static_cast<int>(sendToControl(dialog, id, CB_GETCURSEL)) : CB_ERR;
}

std::vector<std::wstring> comboItems(HWND dialog, int id)
{
    std::vector<std::wstring> items(static_cast<size_t>(std::max<LRESULT>(0, sendToControl(dialog, id, CB_GETCOUNT))));
    for (size_t i = 0; i < items.size(); ++i)
    {
        std::vector<wchar_t> text(static_cast<size_t>(std::max<LRESULT>(0, sendToControl(dialog, id, CB_GETLBTEXTLEN, i))) + 1);
        sendToControl(dialog, id, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text.data()));
        items[i] = text.data();
    }
    return items;
}

bool setText(HWND dialog, int id, const std::wstring& text)
{
    return sendToControl(dialog, id, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring windowText(HWND window)
{
    std::vector<wchar_t> text(static_cast<size_t>(std::max<LRESULT>(0, sendTo(window, WM_GETTEXTLENGTH))) + 1);
    sendTo(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return text.data();
}

std::wstring controlText(HWND dialog, int id)
{
    HWND control = GetDlgItem(dialog, id);
    return control ? windowText(control) : std::wstring();
}

bool isControlEnabled(HWND dialog, int id)
{
    HWND control = GetDlgItem(dialog, id);
    return control && IsWindowEnabled(control);
}

bool pressButton(HWND dialog, int id)
{
    return PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
}
}
