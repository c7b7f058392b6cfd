#pragma once
// Edit and browse for a file: an open dialog seeded with the data.

#include <KORVAutlwin/options/PropertyInPlaceEditAndBrowse.h>

/// The in-place control of file path rows: the path, and a file dialog ("Select File") behind "...".
class PropertyInPlaceBrowseForFile : public PropertyInPlaceEditAndBrowse
{
    Q_OBJECT
public:
    /// A new control (child id 1) over `cell` of `parent` (the grid).
    static PropertyInPlaceBrowseForFile* CreateInPlaceControl(QWidget* parent, QRect cell);
    /// "Select File" with the button "Select", no filter; the chosen path becomes the data.
    bool OnBrowse() override;

protected:
    using PropertyInPlaceEditAndBrowse::PropertyInPlaceEditAndBrowse;
};
