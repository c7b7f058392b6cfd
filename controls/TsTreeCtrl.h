#pragma once
// The tree control of the suite: a Qt tree with three selection states and
// Shift/Ctrl ranges, tri-state check boxes that propagate up and down, per-item
// colour, font and bold, an image tiled behind the items, drag and drop inside
// the tree with copy or move and hover expansion, search with wrap-around, the
// tab-indented text form and a Ctrl+C callback. The rules live in TreeRules.

#include <KORVAutlwin/controls/TreeAccess.h>
#include <KORVAutlwin/controls/TreeRules.h>
#include <KORVAutlwin/toolkit/ColorRef.h>
#include <KORVAutlwin/toolkit/LogFont.h>

#include <QPixmap>
#include <QTreeWidget>

#include <functional>
#include <map>

class QIODevice;

// Styles, with their Win32 numbers.
constexpr unsigned long TVS_HASBUTTONS = 0x0001;
constexpr unsigned long TVS_HASLINES = 0x0002;
constexpr unsigned long TVS_LINESATROOT = 0x0004;
constexpr unsigned long TVS_DISABLEDRAGDROP = 0x0010;
constexpr unsigned long TVS_SHOWSELALWAYS = 0x0020;
constexpr unsigned long TVS_CHECKBOXES = 0x0100;
// Item state bits.
constexpr unsigned int TVIS_SELECTED = 0x0002;
constexpr unsigned int TVIS_DROPHILITED = 0x0008;
constexpr unsigned int TVIS_BOLD = 0x0010;
constexpr unsigned int TVIS_EXPANDED = 0x0020;
constexpr unsigned int TVIS_STATEIMAGEMASK = 0xF000;
// Hit test flags.
constexpr unsigned int TVHT_NOWHERE = 0x0001;
constexpr unsigned int TVHT_ONITEMICON = 0x0002;
constexpr unsigned int TVHT_ONITEMLABEL = 0x0004;
constexpr unsigned int TVHT_ONITEMINDENT = 0x0008;
constexpr unsigned int TVHT_ONITEMBUTTON = 0x0010;
constexpr unsigned int TVHT_ONITEMRIGHT = 0x0020;
constexpr unsigned int TVHT_ONITEMSTATEICON = 0x0040;
constexpr unsigned int TVHT_ONITEM = TVHT_ONITEMICON | TVHT_ONITEMLABEL | TVHT_ONITEMSTATEICON;
// Expand codes.
constexpr unsigned int TVE_COLLAPSE = 0x0001;
constexpr unsigned int TVE_EXPAND = 0x0002;
constexpr unsigned int TVE_TOGGLE = 0x0003;
/// Insert as last child.
inline const HTREEITEM TVI_LAST = reinterpret_cast<HTREEITEM>(static_cast<uintptr_t>(-0xFFFE));
inline const HTREEITEM TVI_FIRST = reinterpret_cast<HTREEITEM>(static_cast<uintptr_t>(-0xFFFF));

/// The suite's tree control on QTreeWidget: selection states, check boxes
/// that propagate, appearance, drag and drop, search, text form, Ctrl+C.
class TsTreeCtrl : public QTreeWidget, public TreeAccess
{
    Q_OBJECT

public:
    enum SelectionState
    {
        eSingleSelection = 0,
        eMultiSelection = 1,
        eOneLeafPerParent = 2
    };
    /// Milliseconds of hovering during a drag before an item opens.
    static constexpr int kHoverDelay = 750;

    /// The items of the tree: they sort by the comparison given to SortChildren.
    class Item : public QTreeWidgetItem
    {
    public:
        Item() = default;
        bool operator<(const QTreeWidgetItem& other) const override;
    };

    explicit TsTreeCtrl(QWidget* parent = nullptr, unsigned long style = TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT);
    ~TsTreeCtrl() override;

    unsigned long GetStyle() const { return mStyle; }
    void ModifyStyle(unsigned long remove, unsigned long add);

