#pragma once
// A two-state row: enabled or disabled, entry 0 standing for false.

#include <KORVAutlwin/options/PropertyItemListTwoState.h>

/// A two-state row: disabled (false) or enabled (true).
class PropertyItemListEnabledDisabled : public PropertyItemListTwoState
{
public:
    PropertyItemListEnabledDisabled(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
        : PropertyItemListTwoState(nameId, propertyId, descriptionId, msStringIds)
    {
    }
    PropertyItemListEnabledDisabled(const char* name, unsigned int propertyId, const char* description)
        : PropertyItemListTwoState(name, propertyId, description, msStringIds)
    {
    }

    /// The string ids of entry 0 (false) and entry 1 (true).
    static constexpr unsigned int msStringIds[2] = {16155, 16156};
};
