#pragma once
// Owns the categories of a property grid (and through them every item), fills
// a grid with them, and is told after each edit.

#include <string>
#include <vector>

class PropertyItem;
class PropertyItemCategory;
class PropertyListCtrl;
class PropertyListModel;

/// Owns the categories of a property grid and is told after every edit.
class PropertyItemManager
{
public:
    PropertyItemManager();
    // It owns its categories, so a copy would delete them twice.
    PropertyItemManager(const PropertyItemManager&) = delete;
    PropertyItemManager& operator=(const PropertyItemManager&) = delete;
    /// Deletes every category, and so every item.
    virtual ~PropertyItemManager();

    /// Called after `item`, row `index` of `list`, took an edited value. Does nothing here.
    virtual void OnDataChanged(PropertyItem* item, PropertyListCtrl* list, int index);
    /// Called once by an options page, with 0, before the manager is bound to its grid.
    virtual void OnInitManager(unsigned long param) = 0;
    /// Free for a derived manager's own use; this library never calls it.
    virtual void OnManagerCommand(unsigned long param) = 0;

    /// Creates a category, appends it and returns it (still owned here).
    PropertyItemCategory* AddPropertyCategory(const char* name, const char* description, bool childrenVisible);
    PropertyItemCategory* AddPropertyCategory(unsigned int nameId, unsigned int descriptionId, bool childrenVisible);
    /// Category `index`, or null when `index` is negative or at or past the count.
    PropertyItemCategory* GetPropertyCategory(int index) const;
    int GetNumCategories() const { return mNumCategories; }

    /// Fills `list` (a PropertyListCtrl): no in-place control, no rows, then each
    /// category in order, with its children behind it where they are visible.
    void InitControl(PropertyListModel* list);

protected:
    std::vector<PropertyItemCategory*> mCategories;
    int mNumCategories = 0;

private:
    // Takes `category` into the list; deleted again when the list cannot grow.
    PropertyItemCategory* AddCategory(PropertyItemCategory* category);
};
