// The list's relatives under real input: check boxes in cells, grey list box
// entries, timed and find-and-select edits, the filter popup and the dialogs.

#include "ControlsTestSupport.h"
#include "frame/MdiFrameTestSupport.h"

#include <KORVAutlwin/controls/CheckBoxListCtrl.h>
#include <KORVAutlwin/controls/FilterListCtrlPopupBar.h>
#include <KORVAutlwin/controls/FilterRules.h>
#include <KORVAutlwin/controls/GrayListBox.h>
#include <KORVAutlwin/controls/ListCtrlWithDisabledItems.h>
#include <KORVAutlwin/toolkit/DisplayColor.h>
#include <KORVAutlwin/controls/SelectItemDialog.h>
#include <KORVAutlwin/controls/SelectNewClassDialog.h>
#include <KORVAutlwin/controls/TimedEditBox.h>
#include <KORVAutlwin/controls/TsFindAndSelectEdit.h>

using namespace korva::test;

namespace {

class ListRelatives : public ControlsFixture
{};

struct Names : FilterListItems
{
    std::vector<std::string> texts;
    unsigned int GetItemCount() const override { return static_cast<unsigned>(texts.size()); }
    const char* GetItemText(unsigned int i) const override { return texts[i].c_str(); }
};

struct Counter : TimedEditParent
{
    int calls = 0;
    void TimedEditTriggered(TimedEditBox&) override { ++calls; }
};

} // namespace

TEST_F(ListRelatives, CheckBoxCellsToggleOnlyInTheBox)
{
    auto* list = new CheckBoxListCtrl(mWindow.get());
    for (int col = 0; col < 2; ++col)
        list->InsertColumn(col, "C", LVCFMT_LEFT, 120);
    list->AddItem("one");
    list->AddItem("two");
    list->ShowColumnCheckBoxes(1, true);
    Show(list);
    const QRect box = list->CheckBoxRect(1, 1);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, box.center());
    EXPECT_TRUE(list->IsCheckBoxChecked(1, 1));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(box.right() + 30, box.center().y()));
    EXPECT_TRUE(list->IsCheckBoxChecked(1, 1));
    QRect first;
    ASSERT_TRUE(list->BetterGetSubItemRect(0, 0, first));
    EXPECT_EQ(first.width(), 120); // column 0 by its own width
    list->ShowColumnCheckBoxes(1, false);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, box.center());
    EXPECT_TRUE(list->IsCheckBoxChecked(1, 1));
}

TEST_F(ListRelatives, GreyEntriesCountAsUnselected)
{
    auto* box = new GrayListBox(mWindow.get());
    box->setSelectionMode(QAbstractItemView::MultiSelection);
    box->AddString("normal");
    box->AddString("grey", true);
    box->SetItemData(1, 42);
    Show(box);
    for (int index : {0, 1})
        QTest::mouseClick(box->viewport(), Qt::LeftButton, {}, box->visualItemRect(box->item(index)).center());
    EXPECT_TRUE(box->item(1)->isSelected());
    EXPECT_EQ(box->GetSel(0), 1);
    EXPECT_EQ(box->GetSel(1), 0);
    EXPECT_EQ(box->GetSelCount(), 1);
    EXPECT_TRUE(box->IsGray(-1));
    EXPECT_EQ(box->GetItemData(1), 42u);
    box->SetGray(1, false);
    EXPECT_EQ(box->GetSel(1), 1);
}

TEST_F(ListRelatives, TimedEditFiresOnlyForTyping)
{
    Counter parent;
    auto* box = new TimedEditBox(&parent, mWindow.get());
    box->SetDelayTime(20);
    EXPECT_EQ(box->GetDelayTime(), 100);
    Show(box);
    box->SetText("set by code");
    EXPECT_FALSE(box->IsTimerPending());
    QTest::keyClicks(box, "ab");
    EXPECT_TRUE(box->IsTimerPending());
    QTRY_COMPARE(parent.calls, 1);
}

TEST_F(ListRelatives, FindAndSelectByTyping)
{
    TsListCtrl* list = MakeList(0);
    for (const char* text : {"abc", "xab", "cab", "abd", "b"})
        list->AddItem(text);
    auto* edit = new TsFindAndSelectEdit(100, list, false, mWindow.get());
    Show(edit);
    struct Case
    {
        const char* typed;
        int mode;
        std::vector<int> rows;
    } cases[] = {{"ab", 0, {0, 3}}, {"*ab", 0, {1, 2}}, {"AB", 1, {0, 1, 2, 3}}, {"B", 4, {4}}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.typed);
        edit->SetHowToFind(c.mode, false);
        edit->clear();
        QTest::keyClicks(edit, c.typed);
        QTRY_COMPARE(Selected(list), c.rows);
    }
    const float values[] = {1, 2, 3, 4, 5};
    edit->SetVector(values);
    edit->SetHowToFind(3, false);
    edit->setText(">= 4");
    edit->SetHowToFind(3, true);
    EXPECT_EQ(Selected(list), (std::vector<int>{3, 4}));
}