    // --- the platform tree's operations ---------------------------------------
    HTREEITEM InsertItem(const char* text, HTREEITEM parent = nullptr, HTREEITEM after = TVI_LAST);
    virtual HTREEITEM InsertItem(const char* text, int image, int selectedImage, HTREEITEM parent = nullptr,
                                 HTREEITEM after = TVI_LAST);
    virtual bool DeleteItem(HTREEITEM item);
    virtual bool DeleteAllItems();
    std::string GetItemText(HTREEITEM item) const override;
    virtual bool SetItemText(HTREEITEM item, const char* text);
    virtual uintptr_t GetItemData(HTREEITEM item) const;
    virtual bool SetItemData(HTREEITEM item, uintptr_t data);
    unsigned int GetItemState(HTREEITEM item, unsigned int mask) const;
    bool SetItemState(HTREEITEM item, unsigned int state, unsigned int mask);
    bool ItemHasChildren(HTREEITEM item) const { return GetChildItem(item) != nullptr; }
    bool Expand(HTREEITEM item, unsigned int code);
    void EnsureVisible(HTREEITEM item);
    HTREEITEM GetSelectedItem() const;
    bool SelectItem(HTREEITEM item);
    /// The item at a viewport point and where on it (TVHT_*).
    HTREEITEM HitTest(QPoint point, unsigned int* flags = nullptr) const;
    void SelectDropTarget(HTREEITEM item);
    /// An insert mark behind (after true) or in front of `item`; null removes it.
    void SetInsertMark(HTREEITEM item, bool after = true);
    HTREEITEM GetDropHilightItem() const { return mDropHighlight; }
    HTREEITEM GetInsertMarkItem() const { return mInsertMark; }
    static QTreeWidgetItem* Q(HTREEITEM item) { return static_cast<QTreeWidgetItem*>(item); }
    static HTREEITEM H(const QTreeWidgetItem* item) { return const_cast<QTreeWidgetItem*>(item); }

    // --- TreeAccess -----------------------------------------------------------
    HTREEITEM GetRootItem() const override;
    HTREEITEM GetParentItem(HTREEITEM item) const override;
    HTREEITEM GetChildItem(HTREEITEM item) const override;
    HTREEITEM GetNextSiblingItem(HTREEITEM item) const override;
    HTREEITEM GetPrevSiblingItem(HTREEITEM item) const override;
    HTREEITEM InsertItem(const std::string& text, HTREEITEM parent) override;
    int GetCheckIndex(HTREEITEM item) const override;
    void SetCheckIndex(HTREEITEM item, int index) override;
    void SortChildren(HTREEITEM parent, const std::function<int(HTREEITEM, HTREEITEM)>& compare) override;

    // --- navigation -----------------------------------------------------------
    HTREEITEM GetNextItem(HTREEITEM item) const { return TreeRules::GetNextItem(*this, item); }
    HTREEITEM GetPrevItem(HTREEITEM item) const { return TreeRules::GetPrevItem(*this, item); }
    HTREEITEM GetLastItem(HTREEITEM item) const { return TreeRules::GetLastItem(*this, item); }
    int GetIndentLevel(HTREEITEM item) const { return TreeRules::GetIndentLevel(*this, item); }
    int GetNumChildren(HTREEITEM item) const { return TreeRules::GetNumChildren(*this, item); }

    // --- selection ------------------------------------------------------------
    virtual HTREEITEM GetFirstSelectedItem() const;
    virtual HTREEITEM GetNextSelectedItem(HTREEITEM item) const;
    virtual HTREEITEM GetPrevSelectedItem(HTREEITEM item) const;
    int GetSelectedItemCount() const;
    virtual void ClearSelection();
    virtual void EnableMultiSelect(bool multi) { SetSelectionState(multi ? eMultiSelection : eSingleSelection); }
    virtual void SetSelectionState(int state);
    virtual int GetSelectionState() const { return mSelectionState; }
    /// State 1 only: the visible items from first to last, in either order.
    virtual int SelectItems(HTREEITEM first, HTREEITEM last);
    virtual void EnableDelete(bool enable) { mDeleteEnabled = enable; }

    // --- check boxes ------------------------------------------------------------
    bool GetCheck(HTREEITEM item) const { return TreeRules::GetCheck(*this, item); }
    int SetCheck(HTREEITEM item, int type) { return TreeRules::SetCheck(*this, item, type); }
    void CheckAllChildItems(HTREEITEM item, int state) { TreeRules::CheckAllChildItems(*this, item, state); }
    bool AllChildrenChecked(HTREEITEM item, bool checked) const
    {
        return TreeRules::AllChildrenChecked(*this, item, checked);
    }
    HTREEITEM GetFirstCheckedItem() const { return TreeRules::GetFirstCheckedItem(*this); }
    HTREEITEM GetNextCheckedItem(HTREEITEM item) const { return TreeRules::GetNextCheckedItem(*this, item); }
    HTREEITEM GetPrevCheckedItem(HTREEITEM item) const { return TreeRules::GetPrevCheckedItem(*this, item); }
    /// The check box strip; a subclass may install its own.
    virtual void SetStateImageList();

