// Settings in XML: keys and sections as people write them, names that are no
// XML names, values that must survive exactly, views on one document, and files.

#include "MemorySection.h"
#include "TempDir.h"

#include <KORVAutl/Exception.h>
#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include <map>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

using Section = std::unique_ptr<ConfigurationSection>;
using Names = std::vector<std::string>;

const std::string kData = std::string(KORVA_SOURCE_DIR) + "/tests/utl/data/xml/";

std::string Rendered(const XMLSection& section, bool indent = true)
{
    std::string text;
    return section.Flush(text, indent), text;
}

// Keys, values and children of a section, recursively, read through the contract alone.
std::string Dump(const ConfigurationSection& section)
{
    std::string text;
    for (const std::string& key : section.GetKeyNames())
        text += key + "=" + Key(section, key.c_str()) + ";";
    std::map<std::string, int> seen;
    for (const std::string& name : section.GetSectionNames()) {
        Section child(section.CopyAndChangeSubSection(name.c_str(), ++seen[name]));
        text += name + "{" + (child ? Dump(*child) : "missing") + "}";
    }
    return text;
}

} // namespace

TEST(XMLSectionTest, KeysAreReadAsAttributesAndAsTextOnlyElements)
{
    XMLSection file((kData + "HandWritten.xml").c_str(), false);
    EXPECT_EQ(Key(file, "Version"), "2");
    ASSERT_TRUE(file.ChangeSubSection("Options"));
    EXPECT_EQ(Key(file, "Title") + "|" + Key(file, "Note"), "My title|a < b");
    EXPECT_EQ(file.GetKeyNames(), (Names{"Colour", "Title", "Note", "Item"}));
    // An empty element and an element with attributes are sections, not keys.
    EXPECT_FALSE(file.HasKey("Empty") || file.HasSection("Title", -1));
    EXPECT_EQ(file.GetSectionNames(), (Names{"Empty", "Styled", "Item", "Item"}));
    Section second(file.CopyAndChangeSubSection("Item", 1));
    EXPECT_EQ(second ? Key(*second, "Name") : "no section", "one");

    // Writing an element key turns it into an attribute; the sections of the same name stay where they are.
    ASSERT_TRUE(file.WriteKey("Title", "New title") && file.WriteKey("Item", "changed"));
    EXPECT_EQ(file.GetKeyNames(), (Names{"Colour", "Title", "Item", "Note"}));
    EXPECT_EQ(file.NumSubSections("Item"), 2);
    // What a person wrote besides the settings, such as a comment, is kept.
    const std::string text = Rendered(file);
    for (const auto& [part, kept] : {std::pair{"Title=\"New title\"", true}, {"<Title>", false}, {">first<", false},
                                     {"<!-- Settings written by hand", true}})
        EXPECT_EQ(text.find(part) != std::string::npos, kept) << part << " in " << text;
    EXPECT_TRUE(file.DeleteKey("Note") && !file.DeleteKey("Note"));
}

TEST(XMLSectionTest, IndexedChildrenAreTheNthElementOfTheirName)
{
    XMLSection root;
    Section other(root.CreateSubSection("Other"));
    Section third(root.CreateSubSection("Item", 3));
    ASSERT_TRUE(third && third->WriteKey("n", "3"));
    EXPECT_FALSE(root.HasSection("Item", 4) || root.HasSection("Item", 0));
    EXPECT_EQ(root.CreateSubSection("Item", 0), nullptr);
    Section again(root.CreateSubSection("Item", 2));   // an existing index creates nothing
    again->WriteKey("n", "2");
    EXPECT_EQ(root.NumSubSections("Item"), 3);
    std::unique_ptr<std::vector<std::shared_ptr<ConfigurationSection>>> all(root.GetAllSubSections("Item"));
    ASSERT_EQ(all->size(), 3u);
    EXPECT_EQ(Key(*(*all)[0], "n") + Key(*(*all)[1], "n") + Key(*(*all)[2], "n"), "<missing>23");

    XMLSection moving(root);
    EXPECT_TRUE(!moving.ChangeSubSection("Item", 4) && moving.HasSection("Other", -1)) << "a failed move stays";
    EXPECT_TRUE(moving.ChangeSubSection("Item", 3) && Key(moving, "n") == "3");
}

