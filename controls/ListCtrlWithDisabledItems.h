#pragma once
// A list whose disabled rows are drawn in the grey text colour and struck through.

#include <KORVAutlwin/controls/TsListCtrl.h>

/// A TsListCtrl that draws the rows its subclass calls disabled grey and struck through.
class ListCtrlWithDisabledItems : public TsListCtrl
{
    Q_OBJECT

public:
    explicit ListCtrlWithDisabledItems(QWidget* parent = nullptr) : TsListCtrl(parent) {}

    /// Whether `row` is disabled; subclasses decide.
    virtual bool IsItemDisabled(int row) const = 0;

protected:
    void PrepaintItem(int row, int col, QStyleOptionViewItem& option) const override;
    void PostpaintItem(QPainter* painter, const QStyleOptionViewItem& option, int row, int col) const override;
};
