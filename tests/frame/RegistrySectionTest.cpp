// RegistrySection and the registry helpers, over the real store in a temp dir.

#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/WinApp.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/TsSystemInfo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <stdlib.h>

namespace {

namespace fs = std::filesystem;

constexpr unsigned long kRead = 0x20019;
constexpr unsigned long kReadWrite = 0x2001F;

class RegistrySectionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        char pattern[] = "/tmp/korva-section-XXXXXX";
        ASSERT_NE(::mkdtemp(pattern), nullptr);
        mDir = pattern;
        ::setenv("KORVA_REGISTRY_DIR", mDir.c_str(), 1);
        korva::RegistryStore::Reset();
    }
    void TearDown() override
    {
        korva::RegistryStore::Reset();
        std::error_code ignored;
        fs::remove_all(mDir, ignored);
    }

    static bool Exists(const char* path)
    {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) != ERROR_SUCCESS)
            return false;
        RegCloseKey(key);
        return true;
    }
    static void Make(const char* path)
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_CURRENT_USER, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }
    static std::vector<std::string> Children(const char* path)
    {
        std::vector<std::string> names;
        EXPECT_TRUE(TsGetRegSubKeys(HKEY_CURRENT_USER, path, names)) << path;
        return names;
    }
    // Type and size of a value, as the store has them.
    static std::pair<DWORD, DWORD> Shape(const char* path, const char* name)
    {
        HKEY key = nullptr;
        DWORD type = REG_NONE;
        DWORD size = 0;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, path, 0, KEY_READ, &key) == ERROR_SUCCESS) {
            if (RegQueryValueExA(key, name, nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
                type = size = 0xFFFFFFFF;
            RegCloseKey(key);
        }
        return {type, size};
    }

    std::string mDir;
};

TEST_F(RegistrySectionTest, ConstructorsOpenCreateOrThrowTheirTexts)
{
    try {
        RegistrySection missing(HKEY_CURRENT_USER, "Missing", kReadWrite, false);
        ADD_FAILURE() << "opened a missing key";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.Why(), LanguageString::Get(13275));
    }
    EXPECT_FALSE(Exists("Missing"));

    RegistrySection made(HKEY_CURRENT_USER, "App\\Settings", kReadWrite, true);
    EXPECT_TRUE(Exists("App\\Settings"));

    // A read-only parent cannot create: the other text.
    RegistrySection readOnly(HKEY_CURRENT_USER, "App", kRead, false);
    try {
        RegistrySection child(readOnly.GetCurrent(), "New", kReadWrite, true);
        ADD_FAILURE() << "created below a read-only key";
    } catch (const Exception& e) {
        EXPECT_STREQ(e.Why(), LanguageString::Get(13274));
    }
    EXPECT_THROW(std::unique_ptr<ConfigurationSection>(readOnly.CreateSubSection("New")), Exception);
    EXPECT_NE(std::string(LanguageString::Get(13274)), LanguageString::Get(13275));

    // Open reports instead of throwing, and keeps a key it already held open.
    RegistrySection section;
    EXPECT_FALSE(section.Open(HKEY_CURRENT_USER, "Other", kReadWrite, false));
    ASSERT_TRUE(section.Open(HKEY_CURRENT_USER, "App", kReadWrite, false));
    const HKEY first = section.GetCurrent();
    ASSERT_TRUE(section.Open(HKEY_CURRENT_USER, "Other", kReadWrite, true));
    EXPECT_EQ(RegSetValueExA(first, "still", 0, REG_SZ, reinterpret_cast<const BYTE*>("x"), 2), ERROR_SUCCESS);
    RegCloseKey(first);
}

