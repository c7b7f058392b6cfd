#pragma once
// The suite's report list: a Qt tree view over a ListData model of rows, with
// percentage columns, remembered widths, proportional resizing, a quicksort by
// column with the sort arrow, drag selection without a marquee, bulk
// selection and check-box operations, in-cell editing with a moving editor,
// a text for the empty list, enabled and disabled colour sets, and copying as
// tab-separated text together with an "HTML Format" fragment.
//
// Selection, focus and check marks live in the rows' state bits (ListData),
// not in a Qt selection model: the list's rules read and write those bits,
// and the view paints them.

#include <KORVAutlwin/controls/ListClipboard.h>
#include <KORVAutlwin/controls/ListData.h>
#include <KORVAutlwin/controls/ListFormatter.h>
#include <KORVAutlwin/toolkit/ColorRef.h>

#include <QBasicTimer>
#include <QFont>
#include <QPixmap>
#include <QTreeView>

#include <functional>
#include <memory>
#include <string>
#include <vector>

class CFlatHeaderCtrl;
class QLineEdit;
class QStyleOptionViewItem;

/// No colour: the COLORREF -1.
constexpr COLORREF CLR_NONE = 0xFFFFFFFF;

/// The suite's report list: sortable, bulk-selectable, editable in its cells, copied as text and "HTML Format".
class TsListCtrl : public QTreeView, public ClipboardTable
{
    Q_OBJECT

public:
    /// Which rows go out, and with what head; the two kinds the list uses.
    using Formatter = ListFormatter;
    using AllItemsFormatter = ::AllItemsFormatter;
    using SelectedItemsFormatter = ::SelectedItemsFormatter;

    /// What the list tells its parent when an edit ends by Escape or a refusal
    /// (LVN_ENDLABELEDIT): text is null after Escape. A result of 1 accepts the text.
    using EndLabelEditHandler = std::function<int(TsListCtrl& list, int row, int col, const char* text)>;

    static constexpr int kDragTimerId = 1;
    static constexpr int kEditorId = 1022;
    /// The profile section of remembered column widths.
    static constexpr const char* kColumnWidthsSection = "ListColumnWidths";

    explicit TsListCtrl(QWidget* parent = nullptr);
    ~TsListCtrl() override;

    /// The rows, as the platform list keeps them.
    ListData& GetListData() { return *mData; }
    const ListData& GetListData() const { return *mData; }

    // --- styles and the platform list's operations --------------------------
    unsigned long GetStyle() const { return mData->GetStyle(); }
    void ModifyStyle(unsigned long remove, unsigned long add);
    unsigned long GetExtendedStyle() const { return mData->GetExtendedStyle(); }
    void SetExtendedStyle(unsigned long exStyle) { mData->SetExtendedStyle(exStyle); }
    int GetItemCount() const { return mData->GetItemCount(); }
    int InsertItem(int row, const char* text, int image = 0) { return mData->InsertItem(row, text, image); }
    bool DeleteItem(int row) { return mData->DeleteItem(row); }
    bool DeleteAllItems() { return mData->DeleteAllItems(); }
    std::string GetItemText(int row, int col) const { return mData->GetItemText(row, col); }
    bool SetItemText(int row, int col, const char* text) { return mData->SetItemText(row, col, text); }
    uintptr_t GetItemData(int row) const { return mData->GetItemData(row); }
    bool SetItemData(int row, uintptr_t data) { return mData->SetItemData(row, data); }
    unsigned int GetItemState(int row, unsigned int mask) const { return mData->GetItemState(row, mask); }
    bool SetItemState(int row, unsigned int state, unsigned int mask) { return mData->SetItemState(row, state, mask); }
    bool GetCheck(int row) const { return mData->GetCheck(row); }
    bool SetCheck(int row, bool check) { return mData->SetCheck(row, check); }
    int GetNextItem(int after, unsigned int bits) const { return mData->GetNextItem(after, bits); }
    int GetSelectedCount() const { return mData->GetSelectedCount(); }
    /// Owner data: the row count and the source of the cells' texts.
    void SetItemCount(int count) { mData->SetItemCount(count); }
    void SetTextCallback(std::function<std::string(int row, int col)> callback);
    int InsertColumn(int col, const char* title, int format = LVCFMT_LEFT, int width = -1);
    bool DeleteColumn(int col);
    int GetColumnWidth(int col) const { return mData->GetColumnWidth(col); }
    bool SetColumnWidth(int col, int width);
    int GetTopIndex() const;
    /// Whole rows that fit the client area.
    int GetCountPerPage() const;
    bool EnsureVisible(int row, bool partialOk);
    /// The width of the client area: the list without its frame and vertical scroller.
    int GetClientWidth() const;
    /// The rectangle of a row in client coordinates; empty for a bad row.
    QRect GetItemRect(int row) const;
    int HitTest(const QPoint& point) const;

