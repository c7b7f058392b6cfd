#pragma once
/// \class ZoomScrollState
/// The arithmetic of a zoom scroll bar, without a window: the scroll state in
/// units (minimum, maximum, page, position), the thumb in pixels with its ends
/// that the user can grab, and what scrolling and zooming do to the state.

#include <cstdint>

/// The state of a scroll bar in units: positions run from nMin to nMax - nPage + 1.
struct SCROLLINFO
{
    int nMin = 0;
    int nMax = 0;
    unsigned int nPage = 0;
    int nPos = 0;
    int nTrackPos = 0;
};

class ZoomScrollState
{
public:
    /// Which end of the thumb the user holds.
    enum ESelected { eNone = 0, eLowEnd = 1, eHighEnd = 2 };
    /// Scroll codes beyond the platform's: an end of the thumb moved.
    enum EScrollCode { eMoveLowEnd = 9, eMoveHighEnd = 10 };
    /// The shortest thumb in pixels.
    static constexpr int kMinimumThumb = 8;

    /// The state in units.
    const SCROLLINFO& GetScrollInfo() const { return mInfo; }
    void SetScrollInfo(const SCROLLINFO& info) { mInfo = info; }

    /// Measures the thumb on a bar `length` pixels long with arrows of `arrow`
    /// pixels, and takes `coordinate` (along the bar) as the mouse position.
    /// False, and nothing measured, when the bar is not longer than four arrows.
    bool GetPos(int length, int arrow, int coordinate);
    /// Picks the thumb end under the mouse position: the low end from thumb
    /// start - 1 to start + 3, else the high end from thumb end - 3 to end + 1.
    ESelected SelectPos() const;
    /// The scroll that dragging the selected end asks for: the code (9 low end,
    /// 10 high end) and the unit under the mouse. False when no end is selected.
    bool SetPos(unsigned int& code, int& position) const;
    /// Applies a scroll code (0 to 7, 9, 10) with `position`, keeps the position
    /// inside the range and notes whether the state changed.
    void OnScroll(unsigned int code, int position);
    /// Shows the view from `viewLow` to `viewHigh` of the full range: position
    /// and page in units, flipped on a horizontal bar when `reverse` and on a
    /// vertical one when not, so high values stand at the top.
    bool Update(double fullLow, double viewLow, double viewHigh, double fullHigh, bool reverse, bool vertical);
    /// Whether the last OnScroll or Update changed the state.
    bool Changed() const { return mChanged; }
    /// True when any field differs.
    static bool Compare(const SCROLLINFO& a, const SCROLLINFO& b);

    /// The zoom range that the state shows on an axis of `fullLow` to `fullHigh`
    /// (VScroll and HScroll of the viewer), each end held within the full range.
    static void GetZoomRange(const SCROLLINFO& info, bool ascending, float fullLow, float fullHigh, float& low,
                             float& high);
    /// Whether the bar of an axis shows: enabled, and the view smaller than the
    /// full range by more than the tolerance 0.0005.
    static bool AxisShows(bool enabled, float fullLow, float viewLow, float viewHigh, float fullHigh);

    int GetMousePosition() const { return mMousePosition; }
    int GetThumbStart() const { return mThumbStart; }
    int GetThumbEnd() const { return mThumbEnd; }
    double GetPixelsPerUnit() const { return mPixelsPerUnit; }
    ESelected GetSelected() const { return mSelected; }
    void SetSelected(ESelected selected) { mSelected = selected; }

private:
    void Store(const SCROLLINFO& info);

    int mMousePosition = 0;
    int mThumbStart = 0;
    int mThumbEnd = 0;
    double mPixelsPerUnit = 0.0;
    ESelected mSelected = eNone;
    bool mChanged = true;
    SCROLLINFO mLastState;
    SCROLLINFO mInfo;
};
