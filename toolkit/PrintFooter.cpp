#include <KORVAutlwin/toolkit/PrintFooter.h>

#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutl/TsTimeUtl.h>

#include <cstdio>
#include <ctime>

std::string MakePrintFooter(char const* text)
{
    std::string footer = TsSystemInfo::GetApplicationName() + " " +
                         TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort) + " - ";
    if (text && *text)
        footer += std::string(text) + " - ";

    char buffer[256];
    const time_t now = std::time(nullptr);
    struct tm local {};
    if (tslocaltime_r(&now, &local) && std::strftime(buffer, sizeof buffer, "%x %X", &local) > 0)
        footer += buffer;

    std::snprintf(buffer, sizeof buffer, " (UTC%+g) ", TsTimeUtl::GetUtcOffset() / 3600.0);
    footer += buffer;
    return footer;
}
