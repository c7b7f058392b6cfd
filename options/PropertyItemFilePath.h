#pragma once
// A row holding the path of a file, typed or chosen through a PropertyInPlaceBrowseForFile.

#include <KORVAutlwin/options/PropertyItemPath.h>

/// A row holding a file path, chosen by typing or through a file dialog.
class PropertyItemFilePath : public PropertyItemPath
{
public:
    using PropertyItemPath::PropertyItemPath;
    using PropertyItemPath::SetData;

    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the control's data.
    void SetData(QWidget* control) override;
};
