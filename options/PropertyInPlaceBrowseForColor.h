#pragma once
// Browse for a colour: a read-only "R: G: B:" line and the colour dialog.

#include <KORVAutlwin/options/PropertyInPlaceEditAndBrowse.h>
#include <KORVAutlwin/toolkit/ColorRef.h>

/// The in-place control of colour rows: the channels as text, and a colour dialog behind "...".
class PropertyInPlaceBrowseForColor : public PropertyInPlaceEditAndBrowse
{
    Q_OBJECT
public:
    /// A new control (child id 1) over `cell` of `parent` (the grid).
    static PropertyInPlaceBrowseForColor* CreateInPlaceControl(QWidget* parent, QRect cell);
    /// The colour dialog, starting at the stored colour; a chosen colour is stored and shown.
    bool OnBrowse() override;

    /// "R: %d G: %d B: %d" of `color`.
    static std::string FormatEditString(COLORREF color);
    /// Stores `color` and shows its text.
    void SetData(COLORREF color);
    COLORREF GetData() const { return mColor; }

protected:
    explicit PropertyInPlaceBrowseForColor(QWidget* parent);

private:
    COLORREF mColor = 0;
};
