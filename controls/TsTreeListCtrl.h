#pragma once
// A tree with several columns: the header on top, the tree below it and a
// horizontal scroller of its own at the bottom, which moves in steps of 6
// pixels. Header clicks sort the top level (sort type 1) or the children of
// each top-level item (sort type 2); the columns can follow the width of the
// control. Most calls forward to the TsTreeCtrlEx inside.

#include <KORVAutlwin/controls/TsTreeCtrlEx.h>

#include <QWidget>

#include <optional>

class QScrollBar;

/// The tree list control: header, TsTreeCtrlEx and scroller in one window,
/// copied with Ctrl+C as text and "HTML Format".
class TsTreeListCtrl : public QWidget
{
    Q_OBJECT

public:
    enum SortType
    {
        eNoSort = 0,
        eSortTopLevel = 1,
        eSortEachTopLevelChildren = 2
    };
    /// The window class name; also the object name of every tree list.
    static constexpr const char* kClassName = "TSTREELISTCTRL";
    static constexpr int kHeaderId = 370;
    static constexpr int kTreeId = 373;
    static constexpr int kScrollerId = 377;

    explicit TsTreeListCtrl(QWidget* parent = nullptr);

    /// Tree styles (TVS_*), for the tree made by the next Initialize.
    void SetStyle(unsigned long style) { mTreeStyle = style; }
    /// Applies the style, lays the parts out and, with a sort type set, sorts
    /// all by column 0 with the arrow shown there.
    void Initialize();
    /// Takes the place, size and layout slot of `placeholder` (which is
    /// deleted), then initialises. False without a placeholder.
    bool SubclassDlgItem(QWidget* placeholder);

    TsTreeCtrlEx& GetTreeCtrl() { return *mTree; }
    const TsTreeCtrlEx& GetTreeCtrl() const { return *mTree; }
    QScrollBar* GetScroller() const { return mScroller; }
    CNewHeaderCtrl* GetHeader() const { return mTree->GetHeader(); }
    /// Sets the header's sort flag; the sort type becomes 1 or 0.
    void EnableSort(bool enable);
    void SetSortType(int type) { mSortType = type; }
    int GetSortType() const { return mSortType; }
    int GetSortColumn() const { return mSortColumn; }
    bool IsAscending() const { return mAscending; }
    /// Off also stops the layout, so that bulk inserts don't recompute the
    /// scroller per row; on does it once.
    void SetRedraw(int redraw);
    /// Sorts the children of every item with children among the siblings from
    /// `first` on, recursing into each first child.
    void SortTree(int col, bool ascending, HTREEITEM first);
    void SetColumnHeaderText(int col, const char* text) { mTree->SetColumnHeaderText(col, text); }
    /// Writes the cell in "%g" form; `text` receives it.
    void SetItemFloat(HTREEITEM item, int col, double value, std::string& text);
    bool SetItemText(int row, int col, const char* text) { return mTree->SetItemText(mTree->GetTreeItem(row), col, text); }
    bool SetItemText(HTREEITEM item, int col, const char* text) { return mTree->SetItemText(item, col, text); }
    /// With true the columns share each change of the width of 10 pixels or more.
    void EnableColumnAutoSize(bool enable);

    // --- clipboard forms --------------------------------------------------------------
    /// Titles and every item in pre-order, tab-separated.
    std::string GetTextClipString() const { return TreeListRules::GetTextClipString(*mTree); }
    /// The text of the whole tree; empty after message 13331 when memory runs out.
    std::optional<std::string> MakeClipString() const;
    /// "\r\n" and the rows of `items`; empty after message 13331 when memory runs out.
    std::optional<std::string> MakeClipString(const std::vector<HTREEITEM>& items, int columns) const;
    /// The whole tree as a table; its head has one cell fewer than the body.
    std::string ToHTML(const char* caption) const { return TreeListRules::ToHTML(*mTree, caption); }
    std::string ToHTML(const std::vector<HTREEITEM>& items, int columns) const
    {
        return TreeListRules::ToHTML(*mTree, items, columns);
    }
    /// Ctrl+C: the selected items as text (after two empty lines) and as "HTML Format".
    void OnUserCopiedData();

