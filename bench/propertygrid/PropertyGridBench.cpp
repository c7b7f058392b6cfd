// The property grid with 10,000 rows in 100 categories, side by side with a
// QTreeWidget of the same rows (caption and value columns) painted through an
// item delegate:
//
//  - Build: the items and the filled widget, every category open.
//  - Repaint: one full paint of the widget, 600 x 800 pixels, into an image.
//  - CollapseExpand: every category collapsed, then every category expanded,
//    until the widget's rows are laid out again.
//
// Offscreen.

#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemManager.h>
#include <KORVAutlwin/options/PropertyItemNumber.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyListCtrl.h>

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTreeWidget>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

constexpr int kCategories = 100;
constexpr int kItemsPerCategory = 100;
const QSize kSize(600, 800);

QApplication& Application()
{
    static int argc = 1;
    static char name[] = "bench_propertygrid";
    static char* argv[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QApplication application(argc, argv);
    return application;
}

class Manager : public PropertyItemManager
{
public:
    void OnInitManager(unsigned long) override {}
    void OnManagerCommand(unsigned long) override {}
};

std::string Caption(int category, int item)
{
    return "Setting " + std::to_string(item) + " of group " + std::to_string(category);
}

// Half text rows, half number rows.
std::unique_ptr<Manager> MakeManager()
{
    auto manager = std::make_unique<Manager>();
    unsigned int id = 1;
    for (int c = 0; c < kCategories; ++c) {
        PropertyItemCategory* category =
            manager->AddPropertyCategory(("Group " + std::to_string(c)).c_str(), "A group of settings", true);
        for (int i = 0; i < kItemsPerCategory; ++i, ++id) {
            if (i % 2) {
                auto* item = new PropertyItemNumber(Caption(c, i).c_str(), id, "A number");
                item->SetData(static_cast<int>(id));
                category->AddPropertyItem(item);
            } else {
                auto* item = new PropertyItemString(Caption(c, i).c_str(), id, "A text");
                item->SetData("value " + std::to_string(id));
                category->AddPropertyItem(item);
            }
        }
    }
    return manager;
}

struct Grid
{
    std::unique_ptr<Manager> manager = MakeManager();
    std::unique_ptr<PropertyListCtrl> list = std::make_unique<PropertyListCtrl>();

    Grid()
    {
        list->resize(kSize);
        list->SetPropertyItemManager(manager.get());
    }
    ~Grid() { list.reset(); }
};

// Paints the value column itself, as the grid's items do.
class ValueDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (index.column() != 1) {
            QStyledItemDelegate::paint(painter, option, index);
            return;
        }
        painter->drawText(option.rect.adjusted(3, 0, -3, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                          index.data().toString());
    }
};

std::unique_ptr<QTreeWidget> MakeTree()
{
    auto tree = std::make_unique<QTreeWidget>();
    tree->resize(kSize);
    tree->setColumnCount(2);
    tree->setItemDelegate(new ValueDelegate(tree.get()));
    unsigned int id = 1;
    QList<QTreeWidgetItem*> groups;
    for (int c = 0; c < kCategories; ++c) {
        auto* group = new QTreeWidgetItem(QStringList{QString::fromStdString("Group " + std::to_string(c))});
        for (int i = 0; i < kItemsPerCategory; ++i, ++id) {
            const QString value = i % 2 ? QString::number(id) : QStringLiteral("value %1").arg(id);
            group->addChild(new QTreeWidgetItem(QStringList{QString::fromStdString(Caption(c, i)), value}));
        }
        groups.append(group);
    }
    tree->addTopLevelItems(groups);
    tree->expandAll();
    tree->doItemsLayout();
    return tree;
}

void BM_Build_PropertyListCtrl(benchmark::State& state)
{
    Application();
    for (auto _ : state) {
        Grid grid;
        benchmark::DoNotOptimize(grid.list->GetClientRect()); // laid out, as the tree below
        benchmark::DoNotOptimize(grid.list->GetCount());
    }
}

void BM_Build_QTreeWidget(benchmark::State& state)
{
    Application();
    for (auto _ : state) {
        auto tree = MakeTree();
        benchmark::DoNotOptimize(tree->topLevelItemCount());
    }
}

void BM_Repaint_PropertyListCtrl(benchmark::State& state)
{
    Application();
    Grid grid;
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state)
        grid.list->render(&image);
}

void BM_Repaint_QTreeWidget(benchmark::State& state)
{
    Application();
    auto tree = MakeTree();
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state)
        tree->render(&image);
}

void BM_CollapseExpand_PropertyListCtrl(benchmark::State& state)
{
    Application();
    Grid grid;
    PropertyListCtrl& list = *grid.list;
    for (auto _ : state) {
        for (int row = 0; row < list.GetCount(); ++row) // each category's row is the next one once collapsed
            list.DoCollapseExpand(row);
        benchmark::DoNotOptimize(list.GetClientRect()); // laid out, as the tree
        for (int row = list.GetCount() - 1; row >= 0; --row) // from the end, so the rows above stay put
            list.DoCollapseExpand(row);
        benchmark::DoNotOptimize(list.GetClientRect());
    }
    benchmark::DoNotOptimize(list.GetClientRect());
    if (list.GetCount() != kCategories * (kItemsPerCategory + 1))
        state.SkipWithError("the grid lost rows");
}

void BM_CollapseExpand_QTreeWidget(benchmark::State& state)
{
    Application();
    auto tree = MakeTree();
    for (auto _ : state) {
        for (int c = 0; c < kCategories; ++c)
            tree->collapseItem(tree->topLevelItem(c));
        tree->doItemsLayout();
        for (int c = 0; c < kCategories; ++c)
            tree->expandItem(tree->topLevelItem(c));
        tree->doItemsLayout();
    }
}

} // namespace

BENCHMARK(BM_Build_PropertyListCtrl)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Build_QTreeWidget)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Repaint_PropertyListCtrl)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Repaint_QTreeWidget)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CollapseExpand_PropertyListCtrl)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CollapseExpand_QTreeWidget)->Unit(benchmark::kMillisecond);