TEST_F(ListRelatives, FilterPopupFiltersByTypingAndRemembersFilters)
{
    Names names;
    for (int i = 0; i < 200; ++i)
        names.texts.push_back("sample " + std::to_string(i));
    mApp->WriteProfileInt("PopupFilterListCtrl", "Width", 100);
    {
        FilterListCtrlPopupBar bar(names, 150, mWindow.get());
        EXPECT_EQ(bar.width(), 250);
        EXPECT_EQ(bar.height(), 350);
        bar.show();
        QTest::keyClicks(bar.GetComboBox()->lineEdit(), "19");
        EXPECT_TRUE(bar.IsFilterPending());
        QTRY_VERIFY(!bar.IsFilterPending());
        // The initial item stays in view in the first pass although it doesn't match.
        EXPECT_EQ(bar.GetVisibleItems().size(), 13u);
        EXPECT_EQ(bar.GetList()->GetListData().GetColumn(0).title, "13 of 200 items visible");
        EXPECT_EQ(bar.GetList()->GetItemText(bar.GetList()->GetSelIndex(), 0), "sample 150");
        QTest::keyClick(bar.GetComboBox()->lineEdit(), Qt::Key_9);
        QTRY_VERIFY(!bar.IsFilterPending());
        EXPECT_EQ(bar.GetVisibleItems(), (std::vector<unsigned>{199}));
        QTest::keyClick(bar.GetComboBox()->lineEdit(), Qt::Key_Return);
        EXPECT_FALSE(bar.isVisible());
    }
    EXPECT_EQ(mApp->GetProfileInt("PopupFilterListCtrl", "NumFilters", 0), 1);
    EXPECT_EQ(mApp->GetProfileString("PopupFilterListCtrl", "Filter0", ""), "199");
    // Twenty more uses: the oldest drops out; using a remembered one moves it to the front.
    for (int i = 0; i < 20; ++i) {
        FilterListCtrlPopupBar bar(names, FilterRules::kNoItem, mWindow.get());
        bar.GetComboBox()->setEditText(QString::number(100 + i));
        bar.Filter(bar.GetComboBox()->currentText().toStdString().c_str());
        bar.ChooseRow(0);
    }
    EXPECT_EQ(mApp->GetProfileInt("PopupFilterListCtrl", "NumFilters", 0), 20);
    EXPECT_EQ(mApp->GetProfileString("PopupFilterListCtrl", "Filter19", ""), "100");
    FilterListCtrlPopupBar reuse(names, FilterRules::kNoItem, mWindow.get());
    ASSERT_EQ(reuse.GetComboBox()->count(), 20);
    reuse.show();
    reuse.GetComboBox()->setCurrentIndex(5); // "114", picked from the combo's list
    emit reuse.GetComboBox()->activated(5);
    EXPECT_EQ(reuse.GetVisibleItems(), (std::vector<unsigned>{114}));
    QTest::keyClick(reuse.GetList(), Qt::Key_Return);
    EXPECT_EQ(mApp->GetProfileString("PopupFilterListCtrl", "Filter0", ""), "114");
    EXPECT_EQ(mApp->GetProfileString("PopupFilterListCtrl", "Filter1", ""), "119");
}

TEST_F(ListRelatives, TrackReturnsTheChosenItemOrMinusOne)
{
    Names names;
    names.texts = {"alpha", "beta", "gamma"};
    for (bool choose : {true, false}) {
        SCOPED_TRACE(choose);
        WhenModal([choose](QWidget* popup) {
            auto* bar = qobject_cast<FilterListCtrlPopupBar*>(popup);
            ASSERT_NE(bar, nullptr);
            if (!choose) {
                QTest::keyClick(bar->GetComboBox()->lineEdit(), Qt::Key_Escape);
                return;
            }
            bar->GetComboBox()->setEditText("gam");
            bar->Filter("gam");
            // The initial item (1) stays in the first pass, ahead of the match.
            ASSERT_EQ(bar->GetVisibleItems(), (std::vector<unsigned>{1, 2}));
            QTest::mouseDClick(bar->GetList()->viewport(), Qt::LeftButton, {},
                               bar->GetList()->GetItemRect(1).center());
        });
        EXPECT_EQ(TrackFilterListCtrlPopup(mWindow.get(), QPoint(-1, -1), names, 1), choose ? 2 : -1);
    }
}

