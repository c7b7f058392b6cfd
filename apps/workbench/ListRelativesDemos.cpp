// The workbench's view of the list's small relatives: check boxes in cells,
// struck-through disabled rows, a list box with grey entries and an edit box
// that acts when typing pauses.

#include "ListDemos.h"

#include <KORVAutlwin/controls/CheckBoxListCtrl.h>
#include <KORVAutlwin/controls/GrayListBox.h>
#include <KORVAutlwin/controls/ListCtrlWithDisabledItems.h>
#include <KORVAutlwin/controls/TimedEditBox.h>
#include <KORVAutlwin/frame/TsDialog.h>

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>

namespace {

const char* const kSamples[] = {"Wheat 4711", "Barley 0815", "Oats 1207", "Rye 3310", "Maize 2024", "Spelt 0042"};

// Samples whose item data is odd are out of season, and drawn so.
class SeasonList : public ListCtrlWithDisabledItems
{
public:
    using ListCtrlWithDisabledItems::ListCtrlWithDisabledItems;
    bool IsItemDisabled(int row) const override { return GetItemData(row) % 2 != 0; }
};

class ListRelativesDialog : public TsDialog, public TimedEditParent
{
public:
    explicit ListRelativesDialog(QWidget* parent) : TsDialog("ListRelatives", parent)
    {
        setWindowTitle(QStringLiteral("Specialised lists"));
        auto* grid = new QGridLayout(this);
        auto* checks = new CheckBoxListCtrl(this);
        auto* season = new SeasonList(this);
        auto* gray = new GrayListBox(this);
        mTyped = new QLabel(QStringLiteral("Type below; the text is taken when typing pauses."), this);
        auto* edit = new TimedEditBox(this, this);
        edit->SetText("Set by code: no timer");
        grid->addWidget(new QLabel(QStringLiteral("CheckBoxListCtrl: boxes in the Dried and Milled cells"), this), 0, 0);
        grid->addWidget(checks, 1, 0);
        grid->addWidget(new QLabel(QStringLiteral("ListCtrlWithDisabledItems: out of season"), this), 0, 1);
        grid->addWidget(season, 1, 1);
        grid->addWidget(new QLabel(QStringLiteral("GrayListBox: grey entries count as unselected"), this), 2, 0);
        grid->addWidget(gray, 3, 0);
        grid->addWidget(mTyped, 2, 1);
        grid->addWidget(edit, 3, 1, Qt::AlignTop);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        grid->addWidget(buttons, 4, 0, 1, 2);
        resize(640, 420);

        checks->AddColumn("Sample", 110);
        checks->AddColumn("Dried", 80);
        checks->AddColumn("Milled", 80);
        checks->ShowColumnCheckBoxes(1, true);
        checks->ShowColumnCheckBoxes(2, true);
        season->AddColumn("Sample", 200);
        for (int i = 0; i < 6; ++i) {
            const int row = checks->AddItem(kSamples[i]);
            checks->SetItemText(row, 1, i % 2 ? "yes" : "no");
            checks->SetItemText(row, 2, i % 3 ? "yes" : "no");
            checks->CheckCheckBox(row, 1, i % 2 != 0);
            checks->CheckCheckBox(row, 2, i % 3 != 0);
            season->AddItem(kSamples[i], static_cast<uintptr_t>(i));
            gray->AddString(kSamples[i], i == 1 || i == 4);
        }
        checks->SetSelIndex(2);
    }

    void TimedEditTriggered(TimedEditBox& box) override
    {
        mTyped->setText(QStringLiteral("Typing paused at: \"%1\"").arg(box.text()));
    }

private:
    QLabel* mTyped;
};

} // namespace

void ShowListRelativesDemo(QWidget* parent)
{
    ListRelativesDialog dialog(parent);
    dialog.exec();
}
