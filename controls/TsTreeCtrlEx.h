#pragma once
// The tree inside the tree list: every row's cells live in a record of its own
// (TreeItemRecord), the platform item's text stays empty, and the rows are
// painted across the columns of the header; rows sort by any column with
// groups first and priorities honoured.

#include <KORVAutlwin/controls/CNewHeaderCtrl.h>
#include <KORVAutlwin/controls/TreeListRules.h>
#include <KORVAutlwin/controls/TsTreeCtrl.h>

#include <memory>
#include <vector>

class QStandardItemModel;
class TsTreeListCtrl;

/// A tree whose rows carry several cells, painted at the columns of a
/// CNewHeaderCtrl. It lives inside a TsTreeListCtrl, which owns the scroller.
class TsTreeCtrlEx : public TsTreeCtrl, public TreeListTable
{
    Q_OBJECT

public:
    /// A platform item with its record; the record goes with the item.
    class ExItem : public Item
    {
    public:
        std::unique_ptr<TreeItemRecord> record;
    };

    /// `owner` gets to recompute its scroller after inserts; the header is made
    /// a child of `headerParent` (the owner when null).
    explicit TsTreeCtrlEx(TsTreeListCtrl* owner = nullptr, QWidget* parent = nullptr,
                          unsigned long style = TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT);
    ~TsTreeCtrlEx() override;

    // --- columns --------------------------------------------------------------
    /// align 0 left, 1 right, 2 centre; width -1 leaves it to the header. Returns the index.
    int InsertColumn(int index, const char* title, int align = 0, int width = -1, int subItem = -1);
    void ClearColumns();
    void SetColumnWidth(int col, int width);
    int GetColumnWidth(int col) const;
    /// 0 left, 1 right, 2 centre.
    int GetColumnAlign(int col) const;
    int GetColumnCount() const override { return mColumnCount; }
    int GetColumnsWidth() const { return mColumnsWidth; }
    /// Sums the column widths again and returns the total.
    int RecalcColumnsWidth();
    void SetColumnHeaderText(int col, const char* text);
    bool GetColumnTitle(int col, std::string& title) const override;
    CNewHeaderCtrl* GetHeader() const { return mHeader; }
    /// The horizontal offset of the columns: minus the scroll position.
    int GetOffset() const { return mOffset; }

    // --- rows ---------------------------------------------------------------------
    using TsTreeCtrl::InsertItem;
    /// Creates the record with `text` as cell 0 and marks the parent.
    HTREEITEM InsertItem(const char* text, int image, int selectedImage, HTREEITEM parent = nullptr,
                         HTREEITEM after = TVI_LAST) override;
    /// Inserts under `parent` so that the row gets top-level index `index`: first for 0.
    HTREEITEM InsertItem(int index, const char* text, HTREEITEM parent);
    bool SetItemText(HTREEITEM item, int col, const char* text);
    bool SetItemText(HTREEITEM item, const char* text) override { return SetItemText(item, 0, text); }
    /// Empty for an item without record.
    std::string GetItemText(HTREEITEM item, int col) const override;
    std::string GetItemText(HTREEITEM item) const override { return GetItemText(item, 0); }
    std::string GetItemText(int row, int col) const { return GetItemText(GetTreeItem(row), col); }
    uintptr_t GetItemData(HTREEITEM item) const override;
    bool SetItemData(HTREEITEM item, uintptr_t data) override;
    void SetItemColor(HTREEITEM item, COLORREF colour, bool invalidate);
    void SetItemColor(HTREEITEM item, COLORREF colour) override { SetItemColor(item, colour, true); }
    void SetItemBold(HTREEITEM item, bool bold, bool invalidate);
    void SetItemBold(HTREEITEM item, bool bold) override { SetItemBold(item, bold, true); }
    bool IsBold(HTREEITEM item) const;
    bool GetItemBold(HTREEITEM item) const override { return IsBold(item); }
    /// Also expands the item and recomputes the scroller.
    void SetItemGroup(HTREEITEM item, bool group, bool invalidate);
    bool IsGroup(HTREEITEM item) const;
    void SetItemPriority(HTREEITEM item, int priority);
    /// -1 for an item without record.
    int GetItemPriority(HTREEITEM item) const;
    /// The record of `item`; null if it has none.
    TreeItemRecord* GetRecord(HTREEITEM item) const;
    /// The top-level item of `index`, and back.
    HTREEITEM GetTreeItem(int index) const { return H(topLevelItem(index)); }
    int GetListItem(HTREEITEM item) const { return item ? indexOfTopLevelItem(Q(item)) : -1; }

