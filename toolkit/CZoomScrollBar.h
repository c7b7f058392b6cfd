#pragma once
/// \class CZoomScrollBar
/// A scroll bar whose thumb shows the part of a range that a plot shows, and
/// which the user can drag as usual or stretch by pulling either end, which
/// zooms. The thumb is at least 8 pixels long and can be grabbed at both ends.
/// Every scroll, of the platform's kinds (codes 0 to 7) or of an end (9 low end,
/// 10 high end), is told through Scrolled; the owner answers with OnScroll, as
/// ZoomScrollBarViewer does. The bar moves only then.

#include <KORVAutlwin/toolkit/ZoomScrollState.h>

#include <QScrollBar>

class CZoomScrollBar : public QScrollBar
{
    Q_OBJECT
public:
    CZoomScrollBar(Qt::Orientation orientation, QWidget* parent = nullptr);
    ~CZoomScrollBar() override;

    /// Shows the view from `viewLow` to `viewHigh` of the range from `fullLow`
    /// to `fullHigh` (see ZoomScrollState::Update). True.
    bool Update(double fullLow, double viewLow, double viewHigh, double fullHigh, bool reverse, bool redraw);
    /// Applies a scroll (codes 0 to 7, 9, 10) and moves the bar.
    void OnScroll(unsigned int code, int position);
    /// Whether the last OnScroll or Update changed the bar.
    bool Changed() const { return mState.Changed(); }

    /// The state in units: minimum, maximum, page, position.
    const SCROLLINFO& GetScrollInfo() const { return mState.GetScrollInfo(); }
    /// Replaces the state in units and moves the bar.
    void SetScrollInfo(const SCROLLINFO& info);
    /// The thumb's arithmetic, as last measured.
    const ZoomScrollState& GetState() const { return mState; }
    /// The arrow size: the platform's scroll bar extent.
    int GetArrowSize() const;

signals:
    /// To the owner: a scroll of `code` with `position`, from `bar`.
    void Scrolled(unsigned int code, int position, CZoomScrollBar* bar);

protected:
    /// Measures the thumb and takes the mouse position from `point`; false on a bar too short.
    bool GetPos(const QPoint& point);
    /// Asks the owner to move the selected end under the mouse.
    void SetPos();
    /// The end of the thumb under the mouse.
    ZoomScrollState::ESelected SelectPos() const { return mState.SelectPos(); }

    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void OnAction(int action);
    void OnSetCursor();
    void Show();

    ZoomScrollState mState;
    bool mShowing = false;
};
