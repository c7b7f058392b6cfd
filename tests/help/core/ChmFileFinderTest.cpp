// The search for help files, against the registry store and an "hh.ini" in a
// system folder of the test's own.
#include <KORVAutlwin/help/ChmFileFinder.h>
#include <KORVAutlwin/platform/Registry.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {
class ChmFileFinderTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        mRoot = fs::temp_directory_path() / ("korva-find-" + std::to_string(getpid()));
        fs::create_directories(mRoot / "shared" / "Help");
        fs::create_directories(mRoot / "system");
        fs::create_directories(mRoot / "registered");
        fs::create_directories(mRoot / "cwd");
        setenv("KORVA_REGISTRY_DIR", (mRoot / "registry").c_str(), 1);
        setenv("KORVA_WINDOWS_DIR", (mRoot / "system").c_str(), 1);
        fs::current_path(mRoot / "cwd");
        SetMachineString("Software\\Microsoft\\Windows\\CurrentVersion\\Setup", "SharedDir",
                         (mRoot / "shared").string());
        SetMachineString("Software\\Microsoft\\Windows\\HTML Help", "reg.chm", (mRoot / "registered").string());
        std::ofstream(mRoot / "system" / "hh.ini") << "[files]\nplain.chm=" << (mRoot / "medium" / "plain.chm").string()
                                                    << "\nasked.chm=" << (mRoot / "medium" / "asked.chm").string()
                                                    << ",Insert the help disc\n";
    }
    void TearDown() override { fs::current_path(fs::temp_directory_path()), fs::remove_all(mRoot); }

    static void SetMachineString(const char* key, const char* name, const std::string& value)
    {
        HKEY opened = nullptr;
        ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, key, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &opened, nullptr),
                  ERROR_SUCCESS);
        RegSetValueExA(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                       static_cast<DWORD>(value.size() + 1));
        RegCloseKey(opened);
    }
    void Touch(const fs::path& path) { std::ofstream(mRoot / path) << "x"; }

    fs::path mRoot;
};
} // namespace

TEST_F(ChmFileFinderTest, PlacesInOrder)
{
    struct Row
    {
        const char *name, *query, *file;   // file: what exists, relative to the root
        bool found;
        const char* expected;   // relative to the root, empty when not found
    } rows[] = {
        {"as given", "../shared/x.chm", "shared/x.chm", true, "shared/x.chm"},
        {"base of a missing path, either separator", "no\\where/cur.chm", "cwd/cur.chm", true, "cwd/cur.chm"},
        {"registered folder", "reg.chm", "registered/reg.chm", true, "registered/reg.chm"},
        {"registered folder without the file: system help", "reg.chm", "shared/Help/reg.chm", true,
         "shared/Help/reg.chm"},
        {"hh.ini without prompt, file missing", "plain.chm", nullptr, false, ""},
        {"nowhere at all", "absent.chm", nullptr, false, ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        if (row.file)
            Touch(row.file);
        char out[ChmFileFinder::kMaxPath] = {};
        EXPECT_EQ(ChmFileFinder::FindChmFile(row.query, out), row.found);
        if (row.found) {
            EXPECT_EQ(fs::path(out).lexically_normal(), (mRoot / row.expected).lexically_normal());
        }
        if (row.file)
            fs::remove(mRoot / row.file);
    }
}

TEST_F(ChmFileFinderTest, PromptOfHhIniRepeatsUntilCancelOrFound)
{
    const std::string medium = (mRoot / "medium" / "asked.chm").string();
    int asked = 0;
    char out[ChmFileFinder::kMaxPath] = {};
    // Cancelled at the second prompt: found all the same, with the missing path.
    EXPECT_TRUE(ChmFileFinder::FindChmFile("asked.chm", out, [&](const std::string& text) {
        EXPECT_EQ(text, "Insert the help disc");
        return ++asked < 2;
    }));
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(std::string(out), medium);
    // The medium arrives after the first prompt.
    asked = 0;
    EXPECT_TRUE(ChmFileFinder::FindChmFile("asked.chm", out, [&](const std::string&) {
        fs::create_directories(mRoot / "medium");
        Touch("medium/asked.chm");
        return ++asked > 0;
    }));
    EXPECT_EQ(asked, 1);
}

TEST(ChmFileFinderHelpers, SeparatorsAndCharacters)
{
    for (const auto& [path, expected] : std::vector<std::pair<std::string, std::string>>{
             {"/usr/share", "/usr/share/"}, {"/usr/", "/usr/"}, {"C:", "C:"}, {"a\\", "a\\"}}) {
        std::string text = path;
        ChmFileFinder::AddTrailingBackslash(text);
        EXPECT_EQ(text, expected);
    }
    // "\xC3\xA4" is one character: a search for the byte 0xA4 must not stop inside it.
    const char text[] = "\xC3\xA4/b\xC3\xA4/c";
    EXPECT_EQ(ChmFileFinder::StrChrA(text, '\xA4'), nullptr);
    EXPECT_EQ(ChmFileFinder::StrRChrA(text, '/'), text + 6);
    EXPECT_EQ(ChmFileFinder::StrChrA(text, '/'), text + 2);
}
