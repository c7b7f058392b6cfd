#include "ArtTestSupport.h"

#include <KORVAutlwin/art/ArtCatalogue.h>
#include <KORVAutlwin/art/ProgressArt.h>

#include <KORVAutl/TsFileUtl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace korva::test;

namespace {

// ProgressArt loads once per process, so this is its only test: the catalogue
// of the executable's folder (the collection that ships beside the programs)
// and of the application's plug-in folder, with two collections of 3 and 2.
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

    // What the executable's folder brings by itself.
    korva::ArtCatalogue programFolder;
    programFolder.LoadPainters(TsGetExecutableDirectory());
    programFolder.Finish();
    const int shipped = programFolder.GetNumArtists() >= 2 ? programFolder.GetNumArtists() - 1
                                                            : programFolder.GetNumArtists();
    const int shippedPictures = programFolder.GetNumPaintings(shipped);

    ProgressArt::SetPluginFolder([&] { return plugins.Path(); });
    ProgressArt::Init();
    ProgressArt::SetPluginFolder(nullptr);
    // Loaded once: the plug-in folder is forgotten, the catalogue stays.
    const int random = shipped + 2;
    ASSERT_EQ(random + 1, ProgressArt::GetNumArtists());
    EXPECT_EQ(0, ProgressArt::GetPreferedArtist());
    EXPECT_EQ("Three", ProgressArt::GetArtistName(shipped, -1));
    EXPECT_EQ("Two", ProgressArt::GetArtistName(shipped + 1, -1));
    EXPECT_EQ("<Random>", ProgressArt::GetArtistName(random, -1));
    EXPECT_EQ(shippedPictures + 5, ProgressArt::GetNumPaintings(random));
    EXPECT_EQ("W1", ProgressArt::GetPaintingName(random, shippedPictures + 3));
    EXPECT_EQ(QSize(90, 70), ProgressArt::GetPainting(shipped + 1, 1).size());
    EXPECT_EQ(std::max(programFolder.GetMaxBitmapSize().x(), 399), ProgressArt::GetMaxBitmapSize().x());
    EXPECT_EQ(std::max(programFolder.GetMaxPortraitSize().y(), 78), ProgressArt::GetMaxPortraitSize().y());
    ProgressArt::SetPreferedArtist(random);
    EXPECT_EQ(random, ProgressArt::GetPreferedArtist());

    // The break window's thread and the main thread ask at the same time.
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 25; ++i) {
                const int picture = shippedPictures + (i + t) % 5;
                if (ProgressArt::GetPaintingName(random, picture).empty() ||
                    ProgressArt::GetPainting(random, picture).size() != QSize(90, 70))
                    ++wrong;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0, wrong.load());

    // A file added while the process runs waits for the next start.
    SaveWithPicture(three, plugins.File("c.tart"), picture);
    ProgressArt::SetPluginFolder([&] { return plugins.Path(); });
    ProgressArt::Init();
    EXPECT_EQ(random + 1, ProgressArt::GetNumArtists());
    ProgressArt::SetPluginFolder(nullptr);
}

} // namespace
