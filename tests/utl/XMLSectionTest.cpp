#include "TempDir.h"

#include <KORVAutl/Exception.h>
#include <KORVAutl/IniFileSection.h>
#include <KORVAutl/XMLInputStream.h>
#include <KORVAutl/XMLSection.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <sstream>

#include <sys/resource.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

using Section = std::unique_ptr<ConfigurationSection>;

const std::string kData = std::string(KORVA_SOURCE_DIR) + "/tests/utl/data/xml/";

std::string Key(const ConfigurationSection& section, const char* key)
{
    std::string value;
    return section.ReadKey(key, value) ? value : "<missing>";
}

std::string Rendered(const XMLSection& section)
{
    std::string text;
    section.Flush(text, true);
    return text;
}

// Keys and children of two sections, compared through the contract alone.
void ExpectSameTree(const ConfigurationSection& a, const ConfigurationSection& b, const std::string& where = "/")
{
    ASSERT_EQ(a.GetKeyNames(), b.GetKeyNames()) << where;
    for (const std::string& key : a.GetKeyNames())
        EXPECT_EQ(Key(a, key.c_str()), Key(b, key.c_str())) << where << key;
    ASSERT_EQ(a.GetSectionNames(), b.GetSectionNames()) << where;
    std::map<std::string, int> seen;
    for (const std::string& name : a.GetSectionNames()) {
        const int index = ++seen[name];
        Section childA(a.CopyAndChangeSubSection(name.c_str(), index));
        Section childB(b.CopyAndChangeSubSection(name.c_str(), index));
        ASSERT_TRUE(childA && childB) << where << name << " " << index;
        ExpectSameTree(*childA, *childB, where + name + "[" + std::to_string(index) + "]/");
    }
}

class FailingStream : public XMLInputStream
{
public:
    long Read(char* buffer, std::size_t size) override
    {
        if (mCalls++ == 0 && size > 5) {
            std::memcpy(buffer, "<Tess", 5);
            return 5;
        }
        return -1;
    }
    std::string GetName() const override { return "the failing stream"; }

private:
    int mCalls = 0;
};

} // namespace

TEST(XMLSectionTest, KeysAreReadAsAttributesAndAsTextOnlyElements)
{
    XMLSection file((kData + "HandWritten.xml").c_str(), false);
    EXPECT_EQ(Key(file, "Version"), "2");
    ASSERT_TRUE(file.ChangeSubSection("Options"));

    EXPECT_EQ(Key(file, "Title"), "My title");
    EXPECT_EQ(Key(file, "Note"), "a < b");
    EXPECT_EQ(file.GetKeyNames(), (std::vector<std::string>{"Colour", "Title", "Note", "Item"}));
    // An empty element and an element with attributes are sections, not keys.
    EXPECT_FALSE(file.HasKey("Empty"));
    EXPECT_FALSE(file.HasSection("Title", -1));
    EXPECT_EQ(file.GetSectionNames(), (std::vector<std::string>{"Empty", "Styled", "Item", "Item"}));
    EXPECT_EQ(file.NumSubSections("Item"), 2);
    Section second(file.CopyAndChangeSubSection("Item", 1));
    ASSERT_TRUE(second);
    EXPECT_EQ(Key(*second, "Name"), "one");

    // Writing an element key turns it into an attribute; the sections of the
    // same name stay where they are.
    ASSERT_TRUE(file.WriteKey("Title", "New title"));
    ASSERT_TRUE(file.WriteKey("Item", "changed"));
    EXPECT_EQ(file.GetKeyNames(), (std::vector<std::string>{"Colour", "Title", "Item", "Note"}));
    EXPECT_EQ(file.NumSubSections("Item"), 2);
    const std::string text = Rendered(file);
    EXPECT_NE(text.find("Title=\"New title\""), std::string::npos) << text;
    EXPECT_EQ(text.find("<Title>"), std::string::npos) << text;
    EXPECT_EQ(text.find(">first<"), std::string::npos) << text;
    // What a person wrote besides the settings is kept.
    EXPECT_NE(text.find("<!-- Settings written by hand"), std::string::npos);
    EXPECT_TRUE(file.DeleteKey("Note"));
    EXPECT_FALSE(file.DeleteKey("Note"));
}

