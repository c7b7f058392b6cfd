// Collapsing, searching and selecting rows of the grid by real clicks and keys.
#include "PropertyGridTestSupport.h"

#include <KORVAutl/LanguageString.h>

using namespace korva::test;

namespace {

bool Open(PropertyListCtrl* grid, int row)
{
    return static_cast<PropertyItemCategory*>(grid->GetPropertyItem(row))->GetChildrenVisible();
}

} // namespace

TEST_F(GridFixture, AClickInTheExpanderColumnTogglesTheRowItSelects)
{
    const int choices = RowOf(0) + 5; // General's four children, then Choices
    ASSERT_STREQ(grid->GetPropertyItem(choices)->GetName(), "Choices");
    struct Row
    {
        int x;
        bool toggles;
    };
    for (const Row& row : {Row{16, true}, Row{17, false}, Row{0, true}, Row{60, false}}) {
        SCOPED_TRACE(row.x);
        const bool before = Open(grid, choices);
        const int count = grid->GetCount();
        ClickRow(choices, row.x);
        EXPECT_EQ(grid->GetCurSel(), choices);
        EXPECT_EQ(Open(grid, choices), row.toggles ? !before : before);
        EXPECT_EQ(grid->GetCount(), count + (row.toggles ? (before ? -3 : 3) : 0));
    }
    // Below the rows the click takes the last row, here the closed "Advanced".
    ClickRow(0, 5); // "General" closes, to make room below
    const int last = grid->GetCount() - 1;
    const int below = grid->GetItemRect(last).bottom() + 4;
    ASSERT_LT(below, grid->GetClientRect().bottom());
    QTest::mouseClick(grid, Qt::LeftButton, {}, QPoint(5, below));
    EXPECT_EQ(grid->GetCurSel(), last);
    EXPECT_TRUE(Open(grid, last));
}

TEST_F(GridFixture, CategoryKeysCollapseAndExpandAndAreConsumed)
{
    ClickRow(0);
    struct Row
    {
        int key;
        Qt::KeyboardModifiers modifiers;
        bool open;
    };
    const Row rows[] = {
        {Qt::Key_Left, {}, false},  {Qt::Key_Left, {}, false},                 {Qt::Key_Right, {}, true},
        {Qt::Key_Right, {}, true},  {Qt::Key_Minus, Qt::KeypadModifier, false}, {Qt::Key_Plus, Qt::KeypadModifier, true},
        {Qt::Key_Return, {}, false}, {Qt::Key_Return, {}, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.key);
        QTest::keyClick(grid, static_cast<Qt::Key>(row.key), row.modifiers);
        EXPECT_EQ(Open(grid, 0), row.open);
        EXPECT_EQ(grid->GetCurSel(), 0); // consumed: the selection never moves
    }
}

TEST_F(GridFixture, LetterSearchWrapsAndAMissStillConsumesTheKey)
{
    // General, Name, Count, Offset, Scale, Choices, Save, Method, Colour, Files, Data folder, Report file, Advanced
    const std::pair<Qt::Key, const char*> rows[] = {
        {Qt::Key_C, "Count"}, // wrapped past the last row
        {Qt::Key_C, "Choices"}, {Qt::Key_C, "Colour"}, {Qt::Key_C, "Count"}, {Qt::Key_S, "Scale"},
        {Qt::Key_S, "Save"},    {Qt::Key_Q, "Save"},   {Qt::Key_R, "Report file"}, {Qt::Key_A, "Advanced"},
        {Qt::Key_A, "Advanced"}, // the only one: found again from the row after it
    };
    ClickRow(grid->GetCount() - 1); // Advanced, the last row
    for (const auto& [key, name] : rows) {
        SCOPED_TRACE(name);
        grid->setFocus(); // an edit row takes the focus: type to the grid again
        QTest::keyClick(grid, key);
        ASSERT_GE(grid->GetCurSel(), 0);
        EXPECT_STREQ(grid->GetPropertyItem(grid->GetCurSel())->GetName(), name);
    }
    QTest::keyClick(grid, Qt::Key_O);
    EXPECT_NE(qobject_cast<QLineEdit*>(grid->GetInPlaceControl()), nullptr); // Offset: its edit at once
}

TEST_F(GridFixture, SelectByIdOpensACollapsedCategoryWithoutAControl)
{
    ClickRow(RowOf(eName));
    ASSERT_NE(grid->GetInPlaceControl(), nullptr);
    const int advanced = grid->GetCount() - 1;
    EXPECT_FALSE(Open(grid, advanced));
    EXPECT_TRUE(grid->SetCurSelByID(eHidden));
    EXPECT_TRUE(Open(grid, advanced));
    EXPECT_EQ(grid->GetCurSel(), advanced + 1);
    EXPECT_EQ(grid->GetInPlaceControl(), nullptr);
    std::string name, description;
    grid->GetDetailsText(name, description);
    EXPECT_EQ(name, "Hidden");
    EXPECT_EQ(description, LanguageString::Get(16153)); // an empty description
    // A collapsed category's own id (0) is never tested; the first open category answers.
    QTest::keyClick(grid, Qt::Key_Home);
    QTest::keyClick(grid, Qt::Key_Left);
    EXPECT_TRUE(grid->SetCurSelByID(0));
    EXPECT_EQ(grid->GetCurSel(), RowOf(eSave) - 1);
    EXPECT_FALSE(grid->SetCurSelByID(999));
}

TEST(PropertyListCtrl, AnEmptyGridHasNoRowsAndShowsTheFallbackTexts)
{
    Application();
    QWidget window;
    auto* grid = new PropertyListCtrl(&window);
    grid->resize(300, 200);
    window.show();
    EXPECT_EQ(grid->GetPropertyItem(0), nullptr);
    EXPECT_FALSE(grid->LookupPropertyItem('a'));
    EXPECT_FALSE(grid->SetCurSelByID(0));
    QTest::mouseClick(grid, Qt::LeftButton, {}, QPoint(5, 5));
    QTest::keyClick(grid, Qt::Key_Down);
    EXPECT_EQ(grid->GetCurSel(), -1);
    std::string name, description;
    grid->GetDetailsText(name, description);
    EXPECT_EQ(name, LanguageString::Get(16154));
    EXPECT_EQ(description, LanguageString::Get(16153));
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(grid->GetClientRect().height(), 200 - 64);
    grid->ShowDetails(false);
    EXPECT_EQ(grid->GetClientRect().height(), 200);
}

TEST_F(GridFixture, LongCaptionsWrapIntoTallerRowsAndAreWrappedAfreshOnResize)
{
    auto* long1 = new PropertyItemString("Number of latent variables kept in the final calibration model", 50, "");
    manager.GetPropertyCategory(0)->AddPropertyItem(long1);
    grid->SetPropertyItemManager(&manager);
    const int row = RowOf(50);
    const int oneLine = grid->GetRowHeight(RowOf(eName));
    const int height = grid->GetRowHeight(row);
    const std::string wrapped = long1->GetShowName();
    ASSERT_NE(wrapped.find('\n'), std::string::npos);
    const int lines = 1 + static_cast<int>(std::count(wrapped.begin(), wrapped.end(), '\n'));
    EXPECT_EQ(height, (oneLine - 4) * lines + 4);
    grid->resize(900, grid->height()); // wide enough for one line: no line feed survives
    EXPECT_EQ(grid->GetRowHeight(row), oneLine);
    EXPECT_EQ(std::string(long1->GetShowName()).find('\n'), std::string::npos);
    EXPECT_STREQ(long1->GetName(), "Number of latent variables kept in the final calibration model");
}
