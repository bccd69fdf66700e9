#pragma once
// What the streaming benchmarks share: a 44.1 kHz 16-bit stereo signal whose frames tell their
// own position (left: the position modulo 32768 as a ramp; right: the position / 64, a slow
// counter), the clock, the figures they print, and the library's messages printed, not shown.

#include <windows.h>
#include <mmsystem.h>

#include <cstdint>

namespace dsty_bench
{
const unsigned kRate = 44100;
const DWORD kFrameBytes = 4;
const long kPositionSpan = 1L << 22; // positions are told modulo this many frames

WAVEFORMATEX markedFormat();
void frameAt(unsigned long frame, int16_t* out);
// The position a frame tells: the ramp gives it exactly within 32768 frames, the slow
// counter says which stretch of 32768 it is in.
long positionOf(const int16_t* frame);

double nowSeconds();
// Wine tells a thread's processor time only to the thread itself.
double threadCpuSeconds(HANDLE thread);
double privateMegabytes();
// An answerer for AfxSetMessageBoxAnswerer.
int CALLBACK printMessage(LPCTSTR lpszText, UINT, UINT);
}
