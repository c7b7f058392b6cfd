#include "ArtTestSupport.h"

#include <KORVAutlwin/art/ArtImage.h>
#include <KORVAutlwin/art/ArtInfo.h>
#include <KORVAutlwin/art/ArtStorageReader.h>

#include <KORVAutl/Exception.h>

#include <boost/archive/archive_exception.hpp>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <sys/stat.h>

using korva::test::MakeCollection;
using korva::test::ReadDescription;
using korva::test::SaveWithPicture;
using korva::test::WriteArtFile;
using korva::test::WritePicture;

namespace {

std::unique_ptr<const ArtInfo> Read(const std::string& path)
{
    return std::unique_ptr<const ArtInfo>(ArtInfo::ReadArtInfo(path.c_str()));
}

std::string Fixture(const std::string& name)
{
    return korva::test::ReadTextFile(std::string(KORVA_TEST_DATA_DIR) + "/" + name);
}

// The message of the Exception that `action` throws.
template <class Action>
std::string FailureOf(Action action)
{
    try {
        action();
    } catch (const Exception& exception) {
        return exception.Why();
    }
    return "(no exception)";
}

// How a JPEG'd colour compares with the one painted: within the loss of the encoding.
bool Near(QColor actual, QColor expected)
{
    return std::abs(actual.red() - expected.red()) < 40 && std::abs(actual.green() - expected.green()) < 40 &&
           std::abs(actual.blue() - expected.blue()) < 40;
}

class ArtInfoTest : public ::testing::Test
{
protected:
    std::string File(const std::string& name) const { return mDir.File(name); }
    TempDir mDir;
};

TEST_F(ArtInfoTest, DescriptionIsTheArchiveLayoutWithClassRecords)
{
    ArtInfo art;
    CollectionInfo collection = MakeCollection("Lena Marsh", {"Salt Flat", "Low Tide"}, "77");
    collection.SetLifeSpan("");
    collection.SetMaxPictureSize(400, 100);
    collection.SetMaxPortraitSize(80, 40);
    art.AddCollection(collection);
    art.AddCollection(MakeCollection("Otto", {"Harbour"}));
    const std::string picture = WritePicture(File("p.png"), 20, 10);
    SaveWithPicture(art, File("a.tart"), picture);

    const std::string first = collection.GetPictures()[0].GetFileName();
    const std::string second = collection.GetPictures()[1].GetFileName();
    const std::string third = art.GetCollections()[1].GetPictures()[0].GetFileName();
    auto text = [](const std::string& s) { return std::to_string(s.size()) + " " + s; };
    // The header of release 1.42 (library version 7), whatever library wrote it.
    // Class records ("0 0": untracked, version 0) stand before the first ArtInfo,
    // vector of collections, CollectionInfo, CString, vector of pictures and PictureInfo.
    const std::string expected = "22 serialization::archive 7 0 0 0 0 2 0 0 0 400 100 80 40 0 0 10 Lena Marsh 0  "
                                 "2 77 0 0 2 0 0 0 9 Salt Flat " + text(first) + " 8 Low Tide " + text(second) +
                                 " 0 0 0 0 4 Otto " + text("life of Otto") + " 0  1 0 7 Harbour " + text(third);
    std::string description = ReadDescription(File("a.tart"));
    while (!description.empty() && (description.back() == '\n' || description.back() == ' '))
        description.pop_back();
    EXPECT_EQ(expected, description);
}

TEST_F(ArtInfoTest, ReadsBackWhatWasSavedWithFileSetAndPicturesOnDemand)
{
    // The description itself is pinned above and by the fixture of an older
    // release; here: the file it came from, and the pictures behind it.
    ArtInfo art;
    art.AddCollection(MakeCollection("Lena Marsh", {"Salt Flat", "Low Tide"}, "portrait-lena"));
    art.AddCollection(MakeCollection("Otto Brenn", {"Harbour"}));
    const std::string picture = WritePicture(File("p.png"), 60, 40);
    const std::string portrait = WritePicture(File("face.png"), 30, 30, Qt::green, Qt::green);
    art.SaveToFile(File("a.tart").c_str(), {{picture, picture}, {picture}}, {{0, 0}, {0}}, {portrait, ""}, {0, 0});

    const auto read = Read(File("a.tart"));
    ASSERT_TRUE(read);
    ASSERT_EQ(2u, read->GetCollections().size());
    EXPECT_EQ(art.GetCollections()[0].GetPictures()[1].GetFileName(),
              read->GetCollections()[0].GetPictures()[1].GetFileName());
    // Where the pictures are is known only to what was read from a file.
    EXPECT_EQ(File("a.tart"), read->GetCollections()[1].GetFile());
    EXPECT_EQ("", art.GetCollections()[1].GetFile());
    EXPECT_TRUE(art.GetImage(0, 0).isNull());
    EXPECT_EQ(QSize(60, 40), read->GetImage(0, 1).size());
    EXPECT_EQ(QSize(30, 30), read->GetIcon(0).size());
    EXPECT_TRUE(Near(read->GetIcon(0).pixelColor(15, 15), Qt::green));
    EXPECT_TRUE(read->GetIcon(1).isNull());
    EXPECT_TRUE(read->GetImage(1, 1).isNull());
    EXPECT_TRUE(read->GetImage(-1, 0).isNull());
}

TEST_F(ArtInfoTest, FileWithoutCollectionsIsValid)
{
    ArtInfo().SaveToFile(File("empty.tart").c_str(), {}, {}, {}, {});
    const auto read = Read(File("empty.tart"));
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->GetCollections().empty());
}

