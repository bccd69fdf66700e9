#include "DeviceTestSupport.h"
#include <algorithm>
#include <mutex>

namespace
{
std::mutex g_lock;
std::vector<std::wstring> g_texts;

int CALLBACK recordAndAnswerOk(LPCTSTR lpszText, UINT /*nType*/, UINT /*nIDHelp*/)
{
    std::lock_guard<std::mutex> hold(g_lock);
    g_texts.push_back(lpszText);
    return IDOK;
}
}

MessageBoxLog::MessageBoxLog()
{
    clear();
    AfxSetMessageBoxAnswerer(recordAndAnswerOk);
}

MessageBoxLog::~MessageBoxLog()
{
    AfxSetMessageBoxAnswerer(NULL);
}

std::vector<std::wstring> MessageBoxLog::texts() const
{
    std::lock_guard<std::mutex> hold(g_lock);
    return g_texts;
}

bool MessageBoxLog::saw(const std::wstring& text) const
{
    std::vector<std::wstring> seen = texts();
    return std::find(seen.begin(), seen.end(), text) != seen.end();
}

void MessageBoxLog::clear()
{
    std::lock_guard<std::mutex> hold(g_lock);
    g_texts.clear();
}

ArchiveFile::ArchiveFile()
{
    wchar_t folder[MAX_PATH], name[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"dst", 0, name);
    path = name;
}

ArchiveFile::~ArchiveFile()
{
    DeleteFileW(path.c_str());
}

std::vector<unsigned char> ArchiveFile::bytes() const
{
    CFile file(path.c_str(), CFile::modeRead);
    std::vector<unsigned char> data(static_cast<size_t>(file.GetLength()));
    if (!data.empty())
        file.Read(data.data(), static_cast<UINT>(data.size()));
    return data;
}

void ArchiveFile::write(const std::vector<unsigned char>& data) const
{
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    file.Write(data.data(), static_cast<UINT>(data.size()));
}

tWAVEFORMATEX pcmFormat(WORD channels, DWORD rate, WORD bits)
{
    const WORD align = static_cast<WORD>(channels * bits / 8);
    return {WAVE_FORMAT_PCM, channels, rate, rate * align, align, bits, 0};
}

bool sameFormat(const tWAVEFORMATEX& a, const tWAVEFORMATEX& b)
{
    return memcmp(&a, &b, sizeof(tWAVEFORMATEX)) == 0;
}

void DeviceTest::openDevice(TestDevice& device)
{
    ASSERT_EQ(1, device.createDSndObject(NULL));
    tap.clearLog();
}

void DeviceTest::bringLevel(TestDevice& device, DWORD level)
{
    HWND window = reinterpret_cast<HWND>(0x1234);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(window, level));
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(window, level));
    const auto levels = tap.callsTo("IDirectSound8::SetCooperativeLevel");
    ASSERT_FALSE(levels.empty());
    ASSERT_EQ(level, levels.back().args[1]);
}
