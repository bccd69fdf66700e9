#pragma once
// The wave format record shared by every layer: the platform's tWAVEFORMATEX (18 bytes).

#include <windows.h>
#include <mmsystem.h>
#include <mmreg.h>

static_assert(sizeof(tWAVEFORMATEX) == 18, "the wave format record is stored as 18 bytes");
