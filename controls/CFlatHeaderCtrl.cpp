#include <KORVAutlwin/controls/CFlatHeaderCtrl.h>

#include <KORVAutlwin/controls/FlatHeaderPainting.h>
#include <KORVAutlwin/controls/TsListCtrl.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

#include <QApplication>
#include <QPainter>
#include <QPaintEvent>

namespace {
QColor Sys(int index) { return korva::ToQColor(korva::GetSysColor(index)); }
} // namespace

CFlatHeaderCtrl::CFlatHeaderCtrl(TsListCtrl* list) : QHeaderView(Qt::Horizontal, list), mList(list) {}

void CFlatHeaderCtrl::InitializeHeader(bool bold)
{
    mBold = bold;
    mFont = QApplication::font("QMessageBox");
    mFont.setWeight(bold ? QFont::Bold : QFont::Normal);
    setFont(mFont);
    ResizeWindow();
}

void CFlatHeaderCtrl::SetFontBold(int bold)
{
    InitializeHeader(bold != 0);
    viewport()->update();
}

int CFlatHeaderCtrl::SetSortImage(int column, int ascending)
{
    const int former = mSortColumn;
    mSortColumn = column;
    mSortAscending = ascending != 0;
    viewport()->update();
    return former;
}

void CFlatHeaderCtrl::ResizeWindow()
{
    // The tree view lays its header out over the viewport's width; only the height is ours to keep.
    if (mList)
        resize(mList->viewport()->width(), height());
}

void CFlatHeaderCtrl::paintEvent(QPaintEvent* event)
{
    QPainter face(viewport());
    face.fillRect(viewport()->rect(), Sys(COLOR_BTNFACE));
    face.end();
    QHeaderView::paintEvent(event);
    QPainter painter(viewport());
    DrawFlatBorder(&painter);
}

void CFlatHeaderCtrl::DrawFlatBorder(QPainter* painter)
{
    const QRect client = viewport()->rect();
    const QColor face = Sys(COLOR_BTNFACE), shadow = Sys(COLOR_BTNSHADOW), light = Sys(COLOR_BTNHIGHLIGHT);
    painter->setPen(face);
    painter->drawRect(client.adjusted(0, 0, -1, -1));
    painter->drawRect(client.adjusted(1, 1, -2, -2));
    // Shadow on the top left, highlight on the bottom right.
    painter->setPen(shadow);
    painter->drawLine(client.topLeft(), client.topRight());
    painter->drawLine(client.topLeft(), client.bottomLeft());
    painter->setPen(light);
    painter->drawLine(client.bottomLeft(), client.bottomRight());
    painter->drawLine(client.topRight(), client.bottomRight());
    const int h = client.height();
    for (int visual = 0; visual < count(); ++visual) {
        const int logical = logicalIndex(visual);
        if (isSectionHidden(logical))
            continue;
        // The edge is the first pixel behind the column, as the platform's item rectangles end.
        const int x = sectionViewportPosition(logical) + sectionSize(logical);
        painter->setPen(light);
        painter->drawLine(x, 2, x, h - 2);
        painter->setPen(shadow);
        painter->drawLine(x + 1, 2, x + 1, h - 2);
        painter->setPen(face);
        painter->drawLine(x - 1, 2, x - 1, h - 2);
        painter->drawLine(x - 2, 2, x - 2, h - 2);
    }
}

void CFlatHeaderCtrl::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const
{
    painter->save();
    painter->fillRect(rect, Sys(COLOR_BTNFACE));
    painter->setClipRect(rect);
    painter->setFont(mFont);
    painter->setPen(Sys(COLOR_BTNTEXT));
    QRect item = rect;
    if (korva::FlatHeader::IsPressed(*this, logicalIndex))
        item.translate(1, 2);
    const bool sorted = logicalIndex == mSortColumn;
    korva::FlatHeader::DrawTitle(*this, painter, item, logicalIndex, mOffset, sorted);
    // Exclusive edges, as the platform's item rectangles end.
    if (sorted)
        korva::FlatHeader::DrawSortTriangle(painter, item.left() + item.width(), item.top() + item.height(), mOffset,
                                            mSortAscending);
    painter->restore();
}
