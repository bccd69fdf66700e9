#include "WindowShot.h"

#include <cstdint>
#include <vector>

namespace dsty_test
{
namespace
{
std::wstring screenshotFolder()
{
    wchar_t folder[MAX_PATH] = L"";
    const DWORD length = GetEnvironmentVariableW(L"DSTY_SCREENSHOT_DIR", folder, MAX_PATH);
    return length > 0 && length < MAX_PATH ? std::wstring(folder) : std::wstring();
}

// Copies the window's pixels, bottom-up rows of 24-bit BGR padded to 4 bytes.
bool capture(HWND window, BITMAPINFOHEADER& header, std::vector<uint8_t>& pixels)
{
    RECT rect;
    if (!GetWindowRect(window, &rect))
        return false;
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    if (width <= 0 || height <= 0)
        return false;

    header = BITMAPINFOHEADER{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biCompression = BI_RGB;
    const DWORD stride = (static_cast<DWORD>(width) * 3 + 3) & ~3u;
    header.biSizeImage = stride * static_cast<DWORD>(height);
    pixels.assign(header.biSizeImage, 0);

    HDC windowDc = GetWindowDC(window);
    HDC memoryDc = CreateCompatibleDC(windowDc);
    HBITMAP bitmap = CreateCompatibleBitmap(windowDc, width, height);
    HGDIOBJ previous = SelectObject(memoryDc, bitmap);
    // The window's own DC holds its pixels even where another window covers it.
    bool ok = BitBlt(memoryDc, 0, 0, width, height, windowDc, 0, 0, SRCCOPY);
    SelectObject(memoryDc, previous);
    ok = ok && GetDIBits(memoryDc, bitmap, 0, static_cast<UINT>(height), pixels.data(),
                         reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS) == height;
    DeleteObject(bitmap);
    DeleteDC(memoryDc);
    ReleaseDC(window, windowDc);
    return ok;
}

bool writeBmp(const std::wstring& path, const BITMAPINFOHEADER& header, const std::vector<uint8_t>& pixels)
{
    BITMAPFILEHEADER file{};
    file.bfType = 0x4D42;  // "BM"
    file.bfOffBits = sizeof file + sizeof header;
    file.bfSize = file.bfOffBits + static_cast<DWORD>(pixels.size());
    HANDLE out = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (out == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0, total = 0;
    bool ok = WriteFile(out, &file, sizeof file, &written, nullptr);
    total += written;
    ok = ok && WriteFile(out, &header, sizeof header, &written, nullptr);
    total += written;
    ok = ok && WriteFile(out, pixels.data(), static_cast<DWORD>(pixels.size()), &written, nullptr);
    total += written;
    CloseHandle(out);
    return ok && total == file.bfSize;
}
}

std::wstring saveWindowShot(HWND window, const std::wstring& name)
{
    const std::wstring folder = screenshotFolder();
    BITMAPINFOHEADER header;
    std::vector<uint8_t> pixels;
    if (folder.empty() || !capture(window, header, pixels))
        return std::wstring();
    const std::wstring path = folder + L"\\" + name + L".bmp";
    return writeBmp(path, header, pixels) ? path : std::wstring();
}
}
