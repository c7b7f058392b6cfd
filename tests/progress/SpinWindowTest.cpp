// SpinWindow: the 100 ms rule of its steps, the rounds of its animation, the
// colour walk, the stripe arithmetic, and what a frame really paints. Offscreen.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/progress/SpinWindow.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QCoreApplication>
#include <QImage>
#include <QTest>
#include <QTimerEvent>

#include <gtest/gtest.h>


namespace {

using State = SpinWindow::SpinState;

// --- Arithmetic ------------------------------------------------------------------------------

TEST(SpinWindowArithmeticTest, StepMovesOnlyWhenMoreThan100MillisecondsHavePassed)
{
    State state;
    state.lastTick = 1000;
    EXPECT_FALSE(SpinWindow::StepState(state, 1100));
    EXPECT_EQ(state.position, 0);
    EXPECT_EQ(state.lastTick, 1000u);
    EXPECT_TRUE(SpinWindow::StepState(state, 1101));
    EXPECT_EQ(state.position, 1);
    EXPECT_EQ(state.lastTick, 1101u);

    // Position 9 wraps to 0.
    state.position = 9;
    EXPECT_TRUE(SpinWindow::StepState(state, 1300));
    EXPECT_EQ(state.position, 0);

    // Across the wrap of the 32-bit clock.
    state.lastTick = 0xFFFFFFF0u;
    EXPECT_FALSE(SpinWindow::StepState(state, 0x50u));  // 96 ms later
    EXPECT_TRUE(SpinWindow::StepState(state, 0x60u));   // 112 ms later
    EXPECT_EQ(state.position, 1);
}

TEST(SpinWindowArithmeticTest, RoundsMoveTheHueWhenVisibleAndTheStripesOnEverySecondRoundWhenRunning)
{
    State state;
    // Not running: only the hue moves, and only while visible.
    SpinWindow::AnimateState(state, true, 500);
    SpinWindow::AnimateState(state, false, 550);
    EXPECT_EQ(state.hue, 1);
    EXPECT_EQ(state.position, 0);

    // Running, rounds every 50 ms from lastTick 0: a step is due only on even
    // rounds, and only once more than 100 ms have passed, so every 200 ms here.
    state = State{};
    state.running = true;
    int positions[8] = {};
    for (int round = 1; round <= 8; ++round) {
        SpinWindow::AnimateState(state, true, static_cast<std::uint32_t>(round * 50));
        positions[round - 1] = state.position;
    }
    const int expected[8] = {0, 0, 0, 1, 1, 1, 1, 2};
    for (int round = 0; round < 8; ++round)
        EXPECT_EQ(positions[round], expected[round]) << "round " << round + 1;
    EXPECT_EQ(state.hue, 8);

    // The hue walks the circle in 73 steps.
    state.hue = SpinWindow::kHueSteps - 1;
    SpinWindow::AnimateState(state, true, 1000);
    EXPECT_EQ(state.hue, 0);
}

TEST(SpinWindowArithmeticTest, StripeColourWalksTheColourCircleAtLowSaturation)
{
    EXPECT_EQ(SpinWindow::StripeColor(0), RGB(178, 124, 124));   // red, 0 degrees
    EXPECT_EQ(SpinWindow::StripeColor(6), RGB(178, 151, 124));   // 30 degrees
    EXPECT_EQ(SpinWindow::StripeColor(24), RGB(124, 178, 124));  // green, 120 degrees
    EXPECT_EQ(SpinWindow::StripeColor(48), RGB(124, 124, 178));  // blue, 240 degrees
    EXPECT_EQ(SpinWindow::StripeColor(72), SpinWindow::StripeColor(0));  // 360 degrees is 0
}

TEST(SpinWindowArithmeticTest, StripesStartLeftOfTheWindowAndAlternate)
{
    // Height 10, position 0: the stripe at 0 is coloured; two steps back its
    // lower left corner reaches the left edge.
    auto stripes = SpinWindow::Stripes(0, 20, 10, 0);
    ASSERT_EQ(stripes.size(), 6u);
    const int lefts[6] = {-10, -5, 0, 5, 10, 15};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(stripes[i].left, lefts[i]) << i;
        EXPECT_EQ(stripes[i].colored, i % 2 == 0) << i;
    }

    // For every position and several shapes: the stripes cover every column of
    // every row, and a column's colour depends on its offset from the position only.
    for (int height : {1, 4, 16, 23}) {
        for (int position = 0; position < SpinWindow::kPositions; ++position) {
            const int left = 7, right = 107;
            const auto all = SpinWindow::Stripes(left, right, height, position);
            ASSERT_FALSE(all.empty());
            EXPECT_LE(all.front().left + height, left);
            EXPECT_GT(all.front().left + height, left - SpinWindow::kStripeWidth);
            EXPECT_LT(all.back().left, right);
            EXPECT_GE(all.back().left + SpinWindow::kStripeWidth, right);
            for (size_t i = 0; i < all.size(); ++i) {
                const int offset = all[i].left - (left + position);
                EXPECT_EQ(offset % SpinWindow::kStripeWidth, 0);
                const bool even = ((offset / SpinWindow::kStripeWidth) % 2) == 0;
                EXPECT_EQ(all[i].colored, even) << "height " << height << " position " << position << " stripe " << i;
            }
        }
    }
}

// --- The window ------------------------------------------------------------------------------

class SpinWindowTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }

    void Round(SpinWindow& spin)
    {
        QTimerEvent event(spin.GetAnimationTimerId());
        QCoreApplication::sendEvent(&spin, &event);
    }
};

TEST_F(SpinWindowTest, TimerRoundsRunForTheWindowsLifeAndMoveTheHueOnlyWhileVisible)
{
    SpinWindow spin;
    EXPECT_NE(spin.GetAnimationTimerId(), 0);
    Round(spin);
    EXPECT_EQ(spin.GetHueIndex(), 0) << "hidden";
    spin.show();
    Round(spin);
    Round(spin);
    EXPECT_EQ(spin.GetHueIndex(), 2);
}

TEST_F(SpinWindowTest, PaintsLeaningStripesInTheCurrentColourOnTheButtonFace)
{
    SpinWindow spin;
    spin.resize(100, 16);
    spin.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&spin));
    for (int i = 0; i < 24; ++i)
        Round(spin);
    const QColor stripe = korva::ToQColor(SpinWindow::StripeColor(spin.GetHueIndex()));
    const QColor face = spin.palette().color(korva::SysColorRole(COLOR_BTNFACE));
    ASSERT_NE(stripe.rgb(), face.rgb());

    const QImage image = spin.grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    auto at = [&](int x, int y) { return QColor(image.pixel(int(x * ratio), int(y * ratio))).rgb(); };
    // Position 0: coloured stripes start at 0, 10, 20 ... on the top row,
    // and the same stripes lean right by the height on the way down.
    EXPECT_EQ(at(22, 0), stripe.rgb());
    EXPECT_EQ(at(27, 0), face.rgb());
    EXPECT_EQ(at(32, 0), stripe.rgb());
    EXPECT_EQ(at(22 + 8, 8), stripe.rgb());
    EXPECT_EQ(at(27 + 8, 8), face.rgb());
    // The left edge is covered too, by a stripe that begins outside the window.
    EXPECT_EQ(at(0, 12), at(10, 12));
}

} // namespace
