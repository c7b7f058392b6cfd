#include "ListDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/controls/CFlatHeaderCtrl.h>
#include <KORVAutlwin/controls/FilterListCtrlPopupBar.h>
#include <KORVAutlwin/controls/FilterRules.h>
#include <KORVAutlwin/controls/SelectItemDialog.h>
#include <KORVAutlwin/controls/SelectNewClassDialog.h>
#include <KORVAutlwin/controls/TsFindAndSelectEdit.h>
#include <KORVAutlwin/controls/TsListCtrl.h>
#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutl/TsString.h>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QPushButton>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <string>
#include <vector>

namespace {

constexpr int kSampleCount = 100000;
const char* const kMaterials[] = {"Wheat", "Barley", "Oats", "Rye", "Maize", "Spelt"};

// The sample names of a list, as the filter popup reads them.
class SampleNames : public FilterListItems
{
public:
    explicit SampleNames(const TsListCtrl& list) : mList(list) {}
    unsigned int GetItemCount() const override { return static_cast<unsigned>(mList.GetItemCount()); }
    const char* GetItemText(unsigned int i) const override
    {
        return mList.GetListData().ItemTextRef(static_cast<int>(i), 0).c_str();
    }

private:
    const TsListCtrl& mList;
};

void FillSamples(TsListCtrl& list)
{
    ListData& rows = list.GetListData();
    rows.SetRedraw(false);
    unsigned int seed = 2024;
    auto next = [&seed] { return seed = seed * 1103515245u + 12345u, (seed >> 8) & 0xFFFF; };
    for (int i = 0; i < kSampleCount; ++i) {
        const int row = list.AddItem(TsString::Format("Sample %06d", i + 1).c_str(), static_cast<uintptr_t>(i));
        list.SetItemText(row, 1, TsString::Format("2024-%03u", 100 + next() % 60).c_str());
        list.SetItemText(row, 2, kMaterials[next() % 6]);
        list.SetItemText(row, 3, TsString::Format("%.2f", 8.0 + (next() % 900) / 100.0).c_str());
        list.SetItemText(row, 4, TsString::Format("%.1f", 9.0 + (next() % 60) / 10.0).c_str());
    }
    rows.SetRedraw(true);
}

// A document window: a find box, a filter button, a copy button and the list.
class SampleListDocument : public QWidget
{
public:
    explicit SampleListDocument(TessmaMDIFrame& frame) : mFrame(frame)
    {
        setWindowTitle(QStringLiteral("Samples (100,000 rows)"));
        auto* layout = new QVBoxLayout(this);
        auto* bar = new QHBoxLayout;
        mList = new TsListCtrl(this);
        mFind = new TsFindAndSelectEdit(400, mList, FindAndSelectRules::eAutomatic, this);
        mFind->setPlaceholderText(QStringLiteral("Find: text, *wildcards* or, for numbers, a limit like > 15"));
        mColumn = new QComboBox(this);
        auto* filter = new QPushButton(QStringLiteral("&Filter..."), this);
        auto* copy = new QPushButton(QStringLiteral("&Copy selection"), this);
        bar->addWidget(new QLabel(QStringLiteral("Find in"), this));
        bar->addWidget(mColumn);
        bar->addWidget(mFind, 1);
        bar->addWidget(filter);
        bar->addWidget(copy);
        layout->addLayout(bar);
        layout->addWidget(mList, 1);
        mSummary = new QLabel(this);
        layout->addWidget(mSummary);

        const float percents[] = {26, 16, 20, 18};
        const char* labels[] = {"Sample", "Batch", "Material", "Protein %", "Moisture %"};
        resize(720, 460);
        layout->activate();
        mList->SetColumns(percents, labels, 5);
        mList->GetListData().SetColumnFormat(3, LVCFMT_RIGHT);
        mList->GetListData().SetColumnFormat(4, LVCFMT_RIGHT);
        mList->SubclassHeader(true);
        mList->EnableShortCuts(true, false);
        mList->EnableColumnAutoSize(true, 10);
        mList->SetEmptyCtrlText("No samples");
        for (const char* label : labels)
            mColumn->addItem(QString::fromUtf8(label));
        FillSamples(*mList);
        mList->EnableSaveRestore("WorkbenchSamples");

        connect(mColumn, qOverload<int>(&QComboBox::currentIndexChanged), this, [this](int col) {
            mValues.clear();
            // Numbers are searched by limit expressions over the column's values.
            if (col >= 3) {
                for (int row = 0; row < mList->GetItemCount(); ++row) {
                    double value = 0;
                    TsString::ToFloat(mList->GetItemText(row, col).c_str(), value);
                    mValues.push_back(static_cast<float>(value));
                }
                mFind->SetVector(mValues.data());
            }
            mFind->SetHowToFind(col >= 3 ? FindAndSelectRules::eNumeric : FindAndSelectRules::eAutomatic, false);
            mFind->SetFindInColumn(col, true);
        });
        connect(filter, &QPushButton::clicked, this, [this] { FilterSamples(); });
        connect(copy, &QPushButton::clicked, this, [this] {
            mList->CopySelection();
            mFrame.statusBar()->showMessage(
                QStringLiteral("%1 rows copied as text and HTML").arg(mList->GetSelectedCount()));
        });
        connect(&mList->GetListData(), &ListData::ItemStateChanged, this, [this] { SummaryLater(); });
        connect(&mList->GetListData(), &QAbstractItemModel::dataChanged, this, [this] { SummaryLater(); });
        connect(&mList->GetListData(), &QAbstractItemModel::rowsRemoved, this, [this] { SummaryLater(); });
        Summary();
    }

    TsListCtrl* GetList() const { return mList; }
    TsFindAndSelectEdit* GetFind() const { return mFind; }
    QComboBox* GetColumnChooser() const { return mColumn; }

