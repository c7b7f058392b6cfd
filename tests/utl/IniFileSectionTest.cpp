#include "MemorySection.h"
#include "TempDir.h"

#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLSection.h>

namespace fs = std::filesystem;

namespace {

const std::string kData = std::string(KORVA_SOURCE_DIR) + "/tests/utl/data/ini/";
using Names = std::vector<std::string>;

} // namespace

TEST(IniFileSectionTest, WritesKeepTheOrderCommentsNamesAndSignatureOfTheFile)
{
    TempDir dir;
    const std::string path = dir.File("written.ini");
    // The file before, the section and key written, the file after.
    const std::tuple<std::string, const char*, const char*, std::string> rows[] = {
        // Every change is in the file at once; only the layout of lines changes.
        {ReadFile(kData + "Edited.ini"), "SysLogSettings", "BaseSeverity", ReadFile(kData + "Edited.written.ini")},
        {"", "S", "k", "[S]\nk = v\n"},   // a missing file is made
        {"[S]\nk=1\n\n; the end\n; really\n", "S", "added", "[S]\nk = 1\nadded = v\n\n; the end\n; really\n"},
        // Names compare without case; the file's spelling stays. Keys before any section are in "".
        {"top=1\n[Beta]\nb=2\n[alpha]\nZ=3\nA=4\n", "ALPHA", "a",
         "top = 1\n\n\n[Beta]\nb = 2\n\n\n[alpha]\nZ = 3\nA = v\n"},
        {"x=1\n", "", "X", "x = v\n"},
        // A signature stays, line ends become \n, a block takes the standard tag.
        {"\xEF\xBB\xBF[S]\r\nk=caf\xC3\xA9\r\nm = <<<EOT\r\none\r\n two\r\nEOT\r\n", "S", "n",
         "\xEF\xBB\xBF[S]\nk = caf\xC3\xA9\nm = <<<END_OF_TEXT\none\n two\nEND_OF_TEXT\nn = v\n"},
    };
    for (const auto& [before, name, key, after] : rows) {
        SCOPED_TRACE(before);
        fs::remove(path);
        if (!before.empty())
            WriteFile(path, before);
        IniFileSection section(path.c_str(), name);
        ASSERT_TRUE(section.WriteKey(key, "v"));
        EXPECT_EQ(ReadFile(path), after);
        // Written again, the file stays as it is now.
        ASSERT_TRUE(section.WriteKey(key, "w") && section.WriteKey(key, "v"));
        EXPECT_EQ(ReadFile(path), after);
    }

    // Reading follows the same rules.
    WriteFile(path, "top=1\n[Beta]\nb=2\n[alpha]\nZ=3\nA=4\n[S]\nm = <<<EOT\none\n two\nEOT\n");
    IniFileSection alpha(path.c_str(), "ALPHA");
    EXPECT_EQ(alpha.GetSectionNames(), (Names{"", "Beta", "alpha", "S"}));
    EXPECT_EQ(alpha.GetKeyNames(), (Names{"Z", "A"}));
    EXPECT_EQ(Key(alpha, "z"), "3");
    alpha.ChangeSection("s");
    EXPECT_EQ(Key(alpha, "M"), "one\n two");
}

TEST(IniFileSectionTest, LinesThatWouldBeLostStopEveryWrite)
{
    // The file is read as far as it can be.
    IniFileSection garbage((kData + "unreadable/3,5.garbage.ini").c_str(), "SysLogSettings");
    EXPECT_EQ(Key(garbage, "Address") + "|" + Key(garbage, "Port"), "10.0.0.1|514");

    // Each kind of line that the INI reader would drop or misread stops every change. The name of each
    // file begins with the numbers of its unreadable lines.
    TempDir dir;
    const std::string path = dir.File("bad.ini");
    for (const auto& entry : fs::directory_iterator(kData + "unreadable")) {
        const std::string name = entry.path().filename().string(), text = ReadFile(entry.path().string());
        SCOPED_TRACE(name);
        WriteFile(path, text);
        IniFileSection section(path.c_str(), "S");
        std::string lines;
        for (int line : section.GetUnreadableLines())
            lines += (lines.empty() ? "" : ",") + std::to_string(line);
        EXPECT_EQ(lines, name.substr(0, name.find('.')));
        EXPECT_FALSE(section.IsWritable() || section.WriteKey("k", "changed") || section.DeleteKey("k") ||
                     section.DeleteSection());
        EXPECT_EQ(ReadFile(path), text);
    }
}

