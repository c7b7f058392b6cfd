#include <KORVAutlwin/options/PropertyInPlaceBrowseForColor.h>

#include <KORVAutl/TsString.h>

#include <QColorDialog>

PropertyInPlaceBrowseForColor* PropertyInPlaceBrowseForColor::CreateInPlaceControl(QWidget* parent, QRect cell)
{
    auto* control = new PropertyInPlaceBrowseForColor(parent);
    Place(control, cell);
    return control;
}

PropertyInPlaceBrowseForColor::PropertyInPlaceBrowseForColor(QWidget* parent) : PropertyInPlaceEditAndBrowse(parent)
{
    GetEdit()->setReadOnly(true);
}

std::string PropertyInPlaceBrowseForColor::FormatEditString(COLORREF color)
{
    return TsString::Format("R: %d G: %d B: %d", GetRValue(color), GetGValue(color), GetBValue(color));
}

void PropertyInPlaceBrowseForColor::SetData(COLORREF color)
{
    mColor = color;
    PropertyInPlaceEditAndBrowse::SetData(FormatEditString(color));
}

bool PropertyInPlaceBrowseForColor::OnBrowse()
{
    QColorDialog dialog(korva::ToQColor(mColor), this);
    dialog.setOption(QColorDialog::DontUseNativeDialog);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    SetData(korva::FromQColor(dialog.selectedColor()));
    return true;
}
