#include "StreamClockty.h"
#include <algorithm>
#include <cmath>

namespace
{
const LONGLONG kWindowSeconds = 1;
const size_t kMostReadings = 4096;
}

CStreamClockty::CStreamClockty() : m_llStart(0), m_llCounterHz(1), m_ulFramesPerSecond(1)
{
}

void CStreamClockty::restart(LONGLONG llCounterHz, unsigned long ulFramesPerSecond, LONGLONG llCounter)
{
    m_readings.clear();
    m_llCounterHz = llCounterHz > 0 ? llCounterHz : 1;
    m_ulFramesPerSecond = ulFramesPerSecond > 0 ? ulFramesPerSecond : 1;
    m_llStart = llCounter;
}

void CStreamClockty::observe(LONGLONG llCounter, LONGLONG llPlayFrame)
{
    m_readings.push_back({llCounter, static_cast<double>(llPlayFrame) - framesWorth(llCounter)});
    const LONGLONG llOldest = llCounter - kWindowSeconds * m_llCounterHz;
    while (m_readings.size() > kMostReadings || m_readings.front().llCounter < llOldest)
        m_readings.pop_front();
}

bool CStreamClockty::isKnown() const
{
    return !m_readings.empty();
}

LONGLONG CStreamClockty::frameAt(LONGLONG llCounter) const
{
    return static_cast<LONGLONG>(std::floor(framesWorth(llCounter) + bestOffset() + 0.5));
}

LONGLONG CStreamClockty::counterAt(LONGLONG llFrame) const
{
    const double dFrames = static_cast<double>(llFrame) - bestOffset();
    return m_llStart + static_cast<LONGLONG>(std::floor(dFrames * m_llCounterHz / m_ulFramesPerSecond + 0.5));
}

double CStreamClockty::framesWorth(LONGLONG llCounter) const
{
    return static_cast<double>(llCounter - m_llStart) * m_ulFramesPerSecond / m_llCounterHz;
}

double CStreamClockty::bestOffset() const
{
    double dBest = m_readings.empty() ? 0.0 : m_readings.front().dOffset;
    for (const Reading& reading : m_readings)
        dBest = std::max(dBest, reading.dOffset);
    return dBest;
}
