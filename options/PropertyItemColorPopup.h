#pragma once
// A row holding a colour: a swatch and its channels, chosen through a
// PropertyInPlaceBrowseForColor.

#include <KORVAutlwin/options/PropertyItem.h>
#include <KORVAutlwin/toolkit/ColorRef.h>

/// A row holding a colour (COLORREF), painted as a swatch and its channels.
class PropertyItemColorPopup : public PropertyItem
{
public:
    PropertyItemColorPopup(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemColorPopup(const char* name, unsigned int propertyId, const char* description);

    /// A swatch 30 pixels wide, then "R: %d G: %d B: %d".
    void DrawValue(QPainter* dc, QRect cell) override;
    /// Paints the swatch first, so that it stays visible, and puts the control 33 pixels to its right.
    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the control's colour and has the grid rebuild the control around the new swatch.
    void SetData(QWidget* control) override;

    void GetData(COLORREF& value) const { value = mValue; }
    void SetData(COLORREF value) { mValue = value; }

    /// "R: %d G: %d B: %d" of `color`.
    static std::string FormatColor(COLORREF color);

protected:
    COLORREF mValue = 0;
};
