// Progress without an application object: every object is inactive, keeps its
// ranges, value and counter, and always goes on.

#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/progress/Progress.h>

#include <gtest/gtest.h>

namespace {

TEST(ProgressRangeTest, InactiveObjectCountsAndAlwaysGoesOnAndTheShortFormSpinsWithoutGaugeOrStop)
{
    ASSERT_EQ(WinApp::GetApp(), nullptr);
    Progress progress(nullptr, "x", 0.0f, 10.0f, true, false, true);
    EXPECT_FALSE(Progress::IsProgressActive());
    progress.SetCounter(10.0f);
    EXPECT_TRUE(progress.Set(2.0f));
    EXPECT_FLOAT_EQ(progress.GetValue(), 12.0f);  // no gauge on display: nothing clamps
    EXPECT_TRUE(progress.SetInfoStr("ignored"));
    EXPECT_EQ(progress.GetInfoText(), "");  // texts are taken only on the main thread

    // SetRange takes its bounds as they are, puts the value at low and clears the counter.
    EXPECT_TRUE(progress.SetRange(5.0f, 1.0f));
    float low = 0.0f, high = 0.0f;
    progress.GetRange(low, high);
    EXPECT_EQ((std::vector<float>{low, high, progress.GetValue()}), (std::vector<float>{5.0f, 1.0f, 5.0f}));
    progress.Set(0.5f);
    EXPECT_FLOAT_EQ(progress.GetValue(), 0.5f);

    // A part clears the counter; its end leaves the value where it ended in the parent's units.
    progress.SetRange(0.0f, 10.0f);
    progress.SetCounter(0.7f);
    EXPECT_TRUE(progress.PushSubRange(2.0f, 4.0f));
    EXPECT_FLOAT_EQ(progress.GetValue(), 0.0f);
    progress.Set(1.0f);
    EXPECT_TRUE(progress.PopPushSubRange(4.0f, 6.0f));
    EXPECT_EQ(progress.GetRanges().size(), 2u);
    EXPECT_TRUE(progress.PopSubRange());
    EXPECT_FLOAT_EQ(progress.GetValue(), 6.0f);
    EXPECT_TRUE(progress.PopSubRange());
    EXPECT_EQ(progress.GetRanges().size(), 1u);

    const Progress spin("spin");
    EXPECT_EQ(std::tuple(spin.GetShowSpin(), spin.GetShowGauge(), spin.GetAllowBreak(), spin.GetStopQuestion(),
                         spin.GetStopButton()),
              std::tuple(true, false, false, "Do you really want to stop?", "Stop"));
}

} // namespace
