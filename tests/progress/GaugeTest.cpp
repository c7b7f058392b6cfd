// TsGauge (frame arithmetic, colour cycle, caption, what a frame paints) and TsXTPGauge (percentages,
// one update per change of position).

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/TsGauge.h>
#include <KORVAutlwin/progress/TsXTPGauge.h>
#include <KORVAutlwin/toolkit/LogFont.h>

#include <QSignalSpy>
#include <QTimerEvent>

namespace {

TEST(GaugeArithmeticTest, ColoursFadeByPhaseFilledPartIsTruncatedAndCaptionIsCutAt199Characters)
{
    const std::pair<int, float> points[] = {{70, 0.0f},  {71, 0.1f},  {75, 0.5f},  {80, 1.0f},
                                            {100, 1.0f}, {101, 0.9f}, {110, 0.0f}, {179, 0.0f}};
    for (const auto& [phase, factor] : points)
        EXPECT_FLOAT_EQ(TsGauge::BlendFactor(phase), factor) << phase;
    EXPECT_EQ(TsGauge::BarColorAt(75), RGB(112, 64, 141));  // halfway, per channel, truncated
    EXPECT_EQ(TsGauge::TextColorAt(105), RGB(255, 229, 127));
    // Out-of-range factors are held at the ends.
    EXPECT_EQ(TsGauge::MixColor(RGB(10, 20, 30), RGB(200, 100, 0), 2.0f), RGB(200, 100, 0));
    EXPECT_EQ(TsGauge::MixColor(RGB(10, 20, 30), RGB(200, 100, 0), -1.0f), RGB(10, 20, 30));

    // TsGauge in pixels of a client 200 wide, TsXTPGauge in percent. An empty range fills nothing
    // at its value, everything beyond it; a reversed range is taken as given: rising values fall.
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

    // Delivers `count` frames as the animation timer would.
    static void Tick(TsGauge& gauge, int count)
    {
        for (int i = 0; i < count; ++i) {
            QTimerEvent event(gauge.GetAnimationTimerId());
            QCoreApplication::sendEvent(&gauge, &event);
        }
    }
    static QRgb Pixel(const QImage& image, int x, int y) { return image.pixel(x, y) & 0xFFFFFF; }
    static QRgb Rgb(COLORREF color) { return qRgb(GetRValue(color), GetGValue(color), GetBValue(color)) & 0xFFFFFF; }
};

TEST_F(GaugeWidgetTest, ColourCycleStepsOncePerFrameWhileSeenAndStartsAgainWhenHidden)
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
    QTimerEvent foreign(gauge->GetAnimationTimerId() + 1000);
    QCoreApplication::sendEvent(gauge, &foreign);
    EXPECT_EQ(gauge->GetPhase(), 5) << "a timer of someone else's does not move the cycle";
    gauge->hide();
    EXPECT_EQ(gauge->GetPhase(), 0);
    EXPECT_EQ(gauge->GetAnimationTimerId(), 0);  // no frames while nobody sees them
    gauge->show();
    Tick(*gauge, 3);
    EXPECT_EQ(gauge->GetPhase(), 3);
    // Hiding the window around it counts as well.
    parent.hide();
    EXPECT_EQ(gauge->GetPhase(), 0);
    parent.show();
    EXPECT_NE(gauge->GetAnimationTimerId(), 0);
}

