// The bars and spin indicators (TsGauge, TsXTPGauge, IndeterminateProgressCtrl, SpinWindow, Spinner) and ProgressDlg.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/IndeterminateProgressCtrl.h>
#include <KORVAutlwin/progress/ProgressDlg.h>
#include <KORVAutlwin/progress/SpinWindow.h>
#include <KORVAutlwin/progress/Spinner.h>
#include <KORVAutlwin/progress/TsGauge.h>
#include <KORVAutlwin/progress/TsXTPGauge.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QSignalSpy>

#include <map>

namespace {

TEST(GaugeArithmeticTest, ColoursFadeByPhaseFilledPartIsTruncatedAndCaptionIsCutAt199Characters)
{
    const std::pair<int, float> points[] = {{70, 0.0f},  {71, 0.1f},  {75, 0.5f},  {80, 1.0f},
                                            {100, 1.0f}, {101, 0.9f}, {110, 0.0f}, {179, 0.0f}};
    for (const auto& [phase, factor] : points)
        EXPECT_FLOAT_EQ(TsGauge::BlendFactor(phase), factor) << phase;
    EXPECT_EQ(TsGauge::BarColorAt(75), RGB(112, 64, 141));  // halfway, per channel, truncated
    EXPECT_EQ(TsGauge::TextColorAt(105), RGB(255, 229, 127));
    EXPECT_EQ(TsGauge::MixColor(RGB(10, 20, 30), RGB(200, 100, 0), 2.0f), RGB(200, 100, 0));
    EXPECT_EQ(TsGauge::MixColor(RGB(10, 20, 30), RGB(200, 100, 0), -1.0f), RGB(10, 20, 30));

    // Pixels of 200 and percent: an empty range fills nothing at its value, all beyond; a reversed one falls.
    const struct { float value, low, high; int pixels, percent; } rows[] = {
        {1.0f, 0.0f, 3.0f, 66, 33},   {0.999f, 0.0f, 1.0f, 199, 99}, {-2.0f, -4.0f, 0.0f, 100, 50},
        {-10.0f, 0.0f, 100.0f, 0, 0}, {1e30f, 0.0f, 1.0f, 200, 100}, {5.0f, 5.0f, 5.0f, 0, 0},
        {6.0f, 5.0f, 5.0f, 200, 100}, {0.25f, 1.0f, 0.0f, 150, 75},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.value << " in " << row.low << ".." << row.high);
        EXPECT_EQ(TsGauge::BarWidth(200, row.value, row.low, row.high), row.pixels);
        EXPECT_EQ(TsXTPGauge::PositionOf(row.value, row.low, row.high), row.percent);
    }
    EXPECT_EQ(TsGauge::BarWidth(0, 50.0f, 0.0f, 100.0f), 0);

    // Characters, not bytes: letters of two bytes stay whole, one beyond the 16-bit plane counts once.
    EXPECT_TRUE(TsGauge::CutCaption(nullptr).isEmpty());
    EXPECT_EQ(TsGauge::CutCaption(QString(300, QChar(0xE4)).toStdString().c_str()), QString(199, QChar(0xE4)));
    const std::u32string emoji(300, U'\U0001F600');
    EXPECT_EQ(TsGauge::CutCaption(QString::fromStdU32String(emoji).toStdString().c_str()),
              QString::fromStdU32String(emoji.substr(0, 199)));
}

class GaugeWidgetTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }

    template <typename Animated>
    static void Tick(Animated& widget, int count = 1)
    {
        for (QTimerEvent event(widget.GetAnimationTimerId()); count-- > 0;)
            QCoreApplication::sendEvent(&widget, &event);
    }
    static QRgb Pixel(const QImage& image, int x, int y) { return image.pixel(x, y) & 0xFFFFFF; }
    static QRgb Rgb(COLORREF color) { return qRgb(GetRValue(color), GetGValue(color), GetBValue(color)) & 0xFFFFFF; }
};

