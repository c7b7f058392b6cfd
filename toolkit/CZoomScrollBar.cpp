#include <KORVAutlwin/toolkit/CZoomScrollBar.h>

#include <QMouseEvent>
#include <QProxyStyle>
#include <QStyleOptionSlider>

#include <algorithm>

namespace {

// Lays the bar out by the zoom bar's own arithmetic, so that what is drawn,
// what the platform's clicks hit and the grabbed ends agree.
class ZoomScrollStyle : public QProxyStyle
{
public:
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        if (metric == PM_ScrollBarSliderMin)
            return ZoomScrollState::kMinimumThumb;
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl sub,
                         const QWidget* widget) const override
    {
        const auto* bar = qobject_cast<const CZoomScrollBar*>(widget);
        const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || !bar || !slider)
            return QProxyStyle::subControlRect(control, option, sub, widget);

        const bool horizontal = slider->orientation == Qt::Horizontal;
        const int length = horizontal ? slider->rect.width() : slider->rect.height();
        const int thickness = horizontal ? slider->rect.height() : slider->rect.width();
        const int arrow = bar->GetArrowSize();
        SCROLLINFO info = bar->GetScrollInfo();
        info.nPos = slider->sliderPosition; // follows the platform's own thumb drag
        ZoomScrollState state;
        state.SetScrollInfo(info);
        if (!state.GetPos(length, arrow, 0))
            return QProxyStyle::subControlRect(control, option, sub, widget);

        int from = 0;
        int to = length;
        switch (sub) {
        case SC_ScrollBarSubLine: from = 0; to = arrow; break;
        case SC_ScrollBarAddLine: from = length - arrow; to = length; break;
        case SC_ScrollBarGroove: from = arrow; to = length - arrow; break;
        case SC_ScrollBarSubPage: from = arrow; to = arrow + state.GetThumbStart(); break;
        case SC_ScrollBarAddPage: from = arrow + state.GetThumbEnd() + 1; to = length - arrow; break;
        case SC_ScrollBarSlider: from = arrow + state.GetThumbStart(); to = arrow + state.GetThumbEnd() + 1; break;
        default: return QProxyStyle::subControlRect(control, option, sub, widget);
        }
        to = std::max(from, to);
        return horizontal ? QRect(from, 0, to - from, thickness) : QRect(0, from, thickness, to - from);
    }
};

} // namespace

CZoomScrollBar::CZoomScrollBar(Qt::Orientation orientation, QWidget* parent) : QScrollBar(orientation, parent)
{
    auto* zoomStyle = new ZoomScrollStyle;
    zoomStyle->setParent(this);
    setStyle(zoomStyle);
    setMouseTracking(true);
    connect(this, &QAbstractSlider::actionTriggered, this, &CZoomScrollBar::OnAction);
    connect(this, &QAbstractSlider::sliderReleased, this, [this] { emit Scrolled(4, sliderPosition(), this); });
    Show();
}

CZoomScrollBar::~CZoomScrollBar() = default;

int CZoomScrollBar::GetArrowSize() const
{
    return style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this);
}

void CZoomScrollBar::SetScrollInfo(const SCROLLINFO& info)
{
    mState.SetScrollInfo(info);
    Show();
}

void CZoomScrollBar::Show()
{
    // Units as the platform counts them: positions end at max - page + 1.
    const SCROLLINFO& info = mState.GetScrollInfo();
    const int page = std::max(1, static_cast<int>(info.nPage));
    mShowing = true;
    setRange(info.nMin, std::max(info.nMin, info.nMax - page + 1));
    setPageStep(page);
    setSingleStep(1);
    setValue(info.nPos);
    setSliderPosition(info.nPos);
    mShowing = false;
    update();
}

bool CZoomScrollBar::Update(double fullLow, double viewLow, double viewHigh, double fullHigh, bool reverse, bool redraw)
{
    mState.Update(fullLow, viewLow, viewHigh, fullHigh, reverse, orientation() == Qt::Vertical);
    Show();
    if (redraw)
        repaint();
    return true;
}

void CZoomScrollBar::OnScroll(unsigned int code, int position)
{
    mState.OnScroll(code, position);
    Show();
}

void CZoomScrollBar::OnAction(int action)
{
    if (mShowing)
        return;
    unsigned int code;
    switch (action) {
    case SliderSingleStepSub: code = 0; break;
    case SliderSingleStepAdd: code = 1; break;
    case SliderPageStepSub: code = 2; break;
    case SliderPageStepAdd: code = 3; break;
    case SliderMove: code = 5; break;
    case SliderToMinimum: code = 6; break;
    case SliderToMaximum: code = 7; break;
    default: return;
    }
    const int position = sliderPosition();
    // The bar moves when its owner says so, not by itself.
    setSliderPosition(mState.GetScrollInfo().nPos);
    emit Scrolled(code, position, this);
}

bool CZoomScrollBar::GetPos(const QPoint& point)
{
    const bool horizontal = orientation() == Qt::Horizontal;
    return mState.GetPos(horizontal ? width() : height(), GetArrowSize(), horizontal ? point.x() : point.y());
}

void CZoomScrollBar::SetPos()
{
    unsigned int code = 0;
    int position = 0;
    if (mState.SetPos(code, position))
        emit Scrolled(code, position, this);
}

void CZoomScrollBar::OnSetCursor()
{
    if (mState.GetSelected() != ZoomScrollState::eNone || mState.SelectPos() != ZoomScrollState::eNone)
        setCursor(orientation() == Qt::Horizontal ? Qt::SizeHorCursor : Qt::SizeVerCursor);
    else
        unsetCursor();
}

void CZoomScrollBar::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && GetPos(event->position().toPoint()) &&
        mState.GetSelected() == ZoomScrollState::eNone)
        mState.SetSelected(SelectPos());
    if (mState.GetSelected() != ZoomScrollState::eNone) {
        event->accept(); // an end is held: the platform's thumb does not move
        return;
    }
    QScrollBar::mousePressEvent(event);
}

void CZoomScrollBar::mouseMoveEvent(QMouseEvent* event)
{
    const bool measured = GetPos(event->position().toPoint());
    if (!(event->buttons() & Qt::LeftButton))
        mState.SetSelected(ZoomScrollState::eNone);
    else if (measured && mState.GetSelected() != ZoomScrollState::eNone)
        SetPos();
    if (measured)
        OnSetCursor();
    if (mState.GetSelected() == ZoomScrollState::eNone)
        QScrollBar::mouseMoveEvent(event);
}

void CZoomScrollBar::mouseReleaseEvent(QMouseEvent* event)
{
    if (mState.GetSelected() == ZoomScrollState::eNone)
        QScrollBar::mouseReleaseEvent(event);
    mState.SetSelected(ZoomScrollState::eNone);
}
