// The footer line of every printout: program, version, the caller's text,
// the local time and the offset from UTC in hours.

#include <KORVAutlwin/toolkit/PrintFooter.h>

#include <KORVAutl/TsSystemInfo.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <regex>
#include <string>

namespace {

TEST(PrintFooterTest, ProgramTextTimeAndZone)
{
    const char* saved = std::getenv("TZ");
    const std::string savedZone = saved ? saved : "";
    const std::string program = TsSystemInfo::GetApplicationName() + " " +
                                TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort) + " - ";
    struct Row
    {
        const char* zone;
        const char* text;
        std::string start;
        const char* zoneText;
    };
    const Row rows[] = {
        {"EST5", nullptr, program, " (UTC-5) "},              // west of Greenwich: minus
        {"UTC0", "", program, " (UTC+0) "},                    // an empty text is left out like a null one
        {"CET-1", "Loadings", program + "Loadings - ", " (UTC+1) "},
        {"IST-5:30", "Plot", program + "Plot - ", " (UTC+5.5) "},
        {"NST3:30", nullptr, program, " (UTC-3.5) "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.zone);
        setenv("TZ", row.zone, 1);
        tzset();
        const std::string footer = MakePrintFooter(row.text);
        ASSERT_EQ(footer.rfind(row.start, 0), 0u) << footer;
        const std::string rest = footer.substr(row.start.size());
        // The "C" locale's "%x %X": 11/24/26 20:31:05.
        EXPECT_TRUE(std::regex_match(rest, std::regex(R"(\d\d/\d\d/\d\d \d\d:\d\d:\d\d)" +
                                                      std::regex_replace(row.zoneText, std::regex(R"([()+])"), R"(\$&)"))))
            << footer;
    }
    if (saved)
        setenv("TZ", savedZone.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

} // namespace
