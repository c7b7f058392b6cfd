#include "TreeDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/controls/TsTreeListCtrl.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutl/TsString.h>

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QTimer>
#include <QVBoxLayout>

#include <cstring>

namespace {

// The catalogue of the tree document, in the tree's own text form.
constexpr const char* kCatalogue = "Cereals\r\n"
                                   "\tWheat\r\n\t\tWinter wheat\r\n\t\tSpring wheat\r\n\t\tDurum\r\n"
                                   "\tBarley\r\n\t\tMalting barley\r\n\t\tFeed barley\r\n"
                                   "\tOats\r\n\tRye\r\n"
                                   "Oilseeds\r\n\tRapeseed\r\n\tSunflower\r\n\tSoybean\r\n"
                                   "Pulses\r\n\tPeas\r\n\tLentils\r\n\tFaba beans\r\n";

void Show(TessmaMDIFrame& frame, QWidget* document)
{
    QMdiSubWindow* child = frame.AddMDIChild(document);
    child->setGeometry(QRect(QPoint(0, 0), frame.GetMDIClient()->size() - QSize(30, 30)));
    child->show();
    frame.MDIActivate(child);
}

// The tree document: check boxes, colours and fonts, drag and drop (Ctrl
// copies), Delete, search with wrap-around, and the text form on Ctrl+C.
class TreeDocument : public QWidget
{
public:
    explicit TreeDocument(TessmaMDIFrame& frame) : mFrame(frame)
    {
        setWindowTitle(QStringLiteral("Catalogue (tree)"));
        auto* layout = new QVBoxLayout(this);
        auto* bar = new QHBoxLayout;
        mFind = new QLineEdit(this);
        mFind->setPlaceholderText(QStringLiteral("Find (whole words, wraps round)"));
        auto* next = new QPushButton(QStringLiteral("Find &next"), this);
        auto* expand = new QPushButton(QStringLiteral("&Expand all"), this);
        auto* collapse = new QPushButton(QStringLiteral("C&ollapse all"), this);
        bar->addWidget(mFind, 1);
        bar->addWidget(next);
        bar->addWidget(expand);
        bar->addWidget(collapse);
        layout->addLayout(bar);
        mTree = new TsTreeCtrl(this, TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_CHECKBOXES);
        layout->addWidget(mTree, 1);
        auto* hint = new QLabel(QStringLiteral("Space or a click on a box checks it, up and down the branch. Drag to "
                                               "move, with Ctrl to copy; Shift and Ctrl select; Delete deletes; "
                                               "Ctrl+C copies the tree as tab-indented text."),
                                this);
        hint->setWordWrap(true);
        layout->addWidget(hint);

        QBuffer text;
        text.setData(kCatalogue);
        text.open(QIODevice::ReadOnly);
        mTree->Serialize(text, false);
        for (HTREEITEM item = mTree->GetRootItem(); item; item = mTree->GetNextItem(item))
            mTree->SetCheck(item, TreeRules::eUncheck);
        mTree->EnableMultiSelect(true);
        mTree->EnableDelete(true);
        mTree->ExpandAll(TVE_EXPAND);
        mTree->SetCheck(Find("Wheat"), TreeRules::eCheck);
        mTree->SetCheck(Find("Malting barley"), TreeRules::eCheck);
        mTree->SetCheck(Find("Faba beans"), TreeRules::eDisable);
        for (const char* top : {"Cereals", "Oilseeds", "Pulses"})
            mTree->SetItemBold(Find(top), true);
        mTree->SetItemColor(Find("Durum"), RGB(0xB0, 0x30, 0x20));
        LOGFONT italic{};
        italic.lfHeight = -12;
        italic.lfWeight = 400;
        italic.lfItalic = 1;
        std::strncpy(italic.lfFaceName, "DejaVu Serif", sizeof(italic.lfFaceName) - 1);
        mTree->SetItemFont(Find("Soybean"), italic);
        mTree->SetUserHasCopiedDataCallBack([this] {
            QBuffer out;
            out.open(QIODevice::WriteOnly);
            mTree->Serialize(out, true);
            QApplication::clipboard()->setText(QString::fromUtf8(out.data()));
            mFrame.statusBar()->showMessage(QStringLiteral("The tree was copied as tab-indented text"));
        });

        auto find = [this] {
            HTREEITEM start = mTree->GetSelectedItem() ? mTree->GetNextItem(mTree->GetSelectedItem()) : nullptr;
            HTREEITEM hit = mTree->FindItem(mFind->text().toUtf8().constData(), false, true, true, start);
            if (hit) {
                mTree->ClearSelection();
                mTree->SetItemState(hit, TVIS_SELECTED, TVIS_SELECTED);
                mTree->SelectItem(hit);
            }
            mFrame.statusBar()->showMessage(hit ? QStringLiteral("Found: %1").arg(QString::fromStdString(mTree->GetItemText(hit)))
                                                : QStringLiteral("Not found"));
        };
        connect(next, &QPushButton::clicked, this, find);
        connect(mFind, &QLineEdit::returnPressed, this, find);
        connect(expand, &QPushButton::clicked, this, [this] { mTree->ExpandAll(TVE_EXPAND); });
        connect(collapse, &QPushButton::clicked, this, [this] { mTree->ExpandAll(TVE_COLLAPSE); });
    }

