#include <KORVAutlwin/frame/CMemDC.h>

#include <QPaintDevice>
#include <QPalette>
#include <QWidget>

namespace {

QColor BackgroundOf(QPaintDevice* device, const QPainter* painter)
{
    // Widgets are painted over their own background; QPainter::device() gives
    // the widget even while painting is redirected (QWidget::grab, render).
    if (device && device->devType() == QInternal::Widget) {
        const auto* widget = static_cast<const QWidget*>(device);
        return widget->palette().color(widget->backgroundRole());
    }
    if (painter)
        return painter->background().color();
    return Qt::white;
}

} // namespace

CMemDC::CMemDC(QPainter* target, const QRect& rect) : mTarget(target), mDevice(nullptr), mRect(rect)
{
    QPaintDevice* device = target ? target->device() : nullptr;
    Begin(device, BackgroundOf(device, target), target);
}

CMemDC::CMemDC(QPaintDevice* target, const QRect& rect) : mTarget(nullptr), mDevice(target), mRect(rect)
{
    Begin(target, BackgroundOf(target, nullptr), nullptr);
}

void CMemDC::Begin(QPaintDevice* device, const QColor& background, const QPainter* style)
{
    if (mRect.isEmpty())
        return;   // nothing to paint, and a null pixmap would refuse the painter
    const qreal ratio = device ? device->devicePixelRatioF() : 1.0;
    mBitmap = QPixmap(mRect.size() * ratio);
    mBitmap.setDevicePixelRatio(ratio);
    mBitmap.fill(background);
    begin(&mBitmap);
    if (style) {
        setFont(style->font());
        setPen(style->pen());
    } else if (device && device->devType() == QInternal::Widget) {
        setFont(static_cast<const QWidget*>(device)->font());
    }
}

CMemDC::~CMemDC()
{
    if (!isActive())
        return;
    end();
    if (mTarget) {
        if (mTarget->isActive())
            mTarget->drawPixmap(0, 0, mBitmap);
    } else if (mDevice) {
        QPainter painter(mDevice);
        painter.drawPixmap(0, 0, mBitmap);
    }
}