TEST(XMLSectionTest, IndexedChildrenAreTheNthElementOfTheirName)
{
    XMLSection root;
    Section other(root.CreateSubSection("Other"));
    Section third(root.CreateSubSection("Item", 3));
    ASSERT_TRUE(third);
    third->WriteKey("n", "3");
    EXPECT_EQ(root.NumSubSections("Item"), 3);
    EXPECT_FALSE(root.HasSection("Item", 4));
    EXPECT_FALSE(root.HasSection("Item", 0));
    EXPECT_EQ(root.CreateSubSection("Item", 0), nullptr);

    // Asking for an existing index creates nothing.
    Section again(root.CreateSubSection("Item", 2));
    again->WriteKey("n", "2");
    EXPECT_EQ(root.NumSubSections("Item"), 3);

    std::unique_ptr<std::vector<std::shared_ptr<ConfigurationSection>>> all(root.GetAllSubSections("Item"));
    ASSERT_EQ(all->size(), 3u);
    EXPECT_EQ(Key(*(*all)[0], "n"), "<missing>");
    EXPECT_EQ(Key(*(*all)[1], "n"), "2");
    EXPECT_EQ(Key(*(*all)[2], "n"), "3");

    XMLSection moving(root);
    EXPECT_FALSE(moving.ChangeSubSection("Item", 4));
    EXPECT_TRUE(moving.HasSection("Other", -1)) << "a failed move stays";
    ASSERT_TRUE(moving.ChangeSubSection("Item", 3));
    EXPECT_EQ(Key(moving, "n"), "3");
}

TEST(XMLSectionTest, NamesThatAreNoXMLNamesRoundTrip)
{
    TempDir dir;
    const std::string path = dir.File("names.xml");
    const std::vector<std::string> names = {"Last file", "3D view", "CUSTOM_COLOR_3", "a:b", "_x0020_", "",
                                            "\xF0\x9F\x98\x80", "bad \xFF byte", "<&>\"'"};
    {
        XMLSection file(path.c_str(), true);
        for (const std::string& name : names) {
            ASSERT_TRUE(file.WriteKey(name.c_str(), ("value of " + name).c_str()));
            Section child(file.CreateSubSection(name.c_str()));
            ASSERT_TRUE(child);
            child->WriteKey(name.c_str(), "inner");
        }
        ASSERT_TRUE(file.Flush());
    }
    const std::string text = ReadFile(path);
    EXPECT_NE(text.find("Last_x0020_file=\""), std::string::npos) << text;
    EXPECT_NE(text.find("<_x0033_D_x0020_view"), std::string::npos) << text;
    EXPECT_NE(text.find("CUSTOM_COLOR_3=\""), std::string::npos) << text;

    XMLSection reread(path.c_str(), false);
    EXPECT_EQ(reread.GetKeyNames(), names);
    EXPECT_EQ(reread.GetSectionNames(), names);
    for (const std::string& name : names) {
        EXPECT_EQ(Key(reread, name.c_str()), "value of " + name);
        Section child(reread.CopyAndChangeSubSection(name.c_str()));
        ASSERT_TRUE(child) << name;
        EXPECT_EQ(Key(*child, name.c_str()), "inner");
    }
}

TEST(XMLSectionTest, HandWrittenNamesAreFoundByTheirPlainNames)
{
    XMLStringInputStream stream("<Tessmark grid_x='1' _x0041_='2'><my_x0020_list/><_x0042_/></Tessmark>");
    XMLSection section(&stream, false);
    EXPECT_EQ(section.GetKeyNames(), (std::vector<std::string>{"grid_x", "A"}));
    EXPECT_EQ(Key(section, "grid_x"), "1");
    EXPECT_EQ(Key(section, "A"), "2");
    ASSERT_TRUE(section.WriteKey("A", "3"));
    EXPECT_EQ(section.GetKeyNames(), (std::vector<std::string>{"grid_x", "A"})) << "updated where it stands";
    EXPECT_EQ(section.GetSectionNames(), (std::vector<std::string>{"my list", "B"}));
    EXPECT_TRUE(section.HasSection("B", 1));

    Section copy(section.CreateSubSection("copy"));
    ASSERT_TRUE(section.WriteToSection(copy.get()));
    EXPECT_EQ(Key(*copy, "A"), "3");
    EXPECT_TRUE(copy->HasSection("B", -1));
}

