// The range stack without any window: construction, nested parts and their
// deliberate arithmetic, and where the display stands after a part ends.

#include <KORVAutlwin/progress/ProgressRanges.h>

#include <gtest/gtest.h>

#include <vector>

namespace {

using Range = ProgressRanges::Range;

void ExpectRange(const Range& range, const Range& expected)
{
    EXPECT_FLOAT_EQ(range.gaugeLow, expected.gaugeLow);
    EXPECT_FLOAT_EQ(range.gaugeHigh, expected.gaugeHigh);
    EXPECT_FLOAT_EQ(range.low, expected.low);
    EXPECT_FLOAT_EQ(range.high, expected.high);
}

TEST(ProgressRangesTest, FirstRangeMendsEmptyAndReversedBounds)
{
    const struct { float low, high; Range expected; } rows[] = {
        {3.0f, 3.0f, {0.0f, 1.0f, 3.0f, 4.0f}},
        {5.0f, 1.0f, {0.0f, 1.0f, 1.0f, 5.0f}},
        {0.0f, 10.0f, {0.0f, 1.0f, 0.0f, 10.0f}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.low << ".." << row.high);
        ProgressRanges ranges(row.low, row.high);
        ASSERT_EQ(ranges.GetList().size(), 1u);
        ExpectRange(ranges.Top(), row.expected);
    }
}

// Each row: the first range, the parts pushed in order, the top range then,
// and after one Pop the value where the display stands in the parent's units.
TEST(ProgressRangesTest, PartsMapOntoTheDisplayAndPopLeavesTheParentWhereThePartEnded)
{
    struct Part { float low, high; };
    const struct { const char* name; float low, high; std::vector<Part> parts; Range top; float endValue; } rows[] = {
        {"quarter of 0..1", 0.0f, 1.0f, {{0.25f, 0.5f}}, {0.25f, 0.5f, 0.0f, 1.0f}, 0.5f},
        {"parent's own units", 0.0f, 10.0f, {{2.0f, 4.0f}}, {0.2f, 0.4f, 0.0f, 1.0f}, 4.0f},
        {"nested", 0.0f, 1.0f, {{0.5f, 1.0f}, {0.0f, 0.5f}}, {0.5f, 0.75f, 0.0f, 1.0f}, 0.5f},
        {"bounds held within the top", 0.0f, 10.0f, {{-5.0f, 20.0f}}, {0.0f, 1.0f, 0.0f, 1.0f}, 10.0f},
        {"upper bound held", 0.0f, 10.0f, {{8.0f, 12.0f}}, {0.8f, 1.0f, 0.0f, 1.0f}, 10.0f},
        // The parent's low is deliberately not subtracted: 3..4 of 2..4 is taken from 0.
        {"parent low kept", 2.0f, 4.0f, {{3.0f, 4.0f}}, {1.5f, 2.0f, 0.0f, 1.0f}, 6.0f},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ProgressRanges ranges(row.low, row.high);
        for (const Part& part : row.parts)
            ranges.Push(part.low, part.high);
        ASSERT_EQ(ranges.GetList().size(), row.parts.size() + 1);
        ExpectRange(ranges.Top(), row.top);
        float endValue = -1.0f;
        ASSERT_TRUE(ranges.Pop(endValue));
        EXPECT_FLOAT_EQ(endValue, row.endValue);
        EXPECT_EQ(ranges.GetList().size(), row.parts.size());
    }
}

TEST(ProgressRangesTest, GaugeShowsTheWholeOperationInTheTopRangesUnits)
{
    float minimum = 0.0f, maximum = 0.0f;
    ProgressRanges::GetGaugeRange({0.25f, 0.5f, 0.0f, 1.0f}, minimum, maximum);
    EXPECT_FLOAT_EQ(minimum, -1.0f);
    EXPECT_FLOAT_EQ(maximum, 3.0f);
    ProgressRanges::GetGaugeRange({0.0f, 1.0f, 2.0f, 7.0f}, minimum, maximum);
    EXPECT_FLOAT_EQ(minimum, 2.0f);
    EXPECT_FLOAT_EQ(maximum, 7.0f);
}

TEST(ProgressRangesTest, PopOfTheFirstRangeAndUnorderedTopChangeNothing)
{
    ProgressRanges ranges(0.0f, 8.0f);
    float endValue = -1.0f;
    EXPECT_FALSE(ranges.Pop(endValue));
    EXPECT_FLOAT_EQ(endValue, -1.0f);
    ExpectRange(ranges.Top(), {0.0f, 1.0f, 0.0f, 8.0f});

    // SetTop takes its bounds as they are; holding within them follows suit.
    ranges.SetTop(5.0f, 1.0f);
    ExpectRange(ranges.Top(), {0.0f, 1.0f, 5.0f, 1.0f});
    EXPECT_FLOAT_EQ(ranges.HoldWithin(3.0f), 1.0f);
    ranges.SetTop(1.0f, 5.0f);
    EXPECT_FLOAT_EQ(ranges.HoldWithin(0.0f), 1.0f);
    EXPECT_FLOAT_EQ(ranges.HoldWithin(9.0f), 5.0f);
    EXPECT_FLOAT_EQ(ranges.HoldWithin(3.0f), 3.0f);
}

} // namespace