TEST_F(RegistrySectionTest, ChangeSectionJoinsThePathAndOpensTheBareName)
{
    // Not there: the joined path is created.
    RegistrySection nested(HKEY_CURRENT_USER, "a\\b", kReadWrite, true);
    nested.ChangeSection("c");
    EXPECT_EQ(nested.GetPath(), "ac");
    ASSERT_TRUE(nested.WriteInt("v", 1));
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "ac", "v", "none"), "1");

    // There: `name` itself below the root is opened, the path still joined.
    Make("d");
    RegistrySection other(HKEY_CURRENT_USER, "x\\y", kReadWrite, true);
    other.ChangeSection("d");
    EXPECT_EQ(other.GetPath(), "xd");
    ASSERT_TRUE(other.WriteInt("w", 2));
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "d", "w", "none"), "2");
    EXPECT_FALSE(Exists("xd"));

    RegistrySection single(HKEY_CURRENT_USER, "one", kReadWrite, true);
    single.ChangeSection("two");
    EXPECT_EQ(single.GetPath(), "two");
    EXPECT_TRUE(Exists("two"));

    // When neither open nor create works, nothing moves.
    RegistrySection reader(HKEY_CURRENT_USER, "one", kRead, false);
    std::unique_ptr<ConfigurationSection> copy(reader.Copy());
    auto* section = static_cast<RegistrySection*>(copy.get());
    const HKEY before = section->GetCurrent();
    section->ChangeSection("zzz");
    EXPECT_EQ(section->GetCurrent(), before);
    EXPECT_EQ(section->GetPath(), "");
    EXPECT_FALSE(Exists("one\\zzz"));
}

TEST_F(RegistrySectionTest, SubSectionsIgnoreOrHonourTheIndexAsSettled)
{
    RegistrySection section(HKEY_CURRENT_USER, "Top\\Mid", kReadWrite, true);
    ASSERT_TRUE(section.WriteInt("here", 5));
    const HKEY before = section.GetCurrent();
    EXPECT_FALSE(section.ChangeSubSection("nothing"));
    EXPECT_EQ(section.GetCurrent(), before);
    EXPECT_EQ(section.GetPath(), "Top\\Mid");
    int value = 0;
    EXPECT_TRUE(section.ReadInt("here", value));

    std::unique_ptr<ConfigurationSection>(section.CreateSubSection("x"));
    EXPECT_TRUE(section.HasSection("x", 3));
    EXPECT_TRUE(section.HasSection("x", -1));
    EXPECT_FALSE(section.HasSection("y", -1));
    EXPECT_FALSE(section.ChangeSubSection("x", 3));

    std::unique_ptr<ConfigurationSection> indexed(section.CreateSubSection("x", 3));
    ASSERT_TRUE(indexed);
    EXPECT_EQ(static_cast<RegistrySection*>(indexed.get())->GetPath(), "x 3");
    EXPECT_EQ(static_cast<RegistrySection*>(indexed.get())->GetRoot(), section.GetCurrent());
    ASSERT_TRUE(section.ChangeSubSection("x", 3));
    EXPECT_EQ(section.GetPath(), "Top\\Mid\\x 3");
    EXPECT_TRUE(section.WriteInt("inner", 1));
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "Top\\Mid\\x 3", "inner", ""), "1");
}

TEST_F(RegistrySectionTest, IsEmptyIsTrueWhenTheKeyHoldsValues)
{
    RegistrySection section(HKEY_CURRENT_USER, "Holder", kReadWrite, true);
    std::unique_ptr<ConfigurationSection>(section.CreateSubSection("child"));
    EXPECT_FALSE(section.IsEmpty());   // children do not count
    ASSERT_TRUE(section.WriteKey("v", "x"));
    EXPECT_TRUE(section.IsEmpty());
    ASSERT_TRUE(section.DeleteKey("v"));
    EXPECT_FALSE(section.IsEmpty());
    EXPECT_FALSE(section.DeleteKey("v"));
}

TEST_F(RegistrySectionTest, IntegersAndBooleansAreDwordsOnly)
{
    RegistrySection section(HKEY_CURRENT_USER, "Numbers", kReadWrite, true);
    ASSERT_TRUE(section.WriteKey("text", "1"));
    int number = 42;
    EXPECT_FALSE(section.ReadInt("text", number));
    EXPECT_EQ(number, 42);
    bool flag = false;
    EXPECT_FALSE(section.ReadBool("text", flag));

    ASSERT_TRUE(section.WriteInt("negative", -5));
    EXPECT_EQ(Shape("Numbers", "negative"), std::make_pair(REG_DWORD, DWORD{4}));
    EXPECT_TRUE(section.ReadInt("negative", number));
    EXPECT_EQ(number, -5);
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "Numbers", "negative", ""), "4294967291");

    ASSERT_TRUE(section.WriteBool("on", true));
    EXPECT_EQ(Shape("Numbers", "on"), std::make_pair(REG_DWORD, DWORD{4}));
    ASSERT_TRUE(section.WriteInt("seven", 7));
    EXPECT_TRUE(section.ReadBool("seven", flag));
    EXPECT_TRUE(flag);
}

