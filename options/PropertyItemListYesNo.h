#pragma once
// A two-state row: yes or no, entry 0 standing for false.

#include <KORVAutlwin/options/PropertyItemList.h>

/// A two-state row: no (false) or yes (true).
class PropertyItemListYesNo : public PropertyItemList
{
public:
    PropertyItemListYesNo(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemListYesNo(const char* name, unsigned int propertyId, const char* description);

    /// Always 2.
    unsigned int GetNumItems() override;
    /// String 16158 for entry 0, string 16160 for entry 1, empty from 2 on.
    std::string GetItemData(unsigned int index) override;

    using PropertyItemList::GetData;
    using PropertyItemList::SetData;
    /// Entry 0 is false, any other true.
    void GetData(bool& value) const { value = mValue != 0; }
    /// Stores entry 1 for true, 0 for false.
    void SetData(bool value) { mValue = value ? 1 : 0; }

    /// The string ids of entry 0 (false) and entry 1 (true).
    static constexpr unsigned int msStringIds[2] = {16158, 16160};
};
