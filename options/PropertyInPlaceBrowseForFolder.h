#pragma once
// Edit and browse for a folder: the browser shows the folders only, seeded with the data.

#include <KORVAutlwin/options/PropertyInPlaceEditAndBrowse.h>

/// The in-place control of folder path rows: the path, and a folder dialog ("Select Folder") behind "...".
class PropertyInPlaceBrowseForFolder : public PropertyInPlaceEditAndBrowse
{
    Q_OBJECT
public:
    /// A new control (child id 1) over `cell` of `parent` (the grid).
    static PropertyInPlaceBrowseForFolder* CreateInPlaceControl(QWidget* parent, QRect cell);
    /// "Select Folder", starting at the data; the chosen folder becomes the data.
    bool OnBrowse() override;

protected:
    using PropertyInPlaceEditAndBrowse::PropertyInPlaceEditAndBrowse;
};
