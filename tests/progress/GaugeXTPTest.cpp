// TsXTPGauge: the percentage arithmetic, and one update of the control per
// change of position, counted in value changes and in real repaints. Offscreen.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/progress/TsXTPGauge.h>

#include <QEvent>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

namespace {

TEST(GaugeXTPArithmeticTest, PositionIsATruncatedClampedPercentage)
{
    EXPECT_EQ(TsXTPGauge::PositionOf(0.999f, 0.0f, 1.0f), 99);  // truncated, not rounded
    EXPECT_EQ(TsXTPGauge::PositionOf(-1.0f, -2.0f, 2.0f), 25);
    EXPECT_EQ(TsXTPGauge::PositionOf(-5.0f, 0.0f, 1.0f), 0);
    EXPECT_EQ(TsXTPGauge::PositionOf(1e30f, 0.0f, 1.0f), 100);
    // An empty range: undefined at its value, full beyond it.
    EXPECT_EQ(TsXTPGauge::PositionOf(3.0f, 3.0f, 3.0f), 0);
    EXPECT_EQ(TsXTPGauge::PositionOf(4.0f, 3.0f, 3.0f), 100);
    // A reversed range is taken as given: rising values fall.
    EXPECT_EQ(TsXTPGauge::PositionOf(0.25f, 1.0f, 0.0f), 75);
}

// Counts the paint events of one widget.
class PaintCounter : public QObject
{
public:
    int paints = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++paints;
        return QObject::eventFilter(watched, event);
    }
};

class GaugeXTPWidgetTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
};

TEST_F(GaugeXTPWidgetTest, ConstructionAndRange)
{
    TsXTPGauge gauge;
    EXPECT_FALSE(gauge.isTextVisible());
    TsGaugeBase& base = gauge;
    base.SetRange(10.0f, 20.0f);
    EXPECT_EQ(gauge.maximum(), 100);  // the control always counts in percent
    base.SetValue(12.5f);
    EXPECT_EQ(gauge.value(), 25);

    // A new range changes nothing on display until the next value.
    gauge.SetRange(0.0f, 1000.0f);
    EXPECT_EQ(gauge.value(), 25);
    gauge.SetValue(12.5f);
    EXPECT_EQ(gauge.value(), 1);
}

TEST_F(GaugeXTPWidgetTest, TheControlHearsOncePerChangeOfPosition)
{
    TsXTPGauge gauge;
    gauge.resize(300, 16);
    gauge.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&gauge));
    QCoreApplication::processEvents();

    PaintCounter counter;
    gauge.installEventFilter(&counter);
    QSignalSpy changes(&gauge, &QProgressBar::valueChanged);
    gauge.SetRange(0.0f, 10.0f);

    gauge.SetValue(5.0f);
    QCoreApplication::processEvents();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(counter.paints, 1);

    // Values within the same percent are not passed on at all.
    for (float v = 5.0f; v < 5.1f; v += 0.001f)
        gauge.SetValue(v);
    QCoreApplication::processEvents();
    EXPECT_EQ(gauge.GetPosition(), 50);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(counter.paints, 1);

    // Beyond the range: 100 once, however often it is repeated.
    for (int i = 0; i < 20; ++i)
        gauge.SetValue(50.0f + i);
    QCoreApplication::processEvents();
    EXPECT_EQ(gauge.value(), 100);
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(counter.paints, 2);

    // Every step of ten percent is one change and one repaint.
    for (int step = 0; step <= 10; ++step)
        gauge.SetValue(static_cast<float>(step));
    QCoreApplication::processEvents();
    EXPECT_EQ(changes.count(), 2 + 11);
    EXPECT_EQ(counter.paints, 2 + 11);
    ASSERT_FALSE(changes.isEmpty());
    EXPECT_EQ(changes.last().at(0).toInt(), 100);
    gauge.removeEventFilter(&counter);
}

} // namespace
