#pragma once
/// \class ColourPopupLayout
/// The geometry of the colour popup and its keyboard navigation: boxes of the
/// named colours in eight columns, an optional default row above them and an
/// optional custom row below, and where the window stands on the screen.

#include <QRect>
#include <QSize>

class ColourPopupLayout
{
public:
    static constexpr int kColumns = 8;
    static constexpr int kBoxSize = 18;

    /// Lays out `colourCount` boxes (capped to 100) with `margin` (the edge
    /// width). `textSize` is the larger extent of the two texts in the popup's
    /// font; a row exists only for a text that is not empty.
    ColourPopupLayout(int colourCount, int margin, QSize textSize, bool hasDefaultRow, bool hasCustomRow);

    int GetCount() const { return mCount; }
    int GetRows() const { return mRows; }
    int GetBoxSize() const { return mBoxSize; }
    int GetMargin() const { return mMargin; }
    /// The whole window, from (0, 0).
    QSize GetWindowSize() const { return mWindowSize; }
    /// The box of `index` (0 to count - 1), the default row (-3) or the custom
    /// row (-2); empty for an index that does not exist.
    QRect GetItemRect(int index) const;
    /// Whether the index names a box or a row of this popup.
    bool IsValidIndex(int index) const;
    /// The index under `point`, or -1.
    int HitTest(QPoint point) const;

    enum EKey { eLeft, eRight, eUp, eDown };
    /// The index that an arrow key moves to from `index`: left and right walk
    /// default row, boxes and custom row in a ring; up and down move a whole
    /// grid row, into the text rows at the ends and round again. From -1 the
    /// first item (down, right) or the last (up, left).
    int MoveIndex(int index, EKey key) const;

    /// The window's rectangle when it drops from the bottom left of `button`,
    /// kept on `workArea`: moved left or right to stay inside, and above the
    /// button when it would pass the bottom.
    QRect PlaceBelow(const QRect& button, const QRect& workArea) const;

private:
    int mCount;
    int mRows;
    int mBoxSize = kBoxSize;
    int mMargin;
    bool mHasDefault;
    bool mHasCustom;
    QSize mWindowSize;
    QRect mDefaultRect;
    QRect mCustomRect;
    QRect mBoxesRect;
};
