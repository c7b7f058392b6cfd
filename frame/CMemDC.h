#pragma once
/// \class CMemDC
/// A scoped off-screen surface against flicker. A paint handler draws on it
/// instead of on the widget, and the finished picture reaches the widget in one
/// piece when it goes out of scope:
///
///   void MyControl::paintEvent(QPaintEvent*)
///   {
///       QPainter painter(this);
///       CMemDC dc(&painter, rect());   // declared after `painter`, so it ends first
///       dc.drawText(...);              // a QPainter on the off-screen picture
///   }
///
/// or, without a painter of one's own, CMemDC dc(this, rect()); the widget is
/// then painted in the destructor, which must still run inside paintEvent.

#include <QPainter>
#include <QPixmap>
#include <QRect>

class QPaintDevice;

class CMemDC : public QPainter
{
public:
    /// An off-screen picture of the size of `rect`, filled with the target's
    /// background colour (that of the widget painted on, else the painter's
    /// background brush), with `target`'s device pixel ratio; this painter draws
    /// on it with the target's font and pen.
    CMemDC(QPainter* target, const QRect& rect);
    /// The same for the paint device `target` (a widget inside its paintEvent, a
    /// pixmap, an image), which the destructor opens a painter on.
    CMemDC(QPaintDevice* target, const QRect& rect);
    /// Draws the picture onto the target at (0, 0) and frees it.
    ~CMemDC();

    CMemDC(const CMemDC&) = delete;
    CMemDC& operator=(const CMemDC&) = delete;

    /// The rectangle given at construction.
    const QRect& GetRect() const { return mRect; }

private:
    void Begin(QPaintDevice* device, const QColor& background, const QPainter* style);

    QPainter* mTarget;        // not owned; null for the device form
    QPaintDevice* mDevice;    // the device form's target
    QRect mRect;
    QPixmap mBitmap;
};
