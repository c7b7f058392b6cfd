// The tree list's window-free rules: cells, comparison, sort, clipboard forms,
// scroll steps and column auto-size.

#include "TreeTestTree.h"

#include <KORVAutlwin/controls/TreeListRules.h>

#include <gtest/gtest.h>

#include <map>

namespace {

const std::string S = "\xC2\xB6"; // U+00B6 in UTF-8

TEST(TreeItemRecord, CellsReadAndWrite)
{
    struct Row { std::string before; int col; const char* cell; std::string after; };
    const Row rows[] = {
        {"", 0, "a", "a"},
        {"a", 2, "c", "a" + S + S + "c"},
        {"a" + S + "b" + S + "c", 1, "X", "a" + S + "X" + S + "c"},
        {"a" + S + "b" + S + "c", 0, "X", "X" + S + "b" + S + "c"},
        {"a" + S + "b" + S + "c", 2, "X", "a" + S + "b" + S + "X"},
        {"a" + S + "b", 2, "c", "a" + S + "b" + S + "c"},
        {S + "b", 1, "X", "X"}, // an empty cell 0 drops out when cell 1 is written
        {"Gr\xC3\xB6\xC3\x9F" "e" + S + "b", 1, "X", "Gr\xC3\xB6\xC3\x9F" "e" + S + "X"}, // "ö" ends in byte B6
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.before + " / " + std::to_string(row.col));
        TreeItemRecord record;
        record.text = row.before;
        record.SetCell(row.col, row.cell);
        EXPECT_EQ(record.text, row.after);
        if (row.after != "X") {
            EXPECT_EQ(record.GetCell(row.col), row.cell);
        }
    }
    TreeItemRecord record;
    record.text = "a" + S + "b";
    EXPECT_EQ(record.GetCell(5), "");
}

TreeItemRecord Rec(const char* text, int priority = 1000, int children = 0)
{
    TreeItemRecord record;
    record.text = text;
    record.priority = priority;
    record.hasChildren = children;
    return record;
}

TEST(TreeListCompare, StepsInOrder)
{
    struct Row { TreeItemRecord a, b; bool ascending; int result; };
    const Row rows[] = {
        {Rec("9"), Rec("10"), true, -1},         // equal (empty) stems: by number
        {Rec("9"), Rec("10"), false, 1},
        {Rec("item9"), Rec("Item10"), true, 1},  // stems differ in case: whole-text comparison
        {Rec("abc"), Rec("9"), true, 1},
        {Rec("abc"), Rec("ABC"), true, 0},
        {Rec("abc"), Rec("abd"), false, 1},
        {Rec("x7"), Rec("x07"), true, 1},        // equal numbers: whole text decides
        {Rec("zzz", 2000), Rec("aaa", 1000), true, -1},
        {Rec("zzz", 2000), Rec("aaa", 1000), false, -1}, // priority ignores the direction
        {Rec("zzz", 1000, 1), Rec("aaa", 2000), true, -1}, // groups outrank priority
        {Rec("zzz", 1000, 1), Rec("aaa", 1000), false, -1},
        {Rec("a99999999999999999999"), Rec("a1"), true, 1}, // long runs saturate
    };
    for (size_t i = 0; i < std::size(rows); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(TreeListRules::CompareFunc(&rows[i].a, &rows[i].b, {0, rows[i].ascending, true}), rows[i].result);
    }
    const TreeItemRecord group = Rec("zzz", 1000, 1), plain = Rec("aaa");
    EXPECT_EQ(TreeListRules::CompareFunc(&group, &plain, {0, true, false}), 1);
}

/// A tree whose items carry records, with cells "text|second".
struct RecordTree
{
    TestTree tree;
    std::map<HTREEITEM, TreeItemRecord> records;
    explicit RecordTree(const std::string& shape) : tree(shape)
    {
        for (HTREEITEM item = tree.GetRootItem(); item; item = TreeRules::GetNextItem(tree, item)) {
            TreeItemRecord& record = records[item];
            record.text = tree.GetItemText(item);
            record.hasChildren = tree.GetChildItem(item) ? 1 : 0;
        }
    }
    std::function<const TreeItemRecord*(HTREEITEM)> Records()
    {
        return [this](HTREEITEM item) { return &records[item]; };
    }
};

TEST(TreeListSort, ItemsAndTree)
{
    RecordTree sample("b10(z y(q p) x) b9 G(c a) abc");
    TreeListRules::SortItems(sample.tree, sample.Records(), 0, true, nullptr);
    EXPECT_EQ(sample.tree.Shape(), "b10(z y(q p) x) G(c a) abc b9"); // groups first, then the rest
    TreeListRules::SortTree(sample.tree, sample.Records(), 0, false, sample.tree.GetRootItem());
    EXPECT_EQ(sample.tree.Shape(), "b10(y(q p) z x) G(c a) abc b9");
}

