#pragma once
/// \class ZoomScrollBarViewer
/// Owns a horizontal and a vertical CZoomScrollBar and the size box between
/// them for one window, shows a bar only while its axis is zoomed, gives the
/// plot the room the bars leave, and turns scrolls and stretched thumbs into
/// zooms of the plot through its Zoomable.

#include <KORVAutlwin/toolkit/CZoomScrollBar.h>
#include <KORVAutlwin/toolkit/Zoomable.h>

#include <QPointer>
#include <QRect>

#include <cstdint>
#include <memory>

class QSizeGrip;
class QWidget;

class ZoomScrollBarViewer
{
public:
    /// Control ids of the bars and of the size box.
    static constexpr int kHorizontalBarId = 101;
    static constexpr int kVerticalBarId = 102;
    static constexpr int kSizeBoxId = 59936;

    ZoomScrollBarViewer();
    /// Owns `zoomable`.
    explicit ZoomScrollBarViewer(Zoomable* zoomable);
    ~ZoomScrollBarViewer();
    ZoomScrollBarViewer(const ZoomScrollBarViewer&) = delete;
    ZoomScrollBarViewer& operator=(const ZoomScrollBarViewer&) = delete;

    /// Deletes the Zoomable held, unless it is `zoomable` itself, and owns `zoomable`.
    void ConnectZoomable(Zoomable* zoomable);
    Zoomable* GetZoomable() const { return mZoomable.get(); }
    /// Which bars may show at all.
    void EnableScrollBars(bool horizontal, bool vertical);
    /// Puts the bars (range 0 to 150) and the size box into `parent`, hidden;
    /// 0 on success, -1 without a parent.
    int OnCreateScrollBars(QWidget* parent);
    /// Decides (unless `sizeOnly`) which bars show, sets their thumbs, lays them
    /// along the bottom and right of `rect` and gives the plot the rest.
    void UpdateScrollBars(bool sizeOnly, const QRect& rect);
    /// A scroll of the horizontal or the vertical bar: zooms the plot to the thumb.
    void HScroll(unsigned int code, unsigned int position, CZoomScrollBar* bar);
    void VScroll(unsigned int code, unsigned int position, CZoomScrollBar* bar);
    /// Clears the show flags and hides both bars and the size box.
    void HideScrollBars();
    /// `rect` less the bars that show.
    void GetClientRect(QRect& rect) const;

    CZoomScrollBar* GetHorizontalBar() const { return mHorizontal; }
    CZoomScrollBar* GetVerticalBar() const { return mVertical; }
    QWidget* GetSizeBox() const;
    bool IsHorizontalShown() const { return mShowHorizontal != 0; }
    bool IsVerticalShown() const { return mShowVertical != 0; }

private:
    void Scroll(int axis, unsigned int code, int position, CZoomScrollBar* bar);
    int BarExtent() const;

    bool mEnableHorizontal = true;
    bool mEnableVertical = true;
    std::uint32_t mShowHorizontal = 0;
    std::uint32_t mShowVertical = 0;
    QPointer<CZoomScrollBar> mHorizontal;
    QPointer<CZoomScrollBar> mVertical;
    std::unique_ptr<Zoomable> mZoomable;
    QPointer<QSizeGrip> mSizeBox;
};
