#pragma once
// Closes the events of a notification table and empties its entries.

#include <windows.h>
#include <dsound.h>
#include <cstddef>

inline void closeNotifyEvents(DSBPOSITIONNOTIFY* pEntries, size_t nEntries)
{
    for (size_t i = 0; i < nEntries; i++)
    {
        if (pEntries[i].hEventNotify != NULL)
            CloseHandle(pEntries[i].hEventNotify);
        pEntries[i].hEventNotify = NULL;
        pEntries[i].dwOffset = 0;
    }
}
