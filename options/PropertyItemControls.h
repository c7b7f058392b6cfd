#pragma once
// The window side of the property items: creating each kind's in-place control
// and reading the value back out of it. The items are window-free; the grid's
// layer installs the one implementation when its first PropertyListCtrl is made.
// Without it, items create no control and take nothing back.

#include <QRect>

class QWidget;
class PropertyItemString;
class PropertyItemNumber;
class PropertyItemNegNumber;
class PropertyItemFloat;
class PropertyItemList;
class PropertyItemFolderPath;
class PropertyItemFilePath;
class PropertyItemColorPopup;

/// The window side of the property items: creates their in-place controls and reads values back.
class PropertyItemControls
{
public:
    virtual ~PropertyItemControls();

    /// The installed window side, or null.
    static PropertyItemControls* Get();
    /// Installs `controls` (not owned; it lives to process end); null removes it.
    static void Set(PropertyItemControls* controls);

    virtual QWidget* CreateInPlaceControl(PropertyItemString& item, QWidget* parent, QRect cell) = 0;
    virtual QWidget* CreateInPlaceControl(PropertyItemNumber& item, QWidget* parent, QRect cell) = 0;
    virtual QWidget* CreateInPlaceControl(PropertyItemNegNumber& item, QWidget* parent, QRect cell) = 0;
    virtual QWidget* CreateInPlaceControl(PropertyItemFloat& item, QWidget* parent, QRect cell) = 0;
    virtual QWidget* CreateInPlaceControl(PropertyItemList& item, QWidget* parent, QRect cell) = 0;
    virtual QWidget* CreateInPlaceControl(PropertyItemFolderPath& item, QWidget* parent, QRect cell) = 0;
    virtual QWidget* CreateInPlaceControl(PropertyItemFilePath& item, QWidget* parent, QRect cell) = 0;
    virtual QWidget* CreateInPlaceControl(PropertyItemColorPopup& item, QWidget* parent, QRect cell) = 0;

    virtual void SetData(PropertyItemString& item, QWidget* control) = 0;
    virtual void SetData(PropertyItemNumber& item, QWidget* control) = 0;
    virtual void SetData(PropertyItemFloat& item, QWidget* control) = 0;
    virtual void SetData(PropertyItemList& item, QWidget* control) = 0;
    virtual void SetData(PropertyItemFolderPath& item, QWidget* control) = 0;
    virtual void SetData(PropertyItemFilePath& item, QWidget* control) = 0;
    virtual void SetData(PropertyItemColorPopup& item, QWidget* control) = 0;
};
