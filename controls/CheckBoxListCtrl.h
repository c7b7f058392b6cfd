#pragma once
// A list with check boxes in any cell: a column shows boxes when bit 0 of its
// header item's parameter is set, and a cell is checked by bit 0x1000 of its
// sub-item state. The list draws the cells itself.

#include <KORVAutlwin/controls/TsListCtrl.h>

/// A TsListCtrl with check boxes in the cells of chosen columns.
class CheckBoxListCtrl : public TsListCtrl
{
    Q_OBJECT

public:
    static constexpr unsigned int kCheckedBit = 0x1000;

    explicit CheckBoxListCtrl(QWidget* parent = nullptr);

    void ShowColumnCheckBoxes(int col, bool show);
    bool ShouldShowColumnCheckBoxes(int col) const;
    void CheckCheckBox(int row, int col, bool check);
    bool IsCheckBoxChecked(int row, int col) const;
    /// The cell's rectangle; column 0 by its own width, not the whole row.
    bool BetterGetSubItemRect(int row, int col, QRect& rect) const;
    /// Where a cell's box lies: the cell shrunk by 3 on both sides, the box's width from its left.
    QRect CheckBoxRect(int row, int col) const;

protected:
    void OnClick(int row, int col, const QPoint& point) override;
    void PrepaintItem(int row, int col, QStyleOptionViewItem& option) const override;
    void PostpaintItem(QPainter* painter, const QStyleOptionViewItem& option, int row, int col) const override;
};
