#pragma once
/// \class MissingDataMap
/// A static picture of which cells of a table are present and which are
/// missing: each listed cell is a rectangle in the present colour (the suite's
/// green) or the missing colour (the missing-value colour of cells).
///
/// The control does not own its data: the list of cells and the missing flags
/// must outlive it, or be replaced by SetData first.

#include <QPoint>
#include <QWidget>

#include <cstddef>
#include <list>
#include <vector>

class QPainter;

class MissingDataMap : public QWidget
{
    Q_OBJECT

public:
    explicit MissingDataMap(QWidget* parent = nullptr);

    /// The table has `rows` rows and `columns` columns; `cells` lists the cells
    /// to paint, x a 1-based column and y a 1-based row; bit k of `missing`
    /// marks the k-th cell of the list as missing. A null `missing` paints every
    /// cell missing; a null or empty list leaves the control white. Repaints.
    void SetData(int rows, int columns, std::list<QPoint> const* cells, std::vector<bool> const* missing);

    /// Paints the map into `size` with `painter`: what the control shows.
    void Paint(QPainter& painter, const QSize& size) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::list<QPoint> const* mCells = nullptr;
    std::vector<bool> const* mMissing = nullptr;
    int mColumns = 0;
    int mRows = 0;
    std::size_t mCellCount = 0; // the list's size when it was set
};
