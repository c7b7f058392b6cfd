// The spin indicators: SpinWindow of the status bar (100 ms rule, animation rounds, colour walk, stripes)
// and Spinner of the break window (250 ms rule, six turning frames and one at rest), and what each paints.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/SpinWindow.h>
#include <KORVAutlwin/progress/Spinner.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <set>

namespace {

TEST(SpinArithmeticTest, StepsOnlyAfterTheirIntervalAlsoAcrossTheClockWrap)
{
    // SpinWindow: more than 100 ms; position 9 wraps to 0.
    SpinWindow::SpinState state;
    state.lastTick = 1000;
    EXPECT_FALSE(SpinWindow::StepState(state, 1100));
    EXPECT_TRUE(SpinWindow::StepState(state, 1101));
    EXPECT_EQ(std::make_pair(state.position, state.lastTick), std::make_pair(1, 1101u));
    state.position = 9;
    state.lastTick = 0xFFFFFFF0u;
    EXPECT_FALSE(SpinWindow::StepState(state, 0x50u));  // 96 ms later
    EXPECT_TRUE(SpinWindow::StepState(state, 0x60u));   // 112 ms later
    EXPECT_EQ(state.position, 0) << "9 wraps to 0";

    // Spinner: more than 250 ms; from rest the turning starts at 0, and the
    // rest frame never comes by turning.
    int frame = Spinner::kRestFrame;
    std::uint32_t lastTick = 1000;
    EXPECT_FALSE(Spinner::StepFrame(frame, lastTick, 1250));
    EXPECT_EQ(std::make_pair(frame, lastTick), std::make_pair(Spinner::kRestFrame, 1000u));
    std::vector<int> seen;
    for (std::uint32_t now = 1251; seen.size() < 8; now += 251) {
        ASSERT_TRUE(Spinner::StepFrame(frame, lastTick, now));
        seen.push_back(frame);
    }
    EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3, 4, 5, 0, 1}));
    EXPECT_EQ(lastTick, 1251u + 7 * 251);
    lastTick = 0xFFFFFF80u;
    EXPECT_FALSE(Spinner::StepFrame(frame, lastTick, 0x70u));  // 240 ms later
    EXPECT_TRUE(Spinner::StepFrame(frame, lastTick, 0x80u));   // 256 ms later
}

TEST(SpinArithmeticTest, RoundsMoveTheHueWhenVisibleAndTheStripesEverySecondRoundWhichStartLeftOfTheWindow)
{
    SpinWindow::SpinState state;
    // Not running: only the hue moves, and only while visible.
    SpinWindow::AnimateState(state, true, 500);
    SpinWindow::AnimateState(state, false, 550);
    EXPECT_EQ(std::make_pair(state.hue, state.position), std::make_pair(1, 0));

    // Running, rounds every 50 ms from lastTick 0: a step is due only on even
    // rounds, and only once more than 100 ms have passed, so every 200 ms here.
    state = SpinWindow::SpinState{};
    state.running = true;
    std::vector<int> positions;
    for (std::uint32_t round = 1; round <= 8; ++round) {
        SpinWindow::AnimateState(state, true, round * 50);
        positions.push_back(state.position);
    }
    EXPECT_EQ(positions, (std::vector<int>{0, 0, 0, 1, 1, 1, 1, 2}));
    EXPECT_EQ(state.hue, 8);
    // The hue walks the circle in 73 steps of 5 degrees, at low saturation.
    state.hue = SpinWindow::kHueSteps - 1;
    SpinWindow::AnimateState(state, true, 1000);
    EXPECT_EQ(state.hue, 0);
    const std::pair<int, COLORREF> colours[] = {{0, RGB(178, 124, 124)}, {6, RGB(178, 151, 124)},
                                                {24, RGB(124, 178, 124)}, {48, RGB(124, 124, 178)},
                                                {72, RGB(178, 124, 124)}};
    for (const auto& [hue, colour] : colours)
        EXPECT_EQ(SpinWindow::StripeColor(hue), colour) << hue;

    // Height 10, position 0: the stripe at 0 is coloured; two steps back its
    // lower left corner reaches the left edge.
    const auto stripes = SpinWindow::Stripes(0, 20, 10, 0);
    ASSERT_EQ(stripes.size(), 6u);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(stripes[i].left, 5 * i - 10) << i;
        EXPECT_EQ(stripes[i].colored, i % 2 == 0) << i;
    }
    // For every position and several shapes: the stripes cover every column of
    // every row, and a column's colour depends on its offset from the position only.
    const int left = 7, right = 107, width = SpinWindow::kStripeWidth;
    for (int height : {1, 4, 16, 23}) {
        for (int position = 0; position < SpinWindow::kPositions; ++position) {
            SCOPED_TRACE(testing::Message() << "height " << height << " position " << position);
            const auto all = SpinWindow::Stripes(left, right, height, position);
            ASSERT_FALSE(all.empty());
            EXPECT_TRUE(all.front().left + height <= left && all.front().left + height > left - width);
            EXPECT_TRUE(all.back().left < right && all.back().left + width >= right);
            for (const auto& stripe : all) {
                const int offset = stripe.left - (left + position);
                EXPECT_EQ(offset % width, 0);
                EXPECT_EQ(stripe.colored, (offset / width) % 2 == 0);
            }
        }
    }
}

class SpinWidgetTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
    static void Round(SpinWindow& spin)
    {
        QTimerEvent event(spin.GetAnimationTimerId());
        QCoreApplication::sendEvent(&spin, &event);
    }
};

TEST_F(SpinWidgetTest, SpinWindowPaintsLeaningStripesInTheCurrentColourOnTheButtonFace)
{
    SpinWindow spin;
    EXPECT_NE(spin.GetAnimationTimerId(), 0) << "rounds run for the window's life";
    Round(spin);
    EXPECT_EQ(spin.GetHueIndex(), 0) << "hidden";
    spin.resize(100, 16);
    spin.show();
    Round(spin);
    EXPECT_EQ(spin.GetHueIndex(), 1) << "visible";
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
    for (const auto& [x, y, coloured] : {std::tuple{22, 0, true}, {27, 0, false}, {32, 0, true}, {30, 8, true},
                                         {35, 8, false}})
        EXPECT_EQ(at(x, y), coloured ? stripe.rgb() : face.rgb()) << x << "," << y;
    // The left edge is covered too, by a stripe that begins outside the window.
    EXPECT_EQ(at(0, 12), at(10, 12));
}

TEST_F(SpinWidgetTest, SpinnerStepsRestsAndPaintsOneOfSevenDifferentFrames)
{
    Spinner spinner;
    EXPECT_EQ(spinner.GetFrame(), Spinner::kRestFrame);
    // Rest counts as a move: a step right after it stays put.
    spinner.Rest();
    spinner.Step();
    EXPECT_EQ(spinner.GetFrame(), Spinner::kRestFrame);
    std::this_thread::sleep_for(std::chrono::milliseconds(Spinner::kStepInterval + 20));
    spinner.Step();
    spinner.Step();  // too soon after the first
    EXPECT_EQ(spinner.GetFrame(), 0);
    spinner.Rest();
    EXPECT_EQ(spinner.GetFrame(), Spinner::kRestFrame);

    std::set<QByteArray> pictures;
    for (int index = 0; index < Spinner::kFrameCount; ++index) {
        const QImage& image = Spinner::FrameImage(index);
        pictures.insert(QByteArray(reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()));
    }
    EXPECT_EQ(pictures.size(), std::size_t(Spinner::kFrameCount)) << "seven different pictures";
    // What is on the widget is the frame's picture, inside the margins.
    spinner.setContentsMargins(2, 3, 2, 3);
    EXPECT_EQ(spinner.sizeHint(), QSize(Spinner::kFrameSize + 4, Spinner::kFrameSize + 6));
    spinner.resize(spinner.sizeHint());
    const QImage grabbed = spinner.grab().toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage expected = Spinner::FrameImage(Spinner::kRestFrame);
    int differing = 0;
    for (int y = 0; y < Spinner::kFrameSize; ++y)
        for (int x = 0; x < Spinner::kFrameSize; ++x)
            differing += qAlpha(expected.pixel(x, y)) == 255 && grabbed.pixel(x + 2, y + 3) != expected.pixel(x, y);
    EXPECT_EQ(differing, 0);
}

} // namespace