TEST_F(GaugeWidgetTest, AFramePaintsTheBarTheTintedRestAndTheCaptionInItsFont)
{
    TsGauge gauge;
    EXPECT_EQ(gauge.GetCaptionFont().weight(), QFont::Bold);
    EXPECT_EQ(gauge.GetCaptionFont().pixelSize(), korva::MulDiv(8, gauge.logicalDpiY(), 72));
    EXPECT_EQ(gauge.GetDesiredHeight(), 2);  // no caption, no frame
    gauge.SetCaption("Computing");
    const int textOnly = gauge.GetDesiredHeight();
    EXPECT_EQ(textOnly, static_cast<int>(QFontMetricsF(gauge.GetCaptionFont()).height() + 2));
    gauge.setFrameStyle(QFrame::Panel | QFrame::Sunken);
    EXPECT_EQ(gauge.GetDesiredHeight(), textOnly + 2 * gauge.frameWidth());
    gauge.setFrameStyle(QFrame::NoFrame);
    gauge.SetCaption(nullptr);
    gauge.resize(200, 20);
    gauge.SetRange(4.0f, 0.0f);  // put in order
    gauge.SetValue(1.0f);       // a quarter
    gauge.show();

    const QImage frame = gauge.grab().toImage();
    ASSERT_EQ(frame.width(), 200);
    // Below the lighter band the bar has its own colour, at phase 0 the blue one.
    EXPECT_EQ(Pixel(frame, 10, 18), Rgb(TsGauge::kBarColor));
    EXPECT_EQ(Pixel(frame, 49, 18), Rgb(TsGauge::kBarColor));
    EXPECT_GT(qRed(frame.pixel(10, 2)), qRed(frame.pixel(10, 18))) << "the band is lighter";
    // The rest is the face colour under a faint wash of the bar colour.
    const QColor face = gauge.palette().color(QPalette::Button);
    const QRgb rest = Pixel(frame, 150, 10);
    EXPECT_NEAR(qRed(rest), face.red() + (0x00 - face.red()) * 16 / 255, 1);
    EXPECT_NEAR(qBlue(rest), face.blue() + (0xE6 - face.blue()) * 16 / 255, 1);
    EXPECT_EQ(Pixel(frame, 50, 18), rest);  // the bar ends at a quarter

    // The value shows in the next frame; at phase 90 the bar is red.
    gauge.SetValue(3.0f);
    Tick(gauge, 91);
    const QImage alert = gauge.grab().toImage();
    EXPECT_EQ(Pixel(alert, 149, 18), Rgb(TsGauge::kBarAlertColor));
    EXPECT_NE(Pixel(alert, 151, 18), Rgb(TsGauge::kBarAlertColor));
    EXPECT_NE(Pixel(alert, 151, 18), rest);  // the wash follows the bar colour

    // A caption is drawn in the middle in the text colour over a black shadow.
    gauge.SetCaption("MMMMMMMM");
    const QImage captioned = gauge.grab().toImage();
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
    TsXTPGauge gauge;
    EXPECT_FALSE(gauge.isTextVisible());
    gauge.resize(300, 16);
    gauge.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&gauge));
    QCoreApplication::processEvents();
    korva::test::EventCounter paints(QEvent::Paint);
    gauge.installEventFilter(&paints);
    QSignalSpy changes(&gauge, &QProgressBar::valueChanged);
    auto expectUpdates = [&](int count) {
        QCoreApplication::processEvents();
        EXPECT_EQ(changes.count(), count);
        EXPECT_EQ(paints.count, count);
    };

    gauge.SetRange(10.0f, 20.0f);
    gauge.SetValue(12.5f);
    EXPECT_EQ(gauge.value(), 25);
    EXPECT_EQ(gauge.maximum(), 100);  // the control always counts in percent
    expectUpdates(1);
    // A new range changes nothing on display until the next value.
    gauge.SetRange(0.0f, 10.0f);
    EXPECT_EQ(gauge.value(), 25);
    // Values within the same percent are not passed on at all.
    for (float v = 2.5f; v < 2.6f; v += 0.001f)
        gauge.SetValue(v);
    EXPECT_EQ(gauge.GetPosition(), 25);
    expectUpdates(1);
    // Beyond the range: 100 once, however often it is repeated.
    for (int i = 0; i < 20; ++i)
        gauge.SetValue(50.0f + i);
    EXPECT_EQ(gauge.value(), 100);
    expectUpdates(2);
    // Every step of ten percent is one change and one repaint.
    for (int step = 0; step <= 10; ++step)
        gauge.SetValue(static_cast<float>(step));
    expectUpdates(2 + 11);
    gauge.removeEventFilter(&paints);
}

} // namespace