TEST_F(ArtInfoTest, PicturesShrinkToFitButNeverGrow)
{
    const struct
    {
        int width, height;
        QSize picture, portrait;
    } cases[] = {
        {800, 200, {400, 100}, {80, 20}},
        {200, 800, {100, 400}, {20, 80}},
        {400, 400, {400, 400}, {80, 80}},
        {700, 100, {400, 57}, {80, 11}},
        {60, 50, {60, 50}, {60, 50}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.width) + "x" + std::to_string(c.height));
        const std::string source = WritePicture(File("p.png"), c.width, c.height);
        ArtInfo art;
        art.AddCollection(MakeCollection("A", {"one"}, "face"));
        const std::string path = File(std::to_string(c.width) + "x" + std::to_string(c.height) + ".tart");
        art.SaveToFile(path.c_str(), {{source}}, {{0}}, {source}, {0});
        const auto read = Read(path);
        ASSERT_TRUE(read);
        EXPECT_EQ(c.picture, read->GetImage(0, 0).size());
        EXPECT_EQ(c.portrait, read->GetIcon(0).size());
        EXPECT_EQ(c.picture, korva::ArtImage::StoredSize(source.c_str(), 0, 400, 400));
    }
}

TEST_F(ArtInfoTest, RotationsTurnClockwiseByTheRemainderOfFour)
{
    // Red on the left, blue on the right; one quarter turn clockwise puts red on top.
    const std::string source = WritePicture(File("p.png"), 200, 100);
    const struct
    {
        int rotation;
        QSize size;
        QPoint redAt, blueAt;
    } cases[] = {
        {0, {200, 100}, {20, 50}, {180, 50}},  {1, {100, 200}, {50, 20}, {50, 180}},
        {2, {200, 100}, {180, 50}, {20, 50}},  {3, {100, 200}, {50, 180}, {50, 20}},
        {5, {100, 200}, {50, 20}, {50, 180}},  {-1, {200, 100}, {20, 50}, {180, 50}},
    };
    ArtInfo art;
    std::vector<std::string> titles;
    std::vector<int> rotations;
    for (const auto& c : cases) {
        titles.push_back(std::to_string(c.rotation));
        rotations.push_back(c.rotation);
    }
    art.AddCollection(MakeCollection("A", titles));
    art.SaveToFile(File("r.tart").c_str(), {std::vector<std::string>(titles.size(), source)}, {rotations}, {""}, {0});
    const auto read = Read(File("r.tart"));
    ASSERT_TRUE(read);
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        SCOPED_TRACE("rotation " + std::to_string(cases[i].rotation));
        const QImage image = read->GetImage(0, static_cast<int>(i));
        EXPECT_EQ(cases[i].size, image.size());
        EXPECT_TRUE(Near(image.pixelColor(cases[i].redAt), Qt::red));
        EXPECT_TRUE(Near(image.pixelColor(cases[i].blueAt), Qt::blue));
    }
}

