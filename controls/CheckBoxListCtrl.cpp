#include <KORVAutlwin/controls/CheckBoxListCtrl.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QIcon>
#include <QPainter>
#include <QStyleOptionButton>
#include <QStyleOptionViewItem>

CheckBoxListCtrl::CheckBoxListCtrl(QWidget* parent) : TsListCtrl(parent) {}

void CheckBoxListCtrl::ShowColumnCheckBoxes(int col, bool show)
{
    if (col < 0 || col >= GetColumnCount())
        return;
    const intptr_t param = GetListData().GetColumn(col).headerParam;
    GetListData().SetColumnParam(col, show ? (param | 1) : (param & ~intptr_t(1)));
    viewport()->update();
}

bool CheckBoxListCtrl::ShouldShowColumnCheckBoxes(int col) const
{
    return col >= 0 && col < GetColumnCount() && (GetListData().GetColumn(col).headerParam & 1);
}

void CheckBoxListCtrl::CheckCheckBox(int row, int col, bool check)
{
    GetListData().SetSubItemState(row, col, check ? kCheckedBit : 0, kCheckedBit);
}

bool CheckBoxListCtrl::IsCheckBoxChecked(int row, int col) const
{
    return GetListData().GetSubItemState(row, col, kCheckedBit) != 0;
}

bool CheckBoxListCtrl::BetterGetSubItemRect(int row, int col, QRect& rect) const
{
    const QRect line = GetItemRect(row);
    if (line.isNull() || col < 0 || col >= GetColumnCount())
        return false;
    int left = line.left();
    for (int c = 0; c < col; ++c)
        left += GetColumnWidth(c);
    rect = QRect(left, line.top(), GetColumnWidth(col), line.height());
    return true;
}

QRect CheckBoxListCtrl::CheckBoxRect(int row, int col) const
{
    QRect cell;
    if (!BetterGetSubItemRect(row, col, cell))
        return QRect();
    cell.adjust(3, 0, -3, 0);
    cell.setWidth(std::min(cell.width(), style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this)));
    return cell;
}

void CheckBoxListCtrl::OnClick(int row, int col, const QPoint& point)
{
    if (row >= 0 && ShouldShowColumnCheckBoxes(col) && CheckBoxRect(row, col).contains(point))
        CheckCheckBox(row, col, !IsCheckBoxChecked(row, col));
}

void CheckBoxListCtrl::PrepaintItem(int row, int col, QStyleOptionViewItem& option) const
{
    TsListCtrl::PrepaintItem(row, col, option);
    // The list is owner-drawn: the view fills the row, the cell's text and box are ours.
    option.text.clear();
    option.icon = QIcon();
    option.features &= ~QStyleOptionViewItem::HasDecoration;
}

void CheckBoxListCtrl::PostpaintItem(QPainter* painter, const QStyleOptionViewItem& option, int row, int col) const
{
    QRect cell = option.rect.adjusted(3, 0, -3, 0);
    painter->save();
    painter->setClipRect(cell);
    if (ShouldShowColumnCheckBoxes(col)) {
        const int box = style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, this);
        QStyleOptionButton check;
        check.rect = QRect(cell.left(), cell.top() + (cell.height() - box) / 2, box, box);
        check.state = (IsCheckBoxChecked(row, col) ? QStyle::State_On : QStyle::State_Off) |
                      (isEnabled() ? QStyle::State_Enabled : QStyle::State_None);
        check.features = QStyleOptionButton::Flat;
        style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &check, painter, this);
        cell.setLeft(cell.left() + box + 3);
    }
    const bool selected = option.state & QStyle::State_Selected;
    painter->setPen(selected ? korva::ToQColor(korva::GetSysColor(COLOR_HIGHLIGHTTEXT)) : korva::ToQColor(GetTextColor()));
    const QString label = QString::fromStdString(GetItemText(row, col));
    painter->drawText(cell, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      painter->fontMetrics().elidedText(label, Qt::ElideRight, cell.width()));
    painter->restore();
}
