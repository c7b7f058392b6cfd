// Commits and refusals of the value rows, by real clicks and keys.
#include "PropertyGridTestSupport.h"

#include <KORVAutlwin/options/InfoTipWnd.h>
#include <KORVAutlwin/options/PropertyInPlaceBrowseForColor.h>

using namespace korva::test;

namespace {

bool TipShows(const char* text)
{
    InfoTipWnd* tip = InfoTipWnd::GetInfoTip();
    return tip && tip->isVisible() && tip->text() == QString::fromUtf8(text);
}

void HideTip()
{
    if (InfoTipWnd* tip = InfoTipWnd::GetInfoTip())
        tip->hide();
}

} // namespace

TEST_F(GridFixture, NumberRowsCommitOrRefuseWhatIsTyped)
{
    struct Row
    {
        unsigned int id;
        const char* typed;
        int key;
        int value;         // after the commit, from 7
        const char* shown; // in the edit after the commit
        bool tip;
    };
    const Row rows[] = {
        {eCount, "2147483647", Qt::Key_Return, 7, "7", true},
        {eCount, "2147483646", Qt::Key_Return, 2147483646, "2147483646", false},
        {eCount, "-12", Qt::Key_Escape, 12, "12", false}, // digits only: the sign never arrives
        {eOffset, "12x", Qt::Key_Escape, 7, "7", false},  // back silently
        {eOffset, "-2147483647", Qt::Key_Tab, -2147483647, "-2147483647", false},
        {eOffset, "-2147483648", Qt::Key_Return, 7, "7", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.typed);
        auto* item = static_cast<PropertyItemNumber*>(grid->GetPropertyItem(RowOf(row.id)));
        item->SetData(7);
        HideTip();
        QLineEdit* edit = TypeInto(row.id, row.typed);
        ASSERT_NE(edit, nullptr);
        manager.changes.clear();
        QTest::keyClick(edit, static_cast<Qt::Key>(row.key));
        int value = 0;
        item->GetData(value);
        EXPECT_EQ(value, row.value);
        EXPECT_EQ(edit->text().toStdString(), row.shown);
        EXPECT_EQ(TipShows("Value out of range"), row.tip);
        // A refused value still reaches the manager: the row was committed.
        ASSERT_EQ(manager.changes.size(), 1u);
        EXPECT_EQ(manager.changes[0].item, item);
        EXPECT_EQ(manager.changes[0].list, grid);
        EXPECT_EQ(manager.changes[0].index, RowOf(row.id));
        EXPECT_EQ(QApplication::focusWidget(), grid);
        ClickRow(0); // leave the row, so that the next click makes a new edit
    }
}

TEST_F(GridFixture, EscapeKeepsTextAndAClickElsewhereCommitsBeforeTheSelectionMoves)
{
    QLineEdit* edit = TypeInto(eName, "Wheat protein");
    ASSERT_NE(edit, nullptr);
    QTest::keyClick(edit, Qt::Key_Escape);
    std::string name;
    static_cast<PropertyItemString*>(grid->GetPropertyItem(RowOf(eName)))->GetData(name);
    EXPECT_EQ(name, "Wheat protein");

    edit = TypeInto(eScale, "2.5e-3");
    ASSERT_NE(edit, nullptr);
    ClickRow(RowOf(eName)); // the focus leaves the edit first: the float row commits
    float scale = 0;
    static_cast<PropertyItemFloat*>(grid->GetPropertyItem(RowOf(eScale)))->GetData(scale);
    EXPECT_FLOAT_EQ(scale, 0.0025f);
    EXPECT_EQ(grid->GetCurSel(), RowOf(eName));
    ASSERT_FALSE(manager.changes.empty());
    EXPECT_EQ(manager.changes.back().index, RowOf(eScale));

    // A popup borrows the focus without ending the edit; Return then commits.
    ClickRow(0);
    edit = TypeInto(eName, "Rye");
    ASSERT_NE(edit, nullptr);
    manager.changes.clear();
    QMenu menu;
    menu.addAction("Copy");
    menu.popup(edit->mapToGlobal(QPoint(0, 0)));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&menu));
    menu.close();
    EXPECT_TRUE(manager.changes.empty());
    ASSERT_EQ(grid->GetInPlaceControl(), edit);
    edit->setFocus();
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_EQ(manager.changes.size(), 1u);

    // Down in an edit hands the key to the grid, which moves on.
    ClickRow(0);
    edit = TypeInto(eName, "Rye");
    ASSERT_NE(edit, nullptr);
    QTest::keyClick(edit, Qt::Key_Down);
    EXPECT_EQ(grid->GetCurSel(), RowOf(eCount));
}

