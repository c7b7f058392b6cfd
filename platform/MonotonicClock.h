#pragma once
/// \class korva::MonotonicClock
/// A monotonic clock (it never jumps with the wall clock), read inline: callers
/// read it in their innermost loops.

#include <ctime>

namespace korva {

class MonotonicClock
{
public:
    /// The precise clock (CLOCK_MONOTONIC).
    MonotonicClock() = default;
    /// The cheapest clock whose ticks are at most `tickMilliseconds` long: the
    /// coarse one (a few nanoseconds a read instead of a few dozen) when it is
    /// that fine, else the precise one.
    explicit MonotonicClock(int tickMilliseconds);

    long long Milliseconds() const
    {
        const timespec now = Now();
        return static_cast<long long>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
    }

    long long Nanoseconds() const
    {
        const timespec now = Now();
        return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
    }

private:
    timespec Now() const
    {
        timespec now{};
        clock_gettime(mClock, &now);
        return now;
    }

    clockid_t mClock = CLOCK_MONOTONIC;
};

} // namespace korva
