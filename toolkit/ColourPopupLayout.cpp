#include <KORVAutlwin/toolkit/ColourPopupLayout.h>

#include <KORVAutlwin/toolkit/ColourTable.h>

#include <algorithm>

ColourPopupLayout::ColourPopupLayout(int colourCount, int margin, QSize textSize, bool hasDefaultRow, bool hasCustomRow)
    : mCount(std::clamp(colourCount, 0, ColourTable::kMaximumColours)), mMargin(margin), mHasDefault(hasDefaultRow),
      mHasCustom(hasCustomRow)
{
    // Too small a box leaves no room for its swatch inside the frame.
    if (mBoxSize - 2 * mMargin - 2 < 5)
        mBoxSize = 2 * mMargin + 7;
    mRows = mCount / kColumns + (mCount % kColumns ? 1 : 0);

    const int textWidth = textSize.width() + 2 * mMargin;
    const int textHeight = textSize.height() + 4 * mMargin + 2;

    int width = kColumns * mBoxSize + 2 * mMargin;
    int height = mRows * mBoxSize + 2 * mMargin;
    if (mHasDefault || mHasCustom)
        width = std::max(width, textWidth + 2 * mMargin);

    int top = mMargin;
    if (mHasDefault) {
        mDefaultRect = QRect(mMargin, mMargin, width - 2 * mMargin, textHeight);
        top += textHeight + mMargin;
        height += textHeight + mMargin;
    }
    const int boxesLeft = (width - kColumns * mBoxSize) / 2;
    mBoxesRect = QRect(boxesLeft, top, kColumns * mBoxSize, mRows * mBoxSize);
    if (mHasCustom) {
        mCustomRect = QRect(mMargin, mBoxesRect.bottom() + 1 + mMargin, width - 2 * mMargin, textHeight);
        height += textHeight + mMargin;
    }
    mWindowSize = QSize(width, height);
}

bool ColourPopupLayout::IsValidIndex(int index) const
{
    if (index == ColourTable::eDefaultRow)
        return mHasDefault;
    if (index == ColourTable::eCustomRow)
        return mHasCustom;
    return index >= 0 && index < mCount;
}

QRect ColourPopupLayout::GetItemRect(int index) const
{
    if (!IsValidIndex(index))
        return QRect();
    if (index == ColourTable::eDefaultRow)
        return mDefaultRect;
    if (index == ColourTable::eCustomRow)
        return mCustomRect;
    return QRect(mBoxesRect.left() + (index % kColumns) * mBoxSize, mBoxesRect.top() + (index / kColumns) * mBoxSize,
                 mBoxSize, mBoxSize);
}

int ColourPopupLayout::HitTest(QPoint point) const
{
    if (mHasDefault && mDefaultRect.contains(point))
        return ColourTable::eDefaultRow;
    if (mHasCustom && mCustomRect.contains(point))
        return ColourTable::eCustomRow;
    if (!mBoxesRect.contains(point))
        return ColourTable::eNoIndex;
    const int index = (point.y() - mBoxesRect.top()) / mBoxSize * kColumns + (point.x() - mBoxesRect.left()) / mBoxSize;
    return index < mCount ? index : ColourTable::eNoIndex;
}

int ColourPopupLayout::MoveIndex(int index, EKey key) const
{
    const int first = mHasDefault ? ColourTable::eDefaultRow : (mCount > 0 ? 0 : ColourTable::eCustomRow);
    const int last = mHasCustom ? ColourTable::eCustomRow : (mCount > 0 ? mCount - 1 : ColourTable::eDefaultRow);
    if (!IsValidIndex(index))
        return key == eDown || key == eRight ? first : last;

    // The ring: default row, boxes 0 to count - 1, custom row.
    auto next = [&](int i) {
        if (i == ColourTable::eDefaultRow)
            return mCount > 0 ? 0 : (mHasCustom ? int(ColourTable::eCustomRow) : i);
        if (i == ColourTable::eCustomRow)
            return first;
        return i + 1 < mCount ? i + 1 : (mHasCustom ? int(ColourTable::eCustomRow) : first);
    };
    auto previous = [&](int i) {
        if (i == ColourTable::eCustomRow)
            return mCount > 0 ? mCount - 1 : (mHasDefault ? int(ColourTable::eDefaultRow) : i);
        if (i == ColourTable::eDefaultRow)
            return last;
        return i > 0 ? i - 1 : (mHasDefault ? int(ColourTable::eDefaultRow) : last);
    };

    switch (key) {
    case eRight:
        return next(index);
    case eLeft:
        return previous(index);
    case eDown:
        if (index >= 0 && index + kColumns < mCount)
            return index + kColumns;
        if (index >= 0) // past the last grid row: the custom row, else round to the top
            return mHasCustom ? int(ColourTable::eCustomRow) : (mHasDefault ? int(ColourTable::eDefaultRow) : index % kColumns);
        return next(index);
    case eUp:
        if (index >= kColumns)
            return index - kColumns;
        if (index >= 0) {
            if (mHasDefault)
                return ColourTable::eDefaultRow;
            if (mHasCustom)
                return ColourTable::eCustomRow;
            const int lastRowStart = (mCount - 1) / kColumns * kColumns;
            return std::min(lastRowStart + index, mCount - 1);
        }
        return previous(index);
    }
    return index;
}

QRect ColourPopupLayout::PlaceBelow(const QRect& button, const QRect& workArea) const
{
    QRect window(button.left(), button.bottom() + 1, mWindowSize.width(), mWindowSize.height());
    if (window.right() > workArea.right())
        window.moveRight(workArea.right());
    if (window.left() < workArea.left())
        window.moveLeft(workArea.left());
    if (window.bottom() > workArea.bottom())
        window.moveBottom(button.top() - 1);
    return window;
}
