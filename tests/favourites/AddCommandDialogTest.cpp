#include "../frame/TestApplication.h"

#include <KORVAutlwin/favourites/AddCommandToFavouritesDlg.h>
#include <KORVAutlwin/favourites/CommandsListBox.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouritesDocument.h>

#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>

namespace {

const char kMenu[] = R"(<menu><popup text="&amp;File"><item id="57616" text="Recent File"/>
  <popup text="&amp;Export"><item id="34930" text="As &amp;text&#9;Ctrl+T"/></popup>
  <popup text="Unused"><item id="34932" text="N/A"/></popup><separator/><item id="34931" text="&amp;Print"/></popup>
  <popup text="&amp;Tabs"><item id="34200" text="New &amp;list window"/><item id="57651" text="&amp;Tile"/></popup></menu>)";

void Click(QListWidget* list, int row, bool twice = false)
{
    const QPoint at = list->visualItemRect(list->item(row)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
    if (twice)
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
}

std::vector<std::string> Rows(const CommandsListBox* list)
{
    std::vector<std::string> rows;
    for (int i = 0; i < list->count(); ++i)
        rows.push_back(list->GetItem(i)->text + (list->GetItem(i)->icon.isNull() ? "" : " (picture)"));
    return rows;
}

} // namespace

TEST(AddCommandToFavouritesDlg, PicksCommandsFromMenusAndSubMenus)
{
    korva::test::Application();
    const korva::StringEntry strings[] = {{34930, "Export the data as text\nText"}, {34931, "Print it\nPrint"}};
    const korva::ResourceEntry resources[] = {{34939, "MENU", kMenu, sizeof kMenu - 1}};
    korva::ResourceModule module("test", strings, std::size(strings), resources, std::size(resources));
    const korva::ResourceModule* previous = LanguageString::SetModule(&module);

    FavouritesDocument tree;
    tree.SetToolBarIDs({34902});
    const unsigned int menus[] = {34939, 34938};
    AddCommandToFavouritesDlg dialog(&tree, menus, 2, nullptr);
    dialog.show();
    QListWidget* categories = dialog.GetCategories();
    CommandsListBox* commands = dialog.GetCommands();
    auto* add = korva::test::Control<QPushButton>(&dialog, AddCommandToFavouritesDlg::kAddCtrlId);
    auto* description = korva::test::Control<QLabel>(&dialog, AddCommandToFavouritesDlg::kDescriptionCtrlId);
    ASSERT_TRUE(add && description);
    ASSERT_EQ(categories->count(), 2) << "a missing menu offers nothing";
    EXPECT_EQ(categories->item(0)->text(), "File");

    Click(categories, 1);
    EXPECT_EQ(Rows(commands), (std::vector<std::string>{"New list window (picture)", "Tile"}));
    Click(categories, 0);
    EXPECT_EQ(Rows(commands), (std::vector<std::string>{"Export", "Print"}));
    EXPECT_FALSE(add->isEnabled());
    EXPECT_EQ(description->text().toStdString(), LanguageString::Get(16120));

    Click(commands, 0);
    EXPECT_EQ(description->text().toStdString(), LanguageString::Get(16117));
    EXPECT_FALSE(add->isEnabled());
    Click(commands, 0, true);
    ASSERT_EQ(Rows(commands), std::vector<std::string>{"As text"});
    Click(commands, 0);
    EXPECT_EQ(description->text().toStdString(), std::string(LanguageString::Get(16120)) + " Export the data as text");
    ASSERT_TRUE(add->isEnabled());
    QTest::mouseClick(add, Qt::LeftButton);

    FavouriteRow* row = tree.GetRootItem();
    ASSERT_TRUE(row);
    const auto* command = dynamic_cast<const FavouriteCommandItem*>(tree.GetFavouriteItem(row));
    ASSERT_TRUE(command);
    EXPECT_EQ(command->GetName(), "As text");
    EXPECT_EQ(command->GetCommandID(), 34930);
    EXPECT_EQ(tree.GetNextItem(row), nullptr);
    LanguageString::SetModule(previous);
}