TEST_F(GaugeWidgetTest, ColourCycleStepsOncePerFrameWhileSeenAndAFramePaintsTheBarTheTintedRestAndTheCaption)
{
    QWidget parent;
    auto* gauge = new TsGauge(&parent);
    gauge->resize(100, 20);
    EXPECT_EQ(gauge->GetAnimationTimerId(), 0);  // no timer while never shown
    parent.show();
    ASSERT_NE(gauge->GetAnimationTimerId(), 0);
    for (const auto& [ticks, phase] : {std::pair{1, 1}, {178, 179}, {1, 0}, {365, 5}}) {
        Tick(*gauge, ticks);
        EXPECT_EQ(gauge->GetPhase(), phase) << ticks;
    }
    gauge->hide();
    EXPECT_EQ(std::make_pair(gauge->GetPhase(), gauge->GetAnimationTimerId()), std::make_pair(0, 0))
        << "no frames while nobody sees them";
    gauge->show();
    EXPECT_NE(gauge->GetAnimationTimerId(), 0);
    Tick(*gauge, 3);
    EXPECT_EQ(gauge->GetPhase(), 3);

    TsGauge bar;
    EXPECT_EQ(bar.GetDesiredHeight(), 2) << "no caption, no frame";
    bar.resize(200, 20);
    bar.SetRange(4.0f, 0.0f);  // put in order
    bar.SetValue(1.0f);       // a quarter
    bar.show();

    const QImage frame = bar.grab().toImage();
    // Below the lighter band the bar has its own colour, at phase 0 the blue one.
    EXPECT_EQ(Pixel(frame, 49, 18), Rgb(TsGauge::kBarColor));
    EXPECT_GT(qRed(frame.pixel(10, 2)), qRed(frame.pixel(10, 18))) << "the band is lighter";
    // The rest is the face colour under a faint wash of the bar colour.
    const QRgb rest = Pixel(frame, 150, 10);
    EXPECT_NEAR(qBlue(rest), qBlue(bar.palette().color(QPalette::Button).rgb()) * 239 / 255 + 0xE6 * 16 / 255, 1);
    EXPECT_EQ(Pixel(frame, 50, 18), rest);  // the bar ends at a quarter

    // The value shows in the next frame; at phase 90 the bar is red.
    bar.SetValue(3.0f);
    Tick(bar, 91);
    const QImage alert = bar.grab().toImage();
    EXPECT_EQ(Pixel(alert, 149, 18), Rgb(TsGauge::kBarAlertColor));
    EXPECT_TRUE(Pixel(alert, 151, 18) != Rgb(TsGauge::kBarAlertColor) && Pixel(alert, 151, 18) != rest)
        << "the bar ends at three quarters, and the wash follows the bar colour";

    // A caption is drawn in the middle in the text colour over a black shadow.
    bar.SetCaption("MMMMMMMM");
    const QImage captioned = bar.grab().toImage();
    bool textColour = false, black = false, outside = false;
    for (int y = 0; y < captioned.height(); ++y)
        for (int x = 0; x < captioned.width(); ++x) {
            const QRgb pixel = Pixel(captioned, x, y);
            const bool text = pixel == Rgb(TsGauge::kTextAlertColor);
            textColour |= text;
            black |= pixel == 0;
            outside |= (text || pixel == 0) && (x < 40 || x > 160);
        }
    EXPECT_TRUE(textColour && black);
    EXPECT_FALSE(outside) << "centred, nowhere near the ends";
}

TEST_F(GaugeWidgetTest, ToolkitGaugeCountsInPercentAndHearsOncePerChangeOfPosition)
{
    // The control is told (and so repaints) only when the percentage changes.
    TsXTPGauge gauge;
    QSignalSpy changes(&gauge, &QProgressBar::valueChanged);
    gauge.SetRange(10.0f, 20.0f);
    gauge.SetValue(12.5f);
    // A new range changes nothing on display until the next value.
    gauge.SetRange(0.0f, 10.0f);
    EXPECT_EQ(std::tuple(gauge.value(), changes.count()), std::tuple(25, 1));
    // Values within the same percent are not passed on at all.
    for (float v = 2.5f; v < 2.6f; v += 0.001f)
        gauge.SetValue(v);
    EXPECT_EQ(changes.count(), 1);
    // Beyond the range: 100 once, however often it is repeated.
    for (int i = 0; i < 20; ++i)
        gauge.SetValue(50.0f + i);
    EXPECT_EQ(std::tuple(gauge.value(), changes.count()), std::tuple(100, 2));
    for (int step = 0; step <= 10; ++step)
        gauge.SetValue(static_cast<float>(step));
    EXPECT_EQ(changes.count(), 2 + 11);
}

