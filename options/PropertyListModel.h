#pragma once
// The rows of a property grid, without the window: which item each row shows,
// the selection, collapsing and expanding categories, first-letter search,
// selecting by property id, and the commit of the in-place control. The grid
// (PropertyListCtrl) derives from it and adds measuring, painting, the mouse,
// the keys and the in-place control itself.

#include <vector>

class PropertyItem;
class PropertyItemCategory;
class PropertyItemManager;
class PropertyListCtrl;
class QWidget;

/// The rows of a property grid without the window: selection, collapse and expand, search, commit.
class PropertyListModel
{
public:
    /// `self` is the grid that OnDataChanged is told of (null for rows without a window).
    explicit PropertyListModel(PropertyListCtrl* self = nullptr);
    PropertyListModel(const PropertyListModel&) = delete;
    PropertyListModel& operator=(const PropertyListModel&) = delete;
    virtual ~PropertyListModel();

    /// Stores `manager` (not owned) and has it fill the rows (PropertyItemManager::InitControl).
    void SetPropertyItemManager(PropertyItemManager* manager);
    PropertyItemManager* GetPropertyItemManager() const { return mManager; }

    int GetCount() const { return static_cast<int>(mRows.size()); }
    /// Inserts a row showing `item` (not owned) before row `index`; -1 or the count appends.
    /// Returns the row, or -1 for an index out of range.
    int InsertPropertyItem(PropertyItem* item, int index);
    /// Removes row `index`; false when there is none.
    bool DeleteString(int index);
    /// The item of row `index`, or null when `index` is negative or at or past the count.
    PropertyItem* GetPropertyItem(int index) const;
    /// No in-place control, no rows.
    virtual void ResetContent();

    /// The selected row, or -1.
    int GetCurSel() const { return mCurSel; }
    /// Selects row `index` (-1: none) and nothing else: no in-place control,
    /// no details. False for an index out of range, which clears the selection.
    virtual bool SetCurSel(int index);

    /// Removes the rows of `category`'s children behind row `index` and marks it collapsed.
    void DoCollapse(PropertyItemCategory* category, int index);
    /// Inserts `category`'s children behind row `index`, moving `index` to the
    /// last of them, and marks it expanded.
    void DoExpand(PropertyItemCategory* category, int& index);
    /// Toggles the category of row `index` (`item` null: the row's item); a row
    /// that is no category is left alone. A pending edit is committed first and
    /// its control destroyed.
    void DoCollapseExpand(int index, PropertyItem* item = nullptr);

    /// Selects the next row after the selection whose name starts with `letter`
    /// (case ignored), wrapping to the first row; false when none does.
    bool LookupPropertyItem(char letter);
    /// The same for any character (the names are UTF-8).
    bool LookupPropertyItem(char32_t letter);
    /// The first row from `start` up to (not including) `count` whose name
    /// starts with `letter`, case ignored; -1 when none.
    int FindPropertyItem(char letter, int start, int count) const;
    /// The same for any character.
    int FindPropertyItem(char32_t letter, int start, int count) const;
    /// Selects the first row showing property `id`. A collapsed category's
    /// children are searched instead of the category itself, and a match among
    /// them expands it. Categories have id 0. False when nothing matches.
    bool SetCurSelByID(unsigned int id);

    /// The commit: with an in-place control and a selection, the selected item
    /// takes the control's value and the manager is told; true then, else false.
    bool SetCurrentData();
    /// Destroys the in-place control, if any. The base only forgets it.
    virtual void NoInPlaceControl();
    QWidget* GetInPlaceControl() const { return mInPlaceControl; }

    /// The height of row `index`, measured (MeasureItem) when it is first asked for.
    int GetRowHeight(int index) const;

protected:
    /// The height of a new row showing `item`; the base measures nothing (0).
    virtual int MeasureItem(PropertyItem* item);
    /// Called after rows were inserted or removed.
    virtual void OnRowsChanged();

    /// A row's height before MeasureItem has run for it.
    static constexpr int kUnmeasured = -1;
    struct Row
    {
        PropertyItem* item;
        int height;
    };

    QWidget* mInPlaceControl = nullptr;
    PropertyItemManager* mManager = nullptr;
    bool mShowDetails = true;
    bool mFrameDirty = true;
    // Rows are measured lazily: thousands of rows inserted at once cost nothing
    // until they are shown.
    mutable std::vector<Row> mRows;
    int mCurSel = -1;
    PropertyListCtrl* mSelf;
};
