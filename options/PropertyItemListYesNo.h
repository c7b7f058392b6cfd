#pragma once
// A two-state row: yes or no, entry 0 standing for false.

#include <KORVAutlwin/options/PropertyItemListTwoState.h>

/// A two-state row: no (false) or yes (true).
class PropertyItemListYesNo : public PropertyItemListTwoState
{
public:
    PropertyItemListYesNo(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
        : PropertyItemListTwoState(nameId, propertyId, descriptionId, msStringIds)
    {
    }
    PropertyItemListYesNo(const char* name, unsigned int propertyId, const char* description)
        : PropertyItemListTwoState(name, propertyId, description, msStringIds)
    {
    }

    /// The string ids of entry 0 (false) and entry 1 (true).
    static constexpr unsigned int msStringIds[2] = {16158, 16160};
};
