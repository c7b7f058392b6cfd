#include <KORVAutlwin/options/PropertyInPlaceBrowseForFolder.h>

#include <QFileDialog>

PropertyInPlaceBrowseForFolder* PropertyInPlaceBrowseForFolder::CreateInPlaceControl(QWidget* parent, QRect cell)
{
    auto* control = new PropertyInPlaceBrowseForFolder(parent);
    Place(control, cell);
    return control;
}

bool PropertyInPlaceBrowseForFolder::OnBrowse()
{
    QFileDialog dialog(this, QStringLiteral("Select Folder"), QString::fromStdString(mData));
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    return BrowseWith(dialog);
}
