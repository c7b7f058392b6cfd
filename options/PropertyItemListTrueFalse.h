#pragma once
// A two-state row: true or false, entry 0 standing for false.

#include <KORVAutlwin/options/PropertyItemListTwoState.h>

/// A two-state row: false or true.
class PropertyItemListTrueFalse : public PropertyItemListTwoState
{
public:
    PropertyItemListTrueFalse(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId)
        : PropertyItemListTwoState(nameId, propertyId, descriptionId, msStringIds)
    {
    }
    PropertyItemListTrueFalse(const char* name, unsigned int propertyId, const char* description)
        : PropertyItemListTwoState(name, propertyId, description, msStringIds)
    {
    }

    /// The string ids of entry 0 (false) and entry 1 (true).
    static constexpr unsigned int msStringIds[2] = {16157, 16159};
};