TEST(XMLSectionTest, NameEncodingIsReversibleAndYieldsPlainNames)
{
    std::mt19937 random(4711);
    const std::string alphabet = std::string("ab_xX0123456789 -.:\\/<>&\"'\t\n") + "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\xFF\x80";
    for (int round = 0; round < 5000; ++round) {
        std::string name;
        const int length = static_cast<int>(random() % 12);
        for (int i = 0; i < length; ++i)
            name += alphabet[random() % alphabet.size()];
        const std::string encoded = korva::EncodeXMLName(name);
        ASSERT_EQ(korva::DecodeXMLName(encoded), name) << encoded;
        ASSERT_FALSE(encoded.empty());
        ASSERT_EQ(encoded.find_first_of(" \t\n:\\/<>&\"'"), std::string::npos) << encoded;
        ASSERT_EQ(std::string("0123456789-.").find(encoded[0]), std::string::npos) << encoded;
    }
    EXPECT_EQ(korva::EncodeXMLName("grid_x"), "grid_x") << "as people write names by hand";
    EXPECT_EQ(korva::EncodeXMLName("_x0020_"), "_x005F_x0020_");
    EXPECT_EQ(korva::EncodeXMLName("_x12 "), "_x005F_x12_x0020_");
}

TEST(XMLSectionTest, ViewsShareOneDocument)
{
    TempDir dir;
    const std::string path = dir.File("shared.xml");
    Section child;
    {
        auto* top = new XMLSection(path.c_str(), true);
        child.reset(top->CreateSubSection("Child"));
        Section copy(top->Copy());
        copy->WriteKey("fromCopy", "1");
        EXPECT_EQ(Key(*top, "fromCopy"), "1");
        delete top;   // the child view outlives the section it came from
    }
    ASSERT_TRUE(child->WriteKey("fromChild", "2"));
    ASSERT_TRUE(child->Flush()) << "any view writes the whole document";

    XMLSection reread(path.c_str(), false);
    EXPECT_EQ(Key(reread, "fromCopy"), "1");
    ASSERT_TRUE(reread.ChangeSubSection("Child"));
    EXPECT_EQ(Key(reread, "fromChild"), "2");
}

TEST(XMLSectionTest, DeletingASectionLeavesItsViewsOnNothing)
{
    XMLSection root;
    Section a(root.CreateSubSection("A"));
    Section b(a->CreateSubSection("B"));
    b->WriteKey("k", "v");
    Section deleter(root.CopyAndChangeSubSection("A"));

    ASSERT_TRUE(deleter->DeleteSection());
    EXPECT_FALSE(root.HasSection("A", -1));
    for (ConfigurationSection* gone : {a.get(), b.get(), deleter.get()}) {
        std::string value;
        EXPECT_FALSE(gone->ReadKey("k", value));
        EXPECT_FALSE(gone->WriteKey("k", "v"));
        EXPECT_TRUE(gone->IsEmpty());
        EXPECT_EQ(gone->CreateSubSection("C"), nullptr);
        EXPECT_FALSE(gone->DeleteSection());
    }
    // The view that stood on A still knows A's siblings.
    deleter->ChangeSection("Sibling");
    ASSERT_TRUE(deleter->WriteKey("here", "yes"));
    Section sibling(root.CopyAndChangeSubSection("Sibling"));
    ASSERT_TRUE(sibling);
    EXPECT_EQ(Key(*sibling, "here"), "yes");
    // A view below the deleted element has nowhere to go.
    b->ChangeSection("Anywhere");
    EXPECT_FALSE(b->WriteKey("k", "v"));

    // The top section is emptied and stays usable.
    root.WriteKey("top", "1");
    ASSERT_TRUE(root.DeleteSection());
    EXPECT_TRUE(root.IsEmpty());
    EXPECT_FALSE(sibling->WriteKey("k", "v"));
    EXPECT_TRUE(root.WriteKey("again", "1"));
}

TEST(XMLSectionTest, ChangeSectionMovesToASiblingAndCreatesIt)
{
    XMLSection root;
    Section section(root.CreateSubSection("First"));
    section->ChangeSection("Second");
    section->WriteKey("k", "2");
    EXPECT_EQ(root.GetSectionNames(), (std::vector<std::string>{"First", "Second"}));
    section->ChangeSection("First");
    EXPECT_EQ(Key(*section, "k"), "<missing>");

    // The top section has no siblings: it stays.
    root.ChangeSection("Elsewhere");
    root.WriteKey("top", "1");
    EXPECT_EQ(root.GetSectionNames(), (std::vector<std::string>{"First", "Second"}));
    EXPECT_EQ(Key(root, "top"), "1");
}

