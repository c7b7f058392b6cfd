#pragma once
// A row choosing one entry of a list, by its zero-based index, in a
// PropertyInPlaceComboBox. The base has no entries; the derived classes say
// what they are.

#include <KORVAutlwin/options/PropertyItem.h>

class PropertyInPlaceComboBox;

/// A row choosing one entry of a list by its index.
class PropertyItemList : public PropertyItem
{
public:
    PropertyItemList(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemList(const char* name, unsigned int propertyId, const char* description);

    /// Paints GetItemData(value).
    void DrawValue(QPainter* dc, QRect cell) override;
    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the combo's current selection.
    void SetData(QWidget* control) override;
    virtual unsigned int GetNumItems();
    /// Entry `index`'s text; empty past the last entry.
    virtual std::string GetItemData(unsigned int index);

    void GetData(int& value) const { value = mValue; }
    void SetData(int value) { mValue = value; }

    /// Adds every entry, from index 0 upwards, to `combo`, each with item data 0.
    /// (Defined with the window side of the grid.)
    void SetItemListData(PropertyInPlaceComboBox* combo);

protected:
    int mValue = 0;
};