    HTREEITEM Find(const char* text) const
    {
        for (HTREEITEM item = mTree->GetRootItem(); item; item = mTree->GetNextItem(item))
            if (mTree->GetItemText(item) == text)
                return item;
        return nullptr;
    }

private:
    TessmaMDIFrame& mFrame;
    TsTreeCtrl* mTree;
    QLineEdit* mFind;
};

// The tree-list document: samples grouped by material, with references
// (priority 2000) above the rest, sorted by header clicks and copied with Ctrl+C.
class TreeListDocument : public QWidget
{
public:
    explicit TreeListDocument(TessmaMDIFrame& frame) : mFrame(frame)
    {
        setWindowTitle(QStringLiteral("Samples by material (tree list)"));
        auto* layout = new QVBoxLayout(this);
        auto* bar = new QHBoxLayout;
        auto* sortType = mSortType = new QComboBox(this);
        sortType->addItems({QStringLiteral("Header clicks sort the materials"),
                            QStringLiteral("Header clicks sort the samples of each material"),
                            QStringLiteral("Header clicks don't sort")});
        auto* copy = new QPushButton(QStringLiteral("&Copy selection"), this);
        auto* copyAll = new QPushButton(QStringLiteral("Copy &all"), this);
        bar->addWidget(sortType, 1);
        bar->addWidget(copy);
        bar->addWidget(copyAll);
        layout->addLayout(bar);
        mList = new TsTreeListCtrl(this);
        layout->addWidget(mList, 1);
        mSummary = new QLabel(this);
        layout->addWidget(mSummary);

        mList->InsertColumn(0, "Sample", 0, 190);
        mList->InsertColumn(1, "Batch", 0, 90);
        mList->InsertColumn(2, "Protein %", 1, 90);
        mList->InsertColumn(3, "Moisture %", 1, 90);
        mList->InsertColumn(4, "Note", 2, 140);
        mList->EnableMultiSelect(true);
        mList->EnableSort(true);
        Fill();
        // From the width it is shown at, the columns follow the window.
        QTimer::singleShot(0, this, [this] { mList->EnableColumnAutoSize(true); });

        connect(sortType, qOverload<int>(&QComboBox::currentIndexChanged), this, [this](int index) {
            mList->EnableSort(index != 2);
            if (index == 1)
                mList->SetSortType(TsTreeListCtrl::eSortEachTopLevelChildren);
        });
        connect(copy, &QPushButton::clicked, this, [this] {
            mList->OnUserCopiedData();
            mFrame.statusBar()->showMessage(
                QStringLiteral("%1 rows copied as text and HTML").arg(mList->GetSelectedItemCount()));
        });
        connect(copyAll, &QPushButton::clicked, this, [this] {
            auto* mime = new QMimeData;
            if (const std::optional<std::string> text = mList->MakeClipString())
                mime->setText(QString::fromStdString(*text));
            mime->setHtml(QString::fromStdString(mList->ToHTML("Samples by material")));
            QApplication::clipboard()->setMimeData(mime);
            mFrame.statusBar()->showMessage(QStringLiteral("The whole table was copied as text and HTML"));
        });
        connect(mList, &TsTreeListCtrl::SelChanged, this, [this] { Summary(); });
        Summary();
    }

