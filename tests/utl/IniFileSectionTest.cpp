#include "TempDir.h"

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include <sys/resource.h>

namespace fs = std::filesystem;

namespace {

const std::string kData = std::string(KORVA_SOURCE_DIR) + "/tests/utl/data/ini/";

std::vector<std::string> Lines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::string Key(const ConfigurationSection& section, const char* key)
{
    std::string value;
    return section.ReadKey(key, value) ? value : "<missing>";
}

} // namespace

TEST(IniFileSectionTest, AWriteKeepsTheOrderAndTheCommentsOfAnEditedFile)
{
    TempDir dir;
    const std::string path = dir.File("SysLog.ini");
    fs::copy_file(kData + "Edited.ini", path);

    IniFileSection settings(path.c_str(), "SysLogSettings");
    ASSERT_TRUE(settings.WriteKey("Port", "515"));
    ASSERT_TRUE(settings.WriteKey("BaseSeverity", "info"));

    // Every change is in the file at once.
    const std::vector<std::string> expected = {
        "; SysLog settings, edited by hand",
        "; second line of the file comment",
        "",
        "",
        "[SysLogSettings]",
        "",
        "; where the messages go",
        "Address = 10.0.0.1",
        "Port = 515",
        "",
        "# facility of all messages",
        "Facility = local3",
        "BaseSeverity = info",
        "",
        "",
        "[SysLogContextSeverities]",
        "Network = warning",
        ";Disk = debug",
    };
    EXPECT_EQ(Lines(ReadFile(path)), expected) << ReadFile(path);

    IniFileSection reread(path.c_str(), "SysLogSettings");
    EXPECT_EQ(reread.GetKeyNames(), (std::vector<std::string>{"Address", "Port", "Facility", "BaseSeverity"}));
    EXPECT_EQ(reread.GetSectionNames(), (std::vector<std::string>{"SysLogSettings", "SysLogContextSeverities"}));
    // Written again, the file stays as it is now.
    ASSERT_TRUE(reread.WriteKey("Port", "516"));
    ASSERT_TRUE(reread.WriteKey("Port", "515"));
    EXPECT_EQ(Lines(ReadFile(path)), expected);
}

TEST(IniFileSectionTest, LinesThatWouldBeLostStopEveryWrite)
{
    TempDir dir;
    const std::string path = dir.File("SysLog.ini");
    fs::copy_file(kData + "Garbage.ini", path);
    const std::string before = ReadFile(path);

    IniFileSection settings(path.c_str(), "SysLogSettings");
    EXPECT_EQ(Key(settings, "Address"), "10.0.0.1");
    EXPECT_EQ(Key(settings, "Port"), "514");
    EXPECT_FALSE(settings.IsWritable());
    EXPECT_EQ(settings.GetUnreadableLines(), (std::vector<int>{3, 5}));
    EXPECT_FALSE(settings.WriteKey("New", "1"));
    EXPECT_FALSE(settings.DeleteKey("Port"));
    EXPECT_FALSE(settings.DeleteSection());
    EXPECT_EQ(Key(settings, "Port"), "514");
    EXPECT_EQ(ReadFile(path), before);

    // Each kind of line that the INI reader would drop or misread.
    const std::vector<std::pair<std::string, std::vector<int>>> cases = {
        {"[S] ; trailing remark\nk=1\n", {1}},
        {"[S]\nk=1\nk=2\n", {3}},
        {"[S]\nk=<<<END\nnever ends\n[T]\nx=1\n", {2}},
        {"[S]\nk=<<<END\nEND\nx=1\n", {2}},
        {"[S]\nk=<<<EOT\nline\nEND_OF_TEXT\nEOT\n", {2}},
        {"[S]\nk=<<<\n<<<\n\nx=1\n", {2}},
        {"[S]\nk=1\n=no key\n", {3}},
        {std::string("[S]\nk=1\nx=2\0y=3\n", 16), {3}},
        {"[S]\nk=1\n; about T\n[T]\nx=1\n; again about T\n[T]\ny=2\n", {7}},
        {"\r\n[S]\r\n\r\nnonsense\r\nk=1\r\n", {4}},
        {"\xEF\xBB\xBF\xEF\xBB\xBF[S]\nk=1\n", {1}},
        {"[S]\n\xEF\xBB\xBFk=1\n", {2}},
    };
    for (const auto& [text, lines] : cases) {
        WriteFile(path, text);
        IniFileSection section(path.c_str(), "S");
        EXPECT_EQ(section.GetUnreadableLines(), lines) << text;
        EXPECT_FALSE(section.WriteKey("k", "changed")) << text;
        EXPECT_EQ(ReadFile(path), text);
    }
}

