// The tree controls with 100,000 items (1,000 top-level items of 99 children),
// side by side with a plain QTreeWidget doing the same by hand in the same run:
//
//  - store: the tab-indented text form (TsTreeCtrl::Serialize) against a
//    QTreeWidgetItemIterator walk writing the same bytes;
//  - load: the text form into an empty tree against a hand-written parser
//    that keeps a stack of parents;
//  - sort: TsTreeListCtrl::SortTree by a numbered column (stems and numbers,
//    groups first, priorities) against QTreeWidget::sortItems on the same
//    texts (plain text order). The direction flips every round.
//
// Offscreen.

#include <KORVAutlwin/controls/TsTreeListCtrl.h>

#include <QApplication>
#include <QBuffer>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>

namespace {

constexpr int kTop = 1000;
constexpr int kChildren = 99;

QApplication& Application()
{
    static int argc = 1;
    static char name[] = "bench_trees";
    static char* argv[] = {name, nullptr};
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QApplication application(argc, argv);
    return application;
}

/// The text form of the sample tree.
const std::string& SampleText()
{
    static const std::string text = [] {
        std::string out;
        for (int top = 0; top < kTop; ++top) {
            out += "Batch " + std::to_string((top * 7919) % kTop) + "\r\n";
            for (int child = 0; child < kChildren; ++child)
                out += "\tSample " + std::to_string((child * 31 + top) % 1000) + "\r\n";
        }
        return out;
    }();
    return text;
}

void LoadTsTree(TsTreeCtrl& tree)
{
    QBuffer buffer;
    buffer.setData(SampleText().data(), static_cast<qsizetype>(SampleText().size()));
    buffer.open(QIODevice::ReadOnly);
    tree.Serialize(buffer, false);
}

void LoadQtTree(QTreeWidget& tree)
{
    const QByteArray text = QByteArray::fromStdString(SampleText());
    std::vector<QTreeWidgetItem*> parents;
    for (const QByteArray& line : text.split('\n')) {
        int tabs = 0;
        while (tabs < line.size() && line[tabs] == '\t')
            ++tabs;
        const QByteArray label = line.mid(tabs).trimmed();
        if (label.isEmpty())
            continue;
        parents.resize(std::min<size_t>(parents.size(), static_cast<size_t>(tabs)));
        auto* item = new QTreeWidgetItem(QStringList{QString::fromUtf8(label)});
        if (parents.empty())
            tree.addTopLevelItem(item);
        else
            parents.back()->addChild(item);
        parents.push_back(item);
    }
}

void Store_TsTreeCtrl(benchmark::State& state)
{
    Application();
    TsTreeCtrl tree;
    LoadTsTree(tree);
    for (auto _ : state) {
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        tree.Serialize(out, true);
        benchmark::DoNotOptimize(out.data().size());
    }
    state.SetItemsProcessed(state.iterations() * kTop * (kChildren + 1));
}

void Store_QTreeWidget(benchmark::State& state)
{
    Application();
    QTreeWidget tree;
    LoadQtTree(tree);
    for (auto _ : state) {
        QByteArray out;
        for (QTreeWidgetItemIterator it(&tree); *it; ++it) {
            for (QTreeWidgetItem* up = (*it)->parent(); up; up = up->parent())
                out += '\t';
            out += (*it)->text(0).toUtf8() + "\r\n";
        }
        benchmark::DoNotOptimize(out.size());
    }
    state.SetItemsProcessed(state.iterations() * kTop * (kChildren + 1));
}

void Load_TsTreeCtrl(benchmark::State& state)
{
    Application();
    TsTreeCtrl tree;
    for (auto _ : state) {
        LoadTsTree(tree);
        state.PauseTiming();
        tree.DeleteAllItems();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kTop * (kChildren + 1));
}

void Load_QTreeWidget(benchmark::State& state)
{
    Application();
    QTreeWidget tree;
    for (auto _ : state) {
        LoadQtTree(tree);
        state.PauseTiming();
        tree.clear();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * kTop * (kChildren + 1));
}

void SortTree_TsTreeListCtrl(benchmark::State& state)
{
    Application();
    TsTreeListCtrl list;
    list.InsertColumn(0, "Name", 0, 120);
    list.SetRedraw(false);
    LoadTsTree(list.GetTreeCtrl());
    list.SetRedraw(true);
    bool ascending = true;
    for (auto _ : state) {
        list.SortTree(0, ascending, list.GetRootItem());
        list.GetTreeCtrl().SortItems(0, ascending, nullptr); // the top level too, as sortItems does
        ascending = !ascending;
    }
    state.SetItemsProcessed(state.iterations() * kTop * (kChildren + 1));
}

void SortTree_QTreeWidget(benchmark::State& state)
{
    Application();
    QTreeWidget tree;
    LoadQtTree(tree);
    bool ascending = true;
    for (auto _ : state) {
        tree.sortItems(0, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
        ascending = !ascending;
    }
    state.SetItemsProcessed(state.iterations() * kTop * (kChildren + 1));
}

} // namespace

BENCHMARK(Store_TsTreeCtrl)->Unit(benchmark::kMillisecond);
BENCHMARK(Store_QTreeWidget)->Unit(benchmark::kMillisecond);
BENCHMARK(Load_TsTreeCtrl)->Unit(benchmark::kMillisecond);
BENCHMARK(Load_QTreeWidget)->Unit(benchmark::kMillisecond);
BENCHMARK(SortTree_TsTreeListCtrl)->Unit(benchmark::kMillisecond);
BENCHMARK(SortTree_QTreeWidget)->Unit(benchmark::kMillisecond);