TEST(IniFileSectionTest, WhatCannotBeStoredIsRefusedAndTrickyValuesReadBackExactly)
{
    TempDir dir;
    const std::string path = dir.File("values.ini");
    IniFileSection section(path.c_str(), "S");
    for (const char* key : {"", "a=b", "line\nbreak", "[x", ";x", "#x", " lead", "trail ", "cr\r", "\xEF\xBB\xBFk"})
        EXPECT_FALSE(section.WriteKey(key, "v")) << key;
    for (const char* value : {"cr\rhere", "<<<TAG", "two\nEND_OF_TEXT\nlines", "x\nend_of_text  "})
        EXPECT_FALSE(section.WriteKey("k", value)) << value;
    EXPECT_FALSE(IniFileSection(path.c_str(), "a]b").WriteKey("k", "v"));
    EXPECT_FALSE(fs::exists(path)) << "nothing was written";

    // Lookalikes that are fine, and values that tend to get lost on the way through a file.
    const std::vector<std::pair<std::string, std::string>> values = {
        {"k", " <<<TAG"}, {"k2", "END_OF_TEXT"}, {"key with blanks", "v"}, {"empty", ""},
        {"blanks", " leading and trailing blanks "}, {"lines", "line one\nline two\n"},
        {"first", "\n\nstarts with empty lines"}, {"tabs", "tab\there\t"}, {"only", "   "},
        {"quotes", "quotes \" and ' and <angle> & ampersand &amp;"}, {"utf8", "caf\xC3\xA9 \xF0\x9F\x98\x80"},
        {"a", "key = value ; not a comment"}, {"b", "[not a section]"}, {"c", "# not a comment either"},
    };
    for (const auto& [key, value] : values)
        ASSERT_TRUE(section.WriteKey(key.c_str(), value.c_str())) << key;
    IniFileSection reread(path.c_str(), "S");
    EXPECT_TRUE(reread.IsWritable());
    for (const auto& [key, value] : values)
        EXPECT_EQ(Key(reread, key.c_str()), value) << key;
}

TEST(IniFileSectionTest, DeletingEmptinessNoSubSectionsAndFilesThatCannotBeWritten)
{
    TempDir dir;
    const std::string path = dir.File("delete.ini");
    IniFileSection section(path.c_str(), "S");
    EXPECT_TRUE(section.IsEmpty());
    ASSERT_TRUE(section.WriteKey("k", "1") && section.WriteKey("l", "2"));
    EXPECT_TRUE(section.HasKey("K") && section.DeleteKey("k") && !section.DeleteKey("k"));
    EXPECT_EQ(ReadFile(path), "[S]\nl = 2\n");
    std::unique_ptr<ConfigurationSection> other(section.CopyAndChangeSection("T"));
    other->WriteKey("t", "1");
    EXPECT_TRUE(section.DeleteSection() && !section.DeleteSection() && section.IsEmpty());
    EXPECT_EQ(ReadFile(path), "[T]\nt = 1\n");
    // No sub-sections in an INI file, although the file has a section "T".
    EXPECT_FALSE(section.ChangeSubSection("T") || section.HasSection("T", -1));
    EXPECT_EQ(section.CreateSubSection("T", 2), nullptr);

    // Files that cannot be written, or a full disk.
    const std::string newPath = dir.File("new.ini");
    IniFileSection created(newPath.c_str(), "S");
    EXPECT_TRUE(created.IsWritable() && !created.HasKey("k"));
    EXPECT_FALSE(fs::exists(newPath)) << "reading creates nothing";
    IniFileSection folder(dir.Path().c_str(), "S"), noFolder(dir.File("no/such/folder.ini").c_str(), "S");
    EXPECT_FALSE(IniFileSection(nullptr, nullptr).WriteKey("k", "v") || folder.IsWritable() ||
                 folder.WriteKey("k", "v") || noFolder.WriteKey("k", "v"));
    EXPECT_FALSE(noFolder.HasKey("k")) << "memory follows the file";

    // A failed save undoes the change (the file itself is safe: see the XML tests).
    ASSERT_TRUE(created.WriteKey("k", "old"));
    const std::string before = ReadFile(newPath);
    EXPECT_FALSE(OnAFullDisk(1024, [&] { return created.WriteKey("big", std::string(8000, 'x')); }));
    EXPECT_FALSE(created.HasKey("big"));
    EXPECT_EQ(ReadFile(newPath), before);
}

TEST(IniFileSectionTest, CopiesAndOthersShareTheFile)
{
    TempDir dir;
    const std::string path = dir.File("shared.ini");
    IniFileSection section(path.c_str(), "S");
    std::unique_ptr<ConfigurationSection> copy(section.Copy());
    ASSERT_TRUE(section.WriteKey("a", "1") && section.WriteKey("b", "two\nlines") && copy->WriteKey("c", "3"));
    XMLSection target;
    ASSERT_TRUE(section.WriteToSection(&target));
    EXPECT_EQ(target.GetKeyNames(), (Names{"a", "b", "c"}));
    EXPECT_EQ(Key(target, "b"), "two\nlines");

    // Someone edits the file while the section is open: their change is taken in before the next write.
    WriteFile(path, ReadFile(path) + "theirs = 2\n");
    ASSERT_TRUE(section.WriteKey("a", "4"));
    EXPECT_EQ(Key(IniFileSection(path.c_str(), "S"), "theirs") + Key(section, "theirs"), "22");

    // Without auto-save, changes of the section and its copies wait for Flush.
    const std::string before = ReadFile(path);
    copy->ChangeSection("T");
    section.SetAutoSave(false);
    ASSERT_TRUE(section.WriteInt("k", 5) && copy->WriteInt("k", 6));
    EXPECT_EQ(ReadFile(path), before);
    ASSERT_TRUE(section.Flush());
    EXPECT_EQ(Key(IniFileSection(path.c_str(), "S"), "k") + Key(IniFileSection(path.c_str(), "T"), "k"), "56");
}
