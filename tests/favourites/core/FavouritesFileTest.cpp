#include <KORVAutlwin/favourites/FavouriteApplication.h>
#include <KORVAutlwin/favourites/FavouriteBuilder.h>
#include <KORVAutlwin/favourites/FavouriteCommandItem.h>
#include <KORVAutlwin/favourites/FavouriteFileItem.h>
#include <KORVAutlwin/favourites/FavouriteFolderItem.h>
#include <KORVAutlwin/favourites/FavouritesDocument.h>
#include <KORVAutlwin/favourites/FavouritesManager.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/XMLSection.h>

#include "utl/TempDir.h"

#include <gtest/gtest.h>

namespace {

// Each row as "level text style|" (style: bit 0 bold, bit 1 expanded); "-" for a separator.
std::string Describe(const FavouritesDocument& tree)
{
    std::string text;
    for (FavouriteRow* row = tree.GetRootItem(); row; row = tree.GetNextItem(row)) {
        const FavouriteItem* item = tree.GetFavouriteItem(row);
        text += item && item->GetType() == "SeparatorItem"
                    ? "-|"
                    : std::to_string(tree.GetIndentLevel(row)) + " " + tree.GetItemText(row) + " " +
                          std::to_string(tree.GetItemStyle(row)) + "|";
    }
    return text;
}

FavouriteRow* Add(FavouritesDocument& tree, FavouriteItem* item, FavouriteRow* parent, int collection = 1)
{
    FavouriteRow* row = tree.InsertItem(item->GetName(), parent, nullptr);
    tree.SetItemData(row, new FavouriteTreeNode{item, collection});
    return row;
}

} // namespace

TEST(FavouritesFile, RowsOfOneCollectionComeBackAsTheyWere)
{
    TempDir dir;
    FavouritesManager manager;
    FavouritesDocument tree;
    tree.SetFavouritesManager(&manager);
    FavouriteRow* spectra = Add(tree, new FavouriteFolderItem("Spectra", nullptr), nullptr);
    Add(tree, new FavouriteFileItem("Wheat", "/data/wheat.tsx"), spectra);
    FavouriteRow* models = Add(tree, new FavouriteFolderItem("Models", "Nothing yet"), spectra);
    Add(tree, new FavouriteCommandItem("Fit", 32771), models);
    Add(tree, new FavouriteFileItem("Other's", "/x"), models, 2);
    Add(tree, new FavouriteFileItem("Rye", "/data/rye.tsx"), nullptr);
    tree.SetItemStyle(spectra, FavouritesTreeRows::kStyleBold | FavouritesTreeRows::kStyleExpanded);
    tree.SetItemStyle(models, FavouritesTreeRows::kStyleExpanded);
    tree.SetItemText(models, "  Models 2 ");
    const std::string file = dir.File("favourites.xml");
    ASSERT_TRUE(manager.SaveFavourites(file, 1));

    XMLSection saved(file.c_str(), false);
    ASSERT_TRUE(saved.ChangeSubSection("Favourites"));
    EXPECT_EQ(saved.NumSubSections("FavouriteItem"), 5) << "the other collection's row is not written";
    std::unique_ptr<ConfigurationSection> fit(saved.CopyAndChangeSubSection("FavouriteItem", 4));
    int indent = -1;
    std::string name;
    EXPECT_TRUE(fit->ReadInt("_IndentLevel", indent) && fit->ReadKey("Name", name));
    EXPECT_EQ(indent, 2);
    EXPECT_EQ(name, "Fit");

    FavouritesDocument back;
    back.SetFavouritesManager(&manager);
    EXPECT_TRUE(manager.LoadFavourites(file, 7));
    EXPECT_EQ(Describe(back), "0 Spectra 3|1 Wheat 0|1 Models 2 2|2 Fit 0|0 Rye 0|");
    EXPECT_EQ(back.GetDefaultCollectionID(nullptr), 7);

    // Loading replaces the collection; another collection comes behind a separator.
    EXPECT_TRUE(manager.LoadFavourites(file, 7));
    EXPECT_TRUE(manager.LoadFavourites(file, 8));
    EXPECT_EQ(back.GetCount(), 11);
    EXPECT_EQ(Describe(back).substr(Describe(back).find('-')), "-|0 Spectra 3|1 Wheat 0|1 Models 2 2|2 Fit 0|0 Rye 0|");
    // The separator belongs to collection 8 but is never written.
    ASSERT_TRUE(manager.SaveFavourites(dir.File("eight.xml"), 8));
    EXPECT_EQ(std::unique_ptr<ConfigurationSection>(XMLSection(dir.File("eight.xml").c_str(), false)
                                                        .CopyAndChangeSubSection("Favourites"))
                  ->NumSubSections("FavouriteItem"),
              5);
    manager.DeleteFavouriteNode(8);
    EXPECT_EQ(back.GetCount(), 5);
}

