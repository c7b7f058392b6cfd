#include <KORVAutlwin/options/PropertyInPlaceBrowseForFile.h>

#include <QFileDialog>

PropertyInPlaceBrowseForFile* PropertyInPlaceBrowseForFile::CreateInPlaceControl(QWidget* parent, QRect cell)
{
    auto* control = new PropertyInPlaceBrowseForFile(parent);
    Place(control, cell);
    return control;
}

bool PropertyInPlaceBrowseForFile::OnBrowse()
{
    QFileDialog dialog(this, QStringLiteral("Select File"));
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setLabelText(QFileDialog::Accept, QStringLiteral("Select"));
    return BrowseWith(dialog);
}
