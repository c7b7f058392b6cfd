// The report list under real mouse and keyboard input: header sorting, drag
// selection, the keyboard table, in-cell editing, the clipboard and painting.

#include "ControlsTestSupport.h"

#include <KORVAutlwin/controls/CFlatHeaderCtrl.h>
#include <KORVAutlwin/controls/CInPlaceEdit.h>
#include <KORVAutlwin/controls/ListClipboard.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>

using namespace korva::test;

namespace {

class ListCtrlInput : public ControlsFixture
{
protected:
    void ClickHeader(TsListCtrl* list, int col)
    {
        QHeaderView* head = list->header();
        const int x = head->sectionViewportPosition(col) + head->sectionSize(col) / 2;
        QTest::mouseClick(head->viewport(), Qt::LeftButton, {}, QPoint(x, head->height() / 2));
    }
    std::vector<std::string> Column(TsListCtrl* list, int col)
    {
        std::vector<std::string> texts;
        for (int row = 0; row < list->GetItemCount(); ++row)
            texts.push_back(list->GetItemText(row, col));
        return texts;
    }
};

} // namespace

TEST_F(ListCtrlInput, HeaderClicksSortAndFlipTheArrow)
{
    for (bool flat : {false, true}) {
        SCOPED_TRACE(flat ? "flat header" : "plain header");
        TsListCtrl* list = MakeList(0);
        for (const char* text : {"item10", "item9", "item2"})
            list->AddItem(text);
        if (flat)
            list->SubclassHeader(true);
        Show(list);
        auto arrowUp = [&] {
            return flat ? list->GetFlatHeader()->GetSortAscending()
                        : list->header()->sortIndicatorOrder() == Qt::AscendingOrder;
        };
        ClickHeader(list, 0);
        EXPECT_EQ(Column(list, 0), (std::vector<std::string>{"item2", "item9", "item10"}));
        EXPECT_TRUE(arrowUp());
        ClickHeader(list, 0);
        EXPECT_EQ(Column(list, 0), (std::vector<std::string>{"item10", "item9", "item2"}));
        EXPECT_EQ(list->GetSortAscending(), 0);
        EXPECT_FALSE(arrowUp());
        delete list;
    }
    // One row: the direction and the arrow change, the row stays.
    TsListCtrl* one = MakeList(1);
    Show(one);
    ClickHeader(one, 1);
    ClickHeader(one, 1);
    EXPECT_EQ(one->GetSortColumn(), 1);
    EXPECT_EQ(one->GetSortAscending(), 0);
    EXPECT_EQ(one->header()->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(one->GetItemText(0, 0), "r0c0");
}

TEST_F(ListCtrlInput, DragSelectsARangeAndCtrlKeepsTheEarlierSelection)
{
    struct Case
    {
        const char* name;
        Qt::KeyboardModifiers modifiers;
        std::vector<int> selected;
    } cases[] = {
        {"plain drag replaces", Qt::NoModifier, {2, 3, 4, 5}},
        {"Ctrl drag keeps", Qt::ControlModifier, {2, 3, 4, 5, 8}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        TsListCtrl* list = MakeList(30);
        Show(list);
        QWidget* view = list->viewport();
        QTest::mouseClick(view, Qt::LeftButton, {}, Cell(list, 8, 0));
        QTest::mousePress(view, Qt::LeftButton, c.modifiers, Cell(list, 2, 0));
        QTest::mouseMove(view, Cell(list, 4, 1));
        QTest::mouseMove(view, Cell(list, 5, 1));
        EXPECT_TRUE(list->IsDragRunning());
        QTRY_COMPARE(Selected(list), c.selected);
        EXPECT_EQ(list->GetNextItem(-1, LVIS_FOCUSED), 5);
        QTest::mouseRelease(view, Qt::LeftButton, c.modifiers, Cell(list, 5, 1));
        QTRY_VERIFY(!list->IsDragRunning());
        delete list;
    }
}

TEST_F(ListCtrlInput, KeyboardTableAndClipboardBytes)
{
    TsListCtrl* list = MakeList(4);
    list->SetItemText(1, 1, "a<b\tc");
    list->SetItemText(2, 0, "Größe");
    list->EnableShortCuts(true, true);
    Show(list);
    QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Selected(list), (std::vector<int>{0, 1, 2, 3}));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, Cell(list, 1, 0));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier, Cell(list, 2, 0));
    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
    const QMimeData* mime = QGuiApplication::clipboard()->mimeData();
    const std::string rows = "r1c0\ta<b\tc\tr1c2\r\nGröße\tr2c1\tr2c2\r\n";
    EXPECT_EQ(mime->text().toStdString(), rows);
    const std::string fragment = "<table><tbody><tr><td>r1c0</td><td>a<b\tc</td><td>r1c2</td></tr>"
                                 "<tr><td>Größe</td><td>r2c1</td><td>r2c2</td></tr></tbody></table>";
    const std::string block = ListClipboard::MakeHTMLClipStringFromText(fragment);
    const QByteArray descriptor = mime->data(QStringLiteral("application/x-qt-windows-mime;value=\"HTML Format\""));
    EXPECT_EQ(descriptor.toStdString(), block + std::string(4, '\0')); // the NUL and 3 spare bytes
    EXPECT_TRUE(mime->html().startsWith(QStringLiteral("<html>")));

    QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString().substr(0, 30), "Col0\tCol1\tCol2\r\n----\t----\t----");

    QTest::keyClick(list, Qt::Key_I, Qt::ControlModifier);
    EXPECT_EQ(Selected(list), (std::vector<int>{0, 3}));
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(list->GetItemCount(), 2);
    EXPECT_EQ(list->GetItemText(1, 0), "Größe");
    list->EnableShortCuts(false, false);
    QTest::keyClick(list, Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(Selected(list).empty());
}

