// TsGauge: the frame arithmetic, the colour cycle driven by timer events, the
// caption and its height, and what a frame really paints. Offscreen.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/progress/TsGauge.h>
#include <KORVAutlwin/toolkit/LogFont.h>

#include <QCoreApplication>
#include <QImage>
#include <QTimerEvent>

#include <gtest/gtest.h>

#include <string>

namespace {

// --- Arithmetic ---------------------------------------------------------------------------

TEST(GaugeArithmeticTest, BlendFactorFadesInHoldsAndFadesOut)
{
    const std::pair<int, float> points[] = {{70, 0.0f}, {71, 0.1f}, {75, 0.5f},  {80, 1.0f},
                                            {100, 1.0f}, {101, 0.9f}, {110, 0.0f}, {179, 0.0f}};
    for (const auto& [phase, factor] : points)
        EXPECT_FLOAT_EQ(TsGauge::BlendFactor(phase), factor) << phase;

    // Over a whole cycle: 21 frames at full alert colour and 9 on either fade,
    // i.e. 2 seconds of change every 9 seconds at 20 frames a second.
    int full = 0, fading = 0;
    for (int phase = 0; phase < TsGauge::kPhaseCount; ++phase) {
        const float f = TsGauge::BlendFactor(phase);
        full += f == 1.0f;
        fading += f > 0.0f && f < 1.0f;
    }
    EXPECT_EQ(full, 21);
    EXPECT_EQ(fading, 18);
    EXPECT_EQ(TsGauge::kPhaseCount * TsGauge::kFrameInterval, 9000);
}

TEST(GaugeArithmeticTest, ColoursBlendPerChannel)
{
    EXPECT_EQ(TsGauge::BarColorAt(75), RGB(112, 64, 141));  // halfway, truncated
    EXPECT_EQ(TsGauge::TextColorAt(105), RGB(255, 229, 127));
    // The fade in mirrors the fade out.
    for (int step = 1; step < 10; ++step)
        EXPECT_EQ(TsGauge::BarColorAt(70 + step), TsGauge::BarColorAt(110 - step)) << step;
    // Out-of-range factors are held at the ends.
    EXPECT_EQ(TsGauge::MixColor(RGB(10, 20, 30), RGB(200, 100, 0), 2.0f), RGB(200, 100, 0));
    EXPECT_EQ(TsGauge::MixColor(RGB(10, 20, 30), RGB(200, 100, 0), -1.0f), RGB(10, 20, 30));
}

TEST(GaugeArithmeticTest, BarWidthFollowsTheValueWithinTheRange)
{
    EXPECT_EQ(TsGauge::BarWidth(99, 1.0f, 0.0f, 3.0f), 33);
    EXPECT_EQ(TsGauge::BarWidth(100, 0.999f, 0.0f, 1.0f), 99);  // truncated, not rounded
    EXPECT_EQ(TsGauge::BarWidth(200, -2.0f, -4.0f, 0.0f), 100);  // a range away from 0
    // Values outside the range stay inside the client area.
    EXPECT_EQ(TsGauge::BarWidth(200, -10.0f, 0.0f, 100.0f), 0);
    EXPECT_EQ(TsGauge::BarWidth(200, 1e30f, 0.0f, 1.0f), 200);
    // An empty range fills nothing at its value, everything beyond it.
    EXPECT_EQ(TsGauge::BarWidth(200, 5.0f, 5.0f, 5.0f), 0);
    EXPECT_EQ(TsGauge::BarWidth(200, 6.0f, 5.0f, 5.0f), 200);
    EXPECT_EQ(TsGauge::BarWidth(0, 50.0f, 0.0f, 100.0f), 0);
}

TEST(GaugeArithmeticTest, CaptionIsCutAt199Characters)
{
    EXPECT_TRUE(TsGauge::CutCaption(nullptr).isEmpty());
    // Characters, not bytes: 300 two-byte letters keep 199 letters, whole.
    std::string umlauts;
    for (int i = 0; i < 300; ++i)
        umlauts += "\xC3\xA4";
    const QString cut = TsGauge::CutCaption(umlauts.c_str());
    EXPECT_EQ(cut.size(), 199);
    EXPECT_EQ(cut.count(QChar(0xE4)), 199);

    // A character beyond the 16-bit plane counts once and is never split.
    std::string emoji;
    for (int i = 0; i < 250; ++i)
        emoji += "\xF0\x9F\x98\x80";
    const QString cutEmoji = TsGauge::CutCaption(emoji.c_str());
    EXPECT_EQ(cutEmoji.toUcs4().size(), 199);
    EXPECT_EQ(cutEmoji.toStdString().size(), 199u * 4);
}

// --- The control --------------------------------------------------------------------------

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

TEST_F(GaugeWidgetTest, CaptionFontAndRange)
{
    TsGauge gauge;
    EXPECT_EQ(gauge.GetCaptionFont().weight(), QFont::Bold);
    EXPECT_EQ(gauge.GetCaptionFont().pixelSize(), korva::MulDiv(8, gauge.logicalDpiY(), 72));
    gauge.SetRange(5.0f, 1.0f);  // put in order
    EXPECT_EQ(gauge.GetLow(), 1.0f);
    EXPECT_EQ(gauge.GetHigh(), 5.0f);
    gauge.SetValue(42.0f);  // out of range values are kept as given
    EXPECT_EQ(gauge.GetValue(), 42.0f);
}

TEST_F(GaugeWidgetTest, ColourCycleStepsOncePerFrameAndWraps)
{
    TsGauge gauge;
    gauge.resize(100, 20);
    EXPECT_EQ(gauge.GetAnimationTimerId(), 0);  // no timer while never shown
    gauge.show();
    ASSERT_NE(gauge.GetAnimationTimerId(), 0);

    Tick(gauge, 1);
    EXPECT_EQ(gauge.GetPhase(), 1);
    Tick(gauge, 178);
    EXPECT_EQ(gauge.GetPhase(), 179);
    Tick(gauge, 1);
    EXPECT_EQ(gauge.GetPhase(), 0);
    Tick(gauge, 365);
    EXPECT_EQ(gauge.GetPhase(), 5);

    // A timer of someone else's does not move the cycle.
    QTimerEvent foreign(gauge.GetAnimationTimerId() + 1000);
    QCoreApplication::sendEvent(&gauge, &foreign);
    EXPECT_EQ(gauge.GetPhase(), 5);
}

TEST_F(GaugeWidgetTest, AHiddenGaugeStartsItsCycleAgain)
{
    QWidget parent;
    auto* gauge = new TsGauge(&parent);
    gauge->resize(100, 20);
    parent.show();
    Tick(*gauge, 40);
    EXPECT_EQ(gauge->GetPhase(), 40);

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

TEST_F(GaugeWidgetTest, CaptionAndDesiredHeight)
{
    TsGauge gauge;
    EXPECT_EQ(gauge.GetDesiredHeight(), 2);  // no caption, no frame

    gauge.SetCaption("Computing");
    const QFontMetricsF metrics(gauge.GetCaptionFont());
    const int textOnly = gauge.GetDesiredHeight();
    EXPECT_EQ(textOnly, static_cast<int>(metrics.height() + 2));

    gauge.setFrameStyle(QFrame::Panel | QFrame::Sunken);
    gauge.setLineWidth(2);
    EXPECT_EQ(gauge.GetDesiredHeight(), textOnly + 2 * gauge.frameWidth());
}

TEST_F(GaugeWidgetTest, AFramePaintsTheBarTheTintedRestAndTheCaption)
{
    TsGauge gauge;
    gauge.resize(200, 20);
    gauge.SetRange(0.0f, 4.0f);
    gauge.SetValue(1.0f);  // a quarter
    gauge.show();

    const QImage frame = gauge.grab().toImage();
    ASSERT_EQ(frame.width(), 200);
    // Below the lighter band the bar has its own colour, at phase 0 the blue one.
    EXPECT_EQ(Pixel(frame, 10, 18), Rgb(TsGauge::kBarColor));
    EXPECT_EQ(Pixel(frame, 49, 18), Rgb(TsGauge::kBarColor));
    // The band is lighter than the bar.
    EXPECT_GT(qRed(frame.pixel(10, 2)), qRed(frame.pixel(10, 18)));
    // The rest is the face colour under a faint wash of the bar colour.
    const QColor face = gauge.palette().color(QPalette::Button);
    const QRgb rest = Pixel(frame, 150, 10);
    EXPECT_NE(rest, Pixel(frame, 10, 18));
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
    bool textColour = false, black = false, outside = true;
    for (int y = 0; y < captioned.height(); ++y)
        for (int x = 0; x < captioned.width(); ++x) {
            const QRgb pixel = Pixel(captioned, x, y);
            const bool text = pixel == Rgb(TsGauge::kTextAlertColor);
            textColour |= text;
            black |= pixel == 0;
            if ((text || pixel == 0) && (x < 40 || x > 160))
                outside = false;
        }
    EXPECT_TRUE(textColour);
    EXPECT_TRUE(black);
    EXPECT_TRUE(outside);  // centred, nowhere near the ends
}

} // namespace
