// The tree list under real input: header clicks of both sort types, Ctrl+C of
// the selection, the thumb's 6-pixel steps, column auto-size and double clicks.

#include "ControlsTestSupport.h"

#include <KORVAutlwin/controls/TsTreeListCtrl.h>

#include <QClipboard>
#include <QMimeData>
#include <QPointer>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace korva::test;

namespace {

class TreeListInput : public ControlsFixture
{
protected:
    /// Groups "g1" (b10, a9, ref priority 2000) and "g2" (c1), then the leaves "z" and "x2".
    TsTreeListCtrl* MakeList()
    {
        auto* list = new TsTreeListCtrl(mWindow.get());
        list->InsertColumn(0, "Name", 0, 120);
        list->InsertColumn(1, "Value", 1, 80);
        list->InsertColumn(2, "Note", 0, 80);
        HTREEITEM g1 = list->InsertItem("g1");
        for (const char* name : {"b10", "a9", "ref"}) {
            HTREEITEM item = list->InsertItem(name, g1);
            list->SetItemText(item, 1, (std::string("v") + name).c_str());
        }
        list->GetTreeCtrl().SetItemPriority(list->GetChildItem(g1), 900);
        list->GetTreeCtrl().SetItemPriority(Item(list, "ref"), 2000);
        list->InsertItem("c1", list->InsertItem("g2"));
        list->InsertItem("z");
        list->InsertItem("x2");
        list->GetTreeCtrl().expandAll();
        Show(list);
        return list;
    }
    static HTREEITEM Item(TsTreeListCtrl* list, const char* text)
    {
        const TsTreeCtrlEx& tree = list->GetTreeCtrl();
        for (HTREEITEM item = tree.GetRootItem(); item; item = tree.GetNextItem(item))
            if (tree.GetItemText(item, 0) == text)
                return item;
        return nullptr;
    }
    static std::string Children(TsTreeListCtrl* list, HTREEITEM parent)
    {
        std::string out;
        for (HTREEITEM item = list->GetChildItem(parent); item; item = list->GetNextSiblingItem(item))
            out += (out.empty() ? "" : " ") + list->GetItemText(item, 0);
        return out;
    }
    static void ClickHeader(TsTreeListCtrl* list, int col)
    {
        CNewHeaderCtrl* header = list->GetHeader();
        const QPoint at(header->sectionViewportPosition(col) + 10, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
    }
    static QPoint Row(TsTreeListCtrl* list, HTREEITEM item, int x)
    {
        return {x, list->GetTreeCtrl().visualItemRect(TsTreeCtrl::Q(item)).center().y()};
    }
};

TEST_F(TreeListInput, HeaderClicksSortByType)
{
    struct Case { int type; int clicks; const char* top; const char* g1; };
    const Case cases[] = {
        // Groups stay first, then the rest; a second click flips the direction.
        {TsTreeListCtrl::eSortTopLevel, 1, "g1 g2 x2 z", "b10 a9 ref"},
        {TsTreeListCtrl::eSortTopLevel, 2, "g2 g1 z x2", "b10 a9 ref"},
        // Children only: the priority 2000 item stays on top in both directions, 900 at the end.
        {TsTreeListCtrl::eSortEachTopLevelChildren, 1, "g1 g2 z x2", "ref a9 b10"},
        {TsTreeListCtrl::eSortEachTopLevelChildren, 2, "g1 g2 z x2", "ref a9 b10"},
        {TsTreeListCtrl::eNoSort, 1, "g1 g2 z x2", "b10 a9 ref"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.type) + "/" + std::to_string(c.clicks));
        TsTreeListCtrl* list = MakeList();
        list->SetSortType(c.type);
        list->GetHeader()->EnableSort(c.type != TsTreeListCtrl::eNoSort);
        for (int i = 0; i < c.clicks; ++i)
            ClickHeader(list, 0);
        EXPECT_EQ(Children(list, nullptr), c.top);
        EXPECT_EQ(Children(list, Item(list, "g1")), c.g1);
        if (c.type != TsTreeListCtrl::eNoSort) {
            EXPECT_EQ(list->IsAscending(), c.clicks == 1);
        }
        delete list;
    }
}

TEST_F(TreeListInput, CtrlCCopiesTheSelectionWithTwoEmptyLinesAhead)
{
    TsTreeListCtrl* list = MakeList();
    list->EnableMultiSelect(true);
    TsTreeCtrlEx& tree = list->GetTreeCtrl();
    QTest::keyClick(&tree, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "\r\n\r\n");
    EXPECT_NE(QGuiApplication::clipboard()->mimeData()->html().indexOf("<table><tbody></tbody></table>"), -1);

    // Clicks beyond the label count on the whole row.
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, Row(list, Item(list, "a9"), 300));
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, Qt::ControlModifier, Row(list, Item(list, "b10"), 160));
    QTest::keyClick(&tree, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), "\r\n\r\nb10\tvb10\t\r\na9\tva9");
    EXPECT_NE(QGuiApplication::clipboard()->mimeData()->html().indexOf("<tr><td>b10</td><td>vb10</td><td></td></tr>"),
              -1);
}

