#include <KORVAutlwin/controls/SelectNewClassDialog.h>

#include <KORVAutlwin/frame/MessageBoxTypes.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

SelectNewClassDialog::SelectNewClassDialog(const std::vector<std::string>& names, bool phases, QWidget* parent)
    : TsDialog("SelectNewClassDialog", parent)
{
    auto* layout = new QVBoxLayout(this);
    auto* hint = new QLabel(phases ? QStringLiteral("Select an existing phase.")
                                   : QStringLiteral("Select an existing class or enter a new name."),
                            this);
    layout->addWidget(hint);
    auto* form = new QFormLayout;
    mCombo = new QComboBox(this);
    mCombo->setEditable(true);
    mCombo->setInsertPolicy(QComboBox::NoInsert);
    mCombo->addItem(QStringLiteral("No Class"));
    for (const std::string& name : names)
        mCombo->addItem(QString::fromStdString(name));
    form->addRow(phases ? QStringLiteral("Phase:") : QStringLiteral("Class:"), mCombo);
    layout->addLayout(form);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &SelectNewClassDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SelectNewClassDialog::reject);
    layout->addWidget(buttons);
}

void SelectNewClassDialog::accept()
{
    // Entry 0 means none, whatever its text says.
    const bool none = mCombo->currentIndex() == 0 && mCombo->currentText() == mCombo->itemText(0);
    mSelected = none ? std::string() : mCombo->currentText().toStdString();
    TsDialog::accept();
}

int SelectNewClassDialog::DoModal()
{
    return exec() == QDialog::Accepted ? IDOK : IDCANCEL;
}
