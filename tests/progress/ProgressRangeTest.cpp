// Progress without any window: the range stack and its deliberate arithmetic,
// and the counter. No application object exists here, so
// every object is inactive and only the numbers are seen.

#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/progress/Progress.h>

#include <gtest/gtest.h>

#include <iterator>

namespace {

Progress::Range Top(const Progress& progress)
{
    return progress.GetRanges().back();
}

void ExpectRange(const Progress::Range& range, float gaugeLow, float gaugeHigh, float low, float high)
{
    EXPECT_FLOAT_EQ(range.gaugeLow, gaugeLow);
    EXPECT_FLOAT_EQ(range.gaugeHigh, gaugeHigh);
    EXPECT_FLOAT_EQ(range.low, low);
    EXPECT_FLOAT_EQ(range.high, high);
}

class ProgressRangeTest : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(WinApp::GetApp(), nullptr); }
};

TEST_F(ProgressRangeTest, ConstructorMendsEmptyAndReversedRanges)
{
    Progress empty(nullptr, "x", 3.0f, 3.0f, false, false, true);
    ExpectRange(Top(empty), 0.0f, 1.0f, 3.0f, 4.0f);
    EXPECT_FLOAT_EQ(empty.GetValue(), 3.0f);

    Progress reversed(nullptr, "x", 5.0f, 1.0f, false, false, true);
    ExpectRange(Top(reversed), 0.0f, 1.0f, 1.0f, 5.0f);
    EXPECT_FLOAT_EQ(reversed.GetValue(), 1.0f);

    // The short form: 0 to 1, spin on, no gauge, no stop.
    Progress spin("spin");
    ExpectRange(Top(spin), 0.0f, 1.0f, 0.0f, 1.0f);
    EXPECT_TRUE(spin.GetShowSpin());
    EXPECT_FALSE(spin.GetShowGauge());
    EXPECT_EQ(spin.GetStopQuestion(), "Do you really want to stop?");
    EXPECT_EQ(spin.GetStopButton(), "Stop");
}

TEST_F(ProgressRangeTest, InactiveObjectKeepsTheUnclampedSumAndAlwaysGoesOn)
{
    Progress progress(nullptr, "x", 0.0f, 10.0f, true, false, true);
    EXPECT_FALSE(progress.IsActive());
    EXPECT_FALSE(Progress::IsProgressActive());
    progress.SetCounter(10.0f);
    EXPECT_TRUE(progress.Set(2.0f));
    EXPECT_FLOAT_EQ(progress.GetValue(), 12.0f);  // no gauge on display: nothing clamps
    EXPECT_TRUE(progress.Set(-3.0f));
    EXPECT_FLOAT_EQ(progress.GetValue(), 7.0f);
    EXPECT_TRUE(progress.SetInfoStr("ignored"));
    // Texts are taken only on the application's main thread.
    EXPECT_EQ(progress.GetInfoText(), "");
}

TEST_F(ProgressRangeTest, SetRangeTakesItsArgumentsAsTheyAreAndResetsCounter)
{
    Progress progress(nullptr, "x", 0.0f, 1.0f);
    progress.SetCounter(3.0f);
    EXPECT_TRUE(progress.SetRange(5.0f, 1.0f));
    float low = 0.0f, high = 0.0f;
    progress.GetRange(low, high);
    EXPECT_FLOAT_EQ(low, 5.0f);  // not swapped, unlike the constructor
    EXPECT_FLOAT_EQ(high, 1.0f);
    EXPECT_FLOAT_EQ(progress.GetValue(), 5.0f);
    progress.Set(0.5f);
    EXPECT_FLOAT_EQ(progress.GetValue(), 0.5f);  // counter back at 0
}

TEST_F(ProgressRangeTest, SubRangeCoversItsPartOfTheDisplayAndPopLeavesParentWhereItEnded)
{
    Progress progress(nullptr, "x", 0.0f, 1.0f);
    progress.SetCounter(0.7f);
    EXPECT_TRUE(progress.PushSubRange(0.25f, 0.5f));
    ExpectRange(Top(progress), 0.25f, 0.5f, 0.0f, 1.0f);
    EXPECT_FLOAT_EQ(progress.GetValue(), 0.0f);  // counter cleared, value at the start

    progress.Set(1.0f);
    EXPECT_TRUE(progress.PopSubRange());
    ASSERT_EQ(progress.GetRanges().size(), 1u);
    EXPECT_FLOAT_EQ(progress.GetValue(), 0.5f);

    // In the parent's own units: the part 2..4 of 0..10 ends at 4.
    Progress tens(nullptr, "x", 0.0f, 10.0f);
    tens.PushSubRange(2.0f, 4.0f);
    ExpectRange(Top(tens), 0.2f, 0.4f, 0.0f, 1.0f);
    tens.PopSubRange();
    EXPECT_FLOAT_EQ(tens.GetValue(), 4.0f);
}

TEST_F(ProgressRangeTest, NestedSubRangesMapThroughEveryLevel)
{
    Progress progress(nullptr, "x", 0.0f, 1.0f);
    progress.PushSubRange(0.5f, 1.0f);
    progress.PushSubRange(0.0f, 0.5f);
    ExpectRange(Top(progress), 0.5f, 0.75f, 0.0f, 1.0f);
    progress.PopPushSubRange(0.5f, 1.0f);
    ExpectRange(Top(progress), 0.75f, 1.0f, 0.0f, 1.0f);
    progress.Set(0.5f);
    progress.PopSubRange();
    // The inner part ended at 1.0 of the whole display, the end of the middle range.
    EXPECT_FLOAT_EQ(progress.GetValue(), 1.0f);
    progress.PopSubRange();
    EXPECT_FLOAT_EQ(progress.GetValue(), 1.0f);
    EXPECT_EQ(progress.GetRanges().size(), 1u);
}

TEST_F(ProgressRangeTest, PushSubRangeClampsBoundsBeyondTheTopRange)
{
    Progress progress(nullptr, "x", 0.0f, 10.0f);
    progress.PushSubRange(-5.0f, 20.0f);
    ExpectRange(Top(progress), 0.0f, 1.0f, 0.0f, 1.0f);
    progress.PopPushSubRange(8.0f, 12.0f);
    ExpectRange(Top(progress), 0.8f, 1.0f, 0.0f, 1.0f);
}

TEST_F(ProgressRangeTest, ParentLowIsDeliberatelyNotSubtracted)
{
    // A parent from 2 to 4: the part 3..4 is its upper half, but the mapping
    // takes the bounds as offsets from 0, as the callers' ranges always start there.
    Progress progress(nullptr, "x", 2.0f, 4.0f);
    progress.PushSubRange(3.0f, 4.0f);
    ExpectRange(Top(progress), 1.5f, 2.0f, 0.0f, 1.0f);
}

TEST_F(ProgressRangeTest, PopWithOnlyTheFirstRangeChangesNothing)
{
    Progress progress(nullptr, "x", 0.0f, 8.0f);
    progress.SetCounter(2.0f);
    progress.Set(3.0f);
    EXPECT_TRUE(progress.PopSubRange());
    ASSERT_EQ(progress.GetRanges().size(), 1u);
    ExpectRange(Top(progress), 0.0f, 1.0f, 0.0f, 8.0f);
    EXPECT_FLOAT_EQ(progress.GetValue(), 5.0f);
    progress.Set(1.0f);
    EXPECT_FLOAT_EQ(progress.GetValue(), 3.0f);  // the counter is still there
}

} // namespace
