#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouriteItemHandle.h>
#include <KORVAutlwin/favourites/FavouritesDocument.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>

#include <KORVAutl/LanguageString.h>

#include <gtest/gtest.h>

TEST(FavouritesManager, IconsByKind)
{
    FavouritesManager manager;
    FavouritesDocument tree;
    tree.SetToolBarIDs({34902});
    tree.SetFavouritesManager(&manager);
    const auto& standard = manager.GetStandardImages();
    ASSERT_EQ(standard.size(), 9u);

    FavouriteFolderItem asItem("As item", nullptr);
    asItem.SetTreatAsItem(true);
    const FavouriteFolderItem folder("Folder", nullptr);
    const FavouriteCommandItem unknownCommand("No picture", 777);
    const FavouriteFileItem file("No icon without a desktop", "/data/wheat.tsx");
    const FavouriteItemHandle handle(file);
    const struct
    {
        const FavouriteItem* item;
        int normal;
        int selected;
    } rows[] = {{nullptr, 0, 0}, {&folder, 1, 2}, {&asItem, 5, 5}, {&unknownCommand, 7, 7}, {&file, 8, 8}, {&handle, 3, 3}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.item ? row.item->GetName() : "no item");
        QImage normal;
        QImage selected;
        manager.GetIcon(row.item, normal, selected);
        EXPECT_TRUE(normal == standard[row.normal]);
        EXPECT_TRUE(selected == standard[row.selected]);
    }

    // A command on the tool bar takes its button's picture, whose face is clear.
    const FavouriteCommandItem cascade("Cascade", 0xE132);
    QImage normal;
    QImage selected;
    manager.GetIcon(&cascade, normal, selected);
    ASSERT_EQ(normal.size(), QSize(16, 15));
    EXPECT_EQ(qAlpha(normal.pixel(0, 14)), 0);

    FavouritesManager::ImageList images(2);
    FavouritesManager::CommandImageMap map;
    EXPECT_TRUE(FavouritesManager::LoadToolBar(34902, images, map));
    EXPECT_EQ(images.size(), 5u);
    EXPECT_EQ(map, (FavouritesManager::CommandImageMap{{34200, 2}, {34201, 3}, {0xE132, 4}}));
    EXPECT_FALSE(FavouritesManager::LoadToolBar(34903, images, map));
}

namespace {

struct OpenedFrames
{
    std::vector<std::string> ran;
    std::vector<int> locks;
    int arranged = 0;
    bool tiled = false;
    std::string summary;
    std::string details;
};

} // namespace

TEST(FavouritesManager, OpenGathersFailuresAndTilesOnlyNewFrames)
{
    FavouriteApplication& application = FavouriteApplication::Get();
    OpenedFrames seen;
    static int frames[8];
    application.isCommandEnabled = [](unsigned int id) { return id != 13; };
    application.runCommand = [&](int id) {
        seen.ran.push_back(std::to_string(id));
        // Commands 100 to 999 open a window; the address stands for it.
        return id >= 100 && id < 1000 ? reinterpret_cast<QWidget*>(&frames[seen.ran.size()]) : nullptr;
    };
    application.lockWindowUpdate = [&](bool lock) { seen.locks.push_back(lock); };
    application.arrangeOpenedFrames = [&](const auto&, const auto& opened, bool tile) {
        seen.arranged = static_cast<int>(opened.size());
        seen.tiled = tile;
    };
    application.showDetails = [&](const std::string& summary, const std::string& details) {
        seen.summary = summary;
        seen.details = details;
    };

    const struct
    {
        std::vector<FavouriteItem*> items;
        const char* ran;
        int arranged;
        bool tiled;
        unsigned int summary;
        const char* details;
    } rows[] = {
        {{new FavouriteCommandItem("One", 100)}, "100", 0, false, 0, ""},
        {{new FavouriteFileItem("Wheat", "/nowhere/wheat.tsx"), new FavouriteCommandItem("Off", 13),
          new FavouriteCommandItem("List", 101), new FavouriteCommandItem("Tree", 102)},
         "101 102", 2, true, 16149, "Wheat: Not available.\r\nOff: Not available."},
        {{new FavouriteCommandItem("List", 101), new FavouriteCommandItem("Cascade", 0xE132),
          new FavouriteCommandItem("Tree", 102)},
         "101 57650 102", 2, false, 0, ""},
        {{nullptr, new FavouriteCommandItem("Never", 100)}, "", 0, false, 16150, "Favourite 1 is missing."},
        {{new FavouriteFileItem("Gone", "")}, "", 0, false, 16151, "Gone: Not available."},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.ran);
        seen = OpenedFrames();
        std::vector<FavouriteItem*> items = row.items;
        FavouritesManager().Open(&items);
        std::string ran;
        for (const std::string& id : seen.ran)
            ran += (ran.empty() ? "" : " ") + id;
        EXPECT_EQ(ran, row.ran);
        EXPECT_EQ(seen.arranged, row.arranged);
        EXPECT_EQ(seen.tiled, row.tiled);
        EXPECT_EQ(seen.locks, (row.items.size() > 1 ? std::vector<int>{1, 0} : std::vector<int>()));
        EXPECT_EQ(seen.summary, row.summary ? LanguageString::Get(row.summary) : "");
        EXPECT_EQ(seen.details, row.details);
    }
    application = FavouriteApplication();
}

TEST(FavouritesManager, AddToFavouritesFindsTheDefaultParent)
{
    // Documents go to collection 1, commands to 2.
    struct Manager : FavouritesManager
    {
        std::vector<int> changed;
        bool OnAddToFavourites(FavouriteItem* item, int& collection) override
        {
            collection = item->GetType() == "CommandItem" ? 2 : 1;
            return item->GetName() != "refused";
        }
        void OnFavouritesChanged(int collection) override { changed.push_back(collection); }
    } manager;
    FavouritesDocument tree;
    tree.SetFavouritesManager(&manager);
    FavouriteRow* documents = tree.InsertItem("Documents", nullptr, nullptr);
    auto* folder = new FavouriteFolderItem("Documents", nullptr);
    folder->SetDefaultItemType("FileItem");
    tree.SetItemData(documents, new FavouriteTreeNode{folder, 1});
    FavouriteRow* commands = tree.InsertItem("Commands", nullptr, nullptr);
    tree.SetItemData(commands, new FavouriteTreeNode{new FavouriteFolderItem("Commands", nullptr), 2});

    tree.AddToFavourites(new FavouriteFileItem("Wheat", "/data/Wheat.tsx"));
    tree.AddToFavourites(new FavouriteFileItem("Wheat again", "/DATA/wheat.tsx"));
    tree.AddToFavourites(new FavouriteCommandItem("Fit", 5));
    // A closed folder with children keeps them: the next row goes behind it.
    tree.AddToFavourites(new FavouriteCommandItem("Plot", 6));
    FavouriteFileItem refused("refused", "/r");
    tree.AddToFavourites(&refused);

    std::string rows;
    for (FavouriteRow* row = tree.GetRootItem(); row; row = tree.GetNextItem(row))
        rows += std::to_string(tree.GetIndentLevel(row)) + tree.GetItemText(row) + ":" +
                std::to_string(tree.GetItemData(row)->collection) + " ";
    EXPECT_EQ(rows, "0Documents:1 1Wheat:1 0Commands:2 1Fit:2 0Plot:2 ");
    EXPECT_EQ(manager.changed, (std::vector<int>{1, 2, 2}));
}