TEST_F(RegistrySectionTest, DeleteSectionSkipsEverySecondChild)
{
    {
        RegistrySection leaf(HKEY_CURRENT_USER, "Del\\Leaf", kReadWrite, true);
        ASSERT_TRUE(leaf.WriteInt("v", 1));
        EXPECT_TRUE(leaf.DeleteSection());
        EXPECT_FALSE(Exists("Del\\Leaf"));
    }
    {
        Make("Del\\Two\\c1");
        Make("Del\\Two\\c2");
        RegistrySection two(HKEY_CURRENT_USER, "Del\\Two", kReadWrite, false);
        EXPECT_FALSE(two.DeleteSection());
        EXPECT_EQ(Children("Del\\Two"), std::vector<std::string>{"c2"});
        // A second call finishes the job.
        EXPECT_TRUE(two.DeleteSection());
        EXPECT_FALSE(Exists("Del\\Two"));
    }
    {
        for (const char* name : {"Del\\Four\\a", "Del\\Four\\b", "Del\\Four\\c", "Del\\Four\\d"})
            Make(name);
        RegistrySection four(HKEY_CURRENT_USER, "Del\\Four", kReadWrite, false);
        EXPECT_FALSE(four.DeleteSection());
        EXPECT_EQ(Children("Del\\Four"), (std::vector<std::string>{"b", "d"}));
    }
    {
        // Children are opened with write access only, which cannot list their
        // own children: a grandchild keeps its parent alive.
        Make("Del\\Deep\\child\\grandchild");
        RegistrySection deep(HKEY_CURRENT_USER, "Del\\Deep", kReadWrite, false);
        EXPECT_FALSE(deep.DeleteSection());
        EXPECT_TRUE(Exists("Del\\Deep\\child\\grandchild"));
    }
}

TEST_F(RegistrySectionTest, DeleteRegKeyRemovesWholeTrees)
{
    EXPECT_EQ(TsDeleteRegKey(HKEY_CURRENT_USER, ""), ERROR_BADKEY);
    EXPECT_EQ(TsDeleteRegKey(HKEY_CURRENT_USER, nullptr), ERROR_BADKEY);
    EXPECT_EQ(TsDeleteRegKey(HKEY_CURRENT_USER, "Nowhere"), ERROR_FILE_NOT_FOUND);
    for (const char* a : {"A", "B"})
        for (const char* b : {"x", "y"}) {
            const std::string path = std::string("Tree\\Root\\") + a + "\\" + b + "\\leaf";
            Make(path.c_str());
            ASSERT_TRUE(TsSetRegKey(HKEY_CURRENT_USER, path.c_str(), "v", "name"));
        }
    EXPECT_EQ(TsDeleteRegKey(HKEY_CURRENT_USER, "Tree\\Root"), ERROR_SUCCESS);
    EXPECT_FALSE(Exists("Tree\\Root"));
    EXPECT_TRUE(Exists("Tree"));
}

