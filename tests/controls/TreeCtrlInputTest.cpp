// The tree control under real mouse and keyboard input: the selection states,
// check boxes, drag and drop with hover expansion, keys and the text form.

#include "ControlsTestSupport.h"

#include <KORVAutlwin/controls/TsTreeCtrl.h>

#include <QBuffer>

using namespace korva::test;

namespace {

class TreeCtrlInput : public ControlsFixture
{
protected:
    /// r1(a(a1 a2) b(b1)) r2, all expanded.
    TsTreeCtrl* MakeTree(unsigned long extraStyle = 0)
    {
        auto* tree = new TsTreeCtrl(mWindow.get(), TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | extraStyle);
        QBuffer text;
        text.setData("r1\r\n\ta\r\n\t\ta1\r\n\t\ta2\r\n\tb\r\n\t\tb1\r\nr2\r\n");
        text.open(QIODevice::ReadOnly);
        tree->Serialize(text, false);
        tree->expandAll();
        Show(tree);
        return tree;
    }
    static HTREEITEM Item(TsTreeCtrl* tree, const char* text)
    {
        for (HTREEITEM item = tree->GetRootItem(); item; item = tree->GetNextItem(item))
            if (tree->GetItemText(item) == text)
                return item;
        return nullptr;
    }
    /// The middle of the item's label.
    static QPoint Label(TsTreeCtrl* tree, HTREEITEM item)
    {
        const QRect rect = tree->visualItemRect(TsTreeCtrl::Q(item));
        QPoint point(rect.left() + 4, rect.center().y());
        unsigned int flags = 0;
        while (tree->HitTest(point, &flags) && flags != TVHT_ONITEMLABEL && point.x() < rect.right())
            point.rx() += 2;
        return point;
    }
    static void Click(TsTreeCtrl* tree, HTREEITEM item, Qt::KeyboardModifiers mods = {})
    {
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, mods, Label(tree, item));
    }
    static std::string Selected(TsTreeCtrl* tree)
    {
        std::string out;
        for (HTREEITEM item = tree->GetFirstSelectedItem(); item; item = tree->GetNextSelectedItem(item))
            out += (out.empty() ? "" : " ") + tree->GetItemText(item);
        return out;
    }
    static std::string Text(TsTreeCtrl* tree)
    {
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        tree->Serialize(out, true);
        return out.data().toStdString();
    }
    /// A drag from one label to another, with the button held through the moves.
    static void Drag(TsTreeCtrl* tree, HTREEITEM from, HTREEITEM to, Qt::KeyboardModifiers mods, bool release = true)
    {
        QWidget* port = tree->viewport();
        const QPoint start = Label(tree, from), end = Label(tree, to);
        QTest::mousePress(port, Qt::LeftButton, mods, start);
        for (QPoint at : {start + QPoint(0, 12), end}) {
            QMouseEvent move(QEvent::MouseMove, at, port->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, mods);
            QApplication::sendEvent(port, &move);
        }
        if (release)
            QTest::mouseRelease(port, Qt::LeftButton, mods, end);
    }
};

} // namespace

