#include "WidgetTestSupport.h"

#include <KORVAutlwin/toolkit/ZoomScrollBarViewer.h>

namespace {

using korva::test::ToolkitWidgetTest;

// A plot of 0 to 100 on both axes, y running upwards (against the vertical bar).
struct Plot : Zoomable
{
    float view[2][2] = {{0, 100}, {0, 100}};
    QRect room;
    int zooms = 0;

    void GetZoomRange(int axis, float& low, float& high) override { low = view[axis][0]; high = view[axis][1]; }
    void GetFullRange(int, float& low, float& high) override { low = 0; high = 100; }
    bool IsAscending(int axis) override { return axis == 0; }
    bool HasContents() override { return true; }
    void Resize(int x, int y, int width, int height) override { room = QRect(x, y, width, height); }
    void Zoom(float xLow, float xHigh, float yLow, float yHigh) override
    {
        view[0][0] = xLow; view[0][1] = xHigh; view[1][0] = yLow; view[1][1] = yHigh;
        ++zooms;
    }
};

class ZoomScrollBarTest : public ToolkitWidgetTest
{
protected:
    ZoomScrollBarTest() : plot(new Plot), viewer(plot)
    {
        window.resize(400, 300);
        EXPECT_EQ(viewer.OnCreateScrollBars(&window), 0);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    void ZoomX(float low, float high)
    {
        plot->view[0][0] = low;
        plot->view[0][1] = high;
        viewer.UpdateScrollBars(false, window.rect());
    }

    QRect Thumb(CZoomScrollBar* bar)
    {
        QStyleOptionSlider option;
        option.initFrom(bar);
        option.orientation = bar->orientation();
        option.minimum = bar->minimum();
        option.maximum = bar->maximum();
        option.pageStep = bar->pageStep();
        option.sliderPosition = bar->sliderPosition();
        option.sliderValue = bar->value();
        return bar->style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, bar);
    }

    /// Presses at `from` on `bar`, drags to `to` and lets go.
    static void Drag(QWidget* bar, QPoint from, QPoint to)
    {
        QTest::mousePress(bar, Qt::LeftButton, {}, from);
        QTest::mouseMove(bar, (from + to) / 2);
        QTest::mouseMove(bar, to);
        QTest::mouseRelease(bar, Qt::LeftButton, {}, to);
    }

