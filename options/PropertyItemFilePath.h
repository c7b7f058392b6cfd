#pragma once
// A row holding the path of a file, typed or chosen through a PropertyInPlaceBrowseForFile.

#include <KORVAutlwin/options/PropertyItem.h>

/// A row holding a file path, chosen by typing or through a file dialog.
class PropertyItemFilePath : public PropertyItem
{
public:
    PropertyItemFilePath(unsigned int nameId, unsigned int propertyId, unsigned int descriptionId);
    PropertyItemFilePath(const char* name, unsigned int propertyId, const char* description);

    /// Paints the path, compacted with "..." to fit the cell.
    void DrawValue(QPainter* dc, QRect cell) override;
    QWidget* CreateInPlaceControl(QWidget* parent, QRect cell) override;
    /// Takes the control's data.
    void SetData(QWidget* control) override;

    void GetData(std::string& value) const { value = mValue; }
    void SetData(const std::string& value) { mValue = value; }

protected:
    std::string mValue;
};
