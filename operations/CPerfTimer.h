#pragma once
/// \class CPerfTimer
/// A stopwatch on the monotonic clock, held in one signed 64-bit count whose sign
/// is its state: 0 reset, below 0 stopped (the negated ticks measured), above 0
/// running (the clock's reading at start less the ticks measured before). A tick
/// is a nanosecond. Not for sharing across threads, except GetFrequency.

#include <cstdint>

class CPerfTimer
{
public:
    CPerfTimer() = default;
    CPerfTimer(const CPerfTimer& other) = default;
    CPerfTimer& operator=(const CPerfTimer& other) = default;

    /// Back to 0: nothing measured.
    void Reset() { mCount = 0; }
    /// Starts, or goes on from the time already measured; nothing while running.
    void Start();
    /// Stops, keeping what was measured; nothing unless running.
    void Stop();
    bool IsRunning() const { return mCount > 0; }

    /// The ticks measured; while running, up to now, without stopping.
    std::int64_t GetElapsedTicks() const;
    double GetElapsedSeconds() const;
    double GetElapsedMilliseconds() const;
    double GetElapsedMicroseconds() const;

    /// Ticks per second: 1e9, the monotonic clock counting nanoseconds.
    static std::int64_t GetFrequency();

private:
    static std::int64_t Counter();

    static std::int64_t iFrequency;

    std::int64_t mCount = 0;
};