TEST_F(ListCtrlInput, EditorMovesByKeysAndCommitsOnFocusLoss)
{
    TsListCtrl* list = MakeList(40);
    list->EnableEditSubItems(true, true);
    Show(list);
    auto editor = [&] { return list->findChild<CInPlaceEdit*>(); };
    auto at = [&] { return std::make_pair(editor()->GetRow(), editor()->GetColumn()); };
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, Cell(list, 1, 2));
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, Cell(list, 1, 2));
    ASSERT_NE(editor(), nullptr);
    EXPECT_EQ(at(), std::make_pair(1, 2));
    struct Step
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        int row, col;
    } steps[] = {
        {Qt::Key_Tab, Qt::NoModifier, 2, 0},           {Qt::Key_Backtab, Qt::ShiftModifier, 1, 2},
        {Qt::Key_PageDown, Qt::NoModifier, 1 + list->GetCountPerPage() - 1, 2},
        {Qt::Key_Home, Qt::ControlModifier, 0, 2},     {Qt::Key_End, Qt::ControlModifier, 39, 2},
        {Qt::Key_Up, Qt::NoModifier, 38, 2},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.key);
        QTest::keyClick(editor(), step.key, step.modifiers);
        QTRY_COMPARE(list->findChildren<CInPlaceEdit*>().size(), qsizetype(1));
        EXPECT_EQ(at(), std::make_pair(step.row, step.col));
    }
    editor()->selectAll();
    QTest::keyClicks(editor(), "new text  ");
    auto* other = new QLineEdit(mWindow.get());
    other->show();
    other->setFocus();
    QTRY_VERIFY(editor() == nullptr);
    EXPECT_EQ(list->GetItemText(38, 2), "new text");
    EXPECT_TRUE(list->GetStyle() & LVS_SHOWSELALWAYS);
}

TEST_F(ListCtrlInput, EscapeLeavesTheSayToTheParent)
{
    for (int answer : {0, 1}) {
        SCOPED_TRACE(answer);
        TsListCtrl* list = MakeList(3);
        list->EnableEditSubItems(true, false);
        const char* told = "untouched";
        list->SetEndLabelEditHandler([&](TsListCtrl&, int, int, const char* text) {
            told = text;
            return answer;
        });
        Show(list);
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, Cell(list, 0, 1));
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, Cell(list, 0, 1));
        auto* editor = list->findChild<CInPlaceEdit*>();
        ASSERT_NE(editor, nullptr);
        editor->selectAll();
        QTest::keyClicks(editor, "typed");
        QTest::keyClick(editor, Qt::Key_Escape);
        QTRY_VERIFY(list->findChild<CInPlaceEdit*>() == nullptr);
        EXPECT_EQ(told, nullptr); // Escape offers no text
        EXPECT_EQ(list->GetItemText(0, 1), answer == 1 ? "typed" : "r0c1");
        delete list;
    }
}

TEST_F(ListCtrlInput, EmptyTextInTheDisabledTextColourBelowTheTop)
{
    TsListCtrl* list = MakeList(0);
    list->SetDisabledRowColors(RGB(255, 0, 0), RGB(0, 0, 255), RGB(0, 0, 255));
    list->SetEmptyCtrlText("No samples in this set");
    Show(list);
    const QImage image = list->viewport()->grab().toImage();
    int firstRed = -1;
    for (int y = 0; y < image.height() && firstRed < 0; ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) == QColor(255, 0, 0)) {
                firstRed = y;
                break;
            }
    EXPECT_GE(firstRed, 10);
    EXPECT_LT(firstRed, 40);
    EXPECT_EQ(list->GetBkColor(), korva::GetSysColor(COLOR_WINDOW)); // enabled: the normal set
}

TEST_F(ListCtrlInput, ColumnWidthsAreRememberedPerCount)
{
    {
        std::unique_ptr<TsListCtrl> list(MakeList(1));
        list->SetColumnWidth(1, 77);
        list->EnableSaveRestore("Samples");
    }
    EXPECT_EQ(mApp->GetProfileString(TsListCtrl::kColumnWidthsSection, "Samples", ""), "3,100,77,100");
    std::unique_ptr<TsListCtrl> again(MakeList(1));
    again->EnableSaveRestore("Samples");
    EXPECT_EQ(again->GetColumnWidth(1), 77);
    std::unique_ptr<TsListCtrl> fewer(new TsListCtrl);
    fewer->InsertColumn(0, "A", LVCFMT_LEFT, 50);
    fewer->EnableSaveRestore("Samples");
    EXPECT_EQ(fewer->GetColumnWidth(0), 50);
}

