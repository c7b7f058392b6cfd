#include "ArtTestSupport.h"

#include <KORVAutlwin/art/ArtInfo.h>

#include <KORVAutl/TsFileUtl.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <sys/wait.h>

using korva::test::WritePicture;

namespace {

struct Outcome
{
    int status = -1;
    std::string output;
};

// Runs the tool that lies beside the test program, with stderr in the output.
Outcome ArtPack(const std::string& arguments)
{
    const std::string command = "'" + TsPathAppend(TsGetExecutableDirectory().c_str(), "artpack") + "' " + arguments + " 2>&1";
    Outcome outcome;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return outcome;
    char buffer[512];
    while (std::size_t read = fread(buffer, 1, sizeof buffer, pipe))
        outcome.output.append(buffer, read);
    const int status = pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

std::unique_ptr<const ArtInfo> Read(const std::string& path)
{
    return std::unique_ptr<const ArtInfo>(ArtInfo::ReadArtInfo(path.c_str()));
}

class ArtPackTest : public ::testing::Test
{
protected:
    std::string File(const std::string& name) const { return mDir.File(name); }
    TempDir mDir;
};

TEST_F(ArtPackTest, HelpTellsEveryCommandAndOption)
{
    const Outcome help = ArtPack("--help");
    EXPECT_EQ(0, help.status);
    for (const char* word : {"create", "add", "list", "extract", "--artist", "--life-span", "--portrait",
                             "--portrait-rotation", "--picture", "--title", "--rotation", "--manifest", "--base"})
        EXPECT_NE(std::string::npos, help.output.find(word)) << word;

    const Outcome wrong = ArtPack("paint");
    EXPECT_EQ(2, wrong.status);
    EXPECT_NE(std::string::npos, wrong.output.find("unknown command \"paint\""));
    EXPECT_EQ(2, ArtPack("").status);
    EXPECT_EQ(2, ArtPack("create " + File("a.tart") + " --picture x.png").status);
    EXPECT_EQ(2, ArtPack("create " + File("a.tart") + " --artist A --picture x.png --rotation x").status);
    EXPECT_FALSE(std::filesystem::exists(File("a.tart")));
}

TEST_F(ArtPackTest, CreatesFromOptionsWithSizesTitlesAndRotations)
{
    WritePicture(File("wide.png"), 800, 200);
    WritePicture(File("tall.png"), 100, 300);
    WritePicture(File("face.png"), 160, 100);
    const Outcome created = ArtPack("create " + File("a.tart") + " --artist 'Lena Marsh' --life-span 1882-1961 --portrait " +
                                    File("face.png") + " --picture " + File("wide.png") + " --title 'Salt Flat' --picture " +
                                    File("tall.png") + " --rotation 5");
    ASSERT_EQ(0, created.status) << created.output;

    const auto art = Read(File("a.tart"));
    ASSERT_TRUE(art);
    ASSERT_EQ(1u, art->GetCollections().size());
    const CollectionInfo& collection = art->GetCollections()[0];
    EXPECT_EQ("Lena Marsh", collection.GetArtistName());
    EXPECT_EQ("1882-1961", collection.GetLifeSpan());
    // The recorded sizes are those of the stored pictures: 400x100 and, turned, 300x100.
    EXPECT_EQ(400u, collection.GetMaxPictureWidth());
    EXPECT_EQ(100u, collection.GetMaxPictureHeight());
    ASSERT_EQ(2u, collection.GetPictures().size());
    EXPECT_EQ("Salt Flat", collection.GetPictures()[0].GetTitle());
    EXPECT_EQ("tall", collection.GetPictures()[1].GetTitle());
    EXPECT_EQ(QSize(300, 100), art->GetImage(0, 1).size());
    EXPECT_EQ(QSize(80, 50), art->GetIcon(0).size());

    const Outcome listed = ArtPack("list " + File("a.tart"));
    EXPECT_EQ(0, listed.status);
    for (const char* text : {"1 collection", "Lena Marsh (1882-1961)", "pictures up to 400x100", "portrait 80x50",
                             "0: Salt Flat", "1: tall"})
        EXPECT_NE(std::string::npos, listed.output.find(text)) << text << "\n" << listed.output;

    EXPECT_EQ(0, ArtPack("extract " + File("a.tart") + " 0 1 " + File("out.png")).status);
    EXPECT_EQ(QSize(300, 100), QImage(QString::fromStdString(File("out.png"))).size());
    EXPECT_EQ(0, ArtPack("extract " + File("a.tart") + " 0 portrait " + File("face-out.jpg")).status);
    EXPECT_EQ(QSize(80, 50), QImage(QString::fromStdString(File("face-out.jpg"))).size());
    EXPECT_EQ(1, ArtPack("extract " + File("a.tart") + " 0 2 " + File("none.png")).status);
    EXPECT_EQ(1, ArtPack("list " + File("wide.png")).status);
}

TEST_F(ArtPackTest, ManifestsAddCollectionsAndCreateStartsAfresh)
{
    std::filesystem::create_directory(File("pictures"));
    WritePicture(File("pictures/one.png"), 50, 40);
    WritePicture(File("pictures/two.png"), 60, 30);
    std::ofstream(File("pictures/art.manifest")) << "# two painters\n"
                                                    "artist = Otto Brenn\n"
                                                    "picture = one.png\n"
                                                    "title = Harbour\n"
                                                    "\n"
                                                    "artist = Ida Lund\n"
                                                    "life-span = unknown\n"
                                                    "picture = two.png\n"
                                                    "rotation = 1\n";
    ASSERT_EQ(0, ArtPack("create " + File("a.tart") + " --artist First --picture " + File("pictures/one.png")).status);
    const Outcome added = ArtPack("add " + File("a.tart") + " --manifest " + File("pictures/art.manifest"));
    ASSERT_EQ(0, added.status) << added.output;
    auto art = Read(File("a.tart"));
    ASSERT_TRUE(art);
    ASSERT_EQ(3u, art->GetCollections().size());
    EXPECT_EQ("First", art->GetCollections()[0].GetArtistName());
    EXPECT_EQ("Harbour", art->GetCollections()[1].GetPictures()[0].GetTitle());
    EXPECT_EQ("unknown", art->GetCollections()[2].GetLifeSpan());
    EXPECT_EQ(QSize(30, 60), art->GetImage(2, 0).size());
    EXPECT_TRUE(art->GetCollections()[2].GetPortraitName().empty());

    // With --base the manifest's paths are taken from elsewhere.
    std::filesystem::copy_file(File("pictures/art.manifest"), File("moved.manifest"));
    ASSERT_EQ(0, ArtPack("create " + File("a.tart") + " --base " + File("pictures") + " --manifest " +
                         File("moved.manifest")).status);
    art = Read(File("a.tart"));
    ASSERT_TRUE(art);
    EXPECT_EQ(2u, art->GetCollections().size());

    std::ofstream(File("bad.manifest")) << "artist = A\ncolour = red\n";
    const Outcome bad = ArtPack("add " + File("a.tart") + " --manifest " + File("bad.manifest"));
    EXPECT_EQ(2, bad.status);
    EXPECT_NE(std::string::npos, bad.output.find("bad.manifest:2: unknown key \"colour\"")) << bad.output;

    // A picture that cannot be read fails with the library's text and leaves the file as it was.
    const Outcome missing = ArtPack("create " + File("a.tart") + " --artist A --picture " + File("missing.png"));
    EXPECT_EQ(1, missing.status);
    EXPECT_NE(std::string::npos, missing.output.find(File("missing.png") + " could not be read.")) << missing.output;
    art = Read(File("a.tart"));
    ASSERT_TRUE(art);
    EXPECT_EQ(2u, art->GetCollections().size());

    std::ofstream(File("text.tart")) << "text";
    const Outcome unopened = ArtPack("add " + File("text.tart") + " --artist A --picture " + File("pictures/one.png"));
    EXPECT_EQ(1, unopened.status);
    EXPECT_NE(std::string::npos, unopened.output.find("could not be opened!")) << unopened.output;
}

TEST_F(ArtPackTest, TheSuiteShipsACollectionBesideItsPrograms)
{
    const auto art = Read(TsPathAppend(TsGetExecutableDirectory().c_str(), "Abstracts.tart"));
    ASSERT_TRUE(art);
    ASSERT_EQ(1u, art->GetCollections().size());
    const CollectionInfo& collection = art->GetCollections()[0];
    EXPECT_EQ(6u, collection.GetPictures().size());
    EXPECT_FALSE(art->GetIcon(0).isNull());
    for (int i = 0; i < static_cast<int>(collection.GetPictures().size()); ++i) {
        const QImage image = art->GetImage(0, i);
        ASSERT_FALSE(image.isNull()) << i;
        EXPECT_LE(static_cast<unsigned>(image.width()), collection.GetMaxPictureWidth());
        EXPECT_LE(static_cast<unsigned>(image.height()), collection.GetMaxPictureHeight());
    }
}

} // namespace