TEST(IniFileSectionTest, ACommentAtTheEndOfTheFileIsKept)
{
    TempDir dir;
    const std::string path = dir.File("end.ini");
    WriteFile(path, "[S]\nk=1\n\n; the end\n; really\n");
    IniFileSection section(path.c_str(), "S");
    ASSERT_TRUE(section.WriteKey("k", "2"));
    ASSERT_TRUE(section.WriteKey("added", "3"));
    EXPECT_EQ(ReadFile(path), "[S]\nk = 2\nadded = 3\n\n; the end\n; really\n");
}

TEST(IniFileSectionTest, WhatCannotBeStoredIsRefused)
{
    TempDir dir;
    const std::string path = dir.File("refused.ini");
    IniFileSection section(path.c_str(), "S");
    for (const char* key : {"", "a=b", "line\nbreak", "[x", ";x", "#x", " lead", "trail ", "cr\r", "\xEF\xBB\xBFk"})
        EXPECT_FALSE(section.WriteKey(key, "v")) << key;
    for (const char* value : {"cr\rhere", "<<<TAG", "two\nEND_OF_TEXT\nlines", "x\nend_of_text  "})
        EXPECT_FALSE(section.WriteKey("k", value)) << value;
    IniFileSection badSection(path.c_str(), "a]b");
    EXPECT_FALSE(badSection.WriteKey("k", "v"));
    EXPECT_FALSE(fs::exists(path)) << "nothing was written";

    // Lookalikes that are fine.
    EXPECT_TRUE(section.WriteKey("k", " <<<TAG"));
    EXPECT_TRUE(section.WriteKey("k2", "END_OF_TEXT"));
    EXPECT_TRUE(section.WriteKey("key with blanks", "v"));
    IniFileSection reread(path.c_str(), "S");
    EXPECT_EQ(Key(reread, "k"), " <<<TAG");
    EXPECT_EQ(Key(reread, "k2"), "END_OF_TEXT");
    EXPECT_EQ(Key(reread, "key with blanks"), "v");
}

TEST(IniFileSectionTest, NamesFollowTheFileIgnoringCase)
{
    TempDir dir;
    const std::string path = dir.File("names.ini");
    WriteFile(path, "top=1\n[Beta]\nb=2\n[alpha]\nZ=3\nA=4\n");
    IniFileSection section(path.c_str(), "ALPHA");
    EXPECT_EQ(section.GetSectionNames(), (std::vector<std::string>{"", "Beta", "alpha"}));
    EXPECT_EQ(section.GetKeyNames(), (std::vector<std::string>{"Z", "A"}));
    EXPECT_EQ(Key(section, "z"), "3");
    ASSERT_TRUE(section.WriteKey("a", "5"));
    section.ChangeSection("");
    EXPECT_EQ(Key(section, "TOP"), "1");
    EXPECT_EQ(ReadFile(path), "top = 1\n\n\n[Beta]\nb = 2\n\n\n[alpha]\nZ = 3\nA = 5\n");
}

TEST(IniFileSectionTest, ChangesMadeByOthersAreTakenInBeforeWriting)
{
    TempDir dir;
    const std::string path = dir.File("shared.ini");
    IniFileSection ours(path.c_str(), "S");
    ASSERT_TRUE(ours.WriteKey("ours", "1"));
    // Someone edits the file while the section is open.
    WriteFile(path, ReadFile(path) + "theirs = 2\n");
    ASSERT_TRUE(ours.WriteKey("ours", "3"));

    IniFileSection reread(path.c_str(), "S");
    EXPECT_EQ(Key(reread, "ours"), "3");
    EXPECT_EQ(Key(reread, "theirs"), "2");
    EXPECT_EQ(Key(ours, "theirs"), "2");
}

TEST(IniFileSectionTest, DeletingAndEmptiness)
{
    TempDir dir;
    const std::string path = dir.File("delete.ini");
    IniFileSection section(path.c_str(), "S");
    EXPECT_TRUE(section.IsEmpty());
    section.WriteKey("k", "1");
    section.WriteKey("l", "2");
    EXPECT_TRUE(section.HasKey("K"));
    EXPECT_TRUE(section.DeleteKey("k"));
    EXPECT_FALSE(section.DeleteKey("k"));
    EXPECT_EQ(Lines(ReadFile(path)), (std::vector<std::string>{"[S]", "l = 2"}));

    std::unique_ptr<ConfigurationSection> other(section.CopyAndChangeSection("T"));
    other->WriteKey("t", "1");
    EXPECT_TRUE(section.DeleteSection());
    EXPECT_FALSE(section.DeleteSection());
    EXPECT_TRUE(section.IsEmpty());
    EXPECT_EQ(ReadFile(path), "[T]\nt = 1\n");

    // No sub-sections in an INI file, although the file has a section "T".
    EXPECT_FALSE(section.ChangeSubSection("T"));
    EXPECT_EQ(section.CreateSubSection("T", 2), nullptr);
    EXPECT_FALSE(section.HasSection("T", -1));
}

