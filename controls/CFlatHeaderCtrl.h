#pragma once
// A flat header for TsListCtrl: button-face items with a flat border and a
// drawn sort triangle, in the message font (bold on request).

#include <QFont>
#include <QHeaderView>

class TsListCtrl;

/// The flat header of a TsListCtrl: button-face items, flat border lines and its own sort triangle.
class CFlatHeaderCtrl : public QHeaderView
{
    Q_OBJECT

public:
    explicit CFlatHeaderCtrl(TsListCtrl* list);

    /// Builds the font from the message font, weight 700 when bold.
    virtual void InitializeHeader(bool bold);
    virtual void SetFontBold(int bold);
    /// Stores the sort column and direction; the former sort column.
    virtual int SetSortImage(int column, int ascending);
    /// The flat frame and the column edges.
    virtual void DrawFlatBorder(QPainter* painter);
    /// Takes the width of the list's client area, keeping the height.
    virtual void ResizeWindow();

    int GetSortColumn() const { return mSortColumn; }
    bool GetSortAscending() const { return mSortAscending; }
    int GetOffset() const { return mOffset; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const override;

private:
    bool mBold = false;
    bool mSortAscending = true;
    QFont mFont;
    int mOffset = 6;
    int mSortColumn = -1;
    TsListCtrl* mList;
};