using Ctrl = IndeterminateProgressCtrl;

// The pen of a client pixel (-1: background): bands repeat every 25 pixels along the top edge and
// lean right by one pixel per row; of a band's columns k = 1 .. 10, column 6 is left to the background.
int ExpectedPen(const QRect& client, int offset, int x, int y)
{
    constexpr int kPenOfColumn[11] = {-1, Ctrl::eDarker2, Ctrl::eDarker1, Ctrl::eBase, Ctrl::eLighter1, Ctrl::eLighter2,
                                      -1, Ctrl::eLighter2, Ctrl::eLighter1, Ctrl::eBase, Ctrl::eDarker1};
    const int k = ((x - client.left() - (y - client.top()) - offset) % Ctrl::kBandSpacing + Ctrl::kBandSpacing) %
                  Ctrl::kBandSpacing;
    return k >= 1 && k <= 10 ? kPenOfColumn[k] : -1;
}

TEST(IndeterminateProgressArithmeticTest, ColourStepsSaturateEachChannelAndBandsCoverEveryPixelWithTheRightPen)
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
    const Ctrl::Colors derived = Ctrl::DeriveColors(RGB(0, 120, 215));
    EXPECT_EQ(derived.pens, (std::array<COLORREF, Ctrl::ePenCount>{RGB(0, 18, 113), RGB(0, 69, 164), RGB(0, 120, 215),
                                                                   RGB(51, 171, 255), RGB(102, 222, 255)}));
    EXPECT_EQ(derived.background, RGB(153, 255, 255));

    EXPECT_EQ(std::make_pair(Ctrl::NextOffset(7), Ctrl::NextOffset(24)), std::make_pair(8, 0));

    // 100 / 25 + 2 bands of nine lines; one more in front once the bar is higher than 16 pixels.
    EXPECT_EQ(std::tuple(Ctrl::BandLines({0, 0, 100, 16}, 24).size(), Ctrl::BandLines({0, 0, 100, 17}, 0).size()),
              std::tuple(6u * 9u, 7u * 9u));

    // For every offset and several shapes (higher than 16 pixels too), each pixel gets the pen of its column.
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

TEST_F(GaugeWidgetTest, PaintsTheBandsInTheColoursOfThePalettesHighlightAndMovesThemOnTimer13)
{
    Ctrl ctrl;
    QPalette palette = ctrl.palette();
    palette.setColor(QPalette::Highlight, QColor(200, 40, 90));
    ctrl.setPalette(palette);
    EXPECT_EQ(std::make_pair(ctrl.GetColors().pens[Ctrl::eBase], ctrl.GetColors().background),
              std::make_pair(RGB(200, 40, 90), RGB(255, 193, 243)));
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
    const int before = ctrl.GetOffset();
    QTest::qWait(300);
    EXPECT_NE(ctrl.GetOffset(), before);
}