TEST(IniFileSectionTest, WithoutAutoSaveChangesWaitForFlush)
{
    TempDir dir;
    const std::string path = dir.File("deferred.ini");
    IniFileSection section(path.c_str(), "S");
    section.SetAutoSave(false);
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(section.WriteInt(("k" + std::to_string(i)).c_str(), i));
    EXPECT_FALSE(fs::exists(path));
    ASSERT_TRUE(section.Flush());
    IniFileSection reread(path.c_str(), "S");
    EXPECT_EQ(reread.GetKeyNames(), (std::vector<std::string>{"k0", "k1", "k2"}));
}

TEST(IniFileSectionTest, SignatureAndLineEnds)
{
    TempDir dir;
    const std::string path = dir.File("windows.ini");
    WriteFile(path, "\xEF\xBB\xBF[S]\r\nk=caf\xC3\xA9\r\nm = <<<EOT\r\none\r\n two\r\nEOT\r\n");
    IniFileSection section(path.c_str(), "S");
    EXPECT_EQ(Key(section, "k"), "caf\xC3\xA9");
    EXPECT_EQ(Key(section, "m"), "one\n two");
    ASSERT_TRUE(section.WriteKey("n", "1"));
    EXPECT_EQ(ReadFile(path), "\xEF\xBB\xBF[S]\nk = caf\xC3\xA9\nm = <<<END_OF_TEXT\none\n two\nEND_OF_TEXT\nn = 1\n");
}

TEST(IniFileSectionTest, MissingUnreadableAndUnnamedFiles)
{
    TempDir dir;
    const std::string path = dir.File("new.ini");
    IniFileSection created(path.c_str(), "S");
    EXPECT_TRUE(created.IsWritable());
    EXPECT_FALSE(created.HasKey("k"));
    EXPECT_FALSE(fs::exists(path)) << "reading creates nothing";
    ASSERT_TRUE(created.WriteKey("k", "v"));
    EXPECT_EQ(ReadFile(path), "[S]\nk = v\n");

    IniFileSection unnamed(nullptr, nullptr);
    EXPECT_FALSE(unnamed.WriteKey("k", "v"));
    IniFileSection folder(dir.Path().c_str(), "S");
    EXPECT_FALSE(folder.IsWritable());
    EXPECT_FALSE(folder.WriteKey("k", "v"));

    const std::string nowhere = dir.File("no/such/folder.ini");
    IniFileSection noFolder(nowhere.c_str(), "S");
    EXPECT_FALSE(noFolder.WriteKey("k", "v"));
    EXPECT_FALSE(noFolder.HasKey("k")) << "memory follows the file";
}

TEST(IniFileSectionTest, AFailedSaveUndoesTheChange)
{
    TempDir dir;
    const std::string path = dir.File("full.ini");
    IniFileSection section(path.c_str(), "S");
    ASSERT_TRUE(section.WriteKey("k", "old"));
    const std::string before = ReadFile(path);

    struct rlimit saved;
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limited = saved;
    limited.rlim_cur = 1024;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const bool written = section.WriteKey("big", std::string(8000, 'x'));
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);

    EXPECT_FALSE(written);
    EXPECT_FALSE(section.HasKey("big"));
    EXPECT_EQ(ReadFile(path), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1);
}

TEST(IniFileSectionTest, CopiesShareTheFileAndCopyIntoOtherBackEnds)
{
    TempDir dir;
    const std::string path = dir.File("copy.ini");
    IniFileSection section(path.c_str(), "S");
    section.WriteKey("a", "1");
    section.WriteKey("b", "two\nlines");
    std::unique_ptr<ConfigurationSection> copy(section.Copy());
    copy->WriteKey("c", "3");
    EXPECT_EQ(Key(section, "c"), "3");

    XMLSection target;
    ASSERT_TRUE(section.WriteToSection(&target));
    EXPECT_EQ(target.GetKeyNames(), (std::vector<std::string>{"a", "b", "c"}));
    EXPECT_EQ(Key(target, "b"), "two\nlines");
}
