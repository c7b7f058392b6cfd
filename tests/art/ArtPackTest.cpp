#include "ArtTestSupport.h"

#include <KORVAutl/TsFileUtl.h>

#include <sys/wait.h>

using namespace korva::test;

namespace {

struct Outcome
{
    int status = -1;
    std::string output;
    bool Says(const std::string& text) const { return output.find(text) != std::string::npos; }
};

// Runs the tool beside the test program, stderr in the output.
Outcome ArtPack(const std::string& arguments)
{
    const std::string tool = TsPathAppend(TsGetExecutableDirectory().c_str(), "artpack");
    Outcome outcome;
    FILE* pipe = popen(("'" + tool + "' " + arguments + " 2>&1").c_str(), "r");
    char buffer[512];
    while (std::size_t read = pipe ? fread(buffer, 1, sizeof buffer, pipe) : 0)
        outcome.output.append(buffer, read);
    const int status = pipe ? pclose(pipe) : -1;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

class ArtPackTest : public ::testing::Test
{
protected:
    std::string File(const std::string& name) const { return mDir.File(name); }
    QSize SizeOf(const std::string& name) const { return QImage(QString::fromStdString(File(name))).size(); }
    TempDir mDir;
};

TEST_F(ArtPackTest, HelpTellsEveryCommandMistakesEndWithStatus2AndCreateListAndExtractWork)
{
    const Outcome help = ArtPack("--help");
    EXPECT_EQ(0, help.status);
    for (const char* word : {"create", "add", "list", "extract", "--artist", "--life-span", "--portrait",
                             "--portrait-rotation", "--picture", "--title", "--rotation", "--manifest", "--base"})
        EXPECT_TRUE(help.Says(word)) << word;
    const Outcome wrong = ArtPack("paint");
    EXPECT_EQ(2, wrong.status);
    EXPECT_TRUE(wrong.Says("unknown command \"paint\""));
    for (const std::string arguments : {"", " --picture x.png", " --artist A --picture x.png --rotation x"})
        EXPECT_EQ(2, ArtPack(arguments.empty() ? "" : "create " + File("a.tart") + arguments).status) << arguments;
    EXPECT_FALSE(std::filesystem::exists(File("a.tart")));

    WritePicture(File("wide.png"), 800, 200);
    WritePicture(File("tall.png"), 100, 300);
    WritePicture(File("face.png"), 160, 100);
    const Outcome created = ArtPack("create " + File("a.tart") + " --artist 'Lena Marsh' --life-span 1882-1961 --portrait " +
                                    File("face.png") + " --picture " + File("wide.png") + " --title 'Salt Flat' --picture " +
                                    File("tall.png") + " --rotation 5");
    ASSERT_EQ(0, created.status) << created.output;
    const auto art = Read(File("a.tart"));
    ASSERT_TRUE(art);
    // The recorded sizes are those of the stored pictures: 400x100 and, turned, 300x100.
    EXPECT_EQ("Lena Marsh|1882-1961|400x100|80x50|Salt Flat|tall\n", Describe(*art, false));

    const Outcome listed = ArtPack("list " + File("a.tart"));
    EXPECT_EQ(0, listed.status);
    for (const char* text : {"1 collection", "Lena Marsh (1882-1961)", "pictures up to 400x100", "portrait 80x50",
                             "0: Salt Flat", "1: tall"})
        EXPECT_TRUE(listed.Says(text)) << text << "\n" << listed.output;
    EXPECT_EQ(0, ArtPack("extract " + File("a.tart") + " 0 1 " + File("out.png")).status);
    EXPECT_EQ(QSize(300, 100), SizeOf("out.png"));
    EXPECT_EQ(0, ArtPack("extract " + File("a.tart") + " 0 portrait " + File("face-out.jpg")).status);
    EXPECT_EQ(QSize(80, 50), SizeOf("face-out.jpg"));
    EXPECT_EQ(1, ArtPack("extract " + File("a.tart") + " 0 2 " + File("none.png")).status);
    EXPECT_EQ(1, ArtPack("list " + File("wide.png")).status);
}

TEST_F(ArtPackTest, ManifestsAddCollectionsAndCreateStartsAfresh)
{
    std::filesystem::create_directory(File("pictures"));
    WritePicture(File("pictures/one.png"), 50, 40);
    WritePicture(File("pictures/two.png"), 60, 30);
    WriteFile(File("pictures/art.manifest"), "# two painters\nartist = Otto Brenn\npicture = one.png\ntitle = Harbour\n"
                                             "\nartist = Ida Lund\nlife-span = unknown\npicture = two.png\nrotation = 1\n");
    ASSERT_EQ(0, ArtPack("create " + File("a.tart") + " --artist First --picture " + File("pictures/one.png")).status);
    const Outcome added = ArtPack("add " + File("a.tart") + " --manifest " + File("pictures/art.manifest"));
    ASSERT_EQ(0, added.status) << added.output;
    auto art = Read(File("a.tart"));
    ASSERT_TRUE(art);
    EXPECT_EQ("First||50x40|0x0|one\nOtto Brenn||50x40|0x0|Harbour\nIda Lund|unknown|30x60|0x0|two\n",
              Describe(*art, false));
    EXPECT_EQ(QSize(30, 60), art->GetImage(2, 0).size());
    std::filesystem::copy_file(File("pictures/art.manifest"), File("moved.manifest"));
    ASSERT_EQ(0, ArtPack("create " + File("a.tart") + " --base " + File("pictures") + " --manifest " +
                         File("moved.manifest")).status);
    ASSERT_TRUE(art = Read(File("a.tart")));
    EXPECT_EQ(2u, art->GetCollections().size());

    WriteFile(File("bad.manifest"), "artist = A\ncolour = red\n");
    WriteFile(File("text.tart"), "text");
    const struct { std::string arguments; int status; std::string says; } failures[] = {
        {"add " + File("a.tart") + " --manifest " + File("bad.manifest"), 2, "bad.manifest:2: unknown key \"colour\""},
        {"create " + File("a.tart") + " --artist A --picture " + File("missing.png"), 1,
         File("missing.png") + " could not be read."},
        {"add " + File("text.tart") + " --artist A --picture " + File("pictures/one.png"), 1, "could not be opened!"},
    };
    for (const auto& failure : failures) {
        const Outcome outcome = ArtPack(failure.arguments);
        EXPECT_EQ(failure.status, outcome.status) << failure.arguments;
        EXPECT_TRUE(outcome.Says(failure.says)) << outcome.output;
    }
    ASSERT_TRUE(art = Read(File("a.tart")));
    EXPECT_EQ(2u, art->GetCollections().size());
}

} // namespace
