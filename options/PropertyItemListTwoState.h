#pragma once
// A two-state row, entry 0 standing for false and entry 1 for true; the named
// kinds differ only in the two strings they show.

#include <KORVAutlwin/options/PropertyItemList.h>

/// A two-state row whose two entries are language strings: false first, then true.
class PropertyItemListTwoState : public PropertyItemList
{
public:
    /// `stringIds` holds the ids of entry 0 (false) and entry 1 (true) and outlives the row.
    PropertyItemListTwoState(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId,
                             const unsigned int (&stringIds)[2]);
    PropertyItemListTwoState(const char* name, unsigned int propertyId, const char* description,
                             const unsigned int (&stringIds)[2]);

    /// Always 2.
    unsigned int GetNumItems() override;
    /// The string of entry 0 or 1, empty from 2 on.
    std::string GetItemData(unsigned int index) override;

    using PropertyItemList::GetData;
    using PropertyItemList::SetData;
    /// Entry 0 is false, any other true.
    void GetData(bool& value) const { value = mValue != 0; }
    /// Stores entry 1 for true, 0 for false.
    void SetData(bool value) { mValue = value ? 1 : 0; }

private:
    const unsigned int* mStringIds;
};
