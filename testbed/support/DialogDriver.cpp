#include "DialogDriver.h"

namespace dsty_test
{
namespace
{
// A sent message must not block the test forever if the dialog's thread stops answering.
constexpr UINT kSendTimeoutMs = 5000;
constexpr int kMessageBoxTextId = 0xFFFF;

LRESULT send(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    DWORD_PTR result = 0;
    if (!SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kSendTimeoutMs, &result))
        return 0;
    return static_cast<LRESULT>(result);
}

struct Search
{
    const std::wstring* caption;
    HWND found;
};

BOOL CALLBACK matchCaption(HWND window, LPARAM context)
{
    auto* search = reinterpret_cast<Search*>(context);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process != GetCurrentProcessId() || !IsWindowVisible(window))
        return TRUE;
    if (windowText(window) != *search->caption)
        return TRUE;
    search->found = window;
    return FALSE;
}

HWND findWindow(const std::wstring& caption)
{
    Search search{&caption, nullptr};
    EnumWindows(matchCaption, reinterpret_cast<LPARAM>(&search));
    return search.found;
}
}

HWND waitForWindow(const std::wstring& caption, DWORD timeoutMs)
{
    const ULONGLONG deadline = GetTickCount64() + timeoutMs;
    do
    {
        if (HWND window = findWindow(caption))
            return window;
        Sleep(20);
    } while (GetTickCount64() < deadline);
    return nullptr;
}

bool waitUntilGone(HWND window, DWORD timeoutMs)
{
    const ULONGLONG deadline = GetTickCount64() + timeoutMs;
    while (IsWindow(window))
    {
        if (GetTickCount64() >= deadline)
            return false;
        Sleep(20);
    }
    return true;
}

bool setCheck(HWND dialog, int id, bool checked)
{
    HWND control = GetDlgItem(dialog, id);
    if (!control)
        return false;
    send(control, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
    return true;
}

bool isChecked(HWND dialog, int id)
{
    HWND control = GetDlgItem(dialog, id);
    return control && send(control, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

bool selectComboItem(HWND dialog, int id, int index)
{
    HWND combo = GetDlgItem(dialog, id);
    if (!combo || send(combo, CB_SETCURSEL, static_cast<WPARAM>(index), 0) != index)
        return false;
    // CB_SETCURSEL alone does not notify; the dialog reacts to CBN_SELCHANGE.
    send(dialog, WM_COMMAND, MAKEWPARAM(id, CBN_SELCHANGE), reinterpret_cast<LPARAM>(combo));
    return true;
}

int comboSelection(HWND dialog, int id)
{
    HWND combo = GetDlgItem(dialog, id);
    return combo ? static_cast<int>(send(combo, CB_GETCURSEL, 0, 0)) : CB_ERR;
}

std::vector<std::wstring> comboItems(HWND dialog, int id)
{
    std::vector<std::wstring> items;
    HWND combo = GetDlgItem(dialog, id);
    if (!combo)
        return items;
    const auto count = static_cast<int>(send(combo, CB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i)
    {
        const auto length = send(combo, CB_GETLBTEXTLEN, i, 0);
        std::vector<wchar_t> text(static_cast<size_t>(length > 0 ? length : 0) + 1, L'\0');
        send(combo, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text.data()));
        items.emplace_back(text.data());
    }
    return items;
}

bool setText(HWND dialog, int id, const std::wstring& text)
{
    HWND control = GetDlgItem(dialog, id);
    return control && send(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

std::wstring windowText(HWND window)
{
    const auto length = send(window, WM_GETTEXTLENGTH, 0, 0);
    std::vector<wchar_t> text(static_cast<size_t>(length > 0 ? length : 0) + 1, L'\0');
    send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
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
    HWND button = GetDlgItem(dialog, id);
    return PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

std::optional<std::wstring> answerMessageBox(const std::wstring& caption, int answer, DWORD timeoutMs)
{
    HWND box = waitForWindow(caption, timeoutMs);
    if (!box)
        return std::nullopt;
    std::wstring text = controlText(box, kMessageBoxTextId);
    PostMessageW(box, WM_COMMAND, MAKEWPARAM(answer, BN_CLICKED), reinterpret_cast<LPARAM>(GetDlgItem(box, answer)));
    waitUntilGone(box, timeoutMs);
    return text;
}
}
