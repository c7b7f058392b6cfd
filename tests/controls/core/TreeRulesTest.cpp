// The tree's window-free rules: text form, navigation, check propagation, search.

#include "TreeTestTree.h"

#include <gtest/gtest.h>

namespace {

std::string Load(const std::string& text)
{
    TestTree tree;
    TreeRules::LoadText(tree, text);
    return tree.Shape();
}

TEST(TreeTextForm, LoadPlacesEveryLine)
{
    struct Row { const char* name; const char* text; const char* shape; };
    const Row rows[] = {
        {"plain", "a\r\n\tb\r\n\t\tc\r\n\td\r\ne\r\n", "a(b(c) d) e"},
        {"bare line feeds, no final end", "a\n\tb\nc", "a(b) c"},
        {"empty lines skipped", "a\r\n\r\n\tb\r\n\r\n\r\nc\r\n", "a(b) c"},
        {"two levels deeper is still a direct child", "a\r\n\t\t\tb\r\n\tc\r\n", "a(b c)"},
        {"back up several levels", "a\n\tb\n\t\tc\n\t\t\td\n\te\nf", "a(b(c(d)) e) f"},
        {"first line indented is level 0", "\t\ta\n\t\t\tb\n\t\tc", "a(b) c"},
        {"shallower than the first line goes to the top", "\t\ta\n\t\t\tb\nc\n\t\td", "a(b) c d"},
        {"irregular indents after a deep jump", "a\n\t\t\tb\n\t\tc\n\td", "a(b(c) d)"},
        {"a line of tabs only is an item with empty text", "a\n\t\n", "a()"},
        {"empty first line sets the base to 0", "\n\ta\n\t\tb", "a(b)"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Load(row.text), row.shape);
    }
}

TEST(TreeTextForm, StoreThenLoadKeepsTheTree)
{
    TestTree tree("a(b(c d(e)) f) g(h) i");
    const std::string text = TreeRules::StoreText(tree);
    EXPECT_EQ(text, "a\r\n\tb\r\n\t\tc\r\n\t\td\r\n\t\t\te\r\n\tf\r\ng\r\n\th\r\ni\r\n");
    EXPECT_EQ(Load(text), tree.Shape());
    EXPECT_EQ(TreeRules::StoreText(TestTree()), "");
}

TEST(TreeNavigation, PreOrderBothWaysIgnoresNothing)
{
    TestTree tree("a(b(c d(e)) f) g(h) i");
    std::string forward, backward;
    for (HTREEITEM item = tree.GetRootItem(); item; item = TreeRules::GetNextItem(tree, item))
        forward += tree.GetItemText(item);
    for (HTREEITEM item = TreeRules::GetLastItem(tree, nullptr); item; item = TreeRules::GetPrevItem(tree, item))
        backward.insert(0, tree.GetItemText(item));
    EXPECT_EQ(forward, "abcdefghi");
    EXPECT_EQ(backward, forward);
    EXPECT_EQ(TreeRules::GetLastItem(tree, tree.Find("a")), tree.Find("f"));
    EXPECT_EQ(TreeRules::GetLastItem(tree, tree.Find("b")), tree.Find("e"));
    EXPECT_EQ(TreeRules::GetIndentLevel(tree, tree.Find("e")), 3);
    EXPECT_EQ(TreeRules::GetNumChildren(tree, tree.Find("b")), 2);
    EXPECT_EQ(TreeRules::GetNumChildren(tree, nullptr), 9);
}

// Check indexes written as one digit per item in pre-order.
std::string Checks(const TestTree& tree)
{
    std::string out;
    for (HTREEITEM item = tree.GetRootItem(); item; item = TreeRules::GetNextItem(tree, item))
        out += static_cast<char>('0' + tree.GetCheckIndex(item));
    return out;
}
void SetChecks(TestTree& tree, const std::string& digits)
{
    HTREEITEM item = tree.GetRootItem();
    for (char digit : digits) {
        tree.SetCheckIndex(item, digit - '0');
        item = TreeRules::GetNextItem(tree, item);
    }
}

TEST(TreeChecks, SetCheckPropagatesUpAndDown)
{
    // Tree r(p(x y) q): pre-order r p x y q.
    struct Row { const char* name; const char* before; const char* item; int type; const char* after; };
    const Row rows[] = {
        {"last sibling checked gives parent 4, grandparent 3", "11211", "y", 1, "34221"},
        {"an unchecked sibling gives 3", "11111", "y", 1, "33121"},
        {"unchecking the last checked child gives 1", "33211", "x", 2, "11111"},
        {"checking a parent checks all below", "11111", "p", 1, "32221"},
        {"a 5 below keeps its box", "11151", "p", 1, "32251"},
        {"boxes 0 and 5 above stay, the walk goes on", "01211", "y", 1, "04221"},
        {"disabled parent stays, grandparent follows", "15211", "y", 2, "35211"},
        {"toggle of a checked item unchecks", "44222", "q", 3, "34221"},
        {"toggle of a partly checked item unchecks", "33211", "p", 3, "11111"},
        {"type 0 removes the box only", "44222", "x", 0, "44022"},
        {"type 4 disables only", "11111", "x", 4, "11511"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TestTree tree("r(p(x y) q)");
        SetChecks(tree, row.before);
        EXPECT_EQ(TreeRules::SetCheck(tree, tree.Find(row.item), row.type), 1);
        EXPECT_EQ(Checks(tree), row.after);
    }
    TestTree tree("a");
    EXPECT_EQ(TreeRules::SetCheck(tree, nullptr, 1), 0);
    EXPECT_FALSE(TreeRules::GetCheck(tree, nullptr));
}

TEST(TreeChecks, CheckedItemWalks)
{
    TestTree tree("a(b c) d(e f) g");
    SetChecks(tree, "1223121"); // a1 b2 c2 d3 e1 f2 g1
    std::string forward;
    for (HTREEITEM item = TreeRules::GetFirstCheckedItem(tree); item; item = TreeRules::GetNextCheckedItem(tree, item))
        forward += tree.GetItemText(item);
    EXPECT_EQ(forward, "bcf");
    std::string backward;
    for (HTREEITEM item = TreeRules::GetPrevCheckedItem(tree, tree.Find("g")); item;
         item = TreeRules::GetPrevCheckedItem(tree, item))
        backward += tree.GetItemText(item);
    EXPECT_EQ(backward, "fdcb"); // stops at the partly checked d as well
}

TEST(TreeFind, WholeWordRules)
{
    struct Row { const char* item; const char* text; bool matchCase, wholeWord, found; };
    const Row rows[] = {
        {"Some Text", "text", false, false, true},
        {"Some Text", "text", true, false, false},
        {"context", "text", false, true, false},
        {"text_x", "text", false, true, false},
        {"a text.", "text", false, true, true},
        {"text2", "text", false, true, true},     // digits bound a word
        {"9text", "text", false, true, true},
        {"texts", "text", false, true, false},
        {"xtext text", "text", false, true, true},
        {"abab", "ab", false, true, true},        // the rest after a failed hit starts a new text
        {"", "a", false, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.item) + " / " + row.text);
        EXPECT_EQ(TreeRules::TextMatches(row.item, row.text, row.matchCase, row.wholeWord), row.found);
    }
}

TEST(TreeFind, WrapsBothWaysAndStopsAtTheStart)
{
    TestTree tree("x1(y1 x2) y2(x3) y3");
    auto find = [&](const char* text, bool down, const char* start, std::function<bool(HTREEITEM)> valid = nullptr) {
        HTREEITEM item = TreeRules::FindItem(tree, text, false, down, false, tree.Find(start), valid);
        return item ? tree.GetItemText(item) : std::string("-");
    };
    EXPECT_EQ(find("x", true, "y1"), "x2");
    EXPECT_EQ(find("x", true, "x3"), "x3"); // the start is taken first
    EXPECT_EQ(find("x", true, "y3"), "x1"); // wraps to the root
    EXPECT_EQ(find("x", false, "y1"), "x1");
    EXPECT_EQ(find("x", false, "x1"), "x1");
    EXPECT_EQ(find("x3", false, "x1"), "x3"); // wraps to the last item
    EXPECT_EQ(find("y3", true, "y3"), "y3");  // only the start matches
    EXPECT_EQ(find("z", true, "y2"), "-");
    EXPECT_EQ(find("", true, "y2"), "-");
    EXPECT_EQ(find("x", true, "x1", [&](HTREEITEM item) { return item == tree.Find("x3"); }), "x3");
}

} // namespace