TEST_F(GaugeWidgetTest, ProgressDlgIsShownModelessOnTopAlwaysTitledAndStepsAround)
{
    ProgressDlg dialog("Importing", nullptr);
    EXPECT_TRUE(dialog.isVisible() && !dialog.isModal() && (dialog.windowFlags() & Qt::WindowStaysOnTopHint));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Importing"));
    for (const char* title : {static_cast<const char*>(nullptr), ""})
        EXPECT_FALSE(ProgressDlg(title, nullptr).windowTitle().isEmpty());

    // Held in range; step 10 comes round past either end; a narrower range takes the position along.
    // SetPos, SetStep and StepIt give what was before; the bar shows what is now.
    QProgressBar* bar = dialog.GetProgressCtrl();
    dialog.SetRange(0, 50);
    EXPECT_EQ((std::vector<int>{dialog.SetPos(70), dialog.SetPos(-5), bar->value(), dialog.SetPos(45), dialog.StepIt(),
                                bar->value(), dialog.SetStep(-20), dialog.StepIt(), bar->value()}),
              (std::vector<int>{0, 50, 0, 0, 45, 5, 10, 5, 35}));
    dialog.SetRange(10, 20);
    EXPECT_EQ(std::make_tuple(bar->value(), bar->minimum(), bar->maximum()), std::make_tuple(20, 10, 20));
    EXPECT_EQ(ProgressDlg::SteppedPosition(7, 3, 7, 7), 7);
}

TEST(SpinArithmeticTest, StepsAfterTheirIntervalRoundsMoveHueAndStripesAndStripesStartLeftOfTheWindow)
{
    // SpinWindow: more than 100 ms; position 9 wraps to 0.
    SpinWindow::SpinState state;
    state.lastTick = 1000;
    const auto step = [&state](std::uint32_t now) { return SpinWindow::StepState(state, now); };
    EXPECT_EQ((std::vector<bool>{step(1100), step(1101)}), (std::vector<bool>{false, true}));
    EXPECT_EQ(std::make_pair(state.position, state.lastTick), std::make_pair(1, 1101u));
    state.position = 9;
    state.lastTick = 0xFFFFFFF0u;   // 96 and 112 ms later across the wrap of the clock
    EXPECT_EQ((std::vector<bool>{step(0x50u), step(0x60u)}), (std::vector<bool>{false, true}));
    EXPECT_EQ(state.position, 0) << "9 wraps to 0";

    // Spinner: more than 250 ms; from rest the turning starts at 0 and never comes back to rest.
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

    // SpinWindow's rounds, not running: only the hue moves, and only while visible.
    state = SpinWindow::SpinState{};
    SpinWindow::AnimateState(state, true, 500);
    SpinWindow::AnimateState(state, false, 550);
    EXPECT_EQ(std::make_pair(state.hue, state.position), std::make_pair(1, 0));

    // Running, rounds every 50 ms: a step on every second round once more than 100 ms passed: every 200 ms.
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

    // The first stripe's bottom starts just left of the window, the last before its right edge; a stripe
    // an even number of stripes from the position is coloured.
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

TEST_F(GaugeWidgetTest, SpinWindowPaintsLeaningStripesInTheCurrentColourOnTheButtonFace)
{
    // Its rounds run for the window's life; the hue moves only while it is seen.
    SpinWindow spin;
    EXPECT_NE(spin.GetAnimationTimerId(), 0);
    Tick(spin);
    EXPECT_EQ(spin.GetHueIndex(), 0) << "hidden";
    spin.resize(100, 16);
    spin.show();
    Tick(spin);
    EXPECT_EQ(spin.GetHueIndex(), 1) << "visible";
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&spin));
    Tick(spin, 24);
    const QColor stripe = korva::ToQColor(SpinWindow::StripeColor(spin.GetHueIndex()));
    const QColor face = spin.palette().color(korva::SysColorRole(COLOR_BTNFACE));
    ASSERT_NE(stripe.rgb(), face.rgb());

    const QImage image = spin.grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    auto at = [&](int x, int y) { return QColor(image.pixel(int(x * ratio), int(y * ratio))).rgb(); };
    // Position 0: coloured stripes start at 0, 10, 20 ... on the top row and lean right on the way down.
    for (const auto& [x, y, coloured] : {std::tuple{22, 0, true}, {27, 0, false}, {32, 0, true}, {30, 8, true},
                                         {35, 8, false}})
        EXPECT_EQ(at(x, y), coloured ? stripe.rgb() : face.rgb()) << x << "," << y;
    EXPECT_EQ(at(0, 12), at(10, 12));
}

} // namespace
