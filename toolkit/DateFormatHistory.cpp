#include <KORVAutlwin/toolkit/DateFormatHistory.h>

#include <KORVAutl/ConfigurationSection.h>

#include <algorithm>

std::vector<std::string> DateFormatHistory::Load(const ConfigurationSection* section)
{
    std::vector<std::string> formats;
    if (section)
        section->ReadStringVector(kValueName, formats, ';');
    // An empty value splits into one empty text, which is no format.
    formats.erase(std::remove(formats.begin(), formats.end(), std::string()), formats.end());
    return formats;
}

std::vector<std::string> DateFormatHistory::BoxRows(const std::string& format, const std::vector<std::string>& saved)
{
    std::vector<std::string> rows{format};
    for (const std::string& item : saved)
        if (item != format)
            rows.push_back(item);
    return rows;
}

bool DateFormatHistory::Remember(ConfigurationSection* section, const std::string& format)
{
    if (!section)
        return false;
    std::vector<std::string> formats = Load(section);
    if (!formats.empty() && formats.front() == format)
        return false;
    formats.erase(std::remove(formats.begin(), formats.end(), format), formats.end());
    formats.insert(formats.begin(), format);
    if (formats.size() > kMaximumFormats)
        formats.pop_back();
    return section->WriteStringVector(kValueName, formats, ';');
}

std::string DateFormatHistory::GetFormatDetails()
{
    return "yyyy - year using four digits (ex. 2005)\n"
           "yy - year using two digits (ex. 05)\n"
           "MMM - month using three letters (ex. Aug)\n"
           "MM - month using two digits (ex. 08)\n"
           "M - month without leading 0 (ex. 8)\n"
           "ddd - day of week using three letters (ex. Mon)\n"
           "dd - day in month using two digits (ex. 05)\n"
           "d - day in month without leading 0 (ex. 5)\n"
           "HH - hour representing 24 hour day\n"
           "H - hour representing 24 hour day, no leading 0\n"
           "hh - hour representing 12 hour day\n"
           "h - hour representing 12 hour day, no leading 0\n"
           "mm - minutes using 2 digits\n"
           "ss - seconds using 2 digits\n"
           "fff - fractional seconds using 3 digits (milliseconds)\n"
           "tt - AM or PM\n";
}
