#include "StreamClockty.h"
#include <algorithm>
#include <cmath>

namespace
{
const LONGLONG kWindowSeconds = 1;
const size_t kMostReadings = 4096;
const LONGLONG kStallEvidencePerSecond = 10; // a stall is believed after 1/10 s of lagging readings
const double kStallFramesPerSecond = 200.0;  // readings lagging by 5 ms or more
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
    forgetBeforeStall(llCounter);
}

void CStreamClockty::forgetBeforeStall(LONGLONG llNow)
{
    const LONGLONG llRecent = llNow - m_llCounterHz / kStallEvidencePerSecond;
    if (m_readings.front().llCounter >= llRecent)
        return;
    const double dStallFrames = m_ulFramesPerSecond / kStallFramesPerSecond;
    if (bestOffsetSince(llRecent) > bestOffset() - dStallFrames)
        return;
    while (m_readings.front().llCounter < llRecent)
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
    return m_readings.empty() ? 0.0 : bestOffsetSince(m_readings.front().llCounter);
}

double CStreamClockty::bestOffsetSince(LONGLONG llCounter) const
{
    double dBest = m_readings.back().dOffset;
    for (auto it = m_readings.rbegin(); it != m_readings.rend() && it->llCounter >= llCounter; ++it)
        dBest = std::max(dBest, it->dOffset);
    return dBest;
}
