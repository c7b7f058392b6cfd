#pragma once
// A row holding the path of a file, typed or chosen through a PropertyInPlaceBrowseForFile.
// It keeps its text as a string row does; only the painting and the control differ.

#include <KORVAutlwin/options/PropertyItemString.h>

/// A row holding a file path, chosen by typing or through a file dialog.
class PropertyItemFilePath : public PropertyItemString
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
