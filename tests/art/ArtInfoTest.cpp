#include "ArtTestSupport.h"

#include <KORVAutlwin/art/ArtImage.h>
#include <KORVAutlwin/art/ArtStorageReader.h>
#include <KORVAutlwin/art/IStreamDevice.h>

#include <KORVAutl/Exception.h>

#include <boost/archive/archive_exception.hpp>
#include <boost/iostreams/stream.hpp>

#include <sys/stat.h>

using namespace korva::test;
using korva::ArtStorageReader;
using korva::ArtStorageWriter;

namespace {

class ArtInfoTest : public ::testing::Test
{
protected:
    std::string File(const std::string& name) const { return mDir.File(name); }
    std::string Fixture(const std::string& name) const { return ReadFile(KORVA_TEST_DATA_DIR "/" + name); }
    TempDir mDir;
};

TEST_F(ArtInfoTest, DescriptionIsTheArchiveLayoutAndReadsBackWithThePicturesFromTheFileOnDemand)
{
    ArtInfo art;
    CollectionInfo collection = MakeCollection("Lena Marsh", {"Salt Flat", "Low Tide"}, "77");
    collection.SetLifeSpan("");
    collection.SetMaxPictureSize(400, 100);
    collection.SetMaxPortraitSize(80, 40);
    art.AddCollection(collection);
    art.AddCollection(MakeCollection("Otto", {"Harbour"}, "face-otto"));  // no source: no portrait is written
    const std::string picture = WritePicture(File("p.png"), 60, 40);
    const std::string portrait = WritePicture(File("face.png"), 30, 30, Qt::green, Qt::green);
    art.SaveToFile(File("a.tart").c_str(), {{picture, picture}, {picture}}, {{0, 0}, {0}}, {portrait, ""}, {0, 0});

    auto text = [](const std::string& s) { return std::to_string(s.size()) + " " + s; };
    auto stream = [&](int c, int p) { return text(art.GetCollections()[c].GetPictures()[p].GetFileName()); };
    // The header of release 1.42 (library version 7), whatever library wrote it; class
    // records ("0 0": untracked, version 0) before the first of each class and of each vector.
    const std::string expected = "22 serialization::archive 7 0 0 0 0 2 0 0 0 400 100 80 40 0 0 10 Lena Marsh 0  "
                                 "2 77 0 0 2 0 0 0 9 Salt Flat " + stream(0, 0) + " 8 Low Tide " + stream(0, 1) +
                                 " 0 0 0 0 4 Otto " + text("life of Otto") + " " + text("face-otto") +
                                 " 1 0 7 Harbour " + stream(1, 0);
    std::string description;
    ArtStorageReader(File("a.tart")).ReadStream("ArtInfo", description);
    EXPECT_EQ(expected, description.substr(0, description.find_last_not_of("\n ") + 1));

    const auto read = Read(File("a.tart"));
    ASSERT_TRUE(read);
    EXPECT_EQ(Describe(art), Describe(*read));
    EXPECT_EQ(File("a.tart"), read->GetCollections()[1].GetFile());
    EXPECT_TRUE(art.GetImage(0, 0).isNull());
    EXPECT_EQ(QSize(60, 40), read->GetImage(0, 1).size());
    EXPECT_TRUE(Near(read->GetIcon(0), {15, 15}, Qt::green));
    EXPECT_TRUE(read->GetIcon(1).isNull() && read->GetImage(1, 1).isNull() && read->GetImage(-1, 0).isNull());
    ArtInfo().SaveToFile(File("empty.tart").c_str(), {}, {}, {}, {});
    const auto empty = Read(File("empty.tart"));
    EXPECT_TRUE(empty && empty->GetCollections().empty());

    // Written by hand in the layout of library release 1.42 (archive version 7).
    WriteArtFile(File("old.tart"), Fixture("archive-1.42.txt"));
    const auto old = Read(File("old.tart"));
    ASSERT_TRUE(old);
    EXPECT_EQ("Lena Marsh|1882-1961|400x300|64x80|p-lena|Salt Flat:pic01|Low Tide:pic02\n"
              "Otto Brenn||300x400|0x0||Harbour:pic03\n", Describe(*old));
}

TEST_F(ArtInfoTest, PicturesShrinkAndTurnAndSavingAgainKeepsTheOlderSetFirstAndItsStreams)
{
    // Red left, blue right; a quarter turn clockwise puts red on top. Portraits fit 80 by 80, pictures 400 by 400.
    const struct { int width, height, rotation; QSize picture, portrait; QPoint redAt, blueAt; } rows[] = {
        {800, 200, 0, {400, 100}, {80, 20}, {40, 50}, {360, 50}},
        {200, 800, 0, {100, 400}, {20, 80}, {20, 200}, {80, 200}},
        {400, 400, 0, {400, 400}, {80, 80}, {20, 200}, {380, 200}},
        {700, 100, 0, {400, 57}, {80, 11}, {20, 28}, {380, 28}},
        {60, 50, 0, {60, 50}, {60, 50}, {5, 25}, {55, 25}},
        {200, 100, 1, {100, 200}, {80, 40}, {50, 20}, {50, 180}},
        {200, 100, 2, {200, 100}, {80, 40}, {180, 50}, {20, 50}},
        {200, 100, 3, {100, 200}, {80, 40}, {50, 180}, {50, 20}},
        {200, 100, 5, {100, 200}, {80, 40}, {50, 20}, {50, 180}},
        {200, 100, -1, {200, 100}, {80, 40}, {20, 50}, {180, 50}},
    };
    for (const auto& row : rows) {
        const std::string name = std::to_string(row.width) + "x" + std::to_string(row.height) + "r" +
                                 std::to_string(row.rotation);
        SCOPED_TRACE(name);
        const std::string source = WritePicture(File(name + ".png"), row.width, row.height);
        ArtInfo art;
        art.AddCollection(MakeCollection("A", {"one"}, "face"));
        art.SaveToFile(File(name + ".tart").c_str(), {{source}}, {{row.rotation}}, {source}, {0});
        const auto read = Read(File(name + ".tart"));
        ASSERT_TRUE(read);
        const QImage image = read->GetImage(0, 0);
        EXPECT_EQ(std::tuple(row.picture, row.portrait, row.picture),
                  std::tuple(image.size(), read->GetIcon(0).size(),
                             korva::ArtImage::StoredSize(source.c_str(), row.rotation, 400, 400)));
        EXPECT_TRUE(Near(image, row.redAt, Qt::red) && Near(image, row.blueAt, Qt::blue));
    }

    const std::string red = WritePicture(File("red.png"), 50, 40, Qt::red, Qt::red);
    const std::string blue = WritePicture(File("blue.png"), 40, 50, Qt::blue, Qt::blue);
    ArtInfo first, second;
    first.AddCollection(MakeCollection("Lena Marsh", {"Salt Flat", "Low Tide"}));
    SaveWithPicture(first, File("a.tart"), red);
    second.AddCollection(MakeCollection("Otto Brenn", {"Harbour"}));
    second.AddCollection(MakeCollection("Ida Lund", {"Field"}));
    SaveWithPicture(second, File("a.tart"), blue);
    const auto read = Read(File("a.tart"));
    ASSERT_TRUE(read);
    EXPECT_EQ(Describe(first) + Describe(second), Describe(*read));
    EXPECT_TRUE(Near(read->GetImage(0, 1), {5, 5}, Qt::red) && Near(read->GetImage(2, 0), {5, 5}, Qt::blue));
    // The same collections again: doubled in the description, their streams replaced, not doubled.
    SaveWithPicture(second, File("a.tart"), red);
    const auto again = Read(File("a.tart"));
    ASSERT_TRUE(again);
    EXPECT_EQ(std::tuple(5u, 5u),
              std::tuple(again->GetCollections().size(), ArtStorageReader(File("a.tart")).GetStreamNames().size()));
    EXPECT_TRUE(Near(again->GetImage(1, 0), {5, 5}, Qt::red));
}

TEST_F(ArtInfoTest, WhatIsNoArtFileGivesNullAndADamagedDescriptionThrowsTheArchiveLibrarysException)
{
    using boost::archive::archive_exception;
    std::filesystem::create_directory(File("folder.tart"));
    WriteArtFile(File("nodescription.tart"), "", false);
    for (const char* name : {"missing.tart", "folder.tart", "nodescription.tart"})
        EXPECT_EQ(nullptr, Read(File(name))) << name;
    EXPECT_EQ(nullptr, ArtInfo::ReadArtInfo(nullptr));

    std::string random(4096, '\0');
    for (std::size_t i = 0; i < random.size(); ++i)
        random[i] = static_cast<char>((i * 7919u) >> 3);
    ArtInfo art;
    art.AddCollection(MakeCollection("A", {"one"}));
    SaveWithPicture(art, File("good.tart"), WritePicture(File("p.png"), 10, 10));
    const std::string file = ReadFile(File("good.tart")), good = Fixture("archive-1.42.txt");
    // A class version above 0 is "unsupported class version"; the fixture has CollectionInfo at version 1.
    auto raise = [&](const std::string& record, const std::string& raised) {
        return std::string(good).replace(good.find(record), record.size(), raised);
    };
    enum { eNull, eThrows, eNewerClass };
    const struct { const char* what; std::string content; int outcome; bool wholeFile = false; } rows[] = {
        {"empty file", "", eNull, true},
        {"random file", random, eNull, true},
        {"truncated file", file.substr(0, file.size() / 2), eNull, true},
        {"CollectionInfo", Fixture("archive-version-1.txt"), eNewerClass},
        {"ArtInfo", raise("archive 7 0 0 ", "archive 7 0 1 "), eNewerClass},
        {"CString", raise("0 0 10 Lena", "0 1 10 Lena"), eNewerClass},
        {"PictureInfo", raise("0 0 9 Salt", "0 2 9 Salt"), eNewerClass},
        {"cut short", good.substr(0, good.size() / 2), eThrows},
        {"no archive", "hello", eThrows},
        {"other signature", "22 serialization::ARCHIVE 7 0 0", eThrows},
        {"huge signature", "99999999999 serialization::archive 7", eThrows},
        {"newer library", "22 serialization::archive 99 0 0 0 0 0 0", eThrows},
        {"letters for a number", "22 serialization::archive 7 0 0 0 0 1 0 0 0 wide 300", eThrows},
        // Counts and lengths that promise far more than the stream holds.
        {"huge count", "22 serialization::archive 7 0 0 0 0 4000000000000 0 0 0 400 300 64 80 0 0 1 A", eThrows},
        {"huge text", "22 serialization::archive 7 0 0 0 0 1 0 0 0 400 300 64 80 0 0 900000000000 Lena", eThrows},
        {"negative text", "22 serialization::archive 7 0 0 0 0 1 0 0 0 400 300 64 80 0 0 -5 Lena", eThrows},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        row.wholeFile ? WriteFile(File("d.tart"), row.content) : WriteArtFile(File("d.tart"), row.content);
        try {
            EXPECT_EQ(nullptr, Read(File("d.tart")));
            EXPECT_EQ(row.outcome, eNull) << "no exception";
        } catch (const archive_exception& exception) {
            EXPECT_NE(row.outcome, eNull);
            EXPECT_TRUE(row.outcome != eNewerClass || exception.code == archive_exception::unsupported_class_version);
        }
    }
}

TEST_F(ArtInfoTest, FailuresOfSavingHaveTheirTextsAndKeepTheOldFileReadable)
{
    const std::string source = WritePicture(File("p.png"), 10, 10), target = File("a.tart");
    WriteFile(File("not-a-picture.png"), "no picture");
    ArtInfo old, art, unnamed, portrayed;
    old.AddCollection(MakeCollection("Old", {"one"}));
    SaveWithPicture(old, target, source);
    art.AddCollection(MakeCollection("A", {"one", "two"}));
    CollectionInfo collection;
    collection.AddPicture(PictureInfo());
    unnamed.AddCollection(collection);
    WriteArtFile(File("damaged.tart"), "22 serialization::archive 7 0 0 0 0 1 0");
    const std::string damaged = ReadFile(File("damaged.tart"));
    const std::string internal = "Internal error in ArtInfo::SaveToFile";
    const std::string unread = " could not be read.\nThe file was skipped.";
    const struct { std::function<void()> save; std::string text; } rows[] = {
        {[&] { art.SaveToFile(target.c_str(), {}, {{0, 0}}, {""}, {0}); }, internal},
        {[&] { art.SaveToFile(target.c_str(), {{source, source}}, {}, {""}, {0}); }, internal},
        {[&] { art.SaveToFile(target.c_str(), {{source}}, {{0, 0}}, {""}, {0}); }, internal},
        {[&] { art.SaveToFile(target.c_str(), {{source, File("not-a-picture.png")}}, {{0, 0}}, {""}, {0}); },
         File("not-a-picture.png") + unread},
        {[&] { art.SaveToFile(target.c_str(), {{File("missing.png"), source}}, {{0, 0}}, {""}, {0}); },
         File("missing.png") + unread},
        {[&] { unnamed.SaveToFile(File("b.tart").c_str(), {{source}}, {{0}}, {""}, {0}); },
         "The file  could not be saved."},
        // An old description that cannot be read stops the save before anything changes.
        {[&] { SaveWithPicture(art, File("damaged.tart"), source); },
         "Reading from " + File("damaged.tart") + " failed."},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.text, Thrown(row.save));
    EXPECT_EQ(damaged, ReadFile(File("damaged.tart")));
    // A picture that failed in the middle leaves the old description; the streams written before it stay.
    auto read = Read(target);
    ASSERT_TRUE(read);
    EXPECT_EQ(Describe(old), Describe(*read));
    EXPECT_FALSE(read->GetImage(0, 0).isNull());
    EXPECT_TRUE(ArtStorageReader(target).HasStream(art.GetCollections()[0].GetPictures()[0].GetFileName()));

    // A failed portrait comes after the description: the collection is there, without portrait, and no stray file.
    auto files = [&] { return std::distance(std::filesystem::directory_iterator(mDir.Path()), {}); };
    const auto before = files();
    portrayed.AddCollection(MakeCollection("Portrayed", {"four"}, "face"));
    EXPECT_THROW(SaveWithPicture(portrayed, target, source, File("missing.png")), Exception);
    EXPECT_EQ(before, files());
    ASSERT_TRUE(read = Read(target));
    EXPECT_EQ(Describe(old) + Describe(portrayed), Describe(*read));
    EXPECT_TRUE(!read->GetImage(1, 0).isNull() && read->GetIcon(1).isNull());
}

TEST_F(ArtInfoTest, AFileOutOfReachIsToldThroughTheUserChannelAndStaysAsItWas)
{
    MessageCatcher app;
    const std::string source = WritePicture(File("p.png"), 10, 10);
    ArtInfo art;
    art.AddCollection(MakeCollection("A", {"one"}));
    WriteFile(File("text.tart"), "plain text");
    SaveWithPicture(art, File("text.tart"), source);
    SaveWithPicture(art, File("no/such/folder/a.tart"), source);
    EXPECT_EQ(app.messages, (std::vector<std::string>{"The file " + File("text.tart") + " could not be opened!",
                                                      "The file " + File("no/such/folder/a.tart") +
                                                          " could not be opened!"}));
    EXPECT_EQ("plain text", ReadFile(File("text.tart")));
    if (geteuid() != 0) {
        // Root writes anyway; for everybody else a read-only file stays as it is.
        SaveWithPicture(art, File("readonly.tart"), source);
        chmod(File("readonly.tart").c_str(), 0444);
        SaveWithPicture(art, File("readonly.tart"), source);
        EXPECT_EQ(std::tuple(app.messages.size(), Read(File("readonly.tart"))->GetCollections().size()),
                  std::tuple(3u, 1u));
    }
}

void WriteThroughDevice(const std::string& path, const std::string& text)
{
    ArtStorageWriter writer(path);
    const auto stream = writer.CreateStream("s");
    ASSERT_TRUE(stream);
    {
        boost::iostreams::stream<IStreamDevice> out{IStreamDevice(stream.get())};
        ASSERT_TRUE((out << text).flush().good());
    }
    ASSERT_TRUE(writer.CloseStream(stream) && writer.Commit());
}

std::string ReadOf(const std::string& path, const std::string& name = "s")
{
    std::string content;
    return ArtStorageReader::ReadStreamOf(path, name, content) ? content : "(unreadable)";
}

TEST(ArtStreamDeviceTest, ReadsWritesAndSeeksStreamsAndReplacesFilesOnlyOnCommitAndFilesKeptOpenAreOpenedAfresh)
{
    TempDir dir;
    // More than the stream buffer and more than a small-block stream, so that both kinds are crossed.
    std::string text;
    for (int i = 0; text.size() < 20000; ++i)
        text += std::to_string(i) + " ";
    WriteThroughDevice(dir.File("a.cf"), text);
    const std::shared_ptr<GsfInput> input = ArtStorageReader(dir.File("a.cf")).OpenStream("s");
    ASSERT_TRUE(input);
    boost::iostreams::stream<IStreamDevice> in{IStreamDevice(input.get())};
    in.exceptions(std::ios_base::badbit);
    EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(in), {}));
    in.clear();
    in.seekg(6000);
    in.seekg(-10, std::ios_base::cur);
    EXPECT_EQ(5990, in.tellg());
    // Through a stream with bad-bit exceptions, the device's failure arrives as itself.
    EXPECT_THROW(in.seekg(-1, std::ios_base::beg), IStreamDevice::IStreamDeviceError);

    IStreamDevice device(input.get());
    device.seek(0, std::ios_base::end);
    char byte = 0;
    EXPECT_EQ(-1, device.read(&byte, 1));
    EXPECT_THROW(device.seek(1, std::ios_base::end), std::ios_base::failure);
    EXPECT_THROW(device.write("x", 1), IStreamDevice::IStreamDeviceError) << "a device for reading writes nothing";

    const std::string path = dir.File("b.cf");
    WriteThroughDevice(path, "old");
    EXPECT_EQ("old", ReadOf(path));
    {
        ArtStorageWriter writer(path);
        ASSERT_TRUE(writer.WriteStream("s", "new", 3));
        // Names the format cannot hold, and doubles, are refused.
        for (const std::string& name : {std::string(), std::string("s"), std::string(32, 'n')})
            EXPECT_FALSE(writer.CreateStream(name)) << name;
        EXPECT_TRUE(writer.WriteStream(std::string(31, 'n'), "", 0));
        // Not committed: dropped, without a file left behind.
    }
    EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(dir.Path()), {}));
    {
        ArtStorageWriter writer(path);
        ArtStorageReader old(path);
        ASSERT_TRUE(writer.WriteStream("t", "added", 5) && writer.CopyMissing(old) && writer.Commit());
        EXPECT_FALSE(writer.Commit());
    }
    ArtStorageReader reader(path);
    EXPECT_EQ((std::vector<std::string>{"s", "t"}), reader.GetStreamNames());
    EXPECT_EQ("old", ReadOf(path));
    std::string content;
    EXPECT_FALSE(reader.ReadStream("s", content, 2) || reader.ReadStream("u", content)) << "too large, missing";
    EXPECT_FALSE(ArtStorageWriter(dir.File("missing/a.cf")).IsOpen());

    // The file kept open for its pictures is overwritten in place by a copy of another, then removed.
    WriteFile(path, ReadFile(dir.File("a.cf")));
    EXPECT_EQ(text, ReadOf(path)) << "overwritten in place";
    std::remove(path.c_str());
    EXPECT_EQ("(unreadable)", ReadOf(path));
    for (int i = 0; i < 6; ++i)
        WriteThroughDevice(dir.File(std::to_string(i) + ".cf"), "file " + std::to_string(i));
    EXPECT_EQ(0, WrongOnFourThreads(60, [&](int t, int i) {
                  const std::string name = std::to_string((i * 5 + t) % 6);
                  return ReadOf(dir.File(name + ".cf")) != "file " + name;
              }));
}

} // namespace