    // --- appearance ---------------------------------------------------------------
    /// -1 removes the colour.
    virtual void SetItemColor(HTREEITEM item, COLORREF colour);
    virtual COLORREF GetItemColor(HTREEITEM item) const;
    virtual void SetItemFont(HTREEITEM item, const LOGFONT& font);
    /// 1 with the font filled in, 0 when no font was set.
    virtual int GetItemFont(HTREEITEM item, LOGFONT* font) const;
    virtual void SetItemBold(HTREEITEM item, bool bold);
    virtual bool GetItemBold(HTREEITEM item) const;
    /// Tiles the picture of the file behind the items; 0 if it can't be loaded.
    int SetBkImage(const char* fileName);

    // --- structure ----------------------------------------------------------------
    virtual HTREEITEM CopyItem(HTREEITEM item, HTREEITEM parent, HTREEITEM after = TVI_LAST);
    HTREEITEM CopyBranch(HTREEITEM item, HTREEITEM parent, HTREEITEM after = TVI_LAST);
    void ExpandBranch(HTREEITEM item, unsigned int action);
    void ExpandAll(unsigned int action);
    /// With ask, only the answer Yes to message 13329 deletes.
    virtual void DeleteSelectedItems(bool ask);
    /// Stores the tree as tab-indented lines, or loads them.
    void Serialize(QIODevice& archive, bool storing);
    /// Null for empty text; the search starts at `start` or the current item.
    virtual HTREEITEM FindItem(const char* text, bool matchCase, bool down, bool wholeWord, HTREEITEM start = nullptr);

    // --- copy ---------------------------------------------------------------------
    void SetUserHasCopiedDataCallBack(std::function<void()> callback) { mCopiedDataCallback = std::move(callback); }
    void CopySelection();

    // --- hooks ----------------------------------------------------------------------
    virtual void DeleteItemData(HTREEITEM) {}
    virtual void OnItemCopied(HTREEITEM, HTREEITEM) {}
    virtual bool IsFindValid(HTREEITEM) { return true; }
    virtual bool IsDropSource(HTREEITEM) { return true; }
    /// Null for the source, its parent or anything below it.
    virtual HTREEITEM GetDropTarget(HTREEITEM item, bool& inside);
    virtual void OnSelectionChanged() {}
    virtual void UpdateDropTarget(QPoint point);

    bool IsDragging() const { return mDragging; }

signals:
    /// After a right press has been handled, for the owner's context menu.
    void RButtonDown();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

    virtual void OnLButtonDown(QMouseEvent* event);
    virtual void OnRButtonDown(QMouseEvent* event);
    /// The default handler: current item, expand button, no selection of its own in states 1 and 2.
    void DefaultMousePress(QMouseEvent* event) { QTreeWidget::mousePressEvent(event); }
    void BeginDrag(HTREEITEM item, QPoint point);
    void EndDrag();
    void Drop(bool ctrl);
    void RefreshDragCursor(bool ctrl);
    virtual QPixmap CreateDragImageEx(HTREEITEM item);
    void ApplyAppearance(HTREEITEM item);
    /// A new item with `text`, not yet in the tree.
    virtual Item* NewItem(const char* text);
    /// Puts a new item under `parent` (null: top level) behind `after`.
    void Place(QTreeWidgetItem* item, HTREEITEM parent, HTREEITEM after);
    /// Gives `to` the images of `from`.
    void CopyImages(HTREEITEM from, HTREEITEM to);
    /// What counts as a hit on the item for a press (TVHT_ONITEM here).
    virtual unsigned int OnItemFlags() const { return TVHT_ONITEM; }

    std::function<void()> mCopiedDataCallback;
    struct Appearance
    {
        COLORREF colour = CLR_NONE;
        LOGFONT font{};
        static constexpr COLORREF CLR_NONE = 0xFFFFFFFF;
    };
    std::map<HTREEITEM, Appearance> mAppearance;
    QPixmap mDragImage;
    bool mDragging = false;
    HTREEITEM mDragSource = nullptr;
    HTREEITEM mDropTarget = nullptr;
    int mHoverTimer = 0;
    QPoint mHoverPoint;
    QPoint mHotSpot;
    QPoint mPressPoint;
    HTREEITEM mPressItem = nullptr;
    HTREEITEM mRangeAnchor = nullptr;
    int mSelectionState = eSingleSelection;
    bool mDeleteEnabled = false;
    QPixmap mBkImage;
    HTREEITEM mDropHighlight = nullptr;
    HTREEITEM mInsertMark = nullptr;
    unsigned long mStyle;

private:
    void ForgetItem(QTreeWidgetItem* item);
    HTREEITEM FindSelected(HTREEITEM item, HTREEITEM (TsTreeCtrl::*step)(HTREEITEM) const) const;
};
