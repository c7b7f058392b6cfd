#include <KORVAutlwin/toolkit/ZoomScrollState.h>

#include <gtest/gtest.h>

namespace {

ZoomScrollState Bar(int position, unsigned int page, int maximum = 150)
{
    ZoomScrollState state;
    SCROLLINFO info;
    info.nMin = 0;
    info.nMax = maximum;
    info.nPage = page;
    info.nPos = position;
    state.SetScrollInfo(info);
    return state;
}

TEST(ZoomScrollStateTest, AThumbOfOneUnitIsEightPixelsLongAndGrabbedAtBothEnds)
{
    constexpr int kLength = 200;
    constexpr int kArrow = 16;
    ZoomScrollState state = Bar(0, 1);
    ASSERT_TRUE(state.GetPos(kLength, kArrow, kArrow));
    EXPECT_EQ(state.GetThumbStart(), 0);
    EXPECT_EQ(state.GetThumbEnd(), 8);

    const std::pair<int, ZoomScrollState::ESelected> rows[] = {
        {-2, ZoomScrollState::eNone},   {-1, ZoomScrollState::eLowEnd}, {3, ZoomScrollState::eLowEnd},
        {4, ZoomScrollState::eNone},    {5, ZoomScrollState::eHighEnd}, {9, ZoomScrollState::eHighEnd},
        {10, ZoomScrollState::eNone},
    };
    for (auto [along, selected] : rows) {
        ASSERT_TRUE(state.GetPos(kLength, kArrow, kArrow + along));
        EXPECT_EQ(state.SelectPos(), selected) << "pixel " << along;
    }
}

TEST(ZoomScrollStateTest, ABarNoLongerThanFourArrowsMeasuresNothing)
{
    ZoomScrollState state = Bar(0, 10);
    EXPECT_FALSE(state.GetPos(64, 16, 20));
    EXPECT_TRUE(state.GetPos(65, 16, 20));
}

TEST(ZoomScrollStateTest, ScrollCodesMoveWithinTheRangeAndEndsStopAtOneUnit)
{
    struct Row
    {
        unsigned int code;
        int argument;
        int position;
        unsigned int page;
    } const rows[] = {
        {0, 0, 49, 20},   {1, 0, 51, 20},    {2, 0, 30, 20},   {3, 0, 70, 20},  {4, 100, 100, 20},
        {5, 200, 131, 20}, {6, 0, 0, 20},    {7, 0, 131, 20},  {8, 0, 50, 20},
        {9, 40, 40, 30},  {9, 100, 69, 1},   {9, -5, 0, 70},   // the low end: past the high end stops at one unit
        {10, 90, 50, 40}, {10, 20, 50, 1},   {10, 400, 50, 101},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "code " << row.code << " with " << row.argument);
        ZoomScrollState state = Bar(50, 20);
        state.OnScroll(row.code, row.argument);
        EXPECT_EQ(state.GetScrollInfo().nPos, row.position);
        EXPECT_EQ(state.GetScrollInfo().nPage, row.page);
    }
}

TEST(ZoomScrollStateTest, UpdateShowsTheViewAndHighValuesAtTheTopOfAVerticalBar)
{
    ZoomScrollState horizontal = Bar(0, 0);
    horizontal.Update(0, 25, 50, 100, false, false);
    EXPECT_EQ(horizontal.GetScrollInfo().nPos, 38); // 37.75 rounds up
    EXPECT_EQ(horizontal.GetScrollInfo().nPage, 38u);
    EXPECT_TRUE(horizontal.Changed());
    horizontal.Update(0, 25, 50, 100, false, false);
    EXPECT_FALSE(horizontal.Changed());
    horizontal.Update(0, 25, 50, 100, true, false);
    EXPECT_EQ(horizontal.GetScrollInfo().nPos, 75);

    ZoomScrollState vertical = Bar(0, 0);
    vertical.Update(0, 25, 50, 100, false, true);
    EXPECT_EQ(vertical.GetScrollInfo().nPos, 75);

    float low = 0, high = 0;
    ZoomScrollState::GetZoomRange(Bar(140, 40).GetScrollInfo(), true, 0, 100, low, high);
    EXPECT_FLOAT_EQ(high, 100.0f); // held within the full range
}

TEST(ZoomScrollStateTest, AnAxisShowsItsBarOnlyWhenZoomedBeyondTheTolerance)
{
    struct Row
    {
        bool enabled;
        float fullLow, viewLow, viewHigh, fullHigh;
        bool shows;
    } const rows[] = {
        {true, 0, 0, 100, 100, false},         {true, 0, 0, 99.9f, 100, true},
        {true, 0, 10, 100, 100, true},         {false, 0, 10, 50, 100, false},
        {true, 1000, 1000.01f, 2000, 2000, false}, {true, 1000, 1002, 2000, 2000, true},
        {true, 5, 5, 5, 5, false},             {true, 5, 5.5f, 5, 5, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.fullLow << " [" << row.viewLow << ", " << row.viewHigh << "] "
                                        << row.fullHigh);
        EXPECT_EQ(ZoomScrollState::AxisShows(row.enabled, row.fullLow, row.viewLow, row.viewHigh, row.fullHigh),
                  row.shows);
    }
}

} // namespace