TEST_F(GridFixture, ComboListHangsBelowTheGridWithAtMostEightRows)
{
    QWidget* parent = grid->parentWidget();
    for (int entries : {0, 1, 8, 9, 20}) {
        SCOPED_TRACE(entries);
        std::vector<std::string> list;
        for (int i = 0; i < entries; ++i)
            list.push_back("Entry " + std::to_string(i));
        method->InitPropertyItemList(list, 0);
        ClickRow(0);
        ClickRow(RowOf(eMethod));
        auto* combo = qobject_cast<PropertyInPlaceComboBox*>(grid->GetInPlaceControl());
        ASSERT_NE(combo, nullptr);
        QTest::mouseClick(combo->GetButton(), Qt::LeftButton);
        PropertyInPlaceComboBoxListBox* drop = combo->GetList();
        ASSERT_TRUE(drop->isVisible());
        EXPECT_EQ(drop->parentWidget(), parent);
        const int rowHeight = entries ? drop->sizeHintForRow(0) : 0;
        EXPECT_EQ(drop->height(), entries == 0 ? 100 : std::min(entries, 8) * rowHeight + 2);
        EXPECT_EQ(drop->width(), combo->width() - 1);
        EXPECT_EQ(drop->geometry().top(), combo->mapTo(parent, QPoint(0, combo->height())).y());
        if (entries >= 9) {
            // The captured list still scrolls by its scroll bar's arrow.
            QScrollBar* bar = drop->verticalScrollBar();
            ASSERT_TRUE(bar->isVisible());
            const QPoint arrow = bar->mapTo(drop, QPoint(bar->width() / 2, bar->height() - 3));
            QTest::mouseClick(drop, Qt::LeftButton, {}, arrow);
            EXPECT_GT(bar->value(), 0);
            EXPECT_TRUE(drop->isVisible());
            bar->setValue(0);
            // A click on an entry takes it; the list closes and the row commits.
            const QRect third = drop->visualItemRect(drop->item(2));
            QTest::mouseClick(drop->viewport(), Qt::LeftButton, {}, third.center());
            EXPECT_FALSE(drop->isVisible());
            int value = -1;
            method->GetData(value);
            EXPECT_EQ(value, 2);
        } else {
            QTest::keyClick(drop, Qt::Key_Escape);
            EXPECT_FALSE(drop->isVisible());
        }
    }
}

TEST_F(GridFixture, AClickOutsideTheOpenListTakesItsChoice)
{
    std::vector<std::string> list = {"PLS", "PCR", "MLR"};
    method->InitPropertyItemList(list, 0);
    ClickRow(RowOf(eMethod));
    auto* combo = qobject_cast<PropertyInPlaceComboBox*>(grid->GetInPlaceControl());
    ASSERT_NE(combo, nullptr);
    QTest::mouseClick(combo->GetEdit(), Qt::LeftButton); // the display opens the list too
    PropertyInPlaceComboBoxListBox* drop = combo->GetList();
    ASSERT_TRUE(drop->isVisible());
    QTest::keyClick(drop, Qt::Key_Down);
    QTest::mouseClick(drop, Qt::LeftButton, {}, QPoint(-20, -20)); // captured: reaches the list
    EXPECT_FALSE(drop->isVisible());
    int value = -1;
    method->GetData(value);
    EXPECT_EQ(value, 1);
    EXPECT_EQ(combo->GetEdit()->GetText(), "PCR");
}

TEST_F(GridFixture, DoubleClickFlipsATwoStateRow)
{
    auto* save = static_cast<PropertyItemListYesNo*>(grid->GetPropertyItem(RowOf(eSave)));
    const QPoint caption(40, grid->GetItemRect(RowOf(eSave)).center().y());
    for (bool expected : {true, false, true}) {
        QTest::mouseDClick(grid, Qt::LeftButton, {}, caption);
        bool value = !expected;
        save->GetData(value);
        EXPECT_EQ(value, expected);
    }
    EXPECT_EQ(static_cast<PropertyInPlaceComboBox*>(grid->GetInPlaceControl())->GetEdit()->GetText(), "Yes");
}

TEST_F(GridFixture, ColourRowTakesTheDialogsChoiceAndRebuildsItsControl)
{
    ClickRow(RowOf(eColour));
    auto* control = qobject_cast<PropertyInPlaceBrowseForColor*>(grid->GetInPlaceControl());
    ASSERT_NE(control, nullptr);
    EXPECT_EQ(control->x(), grid->GetItemValueRect(RowOf(eColour)).left() + 33); // the swatch stays free
    WhenModal([](QDialog* modal) {
        if (auto* dialog = qobject_cast<QColorDialog*>(modal))
            dialog->setCurrentColor(QColor(10, 20, 30));
        modal->accept();
    });
    QTest::mouseClick(control->GetButton(), Qt::LeftButton);
    COLORREF colour = 0;
    static_cast<PropertyItemColorPopup*>(grid->GetPropertyItem(RowOf(eColour)))->GetData(colour);
    EXPECT_EQ(colour, RGB(10, 20, 30));
    auto* rebuilt = qobject_cast<PropertyInPlaceBrowseForColor*>(grid->GetInPlaceControl());
    ASSERT_NE(rebuilt, nullptr);
    EXPECT_NE(rebuilt, control);
    EXPECT_EQ(rebuilt->GetEdit()->text(), "R: 10 G: 20 B: 30");
}
