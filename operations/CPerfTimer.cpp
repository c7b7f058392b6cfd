#include <KORVAutlwin/operations/CPerfTimer.h>

#include <KORVAutlwin/platform/MonotonicClock.h>

std::int64_t CPerfTimer::iFrequency = 0;

std::int64_t CPerfTimer::Counter()
{
    static const korva::MonotonicClock clock;
    return clock.Nanoseconds();
}

std::int64_t CPerfTimer::GetFrequency()
{
    // The monotonic clock counts nanoseconds whatever its real resolution.
    if (iFrequency == 0)
        iFrequency = 1000000000;
    return iFrequency;
}

void CPerfTimer::Start()
{
    if (IsRunning())
        return;
    mCount += Counter();
}

void CPerfTimer::Stop()
{
    if (!IsRunning())
        return;
    mCount -= Counter();
}

std::int64_t CPerfTimer::GetElapsedTicks() const
{
    return IsRunning() ? Counter() - mCount : -mCount;
}

double CPerfTimer::GetElapsedSeconds() const
{
    return static_cast<double>(GetElapsedTicks()) / static_cast<double>(GetFrequency());
}

double CPerfTimer::GetElapsedMilliseconds() const
{
    return static_cast<double>(GetElapsedTicks()) * 1000.0 / static_cast<double>(GetFrequency());
}

double CPerfTimer::GetElapsedMicroseconds() const
{
    return static_cast<double>(GetElapsedTicks()) * 1000000.0 / static_cast<double>(GetFrequency());
}
