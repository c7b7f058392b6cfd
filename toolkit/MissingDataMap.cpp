#include <KORVAutlwin/toolkit/MissingDataMap.h>

#include <KORVAutlwin/toolkit/ColorRef.h>
#include <KORVAutlwin/toolkit/StandardColor.h>

#include <QPainter>

MissingDataMap::MissingDataMap(QWidget* parent) : QWidget(parent)
{
    // Every pixel is painted each time: no background erase, so no flicker.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAutoFillBackground(false);
}

void MissingDataMap::SetData(int rows, int columns, std::list<QPoint> const* cells, std::vector<bool> const* missing)
{
    mRows = rows;
    mColumns = columns;
    mCells = cells;
    mMissing = missing;
    mCellCount = cells ? cells->size() : 0;
    update();
}

void MissingDataMap::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    Paint(painter, size());
}

void MissingDataMap::Paint(QPainter& painter, const QSize& size) const
{
    const int width = size.width();
    const int height = size.height();
    painter.fillRect(0, 0, width + 1, height + 1, Qt::white);
    if (!mCells || mRows <= 0 || mColumns <= 0)
        return;

    const QColor present = korva::ToQColor(StandardColor::GetColorGreen());
    const QColor missing = korva::ToQColor(StandardColor::GetMisVal());
    std::size_t k = 0;
    for (auto cell = mCells->begin(); cell != mCells->end() && k < mCellCount; ++cell, ++k) {
        // Cut towards zero; the extra pixel right and below closes the gaps
        // between neighbours and keeps even the smallest cell visible.
        const int left = static_cast<int>((cell->x() - 1) * static_cast<double>(width) / mColumns);
        const int right = static_cast<int>(cell->x() * static_cast<double>(width) / mColumns);
        const int top = static_cast<int>((cell->y() - 1) * static_cast<double>(height) / mRows);
        const int bottom = static_cast<int>(cell->y() * static_cast<double>(height) / mRows) + 1;
        const bool isMissing = !mMissing || (k < mMissing->size() && (*mMissing)[k]);
        painter.fillRect(left, top, right + 1 - left, bottom - top, isMissing ? missing : present);
    }
}
