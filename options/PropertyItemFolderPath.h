#pragma once
// A row holding the path of a folder, typed or chosen through a PropertyInPlaceBrowseForFolder.

#include <KORVAutlwin/options/PropertyItemPath.h>

/// A row holding a folder path, chosen by typing or through a folder dialog.
class PropertyItemFolderPath : public PropertyItemPath
{
public:
    using PropertyItemPath::PropertyItemPath;
    using PropertyItemPath::SetData;

    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the control's data.
    void SetData(QWidget* control) override;
};
