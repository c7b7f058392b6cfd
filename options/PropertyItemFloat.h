#pragma once
// A row holding a 32-bit float.

#include <KORVAutlwin/options/PropertyItem.h>

class PropertyInPlaceEdit;

/// A row holding a 32-bit float.
class PropertyItemFloat : public PropertyItem
{
public:
    PropertyItemFloat(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemFloat(const char* name, unsigned int propertyId, const char* description);

    void DrawValue(QPainter* dc, QRect cell) override;
    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Reads the control's text with AcceptText.
    void SetData(QWidget* control) override;

    void GetData(float& value) const { value = mValue; }
    void SetData(float value) { mValue = value; }

    /// The value widened to double, through "%g" (with "." whatever the locale).
    std::string GetValueText() const;
    /// TsString::ToFloat straight into the value: text that is no number leaves it alone.
    bool AcceptText(const char* text);

    /// The edit's validate function, `context` being the item: text that is no
    /// number goes back to the present value, without a message.
    static void ValidateFunc(PropertyInPlaceEdit* edit, void* context);
    /// What ValidateFunc does to the text (see PropertyItemNegNumber::ValidateText).
    bool ValidateText(std::string& text) const;

protected:
    float mValue = 0.0f;
};
