#pragma once
// The window side of the property items: which in-place control each kind of
// row gets, and how its value comes back. Installed by the first PropertyListCtrl.

#include <KORVAutlwin/options/PropertyItemControls.h>

/// The Qt implementation of PropertyItemControls, installed by the first PropertyListCtrl.
class PropertyItemInPlaceControls : public PropertyItemControls
{
public:
    /// Installs the one instance as the items' window side.
    static void Install();

    QWidget* CreateInPlaceControl(PropertyItemString& item, QWidget* parent, QRect cell) override;
    QWidget* CreateInPlaceControl(PropertyItemNumber& item, QWidget* parent, QRect cell) override;
    QWidget* CreateInPlaceControl(PropertyItemNegNumber& item, QWidget* parent, QRect cell) override;
    QWidget* CreateInPlaceControl(PropertyItemFloat& item, QWidget* parent, QRect cell) override;
    QWidget* CreateInPlaceControl(PropertyItemList& item, QWidget* parent, QRect cell) override;
    QWidget* CreateInPlaceControl(PropertyItemFolderPath& item, QWidget* parent, QRect cell) override;
    QWidget* CreateInPlaceControl(PropertyItemFilePath& item, QWidget* parent, QRect cell) override;
    QWidget* CreateInPlaceControl(PropertyItemColorPopup& item, QWidget* parent, QRect cell) override;

    void SetData(PropertyItemString& item, QWidget* control) override;
    void SetData(PropertyItemNumber& item, QWidget* control) override;
    void SetData(PropertyItemFloat& item, QWidget* control) override;
    void SetData(PropertyItemList& item, QWidget* control) override;
    void SetData(PropertyItemFolderPath& item, QWidget* control) override;
    void SetData(PropertyItemFilePath& item, QWidget* control) override;
    void SetData(PropertyItemColorPopup& item, QWidget* control) override;
};