    // --- columns --------------------------------------------------------------
    /// Replaces every column, laid out by percentage over the client width.
    void SetColumns(const float* percents, const char** labels, int count);
    /// Appends a column; width -1 copies the last column's width. Its number.
    int AddColumn(const char* label, int width = -1, int format = LVCFMT_LEFT);
    int GetColumnCount() const override { return mData->GetColumnCount(); }
    std::string GetColumnText(int col) const override;
    /// Fits columns (all for col < 0) to cells and header, within min and max.
    void AutoSizeColumn(int col = -1, int minWidth = 0, int maxWidth = 0x7FFFFFFF);
    void EnableColumnAutoSize(bool enable, int threshold = 0);
    /// Remembers the widths under `key` in "ListColumnWidths", and applies
    /// stored widths whose count fits.
    void EnableSaveRestore(const char* key);
    bool SortItems(int column, bool ascending, int low = 0, int high = -1);
    int GetSortColumn() const { return mSortColumn; }
    int GetSortAscending() const { return mSortAscending; }

    // --- rows -----------------------------------------------------------------
    int AddItem(const char* text, uintptr_t data = 0);
    virtual bool CopyRow(int from, int to);
    virtual bool MoveRow(int from, int to);
    /// The row and column under a point of the client area; -1 if none.
    virtual int HitTestEx(const QPoint& point, int* column) const;
    void SetTopIndex(int row);
    /// A 16 x 16 image of `colour` at image index `index`; with a text, a row at `index` too.
    void SetColorItem(int index, const char* text, COLORREF colour);
    /// Keeps `text` in the next of three slots; the pointer stays valid through the next two calls.
    const char* AddPool(const char* text);
    /// The small images, by image index.
    const std::vector<QPixmap>& GetImageList() const { return mImages; }

    // --- selection ------------------------------------------------------------
    int GetSelIndex() const;
    int SetSelIndex(int row);
    /// Stores up to max + 1 rows and returns up to max + 1: size arrays for that.
    int GetSelIndexes(int* out, int max) const;
    void GetSelIndexes(std::vector<int>& rows) const;
    void GetSelItemData(std::vector<uintptr_t>& data) const;
    void SetSelIndexes(const std::vector<int>& rows);
    void SelectAllItems(bool select);
    void ComplementSelection();
    void DeleteSelectedItems();
    void SelectWithWildcards(const char* pattern, int column, bool caseSensitive);
    void SetSelection(int from, int to, const int* extra, int extraCount);
    void RedrawSelectedItems();

    // --- check boxes ----------------------------------------------------------
    void CheckAllItems(bool check);
    /// -1 without check boxes.
    int GetCheckedItemCount() const;
    /// -1 without check boxes; stores up to max + 1 values, as GetSelIndexes.
    int GetCheckedItemData(unsigned long* out, int max) const;
    void GetCheckedIndexes(std::vector<int>& rows) const;
    void SetCheckedIndexes(const std::vector<int>& rows, bool check);

    // --- output ---------------------------------------------------------------
    std::string ToString(const char* caption) const;
    std::string ToString(const std::vector<int>& rows) const;
    std::string ToHTML(const char* caption) const;
    std::string ToHTML(const std::vector<int>& rows) const;
    void AddToClipboard(const char* caption);
    void AddToClipboard(const std::vector<int>& rows);
    void EditCopy() { AddToClipboard(static_cast<const char*>(nullptr)); }
    void CopySelection();
    bool HasColumnHeader() const override { return !(GetStyle() & LVS_NOCOLUMNHEADER); }
    std::string GetClipboardItemText(int row, int col) const override;

