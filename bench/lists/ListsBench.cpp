// The data controls against Qt's own means, in the same run.
//
// Filter: one keystroke of the filter popup over 1,000,000 items (the text
// alternates between "471" and "4711", argument 0, or "whe" and "whea",
// argument 1, so that every iteration filters anew),
// against QSortFilterProxyModel with a fixed-string, case-insensitive filter
// over a QStringListModel of the same texts. Target: at least 10 times faster.
// SetSelection: a range on 100,000 rows moving between two places, against
// QItemSelectionModel::select of the same ranges.
// Clipboard: ToHTML + MakeHTMLClipStringFromText (and ToString) of 10,000 and
// 100,000 rows by 10 columns, to show linear growth; target under 100 ms for
// 1e6 cells.
// Sort: SortItems of 100,000 rows of unsorted text against QTreeWidget::sortItems.

#include <KORVAutlwin/controls/FilterListCtrlPopupBar.h>
#include <KORVAutlwin/controls/ListClipboard.h>
#include <KORVAutlwin/controls/ListData.h>
#include <KORVAutlwin/controls/ListRules.h>

#include <QApplication>
#include <QItemSelectionModel>
#include <QSortFilterProxyModel>
#include <QStringListModel>
#include <QTreeWidget>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kFilterItems = 1000000;
constexpr int kSelectionRows = 100000;
constexpr int kSortRows = 100000;

QApplication& App()
{
    static int argc = 1;
    static char name[] = "bench_lists";
    static char* argv[] = {name, nullptr};
    static QApplication* app = [] {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        return new QApplication(argc, argv);
    }();
    return *app;
}

// "Sample 000001 wheat lot 4711"-like names.
const std::vector<std::string>& Names()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        all.reserve(kFilterItems);
        const char* materials[] = {"Wheat", "Barley", "Oats", "Rye", "Maize"};
        std::mt19937 random(11);
        for (int i = 0; i < kFilterItems; ++i)
            all.push_back("Sample " + std::to_string(i) + " " + materials[random() % 5] + " lot " +
                          std::to_string(random() % 100000));
        return all;
    }();
    return names;
}

struct NameItems : FilterListItems
{
    unsigned int GetItemCount() const override { return static_cast<unsigned>(Names().size()); }
    const char* GetItemText(unsigned int i) const override { return Names()[i].c_str(); }
};

void BM_FilterPopupKeystroke(benchmark::State& state)
{
    App();
    NameItems items;
    FilterListCtrlPopupBar bar(items, static_cast<unsigned>(-1));
    const char* texts[2][2] = {{"471", "4711"}, {"whe", "whea"}};
    const auto& pair = texts[state.range(0)];
    bool longer = false;
    for (auto _ : state) {
        bar.Filter(pair[longer]);
        longer = !longer;
        benchmark::DoNotOptimize(bar.GetVisibleItems().size());
    }
    state.counters["visible"] = static_cast<double>(bar.GetVisibleItems().size());
}
BENCHMARK(BM_FilterPopupKeystroke)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_ProxyModelFixedStringFilter(benchmark::State& state)
{
    App();
    QStringList texts;
    texts.reserve(kFilterItems);
    for (const std::string& name : Names())
        texts.push_back(QString::fromStdString(name));
    QStringListModel source(texts);
    QSortFilterProxyModel proxy;
    proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy.setSourceModel(&source);
    const QString filters[2][2] = {{QStringLiteral("471"), QStringLiteral("4711")},
                                   {QStringLiteral("whe"), QStringLiteral("whea")}};
    const auto& pair = filters[state.range(0)];
    bool longer = false;
    for (auto _ : state) {
        proxy.setFilterFixedString(pair[longer]);
        longer = !longer;
        benchmark::DoNotOptimize(proxy.rowCount());
    }
    state.counters["visible"] = proxy.rowCount();
}
BENCHMARK(BM_ProxyModelFixedStringFilter)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_SetSelectionRange(benchmark::State& state)
{
    ListData rows;
    rows.InsertColumn(0, "Name");
    for (int i = 0; i < kSelectionRows; ++i)
        rows.InsertItem(i, "row");
    bool second = false;
    for (auto _ : state) {
        if (second)
            ListRules::SetSelection(rows, 20000, 90000, nullptr, 0);
        else
            ListRules::SetSelection(rows, 1000, 60000, nullptr, 0);
        second = !second;
    }
}
BENCHMARK(BM_SetSelectionRange)->Unit(benchmark::kMillisecond);