TEST_F(RegistrySectionTest, ValueHelpersReadWriteAndDelete)
{
    EXPECT_TRUE(TsDeleteRegValue(HKEY_CURRENT_USER, "No\\Such\\Key", "v"));
    ASSERT_TRUE(TsSetRegKey(HKEY_CURRENT_USER, "Helpers", "text", "name"));
    EXPECT_EQ(Shape("Helpers", "name"), std::make_pair(REG_SZ, DWORD{5}));
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "Helpers", "name", "default"), "text");
    EXPECT_FALSE(TsDeleteRegValue(HKEY_CURRENT_USER, "Helpers", "other"));
    EXPECT_TRUE(TsDeleteRegValue(HKEY_CURRENT_USER, "Helpers", "name"));
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "Helpers", "name", "default"), "default");
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "No\\Such", "name", "default"), "default");
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "No\\Such", "name", nullptr), "");

    // No value name: the default value of the sub-key, created on the way.
    ASSERT_TRUE(TsSetRegKey(HKEY_CURRENT_USER, "Helpers\\Default", "dflt", nullptr));
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "Helpers\\Default", nullptr, ""), "dflt");
    EXPECT_EQ(Shape("Helpers\\Default", ""), std::make_pair(REG_SZ, DWORD{5}));

    RegistrySection section(HKEY_CURRENT_USER, "Helpers", kReadWrite, false);
    ASSERT_TRUE(section.WriteInt("seven", 7));
    EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, "Helpers", "seven", ""), "7");

    // Writing below a key that refuses creation fails.
    RegistrySection reader(HKEY_CURRENT_USER, "Helpers", kRead, false);
    EXPECT_FALSE(TsSetRegKey(reader.GetCurrent(), "Sub", "x", "name"));

    std::vector<std::string> names{"kept"};
    EXPECT_TRUE(TsGetRegSubKeys(HKEY_CURRENT_USER, "Helpers", names));
    EXPECT_EQ(names, (std::vector<std::string>{"kept", "Default"}));
    EXPECT_FALSE(TsGetRegSubKeys(HKEY_CURRENT_USER, "No\\Such", names));
    EXPECT_EQ(names.size(), 2u);
}