TEST_F(ArtInfoTest, SavingTwiceKeepsTheOlderSetFirstAndItsStreams)
{
    const std::string red = WritePicture(File("red.png"), 50, 40, Qt::red, Qt::red);
    const std::string blue = WritePicture(File("blue.png"), 40, 50, Qt::blue, Qt::blue);
    ArtInfo first;
    first.AddCollection(MakeCollection("Lena Marsh", {"Salt Flat", "Low Tide"}));
    SaveWithPicture(first, File("a.tart"), red);
    korva::ArtStorageReader before(File("a.tart"));
    const std::string streamName = first.GetCollections()[0].GetPictures()[1].GetFileName();
    std::string oldBytes;
    ASSERT_TRUE(before.ReadStream(streamName, oldBytes));

    ArtInfo second;
    second.AddCollection(MakeCollection("Otto Brenn", {"Harbour"}));
    second.AddCollection(MakeCollection("Ida Lund", {"Field"}));
    SaveWithPicture(second, File("a.tart"), blue);

    const auto read = Read(File("a.tart"));
    ASSERT_TRUE(read);
    ASSERT_EQ(3u, read->GetCollections().size());
    EXPECT_EQ("Lena Marsh", read->GetCollections()[0].GetArtistName());
    EXPECT_EQ("Otto Brenn", read->GetCollections()[1].GetArtistName());
    EXPECT_EQ("Ida Lund", read->GetCollections()[2].GetArtistName());
    EXPECT_TRUE(Near(read->GetImage(0, 1).pixelColor(5, 5), Qt::red));
    EXPECT_TRUE(Near(read->GetImage(2, 0).pixelColor(5, 5), Qt::blue));
    std::string newBytes;
    ASSERT_TRUE(korva::ArtStorageReader(File("a.tart")).ReadStream(streamName, newBytes));
    EXPECT_EQ(oldBytes, newBytes);
    // "ArtInfo" and one stream per picture, no doubles.
    EXPECT_EQ(5u, korva::ArtStorageReader(File("a.tart")).GetStreamNames().size());

    // The same collections once more: doubled in the description, their
    // streams written anew in place of the old ones.
    SaveWithPicture(second, File("a.tart"), red);
    const auto again = Read(File("a.tart"));
    ASSERT_TRUE(again);
    EXPECT_EQ(5u, again->GetCollections().size());
    EXPECT_EQ(5u, korva::ArtStorageReader(File("a.tart")).GetStreamNames().size());
    EXPECT_TRUE(Near(again->GetImage(1, 0).pixelColor(5, 5), Qt::red));
}

TEST_F(ArtInfoTest, EmptyPortraitPathWritesNoPortrait)
{
    ArtInfo art;
    art.AddCollection(MakeCollection("A", {"one"}, "face-a"));
    art.AddCollection(MakeCollection("B", {"two"}, "face-b"));
    const std::string source = WritePicture(File("p.png"), 20, 20);
    art.SaveToFile(File("a.tart").c_str(), {{source}, {source}}, {{0}, {0}}, {"", source}, {0, 0});
    const std::vector<std::string> streams = korva::ArtStorageReader(File("a.tart")).GetStreamNames();
    EXPECT_EQ(0, std::count(streams.begin(), streams.end(), "face-a"));
    EXPECT_EQ(1, std::count(streams.begin(), streams.end(), "face-b"));
    const auto read = Read(File("a.tart"));
    ASSERT_TRUE(read);
    EXPECT_TRUE(read->GetIcon(0).isNull());
    EXPECT_FALSE(read->GetIcon(1).isNull());
}

