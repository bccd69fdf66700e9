#pragma once
// The relation between the performance counter and the frames a looping buffer has played,
// learnt from readings of its play cursor. The cursor moves a mixer period at a time, so a
// reading can only lag the true position: the mapping follows the most advanced readings of
// the last second, which also tracks a slow drift between the two clocks. When the output
// stalls, the stream plays later from then on: once every reading of a tenth of a second lags,
// the mapping starts again from those readings.

#include <windows.h>
#include <deque>

class CStreamClockty
{
public:
    CStreamClockty();

    // Forgets all readings; counts start from llCounter.
    void restart(LONGLONG llCounterHz, unsigned long ulFramesPerSecond, LONGLONG llCounter);
    void observe(LONGLONG llCounter, LONGLONG llPlayFrame);
    bool isKnown() const;
    // The frame playing at a counter value, and the counter value at which a frame plays.
    LONGLONG frameAt(LONGLONG llCounter) const;
    LONGLONG counterAt(LONGLONG llFrame) const;

private:
    struct Reading
    {
        LONGLONG llCounter;
        double dOffset; // played frames minus the frames the elapsed counter time is worth
    };

    double framesWorth(LONGLONG llCounter) const;
    double bestOffset() const;
    double bestOffsetSince(LONGLONG llCounter) const;
    void forgetBeforeStall(LONGLONG llNow);

    std::deque<Reading> m_readings;
    LONGLONG m_llStart;
    LONGLONG m_llCounterHz;
    unsigned long m_ulFramesPerSecond;
};
