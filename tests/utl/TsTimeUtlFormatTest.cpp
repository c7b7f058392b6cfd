#include <KORVAutl/TsTimeUtl.h>

#include <gtest/gtest.h>

namespace {

TEST(TsTimeUtlFormatTest, FormatsAreMadeOfTheKnownLetterGroups)
{
    const std::pair<const char*, bool> rows[] = {
        {"yyyy-MM-dd HH:mm:ss", true}, {"d/M/yy h:mm tt", true}, {"ddd dd MMM yyyy", true},
        {"HH:mm:ss.fff", true},        {"MM", true},              {"", false},
        {"--", false},                 {"yyy", false},            {"MMMM", false},
        {"yyyy-MM-dd Q", false},       {"m:ss", false},           {"HHH", false},
    };
    for (auto [format, valid] : rows)
        EXPECT_EQ(TsTimeUtl::ValidateFormatString(format), valid) << '"' << format << '"';
}

TEST(TsTimeUtlFormatTest, TheSystemLocaleGivesValidFormats)
{
    EXPECT_EQ(TsTimeUtl::GetUserLocaleDate(false, TsTimeUtl::eSystemLocale), "MM/dd/yy");
    EXPECT_EQ(TsTimeUtl::GetUserLocaleDate(true, TsTimeUtl::eSystemLocale), "MM/dd/yyyy");
    EXPECT_EQ(TsTimeUtl::GetUserLocaleTime(TsTimeUtl::eSystemLocale), "HH:mm:ss");
    EXPECT_TRUE(TsTimeUtl::ValidateFormatString(TsTimeUtl::GetUserLocaleDate(true, TsTimeUtl::eUserLocale)));
    EXPECT_TRUE(TsTimeUtl::ValidateFormatString(TsTimeUtl::GetUserLocaleTime(TsTimeUtl::eUserLocale)));
}

} // namespace
