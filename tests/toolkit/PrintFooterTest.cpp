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
    const std::string program = TsSystemInfo::GetApplicationName() + " " +
                                TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort) + " - ";
    // The "C" locale's "%x %X" is 11/24/26 20:31:05.
    const std::string time = R"(\d\d/\d\d/\d\d \d\d:\d\d:\d\d)";
    const std::tuple<const char*, const char*, std::string> rows[] = {
        {"EST5", nullptr, time + R"( \(UTC-5\) )"}, // west of Greenwich: minus
        {"UTC0", "", time + R"( \(UTC\+0\) )"},     // an empty text is left out like a null one
        {"CET-1", "Loadings", "Loadings - " + time + R"( \(UTC\+1\) )"},
        {"NST3:30", "Plot", "Plot - " + time + R"( \(UTC-3\.5\) )"},
    };
    for (const auto& [zone, text, rest] : rows) {
        SCOPED_TRACE(zone);
        setenv("TZ", zone, 1);
        tzset();
        const std::string footer = MakePrintFooter(text);
        EXPECT_TRUE(std::regex_match(footer, std::regex(std::regex_replace(program, std::regex(R"([.+])"), R"(\$&)") +
                                                        rest)))
            << footer;
    }
    unsetenv("TZ");
    tzset();
}

} // namespace
