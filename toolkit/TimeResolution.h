#pragma once
// The rules of the two time entry controls, without a window: snapping a time
// to a grid of `resolution` seconds anchored at a base time, and stepping a
// span of less than a day (seconds) through its hour, minute and second fields.

#include <cstdint>

/// The state of a RestrictedTimeCtrl: the last accepted time and the grid.
class RestrictedTimeRules
{
public:
    /// Last accepted time now, resolution 1, base 1.
    RestrictedTimeRules();

    /// `time` unless it is off the grid; otherwise the next grid time after it.
    std::int64_t GetNearestTimeUpwards(std::int64_t time) const;
    /// `time` unless it is off the grid; otherwise the grid time before it.
    std::int64_t GetNearestTimeDownwards(std::int64_t time) const;
    /// Upwards of `newTime` when it is later than `oldTime`, downwards when
    /// earlier, `newTime` itself when equal.
    std::int64_t GetRestrictedTime(std::int64_t oldTime, std::int64_t newTime) const;

    /// The control's value changed to `newTime` (seconds): undoes the wrap of a
    /// seconds field stepped down from 0, snaps against the last accepted time,
    /// and returns (and accepts) the time the control must show.
    std::int64_t OnDateTimeChange(std::int64_t newTime);

    void SetTime(std::int64_t time) { mLastTime = time; }
    std::int64_t GetLastTime() const { return mLastTime; }
    /// Stores both; a resolution below 1 counts as 1 when snapping.
    void SetTimeResolution(std::int64_t resolution, std::int64_t base);
    std::int64_t GetTimeResolution() const { return mResolution; }
    std::int64_t GetTimeBase() const { return mBase; }

private:
    std::int64_t mLastTime;
    std::int64_t mResolution = 1;
    std::int64_t mBase = 1;
};

/// The state of a TimeSpanCtrl: spans in seconds, from 1 to 23:59:59 by default.
class TimeSpanRules
{
public:
    /// The control's hour, minute and second fields.
    struct Fields
    {
        int hours;
        int minutes;
        int seconds;
    };

    /// Clamps `span` to the limits (the maximum first), stores it as current and
    /// last shown, and returns the fields the control shows.
    Fields SetTimeSpan(std::int64_t span);
    std::int64_t GetTimeSpan() const { return mCurrent; }
    std::int64_t GetLastShown() const { return mLastShown; }

    void SetTimeResolution(std::int64_t resolution) { mResolution = resolution; }
    std::int64_t GetTimeResolution() const { return mResolution; }
    /// 0 or less gives 1.
    void SetMinTimeSpan(std::int64_t span);
    std::int64_t GetMinTimeSpan() const { return mMinimum; }
    /// 86400 and up gives 86399; anything below, negative included, stands.
    void SetMaxTimeSpan(std::int64_t span);
    std::int64_t GetMaxTimeSpan() const { return mMaximum; }

    /// The fields of `span` (hours within the day).
    static Fields ToFields(std::int64_t span);
    /// The user changed the fields to `current`: a field that jumped by 2 or more
    /// wrapped round; snaps up or down by the resolution against the last shown
    /// span and returns the fields of the clamped result (then current).
    Fields OnDateTimeChange(Fields current);

private:
    std::int64_t mLastShown = 1;
    std::int64_t mResolution = 1;
    std::int64_t mCurrent = 1;
    std::int64_t mMinimum = 1;
    std::int64_t mMaximum = 86399;
};