    // --- forwarded ----------------------------------------------------------------
    int InsertColumn(int index, const char* title, int align = 0, int width = -1, int subItem = -1)
    {
        return mTree->InsertColumn(index, title, align, width, subItem);
    }
    void ClearColumns() { mTree->ClearColumns(); }
    HTREEITEM InsertItem(const char* text, HTREEITEM parent = nullptr, HTREEITEM after = TVI_LAST)
    {
        return mTree->InsertItem(text, parent, after);
    }
    HTREEITEM InsertItem(int index, const char* text, HTREEITEM parent) { return mTree->InsertItem(index, text, parent); }
    bool DeleteItem(HTREEITEM item) { return mTree->DeleteItem(item); }
    bool DeleteAllItems() { return mTree->DeleteAllItems(); }
    std::string GetItemText(HTREEITEM item, int col) const { return mTree->GetItemText(item, col); }
    std::string GetItemText(int row, int col) const { return mTree->GetItemText(row, col); }
    unsigned int GetItemState(HTREEITEM item, unsigned int mask) const { return mTree->GetItemState(item, mask); }
    bool SetItemState(HTREEITEM item, unsigned int state, unsigned int mask)
    {
        return mTree->SetItemState(item, state, mask);
    }
    bool ItemHasChildren(HTREEITEM item) const { return mTree->ItemHasChildren(item); }
    bool Expand(HTREEITEM item, unsigned int code) { return mTree->Expand(item, code); }
    void SetItemColor(HTREEITEM item, COLORREF colour) { mTree->SetItemColor(item, colour, true); }
    void SetItemBold(HTREEITEM item, bool bold) { mTree->SetItemBold(item, bold, true); }
    void SetItemGroup(HTREEITEM item, bool group) { mTree->SetItemGroup(item, group, true); }
    HTREEITEM GetRootItem() const { return mTree->GetRootItem(); }
    HTREEITEM GetChildItem(HTREEITEM item) const { return mTree->GetChildItem(item); }
    HTREEITEM GetParentItem(HTREEITEM item) const { return mTree->GetParentItem(item); }
    HTREEITEM GetNextSiblingItem(HTREEITEM item) const { return mTree->GetNextSiblingItem(item); }
    HTREEITEM GetPrevSiblingItem(HTREEITEM item) const { return mTree->GetPrevSiblingItem(item); }
    /// All items of the tree.
    int GetItemCount() const { return mTree->GetNumChildren(nullptr); }
    /// The top-level index of the current item, -1 if it is none.
    int GetSelIndex() const { return mTree->GetListItem(mTree->GetSelectedItem()); }
    HTREEITEM GetItem(int index) const { return mTree->GetTreeItem(index); }
    int GetItem(HTREEITEM item) const { return mTree->GetListItem(item); }
    int GetSelectedItemCount() const { return mTree->GetSelectedItemCount(); }
    HTREEITEM GetFirstSelectedItem() const { return mTree->GetFirstSelectedItem(); }
    HTREEITEM GetNextSelectedItem(HTREEITEM item) const { return mTree->GetNextSelectedItem(item); }
    void ClearSelection() { mTree->ClearSelection(); }
    void EnableMultiSelect(bool multi) { mTree->EnableMultiSelect(multi); }
    void SetSelectionState(int state) { mTree->SetSelectionState(state); }
    int GetSelectionState() const { return mTree->GetSelectionState(); }

    // --- layout and scrolling ----------------------------------------------------------
    /// Shows the scroller when the columns are wider than the tree, else hides it.
    void ResetScrollBar();
    /// The tree's vertical scroller came or went: the scroller's size follows.
    void ResetVertScrollBar();
    /// A header click on `col`, by the sort type.
    void OnHeaderClick(int col);
    /// A scroll code (TreeListRules::EScrollCode) with the thumb position.
    void OnHScroll(int code, int thumb = 0);
    /// The columns were resized: totals and scroller.
    void OnColumnResized();

signals:
    /// The tree was double-clicked.
    void DoubleClicked();
    /// The selection was changed by hand in the tree.
    void SelChanged();
    /// A context menu was asked for at a global position.
    void ContextMenu(QPoint global);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void Layout();
    /// The tree's client width, without its vertical scroller.
    int TreeClientWidth() const;

    int mSortColumn = -1;
    bool mAscending = true;
    unsigned long mTreeStyle = TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_DISABLEDRAGDROP | TVS_SHOWSELALWAYS;
    TsTreeCtrlEx* mTree = nullptr;
    QScrollBar* mScroller = nullptr;
    int mSortType = eNoSort;
    bool mLayoutEnabled = true;
    int mAutoSizeWidth = -1;
    bool mInVertReset = false;
};
