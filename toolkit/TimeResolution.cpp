#include <KORVAutlwin/toolkit/TimeResolution.h>

#include <cstdlib>
#include <ctime>

namespace {

// Seconds field of a time; the grid only cares about its last minute.
std::int64_t SecondsField(std::int64_t time)
{
    const std::int64_t seconds = time % 60;
    return seconds < 0 ? seconds + 60 : seconds;
}

} // namespace

RestrictedTimeRules::RestrictedTimeRules() : mLastTime(static_cast<std::int64_t>(std::time(nullptr))) {}

void RestrictedTimeRules::SetTimeResolution(std::int64_t resolution, std::int64_t base)
{
    mResolution = resolution;
    mBase = base;
}

std::int64_t RestrictedTimeRules::GetNearestTimeUpwards(std::int64_t time) const
{
    const std::int64_t resolution = mResolution < 1 ? 1 : mResolution;
    const std::int64_t r = std::llabs(time - mBase) % resolution;
    return r == 0 ? time : time - r + resolution;
}

std::int64_t RestrictedTimeRules::GetNearestTimeDownwards(std::int64_t time) const
{
    const std::int64_t resolution = mResolution < 1 ? 1 : mResolution;
    const std::int64_t r = std::llabs(time - mBase) % resolution;
    return r == 0 ? time : GetNearestTimeUpwards(time) - resolution;
}

std::int64_t RestrictedTimeRules::GetRestrictedTime(std::int64_t oldTime, std::int64_t newTime) const
{
    if (newTime > oldTime)
        return GetNearestTimeUpwards(newTime);
    if (newTime < oldTime)
        return GetNearestTimeDownwards(newTime);
    return newTime;
}

std::int64_t RestrictedTimeRules::OnDateTimeChange(std::int64_t newTime)
{
    const std::int64_t oldTime = mLastTime;
    // The picker's seconds field wraps without carrying: one step down from 0
    // shows 59 in the same minute, which the user meant as one second less.
    if (newTime - oldTime == 59 && SecondsField(newTime) - SecondsField(oldTime) == 59)
        newTime -= 60;
    mLastTime = GetRestrictedTime(oldTime, newTime);
    return mLastTime;
}

TimeSpanRules::Fields TimeSpanRules::ToFields(std::int64_t span)
{
    return Fields{static_cast<int>(span / 3600 - 24 * (span / 86400)), static_cast<int>(span / 60 - 60 * (span / 3600)),
                  static_cast<int>(span - 60 * (span / 60))};
}

TimeSpanRules::Fields TimeSpanRules::SetTimeSpan(std::int64_t span)
{
    if (span > mMaximum)
        span = mMaximum;
    else if (span < mMinimum)
        span = mMinimum;
    mCurrent = span;
    mLastShown = span;
    return ToFields(span);
}

void TimeSpanRules::SetMinTimeSpan(std::int64_t span)
{
    mMinimum = span <= 0 ? 1 : span;
}

void TimeSpanRules::SetMaxTimeSpan(std::int64_t span)
{
    mMaximum = span >= 86400 ? 86399 : span;
}

TimeSpanRules::Fields TimeSpanRules::OnDateTimeChange(Fields current)
{
    const std::int64_t cur = current.hours * 3600LL + current.minutes * 60LL + current.seconds;
    const Fields old = ToFields(mLastShown);
    // A field that moved by two or more in one step can only have wrapped round.
    bool wrap = current.seconds - old.seconds >= 2;
    if (!wrap)
        wrap = current.minutes - old.minutes >= 2;
    if (!wrap)
        wrap = current.hours - old.hours >= 2;

    const std::int64_t resolution = mResolution < 1 ? 1 : mResolution;
    std::int64_t result;
    if (cur > mLastShown) {
        const std::int64_t m = cur % resolution;
        if (m == 0)
            result = cur;
        else if (wrap)
            result = cur - m - 60;
        else
            result = cur - m + resolution;
    } else {
        result = cur - cur % resolution;
    }
    return SetTimeSpan(result);
}
