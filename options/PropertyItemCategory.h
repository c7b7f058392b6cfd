#pragma once
// A category row: a heading with a plus or minus box, owning the items below it.

#include <KORVAutlwin/options/PropertyItem.h>

#include <vector>

/// A category row, owning the items shown below it.
class PropertyItemCategory : public PropertyItem
{
public:
    using const_iterator = std::vector<PropertyItem*>::const_iterator;

    /// A category's property id is 0.
    PropertyItemCategory(unsigned int nameId, unsigned int descriptionId, bool childrenVisible);
    PropertyItemCategory(const char* name, const char* description, bool childrenVisible);
    // It owns its children, so a copy would delete them twice.
    PropertyItemCategory(const PropertyItemCategory&) = delete;
    PropertyItemCategory& operator=(const PropertyItemCategory&) = delete;
    /// Deletes every child.
    ~PropertyItemCategory() override;

    /// Appends `item` and takes ownership of it. An item belongs to one category only.
    void AddPropertyItem(PropertyItem* item);
    unsigned int GetNumItems() const { return mNumItems; }
    bool GetChildrenVisible() const { return mChildrenVisible; }
    void SetChildrenVisible(bool visible) { mChildrenVisible = visible; }
    const_iterator begin() const { return mItems.begin(); }
    const_iterator end() const { return mItems.end(); }

private:
    std::vector<PropertyItem*> mItems;
    unsigned int mNumItems = 0;
    bool mChildrenVisible;
};
