// The grid's rows without a window: filling, collapsing, searching, selecting by id.
#include <KORVAutlwin/options/PropertyItemCategory.h>
#include <KORVAutlwin/options/PropertyItemManager.h>
#include <KORVAutlwin/options/PropertyItemString.h>
#include <KORVAutlwin/options/PropertyListModel.h>

#include <gtest/gtest.h>

#include <string>

namespace {

int gAlive = 0;

class CountedItem : public PropertyItemString
{
public:
    CountedItem(const char* name, unsigned int id) : PropertyItemString(name, id, "") { ++gAlive; }
    ~CountedItem() override { --gAlive; }
};

class Manager : public PropertyItemManager
{
public:
    void OnInitManager(unsigned long) override {}
    void OnManagerCommand(unsigned long) override {}
};

// Three categories: "General" (open: Alpha 1, beta 2), "Paths" (closed: Gamma 3,
// delta 4, Alpha 5), "Colours" (open, empty).
void Fill(Manager& manager)
{
    PropertyItemCategory* general = manager.AddPropertyCategory("General", "", true);
    general->AddPropertyItem(new CountedItem("Alpha", 1));
    general->AddPropertyItem(new CountedItem("beta", 2));
    PropertyItemCategory* paths = manager.AddPropertyCategory("Paths", "", false);
    paths->AddPropertyItem(new CountedItem("Gamma", 3));
    paths->AddPropertyItem(new CountedItem("delta", 4));
    paths->AddPropertyItem(new CountedItem("Alpha", 5));
    manager.AddPropertyCategory("Colours", "", true);
}

std::string Rows(const PropertyListModel& rows)
{
    std::string names;
    for (int row = 0; row < rows.GetCount(); ++row)
        names += std::string(row ? "," : "") + rows.GetPropertyItem(row)->GetName();
    return names;
}

} // namespace

TEST(PropertyItemManager, OwnsCategoriesAndTheirItems)
{
    {
        Manager manager;
        Fill(manager);
        EXPECT_EQ(gAlive, 5);
        EXPECT_EQ(manager.GetNumCategories(), 3);
        EXPECT_EQ(manager.GetPropertyCategory(-1), nullptr);
        EXPECT_EQ(manager.GetPropertyCategory(3), nullptr);
        EXPECT_STREQ(manager.GetPropertyCategory(2)->GetName(), "Colours");
        EXPECT_EQ(manager.GetPropertyCategory(1)->GetPropertyID(), 0u);
        EXPECT_EQ(manager.GetPropertyCategory(1)->GetNumItems(), 3u);
    }
    EXPECT_EQ(gAlive, 0);
}

TEST(PropertyListModel, InitControlPutsVisibleChildrenBehindTheirCategory)
{
    Manager manager;
    Fill(manager);
    PropertyListModel rows;
    rows.InsertPropertyItem(manager.GetPropertyCategory(2), -1); // replaced by the fill
    rows.SetPropertyItemManager(&manager);
    EXPECT_EQ(Rows(rows), "General,Alpha,beta,Paths,Colours");
    EXPECT_EQ(rows.GetPropertyItem(5), nullptr);
    EXPECT_EQ(rows.GetPropertyItem(-1), nullptr);

    // Toggling keeps the selection on its item; a selected child that goes away leaves none.
    rows.SetCurSel(4);
    rows.DoCollapseExpand(3);
    EXPECT_EQ(Rows(rows), "General,Alpha,beta,Paths,Gamma,delta,Alpha,Colours");
    EXPECT_EQ(rows.GetCurSel(), 7);
    rows.DoCollapseExpand(0);
    EXPECT_EQ(Rows(rows), "General,Paths,Gamma,delta,Alpha,Colours");
    EXPECT_EQ(rows.GetCurSel(), 5);
    rows.SetCurSel(3);
    rows.DoCollapseExpand(1);
    EXPECT_EQ(rows.GetCurSel(), -1);
    rows.DoCollapseExpand(5, nullptr); // out of range: nothing
    rows.DoCollapseExpand(0, rows.GetPropertyItem(0));
    EXPECT_EQ(Rows(rows), "General,Alpha,beta,Paths,Colours");
    rows.DoCollapseExpand(1); // an item, not a category: nothing
    EXPECT_EQ(rows.GetCount(), 5);
}

