#include "DeviceTestSupport.h"
#include <algorithm>

namespace
{
std::vector<std::wstring> g_texts;

int CALLBACK recordAndAnswerOk(LPCTSTR lpszText, UINT /*nType*/, UINT /*nIDHelp*/)
{
    g_texts.push_back(lpszText);
    return IDOK;
}
}

MessageBoxLog::MessageBoxLog()
{
    g_texts.clear();
    AfxSetMessageBoxAnswerer(recordAndAnswerOk);
}

MessageBoxLog::~MessageBoxLog()
{
    AfxSetMessageBoxAnswerer(NULL);
}

const std::vector<std::wstring>& MessageBoxLog::texts() const
{
    return g_texts;
}

bool MessageBoxLog::saw(const std::wstring& text) const
{
    return std::find(g_texts.begin(), g_texts.end(), text) != g_texts.end();
}

void MessageBoxLog::clear()
{
    g_texts.clear();
}

tWAVEFORMATEX pcmFormat(WORD channels, DWORD rate, WORD bits)
{
    tWAVEFORMATEX wfx;
    wfx.wFormatTag = WAVE_FORMAT_PCM;
    wfx.nChannels = channels;
    wfx.nSamplesPerSec = rate;
    wfx.wBitsPerSample = bits;
    wfx.nBlockAlign = static_cast<WORD>(channels * bits / 8);
    wfx.nAvgBytesPerSec = rate * wfx.nBlockAlign;
    wfx.cbSize = 0;
    return wfx;
}

void DeviceTest::openDevice(TestDevice& device)
{
    ASSERT_EQ(1, device.createDSndObject(NULL));
    fake.clearLog();
}

void DeviceTest::bringLevel(TestDevice& device, DWORD level)
{
    HWND window = reinterpret_cast<HWND>(0x1234);
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(window, level));
    ASSERT_EQ(1, device.setDSndCooperatLevelStd(window, level));
    ASSERT_EQ(level, fake.cooperativeLevel());
}
