#include "ArtTestSupport.h"

#include <KORVAutlwin/art/ArtCatalogue.h>
#include <KORVAutlwin/art/ProgressArt.h>

#include <KORVAutl/TsFileUtl.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace korva::test;

namespace {

// ProgressArt loads once per process, so this is its only test: the catalogue of the executable's
// folder (the collection shipped beside the programs, which the break window shows) and of the
// application's plug-in folder, here with two collections of 3 and 2.
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
    for (int i = 0; i < pictures; ++i) {
        const QSize size = shipped.GetPainting(0, i).size();
        EXPECT_TRUE(!size.isEmpty() && size.width() <= shipped.GetMaxBitmapSize().x() &&
                    size.height() <= shipped.GetMaxBitmapSize().y()) << i;
    }

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
    ProgressArt::SetPreferedArtist(random);
    EXPECT_EQ(random, ProgressArt::GetPreferedArtist());

    // The break window's thread and the main thread ask at the same time.
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 25; ++i) {
                const int at = pictures + (i + t) % 5;
                wrong += ProgressArt::GetPaintingName(random, at).empty() ||
                         ProgressArt::GetPainting(random, at).size() != QSize(90, 70);
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
