#include <KORVAutlwin/toolkit/ZoomScrollBarViewer.h>

#include <QApplication>
#include <QSizeGrip>
#include <QStyle>

namespace {

constexpr int kRangeMaximum = 150;
constexpr float kUndefined = -99.0f;

} // namespace

ZoomScrollBarViewer::ZoomScrollBarViewer()
    : mHorizontal(new CZoomScrollBar(Qt::Horizontal)), mVertical(new CZoomScrollBar(Qt::Vertical))
{
}

ZoomScrollBarViewer::ZoomScrollBarViewer(Zoomable* zoomable) : ZoomScrollBarViewer()
{
    mZoomable.reset(zoomable);
}

ZoomScrollBarViewer::~ZoomScrollBarViewer()
{
    // The bars belong to the viewer even while a window holds them.
    delete mHorizontal.data();
    delete mVertical.data();
    delete mSizeBox.data();
}

void ZoomScrollBarViewer::ConnectZoomable(Zoomable* zoomable)
{
    if (zoomable == mZoomable.get())
        return;
    mZoomable.reset(zoomable);
}

void ZoomScrollBarViewer::EnableScrollBars(bool horizontal, bool vertical)
{
    mEnableHorizontal = horizontal;
    mEnableVertical = vertical;
}

QWidget* ZoomScrollBarViewer::GetSizeBox() const
{
    return mSizeBox;
}

int ZoomScrollBarViewer::BarExtent() const
{
    QStyle* style = mVertical ? mVertical->style() : QApplication::style();
    return style->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, mVertical);
}

int ZoomScrollBarViewer::OnCreateScrollBars(QWidget* parent)
{
    if (!parent || !mHorizontal || !mVertical)
        return -1;
    SCROLLINFO info;
    info.nMin = 0;
    info.nMax = kRangeMaximum;
    for (CZoomScrollBar* bar : {mHorizontal.data(), mVertical.data()}) {
        bar->setParent(parent);
        bar->SetScrollInfo(info);
        bar->hide();
    }
    mHorizontal->setProperty("ctrlId", kHorizontalBarId);
    mVertical->setProperty("ctrlId", kVerticalBarId);
    QObject::connect(mHorizontal, &CZoomScrollBar::Scrolled, mHorizontal,
                     [this](unsigned int code, int position, CZoomScrollBar* bar) { HScroll(code, position, bar); });
    QObject::connect(mVertical, &CZoomScrollBar::Scrolled, mVertical,
                     [this](unsigned int code, int position, CZoomScrollBar* bar) { VScroll(code, position, bar); });
    delete mSizeBox.data();
    mSizeBox = new QSizeGrip(parent);
    mSizeBox->setProperty("ctrlId", kSizeBoxId);
    mSizeBox->hide();
    return 0;
}

void ZoomScrollBarViewer::UpdateScrollBars(bool sizeOnly, const QRect& rect)
{
    if (!mZoomable || !mZoomable->HasContents() || (!mEnableHorizontal && !mEnableVertical)) {
        // Bars that showed leave with the contents, and their room returns to the plot.
        const bool wereShown = mShowHorizontal || mShowVertical;
        if (wereShown)
            HideScrollBars();
        if ((sizeOnly || wereShown) && mZoomable)
            mZoomable->Resize(rect.x(), rect.y(), rect.width(), rect.height());
        return;
    }

    const std::uint32_t wasHorizontal = mShowHorizontal;
    const std::uint32_t wasVertical = mShowVertical;
    float full[2][2];
    float view[2][2];
    for (int axis = 0; axis < 2; ++axis) {
        mZoomable->GetFullRange(axis, full[axis][0], full[axis][1]);
        mZoomable->GetZoomRange(axis, view[axis][0], view[axis][1]);
    }
    if (!sizeOnly) {
        mShowHorizontal = ZoomScrollState::AxisShows(mEnableHorizontal, full[0][0], view[0][0], view[0][1], full[0][1]);
        mShowVertical = ZoomScrollState::AxisShows(mEnableVertical, full[1][0], view[1][0], view[1][1], full[1][1]);
    }
    if (mShowHorizontal && mHorizontal)
        mHorizontal->Update(full[0][0], view[0][0], view[0][1], full[0][1], false, true);
    if (mShowVertical && mVertical)
        mVertical->Update(full[1][0], view[1][0], view[1][1], full[1][1], false, true);

    if (sizeOnly || wasHorizontal != mShowHorizontal || wasVertical != mShowVertical) {
        const int extent = BarExtent();
        QRect rest = rect;
        if (mShowVertical)
            rest.setRight(rest.right() - extent);
        if (mShowHorizontal)
            rest.setBottom(rest.bottom() - extent);
        if (mHorizontal)
            mHorizontal->setGeometry(0, rest.bottom() + 1, rest.width(), extent);
        if (mVertical)
            mVertical->setGeometry(rest.right() + 1, 0, extent, rest.height());
        if (mSizeBox)
            mSizeBox->setGeometry(rest.right() + 1, rest.bottom() + 1, extent, extent);
        if (rest.width() >= 1 && rest.height() >= 1)
            mZoomable->Resize(rest.x(), rest.y(), rest.width(), rest.height());
    }

    if (mHorizontal && (wasHorizontal != mShowHorizontal || mHorizontal->isVisible() != bool(mShowHorizontal)))
        mHorizontal->setVisible(mShowHorizontal);
    if (mVertical && (wasVertical != mShowVertical || mVertical->isVisible() != bool(mShowVertical)))
        mVertical->setVisible(mShowVertical);
    if (mSizeBox)
        mSizeBox->setVisible(mShowHorizontal && mShowVertical);
}

void ZoomScrollBarViewer::HScroll(unsigned int code, unsigned int position, CZoomScrollBar* bar)
{
    Scroll(0, code, static_cast<int>(position), bar);
}

void ZoomScrollBarViewer::VScroll(unsigned int code, unsigned int position, CZoomScrollBar* bar)
{
    Scroll(1, code, static_cast<int>(position), bar);
}

void ZoomScrollBarViewer::Scroll(int axis, unsigned int code, int position, CZoomScrollBar* bar)
{
    const bool shown = axis == 0 ? mShowHorizontal != 0 : mShowVertical != 0;
    if (!shown || !bar || !mZoomable)
        return;
    bar->OnScroll(code, position);
    if (!bar->Changed())
        return;

    float otherLow = 0;
    float otherHigh = 0;
    mZoomable->GetZoomRange(1 - axis, otherLow, otherHigh);
    float fullLow = 0;
    float fullHigh = 0;
    mZoomable->GetFullRange(axis, fullLow, fullHigh);
    if (fullLow == kUndefined || fullHigh == kUndefined)
        return;

    float low = 0;
    float high = 0;
    ZoomScrollState::GetZoomRange(bar->GetScrollInfo(), mZoomable->IsAscending(axis), fullLow, fullHigh, low, high);
    if (axis == 0)
        mZoomable->Zoom(low, high, otherLow, otherHigh);
    else
        mZoomable->Zoom(otherLow, otherHigh, low, high);
}

void ZoomScrollBarViewer::HideScrollBars()
{
    mShowHorizontal = 0;
    mShowVertical = 0;
    if (mHorizontal)
        mHorizontal->hide();
    if (mVertical)
        mVertical->hide();
    if (mSizeBox)
        mSizeBox->hide();
}

void ZoomScrollBarViewer::GetClientRect(QRect& rect) const
{
    const int extent = BarExtent();
    if (mShowVertical)
        rect.setRight(rect.right() - extent);
    if (mShowHorizontal)
        rect.setBottom(rect.bottom() - extent);
}