TEST(XMLSectionTest, IsEmptyMeansNoKeysAndNoChildren)
{
    XMLSection root;
    Section child(root.CreateSubSection("Child"));
    EXPECT_TRUE(child->IsEmpty());
    EXPECT_FALSE(root.IsEmpty());
    child->WriteKey("k", "");
    EXPECT_FALSE(child->IsEmpty());
    EXPECT_FALSE(child->WriteKey("k", static_cast<const char*>(nullptr)));
    EXPECT_FALSE(child->WriteKey(nullptr, "v"));
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
    ASSERT_TRUE(root.WriteKey("k3", "back"));
    ASSERT_TRUE(root.WriteKey("k198", "changed"));
    const std::vector<std::string> names = root.GetKeyNames();
    ASSERT_EQ(names.size(), 101u);
    EXPECT_EQ(names[99], "k198");
    EXPECT_EQ(names.back(), "k3");
    EXPECT_EQ(Key(root, "k198"), "changed");
}

TEST(XMLSectionTest, WriteToSectionCopiesEverythingIntoAnotherDocument)
{
    XMLSection source((kData + "HandWritten.xml").c_str(), false);
    XMLSection target;
    target.WriteKey("kept", "yes");
    Section options(target.CreateSubSection("Options"));
    options->WriteKey("Colour", "blue");

    ASSERT_TRUE(source.WriteToSection(&target));
    EXPECT_EQ(Key(target, "kept"), "yes");
    EXPECT_EQ(Key(*options, "Colour"), "red") << "copied keys overwrite";
    target.DeleteKey("kept");
    ExpectSameTree(source, target);

    // Again: the repeated children are matched by index, nothing doubles.
    ASSERT_TRUE(source.WriteToSection(&target));
    ExpectSameTree(source, target);
}

TEST(XMLSectionTest, WriteToSectionIntoItsOwnChildCopiesWhatWasThere)
{
    XMLSection root;
    root.WriteKey("k", "1");
    Section child(root.CreateSubSection("Child"));
    child->WriteKey("c", "2");

    ASSERT_TRUE(root.WriteToSection(child.get()));
    EXPECT_EQ(Key(*child, "k"), "1");
    Section grandChild(child->CopyAndChangeSubSection("Child"));
    ASSERT_TRUE(grandChild);
    EXPECT_EQ(Key(*grandChild, "c"), "2");
    EXPECT_FALSE(grandChild->HasSection("Child", -1));
}

TEST(XMLSectionTest, WriteToSectionIntoAnIniFileCopiesTheKeys)
{
    TempDir dir;
    const std::string path = dir.File("copy.ini");
    XMLSection source((kData + "HandWritten.xml").c_str(), false);
    ASSERT_TRUE(source.ChangeSubSection("Options"));
    IniFileSection target(path.c_str(), "Options");

    ASSERT_TRUE(source.WriteToSection(&target));
    IniFileSection reread(path.c_str(), "Options");
    EXPECT_EQ(reread.GetKeyNames(), (std::vector<std::string>{"Colour", "Title", "Note", "Item"}));
    EXPECT_EQ(Key(reread, "Note"), "a < b");
    EXPECT_EQ(reread.GetSectionNames(), (std::vector<std::string>{"Options"}));
}

TEST(XMLSectionTest, FlushTextIsIndentedOrCompact)
{
    XMLSection root;
    Section child(root.CreateSubSection("Child"));
    child->WriteKey("text", "two\nlines");
    std::string indented, compact;
    ASSERT_TRUE(root.Flush(indented, true));
    ASSERT_TRUE(root.Flush(compact, false));
    EXPECT_EQ(indented.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Tessmark>\n\t<Child text=\"two&#10;lines\" />", 0), 0u)
        << indented;
    EXPECT_EQ(compact, "<?xml version=\"1.0\" encoding=\"UTF-8\"?><Tessmark><Child text=\"two&#10;lines\"/></Tessmark>");
}

TEST(XMLSectionTest, FilesThatAreNotXMLThrowAndStayUntouched)
{
    TempDir dir;
    for (const auto& entry : fs::directory_iterator(kData + "bad")) {
        const std::string path = dir.File(entry.path().filename().string());
        fs::copy_file(entry.path(), path);
        const std::string before = ReadFile(path);
        try {
            XMLSection file(path.c_str(), true);
            ADD_FAILURE() << path << " was accepted";
            file.Flush();
        } catch (const Exception& e) {
            const std::string why = e.Why();
            EXPECT_NE(why.find(path), std::string::npos) << why;
            EXPECT_NE(why.find("line"), std::string::npos) << why;
        }
        EXPECT_EQ(ReadFile(path), before) << path;
    }
}

