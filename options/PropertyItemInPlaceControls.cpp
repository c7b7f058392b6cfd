#include <KORVAutlwin/options/InfoTipWnd.h>
#include <KORVAutlwin/options/PropertyInPlaceBrowseForColor.h>
#include <KORVAutlwin/options/PropertyInPlaceBrowseForFile.h>
#include <KORVAutlwin/options/PropertyInPlaceBrowseForFolder.h>
#include <KORVAutlwin/options/PropertyInPlaceComboBox.h>
#include <KORVAutlwin/options/PropertyInPlaceEdit.h>
#include <KORVAutlwin/options/PropertyItemColorPopup.h>
#include <KORVAutlwin/options/PropertyItemFilePath.h>
#include <KORVAutlwin/options/PropertyItemFloat.h>
#include <KORVAutlwin/options/PropertyItemFolderPath.h>
#include <KORVAutlwin/options/PropertyItemInPlaceControls.h>
#include <KORVAutlwin/options/PropertyItemList.h>
#include <KORVAutlwin/options/PropertyItemNegNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyListCtrl.h>

namespace {

// An edit holding `text`, focused, with the caret at the end.
QWidget* FocusedEdit(const std::string& text, QWidget* parent, QRect cell, unsigned long style,
                     PropertyValidateFunc validate, void* context)
{
    PropertyInPlaceEdit* edit =
        PropertyInPlaceEdit::CreateInPlaceControl(text.c_str(), parent, cell, style, validate, context);
    edit->SetText(text.c_str());
    edit->setFocus(Qt::OtherFocusReason);
    return edit;
}

// The two path rows: the control gets the path, and its edit the focus.
QWidget* PathControl(PropertyInPlaceEditAndBrowse* control, const std::string& path)
{
    control->SetData(path);
    control->GetEdit()->setFocus(Qt::OtherFocusReason);
    return control;
}

std::string EditText(QWidget* control) { return static_cast<QLineEdit*>(control)->text().toStdString(); }

} // namespace

void PropertyItemInPlaceControls::Install()
{
    static PropertyItemInPlaceControls controls;
    PropertyItemControls::Set(&controls);
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemString& item, QWidget* parent, QRect cell)
{
    std::string value;
    item.GetData(value);
    return FocusedEdit(value, parent, cell, 0, nullptr, nullptr);
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemNumber& item, QWidget* parent, QRect cell)
{
    return FocusedEdit(item.GetValueText(), parent, cell, ES_NUMBER, nullptr, nullptr);
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemNegNumber& item, QWidget* parent, QRect cell)
{
    return FocusedEdit(item.GetValueText(), parent, cell, 0, &PropertyItemNegNumber::ValidateFunc, &item);
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemFloat& item, QWidget* parent, QRect cell)
{
    return FocusedEdit(item.GetValueText(), parent, cell, 0, &PropertyItemFloat::ValidateFunc, &item);
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemList& item, QWidget* parent, QRect cell)
{
    PropertyInPlaceComboBox* combo = PropertyInPlaceComboBox::CreateInPlaceControl(parent, cell);
    item.SetItemListData(combo);
    int value = 0;
    item.GetData(value);
    combo->SetCurSel(value, false);
    combo->ResetListBoxHeight();
    return combo;
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemFolderPath& item, QWidget* parent, QRect cell)
{
    std::string path;
    item.GetData(path);
    return PathControl(PropertyInPlaceBrowseForFolder::CreateInPlaceControl(parent, cell), path);
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemFilePath& item, QWidget* parent, QRect cell)
{
    std::string path;
    item.GetData(path);
    return PathControl(PropertyInPlaceBrowseForFile::CreateInPlaceControl(parent, cell), path);
}

QWidget* PropertyItemInPlaceControls::CreateInPlaceControl(PropertyItemColorPopup& item, QWidget* parent, QRect cell)
{
    // The swatch stays visible: the grid paints the value left of the control.
    PropertyInPlaceBrowseForColor* control =
        PropertyInPlaceBrowseForColor::CreateInPlaceControl(parent, cell.adjusted(33, 0, 0, 0));
    COLORREF color = 0;
    item.GetData(color);
    control->SetData(color);
    return control;
}

void PropertyItemInPlaceControls::SetData(PropertyItemString& item, QWidget* control)
{
    item.SetData(EditText(control));
}

void PropertyItemInPlaceControls::SetData(PropertyItemNumber& item, QWidget* control)
{
    if (!item.AcceptText(EditText(control).c_str())) {
        InfoTipWnd::InfoTipMessageBox("Value out of range");
        static_cast<QLineEdit*>(control)->setText(QString::fromStdString(item.GetValueText()));
    }
}

void PropertyItemInPlaceControls::SetData(PropertyItemFloat& item, QWidget* control)
{
    item.AcceptText(EditText(control).c_str());
}

void PropertyItemInPlaceControls::SetData(PropertyItemList& item, QWidget* control)
{
    item.PropertyItemList::SetData(static_cast<PropertyInPlaceComboBox*>(control)->GetCurSel());
}

void PropertyItemInPlaceControls::SetData(PropertyItemFolderPath& item, QWidget* control)
{
    item.SetData(static_cast<PropertyInPlaceEditAndBrowse*>(control)->GetData());
}

void PropertyItemInPlaceControls::SetData(PropertyItemFilePath& item, QWidget* control)
{
    item.SetData(static_cast<PropertyInPlaceEditAndBrowse*>(control)->GetData());
}

void PropertyItemInPlaceControls::SetData(PropertyItemColorPopup& item, QWidget* control)
{
    item.SetData(static_cast<PropertyInPlaceBrowseForColor*>(control)->GetData());
    // The swatch is repainted and the control rebuilt around the new colour.
    if (auto* list = qobject_cast<PropertyListCtrl*>(control->parentWidget()))
        list->ShowInPlaceControl(true);
}

// The parts of the items that touch a control live here, with the window side.

void PropertyItemList::SetItemListData(PropertyInPlaceComboBox* combo)
{
    const unsigned int count = GetNumItems();
    for (unsigned int index = 0; index < count; ++index)
        combo->AddString(GetItemData(index).c_str(), 0);
}

void PropertyItemNegNumber::ValidateFunc(PropertyInPlaceEdit* edit, void* context)
{
    std::string text = edit->text().toStdString();
    if (!static_cast<PropertyItemNegNumber*>(context)->ValidateText(text))
        edit->setText(QString::fromStdString(text));
}

void PropertyItemFloat::ValidateFunc(PropertyInPlaceEdit* edit, void* context)
{
    std::string text = edit->text().toStdString();
    if (!static_cast<PropertyItemFloat*>(context)->ValidateText(text))
        edit->setText(QString::fromStdString(text));
}
