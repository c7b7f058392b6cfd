#pragma once
// Painting shared by the flat headers of the list and of the tree list.

#include <QRect>

class QHeaderView;
class QPainter;

namespace korva::FlatHeader {

/// True while the left button holds the item `logicalIndex` of `header` down.
bool IsPressed(const QHeaderView& header, int logicalIndex);
/// The title of `logicalIndex` in `item`, `offset` in from both sides, elided,
/// leaving room for the sort triangle when `sorted`; in the painter's font and pen.
void DrawTitle(const QHeaderView& header, QPainter* painter, const QRect& item, int logicalIndex, int offset,
               bool sorted);
/// The sort triangle before the right edge `right`, above the bottom edge
/// `bottom`, shadow and highlight lines; `up` points it up.
void DrawSortTriangle(QPainter* painter, int right, int bottom, int offset, bool up);

} // namespace korva::FlatHeader
