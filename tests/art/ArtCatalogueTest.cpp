#include "ArtTestSupport.h"

#include <KORVAutlwin/art/ArtCatalogue.h>
#include <KORVAutlwin/art/ProgressArt.h>

#include <KORVAutl/TsFileUtl.h>

using korva::ArtCatalogue;
using namespace korva::test;

namespace {

class ArtCatalogueTest : public ::testing::Test
{
protected:
    // A file with a collection per entry of `titles`, named after the file, and a 40 by 60 portrait.
    void Write(const std::string& name, const std::vector<std::vector<std::string>>& titles, int width, int height)
    {
        ArtInfo art;
        for (std::size_t i = 0; i < titles.size(); ++i) {
            CollectionInfo collection = MakeCollection(name + std::to_string(i), titles[i], "face" + std::to_string(i));
            collection.SetMaxPictureSize(static_cast<unsigned>(width), static_cast<unsigned>(height));
            collection.SetMaxPortraitSize(40, 60);
            art.AddCollection(collection);
        }
        SaveWithPicture(art, mFolder.File(name), WritePicture(mSources.File(name + ".png"), width, height),
                        WritePicture(mSources.File("face.png"), 40, 60));
    }
    ArtCatalogue Load(const std::string& folder)
    {
        ArtCatalogue catalogue;
        catalogue.LoadPainters(folder);
        catalogue.Finish();
        return catalogue;
    }
    TempDir mFolder, mSources;
};

TEST_F(ArtCatalogueTest, NoFileNoArtistOneCollectionNoRandomArtistTwoARandomArtistOverBothAndBrokenFilesSkipped)
{
    WriteFile(mFolder.File("readme.txt"), "no art here");
    for (const std::string& folder : {mFolder.Path(), mFolder.File("no-such-folder")}) {
        ArtCatalogue none = Load(folder);
        none.SetPreferedArtist(99);
        EXPECT_EQ(std::make_pair(0, -1), std::make_pair(none.GetNumArtists(), none.GetPreferedArtist()));
        EXPECT_TRUE(none.GetArtistName(0, -1).empty() && none.GetPainting(0, 0).isNull());
    }
    Write("one.tart", {{"Dawn", "Noon"}}, 100, 50);
    ArtCatalogue catalogue = Load(mFolder.Path());
    catalogue.SetPreferedArtist(1);
    EXPECT_EQ(std::make_pair(1, 0), std::make_pair(catalogue.GetNumArtists(), catalogue.GetPreferedArtist()));
    EXPECT_EQ("one.tart0|life of one.tart0", catalogue.GetArtistName(0, -1) + "|" + catalogue.GetArtistLifeSpan(0, -1));
    EXPECT_EQ("Noon|", catalogue.GetPaintingName(0, 1) + "|" + catalogue.GetPaintingName(0, 2));
    EXPECT_EQ(std::tuple(QSize(100, 50), QSize(40, 60)),
              std::tuple(catalogue.GetPainting(0, 0).size(), catalogue.GetArtistPortrait(0, -1).size()));
    EXPECT_TRUE(catalogue.GetPainting(-1, 0).isNull());

    std::filesystem::remove(mFolder.File("one.tart"));
    Write("a.tart", {{"A1", "A2", "A3"}}, 300, 100);
    Write("b.Tart", {{"B1", "B2"}}, 120, 250);
    WriteArtFile(mFolder.File("c-damaged.tart"), "22 serialization::archive 7 0 0 0 0 3 0 0 0 1");
    WriteFile(mFolder.File("d-text.TART"), "just text");
    WriteArtFile(mFolder.File("e-nodescription.tart"), "", false);
    Write("f-ignored.tart.bak", {{"Backup"}}, 60, 40);
    std::filesystem::create_directory(mFolder.File("g-folder.tart"));
    catalogue = Load(mFolder.Path());
    ASSERT_EQ(std::make_pair(3, 0), std::make_pair(catalogue.GetNumArtists(), catalogue.GetPreferedArtist()));
    for (const auto& [artist, count] : {std::pair{0, 3}, {1, 2}, {2, 5}})
        EXPECT_EQ(count, catalogue.GetNumPaintings(artist)) << artist;
    // The pseudo artist's pictures run through both artists in file order.
    const char* titles[] = {"A1", "A2", "A3", "B1", "B2", ""};
    const char* artists[] = {"a.tart0", "a.tart0", "a.tart0", "b.Tart0", "b.Tart0", ""};
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(std::string(titles[i]) + "|" + artists[i],
                  catalogue.GetPaintingName(2, i) + "|" + catalogue.GetArtistName(2, i));
    EXPECT_EQ("life of b.Tart0", catalogue.GetArtistLifeSpan(2, 4));
    EXPECT_EQ("<Random>|", catalogue.GetArtistName(2, -1) + "|" + catalogue.GetArtistLifeSpan(2, -1));
    EXPECT_EQ(QSize(120, 250), catalogue.GetPainting(2, 3).size());
    EXPECT_TRUE(catalogue.GetPainting(2, 5).isNull() && catalogue.GetArtistPortrait(2, 5).isNull());
    EXPECT_FALSE(catalogue.GetArtistPortrait(2, 4).isNull());
    int artist = 2, picture = 4;
    ASSERT_TRUE(catalogue.ResolvePicture(artist, picture));
    EXPECT_EQ(std::make_pair(1, 1), std::make_pair(artist, picture));
    EXPECT_EQ(std::tuple(QPoint(300, 250), QPoint(40, 60)),
              std::tuple(catalogue.GetMaxBitmapSize(), catalogue.GetMaxPortraitSize()));
    catalogue.SetPreferedArtist(3);
    EXPECT_EQ(0, catalogue.GetPreferedArtist());
    catalogue.SetPreferedArtist(2);
    EXPECT_EQ(2, catalogue.GetPreferedArtist());
}

// ProgressArt loads once per process: the executable's folder (with the shipped collection) and the plug-in folder.
TEST(ArtProgressArtTest, LoadsTheProgramFolderAndThePluginFolderOnce)
{
    TempDir plugins;
    const std::string picture = WritePicture(plugins.File("p.png"), 90, 70);
    ArtInfo three, two;
    three.AddCollection(MakeCollection("Three", {"T1", "T2", "T3"}));
    SaveWithPicture(three, plugins.File("a.tart"), picture);
    CollectionInfo big = MakeCollection("Two", {"W1", "W2"});
    big.SetMaxPictureSize(399, 398);
    big.SetMaxPortraitSize(79, 78);
    two.AddCollection(big);
    SaveWithPicture(two, plugins.File("b.tart"), picture);

    korva::ArtCatalogue shipped;
    shipped.LoadPainters(TsGetExecutableDirectory());
    shipped.Finish();
    ASSERT_EQ(shipped.GetNumArtists(), 1) << "the collection shipped beside the test program";
    const int pictures = shipped.GetNumPaintings(0);
    EXPECT_EQ(pictures, 6);
    EXPECT_FALSE(shipped.GetArtistPortrait(0, -1).isNull());

    ProgressArt::SetPluginFolder([&] { return plugins.Path(); });
    ProgressArt::Init();
    ProgressArt::SetPluginFolder(nullptr);
    // Loaded once: the plug-in folder is forgotten, the catalogue stays.
    const int random = 3;
    ASSERT_EQ(random + 1, ProgressArt::GetNumArtists());
    EXPECT_EQ(0, ProgressArt::GetPreferedArtist());
    EXPECT_EQ("Three|Two|<Random>", ProgressArt::GetArtistName(1, -1) + "|" + ProgressArt::GetArtistName(2, -1) +
                                        "|" + ProgressArt::GetArtistName(random, -1));
    EXPECT_EQ(pictures + 5, ProgressArt::GetNumPaintings(random));
    EXPECT_EQ("W1", ProgressArt::GetPaintingName(random, pictures + 3));
    EXPECT_EQ(QSize(90, 70), ProgressArt::GetPainting(2, 1).size());
    EXPECT_EQ(std::max(shipped.GetMaxBitmapSize().x(), 399), ProgressArt::GetMaxBitmapSize().x());
    EXPECT_EQ(std::max(shipped.GetMaxPortraitSize().y(), 78), ProgressArt::GetMaxPortraitSize().y());

    EXPECT_EQ(0, WrongOnFourThreads(25, [&](int t, int i) {
                  const int at = pictures + (i + t) % 5;
                  return ProgressArt::GetPaintingName(random, at).empty() ||
                         ProgressArt::GetPainting(random, at).size() != QSize(90, 70);
              }));
}

} // namespace
