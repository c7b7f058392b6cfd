#pragma once
// The header of the tree list: flat button-face items like the list's header,
// in the window's font; the pressed shift and the sort arrow only while
// sorting is enabled, and the arrow shapes exchanged against the list's.

#include <QHeaderView>

/// The flat header above the columns of a TsTreeCtrlEx.
class CNewHeaderCtrl : public QHeaderView
{
    Q_OBJECT

public:
    explicit CNewHeaderCtrl(QWidget* parent = nullptr);
    void EnableSort(bool enable);
    bool IsSortEnabled() const { return mSortEnabled != 0; }
    /// Shows the arrow on `col` for the direction.
    void SetSortArrow(int col, bool ascending);
    int GetSortColumn() const { return mSortColumn; }
    bool IsAscending() const { return mAscending != 0; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

private:
    /// The flat frame and the column edges, merged into the painting.
    void DrawFlatBorder(QPainter& painter) const;

    int mSortEnabled = 0;
    int mSortColumn = 0;
    int mAscending = 1;
    int mOffset = 6;
};