TEST(XMLSectionTest, NamesAndValuesSurviveTheFileAndItsTextExactly)
{
    TempDir dir;
    const std::string path = dir.File("names.xml");
    const Names names = {"Last file", "3D view", "CUSTOM_COLOR_3", "a:b", "_x0020_", "", "\xF0\x9F\x98\x80",
                         "bad \xFF byte", "<&>\"'", "-tab\tand/slash\\", ".5 \xC3\xA4\xE2\x82\xAC"};
    const Names values = {"", " leading and trailing blanks ", "line one\nline two\n", "\n\nstarts with empty lines",
                          "carriage\r\nreturn\r", "control \x01\x1F characters", "caf\xC3\xA9 \xF0\x9F\x98\x80",
                          "   ", "key = value ; [not a section]", "tab\there\t", "quotes \" ' <angle> & &amp;"};
    std::string compact, expected;
    {
        XMLSection file(path.c_str(), true);
        for (std::size_t i = 0; i < names.size(); ++i) {
            ASSERT_TRUE(file.WriteKey(names[i].c_str(), values[i].c_str()) && Key(file, names[i].c_str()) == values[i]);
            Section child(file.CreateSubSection(names[i].c_str()));
            ASSERT_TRUE(child && child->WriteKey(names[i].c_str(), "inner"));
        }
        ASSERT_TRUE(file.Flush());
        EXPECT_EQ(ReadFile(path), Rendered(file));
        EXPECT_EQ(file.GetKeyNames(), names);
        EXPECT_EQ(file.GetSectionNames(), names);
        expected = Dump(file);
        compact = Rendered(file, false);
    }
    const std::string text = ReadFile(path);
    for (const char* stored : {"Last_x0020_file=\"", "<_x0033_D_x0020_view", "CUSTOM_COLOR_3=\""})
        EXPECT_NE(text.find(stored), std::string::npos) << stored << " in " << text;

    // Read back from the file and from the compact text, every name, value and child is there again.
    XMLStringInputStream stream(compact);
    EXPECT_EQ(Dump(XMLSection(path.c_str(), false)), expected);
    EXPECT_EQ(Dump(XMLSection(&stream, false)), expected);

    // Names as people write them stand as they are; hand-written escapes are found by their plain names.
    EXPECT_EQ(korva::EncodeXMLName("grid_x") + "|" + korva::EncodeXMLName("_x12 "), "grid_x|_x005F_x12_x0020_");
    XMLStringInputStream handWritten("<Tessmark grid_x='1' _x0041_='2'><my_x0020_list/><_x0042_/></Tessmark>");
    XMLSection section(&handWritten, false);
    EXPECT_EQ(Key(section, "A"), "2");
    ASSERT_TRUE(section.WriteKey("A", "3"));
    EXPECT_EQ(section.GetKeyNames(), (Names{"grid_x", "A"})) << "updated where it stands";
    EXPECT_EQ(section.GetSectionNames(), (Names{"my list", "B"}));
    EXPECT_TRUE(section.HasSection("B", 1));

    // The text: one element a line, indented by tabs, as in the file; or compact.
    XMLSection small;
    Section child(small.CreateSubSection("Child"));
    child->WriteKey("text", "two\nlines");
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    EXPECT_EQ(Rendered(small), declaration + "\n<Tessmark>\n\t<Child text=\"two&#10;lines\" />\n</Tessmark>\n");
    EXPECT_EQ(Rendered(small, false), declaration + "<Tessmark><Child text=\"two&#10;lines\"/></Tessmark>");
}

