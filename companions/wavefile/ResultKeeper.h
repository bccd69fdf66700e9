#pragma once
// The last result of a reader's or writer's operation, kept for the caller to ask about,
// and the library's 1/0 answer that goes with it.

#include "WaveFileResult.h"

struct ResultKeeper
{
    WaveFileResult result = WAVEFILE_OK;

    int fail(WaveFileResult why)
    {
        result = why;
        return 0;
    }
    int succeed()
    {
        result = WAVEFILE_OK;
        return 1;
    }
};