class Table : public TreeListTable
{
public:
    explicit Table(RecordTree& tree, int columns) : mTree(tree), mColumns(columns) {}
    const TreeAccess& GetTree() const override { return mTree.tree; }
    int GetColumnCount() const override { return mColumns; }
    bool GetColumnTitle(int col, std::string& title) const override
    {
        if (col < 0 || col >= mColumns)
            return false;
        title = "T" + std::to_string(col);
        return true;
    }
    std::string GetItemText(HTREEITEM item, int col) const override
    {
        return col == 0 ? mTree.tree.GetItemText(item) : mTree.tree.GetItemText(item) + std::to_string(col);
    }

private:
    RecordTree& mTree;
    int mColumns;
};

TEST(TreeListClipboard, TextAndHtmlForms)
{
    RecordTree sample("a(b) c");
    Table table(sample, 3);
    EXPECT_EQ(TreeListRules::GetTextClipString(table), "T0\tT1\tT2\r\na\ta1\ta2\r\nb\tb1\tb2\r\nc\tc1\tc2");
    EXPECT_EQ(TreeListRules::ToHTML(table, "Cap"),
              "<table><caption>Cap</caption><thead><tr><th>T0</th><th>T1</th></tr></thead><tbody>"
              "<tr><td>a</td><td>a1</td><td>a2</td></tr>"
              "<tr><td>&nbsp;b</td><td>&nbsp;b1</td><td>&nbsp;b2</td></tr>"
              "<tr><td>c</td><td>c1</td><td>c2</td></tr></tbody></table>");
    const std::vector<HTREEITEM> items{sample.tree.Find("c"), sample.tree.Find("b")};
    EXPECT_EQ(TreeListRules::MakeClipString(table, items, 2), "\r\nc\tc1\r\nb\tb1");
    EXPECT_EQ(TreeListRules::ToHTML(table, items, 1), "<table><tbody><tr><td>c</td></tr><tr><td>b</td></tr></tbody></table>");
    // Nothing selected: the head stays, the trim stops there.
    EXPECT_EQ(TreeListRules::MakeClipString(table, {}, 2), "\r\n");
    EXPECT_EQ(TreeListRules::ToHTML(table, {}, 2), "<table><tbody></tbody></table>");
    RecordTree empty("");
    Table noRows(empty, 2);
    EXPECT_EQ(TreeListRules::GetTextClipString(noRows), "T0\tT1");
}

TEST(TreeListScroll, PositionsByCode)
{
    using R = TreeListRules;
    struct Row { int code, position, thumb, expected; };
    const Row rows[] = {
        {R::SB_LINELEFT, 4, 0, 0},      {R::SB_LINELEFT, 40, 0, 34},  {R::SB_LINERIGHT, 40, 0, 46},
        {R::SB_LINERIGHT, 497, 0, 499}, {R::SB_PAGELEFT, 150, 0, 50}, {R::SB_PAGELEFT, 50, 0, 0},
        {R::SB_PAGERIGHT, 450, 0, 499}, {R::SB_PAGERIGHT, 0, 0, 100}, {R::SB_THUMBTRACK, 0, 7, 12},
        {R::SB_THUMBPOSITION, 0, 0, 0}, {R::SB_THUMBTRACK, 0, 6, 12}, {R::SB_THUMBTRACK, 0, 498, 499},
        {R::SB_LEFT, 30, 0, 0},         {R::SB_RIGHT, 30, 0, 499},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::to_string(row.code) + " at " + std::to_string(row.position));
        EXPECT_EQ(R::NewScrollPosition(row.code, row.position, row.thumb, 500, 100), row.expected);
    }
    EXPECT_EQ(R::StretchWidth(250, 100), 300);
    EXPECT_EQ(R::StretchWidth(250, 0), 0);
}

TEST(TreeListAutoSize, TenPixelRuleAndShares)
{
    struct Row { const char* name; std::vector<int> widths; int stored, to; bool applied; int storedAfter; std::vector<int> after; };
    const Row rows[] = {
        {"9 pixels do nothing", {100, 100}, 300, 309, false, 300, {100, 100}},
        {"off", {100, 100}, -1, 400, false, -1, {100, 100}},
        {"grow shares by width", {100, 300}, 420, 520, true, 520, {125, 375}},
        {"shrink, the last takes the rest", {150, 150, 100}, 424, 394, true, 394, {139, 139, 92}},
        {"no column below 16", {20, 200}, 300, 200, true, 200, {20, 109}},
        {"nor the last one", {200, 20}, 300, 200, true, 200, {110, 20}},
        {"growing while wider than the client", {400, 400}, 300, 320, false, 320, {400, 400}},
        {"shrinking while narrower than the client", {50, 50}, 400, 300, false, 300, {50, 50}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::vector<int> widths = row.widths;
        int stored = row.stored;
        EXPECT_EQ(TreeListRules::AutoSizeColumns(widths, stored, row.to, 16), row.applied);
        EXPECT_EQ(stored, row.storedAfter);
        EXPECT_EQ(widths, row.after);
    }
    // The next change counts from the stored width: 9 + 9 pixels make a change.
    std::vector<int> widths{100, 100};
    int stored = 300;
    EXPECT_FALSE(TreeListRules::AutoSizeColumns(widths, stored, 309, 16));
    EXPECT_TRUE(TreeListRules::AutoSizeColumns(widths, stored, 318, 16));
    EXPECT_EQ(widths, (std::vector<int>{109, 109}));
}

} // namespace