TEST_F(ArtInfoTest, ReadingWhatIsNoArtFileGivesNull)
{
    std::ofstream(File("text.tart")) << "22 serialization::archive 18 0 0 0 0 0 0\n";
    std::ofstream(File("empty.tart"));
    std::filesystem::create_directory(File("folder.tart"));
    WriteArtFile(File("nodescription.tart"), "", false);
    std::string random(4096, '\0');
    for (std::size_t i = 0; i < random.size(); ++i)
        random[i] = static_cast<char>((i * 7919u) >> 3);
    std::ofstream(File("random.tart"), std::ios::binary) << random;
    ArtInfo art;
    art.AddCollection(MakeCollection("A", {"one"}));
    SaveWithPicture(art, File("good.tart"), WritePicture(File("p.png"), 10, 10));
    const std::string good = korva::test::ReadTextFile(File("good.tart"));
    std::ofstream(File("truncated.tart"), std::ios::binary) << good.substr(0, good.size() / 2);

    for (const char* name : {"missing.tart", "text.tart", "empty.tart", "folder.tart", "nodescription.tart",
                             "random.tart", "truncated.tart"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(nullptr, Read(File(name)));
    }
    EXPECT_EQ(nullptr, ArtInfo::ReadArtInfo(nullptr));
}

TEST_F(ArtInfoTest, ReadsTheArchiveOfAnOlderLibraryRelease)
{
    // Written by hand in the layout of library release 1.42 (archive version 7).
    const std::string description = Fixture("archive-1.42.txt");
    ASSERT_EQ(0u, description.rfind("22 serialization::archive 7 ", 0));
    WriteArtFile(File("old.tart"), description);
    const auto read = Read(File("old.tart"));
    ASSERT_TRUE(read);
    ASSERT_EQ(2u, read->GetCollections().size());
    const CollectionInfo& first = read->GetCollections()[0];
    EXPECT_EQ(400u, first.GetMaxPictureWidth());
    EXPECT_EQ(80u, first.GetMaxPortraitHeight());
    EXPECT_EQ("1882-1961", first.GetLifeSpan());
    EXPECT_EQ("p-lena", first.GetPortraitName());
    ASSERT_EQ(2u, first.GetPictures().size());
    EXPECT_EQ("Low Tide", first.GetPictures()[1].GetTitle());
    const CollectionInfo& second = read->GetCollections()[1];
    EXPECT_EQ("Otto Brenn", second.GetArtistName());
    EXPECT_EQ("", second.GetLifeSpan());
    ASSERT_EQ(1u, second.GetPictures().size());
    EXPECT_EQ("pic03", second.GetPictures()[0].GetFileName());
}

TEST_F(ArtInfoTest, ClassVersionAboveZeroIsTheLibrarysUnsupportedClassVersion)
{
    // The fixture's CollectionInfo has class version 1; the others are made
    // from the good fixture by raising one class record at a time.
    std::vector<std::pair<std::string, std::string>> variants = {{"CollectionInfo", Fixture("archive-version-1.txt")}};
    const std::string good = Fixture("archive-1.42.txt");
    auto raise = [&](const std::string& record, const std::string& raised) {
        std::string text = good;
        const auto at = text.find(record);
        text.replace(at, record.size(), raised);
        return text;
    };
    variants.emplace_back("ArtInfo", raise("archive 7 0 0 ", "archive 7 0 1 "));
    variants.emplace_back("CString", raise("0 0 10 Lena", "0 1 10 Lena"));
    variants.emplace_back("PictureInfo", raise("0 0 9 Salt", "0 2 9 Salt"));
    for (const auto& [what, description] : variants) {
        SCOPED_TRACE(what);
        WriteArtFile(File("v.tart"), description);
        try {
            Read(File("v.tart"));
            ADD_FAILURE() << "no exception";
        } catch (const boost::archive::archive_exception& exception) {
            EXPECT_EQ(boost::archive::archive_exception::unsupported_class_version, exception.code);
            EXPECT_EQ(11, exception.code);
        }
    }
}

TEST_F(ArtInfoTest, DamagedDescriptionThrowsTheArchiveLibrarysException)
{
    const std::string good = Fixture("archive-1.42.txt");
    const std::vector<std::pair<std::string, std::string>> damaged = {
        {"cut short", good.substr(0, good.size() / 2)},
        {"no archive", "hello"},
        {"other signature", "22 serialization::ARCHIVE 7 0 0"},
        {"huge signature", "99999999999 serialization::archive 7"},
        {"newer library", "22 serialization::archive 99 0 0 0 0 0 0"},
        {"letters for a number", "22 serialization::archive 7 0 0 0 0 1 0 0 0 wide 300"},
        // Counts and lengths that promise far more than the stream holds.
        {"huge count", "22 serialization::archive 7 0 0 0 0 4000000000000 0 0 0 400 300 64 80 0 0 1 A"},
        {"huge text", "22 serialization::archive 7 0 0 0 0 1 0 0 0 400 300 64 80 0 0 900000000000 Lena"},
        {"negative text", "22 serialization::archive 7 0 0 0 0 1 0 0 0 400 300 64 80 0 0 -5 Lena"},
    };
    for (const auto& [what, description] : damaged) {
        SCOPED_TRACE(what);
        WriteArtFile(File("d.tart"), description);
        EXPECT_THROW(Read(File("d.tart")), boost::archive::archive_exception);
    }
}

TEST_F(ArtInfoTest, FailuresOfSavingHaveTheirTexts)
{
    const std::string source = WritePicture(File("p.png"), 10, 10);
    ArtInfo art;
    art.AddCollection(MakeCollection("A", {"one", "two"}));
    const std::string target = File("a.tart");
    EXPECT_EQ("Internal error in ArtInfo::SaveToFile",
              FailureOf([&] { art.SaveToFile(target.c_str(), {}, {{0, 0}}, {""}, {0}); }));
    EXPECT_EQ("Internal error in ArtInfo::SaveToFile",
              FailureOf([&] { art.SaveToFile(target.c_str(), {{source, source}}, {}, {""}, {0}); }));
    EXPECT_EQ("Internal error in ArtInfo::SaveToFile",
              FailureOf([&] { art.SaveToFile(target.c_str(), {{source}}, {{0, 0}}, {""}, {0}); }));

    std::ofstream(File("not-a-picture.png")) << "no picture";
    EXPECT_EQ(File("not-a-picture.png") + " could not be read.\nThe file was skipped.",
              FailureOf([&] {
                  art.SaveToFile(target.c_str(), {{source, File("not-a-picture.png")}}, {{0, 0}}, {""}, {0});
              }));
    EXPECT_EQ(File("missing.png") + " could not be read.\nThe file was skipped.",
              FailureOf([&] { art.SaveToFile(target.c_str(), {{File("missing.png"), source}}, {{0, 0}}, {""}, {0}); }));

    // A picture without a stream name cannot be stored.
    ArtInfo unnamed;
    CollectionInfo collection;
    collection.AddPicture(PictureInfo());
    unnamed.AddCollection(collection);
    EXPECT_EQ("The file  could not be saved.",
              FailureOf([&] { unnamed.SaveToFile(File("b.tart").c_str(), {{source}}, {{0}}, {""}, {0}); }));

    // An old description that cannot be read stops the save before anything changes.
    WriteArtFile(File("damaged.tart"), "22 serialization::archive 7 0 0 0 0 1 0");
    const std::string damagedBefore = korva::test::ReadTextFile(File("damaged.tart"));
    EXPECT_EQ("Reading from " + File("damaged.tart") + " failed.",
              FailureOf([&] { SaveWithPicture(art, File("damaged.tart"), source); }));
    EXPECT_EQ(damagedBefore, korva::test::ReadTextFile(File("damaged.tart")));
}

TEST_F(ArtInfoTest, FileThatCannotBeOpenedIsToldThroughTheUserChannel)
{
    korva::test::MessageCatcher app;
    const std::string source = WritePicture(File("p.png"), 10, 10);
    ArtInfo art;
    art.AddCollection(MakeCollection("A", {"one"}));

    std::ofstream(File("text.tart")) << "plain text";
    EXPECT_NO_THROW(SaveWithPicture(art, File("text.tart"), source));
    ASSERT_EQ(1u, app.messages.size());
    EXPECT_EQ("The file " + File("text.tart") + " could not be opened!", app.messages[0]);
    EXPECT_EQ("plain text", korva::test::ReadTextFile(File("text.tart")));

    EXPECT_NO_THROW(SaveWithPicture(art, File("no/such/folder/a.tart"), source));
    ASSERT_EQ(2u, app.messages.size());
    EXPECT_EQ("The file " + File("no/such/folder/a.tart") + " could not be opened!", app.messages[1]);

    if (geteuid() != 0) {
        // Root writes anyway; for everybody else a read-only file stays as it is.
        SaveWithPicture(art, File("readonly.tart"), source);
        chmod(File("readonly.tart").c_str(), 0444);
        SaveWithPicture(art, File("readonly.tart"), source);
        EXPECT_EQ(3u, app.messages.size());
        EXPECT_EQ(1u, Read(File("readonly.tart"))->GetCollections().size());
    }
}

TEST_F(ArtInfoTest, FailureInTheMiddleKeepsTheOldFileReadable)
{
    const std::string source = WritePicture(File("p.png"), 10, 10);
    ArtInfo old;
    old.AddCollection(MakeCollection("Old", {"one"}));
    SaveWithPicture(old, File("a.tart"), source);

    // The second picture fails: the first one's stream stays, the description is the old one.
    ArtInfo added;
    added.AddCollection(MakeCollection("New", {"two", "three"}));
    EXPECT_THROW(added.SaveToFile(File("a.tart").c_str(), {{source, File("missing.png")}}, {{0, 0}}, {""}, {0}),
                 Exception);
    auto read = Read(File("a.tart"));
    ASSERT_TRUE(read);
    ASSERT_EQ(1u, read->GetCollections().size());
    EXPECT_EQ("Old", read->GetCollections()[0].GetArtistName());
    EXPECT_FALSE(read->GetImage(0, 0).isNull());
    EXPECT_TRUE(korva::ArtStorageReader(File("a.tart")).HasStream(added.GetCollections()[0].GetPictures()[0].GetFileName()));

    // A failed portrait comes after the description: the new collection is there, without portrait.
    ArtInfo portrayed;
    portrayed.AddCollection(MakeCollection("Portrayed", {"four"}, "face"));
    EXPECT_THROW(portrayed.SaveToFile(File("a.tart").c_str(), {{source}}, {{0}}, {File("missing.png")}, {0}), Exception);
    read = Read(File("a.tart"));
    ASSERT_TRUE(read);
    ASSERT_EQ(2u, read->GetCollections().size());
    EXPECT_EQ("Portrayed", read->GetCollections()[1].GetArtistName());
    EXPECT_FALSE(read->GetImage(1, 0).isNull());
    EXPECT_TRUE(read->GetIcon(1).isNull());

    // No stray files are left beside it.
    EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(mDir.Path()), std::filesystem::directory_iterator()));
}

TEST_F(ArtInfoTest, EveryPictureGetsAStreamNameOfItsOwn)
{
    PictureInfo first;
    PictureInfo second;
    first.SetTitle("same");
    second.SetTitle("same");
    EXPECT_NE(first.GetFileName(), second.GetFileName());
    EXPECT_FALSE(first.GetFileName().empty());
    EXPECT_EQ(std::string::npos, first.GetFileName().find_first_not_of("0123456789"));
}

} // namespace