    QWidget window;
    Plot* plot;
    ZoomScrollBarViewer viewer;
};

TEST_F(ZoomScrollBarTest, BarsShowOnlyForZoomedAxesAndThePlotGetsTheRest)
{
    viewer.UpdateScrollBars(true, window.rect());
    EXPECT_FALSE(viewer.GetHorizontalBar()->isVisible());
    EXPECT_FALSE(viewer.GetVerticalBar()->isVisible());
    EXPECT_EQ(plot->room, QRect(0, 0, 400, 300)); // the whole rectangle at full view

    const int extent = viewer.GetHorizontalBar()->GetArrowSize();
    ZoomX(25, 50);
    EXPECT_TRUE(viewer.GetHorizontalBar()->isVisible());
    EXPECT_FALSE(viewer.GetVerticalBar()->isVisible());
    EXPECT_FALSE(viewer.GetSizeBox()->isVisible());
    EXPECT_EQ(plot->room, QRect(0, 0, 400, 300 - extent));
    EXPECT_EQ(viewer.GetHorizontalBar()->geometry(), QRect(0, 300 - extent, 400, extent));

    plot->view[1][0] = 10;
    viewer.UpdateScrollBars(false, window.rect());
    EXPECT_TRUE(viewer.GetSizeBox()->isVisible());
    EXPECT_EQ(plot->room, QRect(0, 0, 400 - extent, 300 - extent));

    ZoomX(0, 100);
    plot->view[1][0] = 0;
    viewer.UpdateScrollBars(false, window.rect());
    EXPECT_FALSE(viewer.GetHorizontalBar()->isVisible());
    EXPECT_EQ(plot->room, QRect(0, 0, 400, 300));

    viewer.EnableScrollBars(false, true);
    ZoomX(25, 50);
    EXPECT_FALSE(viewer.GetHorizontalBar()->isVisible());
}

TEST_F(ZoomScrollBarTest, PullingTheHighEndStretchesTheViewAndTheLowEndStays)
{
    ZoomX(25, 50);
    CZoomScrollBar* bar = viewer.GetHorizontalBar();
    const QRect thumb = Thumb(bar);
    const int y = bar->height() / 2;
    Drag(bar, QPoint(thumb.right(), y), QPoint(thumb.right() + 60, y));
    EXPECT_FLOAT_EQ(plot->view[0][0], bar->GetScrollInfo().nPos / 151.0f * 100);
    EXPECT_NEAR(plot->view[0][0], 25, 0.5);
    EXPECT_GT(plot->view[0][1], 60);
    EXPECT_EQ(plot->view[1][1], 100); // the other axis as it was
}

TEST_F(ZoomScrollBarTest, AThumbOfEightPixelsIsGrabbedAtBothEnds)
{
    ZoomX(50, 50.2f); // less than a unit
    CZoomScrollBar* bar = viewer.GetHorizontalBar();
    const QRect thumb = Thumb(bar);
    EXPECT_EQ(thumb.width(), 9); // from thumb start to thumb start + 8, both drawn
    const int y = bar->height() / 2;

    Drag(bar, QPoint(thumb.left(), y), QPoint(thumb.left() - 40, y));
    EXPECT_LT(plot->view[0][0], 40);
    EXPECT_NEAR(plot->view[0][1], 77 / 151.0f * 100, 0.01); // the high end of the one unit at 76 stays

    ZoomX(50, 50.2f);
    Drag(bar, QPoint(thumb.right(), y), QPoint(thumb.right() + 40, y));
    EXPECT_NEAR(plot->view[0][0], 76 / 151.0f * 100, 0.01); // the low end stays
    EXPECT_GT(plot->view[0][1], 60);
}

TEST_F(ZoomScrollBarTest, TheLowEndPulledPastTheHighEndStopsAtOneUnit)
{
    ZoomX(25, 50);
    CZoomScrollBar* bar = viewer.GetHorizontalBar();
    const QRect thumb = Thumb(bar);
    const int y = bar->height() / 2;
    Drag(bar, QPoint(thumb.left() + 1, y), QPoint(thumb.right() + 100, y));
    EXPECT_EQ(bar->GetScrollInfo().nPage, 1u);
    EXPECT_NEAR(plot->view[0][1] - plot->view[0][0], 100 / 151.0f, 1e-4);
}

TEST_F(ZoomScrollBarTest, ArrowsAndDraggingTheMiddleMoveTheViewWithoutZooming)
{
    ZoomX(25, 50);
    CZoomScrollBar* bar = viewer.GetHorizontalBar();
    const float width = 38 / 151.0f * 100; // the page in units
    const int y = bar->height() / 2;
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(bar->width() - 3, y)); // the right arrow
    EXPECT_EQ(plot->zooms, 1);
    EXPECT_NEAR(plot->view[0][0], 39 / 151.0f * 100, 1e-3);
    EXPECT_NEAR(plot->view[0][1] - plot->view[0][0], width, 1e-3);

    const QRect thumb = Thumb(bar);
    Drag(bar, thumb.center(), thumb.center() + QPoint(50, 0));
    EXPECT_GT(plot->view[0][0], 35);
    EXPECT_NEAR(plot->view[0][1] - plot->view[0][0], width, 1e-3);
}

TEST_F(ZoomScrollBarTest, TheVerticalBarShowsHighValuesAtTheTop)
{
    plot->view[1][0] = 60;
    plot->view[1][1] = 90;
    viewer.UpdateScrollBars(false, window.rect());
    CZoomScrollBar* bar = viewer.GetVerticalBar();
    EXPECT_LT(Thumb(bar).center().y(), bar->height() / 2);
    QTest::mouseClick(bar, Qt::LeftButton, {}, QPoint(bar->width() / 2, 3)); // the top arrow: upwards
    EXPECT_GT(plot->view[1][1], 90);
}

} // namespace
