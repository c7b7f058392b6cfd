// IndeterminateProgressCtrl: colour steps with their saturation, the moving bands and what a frame
// paints; and the plain ProgressDlg with its progress control.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/IndeterminateProgressCtrl.h>
#include <KORVAutlwin/progress/ProgressDlg.h>

#include <map>

namespace {

using Ctrl = IndeterminateProgressCtrl;

// The pen that a client pixel should show (-1: the background): bands repeat
// every 25 pixels along the top edge and lean right by one pixel per row; of a
// band's columns k = 1 .. 10, column 6 is left to the background.
int ExpectedPen(const QRect& client, int offset, int x, int y)
{
    constexpr int kPenOfColumn[11] = {-1, Ctrl::eDarker2, Ctrl::eDarker1, Ctrl::eBase, Ctrl::eLighter1, Ctrl::eLighter2,
                                      -1, Ctrl::eLighter2, Ctrl::eLighter1, Ctrl::eBase, Ctrl::eDarker1};
    const int k = ((x - client.left() - (y - client.top()) - offset) % Ctrl::kBandSpacing + Ctrl::kBandSpacing) %
                  Ctrl::kBandSpacing;
    return k >= 1 && k <= 10 ? kPenOfColumn[k] : -1;
}

TEST(IndeterminateProgressArithmeticTest, ColourStepsSaturateEachChannelAtBothEnds)
{
    const struct { COLORREF color; int delta; COLORREF expected; } steps[] = {
        {RGB(10, 100, 250), 51, RGB(61, 151, 255)}, {RGB(10, 100, 250), -51, RGB(0, 49, 199)},
        {RGB(0, 0, 0), -51, RGB(0, 0, 0)},          {RGB(255, 255, 255), 51, RGB(255, 255, 255)},
        {RGB(204, 205, 0), 51, RGB(255, 255, 51)},  // no carry into the next channel
    };
    for (const auto& step : steps)
        EXPECT_EQ(Ctrl::AddToChannels(step.color, step.delta), step.expected) << step.color << " " << step.delta;
    EXPECT_EQ(Ctrl::AddToChannels(RGB(255, 255, 255), 51) >> 24, 0u) << "the unused high byte stays clear";

    // Two steps darker, the base, two steps lighter, and the background a third lighter.
    const struct { COLORREF base; std::array<COLORREF, Ctrl::ePenCount> pens; COLORREF background; } colours[] = {
        {RGB(0, 120, 215), {RGB(0, 18, 113), RGB(0, 69, 164), RGB(0, 120, 215), RGB(51, 171, 255), RGB(102, 222, 255)},
         RGB(153, 255, 255)},
        {RGB(0, 0, 0), {RGB(0, 0, 0), RGB(0, 0, 0), RGB(0, 0, 0), RGB(51, 51, 51), RGB(102, 102, 102)}, RGB(153, 153, 153)},
        {RGB(255, 255, 255), {RGB(153, 153, 153), RGB(204, 204, 204), RGB(255, 255, 255), RGB(255, 255, 255),
                              RGB(255, 255, 255)}, RGB(255, 255, 255)},
    };
    for (const auto& colour : colours) {
        const Ctrl::Colors derived = Ctrl::DeriveColors(colour.base);
        EXPECT_EQ(derived.pens, colour.pens) << colour.base;
        EXPECT_EQ(derived.background, colour.background) << colour.base;
    }
}

TEST(IndeterminateProgressArithmeticTest, BandsRepeatEvery25PixelsAndCoverEveryPixelWithTheRightPen)
{
    for (int offset = 0; offset < Ctrl::kBandSpacing - 1; ++offset)
        EXPECT_EQ(Ctrl::NextOffset(offset), offset + 1);
    EXPECT_EQ(Ctrl::NextOffset(24), 0);

    // 100 / 25 + 2 bands of nine lines; one more in front once the bar is higher than 16 pixels.
    EXPECT_EQ(Ctrl::BandLines(QRect(0, 0, 100, 16), 24).size(), 6u * 9u);
    EXPECT_EQ(Ctrl::BandLines(QRect(0, 0, 100, 17), 0).size(), 7u * 9u);

    // For every offset and several shapes, bars higher than 16 pixels included,
    // each client pixel is drawn by exactly the pen of its column.
    for (const QRect client : {QRect(0, 0, 100, 12), QRect(3, 5, 37, 16), QRect(-4, 2, 260, 1), QRect(0, 0, 24, 9),
                               QRect(0, 0, 60, 17), QRect(2, 1, 30, 41), QRect(0, 0, 200, 90)}) {
        for (int offset = 0; offset < Ctrl::kBandSpacing; ++offset) {
            std::map<std::pair<int, int>, int> drawn;
            for (const auto& line : Ctrl::BandLines(client, offset))
                for (int step = 0; step < line.to.y() - line.from.y(); ++step)
                    drawn[{line.from.x() + step, line.from.y() + step}] = line.pen;
            for (int y = client.top(); y <= client.bottom(); ++y)
                for (int x = client.left(); x <= client.right(); ++x) {
                    const auto found = drawn.find({x, y});
                    ASSERT_EQ(found == drawn.end() ? -1 : found->second, ExpectedPen(client, offset, x, y))
                        << "client " << client.width() << "x" << client.height() << " offset " << offset << " at "
                        << x << "," << y;
                }
        }
    }
}

class IndeterminateProgressCtrlTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
};

