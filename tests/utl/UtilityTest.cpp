#include "TempDir.h"

#include <KORVAutl/Exception.h>
#include <KORVAutl/FNClass.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutlwin/platform/TsUnicode.h>

#include <sys/stat.h>

#include <map>
#include <regex>
#include <set>

KORVA_DECLARE_VERSION(3, 14, 15, 92);

TEST(ExceptionTest, CarriesItsTextAndCauses)
{
    const Exception outer("cannot close the project", Exception("cannot save settings", Exception("disk full")));
    EXPECT_STREQ(outer.Cause()->Why(), "cannot save settings");
    EXPECT_EQ(outer.RecursiveWhy(), "cannot close the project\ncannot save settings\ndisk full");
}

TEST(LanguageStringTest, EveryIdTheCodeUsesHasAText)
{
    // Scans the sources for LanguageString::Get(x) and TsString::Format(x, ...), where x
    // is a number or a constant of the same file ("constexpr unsigned int kName = 13274;").
    const std::regex use(R"((LanguageString::Get|TsString::Format)\(\s*(\w+)\s*[,)])");
    const std::regex constant(R"(constexpr\s+unsigned(?:\s+int)?\s+(\w+)\s*=\s*(\d+)u?\s*;)");
    std::set<unsigned> missing;
    int uses = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(KORVA_SOURCE_DIR)) {
        const std::string path = entry.path().string();
        if (path.find("/build/") != std::string::npos || path.find("/tests/") != std::string::npos ||
            (entry.path().extension() != ".cpp" && entry.path().extension() != ".h"))
            continue;
        const std::string text = ReadFile(path);
        std::map<std::string, unsigned> ids;
        for (std::sregex_iterator it(text.begin(), text.end(), constant), end; it != end; ++it)
            ids[(*it)[1]] = static_cast<unsigned>(std::stoul((*it)[2]));
        for (std::sregex_iterator it(text.begin(), text.end(), use), end; it != end; ++it) {
            const std::string argument = (*it)[2];
            if (std::isdigit(static_cast<unsigned char>(argument[0])))
                ids[argument] = static_cast<unsigned>(std::stoul(argument));
            if (ids.count(argument) && ++uses && !LanguageString::Has(ids[argument]))
                missing.insert(ids[argument]);
        }
    }
    EXPECT_GT(uses, 0);
    EXPECT_TRUE(missing.empty()) << "first id without text: " << *missing.begin();
}

TEST(LanguageStringTest, ModulesSwitchAndFallBackToEnglish)
{
    const char* english = LanguageString::Get(13274);
    ASSERT_NE(std::string(english), "");
    EXPECT_STREQ(LanguageString::Get(4000000000u), "");

    TempDir dir;
    WriteFile(dir.File("strings.txt"), "# test module\n13274\tSchl\xC3\xBCssel\\tfehlt\\n\n");
    WriteFile(dir.File("page.html"), "<p>hi</p>");
    WriteFile(dir.File("resources.txt"), "500\tHTML\tpage.html\n");
    const korva::ResourceModule* previous =
        LanguageString::SetModule(korva::ResourceModule::LoadFromDirectory(dir.Path()));
    EXPECT_STREQ(LanguageString::Get(13274), "Schl\xC3\xBCssel\tfehlt\n");
    EXPECT_STREQ(LanguageString::Get(13275), korva::EnglishResourceModule().FindString(13275));
    std::size_t size = 0;
    EXPECT_STREQ(LanguageString::GetModule()->FindResource(500, "HTML", &size), "<p>hi</p>");
    EXPECT_EQ(size, 9u);
    EXPECT_EQ(LanguageString::GetModule()->FindResource(500, "XML"), nullptr);
    LanguageString::SetModule(previous);
    EXPECT_STREQ(LanguageString::Get(13274), english) << "texts handed out earlier stay valid and unchanged";
    EXPECT_THROW(korva::ResourceModule::LoadFromDirectory(dir.File("nowhere")), Exception);
}

TEST(UnicodeTest, ConversionsRoundTripAndRepairBadInput)
{
    const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E";   // a é € 𝄞
    EXPECT_EQ(korva::Utf8ToWide(utf8), std::wstring(L"a\u00e9\u20ac\U0001D11E"));
    const std::u16string utf16 = korva::Utf8ToUtf16(utf8);
    EXPECT_EQ(utf16, std::u16string(u"a\u00e9\u20ac\U0001D11E"));   // the clef as a surrogate pair
    EXPECT_EQ(korva::Utf16ToUtf8(utf16), utf8);
    EXPECT_EQ(korva::WideToUtf8(korva::Utf16ToWide(utf16)), utf8);
    // Truncated sequences, each byte of an overlong form and lone surrogates become U+FFFD.
    EXPECT_EQ(korva::Utf8ToWide("x\xE2\x82"), std::wstring(L"x\uFFFD\uFFFD"));
    EXPECT_EQ(korva::Utf8ToWide("\xC0\xAF"), std::wstring(L"\uFFFD\uFFFD"));
    EXPECT_EQ(korva::Utf16ToWide(std::u16string(1, char16_t(0xD800))), std::wstring(L"\uFFFD"));
}

