#pragma once
// The property grid: categories with a plus or minus box, items with a caption
// on the left and a value on the right, an in-place control over the selected
// row's value, and a details area of 64 pixels below the rows showing the
// selected row's name and description.

#include <KORVAutlwin/options/PropertyListModel.h>

#include <QFont>
#include <QFontMetrics>
#include <QRect>
#include <QWidget>

#include <memory>
#include <string>

class QScrollBar;

/// The property grid widget: categories and typed rows, an in-place control, and a details area.
class PropertyListCtrl : public QWidget, public PropertyListModel
{
    Q_OBJECT
public:
    explicit PropertyListCtrl(QWidget* parent = nullptr);
    ~PropertyListCtrl() override;

    /// Shows or hides the details area.
    void ShowDetails(bool show);
    bool GetShowDetails() const { return mShowDetails; }
    /// Repaints every value and rebuilds the in-place control.
    void Refresh();
    /// Destroys the in-place control (a pending edit commits first); with `show`
    /// and a selection, creates the selected item's control afresh.
    void ShowInPlaceControl(bool show);
    /// Destroys the in-place control; a focused one commits first.
    void NoInPlaceControl() override;
    /// Selects row `index` without an in-place control; a control of another row goes.
    bool SetCurSel(int index) override;

    /// The commit message (WM_USER+3) of the in-place controls. Answers 1.
    long OnSetData();
    /// The selection moved: the new row's in-place control, and the details.
    void OnSelChange();

    /// The rectangle of row `index` in the grid's coordinates, above or below
    /// the client area for a row scrolled out of view; empty when there is no such row.
    QRect GetItemRect(int index) const;
    /// The value cell of row `index`.
    QRect GetItemValueRect(int index) const;
    /// The row at `point`, or -1.
    int ItemFromPoint(QPoint point) const;
    /// What the details area shows: the selected row's name and description, or
    /// in place of an empty one (or with no selection) strings 16154 and 16153.
    void GetDetailsText(std::string& name, std::string& description) const;
    /// The first row shown.
    int GetTopIndex() const { return mTopIndex; }
    void SetTopIndex(int index);
    /// The rows' area: the window less the details area and the scroll bar.
    QRect GetClientRect() const;
    /// The details area.
    QRect GetDetailsRect() const;
    QScrollBar* GetScrollBar() const { return mScrollBar; }

    /// The width of the expander column, and the details area's height.
    static constexpr int msExpanderWidth = 16;
    static constexpr int msDetailsHeight = 64;

protected:
    int MeasureItem(PropertyItem* item) override;
    void OnRowsChanged() override;
    /// Paints row `index` into `rect` (see DrawItem of the rows).
    void DrawItem(QPainter& dc, int index, const QRect& rect);
    void DrawDetails(QPainter& dc);

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void UpdateScrollBar();
    void EnsureVisible(int index);
    int LastTopIndex() const;
    void MoveSelection(int index);
    // A left click in the client area: focus, then select the row under it; false for any other click.
    bool SelectRowAt(QMouseEvent* event);
    void RemeasureAll();
    QFont CategoryFont() const;
    const QFontMetrics& Metrics(bool category) const;

    QScrollBar* mScrollBar;
    int mTopIndex = 0;
    int mMeasuredWidth = -1;
    bool mLayoutDirty = true;
    mutable std::unique_ptr<QFontMetrics> mMetrics;
    mutable std::unique_ptr<QFontMetrics> mCategoryMetrics;
};