    /// Null for an item with children; otherwise the record goes with the copy.
    HTREEITEM CopyItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after = TVI_LAST) override;
    /// Null for an item with children; the old item is deleted first.
    HTREEITEM MoveItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after = TVI_LAST);
    /// Deletes the item with its records and recomputes the parent's has-children flag.
    bool DeleteItem(HTREEITEM item) override;
    bool DeleteItem(int index) { return DeleteItem(GetTreeItem(index)); }
    /// Deletes the children; true if a deletion failed.
    bool DeleteSubItems(HTREEITEM item);
    bool DeleteAllItems() override;
    /// Frees the records of the siblings from `first` on and of all below them.
    void MemDeleteAllItems(HTREEITEM first);
    /// Frees one record.
    void DeleteItemData(HTREEITEM item) override;
    /// The first sibling from `start` (top level for null) whose cell `col` is
    /// `text`, and, with `data` not 0, whose data is `data`.
    HTREEITEM FindParentItem(const char* text, int col, HTREEITEM start, unsigned long data = 0) const;
    bool Expand(HTREEITEM item, unsigned int code);

    // --- sort -----------------------------------------------------------------------
    /// Sorts the children of `parent` (top level for null).
    void SortItems(int col, bool ascending, HTREEITEM parent);
    static int CompareFunc(const TreeItemRecord* record1, const TreeItemRecord* record2,
                           const TreeListRules::SortDescription& sort)
    {
        return TreeListRules::CompareFunc(record1, record2, sort);
    }
    bool GetGroupsFirst() const { return mGroupsFirst; }
    /// The records as the sort reads them.
    std::function<const TreeItemRecord*(HTREEITEM)> Records() const;

    // --- painting ---------------------------------------------------------------------
    /// The text clipped to `width` - 6 from rect's left; align 0 left (7 in), 1 right, 2 centre.
    void DrawItemText(QPainter& painter, const std::string& text, const QRect& rect, int width, int align) const;
    /// Tells the owner that the tree's vertical scroller may have come or gone.
    void ResetVertScrollBar();
    HTREEITEM GetLastClickedItem() const { return mLastClicked; }

    // --- TreeListTable ---------------------------------------------------------------
    const TreeAccess& GetTree() const override { return *this; }

signals:
    /// The selection was changed by hand (selection states 1 and 2).
    void SelChanged();
    /// A double click, after the tree's own handling.
    void DoubleClicked();

protected:
    Item* NewItem(const char* text) override;
    unsigned int OnItemFlags() const override { return TVHT_ONITEM | TVHT_ONITEMINDENT | TVHT_ONITEMRIGHT; }
    void OnLButtonDown(QMouseEvent* event) override;
    void OnRButtonDown(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    class RowPainter;
    friend class RowPainter;
    friend class TsTreeListCtrl;
    void MarkParent(HTREEITEM parent);
    void Recount(HTREEITEM parent);
    /// The sections of the header changed: totals, the tree's width, the owner's scroller.
    void OnColumnsChanged();
    void PaintRow(QPainter& painter, const QStyleOptionViewItem& option, HTREEITEM item) const;

    TsTreeListCtrl* mOwner;
    CNewHeaderCtrl* mHeader;
    QStandardItemModel* mColumns;
    int mOffset = 0;
    bool mGroupsFirst = true;
    int mColumnCount = 0;
    int mColumnsWidth = 0;
    HTREEITEM mLastClicked = nullptr;
};