TEST(XMLSectionTest, ViewsShareOneDocumentMoveBetweenSiblingsAndOutliveDeletion)
{
    TempDir dir;
    const std::string path = dir.File("shared.xml");
    auto* top = new XMLSection(path.c_str(), true);
    Section child(top->CreateSubSection("Child")), copy(top->Copy());
    copy->WriteKey("fromCopy", "1");
    EXPECT_EQ(Key(*top, "fromCopy"), "1");
    delete top;   // the child view outlives the section it came from
    ASSERT_TRUE(child->WriteKey("fromChild", "2"));
    ASSERT_TRUE(child->Flush()) << "any view writes the whole document";
    XMLSection reread(path.c_str(), false);
    Section readChild(reread.CopyAndChangeSubSection("Child"));
    ASSERT_TRUE(readChild);
    EXPECT_EQ(Key(reread, "fromCopy") + Key(*readChild, "fromChild"), "12");

    // ChangeSection moves to a sibling, making it; the top section has none and stays.
    readChild->ChangeSection("Second");
    EXPECT_TRUE(readChild->IsEmpty() && readChild->WriteKey("k", "") && !readChild->IsEmpty());
    readChild->ChangeSection("Child");
    EXPECT_EQ(Key(*readChild, "k"), "<missing>");
    reread.ChangeSection("Elsewhere");
    EXPECT_EQ(reread.GetSectionNames(), (Names{"Child", "Second"}));
    EXPECT_FALSE(reread.WriteKey("k", static_cast<const char*>(nullptr)) || reread.WriteKey(nullptr, "v"));

    // Deleting a section leaves its views, and those below, on nothing.
    XMLSection root;
    Section a(root.CreateSubSection("A"));
    Section b(a->CreateSubSection("B"));
    b->WriteKey("k", "v");
    Section deleter(root.CopyAndChangeSubSection("A"));
    ASSERT_TRUE(deleter->DeleteSection());
    EXPECT_FALSE(root.HasSection("A", -1));
    for (ConfigurationSection* gone : {a.get(), b.get(), deleter.get()}) {
        std::string value;
        EXPECT_TRUE(!gone->ReadKey("k", value) && !gone->WriteKey("k", "v") && !gone->DeleteSection() &&
                    gone->IsEmpty() && !Section(gone->CreateSubSection("C")));
    }
    // The view that stood on A still knows A's siblings; a view below A has nowhere to go.
    deleter->ChangeSection("Sibling");
    ASSERT_TRUE(deleter->WriteKey("here", "yes"));
    Section sibling(root.CopyAndChangeSubSection("Sibling"));
    ASSERT_TRUE(sibling);
    EXPECT_EQ(Key(*sibling, "here"), "yes");
    b->ChangeSection("Anywhere");
    EXPECT_FALSE(b->WriteKey("k", "v"));
    // The top section is emptied and stays usable.
    ASSERT_TRUE(root.WriteKey("top", "1") && root.DeleteSection());
    EXPECT_TRUE(root.IsEmpty() && !sibling->WriteKey("k", "v") && root.WriteKey("again", "1"));
}

TEST(XMLSectionTest, ManyKeysInOneSectionStayConsistent)
{
    // Big sections are looked up through an index that deletions must not outlive.
    XMLSection root;
    Section other(root.CreateSubSection("Other"));
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(root.WriteKey(("k" + std::to_string(i)).c_str(), std::to_string(i).c_str()));
    for (int i = 199; i >= 0; --i) {
        ASSERT_EQ(Key(root, ("k" + std::to_string(i)).c_str()), std::to_string(i));
        other->WriteKey("between", "lookups");
    }
    for (int i = 1; i < 200; i += 2)
        ASSERT_TRUE(root.DeleteKey(("k" + std::to_string(i)).c_str()));
    EXPECT_EQ(Key(root, "k3"), "<missing>");
    ASSERT_TRUE(root.WriteKey("k3", "back") && root.WriteKey("k198", "changed"));
    const Names names = root.GetKeyNames();
    EXPECT_EQ(std::to_string(names.size()) + names[99] + names.back() + Key(root, "k198"), "101k198k3changed");
}

TEST(XMLSectionTest, WriteToSectionCopiesIntoAnyBackEnd)
{
    XMLSection source((kData + "HandWritten.xml").c_str(), false);
    XMLSection target;
    target.WriteKey("kept", "yes");
    Section options(target.CreateSubSection("Options"));
    options->WriteKey("Colour", "blue");
    ASSERT_TRUE(source.WriteToSection(&target));
    EXPECT_EQ(Key(target, "kept") + Key(*options, "Colour"), "yesred") << "kept, and copied keys overwrite";
    target.DeleteKey("kept");
    EXPECT_EQ(Dump(target), Dump(source));
    // Again: the repeated children are matched by index, nothing doubles.
    ASSERT_TRUE(source.WriteToSection(&target));
    EXPECT_EQ(Dump(target), Dump(source));

    // Into its own child: what was there before the copy began, once.
    Section child(target.CreateSubSection("Child"));
    child->WriteKey("c", "2");
    ASSERT_TRUE(target.WriteToSection(child.get()));
    Section grandChild(child->CopyAndChangeSubSection("Child"));
    ASSERT_TRUE(grandChild);
    EXPECT_EQ(Key(*child, "Version") + Key(*grandChild, "c"), "22");
    EXPECT_FALSE(grandChild->HasSection("Child", -1));

    // Into an INI file, which has no sub-sections: the keys.
    TempDir dir;
    const std::string path = dir.File("copy.ini");
    ASSERT_TRUE(source.ChangeSubSection("Options"));
    IniFileSection ini(path.c_str(), "Options");
    ASSERT_TRUE(source.WriteToSection(&ini));
    IniFileSection reread(path.c_str(), "Options");
    EXPECT_EQ(reread.GetKeyNames(), (Names{"Colour", "Title", "Note", "Item"}));
    EXPECT_EQ(reread.GetSectionNames(), (Names{"Options"}));
}

