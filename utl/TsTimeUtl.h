#pragma once
/// \class TsTimeUtl
/// Time helpers.

#include <ctime>

/// localtime_r: the broken-down local time of `time` into `result`; null on failure.
struct tm* tslocaltime_r(const time_t* time, struct tm* result);

class TsTimeUtl
{
public:
    /// The current offset of local time from UTC in seconds, east positive
    /// (3600 for UTC+1, daylight saving included).
    static long GetUtcOffset();
    /// The offset of local time from UTC at `time`, in seconds.
    static long GetUtcOffset(time_t time);
};
