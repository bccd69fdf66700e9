#include "FormatCombos.h"
#include <cstdio>

// Sorted as text, index 0 of the bits list is "16".
void fillFormatCombos(CComboBox& bitsPerSample, CComboBox& channels, CComboBox& samplingRate)
{
    bitsPerSample.AddString(_T("8"));
    bitsPerSample.AddString(_T("16"));
    bitsPerSample.SetCurSel(0);
    channels.AddString(_T("1"));
    channels.AddString(_T("2"));
    channels.SetCurSel(1);
    samplingRate.AddString(_T("11025"));
    samplingRate.AddString(_T("22050"));
    samplingRate.AddString(_T("44100"));
    samplingRate.SetCurSel(2);
}

void readComboNumber(CComboBox& combo, int& value)
{
    wchar_t text[256] = {0};
    combo.GetWindowText(text, 256);
    int parsed = 0;
    if (swscanf(text, L"%d", &parsed) == 1)
        value = parsed;
}

tWAVEFORMATEX pcmFormatOf(int nChannels, int nSamplesPerSec, int nBitsPerSample)
{
    tWAVEFORMATEX wfx;
    wfx.wFormatTag = WAVE_FORMAT_PCM;
    wfx.nChannels = static_cast<WORD>(nChannels);
    wfx.nSamplesPerSec = static_cast<DWORD>(nSamplesPerSec);
    wfx.wBitsPerSample = static_cast<WORD>(nBitsPerSample);
    wfx.nBlockAlign = static_cast<WORD>(wfx.nChannels * wfx.wBitsPerSample / 8);
    wfx.nAvgBytesPerSec = wfx.nBlockAlign * wfx.nSamplesPerSec;
    wfx.cbSize = 0;
    return wfx;
}