TEST(XMLSectionTest, SourcesThatAreNotXMLThrowAndFilesStayUntouched)
{
    TempDir dir;
    for (const auto& entry : fs::directory_iterator(kData + "bad")) {
        const std::string path = dir.File(entry.path().filename().string());
        fs::copy_file(entry.path(), path);
        const std::string before = ReadFile(path);
        const std::string why = Thrown([&] { XMLSection(path.c_str(), true).Flush(); });
        EXPECT_TRUE(why.find(path) != std::string::npos && why.find("line") != std::string::npos) << why;
        EXPECT_EQ(ReadFile(path), before) << path;
    }
    const std::string missing = dir.File("missing.xml");
    EXPECT_NE(Thrown([&] { XMLSection(missing.c_str(), false); }).find(missing), std::string::npos);
    EXPECT_THROW(XMLSection(dir.Path().c_str(), true), Exception) << "a folder is no file";

    // Resources and streams: missing ones are empty documents only when asked for.
    XMLSection defaults(30190u, false);
    ASSERT_TRUE(defaults.ChangeSubSection("AppSettings") && defaults.ChangeSubSection("Sample"));
    EXPECT_EQ(Key(defaults, "Greeting"), "Hello");
    EXPECT_TRUE(defaults.WriteKey("Greeting", "changed in memory") && defaults.Flush()) << "nowhere to write";
    EXPECT_THROW(XMLSection(999999u, false), Exception);
    EXPECT_TRUE(XMLSection(999999u, true).IsEmpty());
    EXPECT_THROW(XMLSection(static_cast<XMLInputStream*>(nullptr), false), Exception);
    XMLStringInputStream broken("<Tessmark><A></Tessmark>", "clipboard");
    EXPECT_NE(Thrown([&] { XMLSection(&broken, true); }).find("clipboard"), std::string::npos);
}

TEST(XMLSectionTest, SavingWritesOnlyChangesSafelyKeepingPermissionsAndLinks)
{
    TempDir dir;
    const std::string path = dir.File("settings.xml");
    XMLSection created(path.c_str(), true);
    EXPECT_FALSE(fs::exists(path)) << "nothing is written before Flush";
    ASSERT_TRUE(created.Flush());
    EXPECT_NE(ReadFile(path).find("<Tessmark"), std::string::npos);
    // An unchanged document is not written again.
    struct stat before, after;
    ASSERT_TRUE(stat(path.c_str(), &before) == 0 && XMLSection(path.c_str(), true).Flush());
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
    // A file of zero bytes counts as missing.
    WriteFile(path, "");
    XMLSection file(path.c_str(), false);
    ASSERT_TRUE(file.WriteKey("k", "old") && file.Flush());
    const std::string old = ReadFile(path);

    // The disk fills up half-way through the new content: the old file stays,
    // no temporary file is left, and the next Flush tries again.
    ASSERT_TRUE(file.WriteKey("big", std::string(200000, 'x')));
    EXPECT_FALSE(OnAFullDisk(4096, [&] { return file.Flush(); }));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1);
    EXPECT_EQ(ReadFile(path), old);
    EXPECT_TRUE(file.Flush());
    EXPECT_EQ(Key(XMLSection(path.c_str(), false), "big").size(), 200000u);

    // Through a link, to the file it names, with the file's permissions.
    const std::string link = dir.File("link.xml");
    fs::create_symlink("settings.xml", link);
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    XMLSection linked(link.c_str(), false);
    ASSERT_TRUE(linked.WriteKey("k", "new") && linked.Flush());
    EXPECT_TRUE(fs::is_symlink(link) && Key(XMLSection(path.c_str(), false), "k") == "new");
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}
