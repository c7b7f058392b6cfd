#include <KORVAutl/TsTimeUtl.h>

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
