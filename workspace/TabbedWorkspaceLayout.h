#pragma once
/// \class TabbedWorkspaceLayout
/// Where the tab strip leaves room for the MDI client. The strip takes the whole
/// free rectangle of the frame; inside a frame of `offset` pixels it has its row
/// of tabs on one side and a panel border around the rest, which the client gets.

#include <QRect>

class TabbedWorkspaceLayout
{
public:
    /// The side of the row of tabs.
    enum EStripSide
    {
        eTop,
        eBottom,
        eLeft,
        eRight
    };

    /// The side that the tab control styles `style` (TCS_*) give.
    static EStripSide SideOfStyle(unsigned long style);

    /// `rect` shrunk by `offset` on each side, where it stays wider and higher
    /// than 2 * offset; an axis that is too small collapses to nothing.
    static QRect ShrinkByOffset(const QRect& rect, int offset);

    /// The client's part of `whole`: shrunk by the offset, without the row of
    /// tabs (`stripExtent` deep on `side`) and the panel's `border`; empty where
    /// nothing is left.
    static QRect CalcClientRect(const QRect& whole, int offset, int stripExtent, int border, EStripSide side);
};