void BM_QItemSelectionModelRange(benchmark::State& state)
{
    QStringListModel model(QStringList(kSelectionRows, QStringLiteral("row")));
    QItemSelectionModel selection(&model);
    bool second = false;
    for (auto _ : state) {
        const int from = second ? 20000 : 1000, to = second ? 90000 : 60000;
        selection.select(QItemSelection(model.index(from), model.index(to)),
                         QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
        second = !second;
        benchmark::DoNotOptimize(selection.isSelected(model.index(from)));
    }
}
BENCHMARK(BM_QItemSelectionModelRange)->Unit(benchmark::kMillisecond);

// 10 columns of short numbers and names, as a result table holds them.
struct Table : ClipboardTable
{
    explicit Table(int rows)
    {
        for (int col = 0; col < 10; ++col)
            data.InsertColumn(col, ("Column " + std::to_string(col)).c_str());
        for (int row = 0; row < rows; ++row) {
            data.InsertItem(row, ("Sample " + std::to_string(row)).c_str());
            for (int col = 1; col < 10; ++col)
                data.SetItemText(row, col, std::to_string((row * 7 + col * 13) % 1000 / 10.0).c_str());
        }
    }
    int GetColumnCount() const override { return data.GetColumnCount(); }
    std::string GetColumnText(int col) const override { return data.GetColumn(col).title; }
    bool HasColumnHeader() const override { return true; }
    std::string GetClipboardItemText(int row, int col) const override { return data.ItemTextRef(row, col); }
    ListData data;
};

void BM_ClipboardHtml(benchmark::State& state)
{
    const Table table(static_cast<int>(state.range(0)));
    const AllItemsFormatter all("Results", static_cast<int>(state.range(0)));
    for (auto _ : state) {
        const std::string block = ListClipboard::MakeHTMLClipStringFromText(ListClipboard::ToHTML(table, all));
        benchmark::DoNotOptimize(block.size());
    }
    state.counters["cells"] = static_cast<double>(state.range(0) * 10);
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ClipboardHtml)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

void BM_ClipboardText(benchmark::State& state)
{
    const Table table(static_cast<int>(state.range(0)));
    const AllItemsFormatter all("Results", static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(ListClipboard::ToString(table, all).size());
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_ClipboardText)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);

std::vector<std::string> SortTexts()
{
    std::vector<std::string> texts;
    std::mt19937 random(5);
    for (int i = 0; i < kSortRows; ++i)
        texts.push_back("item" + std::to_string(random() % 1000000));
    return texts;
}

void BM_SortItems(benchmark::State& state)
{
    const std::vector<std::string> texts = SortTexts();
    ListData rows;
    rows.InsertColumn(0, "Name");
    rows.InsertColumn(1, "Value");
    for (int i = 0; i < kSortRows; ++i) {
        rows.InsertItem(i, texts[static_cast<size_t>(i)].c_str());
        rows.SetItemText(i, 1, "1.0");
    }
    for (auto _ : state) {
        state.PauseTiming();
        for (int i = 0; i < kSortRows; ++i)
            rows.SetItemText(i, 0, texts[static_cast<size_t>(i)].c_str());
        state.ResumeTiming();
        ListRules::SortItems(rows, 0, true);
    }
}
BENCHMARK(BM_SortItems)->Unit(benchmark::kMillisecond)->MinTime(2.0);

void BM_QTreeWidgetSortItems(benchmark::State& state)
{
    App();
    const std::vector<std::string> texts = SortTexts();
    QTreeWidget tree;
    tree.setColumnCount(2);
    for (auto _ : state) {
        state.PauseTiming();
        tree.clear();
        QList<QTreeWidgetItem*> items;
        for (const std::string& text : texts)
            items.push_back(new QTreeWidgetItem({QString::fromStdString(text), QStringLiteral("1.0")}));
        tree.addTopLevelItems(items);
        state.ResumeTiming();
        tree.sortItems(0, Qt::AscendingOrder);
    }
}
BENCHMARK(BM_QTreeWidgetSortItems)->Unit(benchmark::kMillisecond)->MinTime(2.0);

} // namespace
