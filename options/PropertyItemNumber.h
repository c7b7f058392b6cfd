#pragma once
// A row holding a signed 32-bit number, edited in a digits-only edit.

#include <KORVAutlwin/options/PropertyItem.h>

/// A row holding a signed 32-bit number.
class PropertyItemNumber : public PropertyItem
{
public:
    PropertyItemNumber(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemNumber(const char* name, unsigned int propertyId, const char* description);

    void DrawValue(QPainter* dc, QRect cell) override;
    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the control's text through AcceptText; a refused text shows
    /// "Value out of range" and the control gets the old value back.
    void SetData(QWidget* control) override;

    void GetData(int& value) const { value = mValue; }
    void SetData(int value) { mValue = value; }

    /// The value's text form, "%d".
    std::string GetValueText() const;
    /// Reads `text` as atoi does on the platform the suite came from: leading
    /// blanks, a sign, digits up to the first other character, and a result held
    /// at -2147483648 or 2147483647 when it overflows. Those two results are
    /// refused (false, value unchanged), so neither can ever be entered; any other
    /// result becomes the value.
    bool AcceptText(const char* text);
    /// That atoi: see AcceptText.
    static int Atoi(const char* text);

protected:
    int mValue = 0;
};
