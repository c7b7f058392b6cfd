// IndeterminateProgressCtrl: the colour steps with their saturation, the band
// offset, the lines of the bands, and what a frame really paints. And the plain
// ProgressDlg with its progress control. Offscreen.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/progress/IndeterminateProgressCtrl.h>
#include <KORVAutlwin/progress/ProgressDlg.h>

#include <QImage>
#include <QPalette>
#include <QProgressBar>
#include <QTest>

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace {

using Ctrl = IndeterminateProgressCtrl;

// The pen of the lines k = 1 .. 10 of a band; -1 for the background column.
constexpr int kPenOfColumn[11] = {-1, Ctrl::eDarker2, Ctrl::eDarker1, Ctrl::eBase, Ctrl::eLighter1, Ctrl::eLighter2,
                                  -1, Ctrl::eLighter2, Ctrl::eLighter1, Ctrl::eBase, Ctrl::eDarker1};

// The pen that a client pixel should show: bands repeat every 25 pixels along
// the top edge and lean right by one pixel per row.
int ExpectedPen(const QRect& client, int offset, int x, int y)
{
    int k = (x - client.left() - (y - client.top()) - offset) % Ctrl::kBandSpacing;
    if (k < 0)
        k += Ctrl::kBandSpacing;
    return k >= 1 && k <= 10 ? kPenOfColumn[k] : -1;
}

TEST(IndeterminateProgressArithmeticTest, ChannelStepsSaturateAtBothEnds)
{
    EXPECT_EQ(Ctrl::AddToChannels(RGB(10, 100, 250), 51), RGB(61, 151, 255));
    EXPECT_EQ(Ctrl::AddToChannels(RGB(10, 100, 250), -51), RGB(0, 49, 199));
    EXPECT_EQ(Ctrl::AddToChannels(RGB(0, 0, 0), -51), RGB(0, 0, 0));
    EXPECT_EQ(Ctrl::AddToChannels(RGB(255, 255, 255), 51), RGB(255, 255, 255));
    // Channels do not carry into each other, and the unused high byte stays clear.
    EXPECT_EQ(Ctrl::AddToChannels(RGB(204, 205, 0), 51), RGB(255, 255, 51));
    EXPECT_EQ(Ctrl::AddToChannels(RGB(255, 255, 255), 51) >> 24, 0u);

    // A typical highlight colour: two lighter steps, the background a third,
    // two darker steps; each channel stops at its end.
    const Ctrl::Colors colors = Ctrl::DeriveColors(RGB(0, 120, 215));
    EXPECT_EQ(colors.pens[Ctrl::eBase], RGB(0, 120, 215));
    EXPECT_EQ(colors.pens[Ctrl::eLighter1], RGB(51, 171, 255));
    EXPECT_EQ(colors.pens[Ctrl::eLighter2], RGB(102, 222, 255));
    EXPECT_EQ(colors.background, RGB(153, 255, 255));
    EXPECT_EQ(colors.pens[Ctrl::eDarker1], RGB(0, 69, 164));
    EXPECT_EQ(colors.pens[Ctrl::eDarker2], RGB(0, 18, 113));

    // Black and white: everything collapses onto the ends where it must.
    const Ctrl::Colors black = Ctrl::DeriveColors(RGB(0, 0, 0));
    EXPECT_EQ(black.pens[Ctrl::eDarker2], RGB(0, 0, 0));
    EXPECT_EQ(black.background, RGB(153, 153, 153));
    const Ctrl::Colors white = Ctrl::DeriveColors(RGB(255, 255, 255));
    EXPECT_EQ(white.pens[Ctrl::eLighter1], RGB(255, 255, 255));
    EXPECT_EQ(white.pens[Ctrl::eDarker2], RGB(153, 153, 153));
}

TEST(IndeterminateProgressArithmeticTest, OffsetRunsZeroToTwentyFourAndWraps)
{
    int offset = 0;
    for (int step = 1; step < Ctrl::kBandSpacing; ++step) {
        offset = Ctrl::NextOffset(offset);
        EXPECT_EQ(offset, step);
    }
    EXPECT_EQ(offset, 24);
    EXPECT_EQ(Ctrl::NextOffset(offset), 0);
}

TEST(IndeterminateProgressArithmeticTest, BandLinesLeanFromTopToBottomAndStartOneSpacingLeft)
{
    const QRect client(0, 0, 100, 12);
    const auto lines = Ctrl::BandLines(client, 0);
    // 100 / 25 + 2 bands, nine lines each (column 6 is left to the background).
    ASSERT_EQ(lines.size(), 6u * 9u);
    EXPECT_EQ(Ctrl::BandLines(QRect(0, 0, 100, 16), 24).size(), 6u * 9u);
    // One more band in front once the bar is higher than 16 pixels.
    const auto tall = Ctrl::BandLines(QRect(0, 0, 100, 17), 0);
    ASSERT_EQ(tall.size(), 7u * 9u);
    EXPECT_EQ(tall[0].from, QPoint(-49, 0));
    // The first band starts 25 pixels left of the client; its first line is the darkest.
    EXPECT_EQ(lines[0].pen, Ctrl::eDarker2);
    EXPECT_EQ(lines[0].from, QPoint(-24, 0));
    EXPECT_EQ(lines[0].to, QPoint(-24 + 12, 12));
    // The next band, 25 pixels on, shifted by the offset.
    const auto moved = Ctrl::BandLines(client, 7);
    EXPECT_EQ(moved[9].from, QPoint(1 + 7, 0));
    EXPECT_EQ(moved[9].to, QPoint(1 + 7 + 12, 12));
    for (const auto& line : moved) {
        EXPECT_EQ(line.to.x() - line.from.x(), client.height()) << "45 degrees";
        EXPECT_EQ(line.from.y(), client.top());
        EXPECT_EQ(line.to.y(), client.top() + client.height());
    }
}

TEST(IndeterminateProgressArithmeticTest, BandLinesCoverEveryPixelWithTheRightPen)
{
    // For every offset and several shapes of bar, each client pixel is drawn by
    // exactly the pen of its column; bars higher than 16 pixels included, whose
    // lower left corner needs bands that start further left.
    for (const QRect client : {QRect(0, 0, 100, 12), QRect(3, 5, 37, 16), QRect(-4, 2, 260, 1), QRect(0, 0, 24, 9),
                               QRect(0, 0, 60, 17), QRect(2, 1, 30, 41), QRect(0, 0, 200, 90)}) {
        for (int offset = 0; offset < Ctrl::kBandSpacing; ++offset) {
            std::map<std::pair<int, int>, int> drawn;
            for (const auto& line : Ctrl::BandLines(client, offset))
                for (int step = 0; step < line.to.y() - line.from.y(); ++step)
                    drawn[{line.from.x() + step, line.from.y() + step}] = line.pen;
            for (int y = client.top(); y < client.top() + client.height(); ++y) {
                for (int x = client.left(); x < client.left() + client.width(); ++x) {
                    const auto found = drawn.find({x, y});
                    const int pen = found == drawn.end() ? -1 : found->second;
                    ASSERT_EQ(pen, ExpectedPen(client, offset, x, y))
                        << "client " << client.width() << "x" << client.height() << " offset " << offset << " at "
                        << x << "," << y;
                }
            }
        }
    }
}

class IndeterminateProgressCtrlTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
};