    void FilterSamples()
    {
        // Rows move when the list is sorted; the popup works on the order of now.
        const SampleNames names(*mList);
        const int chosen = TrackFilterListCtrlPopup(this, QPoint(-1, -1), names, FilterRules::kNoItem);
        if (chosen < 0)
            return;
        mList->SetSelection(chosen, chosen, nullptr, 0);
        mList->SetItemState(chosen, LVIS_FOCUSED, LVIS_FOCUSED);
        mList->SetTopIndex(chosen);
        mFrame.statusBar()->showMessage(QString::fromStdString("Chosen: " + mList->GetItemText(chosen, 0)));
    }

private:
    void SummaryLater()
    {
        if (!mSummaryPending) {
            mSummaryPending = true;
            QTimer::singleShot(0, this, [this] { Summary(); });
        }
    }
    void Summary()
    {
        mSummaryPending = false;
        mSummary->setText(QStringLiteral("%1 of %2 rows selected. Click a header to sort, drag to select "
                                         "(Ctrl keeps), Ctrl+A, Ctrl+I, Ctrl+C, Ctrl+Shift+C.")
                              .arg(mList->GetSelectedCount())
                              .arg(mList->GetItemCount()));
    }

    TessmaMDIFrame& mFrame;
    TsListCtrl* mList;
    TsFindAndSelectEdit* mFind;
    QComboBox* mColumn;
    QLabel* mSummary;
    std::vector<float> mValues;
    bool mSummaryPending = false;
};

SampleListDocument* OpenDocument(TessmaMDIFrame& frame)
{
    auto* document = new SampleListDocument(frame);
    QMdiSubWindow* child = frame.AddMDIChild(document);
    child->setGeometry(QRect(QPoint(0, 0), frame.GetMDIClient()->size() - QSize(30, 30)));
    child->show();
    frame.MDIActivate(child);
    return document;
}

const std::vector<std::string>& Materials()
{
    static const std::vector<std::string> names(std::begin(kMaterials), std::end(kMaterials));
    return names;
}

} // namespace

void AddListDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, ControlsMenu(), QObject::tr("&Lists"));
    frame.AddCommand(menu, eDemoLargeList, QObject::tr("&Sample list (100,000 rows)"));
    frame.AddCommand(menu, eDemoSortedList, QObject::tr("Sample list, sorted by &protein"));
    frame.AddCommand(menu, eDemoFilterPopup, QObject::tr("&Filter popup"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoSingleSelect, QObject::tr("Select &one item"));
    frame.AddCommand(menu, eDemoMultiSelect, QObject::tr("Select &several items"));
    frame.AddCommand(menu, eDemoOptionSelect, QObject::tr("Select items with an o&ption"));
    frame.AddCommand(menu, eDemoNewClass, QObject::tr("Select or enter a &class"));
    menu->addSeparator();
    frame.AddCommand(menu, eDemoListRelatives, QObject::tr("Specialised &lists"));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoLargeList, [target] { OpenDocument(*target); });
    frame.OnCommand(eDemoSortedList, [target] {
        SampleListDocument* document = OpenDocument(*target);
        TsListCtrl* list = document->GetList();
        // Two header clicks' worth: protein, highest first.
        list->SortItems(3, false);
        list->GetFlatHeader()->SetSortImage(3, 0);
        document->GetFind()->setText(QStringLiteral("Spelt"));
        document->GetColumnChooser()->setCurrentIndex(2); // searches the materials at once
    });
    frame.OnCommand(eDemoListRelatives, [target] { ShowListRelativesDemo(target); });
    frame.OnCommand(eDemoFilterPopup, [target] {
        SampleListDocument* document = OpenDocument(*target);
        document->FilterSamples();
    });
    frame.OnCommand(eDemoSingleSelect, [target] {
        int selected = 2;
        const int answer = TsSingleSelectItemDialog("Calibration", "Select the material of the new calibration:",
                                                    "Material", Materials(), &selected, false, target);
        target->statusBar()->showMessage(answer == IDOK && selected >= 0
                                             ? QStringLiteral("Selected: %1").arg(kMaterials[selected])
                                             : QStringLiteral("Nothing selected"));
    });
    frame.OnCommand(eDemoMultiSelect, [target] {
        std::vector<int> checked = {0, 3};
        const int answer = TsMultiSelectItemDialog("Export", "Check the materials to export (right-click for more):",
                                                   "Material", Materials(), &checked, false, target);
        target->statusBar()->showMessage(QStringLiteral("%1: %2 checked")
                                             .arg(answer == IDOK ? "OK" : "Cancel")
                                             .arg(checked.size()));
    });
    frame.OnCommand(eDemoOptionSelect, [target] {
        std::vector<int> checked = {1};
        int option = 0;
        const int answer = TsOptionMultiSelectItemDialog(
            "Copy samples", "Check the materials whose samples are copied:", "", Materials(),
            {"&Replace the target's samples", "&Append to the target's samples", "Ask for each &sample"}, &checked,
            &option, false, target);
        target->statusBar()->showMessage(QStringLiteral("%1: %2 checked, option %3")
                                             .arg(answer == IDOK ? "OK" : "Cancel")
                                             .arg(checked.size())
                                             .arg(option));
    });
    frame.OnCommand(eDemoNewClass, [target] {
        SelectNewClassDialog dialog({"Wheat", "Barley", "Oats"}, false, target);
        const int answer = dialog.DoModal();
        target->statusBar()->showMessage(answer == IDOK ? QStringLiteral("Class: \"%1\"")
                                                              .arg(QString::fromStdString(dialog.GetSelected()))
                                                        : QStringLiteral("Cancelled"));
    });
}
