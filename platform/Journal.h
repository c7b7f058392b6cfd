#pragma once
/// \class korva::Journal
/// journald's native protocol: one entry of "NAME=value" fields per call.

#include <cstddef>
#include <string_view>

namespace korva {

class Journal
{
public:
    /// Sends one entry made of `count` fields, each "NAME=value" (names of upper-case
    /// letters, digits and "_", not starting with "_"; values may hold any bytes).
    /// 0 when journald took it, else a negative errno: -ENOENT or -ECONNREFUSED
    /// when journald isn't running, -EINVAL for a malformed field.
    static int Send(const std::string_view* fields, std::size_t count);
};

} // namespace korva