TEST_F(TreeCtrlInput, SelectionStatesUnderClicks)
{
    TsTreeCtrl* tree = MakeTree();
    tree->EnableMultiSelect(true);
    Click(tree, Item(tree, "a"));
    Click(tree, Item(tree, "b"), Qt::ControlModifier);
    EXPECT_EQ(Selected(tree), "a b");
    Click(tree, Item(tree, "a"), Qt::ControlModifier);
    EXPECT_EQ(Selected(tree), "b");
    Click(tree, Item(tree, "r2"), Qt::ShiftModifier); // anchor: a, made current by the Ctrl click
    EXPECT_EQ(Selected(tree), "a a1 a2 b b1 r2");
    Click(tree, Item(tree, "a1"));
    EXPECT_EQ(Selected(tree), "a1");
    QTest::keyClick(tree, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(tree, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(Selected(tree), "a1 a2 b");
    QTest::keyClick(tree, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(Selected(tree), "a1 a2");

    // One leaf per parent: leaves of other parents stay, a parent can't be selected.
    tree->ClearSelection();
    tree->SetSelectionState(TsTreeCtrl::eOneLeafPerParent);
    Click(tree, Item(tree, "a1"));
    Click(tree, Item(tree, "b1"));
    Click(tree, Item(tree, "a2"));
    EXPECT_EQ(Selected(tree), "a2 b1");
    Click(tree, Item(tree, "b"));
    EXPECT_EQ(Selected(tree), "a2 b1");
    EXPECT_EQ(tree->SelectItems(Item(tree, "a"), Item(tree, "b")), 0); // ranges are state 1 only
}

TEST_F(TreeCtrlInput, CheckBoxClicksAndSpacePropagate)
{
    TsTreeCtrl* tree = MakeTree(TVS_CHECKBOXES);
    for (HTREEITEM item = tree->GetRootItem(); item; item = tree->GetNextItem(item))
        tree->SetCheck(item, TreeRules::eUncheck);
    const QRect rect = tree->visualItemRect(TsTreeCtrl::Q(Item(tree, "a1")));
    const QPoint box(rect.left() + 5, rect.center().y());
    unsigned int flags = 0;
    ASSERT_EQ(tree->HitTest(box, &flags), Item(tree, "a1"));
    ASSERT_EQ(flags, TVHT_ONITEMSTATEICON);
    QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, box);
    EXPECT_EQ(tree->GetCheckIndex(Item(tree, "a1")), TreeRules::eChecked);
    EXPECT_EQ(tree->GetCheckIndex(Item(tree, "a")), TreeRules::ePartlyChecked);
    EXPECT_EQ(TsTreeCtrl::Q(Item(tree, "a"))->checkState(0), Qt::PartiallyChecked);
    Click(tree, Item(tree, "a2"));
    QTest::keyClick(tree, Qt::Key_Space);
    EXPECT_EQ(tree->GetCheckIndex(Item(tree, "a")), TreeRules::eAllChecked);
    EXPECT_EQ(tree->GetCheckIndex(Item(tree, "r1")), TreeRules::ePartlyChecked);
    EXPECT_EQ(tree->GetItemState(Item(tree, "a2"), TVIS_STATEIMAGEMASK), 2u << 12);
}

TEST_F(TreeCtrlInput, DragMovesOrCopiesAndRefusesItsOwnBranch)
{
    struct Row { const char* name; Qt::KeyboardModifiers mods; const char* after; };
    const Row rows[] = {
        {"move", Qt::NoModifier, "r1\r\n\tb\r\n\t\tb1\r\nr2\r\na\r\n\ta1\r\n\ta2\r\n"},
        {"copy with Ctrl", Qt::ControlModifier, "r1\r\n\ta\r\n\t\ta1\r\n\t\ta2\r\n\tb\r\n\t\tb1\r\nr2\r\na\r\n\ta1\r\n\ta2\r\n"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TsTreeCtrl* tree = MakeTree();
        Drag(tree, Item(tree, "a"), Item(tree, "r2"), row.mods);
        EXPECT_FALSE(tree->IsDragging());
        EXPECT_EQ(Text(tree), row.after);
        EXPECT_EQ(tree->GetItemText(tree->GetSelectedItem()), "a");
        EXPECT_EQ(tree->GetSelectedItem(), tree->GetParentItem(tree->GetLastItem(nullptr))); // the new item
        delete tree;
    }
    for (const char* target : {"a1", "r1"}) { // its own child, its own parent
        SCOPED_TRACE(target);
        TsTreeCtrl* tree = MakeTree();
        const std::string before = Text(tree);
        Drag(tree, Item(tree, "a"), Item(tree, target), {}, false);
        EXPECT_TRUE(tree->IsDragging());
        EXPECT_EQ(tree->viewport()->cursor().shape(), Qt::ForbiddenCursor);
        QTest::keyClick(tree, Qt::Key_Escape);
        EXPECT_FALSE(tree->IsDragging());
        QTest::mouseRelease(tree->viewport(), Qt::LeftButton, {}, Label(tree, Item(tree, target)));
        EXPECT_EQ(Text(tree), before);
        delete tree;
    }
}

TEST_F(TreeCtrlInput, HoveringDuringADragOpensTheItem)
{
    TsTreeCtrl* tree = MakeTree();
    tree->collapseItem(TsTreeCtrl::Q(Item(tree, "b")));
    Drag(tree, Item(tree, "r2"), Item(tree, "b"), {}, false);
    EXPECT_EQ(tree->GetInsertMarkItem(), Item(tree, "b"));
    QTest::qWait(TsTreeCtrl::kHoverDelay / 2);
    EXPECT_FALSE(TsTreeCtrl::Q(Item(tree, "b"))->isExpanded());
    QTest::qWait(TsTreeCtrl::kHoverDelay);
    EXPECT_TRUE(TsTreeCtrl::Q(Item(tree, "b"))->isExpanded());
    QTest::mouseRelease(tree->viewport(), Qt::LeftButton, {}, Label(tree, Item(tree, "b")));
    EXPECT_EQ(Text(tree), "r1\r\n\ta\r\n\t\ta1\r\n\t\ta2\r\n\tb\r\n\t\tb1\r\n\tr2\r\n");
}

TEST_F(TreeCtrlInput, KeysCopyAndDelete)
{
    TsTreeCtrl* tree = MakeTree();
    int copied = 0;
    tree->SetUserHasCopiedDataCallBack([&] { ++copied; });
    Click(tree, Item(tree, "r1"));
    QTest::keyClick(tree, Qt::Key_C);
    EXPECT_EQ(copied, 0);
    EXPECT_EQ(tree->GetItemText(tree->GetSelectedItem()), "r1"); // no jump to an item starting with c either
    QTest::keyClick(tree, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copied, 1);

    tree->EnableMultiSelect(true);
    Click(tree, Item(tree, "a1"));
    Click(tree, Item(tree, "b"), Qt::ControlModifier);
    tree->DeleteSelectedItems(false);
    EXPECT_EQ(Text(tree), "r1\r\n\ta\r\n\t\ta2\r\nr2\r\n");
}

TEST_F(TreeCtrlInput, AppearanceEntriesKeepEachOther)
{
    TsTreeCtrl* tree = MakeTree();
    HTREEITEM a = Item(tree, "a");
    EXPECT_EQ(tree->GetItemColor(a), 0xFFFFFFFFu);
    tree->SetItemColor(a, RGB(200, 0, 0));
    LOGFONT font{};
    font.lfHeight = -20;
    std::snprintf(font.lfFaceName, sizeof font.lfFaceName, "%s", "DejaVu Serif");
    tree->SetItemFont(a, font);
    tree->SetItemBold(a, true);
    LOGFONT back{};
    EXPECT_EQ(tree->GetItemFont(a, &back), 1);
    EXPECT_STREQ(back.lfFaceName, "DejaVu Serif");
    EXPECT_EQ(tree->GetItemColor(a), RGB(200, 0, 0));
    EXPECT_TRUE(TsTreeCtrl::Q(a)->font(0).bold());
    EXPECT_EQ(korva::FromQColor(TsTreeCtrl::Q(a)->foreground(0).color()), RGB(200, 0, 0));
    EXPECT_EQ(tree->GetItemFont(Item(tree, "b"), &back), 0);
    HTREEITEM copy = tree->CopyItem(a, nullptr);
    EXPECT_EQ(tree->GetItemColor(copy), RGB(200, 0, 0));
    EXPECT_TRUE(tree->GetItemBold(copy));
    tree->DeleteItem(a);
    EXPECT_EQ(tree->GetItemColor(copy), RGB(200, 0, 0));
}