TEST_F(IndeterminateProgressCtrlTest, PaintsTheBandsInTheColoursOfThePalettesHighlightAndMovesThemOnTimer13)
{
    Ctrl ctrl;
    QPalette palette = ctrl.palette();
    palette.setColor(QPalette::Highlight, QColor(200, 40, 90));
    ctrl.setPalette(palette);
    EXPECT_EQ(ctrl.GetColors().pens[Ctrl::eBase], RGB(200, 40, 90));
    EXPECT_EQ(ctrl.GetColors().background, RGB(255, 193, 243));
    ctrl.resize(100, 12);
    ctrl.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&ctrl));

    const QImage image = ctrl.grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    const int offset = ctrl.GetOffset();  // what this frame was painted with
    const Ctrl::Colors& colors = ctrl.GetColors();
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 100; ++x) {
            const int pen = ExpectedPen(QRect(0, 0, 100, 12), offset, x, y);
            const COLORREF painted = korva::FromQColor(QColor(image.pixel(int(x * ratio), int(y * ratio))));
            ASSERT_EQ(painted, pen < 0 ? colors.background : colors.pens[pen]) << x << "," << y << " offset " << offset;
        }

    ctrl.OnTimer(Ctrl::kTimerId + 1);
    EXPECT_EQ(ctrl.GetOffset(), offset);
    ctrl.OnTimer(Ctrl::kTimerId);
    EXPECT_EQ(ctrl.GetOffset(), Ctrl::NextOffset(offset));
    // The real timer, every 50 ms.
    const int before = ctrl.GetOffset();
    QTest::qWait(300);
    EXPECT_NE(ctrl.GetOffset(), before);
}

TEST_F(IndeterminateProgressCtrlTest, ProgressDlgIsShownModelessOnTopAlwaysTitledAndStepsAround)
{
    ProgressDlg dialog("Importing", nullptr);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(dialog.isModal());
    EXPECT_TRUE(dialog.windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Importing"));
    for (const char* title : {static_cast<const char*>(nullptr), ""})
        EXPECT_FALSE(ProgressDlg(title, nullptr).windowTitle().isEmpty());

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
    // A narrower range takes the position along; an empty one pins it.
    dialog.SetRange(10, 20);
    EXPECT_EQ(std::make_tuple(bar->value(), bar->minimum(), bar->maximum()), std::make_tuple(20, 10, 20));
    EXPECT_EQ(ProgressDlg::SteppedPosition(7, 3, 7, 7), 7);
}

} // namespace