TEST_F(ListCtrlInput, CopyAndMoveRows)
{
    struct Case
    {
        const char* name;
        bool move;
        int from, to;
        bool done;
        std::vector<std::string> order;
    } cases[] = {
        {"copy down", false, 0, 2, true, {"r0c0", "r1c0", "r0c0", "r2c0"}},
        {"copy up", false, 2, 0, true, {"r2c0", "r0c0", "r1c0", "r2c0"}},
        {"move down", true, 0, 3, true, {"r1c0", "r2c0", "r0c0"}},
        {"move up", true, 2, 0, true, {"r2c0", "r0c0", "r1c0"}},
        {"same row", true, 1, 1, false, {"r0c0", "r1c0", "r2c0"}},
        {"negative", false, -1, 1, false, {"r0c0", "r1c0", "r2c0"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::unique_ptr<TsListCtrl> list(MakeList(3));
        list->SetExtendedStyle(list->GetExtendedStyle() | LVS_EX_CHECKBOXES);
        list->SetCheck(c.from < 0 ? 0 : c.from, true);
        list->GetListData().SetItemImage(c.from < 0 ? 0 : c.from, 4);
        EXPECT_EQ(c.move ? list->MoveRow(c.from, c.to) : list->CopyRow(c.from, c.to), c.done);
        EXPECT_EQ(Column(list.get(), 0), c.order);
        if (!c.done)
            continue;
        const int copy = c.move && c.from < c.to ? c.to - 1 : c.to;
        EXPECT_EQ(list->GetItemText(copy, 2), "r" + std::to_string(c.from) + "c2"); // every column
        EXPECT_TRUE(list->GetCheck(copy));
        EXPECT_EQ(list->GetItemData(copy), 0u); // item data and image deliberately stay behind
        EXPECT_EQ(list->GetListData().GetItemImage(copy), 0);
    }
}

TEST_F(ListCtrlInput, ColourSetsFollowTheEnabledState)
{
    std::unique_ptr<TsListCtrl> list(MakeList(2));
    list->SetRowColors(RGB(1, 1, 1), RGB(2, 2, 2), CLR_NONE);
    EXPECT_EQ(list->GetBkColor(), RGB(2, 2, 2)); // -1 takes the text background
    list->SetDisabledRowColors(RGB(3, 3, 3), CLR_NONE, RGB(4, 4, 4));
    list->EnableDisabledColors(true);
    list->setEnabled(false);
    EXPECT_EQ(list->GetTextColor(), RGB(3, 3, 3));
    EXPECT_EQ(list->GetBkColor(), CLR_NONE); // no text background, no background
    list->SetDisabledRowColors(RGB(3, 3, 3), RGB(5, 5, 5), RGB(6, 6, 6));
    EXPECT_EQ(list->GetBkColor(), RGB(6, 6, 6));
    list->EnableDisabledColors(false);
    EXPECT_EQ(list->GetTextColor(), RGB(1, 1, 1));
    list->setEnabled(true);
    list->EnableDisabledColors(true);
    EXPECT_EQ(list->GetTextColor(), RGB(1, 1, 1));
}

TEST_F(ListCtrlInput, CheckBoxPressOnASelectionTogglesItAll)
{
    TsListCtrl* list = MakeList(5);
    list->SetExtendedStyle(list->GetExtendedStyle() | LVS_EX_CHECKBOXES);
    list->SetCheck(1, true);
    Show(list);
    list->SetSelIndexes({1, 2, 4});
    QStyleOptionViewItem option;
    option.initFrom(list);
    option.rect = list->visualRect(list->GetListData().index(2, 0));
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    const QPoint box = list->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, list).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, box);
    std::vector<int> checked;
    list->GetCheckedIndexes(checked);
    EXPECT_EQ(checked, (std::vector<int>{1, 2, 4})); // row 2 was unchecked: all take checked
    EXPECT_EQ(Selected(list), (std::vector<int>{1, 2, 4}));
    QTest::keyClick(list, Qt::Key_Space); // the first selected row (1) is checked: all lose it
    list->GetCheckedIndexes(checked);
    EXPECT_TRUE(checked.empty());
}

TEST_F(ListCtrlInput, ColumnSizeGuards)
{
    std::unique_ptr<TsListCtrl> list(MakeList(1));
    list->SetMinimumColumnSize(40);
    list->header()->resizeSection(1, 10);
    EXPECT_EQ(list->GetColumnWidth(1), 40);
    EXPECT_EQ(list->header()->sectionSize(1), 40);
    list->DisableColumnSizing(true);
    EXPECT_EQ(list->header()->sectionResizeMode(0), QHeaderView::Fixed);
    EXPECT_EQ(list->AddColumn("Copy"), 3);
    EXPECT_EQ(list->GetColumnWidth(3), 100); // -1 copies the last column
}
