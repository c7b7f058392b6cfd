#pragma once
/// \class DateFormatHistory
/// The date formats a user gave recently, latest first, kept in one text value
/// ("Settings" of the key "DateTimeDefaults", items separated by ";").

#include <string>
#include <vector>

class ConfigurationSection;

class DateFormatHistory
{
public:
    /// The key below the application's registry key, and its value.
    static constexpr const char* kSectionName = "DateTimeDefaults";
    static constexpr const char* kValueName = "Settings";
    /// Formats kept at most.
    static constexpr std::size_t kMaximumFormats = 9;

    /// The saved formats of `section` (none when it is null or holds none).
    static std::vector<std::string> Load(const ConfigurationSection* section);

    /// The rows of the format box: `format` first, then each saved format that differs from it.
    static std::vector<std::string> BoxRows(const std::string& format, const std::vector<std::string>& saved);

    /// Remembers `format` as the latest in `section`: nothing is written when it
    /// is the latest already; otherwise it moves (or is added) to the front, the
    /// oldest beyond nine drops out, and the list is saved. True when written.
    static bool Remember(ConfigurationSection* section, const std::string& format);

    /// The table of format letters that the dialog shows, sixteen lines each ended by "\n".
    static std::string GetFormatDetails();
};