TEST_F(IndeterminateProgressCtrlTest, ColoursFollowTheHighlightOfThePalette)
{
    Ctrl ctrl;
    QPalette palette = ctrl.palette();
    palette.setColor(QPalette::Highlight, QColor(200, 40, 90));
    ctrl.setPalette(palette);
    EXPECT_EQ(ctrl.GetColors().pens[Ctrl::eBase], RGB(200, 40, 90));
    EXPECT_EQ(ctrl.GetColors().background, RGB(255, 193, 243));
}

TEST_F(IndeterminateProgressCtrlTest, TimerThirteenMovesTheBandsAndTheTimerRuns)
{
    Ctrl ctrl;
    ctrl.resize(100, 12);
    ctrl.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&ctrl));
    const int start = ctrl.GetOffset();
    ctrl.OnTimer(Ctrl::kTimerId + 1);
    EXPECT_EQ(ctrl.GetOffset(), start);
    ctrl.OnTimer(Ctrl::kTimerId);
    EXPECT_EQ(ctrl.GetOffset(), Ctrl::NextOffset(start));
    // The real timer, every 50 ms.
    const int before = ctrl.GetOffset();
    QTest::qWait(300);
    EXPECT_NE(ctrl.GetOffset(), before);
}

TEST_F(IndeterminateProgressCtrlTest, PaintsTheBandsInTheDerivedColours)
{
    Ctrl ctrl;
    QPalette palette = ctrl.palette();
    palette.setColor(QPalette::Highlight, QColor(0, 120, 215));
    ctrl.setPalette(palette);
    ctrl.resize(100, 12);
    ctrl.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&ctrl));

    const QImage image = ctrl.grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    const int offset = ctrl.GetOffset();  // what this frame was painted with
    const Ctrl::Colors& colors = ctrl.GetColors();
    int bandPixels = 0;
    for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 100; ++x) {
            const int pen = ExpectedPen(QRect(0, 0, 100, 12), offset, x, y);
            const COLORREF expected = pen < 0 ? colors.background : colors.pens[pen];
            const COLORREF painted = korva::FromQColor(QColor(image.pixel(int(x * ratio), int(y * ratio))));
            ASSERT_EQ(painted, expected) << "at " << x << "," << y << " offset " << offset;
            bandPixels += pen >= 0;
        }
    }
    EXPECT_GT(bandPixels, 300);
}

