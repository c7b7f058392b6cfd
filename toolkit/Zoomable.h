#pragma once
/// \class Zoomable
/// What a zoomed plot offers the zoom scroll bars: its full extent, the part it
/// shows, and the way to show another part and to take the room the bars leave.

class Zoomable
{
public:
    virtual ~Zoomable() = default;

    /// The part shown on `axis` (0 horizontal, 1 vertical).
    virtual void GetZoomRange(int axis, float& low, float& high) = 0;
    /// The whole extent of `axis`; -99.0 for an end that is undefined.
    virtual void GetFullRange(int axis, float& low, float& high) = 0;
    /// False when `axis` runs against the bar's direction.
    virtual bool IsAscending(int axis) = 0;
    /// False keeps all bars out of the picture.
    virtual bool HasContents() = 0;
    /// The room the bars leave, in the owner's coordinates.
    virtual void Resize(int x, int y, int width, int height) = 0;
    /// Shows this part of both axes.
    virtual void Zoom(float xLow, float xHigh, float yLow, float yHigh) = 0;
};