TEST(PropertyListModel, LetterSearchStartsAfterTheSelectionAndWraps)
{
    Manager manager;
    Fill(manager);
    PropertyListModel rows;
    EXPECT_FALSE(rows.LookupPropertyItem('a'));
    manager.GetPropertyCategory(1)->SetChildrenVisible(true);
    rows.SetPropertyItemManager(&manager); // General,Alpha,beta,Paths,Gamma,delta,Alpha,Colours
    struct Row
    {
        int from;
        char letter;
        bool found;
        int to;
    };
    const Row table[] = {
        {-1, 'a', true, 1}, {1, 'a', true, 6}, {6, 'A', true, 1}, {7, 'g', true, 0}, {0, 'G', true, 4},
        {4, 'g', true, 0},  {2, 'B', true, 2}, {3, 'z', false, 3}, {7, 'c', true, 7},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(std::string(1, row.letter) + " from " + std::to_string(row.from));
        rows.SetCurSel(row.from);
        EXPECT_EQ(rows.LookupPropertyItem(row.letter), row.found);
        EXPECT_EQ(rows.GetCurSel(), row.to);
    }
    EXPECT_EQ(rows.FindPropertyItem('d', 0, 5), -1);
    EXPECT_EQ(rows.FindPropertyItem('d', 0, 6), 5);

    // A first letter of several bytes is one character, its case ignored.
    Manager other;
    other.AddPropertyCategory("\xC3\x96lgehalt", "", false); // "Ölgehalt"
    other.AddPropertyCategory("Ozon", "", false);
    PropertyListModel names;
    names.SetPropertyItemManager(&other);
    EXPECT_EQ(names.FindPropertyItem(U'\u00F6', 0, 2), 0);
    EXPECT_EQ(names.FindPropertyItem(U'o', 0, 2), 1);
    EXPECT_EQ(names.FindPropertyItem('\xC3', 0, 2), -1); // not a byte of it
}

TEST(PropertyListModel, SetCurSelByIdOpensACollapsedCategory)
{
    struct Row
    {
        unsigned int id;
        bool found;
        int selected;
        const char* rows;
    };
    const Row table[] = {
        {4, true, 5, "General,Alpha,beta,Paths,Gamma,delta,Alpha,Colours"},
        {5, true, 6, "General,Alpha,beta,Paths,Gamma,delta,Alpha,Colours"},
        {2, true, 2, "General,Alpha,beta,Paths,Colours"},
        {0, true, 0, "General,Alpha,beta,Paths,Colours"}, // the first expanded category
        {9, false, -1, "General,Alpha,beta,Paths,Colours"},
    };
    for (const Row& row : table) {
        SCOPED_TRACE(row.id);
        Manager manager;
        Fill(manager);
        PropertyListModel rows;
        rows.SetPropertyItemManager(&manager);
        EXPECT_EQ(rows.SetCurSelByID(row.id), row.found);
        EXPECT_EQ(rows.GetCurSel(), row.selected);
        EXPECT_EQ(Rows(rows), row.rows);
    }
    // With the first category closed, id 0 skips it and finds the open one after.
    Manager manager;
    Fill(manager);
    manager.GetPropertyCategory(0)->SetChildrenVisible(false);
    PropertyListModel rows;
    rows.SetPropertyItemManager(&manager);
    EXPECT_TRUE(rows.SetCurSelByID(0));
    EXPECT_EQ(rows.GetCurSel(), 2);
    PropertyListModel empty;
    EXPECT_FALSE(empty.SetCurSelByID(0));
    EXPECT_FALSE(empty.SetCurrentData());
}