TEST(SystemInfoTest, VersionsComeFromTheFile)
{
    int major = 0, minor = 0, build = 0, revision = 0;
    ASSERT_TRUE(TsSystemInfo::GetApplicationVersion(major, minor, build, revision));
    EXPECT_EQ((std::vector<int>{major, minor, build, revision}), (std::vector<int>{3, 14, 15, 92}));
    EXPECT_EQ(TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort), "3.14");
    EXPECT_EQ(TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionLong), "3.14.15.92");
    EXPECT_EQ(TsSystemInfo::GetApplicationName(), "utl_tests");
    // A program that declares no version gives false and keeps the numbers.
    EXPECT_TRUE(!TsSystemInfo::GetApplicationVersion(major, minor, build, revision, "/bin/sh") && major == 3);
}

TEST(FileUtlTest, PathsFoldersCopiesAndIds)
{
    EXPECT_EQ(TsPathAppend("/data/", "/run.tart") + "|" + TsPathAppend("", "run.tart") + "|" +
                  TsPathAppend("/data", ""),
              "/data/run.tart|run.tart|/data");
    EXPECT_EQ(TsGetDirectory("/model.tart") + "|" + TsGetDirectory("model.tart"), "/|");
    EXPECT_EQ(TsGetFileName("/data/run/model.tart"), "model.tart");
    EXPECT_EQ(TsGetFileExtension("/data/run.d/model") + "|" + TsGetFileExtension("/home/u/.profile") + "|" +
                  TsGetFileExtension("archive.tar.gz"),
              "||gz");

    FNClass name("/data/run/model.tart");
    EXPECT_EQ(name.GetDirectory() + "|" + name.GetNameAndExt(), "/data/run/|model.tart");
    name.SetNameAndExt("audit_trail.xsl");
    EXPECT_EQ(name.Merge(), "/data/run/audit_trail.xsl");
    name.SetExtension("xml");
    name.SetDirectory("/tmp");
    EXPECT_EQ(name.Merge(), "/tmp/audit_trail.xml");

    TempDir dir;
    const std::string deep = dir.File("a/b/c");
    EXPECT_TRUE(FileExist(deep.c_str()) == 0 && CreateFolder(deep.c_str()) && FileExist(deep.c_str()) == 1);

    const std::string source = dir.File("source.bin");
    std::string content(200000, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7);
    WriteFile(source, content);
    chmod(source.c_str(), 0640);
    EXPECT_EQ(FileExist(source.c_str()), 2);
    const std::string target = dir.File("a/copy.bin");
    ASSERT_TRUE(TsCopyFile(source.c_str(), target.c_str(), true));
    EXPECT_EQ(ReadFile(target), content);
    EXPECT_EQ(std::filesystem::status(target).permissions(), std::filesystem::perms(0640));
    // failIfExists keeps the existing target; without it the target is replaced; a failed copy leaves it.
    WriteFile(target, "keep");
    EXPECT_TRUE(!TsCopyFile(source.c_str(), target.c_str(), true) && ReadFile(target) == "keep");
    ASSERT_TRUE(TsCopyFile(source.c_str(), target.c_str(), false));
    EXPECT_FALSE(TsCopyFile(dir.File("missing").c_str(), target.c_str(), false));
    EXPECT_EQ(ReadFile(target), content);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.File("a")), {}), 2) << "no temporary file left";
    EXPECT_EQ(FileExist(TsPathAppend(TsGetExecutableDirectory().c_str(), "utl_tests").c_str()), 2);

    // Ids differ, also between threads.
    std::set<unsigned long long> ids;
    for (int i = 0; i < 1000; ++i)
        std::thread([&] { ids.insert(GetNearUniqueID()); }).join();
    EXPECT_EQ(ids.size(), 1000u);
}

TEST(LogTest, OneLinePerCallWithImportanceAndForce)
{
    TempDir dir;
    const std::string file = dir.File("logs/app.log");
    Log::SetLogFile(file.c_str());
    Log::WriteMessage("NTServiceApp", "Run", "Service started.", Log::eMilestone);
    Log::WriteMessage("SysLog", "Send", "first\nsecond", 3);
    Log::SetMinimumImportance(2);
    Log::WriteMessage("SysLog", "Send", "dropped", Log::eRoutine);
    Log::WriteMessage("NTServiceApp", "Handler", "Stop message arrived.", Log::eRoutine, true);
    Log::SetMinimumImportance(0);
    Log::Flush();
    EXPECT_EQ(Log::GetLogFile(), file);
    const std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[(\d)\] \d+:\d+ (.*))");
    const std::string text = ReadFile(file);
    std::vector<std::string> entries;
    for (std::sregex_iterator it(text.begin(), text.end(), line), end; it != end; ++it)
        entries.push_back((*it)[1].str() + " " + (*it)[2].str());
    EXPECT_EQ(entries, (std::vector<std::string>{"1 NTServiceApp::Run: Service started.",
                                                 "3 SysLog::Send: first\\nsecond",
                                                 "0 NTServiceApp::Handler: Stop message arrived."}))
        << text;

    // The default file lies in the per-user data folder.
    setenv("XDG_CONFIG_HOME", dir.Path().c_str(), 1);
    Log::SetLogFile(nullptr);
    EXPECT_EQ(Log::GetLogFile(), dir.Path() + "/Tessmark/utl_tests/3.14/utl_tests.log");
    unsetenv("XDG_CONFIG_HOME");
    Log::SetLogFile(dir.File("other.log").c_str());
}
