#pragma once
// A row holding the path of a folder, typed or chosen through a PropertyInPlaceBrowseForFolder.
// It keeps its text as a string row does; only the painting and the control differ.

#include <KORVAutlwin/options/PropertyItemString.h>

/// A row holding a folder path, chosen by typing or through a folder dialog.
class PropertyItemFolderPath : public PropertyItemString
{
public:
    using PropertyItemString::PropertyItemString;
    using PropertyItemString::SetData;

    /// Paints the path, compacted with "..." to fit the cell.
    void DrawValue(QPainter* dc, QRect cell) override;
    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the control's data.
    void SetData(QWidget* control) override;
};
