#pragma once
/// \class TsTimeUtl
/// Time helpers.

#include <ctime>
#include <string>

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

    /// Whose conventions a locale format follows: 0 the user's (the process's
    /// LC_TIME), 1 the system's default ("C").
    enum LocaleType { eUserLocale = 0, eSystemLocale = 1 };

    /// The locale's short date format in the letters of date formats ("yyyy",
    /// "MM", "dd", ...), e.g. "MM/dd/yy"; with `fourDigitYear` a two-digit year
    /// becomes "yyyy".
    static std::string GetUserLocaleDate(bool fourDigitYear, LocaleType type);
    /// The locale's time format in the same letters, e.g. "HH:mm:ss".
    static std::string GetUserLocaleTime(LocaleType type);
    /// True when `format` is made of the letter groups yyyy, yy, MMM, MM, M,
    /// ddd, dd, d, HH, H, hh, h, mm, ss, fff and tt with anything but letters
    /// between them, and holds at least one group.
    static bool ValidateFormatString(const std::string& format);
    /// Asks the user for the format of `sampleDate` until a valid one is given;
    /// false when the user cancels. Shows a dialog, so it lives in KORVAutlwin
    /// (toolkit/DateFormatDialog.cpp): only programs that link it may call it.
    static bool GetUserFormatString(const std::string& heading, const std::string& sampleDate,
                                    const std::string& format, std::string& result);
};