    // --- configuration --------------------------------------------------------
    void SetEmptyCtrlText(const char* text);
    void SetEmptyControlText(unsigned int id);
    const std::string& GetEmptyCtrlText() const { return mEmptyText; }
    void SetMinimumColumnSize(int size) { mMinimumColumnSize = size; }
    void DisableColumnSizing(bool disable = true);
    void SetRowColors(COLORREF text, COLORREF textBackground, COLORREF background);
    void SetDisabledRowColors(COLORREF text, COLORREF textBackground, COLORREF background);
    void EnableDisabledColors(bool enable);
    bool IsDisabledColorsEnabled() const { return mDisabledColorsEnabled; }
    void EnableShortCuts(bool shortcuts, bool deleteShortcut = false);
    void EnableEditSubItems(bool edit, bool acceptEdits = false);
    void SubclassHeader(bool bold);
    CFlatHeaderCtrl* GetFlatHeader() const { return mFlatHeader; }
    void SetEndLabelEditHandler(EndLabelEditHandler handler) { mEndLabelEdit = std::move(handler); }

    /// The colours now applied: text, text background, background.
    COLORREF GetTextColor() const { return mAppliedText; }
    COLORREF GetTextBkColor() const { return mAppliedTextBk; }
    COLORREF GetBkColor() const { return mAppliedBk; }

    // --- in-cell editing ------------------------------------------------------
    virtual bool AcceptEdit(const char* text, int row, int col);
    /// Opens the editor on a cell; null if the row can't be shown, the column
    /// doesn't exist or is narrower than 5.
    virtual QLineEdit* EditSubLabel(int row, int col);
    /// Sends LVN_ENDLABELEDIT to the parent's handler; its result (0 without one).
    int NotifyEndLabelEdit(int row, int col, const char* text);
    bool IsDragRunning() const { return mDragRunning; }

signals:
    /// A header item was clicked with the left button (after the list's own handling).
    void HeaderItemClick(int column);
    /// A left click reached a row (NM_CLICK); column -1 right of the last column.
    void ItemClick(int row, int column);

protected:
    /// Colours and decorations of one cell before it is painted; subclasses add theirs.
    virtual void PrepaintItem(int row, int col, QStyleOptionViewItem& option) const;
    /// Painting after the cell's default painting.
    virtual void PostpaintItem(QPainter* painter, const QStyleOptionViewItem& option, int row, int col) const;
    /// One left click on a row, after the list's rules; for subclasses.
    virtual void OnClick(int row, int col, const QPoint& point);
    void OnHeaderItemClick(int column);
    void ApplyColors();

    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    friend class TsListItemDelegate;
    friend class CInPlaceEdit;

    void AddToClipboardImpl(const Formatter& formatter);
    void ConnectHeader();
    void ApplyColumnWidthsToHeader();
    void OnDragTimer();
    void StopDrag();
    void ClickSelect(int row, Qt::KeyboardModifiers modifiers);
    void MoveFocusTo(int row, Qt::KeyboardModifiers modifiers);
    bool CheckBoxHit(int row, const QPoint& point) const;
    void ToggleSelectedChecks(int referenceRow);
    int RowHeight() const;

    ListData* mData;
    int mSortColumn = -1;
    int mSortAscending = 1;
    int mMinimumColumnSize = 0;
    bool mColumnSizingDisabled = false;
    std::string mEmptyText;
    COLORREF mTextColor, mTextBkColor, mBkColor;
    COLORREF mDisabledTextColor, mDisabledTextBkColor, mDisabledBkColor;
    bool mDisabledColorsEnabled = false;
    bool mDragSelectionAllowed = true;
    bool mDragRunning = false;
    std::unique_ptr<std::vector<int>> mSelectionSnapshot;
    int mDragAnchorRow = 0;
    mutable int mRowsPerPage = -1;
    Qt::KeyboardModifiers mButtonFlags;
    bool mAcceptEdits = false;
    bool mEditSubItems = false;
    bool mShortcutsEnabled = true;
    bool mDeleteShortcutEnabled = false;
    std::string mPool[3];
    int mPoolNext = 0;
    CFlatHeaderCtrl* mFlatHeader = nullptr;
    std::string mPersistenceKey;
    int mAutoSizeLastWidth = -1;
    int mAutoSizeThreshold = 0;
    QFont mMessageFont;

    COLORREF mAppliedText = 0, mAppliedTextBk = 0, mAppliedBk = 0;
    int mSelectionMark = -1;
    QBasicTimer mDragTimer;
    std::vector<QPixmap> mImages;
    EndLabelEditHandler mEndLabelEdit;
    bool mSettingWidths = false;
    bool mLeftButtonDown = false;
    QPoint mLastMouse;
};
