#include <KORVAutlwin/controls/ListCtrlWithDisabledItems.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QApplication>
#include <QPainter>
#include <QStyleOptionViewItem>

void ListCtrlWithDisabledItems::PrepaintItem(int row, int col, QStyleOptionViewItem& option) const
{
    TsListCtrl::PrepaintItem(row, col, option);
    if (IsItemDisabled(row))
        option.palette.setColor(QPalette::Text, korva::ToQColor(korva::GetSysColor(COLOR_GRAYTEXT)));
}

void ListCtrlWithDisabledItems::PostpaintItem(QPainter* painter, const QStyleOptionViewItem& option, int row,
                                              int col) const
{
    if (col != 0 || !IsItemDisabled(row))
        return;
    // A line through the middle of the label, as wide as its text + 4 or the label if narrower.
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    const QRect label = style->subElementRect(QStyle::SE_ItemViewItemText, &option, option.widget);
    const int textWidth = option.fontMetrics.horizontalAdvance(QString::fromStdString(GetItemText(row, 0))) + 4;
    const int y = label.top() + label.height() / 2;
    painter->save();
    painter->setPen(QPen(korva::ToQColor(korva::GetSysColor(COLOR_GRAYTEXT)), 1));
    painter->drawLine(label.left(), y, label.left() + std::min(textWidth, label.width()) - 1, y);
    painter->restore();
}
