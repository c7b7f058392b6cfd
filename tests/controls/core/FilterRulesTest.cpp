#include <KORVAutlwin/controls/FilterRules.h>
#include <KORVAutlwin/controls/FindAndSelectRules.h>

#include <gtest/gtest.h>

namespace {

struct Items : FilterListItems
{
    std::vector<std::string> texts;
    unsigned int GetItemCount() const override { return static_cast<unsigned>(texts.size()); }
    const char* GetItemText(unsigned int i) const override { return texts[i].c_str(); }
};

} // namespace

TEST(FilterRules, VisibleItems)
{
    Items items;
    items.texts = {"Wheat protein", "Barley", "wheat moisture", "Oats", "Rye"};
    struct Case
    {
        const char* text;
        unsigned int initial;
        std::vector<unsigned int> visible;
    } cases[] = {
        {"", FilterRules::kNoItem, {0, 1, 2, 3, 4}},
        {"WHEAT", FilterRules::kNoItem, {0, 2}},
        {"*a?s", FilterRules::kNoItem, {3}},
        {"EAT M", FilterRules::kNoItem, {2}},
        {"ey", FilterRules::kNoItem, {1}},
        {" ", FilterRules::kNoItem, {0, 2}},
        {"wheat", 4, {0, 2, 4}}, // the initial item stays in view although it doesn't match
        {"nothing", FilterRules::kNoItem, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        unsigned int initial = c.initial;
        std::vector<unsigned int> visible = {99};
        FilterRules::Filter(items, c.text, initial, visible);
        EXPECT_EQ(visible, c.visible);
        EXPECT_EQ(initial, FilterRules::kNoItem); // only the first pass privileges it
    }
    EXPECT_EQ(FilterRules::VisibleTitle(0, 5), "0 of 5 items visible");
}

TEST(FilterRules, RememberedFilters)
{
    std::vector<std::string> filters;
    for (int i = 1; i <= 21; ++i)
        FilterRules::RememberFilter(filters, "f" + std::to_string(i));
    ASSERT_EQ(filters.size(), 20u);
    EXPECT_EQ(filters.front(), "f21");
    EXPECT_EQ(filters.back(), "f2"); // the 21st dropped the oldest
    FilterRules::RememberFilter(filters, "f10");
    EXPECT_EQ(filters.size(), 20u);
    EXPECT_EQ(filters[0], "f10");
    EXPECT_EQ(filters[1], "f21");
    EXPECT_EQ(std::count(filters.begin(), filters.end(), "f10"), 1);
    FilterRules::RememberFilter(filters, "");
    EXPECT_EQ(filters[0], "f10");
    EXPECT_EQ(FilterRules::ClampWidth(100), 250);
    EXPECT_EQ(FilterRules::ClampHeight(400), 400);
    EXPECT_EQ(FilterRules::ClampFilterCount(35), 20);
}

TEST(FindAndSelectRules, Modes)
{
    auto repeat = [](const char* piece, int times) {
        std::string text;
        while (times-- > 0)
            text += piece;
        return text;
    };
    // The long cell is cut after 255 characters, not bytes.
    const std::string e255 = repeat("é", 255);
    const std::vector<std::string> cells = {"abc", "xab", "ABX", "cab", "ab", repeat("é", 300) + "zz"};
    const float values[] = {1.0f, 5.0f, 7.5f, 10.0f, -2.0f, 6.0f};
    auto cell = [&](int row) { return cells[static_cast<size_t>(row)]; };
    struct Case
    {
        int mode;
        const char* text;
        std::vector<int> rows;
    } cases[] = {
        {0, "ab", {0, 2, 4}},       {0, "*ab", {1, 3, 4}},      {1, "AB", {0, 1, 2, 3, 4}},
        {2, "c*", {3}},          {2, "x", {1, 2}},           {4, "AB", {4}},
        {1, "zz", {}},              {3, "5..7.5", {1, 2, 5}},   {3, ">= 6", {2, 3, 5}},
        {3, "not a limit", {}},     {4, e255.c_str(), {5}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.mode << " " << c.text);
        EXPECT_EQ(FindAndSelectRules::FindMatches(c.mode, c.text, 6, cell, values), c.rows);
    }
    EXPECT_TRUE(FindAndSelectRules::FindMatches(3, "1", 6, cell, nullptr).empty());
}
