#pragma once
// Notification events: closing a table's events, and keeping the events of a replaced table
// open until the platform has taken its successor.

#include <windows.h>
#include <dsound.h>
#include <cstddef>
#include <vector>

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

// The platform goes on signalling the events of the last table it took, so a table being
// rewritten hands its events here; they are closed once the platform has taken a new table,
// and kept while it refuses one.
class RetiredNotifyEvents
{
public:
    RetiredNotifyEvents() = default;
    RetiredNotifyEvents(const RetiredNotifyEvents&) = delete;
    RetiredNotifyEvents& operator=(const RetiredNotifyEvents&) = delete;
    ~RetiredNotifyEvents() { closeAll(); }

    // Takes the table's events and empties its entries.
    void retire(DSBPOSITIONNOTIFY* pEntries, size_t nEntries)
    {
        for (size_t i = 0; i < nEntries; i++)
        {
            if (pEntries[i].hEventNotify != NULL)
                m_events.push_back(pEntries[i].hEventNotify);
            pEntries[i].hEventNotify = NULL;
            pEntries[i].dwOffset = 0;
        }
    }

    // The platform's answer to the new table.
    void settle(HRESULT hrSetPositions)
    {
        if (SUCCEEDED(hrSetPositions))
            closeAll();
    }

    void closeAll()
    {
        for (HANDLE hEvent : m_events)
            CloseHandle(hEvent);
        m_events.clear();
    }

private:
    std::vector<HANDLE> m_events;
};
