#include <KORVAutl/TsTimeUtl.h>

#include <langinfo.h>
#include <locale.h>

struct tm* tslocaltime_r(const time_t* time, struct tm* result)
{
    if (!time || !result)
        return nullptr;
    return localtime_r(time, result);
}

long TsTimeUtl::GetUtcOffset()
{
    return GetUtcOffset(std::time(nullptr));
}

long TsTimeUtl::GetUtcOffset(time_t time)
{
    tzset(); // notice a changed TZ
    struct tm local {};
    if (!tslocaltime_r(&time, &local))
        return 0;
    return local.tm_gmtoff;
}

namespace {

// strftime conversions into the letters of date formats; the composite ones
// expand to their parts.
std::string FromStrftime(const char* pattern, bool fourDigitYear)
{
    std::string result;
    for (const char* c = pattern; *c; ++c) {
        if (*c != '%' || !c[1]) {
            result += *c;
            continue;
        }
        ++c;
        if (*c == 'E' || *c == 'O') // alternative-era modifiers name the same field
            if (!*++c)
                break;
        switch (*c) {
        case 'Y': result += "yyyy"; break;
        case 'y': result += fourDigitYear ? "yyyy" : "yy"; break;
        case 'm': result += "MM"; break;
        case 'b': case 'h': case 'B': result += "MMM"; break;
        case 'd': result += "dd"; break;
        case 'e': result += "d"; break;
        case 'a': case 'A': result += "ddd"; break;
        case 'H': result += "HH"; break;
        case 'k': result += "H"; break;
        case 'I': result += "hh"; break;
        case 'l': result += "h"; break;
        case 'M': result += "mm"; break;
        case 'S': result += "ss"; break;
        case 'p': case 'P': result += "tt"; break;
        case 'D': result += fourDigitYear ? "MM/dd/yyyy" : "MM/dd/yy"; break;
        case 'F': result += "yyyy-MM-dd"; break;
        case 'T': result += "HH:mm:ss"; break;
        case 'R': result += "HH:mm"; break;
        case 'r': result += "hh:mm:ss tt"; break;
        case '%': result += '%'; break;
        default: break; // fields without a letter group are left out
        }
    }
    return result;
}

std::string LocaleFormat(nl_item item, TsTimeUtl::LocaleType type, bool fourDigitYear)
{
    locale_t locale = newlocale(LC_TIME_MASK, type == TsTimeUtl::eSystemLocale ? "C" : "", nullptr);
    if (!locale)
        locale = newlocale(LC_TIME_MASK, "C", nullptr);
    const std::string pattern = locale ? nl_langinfo_l(item, locale) : (item == D_FMT ? "%m/%d/%y" : "%H:%M:%S");
    if (locale)
        freelocale(locale);
    // Runs of blanks that a locale pads with would only confuse the user.
    std::string result = FromStrftime(pattern.c_str(), fourDigitYear);
    while (!result.empty() && result.back() == ' ')
        result.pop_back();
    return result;
}

} // namespace

std::string TsTimeUtl::GetUserLocaleDate(bool fourDigitYear, LocaleType type)
{
    return LocaleFormat(D_FMT, type, fourDigitYear);
}

std::string TsTimeUtl::GetUserLocaleTime(LocaleType type)
{
    return LocaleFormat(T_FMT, type, false);
}

bool TsTimeUtl::ValidateFormatString(const std::string& format)
{
    static const std::string kGroups[] = {"yyyy", "yy", "MMM", "MM", "M", "ddd", "dd", "d",
                                          "HH", "H", "hh", "h", "mm", "ss", "fff", "tt"};
    bool anyGroup = false;
    for (std::size_t i = 0; i < format.size();) {
        const char c = format[i];
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) {
            ++i;
            continue;
        }
        std::size_t end = i;
        while (end < format.size() && format[end] == c)
            ++end;
        const std::string run = format.substr(i, end - i);
        bool known = false;
        for (const std::string& group : kGroups)
            known = known || run == group;
        if (!known)
            return false;
        anyGroup = true;
        i = end;
    }
    return anyGroup;
}
