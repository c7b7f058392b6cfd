#include "ArtTestSupport.h"

#include <KORVAutlwin/art/ArtCatalogue.h>

#include <gtest/gtest.h>

#include <filesystem>

using korva::ArtCatalogue;
using namespace korva::test;

namespace {

class ArtCatalogueTest : public ::testing::Test
{
protected:
    // A file in the folder with one collection per entry of `titles`, pictures
    // of `width` by `height` and a 40 by 60 portrait.
    void WriteCollections(const std::string& name, const std::vector<std::vector<std::string>>& titles, int width,
                          int height)
    {
        const std::string picture = WritePicture(mSources.File(name + ".png"), width, height);
        const std::string portrait = WritePicture(mSources.File(name + "-face.png"), 40, 60);
        ArtInfo art;
        std::vector<std::vector<std::string>> pictures;
        std::vector<std::vector<int>> rotations;
        for (std::size_t i = 0; i < titles.size(); ++i) {
            CollectionInfo collection =
                MakeCollection(name + std::to_string(i), titles[i], name + "-face" + std::to_string(i));
            collection.SetMaxPictureSize(static_cast<unsigned>(width), static_cast<unsigned>(height));
            collection.SetMaxPortraitSize(40, 60);
            art.AddCollection(collection);
            pictures.emplace_back(titles[i].size(), picture);
            rotations.emplace_back(titles[i].size(), 0);
        }
        art.SaveToFile(mFolder.File(name).c_str(), pictures, rotations,
                       std::vector<std::string>(titles.size(), portrait), std::vector<int>(titles.size(), 0));
    }

    static ArtCatalogue Load(const std::string& folder)
    {
        ArtCatalogue catalogue;
        catalogue.LoadPainters(folder);
        catalogue.Finish();
        return catalogue;
    }

    TempDir mFolder;
    TempDir mSources;
};

TEST_F(ArtCatalogueTest, WithoutFilesThereIsNoArtistAndOneCollectionHasNoRandomArtist)
{
    WriteFile(mFolder.File("readme.txt"), "no art here");
    for (const std::string& folder : {mFolder.Path(), mFolder.File("no-such-folder")}) {
        ArtCatalogue catalogue = Load(folder);
        EXPECT_EQ(0, catalogue.GetNumArtists());
        EXPECT_EQ(-1, catalogue.GetPreferedArtist());
        EXPECT_EQ(QPoint(0, 0), catalogue.GetMaxBitmapSize());
        EXPECT_EQ("", catalogue.GetArtistName(0, -1));
        EXPECT_TRUE(catalogue.GetPainting(0, 0).isNull());
        catalogue.SetPreferedArtist(99);
        EXPECT_EQ(-1, catalogue.GetPreferedArtist());
    }

    WriteCollections("one.tart", {{"Dawn", "Noon"}}, 100, 50);
    ArtCatalogue catalogue = Load(mFolder.Path());
    EXPECT_EQ(1, catalogue.GetNumArtists());
    EXPECT_EQ(0, catalogue.GetPreferedArtist());
    EXPECT_EQ("one.tart0", catalogue.GetArtistName(0, -1));
    EXPECT_EQ("life of one.tart0", catalogue.GetArtistLifeSpan(0, -1));
    EXPECT_EQ("Noon", catalogue.GetPaintingName(0, 1));
    EXPECT_EQ("", catalogue.GetPaintingName(0, 2));
    EXPECT_EQ(QSize(100, 50), catalogue.GetPainting(0, 0).size());
    EXPECT_EQ(QSize(40, 60), catalogue.GetArtistPortrait(0, -1).size());
    EXPECT_TRUE(catalogue.GetPainting(-1, 0).isNull());
    catalogue.SetPreferedArtist(1);
    EXPECT_EQ(0, catalogue.GetPreferedArtist());
}

TEST_F(ArtCatalogueTest, TwoCollectionsOfThreeAndTwoPictures)
{
    WriteCollections("a.tart", {{"A1", "A2", "A3"}}, 300, 100);
    WriteCollections("b.tart", {{"B1", "B2"}}, 120, 250);
    ArtCatalogue catalogue = Load(mFolder.Path());
    ASSERT_EQ(3, catalogue.GetNumArtists());
    EXPECT_EQ(0, catalogue.GetPreferedArtist());
    EXPECT_EQ(3, catalogue.GetNumPaintings(0));
    EXPECT_EQ(2, catalogue.GetNumPaintings(1));
    EXPECT_EQ(5, catalogue.GetNumPaintings(2));

    // The pseudo artist's pictures run through both artists in file order.
    const char* titles[] = {"A1", "A2", "A3", "B1", "B2", ""};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(titles[i], catalogue.GetPaintingName(2, i));
    EXPECT_EQ("a.tart0", catalogue.GetArtistName(2, 2));
    EXPECT_EQ("b.tart0", catalogue.GetArtistName(2, 3));
    EXPECT_EQ("life of b.tart0", catalogue.GetArtistLifeSpan(2, 4));
    EXPECT_EQ("", catalogue.GetArtistName(2, 5));
    EXPECT_EQ("<Random>", catalogue.GetArtistName(2, -1));
    EXPECT_EQ("", catalogue.GetArtistLifeSpan(2, -1));
    EXPECT_EQ(QSize(120, 250), catalogue.GetPainting(2, 3).size());
    EXPECT_TRUE(catalogue.GetPainting(2, 5).isNull());
    EXPECT_FALSE(catalogue.GetArtistPortrait(2, 4).isNull());
    EXPECT_TRUE(catalogue.GetArtistPortrait(2, 5).isNull());
    int artist = 2, picture = 4;
    ASSERT_TRUE(catalogue.ResolvePicture(artist, picture));
    EXPECT_EQ(std::make_pair(1, 1), std::make_pair(artist, picture));

    // Each size for itself: the widest picture of one, the highest of the other.
    EXPECT_EQ(QPoint(300, 250), catalogue.GetMaxBitmapSize());
    EXPECT_EQ(QPoint(40, 60), catalogue.GetMaxPortraitSize());
    catalogue.SetPreferedArtist(2);
    EXPECT_EQ(2, catalogue.GetPreferedArtist());
    catalogue.SetPreferedArtist(3);
    EXPECT_EQ(0, catalogue.GetPreferedArtist());
}

TEST_F(ArtCatalogueTest, BrokenFilesAmongGoodOnesAreSkipped)
{
    WriteCollections("1-good.tart", {{"First"}}, 50, 50);
    WriteArtFile(mFolder.File("2-damaged.tart"), "22 serialization::archive 7 0 0 0 0 3 0 0 0 1");
    WriteFile(mFolder.File("3-text.TART"), "just text");
    WriteArtFile(mFolder.File("4-nodescription.tart"), "", false);
    WriteCollections("5-good.Tart", {{"Second", "Third"}, {"Fourth"}}, 60, 40);
    WriteCollections("6-ignored.tart.bak", {{"Backup"}}, 60, 40);
    std::filesystem::create_directory(mFolder.File("7-folder.tart"));

    ArtCatalogue catalogue = Load(mFolder.Path());
    ASSERT_EQ(4, catalogue.GetNumArtists());
    EXPECT_EQ("1-good.tart0", catalogue.GetArtistName(0, -1));
    EXPECT_EQ("5-good.Tart0", catalogue.GetArtistName(1, -1));
    EXPECT_EQ("5-good.Tart1", catalogue.GetArtistName(2, -1));
    EXPECT_EQ("Fourth", catalogue.GetPaintingName(3, 3));
}

} // namespace
