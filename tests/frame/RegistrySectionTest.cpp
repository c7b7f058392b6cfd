// RegistrySection and the registry helpers, over the real store in a temp dir.
// Several odd results are the settled behaviour that stored settings rely on.

#include "MdiFrameTestSupport.h"

#include <KORVAutl/Exception.h>
#include <KORVAutl/TsSystemInfo.h>

namespace {

constexpr unsigned long kRead = 0x20019;
constexpr unsigned long kReadWrite = 0x2001F;
const HKEY kUser = HKEY_CURRENT_USER;
using Names = std::vector<std::string>;
using Section = std::unique_ptr<ConfigurationSection>;

class RegistrySectionTest : public korva::test::MdiFrameFixture
{
protected:
    RegistrySectionTest() : MdiFrameFixture(nullptr) {}

    static bool Exists(const char* path)
    {
        HKEY key = nullptr;
        return RegOpenKeyExA(kUser, path, 0, KEY_READ, &key) == ERROR_SUCCESS && RegCloseKey(key) == ERROR_SUCCESS;
    }
    static void Make(const char* path) { RegistrySection(kUser, path, kReadWrite, true); }
    static std::pair<DWORD, DWORD> Shape(const char* path, const char* name)
    {
        DWORD type = REG_NONE, size = 0;
        HKEY key = nullptr;
        if (RegOpenKeyExA(kUser, path, 0, KEY_READ, &key) == ERROR_SUCCESS)
            RegQueryValueExA(key, name, nullptr, &type, nullptr, &size), RegCloseKey(key);
        return {type, size};
    }
};

TEST_F(RegistrySectionTest, ConstructorsOpenCreateOrThrowTheirTexts)
{
    EXPECT_EQ(Thrown([] { RegistrySection(kUser, "Missing", kReadWrite, false); }), LanguageString::Get(13275));
    RegistrySection made(kUser, "App\\Settings", kReadWrite, true);
    EXPECT_TRUE(Exists("App\\Settings"));

    // A read-only parent cannot create: the other text, from the sub-section maker too.
    RegistrySection readOnly(kUser, "App", kRead, false);
    EXPECT_EQ(Thrown([&] { RegistrySection(readOnly.GetCurrent(), "New", kReadWrite, true); }), LanguageString::Get(13274));
    EXPECT_THROW(Section(readOnly.CreateSubSection("New")), Exception);
    EXPECT_FALSE(RegistrySection().Open(kUser, "Other", kReadWrite, false)) << "Open reports instead of throwing";
}

TEST_F(RegistrySectionTest, ChangeSectionJoinsThePathAndOpensTheBareName)
{
    // Not there: the joined path (parent part without its separator) is created.
    RegistrySection nested(kUser, "a\\b", kReadWrite, true);
    nested.ChangeSection("c");
    ASSERT_TRUE(nested.WriteInt("v", 1));
    EXPECT_EQ(nested.GetPath() + "|" + TsGetRegKey(kUser, "ac", "v", "none"), "ac|1");

    // There: `name` itself below the root is opened, the path still joined.
    Make("d");
    RegistrySection other(kUser, "x\\y", kReadWrite, true);
    other.ChangeSection("d");
    ASSERT_TRUE(other.WriteInt("w", 2));
    EXPECT_EQ(other.GetPath() + "|" + TsGetRegKey(kUser, "d", "w", "none"), "xd|2");
    EXPECT_FALSE(Exists("xd"));
}

TEST_F(RegistrySectionTest, SubSectionsIgnoreOrHonourTheIndexAsSettled)
{
    RegistrySection section(kUser, "Top\\Mid", kReadWrite, true);
    EXPECT_FALSE(section.ChangeSubSection("nothing"));

    // HasSection ignores the index; the indexed forms use "name index".
    Section(section.CreateSubSection("x"));
    EXPECT_TRUE(section.HasSection("x", 3) && !section.HasSection("y", -1) && !section.ChangeSubSection("x", 3));
    Section indexed(section.CreateSubSection("x", 3));
    EXPECT_EQ(static_cast<RegistrySection*>(indexed.get())->GetRoot(), section.GetCurrent());
    ASSERT_TRUE(section.ChangeSubSection("x", 3) && section.WriteInt("inner", 1));
    EXPECT_EQ(section.GetPath() + "|" + TsGetRegKey(kUser, "Top\\Mid\\x 3", "inner", ""), "Top\\Mid\\x 3|1");
}

TEST_F(RegistrySectionTest, ValuesIsEmptyAndDwordOnlyNumbers)
{
    RegistrySection section(kUser, "Numbers", kReadWrite, true);
    Section(section.CreateSubSection("child"));
    EXPECT_FALSE(section.IsEmpty()) << "IsEmpty is true when the key holds values; children do not count";
    ASSERT_TRUE(section.WriteKey("text", "1"));
    EXPECT_TRUE(section.IsEmpty());

    // Integers and booleans are DWORDs only: a text "1" is no number.
    int number = 42;
    bool flag = false;
    EXPECT_FALSE(section.ReadInt("text", number) || section.ReadBool("text", flag));
    EXPECT_EQ(number, 42);
    ASSERT_TRUE(section.WriteInt("negative", -5) && section.WriteBool("on", true) && section.WriteInt("seven", 7));
    EXPECT_EQ(Shape("Numbers", "on"), std::make_pair(REG_DWORD, DWORD{4}));
    EXPECT_TRUE(section.ReadInt("negative", number) && number == -5);
    EXPECT_EQ(TsGetRegKey(kUser, "Numbers", "negative", ""), "4294967291");
    EXPECT_TRUE(section.ReadBool("seven", flag) && flag);

    for (const char* name : {"text", "negative", "on", "seven"})
        ASSERT_TRUE(section.DeleteKey(name));
    EXPECT_FALSE(section.IsEmpty() || section.DeleteKey("text"));
}

TEST_F(RegistrySectionTest, DeleteSectionSkipsEverySecondChildButDeleteRegKeyTakesTrees)
{
    RegistrySection leaf(kUser, "Del\\Leaf", kReadWrite, true);
    EXPECT_TRUE(leaf.DeleteSection() && !Exists("Del\\Leaf"));

    Make("Del\\Two\\c1");
    Make("Del\\Two\\c2");
    RegistrySection two(kUser, "Del\\Two", kReadWrite, false);
    EXPECT_FALSE(two.DeleteSection());
    Names left;
    EXPECT_TRUE(TsGetRegSubKeys(kUser, "Del\\Two", left));
    EXPECT_EQ(left, Names{"c2"});
    EXPECT_TRUE(two.DeleteSection()) << "a second call finishes the job";

    // Children are opened with write access only, which cannot list their own
    // children: a grandchild keeps its parent alive.
    Make("Del\\Deep\\child\\grandchild");
    EXPECT_FALSE(RegistrySection(kUser, "Del\\Deep", kReadWrite, false).DeleteSection());
    EXPECT_TRUE(Exists("Del\\Deep\\child\\grandchild"));

    EXPECT_EQ(std::tuple(TsDeleteRegKey(kUser, ""), TsDeleteRegKey(kUser, nullptr), TsDeleteRegKey(kUser, "Nowhere")),
              std::tuple(ERROR_BADKEY, ERROR_BADKEY, ERROR_FILE_NOT_FOUND));
    for (const char* path : {"Tree\\Root\\A\\x\\leaf", "Tree\\Root\\A\\y\\leaf", "Tree\\Root\\B\\x\\leaf"})
        ASSERT_TRUE(TsSetRegKey(kUser, path, "v", "name"));
    EXPECT_EQ(TsDeleteRegKey(kUser, "Tree\\Root"), ERROR_SUCCESS);
    EXPECT_TRUE(!Exists("Tree\\Root") && Exists("Tree"));
}

TEST_F(RegistrySectionTest, ValueHelpersReadWriteAndDelete)
{
    ASSERT_TRUE(TsSetRegKey(kUser, "Helpers", "text", "name"));
    EXPECT_EQ(Shape("Helpers", "name"), std::make_pair(REG_SZ, DWORD{5}));
    EXPECT_EQ(TsGetRegKey(kUser, "Helpers", "name", "default"), "text");
    EXPECT_TRUE(!TsDeleteRegValue(kUser, "Helpers", "other") && TsDeleteRegValue(kUser, "Helpers", "name"));
    EXPECT_EQ(TsGetRegKey(kUser, "Helpers", "name", "default"), "default");
    EXPECT_EQ(TsGetRegKey(kUser, "No\\Such", "name", nullptr), "");
    ASSERT_TRUE(TsSetRegKey(kUser, "Helpers\\Default", "x", "name"));

    // Writing below a key that refuses creation fails.
    EXPECT_FALSE(TsSetRegKey(RegistrySection(kUser, "Helpers", kRead, false).GetCurrent(), "Sub", "x", "name"));
    Names names{"kept"};
    EXPECT_TRUE(TsGetRegSubKeys(kUser, "Helpers", names) && !TsGetRegSubKeys(kUser, "No\\Such", names));
    EXPECT_EQ(names, (Names{"kept", "Default"})) << "names are appended";
}

TEST_F(RegistrySectionTest, WideTextIsUtf16AndTheWideWriteIsShort)
{
    RegistrySection section(kUser, "Wide", kReadWrite, true);
    ASSERT_TRUE(section.WriteKey("four", L"abcd"));
    const HKEY key = section.GetCurrent();
    DWORD size = 0;
    ASSERT_EQ(RegQueryValueExW(key, u"four", nullptr, nullptr, nullptr, &size), ERROR_SUCCESS);
    EXPECT_EQ(size, 5u);
    std::wstring text;
    ASSERT_TRUE(section.ReadKey("four", text));
    EXPECT_EQ(text, L"abc");   // bytes a 0 b 0 c

    // A full UTF-16 value reads back whole, outside the BMP too.
    const std::u16string units = u"Größe \U0001D11E";
    ASSERT_EQ(RegSetValueExW(key, u"full", 0, REG_SZ, reinterpret_cast<const BYTE*>(units.c_str()),
                             static_cast<DWORD>((units.size() + 1) * 2)),
              ERROR_SUCCESS);
    ASSERT_TRUE(section.ReadKey("full", text));
    EXPECT_EQ(text, L"Größe \U0001D11E");

    // Narrow text: REG_SZ with its terminator, read up to the first null.
    ASSERT_TRUE(section.WriteKey("narrow", "äbc"));
    EXPECT_EQ(Shape("Wide", "narrow"), std::make_pair(REG_SZ, DWORD{5}));
    std::string narrow;
    EXPECT_TRUE(section.ReadKey("narrow", narrow) && narrow == "äbc");
    ASSERT_EQ(RegSetValueExA(key, "raw", 0, REG_BINARY, reinterpret_cast<const BYTE*>("raw"), 3), ERROR_SUCCESS);
    EXPECT_TRUE(section.ReadKey("raw", narrow) && narrow == "raw");
}

TEST_F(RegistrySectionTest, NamesAndIndexedChildren)
{
    RegistrySection section(kUser, "Base", kReadWrite, true);
    Section(section.CreateSubSection("zeta"));
    ASSERT_TRUE(section.WriteInt("b", 1) && section.WriteKey("A", "x"));
    EXPECT_EQ(section.GetKeyNames(), (Names{"A", "b"}));

    // Indexed children through the base: "item 1", "item 2", stop at the gap.
    for (int i : {1, 2, 4})
        Section(section.CreateSubSection("item", i));
    EXPECT_EQ(section.NumSubSections("item"), 2);
    // A copy moved into a child deletes that child, not its parent.
    EXPECT_TRUE(Section(section.CopyAndChangeSubSection("item", 2))->DeleteSection());
    EXPECT_TRUE(section.NumSubSections("item") == 1 && Exists("Base"));
    EXPECT_EQ(section.GetSectionNames(), (Names{"item 1", "item 4", "zeta"}));
}

TEST_F(RegistrySectionTest, BaseKeyNameComesFromTheApplication)
{
    const std::string fallback = "SOFTWARE\\Tessmark\\" + TsSystemInfo::GetApplicationName() + "\\" +
                                 TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort);
    // One static buffer, formatted anew on each call.
    const char* buffer = GetRegistryBaseKeyName();
    EXPECT_EQ(buffer, fallback);
    {
        WinApp app("Probe");
        app.SetProfileName("Custom");
        app.SetRegistryKey("Acme");   // resets the profile to the application name
        EXPECT_STREQ(GetRegistryBaseKeyName(), "SOFTWARE\\Acme\\Probe");
        app.SetProfileName("Probe\\2.1");
        EXPECT_STREQ(GetRegistryBaseKeyName(), "SOFTWARE\\Acme\\Probe\\2.1");
        app.SetProfileName(std::string(300, 'p').c_str());  // longer than any text before
        EXPECT_EQ(GetRegistryBaseKeyName(), buffer);
        EXPECT_EQ(std::string(buffer), "SOFTWARE\\Acme\\" + std::string(300, 'p'));
    }
    EXPECT_EQ(GetRegistryBaseKeyName(), fallback);
}

} // namespace
