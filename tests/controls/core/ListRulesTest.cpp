#include <KORVAutlwin/controls/ListData.h>
#include <KORVAutlwin/controls/ListRules.h>
#include <KORVAutl/TsString.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

void Fill(ListData& list, const std::vector<std::string>& texts)
{
    if (list.GetColumnCount() == 0) {
        list.InsertColumn(0, "A");
        list.InsertColumn(1, "B");
    }
    for (size_t i = 0; i < texts.size(); ++i) {
        const int row = list.InsertItem(static_cast<int>(i), texts[i].c_str(), 0, i + 100);
        list.SetItemText(row, 1, std::to_string(i).c_str());
    }
}

std::vector<int> Selected(const ListData& list)
{
    std::vector<int> rows;
    for (int r = list.GetNextItem(-1, LVIS_SELECTED); r != -1; r = list.GetNextItem(r, LVIS_SELECTED))
        rows.push_back(r);
    return rows;
}

} // namespace

TEST(ListRules, SortMatchesNumberOrderAndCarriesRows)
{
    std::mt19937 random(7);
    std::vector<std::string> texts;
    for (int i = 0; i < 500; ++i)
        texts.push_back("item" + std::to_string(random() % 120));
    for (bool ascending : {true, false}) {
        SCOPED_TRACE(ascending);
        ListData list;
        list.SetExtendedStyle(LVS_EX_CHECKBOXES);
        Fill(list, texts);
        list.SetItemState(3, LVIS_SELECTED | 0x0040, LVIS_SELECTED | 0x0040);
        list.SetCheck(3, true);
        const std::string third = texts[3];
        ASSERT_TRUE(ListRules::SortItems(list, 0, ascending));
        std::vector<std::string> expected = texts;
        std::sort(expected.begin(), expected.end(), [ascending](const std::string& a, const std::string& b) {
            return ascending ? tsstrnumbercmp(a.c_str(), b.c_str()) < 0 : tsstrnumbercmp(a.c_str(), b.c_str()) > 0;
        });
        for (int row = 0; row < list.GetItemCount(); ++row) {
            ASSERT_EQ(list.GetItemText(row, 0), expected[static_cast<size_t>(row)]);
            // Every cell, the item data and the masked state travel together.
            const size_t origin = std::stoul(list.GetItemText(row, 1));
            ASSERT_EQ(list.GetItemData(row), origin + 100);
            ASSERT_EQ(list.GetItemState(row, LVIS_SELECTED) != 0, origin == 3);
            ASSERT_EQ(list.GetCheck(row), origin == 3);
        }
        // Bits outside 0xFF0F stay with the position.
        EXPECT_EQ(list.GetItemState(3, 0x0040), 0x0040u);
    }
}

TEST(ListRules, SortEdgeCases)
{
    ListData list;
    Fill(list, {"b", "a", "a"});
    EXPECT_FALSE(ListRules::SortItems(list, 2, true)); // no such column
    EXPECT_FALSE(ListRules::SortItems(list, 0, true, 1, 1));
    EXPECT_EQ(list.GetItemText(0, 0), "b");
    ListData equal;
    Fill(equal, {"a", "a"});
    ASSERT_TRUE(ListRules::SortItems(equal, 0, false));
    // Equal rows are never exchanged with each other.
    EXPECT_EQ(equal.GetItemData(0), 100u);
    EXPECT_EQ(equal.GetItemData(1), 101u);
    ListData one;
    Fill(one, {"x"});
    EXPECT_FALSE(ListRules::SortItems(one, 0, true));
}

TEST(ListRules, SetSelectionTouchesOnlyChangedRows)
{
    ListData list;
    Fill(list, std::vector<std::string>(20, "r"));
    for (int row : {0, 5, 6, 15})
        list.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
    list.SetItemState(15, LVIS_FOCUSED, LVIS_FOCUSED);
    std::vector<int> touched;
    QObject::connect(&list, &ListData::ItemStateChanged, [&](int row, unsigned, unsigned) { touched.push_back(row); });
    const int extra[] = {0, 12};
    ListRules::SetSelection(list, 7, 4, extra, 2);
    EXPECT_EQ(Selected(list), (std::vector<int>{0, 4, 5, 6, 7, 12}));
    EXPECT_EQ(touched, (std::vector<int>{4, 7, 12, 15}));
    EXPECT_EQ(list.GetItemState(15, LVIS_FOCUSED), 0u);
}