TEST_F(RegistrySectionTest, WideTextIsUtf16AndTheWideWriteIsShort)
{
    RegistrySection section(HKEY_CURRENT_USER, "Wide", kReadWrite, true);
    ASSERT_TRUE(section.WriteKey("four", L"abcd"));
    HKEY key = section.GetCurrent();
    DWORD size = 0;
    ASSERT_EQ(RegQueryValueExW(key, u"four", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 5u);
    std::wstring text;
    ASSERT_TRUE(section.ReadKey("four", text));
    EXPECT_EQ(text, L"abc");   // bytes a 0 b 0 c
    ASSERT_TRUE(section.WriteKey("std", std::wstring(L"wxyz")));
    ASSERT_TRUE(section.ReadKey("std", text));
    EXPECT_EQ(text, L"wxy");

    // A full UTF-16 value reads back whole, outside the BMP too.
    const std::u16string units = u"Größe \U0001D11E";
    ASSERT_EQ(RegSetValueExW(key, u"full", 0, REG_SZ, reinterpret_cast<const BYTE*>(units.c_str()),
                             static_cast<DWORD>((units.size() + 1) * 2)),
              ERROR_SUCCESS);
    ASSERT_TRUE(section.ReadKey("full", text));
    EXPECT_EQ(text, L"Größe \U0001D11E");
    wchar_t buffer[16];
    ASSERT_TRUE(section.ReadKey("full", buffer, 16));
    EXPECT_EQ(std::wstring(buffer), L"Größe \U0001D11E");
    EXPECT_FALSE(section.ReadKey("full", buffer, 4));

    // Narrow text: REG_SZ with its terminator, read up to the first null.
    ASSERT_TRUE(section.WriteKey("narrow", "äbc"));
    EXPECT_EQ(Shape("Wide", "narrow"), std::make_pair(REG_SZ, DWORD{5}));
    std::string narrow;
    ASSERT_TRUE(section.ReadKey("narrow", narrow));
    EXPECT_EQ(narrow, "äbc");
    ASSERT_EQ(RegSetValueExA(key, "unterminated", 0, REG_BINARY, reinterpret_cast<const BYTE*>("raw"), 3),
              ERROR_SUCCESS);
    ASSERT_TRUE(section.ReadKey("unterminated", narrow));
    EXPECT_EQ(narrow, "raw");
}

TEST_F(RegistrySectionTest, CopiesShareTheHandleButCopyOpensANewOne)
{
    RegistrySection section(HKEY_CURRENT_USER, "Copies", kReadWrite, true);
    std::unique_ptr<ConfigurationSection> copy(section.Copy());
    ASSERT_TRUE(copy);
    auto* independent = static_cast<RegistrySection*>(copy.get());
    EXPECT_NE(independent->GetCurrent(), section.GetCurrent());
    EXPECT_EQ(independent->GetRoot(), section.GetCurrent());
    EXPECT_EQ(independent->GetPath(), "");
    ASSERT_TRUE(independent->WriteInt("v", 3));
    int value = 0;
    EXPECT_TRUE(section.ReadInt("v", value));
    EXPECT_EQ(value, 3);

    {
        RegistrySection shared(section);
        EXPECT_EQ(shared.GetCurrent(), section.GetCurrent());
        EXPECT_EQ(shared.GetPath(), "Copies");
        RegistrySection assigned;
        assigned = section;
        EXPECT_EQ(assigned.GetCurrent(), section.GetCurrent());
    }
    // The copies closed the shared handle; the original has lost its key.
    EXPECT_FALSE(section.ReadInt("v", value));
    EXPECT_TRUE(independent->ReadInt("v", value));
}

TEST_F(RegistrySectionTest, NamesComeInEnumerationOrder)
{
    RegistrySection section(HKEY_CURRENT_USER, "Names", kReadWrite, true);
    for (const char* name : {"zeta", "Alpha", "mid"})
        std::unique_ptr<ConfigurationSection>(section.CreateSubSection(name));
    EXPECT_EQ(section.GetSectionNames(), (std::vector<std::string>{"Alpha", "mid", "zeta"}));
    ASSERT_TRUE(section.WriteInt("b", 1));
    ASSERT_TRUE(section.WriteKey("A", "x"));
    EXPECT_EQ(section.GetKeyNames(), (std::vector<std::string>{"A", "b"}));
    EXPECT_TRUE(section.HasKey("a"));
    EXPECT_TRUE(RegistrySection().GetSectionNames().empty());
}

TEST_F(RegistrySectionTest, BaseBodiesStoreTextAndIndexedChildren)
{
    // The typed bodies of the base store text; one round trip shows the registry keeps it.
    RegistrySection section(HKEY_CURRENT_USER, "Base", kReadWrite, true);
    const double doubles[] = {-1.5, 2.0 / 3.0, 1e-310};
    section.WriteDoubleVector("doubles", doubles, 3);
    double readDoubles[4] = {};
    ASSERT_EQ(section.ReadDoubleVector("doubles", readDoubles, 4), 3);
    EXPECT_EQ(std::memcmp(readDoubles, doubles, sizeof(doubles)), 0);

    // Indexed children through the base: "item 1", "item 2", stop at the gap.
    for (int i : {1, 2, 4}) {
        std::unique_ptr<ConfigurationSection> item(section.CreateSubSection("item", i));
        ASSERT_TRUE(item->WriteInt("n", i * 10));
    }
    EXPECT_EQ(section.NumSubSections("item"), 2);
    std::unique_ptr<std::vector<std::shared_ptr<ConfigurationSection>>> all(section.GetAllSubSections("item"));
    ASSERT_EQ(all->size(), 2u);
    int n = 0;
    ASSERT_TRUE((*all)[1]->ReadInt("n", n));
    EXPECT_EQ(n, 20);
    // A copy moved into a child deletes that child, not its parent.
    std::unique_ptr<ConfigurationSection> second(section.CopyAndChangeSubSection("item", 2));
    ASSERT_TRUE(second);
    EXPECT_TRUE(second->DeleteSection());
    EXPECT_EQ(section.NumSubSections("item"), 1);
    EXPECT_TRUE(Exists("Base"));
}

TEST_F(RegistrySectionTest, BaseKeyNameComesFromTheApplication)
{
    ASSERT_EQ(WinApp::GetApp(), nullptr);
    const std::string fallback = "SOFTWARE\\Tessmark\\" + TsSystemInfo::GetApplicationName() + "\\" +
                                 TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort);
    EXPECT_EQ(std::string(GetRegistryBaseKeyName()), fallback);
    {
        WinApp app("Probe");
        EXPECT_EQ(WinApp::GetApp(), &app);
        app.SetProfileName("Custom");
        app.SetRegistryKey("Acme");   // resets the profile to the application name
        EXPECT_STREQ(GetRegistryBaseKeyName(), "SOFTWARE\\Acme\\Probe");
        app.SetProfileName("Probe\\2.1");
        EXPECT_STREQ(GetRegistryBaseKeyName(), "SOFTWARE\\Acme\\Probe\\2.1");
    }
    EXPECT_EQ(WinApp::GetApp(), nullptr);
    EXPECT_EQ(std::string(GetRegistryBaseKeyName()), fallback);
}

} // namespace