TEST(FavouritesFile, OlderFormsAreReadAndTheOldestRetired)
{
    TempDir dir;
    const std::string file = dir.File("old.xml");
    WriteFile(file, R"(<Tessmark><Favourites>
        <FavouriteItem Type="FileItem" Label="Gone" IndentLevel="0"><ItemData Name="Gone" File="/g"/></FavouriteItem>
        <FavouriteItem Name="A" Type="FavouritesFolder" _IndentLevel="0" Bold="0"/>
        <FavouriteItem Name="B" Type="FileItem" File="/b" _IndentLevel="1" Bold="1" Expanded="1"/>
        <FavouriteItem Name="U" Type="Unknown" _IndentLevel="1"/>
        <FavouriteItem Name="C" Type="CommandItem" _IndentLevel="2" _Style="1"/>
        <FavouriteItem Name="D" Type="CommandItem" _IndentLevel="0" Expanded="1"/>
        </Favourites><GlobalFavourites/></Tessmark>)");
    FavouritesManager manager;
    FavouritesDocument tree;
    tree.SetFavouritesManager(&manager);
    manager.LoadFavourites(file, -1);
    // The k-th row takes the k-th entry's style: the retired entry shifts them.
    EXPECT_EQ(Describe(tree), "0 A 0|1 B 0|2 C 1|0 D 0|");

    // Saving drops the old "Favourites" and writes only the present keys.
    ASSERT_TRUE(manager.SaveFavourites(file, -1));
    const std::string text = ReadFile(file);
    for (const char* gone : {"ItemData", "Bold", "Label", "Unknown"})
        EXPECT_EQ(text.find(gone), std::string::npos) << gone;
    EXPECT_NE(text.find("GlobalFavourites"), std::string::npos) << "only one of the two goes";
}

TEST(FavouritesFile, BadFilesAndMissingTrees)
{
    TempDir dir;
    FavouritesManager manager;
    const std::string broken = dir.File("broken.xml");
    WriteFile(broken, "<Tessmark><Favourites>");
    EXPECT_THROW(manager.LoadFavourites(broken, 1), Exception);

    // Without a tree nothing is read, and saving writes an empty document.
    const std::string empty = dir.File("empty.xml");
    EXPECT_TRUE(manager.LoadFavourites(empty, 1));
    EXPECT_TRUE(manager.SaveFavourites(empty, 1));
    EXPECT_NE(ReadFile(empty).find("Tessmark"), std::string::npos);

    // An exception inside reading is shown, and the rows read before it stay.
    std::string shown;
    FavouriteApplication::Get().messageBox = [&](const std::string& text, unsigned int) { shown = text; };
    struct Failing : FavouriteFileItem
    {
        Failing() : FavouriteFileItem("F", "/f") {}
        FavouriteItem* Copy() const override { return new Failing(*this); }
        void Load(const ConfigurationSection*) override { throw Exception("bad entry"); }
    };
    const Failing failing;
    FavouriteBuilder::Instance().Add("Failing", &failing);
    const std::string file = dir.File("failing.xml");
    WriteFile(file, R"(<Tessmark><Favourites><FavouriteItem Name="A" Type="FileItem"/>
        <FavouriteItem Name="F" Type="Failing"/><FavouriteItem Name="B" Type="FileItem"/></Favourites></Tessmark>)");
    FavouritesDocument tree;
    tree.SetFavouritesManager(&manager);
    EXPECT_TRUE(manager.LoadFavourites(file, 1));
    EXPECT_EQ(Describe(tree), "0 A 0|");
    EXPECT_EQ(shown, "bad entry");
    FavouriteApplication::Get().messageBox = nullptr;
}
