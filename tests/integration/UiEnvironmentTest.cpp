// The display the dialog tests rely on: a real message box on this thread, found, read,
// pictured and answered from a second thread.

#include "DialogDriver.h"
#include "WindowShot.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>
#include <thread>

using namespace dsty_test;

namespace
{
struct BmpHeaders
{
    BITMAPFILEHEADER file;
    BITMAPINFOHEADER info;
};

std::optional<BmpHeaders> readBmpHeaders(const std::wstring& path)
{
    FILE* in = _wfopen(path.c_str(), L"rb");
    if (!in)
        return std::nullopt;
    // Read one by one: the file header is 14 bytes, and a struct holding both would pad it.
    BmpHeaders headers{};
    const bool ok = std::fread(&headers.file, sizeof headers.file, 1, in) == 1 &&
                    std::fread(&headers.info, sizeof headers.info, 1, in) == 1;
    std::fclose(in);
    return ok ? std::optional<BmpHeaders>(headers) : std::nullopt;
}
}

TEST(UiEnvironment, MessageBoxIsAnsweredFromAnotherThread)
{
    std::optional<std::wstring> text;
    std::wstring shot;
    RECT boxRect{};
    std::thread user([&] {
        HWND box = waitForWindow(L"environment check");
        if (!box)
            return;
        GetWindowRect(box, &boxRect);
        shot = saveWindowShot(box, L"environment-message-box");
        text = answerMessageBox(L"environment check", IDNO);
    });
    const int answer = MessageBoxW(nullptr, L"Is the display up?", L"environment check", MB_YESNO);
    user.join();

    EXPECT_EQ(answer, IDNO);
    ASSERT_TRUE(text.has_value()) << "no message box was found";
    EXPECT_EQ(*text, L"Is the display up?");

    ASSERT_FALSE(shot.empty()) << "no screenshot (is DSTY_SCREENSHOT_DIR set?)";
    const auto headers = readBmpHeaders(shot);
    ASSERT_TRUE(headers.has_value());
    EXPECT_EQ(headers->file.bfType, 0x4D42);
    EXPECT_EQ(headers->info.biBitCount, 24);
    EXPECT_EQ(headers->info.biWidth, boxRect.right - boxRect.left);
    EXPECT_EQ(headers->info.biHeight, boxRect.bottom - boxRect.top);
}

TEST(UiEnvironment, MissingWindowIsReportedAfterTheTimeout)
{
    EXPECT_EQ(waitForWindow(L"no such window", 100), nullptr);
    EXPECT_FALSE(answerMessageBox(L"no such window", IDOK, 100).has_value());
}
