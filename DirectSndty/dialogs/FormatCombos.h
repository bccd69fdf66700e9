#pragma once
// The PCM format a recording dialog offers in its three combo boxes: channels, sampling
// rate and bits per sample. The lists are sorted as text and their fields are editable,
// so what counts is the text shown, chosen or typed.

#include <afxwin.h>
#include "../foundation/WaveFormat.h"

// Fills the three lists and shows 16 bits, 2 channels and 44100 Hz.
void fillFormatCombos(CComboBox& bitsPerSample, CComboBox& channels, CComboBox& samplingRate);
// The number shown in the combo's field; a text that is not a number keeps the value.
void readComboNumber(CComboBox& combo, int& value);
// Integer PCM of these numbers; block alignment and byte rate follow from them.
tWAVEFORMATEX pcmFormatOf(int nChannels, int nSamplesPerSec, int nBitsPerSample);
