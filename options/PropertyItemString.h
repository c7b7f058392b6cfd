#pragma once
// A row holding free text, edited in a PropertyInPlaceEdit.

#include <KORVAutlwin/options/PropertyItem.h>

/// A row holding a text.
class PropertyItemString : public PropertyItem
{
public:
    PropertyItemString(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemString(const char* name, unsigned int propertyId, const char* description);

    void DrawValue(QPainter* dc, QRect cell) override;
    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the control's text.
    void SetData(QWidget* control) override;

    void GetData(std::string& value) const { value = mValue; }
    void SetData(const std::string& value) { mValue = value; }

protected:
    std::string mValue;
};