TEST(XMLSectionTest, MissingAndEmptyFiles)
{
    TempDir dir;
    const std::string missing = dir.File("missing.xml");
    try {
        XMLSection file(missing.c_str(), false);
        ADD_FAILURE() << "a missing file was accepted";
    } catch (const Exception& e) {
        EXPECT_NE(std::string(e.Why()).find(missing), std::string::npos);
    }
    EXPECT_THROW(XMLSection(dir.Path().c_str(), true), Exception) << "a folder is no file";
    {
        XMLSection file(missing.c_str(), true);
        EXPECT_FALSE(fs::exists(missing)) << "nothing is written before Flush";
        ASSERT_TRUE(file.Flush());
    }
    EXPECT_NE(ReadFile(missing).find("<Tessmark"), std::string::npos);

    // An unchanged document is not written again.
    struct stat before, after;
    ASSERT_EQ(stat(missing.c_str(), &before), 0);
    {
        XMLSection file(missing.c_str(), true);
        ASSERT_TRUE(file.Flush());
    }
    ASSERT_EQ(stat(missing.c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);

    const std::string empty = dir.File("empty.xml");
    WriteFile(empty, "");
    XMLSection file(empty.c_str(), false);
    file.WriteKey("k", "v");
    ASSERT_TRUE(file.Flush());
    EXPECT_EQ(Key(XMLSection(empty.c_str(), false), "k"), "v");
}

TEST(XMLSectionTest, AFailedSaveLeavesTheOldFileAndNoLitter)
{
    TempDir dir;
    const std::string path = dir.File("settings.xml");
    XMLSection file(path.c_str(), true);
    file.WriteKey("k", "old");
    ASSERT_TRUE(file.Flush());
    const std::string old = ReadFile(path);

    // The disk fills up half-way through the new content.
    file.WriteKey("big", std::string(200000, 'x'));
    struct rlimit saved;
    getrlimit(RLIMIT_FSIZE, &saved);
    const auto previous = std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limited = saved;
    limited.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const bool written = file.Flush();
    setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previous);
    EXPECT_FALSE(written);
    EXPECT_EQ(ReadFile(path), old);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.Path()), fs::directory_iterator()), 1)
        << "the temporary file is removed";

    // The folder is gone: the file it held is intact where it went.
    fs::rename(dir.Path(), dir.Path() + ".moved");
    const bool writtenWithoutFolder = file.Flush();
    fs::rename(dir.Path() + ".moved", dir.Path());
    EXPECT_FALSE(writtenWithoutFolder);
    EXPECT_EQ(ReadFile(path), old);

    // Once the disk has room again the same document is written.
    EXPECT_TRUE(file.Flush());
    EXPECT_EQ(Key(XMLSection(path.c_str(), false), "big").size(), 200000u);
}

TEST(XMLSectionTest, SavingKeepsPermissionsAndFollowsLinks)
{
    TempDir dir;
    const std::string real = dir.File("real.xml");
    const std::string link = dir.File("link.xml");
    WriteFile(real, "<Tessmark/>");
    fs::permissions(real, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fs::create_symlink("real.xml", link);

    XMLSection file(link.c_str(), false);
    file.WriteKey("k", "v");
    ASSERT_TRUE(file.Flush());
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(Key(XMLSection(real.c_str(), false), "k"), "v");
    EXPECT_EQ(fs::status(real).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST(XMLSectionTest, ResourcesAndStreams)
{
    XMLSection defaults(30190u, false);
    ASSERT_TRUE(defaults.ChangeSubSection("AppSettings"));
    ASSERT_TRUE(defaults.ChangeSubSection("Sample"));
    EXPECT_EQ(Key(defaults, "Greeting"), "Hello");
    defaults.WriteKey("Greeting", "changed in memory");
    EXPECT_TRUE(defaults.Flush()) << "nothing to write, nothing failed";

    EXPECT_THROW(XMLSection(999999u, false), Exception);
    EXPECT_TRUE(XMLSection(999999u, true).IsEmpty());

    FailingStream failing;
    try {
        XMLSection section(&failing, true);
        ADD_FAILURE() << "a failing stream was accepted";
    } catch (const Exception& e) {
        EXPECT_NE(std::string(e.Why()).find("the failing stream"), std::string::npos);
    }
    EXPECT_THROW(XMLSection(static_cast<XMLInputStream*>(nullptr), false), Exception);
    XMLStringInputStream broken("<Tessmark><A></Tessmark>", "clipboard");
    EXPECT_THROW(XMLSection(&broken, true), Exception);
}