    TsTreeListCtrl* GetList() const { return mList; }
    QComboBox* GetSortTypeChooser() const { return mSortType; }
    void Summary()
    {
        mSummary->setText(QStringLiteral("%1 of %2 rows selected. Click a header to sort (references stay on top); "
                                         "Ctrl and Shift select; Ctrl+C copies the selection.")
                              .arg(mList->GetSelectedItemCount())
                              .arg(mList->GetItemCount()));
    }

private:
    void Fill()
    {
        mList->SetRedraw(false);
        unsigned int seed = 7;
        auto next = [&seed] { return seed = seed * 1103515245u + 12345u, (seed >> 8) & 0xFFFF; };
        const char* materials[] = {"Wheat", "Barley", "Oats", "Rye", "Maize", "Spelt"};
        int sample = 1;
        for (const char* material : materials) {
            HTREEITEM group = mList->InsertItem(material);
            for (int i = 0; i < 8; ++i, ++sample) {
                HTREEITEM item = mList->InsertItem(TsString::Format("Sample %d", sample).c_str(), group);
                std::string text;
                mList->SetItemText(item, 1, TsString::Format("2024-%03u", 100 + next() % 60).c_str());
                const double protein = 8.0 + (next() % 900) / 100.0;
                mList->SetItemFloat(item, 2, protein, text);
                mList->SetItemFloat(item, 3, 9.0 + (next() % 60) / 10.0, text);
                if (i == 0) {
                    mList->SetItemText(item, 4, "reference");
                    mList->GetTreeCtrl().SetItemPriority(item, 2000);
                    mList->SetItemBold(item, true);
                } else if (protein > 16.0) {
                    mList->SetItemText(item, 4, "high protein");
                    mList->SetItemColor(item, RGB(0xC0, 0x20, 0x20));
                }
            }
            mList->SetItemGroup(group, true);
            mList->SetItemBold(group, true);
        }
        mList->SetRedraw(true);
    }

    TessmaMDIFrame& mFrame;
    TsTreeListCtrl* mList;
    QComboBox* mSortType;
    QLabel* mSummary;
};

TreeListDocument* OpenTreeList(TessmaMDIFrame& frame)
{
    auto* document = new TreeListDocument(frame);
    Show(frame, document);
    return document;
}

} // namespace

void AddTreeDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, ControlsMenu(), QObject::tr("&Trees"));
    frame.AddCommand(menu, eDemoTree, QObject::tr("&Catalogue tree"));
    frame.AddCommand(menu, eDemoTreeList, QObject::tr("Samples by &material (tree list)"));
    frame.AddCommand(menu, eDemoTreeListSorted, QObject::tr("Samples by material, sorted by &protein"));
    frame.AddCommand(menu, eDemoTreeListNarrow, QObject::tr("Samples by material, &narrow and scrolled"));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoTree, [target] { Show(*target, new TreeDocument(*target)); });
    frame.OnCommand(eDemoTreeList, [target] { OpenTreeList(*target); });
    frame.OnCommand(eDemoTreeListSorted, [target] {
        TreeListDocument* document = OpenTreeList(*target);
        TsTreeListCtrl* list = document->GetList();
        // The samples of each material, by two clicks on the protein header: highest first.
        document->GetSortTypeChooser()->setCurrentIndex(1);
        list->OnHeaderClick(2);
        list->OnHeaderClick(2);
        HTREEITEM wheat = list->GetItem(0);
        for (HTREEITEM item = list->GetChildItem(wheat); item; item = list->GetNextSiblingItem(item))
            if (list->GetItemText(item, 4).empty()) {
                list->SetItemState(item, TVIS_SELECTED, TVIS_SELECTED);
                list->SetItemState(list->GetNextSiblingItem(item), TVIS_SELECTED, TVIS_SELECTED);
                break;
            }
        document->Summary();
    });
    frame.OnCommand(eDemoTreeListNarrow, [target] {
        TreeListDocument* document = OpenTreeList(*target);
        QTimer::singleShot(0, document, [target, document] {
            TsTreeListCtrl* list = document->GetList();
            list->EnableColumnAutoSize(false); // the columns keep their widths: the scroller appears
            if (QMdiSubWindow* child = target->GetMDIClient()->activeSubWindow())
                child->resize(420, child->height());
            QTimer::singleShot(50, document, [list] { list->OnHScroll(TreeListRules::SB_THUMBTRACK, 100); });
        });
    });
}
