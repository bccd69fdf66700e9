#pragma once
// Holds a critical section for the life of a scope.

#include <windows.h>

class SectionLock
{
public:
    explicit SectionLock(CRITICAL_SECTION& section) : m_section(section) { EnterCriticalSection(&m_section); }
    ~SectionLock() { LeaveCriticalSection(&m_section); }
    SectionLock(const SectionLock&) = delete;
    SectionLock& operator=(const SectionLock&) = delete;

private:
    CRITICAL_SECTION& m_section;
};
