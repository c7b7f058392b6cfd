#include <KORVAutlwin/toolkit/DateFormatHistory.h>

#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

namespace {

std::string Stored(const XMLSection& section)
{
    std::string text;
    section.ReadKey(DateFormatHistory::kValueName, text);
    return text;
}

TEST(DateFormatHistoryTest, TheLatestFormatComesFirstAndTheTenthPushesTheOldestOut)
{
    XMLSection section;
    for (int i = 1; i <= 9; ++i)
        EXPECT_TRUE(DateFormatHistory::Remember(&section, "f" + std::to_string(i)));
    EXPECT_EQ(Stored(section), "f9;f8;f7;f6;f5;f4;f3;f2;f1");

    EXPECT_TRUE(DateFormatHistory::Remember(&section, "f10"));
    EXPECT_EQ(Stored(section), "f10;f9;f8;f7;f6;f5;f4;f3;f2");

    EXPECT_TRUE(DateFormatHistory::Remember(&section, "f5")); // moves, nothing drops out
    EXPECT_EQ(Stored(section), "f5;f10;f9;f8;f7;f6;f4;f3;f2");
}

TEST(DateFormatHistoryTest, TheLatestFormatAgainLeavesTheStoreAlone)
{
    XMLSection section;
    section.WriteKey(DateFormatHistory::kValueName, "yyyy-MM-dd;dd.MM.yy");
    EXPECT_FALSE(DateFormatHistory::Remember(&section, "yyyy-MM-dd"));
    EXPECT_EQ(Stored(section), "yyyy-MM-dd;dd.MM.yy");
    EXPECT_FALSE(DateFormatHistory::Remember(nullptr, "yyyy"));
}

TEST(DateFormatHistoryTest, AnEmptyStoreHoldsNoFormat)
{
    EXPECT_TRUE(DateFormatHistory::Load(nullptr).empty());
    XMLSection empty;
    empty.WriteKey(DateFormatHistory::kValueName, "");
    EXPECT_TRUE(DateFormatHistory::Load(&empty).empty());
}

} // namespace