TEST_F(ListRelatives, OptionFormNeedsAMarkWhenThereIsAChoice)
{
    for (size_t options : {1u, 2u}) {
        SCOPED_TRACE(options);
        std::vector<std::string> texts = {"Replace", "Append"};
        texts.resize(options);
        SelectItemDialog dialog(SelectItemDialog::eOptionMultiSelect, "Copy", "Samples:", "", {"a", "b", "c"}, false,
                                mWindow.get());
        dialog.SetChecked({1});
        dialog.SetOptions(texts, 0);
        bool warned = false;
        if (options > 1) // a watcher left waiting would answer the next test's dialog
            WhenModal([&](QWidget* box) {
                warned = BoxText(box) == "No option is selected.";
                box->close();
            });
        dialog.show();
        dialog.accept();
        EXPECT_EQ(warned, options > 1);
        EXPECT_EQ(dialog.result() == QDialog::Accepted, options == 1);
        EXPECT_EQ(dialog.GetChecked(), (std::vector<int>{1}));
        EXPECT_TRUE(dialog.GetList()->header()->isHidden());
    }
}

TEST_F(ListRelatives, ComplementCommandChecksExactlyTheSelection)
{
    SelectItemDialog dialog(SelectItemDialog::eMultiSelect, "Pick", "Samples:", "Name", {"a", "b", "c", "d"}, false,
                            mWindow.get());
    dialog.SetChecked({0, 3});
    dialog.GetList()->SetSelIndexes({1});
    dialog.OnCommand(SelectItemDialog::eSelectComplement);
    std::vector<int> checked;
    dialog.GetList()->GetCheckedIndexes(checked);
    EXPECT_EQ(checked, (std::vector<int>{0, 2, 3}));
    dialog.OnCommand(SelectItemDialog::eUnselectAllMarked);
    dialog.GetList()->GetCheckedIndexes(checked);
    EXPECT_TRUE(checked.empty());
}

TEST_F(ListRelatives, NewClassDialogGivesNoneForEntryZero)
{
    struct Case
    {
        int index;
        const char* typed;
        std::string selected;
    } cases[] = {{0, nullptr, ""}, {2, nullptr, "Barley"}, {-1, "Oats", "Oats"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.selected);
        SelectNewClassDialog dialog({"Wheat", "Barley"}, false, mWindow.get());
        dialog.show();
        if (c.typed) {
            dialog.GetComboBox()->lineEdit()->clear();
            QTest::keyClicks(dialog.GetComboBox()->lineEdit(), c.typed);
        } else
            dialog.GetComboBox()->setCurrentIndex(c.index);
        dialog.accept();
        EXPECT_EQ(dialog.GetSelected(), c.selected);
    }
}

TEST_F(ListRelatives, SingleSelectDialogByMouse)
{
    std::vector<std::string> items;
    for (int i = 0; i < 60; ++i)
        items.push_back("item " + std::to_string(i));
    int selected = 40;
    int top = -1;
    WhenModal([&](QWidget* modal) {
        auto* dialog = qobject_cast<SelectItemDialog*>(modal);
        ASSERT_NE(dialog, nullptr);
        TsListCtrl* list = dialog->GetList();
        top = list->GetTopIndex();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->GetItemRect(top + 2).center());
        QTest::keyClick(dialog, Qt::Key_Return);
    });
    EXPECT_EQ(TsSingleSelectItemDialog("Pick", "One item:", "Item", items, &selected, false, mWindow.get()), IDOK);
    EXPECT_GT(top, 0); // the initial item was scrolled into view
    EXPECT_EQ(selected, top + 2);
}

namespace {

struct OddRowsDisabled : ListCtrlWithDisabledItems
{
    using ListCtrlWithDisabledItems::ListCtrlWithDisabledItems;
    bool IsItemDisabled(int row) const override { return row % 2 == 1; }
};

// The longest run of pixels of exactly `colour` on one line within the rows' band.
int LongestRun(const QImage& image, QRect band, QColor colour)
{
    int longest = 0;
    for (int y = band.top(); y <= band.bottom(); ++y) {
        int run = 0;
        for (int x = 0; x < image.width(); ++x) {
            run = image.pixelColor(x, y) == colour ? run + 1 : 0;
            longest = std::max(longest, run);
        }
    }
    return longest;
}

} // namespace

TEST_F(ListRelatives, DisabledRowsAreStruckThrough)
{
    auto* list = new OddRowsDisabled(mWindow.get());
    list->InsertColumn(0, "Sample", LVCFMT_LEFT, 200);
    list->AddItem("Sample with a long name");
    list->AddItem("Sample with a long name");
    Show(list);
    const QImage image = list->viewport()->grab().toImage();
    const QColor grey = korva::ToQColor(korva::GetSysColor(COLOR_GRAYTEXT));
    EXPECT_NE(grey, korva::ToQColor(list->GetTextColor())); // grey rows must look grey
    EXPECT_GT(LongestRun(image, list->GetItemRect(1), grey), 60);
    EXPECT_LT(LongestRun(image, list->GetItemRect(0), grey), 10);
}
