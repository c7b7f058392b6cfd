#include <KORVAutlwin/controls/CNewHeaderCtrl.h>

#include <KORVAutlwin/controls/FlatHeaderPainting.h>

#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QPainter>

namespace {
QColor Sys(int index) { return korva::ToQColor(korva::GetSysColor(index)); }
} // namespace

CNewHeaderCtrl::CNewHeaderCtrl(QWidget* parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsClickable(true);
    setHighlightSections(false);
    setStretchLastSection(false);
    setSectionsMovable(false);
}

void CNewHeaderCtrl::EnableSort(bool enable)
{
    mSortEnabled = enable;
    viewport()->update();
}

void CNewHeaderCtrl::SetSortArrow(int col, bool ascending)
{
    mSortColumn = col;
    mAscending = ascending;
    viewport()->update();
}

void CNewHeaderCtrl::paintEvent(QPaintEvent* event)
{
    {
        QPainter face(viewport());
        face.fillRect(viewport()->rect(), Sys(COLOR_BTNFACE));
    }
    QHeaderView::paintEvent(event);
    QPainter painter(viewport());
    DrawFlatBorder(painter);
}

void CNewHeaderCtrl::DrawFlatBorder(QPainter& painter) const
{
    const QRect client = viewport()->rect();
    const QColor face = Sys(COLOR_BTNFACE), shadow = Sys(COLOR_BTNSHADOW), light = Sys(COLOR_BTNHIGHLIGHT);
    painter.setPen(face);
    painter.drawRect(client.adjusted(0, 0, -1, -1));
    painter.setPen(shadow);
    painter.drawLine(client.topLeft(), client.topRight());
    painter.drawLine(client.topLeft(), client.bottomLeft());
    painter.setPen(light);
    painter.drawLine(client.bottomLeft(), client.bottomRight());
    painter.drawLine(client.topRight(), client.bottomRight());
    const int h = client.height();
    for (int col = 0; col < count(); ++col) {
        const int x = sectionViewportPosition(col) + sectionSize(col) - 1;
        painter.setPen(light);
        painter.drawLine(x, 2, x, h - 2);
        painter.setPen(shadow);
        painter.drawLine(x + 1, 2, x + 1, h - 2);
    }
}

void CNewHeaderCtrl::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    painter->save();
    painter->fillRect(rect, Sys(COLOR_BTNFACE));
    painter->setClipRect(rect);
    painter->setFont(font());
    painter->setPen(Sys(COLOR_BTNTEXT));
    QRect item = rect;
    if (mSortEnabled && korva::FlatHeader::IsPressed(*this, logicalIndex))
        item.translate(1, 2);
    const bool sorted = mSortEnabled && logicalIndex == mSortColumn;
    korva::FlatHeader::DrawTitle(*this, painter, item, logicalIndex, mOffset, sorted);
    // Exchanged against the list's header: ascending points down here.
    if (sorted)
        korva::FlatHeader::DrawSortTriangle(painter, item.right(), item.bottom(), mOffset, !mAscending);
    painter->restore();
}
