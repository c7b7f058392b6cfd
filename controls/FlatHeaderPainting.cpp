#include <KORVAutlwin/controls/FlatHeaderPainting.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QApplication>
#include <QCursor>
#include <QHeaderView>
#include <QPainter>

namespace korva::FlatHeader {

bool IsPressed(const QHeaderView& header, int logicalIndex)
{
    return (QApplication::mouseButtons() & Qt::LeftButton) && header.underMouse() &&
           header.logicalIndexAt(header.mapFromGlobal(QCursor::pos())) == logicalIndex;
}

void DrawTitle(const QHeaderView& header, QPainter* painter, const QRect& item, int logicalIndex, int offset,
               bool sorted)
{
    const int o = offset;
    QRect text = item;
    if (sorted)
        text.setRight(text.right() - 3 * o);
    text.adjust(o, 0, -o, 0);
    if (text.isEmpty())
        return;
    const Qt::Alignment align =
        Qt::Alignment(header.model()->headerData(logicalIndex, Qt::Horizontal, Qt::TextAlignmentRole).toInt()) |
        Qt::AlignVCenter;
    const QString title = header.model()->headerData(logicalIndex, Qt::Horizontal).toString();
    painter->drawText(text, static_cast<int>(align) | Qt::TextSingleLine,
                      painter->fontMetrics().elidedText(title, Qt::ElideRight, text.width()));
}

void DrawSortTriangle(QPainter* painter, int right, int bottom, int offset, bool up)
{
    const int r = right, b = bottom, o = offset;
    const QPen shadow(ToQColor(GetSysColor(COLOR_BTNSHADOW))), light(ToQColor(GetSysColor(COLOR_BTNHIGHLIGHT)));
    if (up) {
        painter->setPen(shadow);
        painter->drawLine(r - 2 * o, o - 1, r - 3 * o / 2, b - o);
        painter->drawLine(r - 3 * o / 2, b - o, r - 5 * o / 2 - 2, b - o);
        painter->setPen(light);
        painter->drawLine(r - 5 * o / 2 - 1, b - o - 1, r - 2 * o, o - 2);
    } else {
        painter->setPen(shadow);
        painter->drawLine(r - 3 * o / 2, o - 1, r - 2 * o - 1, b - o + 1);
        painter->setPen(light);
        painter->drawLine(r - 2 * o - 1, b - o, r - 5 * o / 2 - 1, o - 1);
        painter->drawLine(r - 5 * o / 2 - 1, o - 1, r - 3 * o / 2, o - 1);
    }
}

} // namespace korva::FlatHeader
