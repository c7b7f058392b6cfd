#include <KORVAutlwin/controls/SelectItemDialog.h>

#include <KORVAutlwin/controls/TsListCtrl.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TsMessageBox.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QMenu>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

SelectItemDialog::SelectItemDialog(EKind kind, const char* title, const char* prompt, const char* header,
                                   const std::vector<std::string>& items, bool flag, QWidget* parent)
    : TsDialog("SelectItemDialog", parent), mKind(kind), mFlag(flag)
{
    setWindowTitle(QString::fromUtf8(title ? title : ""));
    auto* layout = new QVBoxLayout(this);
    auto* label = new QLabel(QString::fromUtf8(prompt ? prompt : ""), this);
    label->setWordWrap(true);
    layout->addWidget(label);
    mList = new TsListCtrl(this);
    if (kind == eSingleSelect)
        mList->ModifyStyle(0, LVS_SINGLESEL);
    else
        mList->SetExtendedStyle(mList->GetExtendedStyle() | LVS_EX_CHECKBOXES);
    if (!header || !*header)
        mList->ModifyStyle(0, LVS_NOCOLUMNHEADER);
    layout->addWidget(mList, 1);
    for (int i = 0; i < 6 && kind == eOptionMultiSelect; ++i) {
        auto* button = new QRadioButton(this);
        button->setProperty("ctrlId", kOptionIds[i]);
        button->hide();
        layout->addWidget(button);
        mOptionButtons.push_back(button);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &SelectItemDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &SelectItemDialog::reject);
    layout->addWidget(buttons);
    resize(340, 400);
    layout->activate();

    const int scroller = mList->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, mList);
    mList->InsertColumn(0, header ? header : "", LVCFMT_LEFT, std::max(50, mList->GetClientWidth() - scroller));
    for (const std::string& item : items)
        mList->AddItem(item.c_str());
    mList->EnableColumnAutoSize(true, 10);
    if (kind != eSingleSelect) {
        mList->setContextMenuPolicy(Qt::CustomContextMenu);
        connect(mList, &QWidget::customContextMenuRequested, this, &SelectItemDialog::ShowContextMenu);
    }
}

void SelectItemDialog::SetSelected(int index)
{
    mSelected = index;
    if (index >= 0 && index < mList->GetItemCount()) {
        mList->SetItemState(index, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
        mList->SetTopIndex(index);
    }
}

void SelectItemDialog::SetChecked(const std::vector<int>& rows)
{
    mChecked = rows;
    mList->SetCheckedIndexes(rows, true);
}

void SelectItemDialog::SetOptions(const std::vector<std::string>& options, int option)
{
    for (size_t i = 0; i < mOptionButtons.size(); ++i) {
        const bool used = i < options.size();
        mOptionButtons[i]->setVisible(used);
        if (used)
            mOptionButtons[i]->setText(QString::fromStdString(options[i]));
        mOptionButtons[i]->setChecked(used && option == static_cast<int>(i) + 1);
    }
    mOption = option;
}

QRadioButton* SelectItemDialog::GetOptionButton(int number) const
{
    return number >= 1 && number <= static_cast<int>(mOptionButtons.size()) ? mOptionButtons[number - 1] : nullptr;
}

void SelectItemDialog::ShowContextMenu(const QPoint& at)
{
    QMenu menu(this);
    const bool marked = mList->GetSelectedCount() > 0;
    auto add = [&](int command, const char* text, bool enabled) {
        QAction* action = menu.addAction(QString::fromUtf8(text));
        action->setData(command);
        action->setEnabled(enabled);
    };
    add(eSelectAllMarked, "Select All Marked Items", marked);
    add(eUnselectAllMarked, "Unselect All Marked Items", marked);
    menu.addSeparator();
    add(eSelectAllItems, "Select All Items", true);
    add(eUnselectAllItems, "Unselect All Items", true);
    add(eSelectComplement, "Select Complement", true);
    if (QAction* chosen = menu.exec(mList->viewport()->mapToGlobal(at)))
        OnCommand(chosen->data().toInt());
}

void SelectItemDialog::OnCommand(int command)
{
    std::vector<int> selected;
    mList->GetSelIndexes(selected);
    switch (command) {
    case eSelectAllMarked:
        mList->SetCheckedIndexes(selected, true);
        break;
    case eUnselectAllMarked:
        mList->SetCheckedIndexes(selected, false);
        break;
    case eSelectAllItems: mList->CheckAllItems(true); break;
    case eUnselectAllItems: mList->CheckAllItems(false); break;
    case eSelectComplement:
        mList->ComplementSelection();
        mList->GetSelIndexes(selected);
        mList->CheckAllItems(false);
        mList->SetCheckedIndexes(selected, true);
        break;
    default: break;
    }
}

void SelectItemDialog::accept()
{
    if (mKind == eOptionMultiSelect) {
        int visible = 0, marked = 0;
        for (size_t i = 0; i < mOptionButtons.size(); ++i) {
            if (mOptionButtons[i]->isHidden())
                continue;
            ++visible;
            if (mOptionButtons[i]->isChecked())
                marked = static_cast<int>(i) + 1;
        }
        if (visible > 1 && marked == 0) {
            TsMessageBox("No option is selected.", MB_OK | MB_ICONEXCLAMATION);
            return;
        }
        mOption = marked;
    }
    if (mKind == eSingleSelect)
        mSelected = mList->GetSelIndex();
    else
        mList->GetCheckedIndexes(mChecked);
    TsDialog::accept();
}

int SelectItemDialog::DoModal()
{
    return exec() == QDialog::Accepted ? IDOK : IDCANCEL;
}

int TsSingleSelectItemDialog(const char* title, const char* prompt, const char* header,
                             const std::vector<std::string>& items, int* selected, bool flag, QWidget* parent)
{
    SelectItemDialog dialog(SelectItemDialog::eSingleSelect, title, prompt, header, items, flag, parent);
    dialog.SetSelected(selected ? *selected : -1);
    const int result = dialog.DoModal();
    if (result == IDOK && selected)
        *selected = dialog.GetSelected();
    return result;
}

int TsMultiSelectItemDialog(const char* title, const char* prompt, const char* header,
                            const std::vector<std::string>& items, std::vector<int>* checked, bool flag,
                            QWidget* parent)
{
    SelectItemDialog dialog(SelectItemDialog::eMultiSelect, title, prompt, header, items, flag, parent);
    if (checked)
        dialog.SetChecked(*checked);
    const int result = dialog.DoModal();
    if (result == IDOK && checked)
        *checked = dialog.GetChecked();
    return result;
}

int TsOptionMultiSelectItemDialog(const char* title, const char* prompt, const char* header,
                                  const std::vector<std::string>& items, const std::vector<std::string>& options,
                                  std::vector<int>* checked, int* option, bool flag, QWidget* parent)
{
    SelectItemDialog dialog(SelectItemDialog::eOptionMultiSelect, title, prompt, header, items, flag, parent);
    if (checked)
        dialog.SetChecked(*checked);
    dialog.SetOptions(options, option ? *option : 0);
    const int result = dialog.DoModal();
    if (result == IDOK) {
        if (checked)
            *checked = dialog.GetChecked();
        if (option)
            *option = dialog.GetOption();
    }
    return result;
}