TEST_F(TreeListInput, ThumbStepsOfSixMoveTreeAndHeader)
{
    TsTreeListCtrl* list = MakeList();
    mWindow->resize(200, 300);
    list->resize(200, 300);
    QScrollBar* scroller = list->GetScroller();
    ASSERT_TRUE(scroller->isVisible());
    scroller->setSliderPosition(7); // as a thumb drag does
    EXPECT_EQ(scroller->value(), 12);
    EXPECT_EQ(list->GetTreeCtrl().horizontalScrollBar()->value(), 12);
    EXPECT_EQ(list->GetHeader()->offset(), 12);
    QTest::mouseClick(scroller, Qt::LeftButton, {}, QPoint(scroller->width() - 4, scroller->height() / 2));
    EXPECT_EQ(scroller->value(), 18);
    // Wide enough again: the scroller goes and the columns start at the left edge.
    list->resize(400, 300);
    EXPECT_FALSE(scroller->isVisible());
    EXPECT_EQ(list->GetHeader()->offset(), 0);
}

TEST_F(TreeListInput, AutoSizeFollowsChangesOfTenPixelsOrMore)
{
    TsTreeListCtrl* list = MakeList();
    list->resize(300, 300);
    list->EnableColumnAutoSize(true);
    list->resize(291, 300); // 9 pixels: nothing, and the stored width stays 300
    EXPECT_EQ(list->GetTreeCtrl().GetColumnsWidth(), 280);
    list->resize(281, 300); // 19 from the stored width: the columns give it up
    EXPECT_EQ(list->GetTreeCtrl().GetColumnsWidth(), 261);
    EXPECT_EQ(list->GetTreeCtrl().GetColumnWidth(0), 112);
}

TEST_F(TreeListInput, DoubleClickOpensOnlyInTheFirstColumn)
{
    TsTreeListCtrl* list = MakeList();
    HTREEITEM g1 = Item(list, "g1");
    int clicks = 0;
    QObject::connect(list, &TsTreeListCtrl::DoubleClicked, [&clicks] { ++clicks; });
    // As the platform delivers it: press and release, then the double click.
    auto doubleClick = [list, g1](int x) {
        QTest::mouseClick(list->GetTreeCtrl().viewport(), Qt::LeftButton, {}, Row(list, g1, x));
        QTest::mouseDClick(list->GetTreeCtrl().viewport(), Qt::LeftButton, {}, Row(list, g1, x));
    };
    doubleClick(160);
    EXPECT_TRUE(list->GetItemState(g1, TVIS_EXPANDED));
    doubleClick(60);
    EXPECT_FALSE(list->GetItemState(g1, TVIS_EXPANDED));
    EXPECT_EQ(clicks, 2);
}

TEST_F(TreeListInput, CopyMoveAndDeleteKeepRecordsAndChildFlags)
{
    TsTreeListCtrl* list = MakeList();
    TsTreeCtrlEx& tree = list->GetTreeCtrl();
    EXPECT_EQ(tree.CopyItem(Item(list, "g2"), nullptr), nullptr); // an item with children isn't copied
    HTREEITEM moved = tree.MoveItem(Item(list, "c1"), Item(list, "z"));
    ASSERT_NE(moved, nullptr);
    EXPECT_EQ(list->GetItemText(moved, 0), "c1");
    EXPECT_EQ(tree.GetRecord(Item(list, "g2"))->hasChildren, 0);
    EXPECT_EQ(tree.GetRecord(Item(list, "z"))->hasChildren, 1);
    // With its child gone, g2 no longer sorts among the groups.
    tree.SortItems(0, true, nullptr);
    EXPECT_EQ(Children(list, nullptr), "g1 z g2 x2");
}

TEST_F(TreeListInput, SubclassDlgItemTakesThePlaceAndSortsWithASortType)
{
    auto* layout = new QVBoxLayout(mWindow.get());
    QPointer<QWidget> placeholder = new QWidget;
    layout->addWidget(placeholder);
    TsTreeListCtrl* list = MakeList();
    list->SetSortType(TsTreeListCtrl::eSortTopLevel);
    ASSERT_TRUE(list->SubclassDlgItem(placeholder));
    EXPECT_TRUE(placeholder.isNull());
    EXPECT_EQ(layout->indexOf(list), 0);
    EXPECT_EQ(Children(list, nullptr), "g1 g2 x2 z");
    EXPECT_EQ(list->GetHeader()->GetSortColumn(), 0);
}

} // namespace