TEST(ListRules, BoundsStoreMaxPlusOne)
{
    ListData list;
    list.SetExtendedStyle(LVS_EX_CHECKBOXES);
    Fill(list, std::vector<std::string>(10, "r"));
    unsigned long data[8] = {};
    int rows[8] = {};
    EXPECT_EQ(ListRules::GetCheckedItemData(list, data, 3), 0);
    for (int row = 0; row < 6; ++row) {
        list.SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
        list.SetCheck(row, true);
    }
    EXPECT_EQ(ListRules::GetSelIndexes(list, rows, 3), 4);
    EXPECT_EQ(rows[3], 3);
    EXPECT_EQ(ListRules::GetSelIndexes(list, rows, 7), 6);
    EXPECT_EQ(ListRules::GetCheckedItemData(list, data, 3), 4);
    EXPECT_EQ(data[3], 103u);
    ListData plain;
    Fill(plain, {"a"});
    EXPECT_EQ(ListRules::GetCheckedItemData(plain, data, 3), -1);
}

TEST(ListRules, SetSelIndexesAndComplement)
{
    for (bool single : {false, true}) {
        SCOPED_TRACE(single);
        ListData list;
        list.ModifyStyle(0, single ? LVS_SINGLESEL : 0);
        Fill(list, std::vector<std::string>(5, "r"));
        ListRules::SetSelIndexes(list, {1, 3});
        EXPECT_EQ(Selected(list), single ? std::vector<int>({1}) : std::vector<int>({1, 3}));
        ListRules::SetSelIndexes(list, {});
        EXPECT_EQ(Selected(list), single ? std::vector<int>({1}) : std::vector<int>());
        ListRules::ComplementSelection(list);
        EXPECT_EQ(Selected(list), single ? std::vector<int>({1}) : std::vector<int>({0, 1, 2, 3, 4}));
        list.SetItemState(3, LVIS_SELECTED, LVIS_SELECTED); // a single-selection list holds one row
        EXPECT_EQ(Selected(list), single ? std::vector<int>({3}) : std::vector<int>({0, 1, 2, 3, 4}));
    }
}

TEST(ListRules, ColumnArithmetic)
{
    const float percents[] = {25.0f, 50.0f, 0.0f};
    EXPECT_EQ(ListRules::PercentColumnWidths(400, 16, percents, 3), (std::vector<int>{97, 194, 93}));

    struct Case
    {
        const char* name;
        std::vector<int> widths;
        int last, threshold, cx;
        bool changed;
        int lastAfter;
        std::vector<int> expected;
    } cases[] = {
        {"off", {100, 100}, -1, 10, 500, false, -1, {100, 100}},
        {"below threshold accumulates", {100, 100}, 300, 10, 305, false, 300, {100, 100}},
        {"one column ignores threshold", {100}, 300, 10, 305, true, 305, {105}},
        {"shrink in proportion", {100, 300}, 420, 10, 380, true, 380, {90, 270}},
        {"growth while overflowing", {300, 300}, 400, 10, 500, false, 500, {300, 300}},
        {"growth in proportion", {100, 100}, 220, 10, 320, true, 320, {150, 150}},
    };
    for (Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ListRules::ProportionalResize(c.widths, c.last, c.threshold, c.cx, 16), c.changed);
        EXPECT_EQ(c.last, c.lastAfter);
        EXPECT_EQ(c.widths, c.expected);
    }

    std::vector<int> widths;
    EXPECT_EQ(ListRules::FormatColumnWidths({120, 0, 75}), "3,120,0,75");
    EXPECT_TRUE(ListRules::ParseColumnWidths("3,120,0,75", 3, widths));
    EXPECT_EQ(widths, (std::vector<int>{120, 0, 75}));
    EXPECT_FALSE(ListRules::ParseColumnWidths("2,120,75", 3, widths));
    EXPECT_FALSE(ListRules::ParseColumnWidths("3,x", 3, widths));
}