// --- ProgressDlg ------------------------------------------------------------------------------

TEST_F(IndeterminateProgressCtrlTest, ProgressDlgIsShownModelessOnTopAndAlwaysTitled)
{
    ProgressDlg dialog("Importing", nullptr);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(dialog.isModal());
    EXPECT_TRUE(dialog.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Importing"));
    ASSERT_NE(dialog.GetProgressCtrl(), nullptr);
    EXPECT_EQ(dialog.GetProgressCtrl()->property("ctrlId").toInt(), ProgressDlg::kProgressCtrlId);

    ProgressDlg untitled(nullptr, nullptr);
    EXPECT_FALSE(untitled.windowTitle().isEmpty());
    ProgressDlg empty("", nullptr);
    EXPECT_FALSE(empty.windowTitle().isEmpty());
}

TEST_F(IndeterminateProgressCtrlTest, ProgressDlgKeepsThePositionInRangeAndStepsAround)
{
    ProgressDlg dialog("Importing", nullptr);
    QProgressBar* bar = dialog.GetProgressCtrl();
    dialog.SetRange(0, 50);
    EXPECT_EQ(dialog.SetPos(70), 0);
    EXPECT_EQ(bar->value(), 50) << "held at the upper end";
    EXPECT_EQ(dialog.SetPos(-5), 50);
    EXPECT_EQ(bar->value(), 0);

    // Step 10 at start; past the upper end it comes round from the lower end.
    dialog.SetPos(45);
    EXPECT_EQ(dialog.StepIt(), 45);
    EXPECT_EQ(bar->value(), 5);
    EXPECT_EQ(dialog.SetStep(-20), 10);
    EXPECT_EQ(dialog.StepIt(), 5);
    EXPECT_EQ(bar->value(), 35) << "and before the lower end from the upper end";

    // A narrower range takes the position along.
    dialog.SetRange(10, 20);
    EXPECT_EQ(bar->value(), 20);
    EXPECT_EQ(bar->minimum(), 10);
    EXPECT_EQ(bar->maximum(), 20);
    // An empty range pins the position.
    EXPECT_EQ(ProgressDlg::SteppedPosition(7, 3, 7, 7), 7);
}

} // namespace
