#pragma once
// The footer line that every printout of the suite carries, so that a sheet
// of paper tells which program printed it and when.

#include <string>

/// "<application> <version> - [<text> - ]<local date and time> (UTC<offset>) ":
/// the application's name and short version, `text` with its separator when it
/// is neither null nor empty, the current local time as strftime's "%x %X",
/// and the offset of local time from UTC in hours (" (UTC-5) ", " (UTC+5.5) ").
std::string MakePrintFooter(char const* text);