TEST(ListRules, KeyboardTable)
{
    using R = ListRules;
    struct Case
    {
        int key;
        bool ctrl, shift, shortcuts, deleteShortcut, boxes;
        int selected;
        bool single;
        R::EKeyAction action;
    } cases[] = {
        {Qt::Key_C, true, false, false, false, false, 1, false, R::eDefaultKey}, // both flags off
        {Qt::Key_C, true, false, false, true, false, 1, false, R::eCopySelection}, // either flag turns it on
        {Qt::Key_Delete, false, false, true, false, false, 1, false, R::eDefaultKey},
        {Qt::Key_Delete, false, false, false, true, false, 1, false, R::eDeleteSelected},
        {Qt::Key_Space, false, false, true, false, true, 2, false, R::eToggleChecks},
        {Qt::Key_Space, false, false, true, false, true, 1, false, R::eDefaultKey},
        {Qt::Key_Insert, true, false, true, false, false, 0, false, R::eCopySelection},
        {Qt::Key_Insert, true, true, true, false, false, 0, false, R::eCopyAll},
        {Qt::Key_C, true, true, true, false, false, 0, false, R::eCopyAll},
        {Qt::Key_A, true, false, true, false, false, 0, false, R::eSelectAll},
        {Qt::Key_A, true, false, true, false, false, 0, true, R::eIgnore},
        {Qt::Key_A, true, true, true, false, false, 0, false, R::eComplement},
        {Qt::Key_I, true, true, true, false, false, 0, false, R::eComplement},
        {Qt::Key_I, true, false, true, false, false, 0, false, R::eComplement},
        {Qt::Key_A, false, false, true, false, false, 0, false, R::eDefaultKey},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.key << " ctrl " << c.ctrl << " shift " << c.shift);
        EXPECT_EQ(R::DecideKey(c.key, c.ctrl, c.shift, c.shortcuts, c.deleteShortcut, c.boxes, c.selected, c.single),
                  c.action);
    }
}

TEST(ListRules, EditorMoves)
{
    struct Case
    {
        int key;
        bool ctrl, shift;
        int row, col;
        bool handled;
        int rowAfter, colAfter;
    } cases[] = {
        {Qt::Key_Tab, false, false, 0, 1, true, 0, 2},      {Qt::Key_Tab, false, false, 0, 2, true, 1, 0},
        {Qt::Key_Tab, false, false, 49, 2, true, 49, 2},    {Qt::Key_Backtab, false, true, 1, 0, true, 0, 2},
        {Qt::Key_Tab, false, true, 0, 0, true, 0, 0},       {Qt::Key_PageUp, false, false, 5, 1, true, 0, 1},
        {Qt::Key_PageUp, false, false, 30, 1, true, 21, 1}, {Qt::Key_PageDown, false, false, 45, 1, true, 49, 1},
        {Qt::Key_PageDown, false, false, 0, 1, true, 9, 1}, {Qt::Key_End, true, false, 3, 1, true, 49, 1},
        {Qt::Key_Home, true, false, 3, 1, true, 0, 1},      {Qt::Key_End, false, false, 3, 1, false, 3, 1},
        {Qt::Key_Up, false, false, 0, 1, false, 0, 1},      {Qt::Key_Down, false, false, 49, 1, false, 49, 1},
        {Qt::Key_Down, false, false, 3, 1, true, 4, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.key << " at " << c.row << "," << c.col);
        int row = c.row, col = c.col;
        EXPECT_EQ(ListRules::NextEditCell(c.key, c.ctrl, c.shift, 50, 3, 10, row, col), c.handled);
        EXPECT_EQ(row, c.rowAfter);
        EXPECT_EQ(col, c.colAfter);
    }
}

TEST(ListRules, DragSteps)
{
    struct Case
    {
        int x, y, direction, distance, target;
    } cases[] = {
        {10, 50, 0, 0, -1}, {10, 100, 0, 0, -1}, {10, 131, 1, 30, 30}, {10, -8, -1, 8, 19},
        {-40, 131, 1, 40, 30}, {300, 50, 0, 99, -1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.x << "," << c.y);
        const ListRules::DragStep step = ListRules::ComputeDragStep(c.x, c.y, 200, 100, 20, 10, 1000);
        EXPECT_EQ(step.direction, c.direction);
        EXPECT_EQ(step.distance, c.distance);
        EXPECT_EQ(step.target, c.target);
    }
    EXPECT_EQ(ListRules::ComputeDragStep(0, 200, 200, 100, 995, 10, 1000).target, 1000);
    EXPECT_EQ(ListRules::DragTimerDelay(49, 16), 25);
    EXPECT_EQ(ListRules::DragTimerDelay(48, 16), 50);
}
