#include "WindowShot.h"

#include <cstdint>
#include <fstream>
#include <vector>

namespace dsty_test
{
namespace
{
// The window's pixels as bottom-up rows of 24-bit BGR padded to 4 bytes, taken from its own
// DC, which holds them even where another window covers it.
bool capture(HWND window, BITMAPINFOHEADER& header, std::vector<uint8_t>& pixels)
{
    RECT rect;
    if (!GetWindowRect(window, &rect))
        return false;
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    header = BITMAPINFOHEADER{sizeof header, width, height, 1, 24, BI_RGB, 0, 0, 0, 0, 0};
    header.biSizeImage = ((static_cast<DWORD>(width) * 3 + 3) & ~3u) * static_cast<DWORD>(height);
    pixels.assign(header.biSizeImage, 0);

    HDC windowDc = GetWindowDC(window);
    HDC memoryDc = CreateCompatibleDC(windowDc);
    HBITMAP bitmap = CreateCompatibleBitmap(windowDc, width, height);
    HGDIOBJ previous = SelectObject(memoryDc, bitmap);
    bool ok = BitBlt(memoryDc, 0, 0, width, height, windowDc, 0, 0, SRCCOPY);
    SelectObject(memoryDc, previous);
    ok = ok && GetDIBits(memoryDc, bitmap, 0, static_cast<UINT>(height), pixels.data(),
                         reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS) == height;
    DeleteObject(bitmap);
    DeleteDC(memoryDc);
    ReleaseDC(window, windowDc);
    return ok;
}
}

std::wstring saveWindowShot(HWND window, const std::wstring& name)
{
    wchar_t folder[MAX_PATH] = L"";
    const DWORD length = GetEnvironmentVariableW(L"DSTY_SCREENSHOT_DIR", folder, MAX_PATH);
    BITMAPINFOHEADER header;
    std::vector<uint8_t> pixels;
    if (length == 0 || length >= MAX_PATH || !capture(window, header, pixels))
        return std::wstring();

    BITMAPFILEHEADER file{0x4D42 /* "BM" */, 0, 0, 0, sizeof file + sizeof header};
    file.bfSize = file.bfOffBits + static_cast<DWORD>(pixels.size());
    const std::wstring path = std::wstring(folder) + L"\\" + name + L".bmp";
    std::ofstream out(path.c_str(), std::ios::binary);
    out.write(reinterpret_cast<const char*>(&file), sizeof file);
    out.write(reinterpret_cast<const char*>(&header), sizeof header);
    out.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
    return out.good() ? path : std::wstring();
}
}
