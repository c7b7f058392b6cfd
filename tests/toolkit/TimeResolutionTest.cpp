#include <KORVAutlwin/toolkit/TimeResolution.h>

#include <gtest/gtest.h>

namespace {

struct SnapRow
{
    std::int64_t resolution, base, last, entered, expected;
};

TEST(RestrictedTimeRulesTest, SnapsEnteredTimesToTheGridInTheDirectionOfTheStep)
{
    const SnapRow rows[] = {
        {10, 0, 20, 21, 30},      // 00:00:20 stepped up
        {10, 0, 20, 19, 10},      // and down
        {10, 0, 20, 20, 20},      // unchanged
        {10, 0, 20, 80, 80},      // a minute up lands on the grid already
        {10, 5, 15, 16, 25},      // the grid runs through the base
        {10, 5, 15, 14, 5},
        {900, 0, 900, 960, 1800}, // a minute up with a quarter-hour grid
        {900, 0, 1800, 1740, 900},
        {0, 0, 20, 21, 21},       // no resolution: every second
        {10, 0, 60, 119, 50},     // the seconds field wrapped from 0 to 59: one step down
        {10, 0, 60, 120, 120},    // a real minute and a second later
    };
    for (const SnapRow& row : rows) {
        SCOPED_TRACE(testing::Message() << "resolution " << row.resolution << " base " << row.base << " from "
                                        << row.last << " to " << row.entered);
        RestrictedTimeRules rules;
        rules.SetTimeResolution(row.resolution, row.base);
        rules.SetTime(row.last);
        EXPECT_EQ(rules.OnDateTimeChange(row.entered), row.expected);
        EXPECT_EQ(rules.GetLastTime(), row.expected);
    }
}

struct SpanRow
{
    std::int64_t resolution, maximum, shown;
    TimeSpanRules::Fields entered;
    std::int64_t expected;
};

TEST(TimeSpanRulesTest, StepsFieldsByTheResolutionWithinTheLimits)
{
    const SpanRow rows[] = {
        {900, 86399, 900, {0, 16, 0}, 1800},    // 00:15:00, minutes up: 00:30:00
        {900, 86399, 1800, {0, 29, 0}, 900},    // and down
        {900, 86399, 900, {0, 14, 0}, 1},       // down to 0, held at the minimum
        {900, 86399, 900, {1, 15, 0}, 4500},    // an hour up is on the grid
        {60, 86399, 300, {0, 5, 59}, 240},      // seconds wrapped from 0 to 59: one minute down
        {60, 86399, 300, {0, 5, 1}, 360},       // seconds up: the next minute
        {1, 3600, 3600, {1, 1, 0}, 3600},       // at the maximum a step up stays there
        {1, 3600, 3600, {2, 0, 0}, 3600},
        {1, 86399, 86399, {0, 59, 59}, 3599},   // the hour wrapped from 23 to 0
    };
    for (const SpanRow& row : rows) {
        SCOPED_TRACE(testing::Message() << "resolution " << row.resolution << " from " << row.shown << " to "
                                        << row.entered.hours << ":" << row.entered.minutes << ":" << row.entered.seconds);
        TimeSpanRules rules;
        rules.SetTimeResolution(row.resolution);
        rules.SetMaxTimeSpan(row.maximum);
        rules.SetTimeSpan(row.shown);
        const TimeSpanRules::Fields shown = rules.OnDateTimeChange(row.entered);
        EXPECT_EQ(rules.GetTimeSpan(), row.expected);
        EXPECT_EQ(shown.hours * 3600 + shown.minutes * 60 + shown.seconds, row.expected);
    }
}

TEST(TimeSpanRulesTest, LimitsAreHeldAsTheyAreGiven)
{
    TimeSpanRules rules;
    rules.SetTimeSpan(0);
    EXPECT_EQ(rules.GetTimeSpan(), 1);
    // Minimum given and kept, maximum given and kept.
    const std::int64_t rows[][4] = {{-5, 1, 86400, 86399}, {0, 1, 90000, 86399}, {30, 30, 0, 0}, {1, 1, -3, -3}};
    for (const auto& row : rows) {
        rules.SetMinTimeSpan(row[0]);
        rules.SetMaxTimeSpan(row[2]);
        EXPECT_EQ(rules.GetMinTimeSpan(), row[1]) << row[0];
        EXPECT_EQ(rules.GetMaxTimeSpan(), row[3]) << row[2];
    }
}

} // namespace
