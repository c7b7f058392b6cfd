#include "TempDir.h"

#include <KORVAutl/Exception.h>
#include <KORVAutl/FNClass.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/Log.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutl/TsTimeUtl.h>
#include <KORVAutlwin/platform/TsUnicode.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <thread>

KORVA_DECLARE_VERSION(3, 14, 15, 92);

TEST(ExceptionTest, CarriesItsTextAndCauses)
{
    const Exception inner("disk full");
    const Exception middle("cannot save settings", inner);
    const Exception outer("cannot close the project", middle);
    EXPECT_STREQ(outer.Why(), "cannot close the project");
    EXPECT_EQ(outer.RecursiveWhy(), "cannot close the project\ncannot save settings\ndisk full");

    // Copies are independent of the original's lifetime.
    Exception copy("x");
    {
        const Exception temporary("outer", Exception("inner"));
        copy = temporary;
    }
    EXPECT_EQ(copy.RecursiveWhy(), "outer\ninner");
    try {
        throw copy;
    } catch (const Exception& caught) {
        EXPECT_STREQ(caught.Cause()->Why(), "inner");
    }
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
        std::map<std::string, unsigned> constants;
        for (std::sregex_iterator it(text.begin(), text.end(), constant), end; it != end; ++it)
            constants[(*it)[1]] = static_cast<unsigned>(std::stoul((*it)[2]));
        for (std::sregex_iterator it(text.begin(), text.end(), use), end; it != end; ++it) {
            const std::string argument = (*it)[2];
            unsigned id = 0;
            if (std::isdigit(static_cast<unsigned char>(argument[0])))
                id = static_cast<unsigned>(std::stoul(argument));
            else if (constants.count(argument))
                id = constants[argument];
            else
                continue;
            ++uses;
            if (!LanguageString::Has(id))
                missing.insert(id);
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
    std::ofstream(dir.File("strings.txt")) << "# test module\n13274\tSchl\xC3\xBCssel\\tfehlt\\n\n";
    std::ofstream(dir.File("page.html")) << "<p>hi</p>";
    std::ofstream(dir.File("resources.txt")) << "500\tHTML\tpage.html\n";
    const korva::ResourceModule* module = korva::ResourceModule::LoadFromDirectory(dir.Path());

    const korva::ResourceModule* previous = LanguageString::SetModule(module);
    EXPECT_STREQ(LanguageString::Get(13274), "Schl\xC3\xBCssel\tfehlt\n");
    EXPECT_STREQ(LanguageString::Get(13275), korva::EnglishResourceModule().FindString(13275));
    std::size_t size = 0;
    EXPECT_STREQ(LanguageString::GetModule()->FindResource(500, "HTML", &size), "<p>hi</p>");
    EXPECT_EQ(size, 9u);
    EXPECT_EQ(LanguageString::GetModule()->FindResource(500, "XML"), nullptr);
    LanguageString::SetModule(previous);

    // Texts handed out earlier stay valid and unchanged.
    EXPECT_STREQ(LanguageString::Get(13274), english);
    EXPECT_THROW(korva::ResourceModule::LoadFromDirectory(dir.File("nowhere")), Exception);
}

TEST(UnicodeTest, ConversionsRoundTripAndRepairBadInput)
{
    const std::string utf8 = "a\xC3\xA9\xE2\x82\xAC\xF0\x9D\x84\x9E";   // a é € 𝄞
    EXPECT_EQ(korva::Utf8ToWide(utf8), std::wstring(L"a\u00e9\u20ac\U0001D11E"));
    const std::u16string utf16 = korva::Utf8ToUtf16(utf8);
    EXPECT_EQ(utf16, std::u16string(u"a\u00e9\u20ac\U0001D11E"));
    EXPECT_EQ(utf16.size(), 5u);   // the clef takes a surrogate pair
    EXPECT_EQ(korva::Utf16ToUtf8(utf16), utf8);
    EXPECT_EQ(korva::WideToUtf8(korva::Utf16ToWide(utf16)), utf8);

    // Truncated sequences, overlong forms and lone surrogates become U+FFFD.
    EXPECT_EQ(korva::Utf8ToWide("x\xE2\x82"), std::wstring(L"x\uFFFD\uFFFD"));
    EXPECT_EQ(korva::Utf8ToWide("\xC0\xAF"), std::wstring(L"\uFFFD\uFFFD"));   // each byte of an overlong form
    EXPECT_EQ(korva::Utf16ToWide(std::u16string(1, char16_t(0xD800))), std::wstring(L"\uFFFD"));
}

TEST(SystemInfoTest, VersionsComeFromTheFile)
{
    int major = 0, minor = 0, build = 0, revision = 0;
    ASSERT_TRUE(TsSystemInfo::GetApplicationVersion(major, minor, build, revision));
    EXPECT_EQ((std::vector<int>{major, minor, build, revision}), (std::vector<int>{3, 14, 15, 92}));
    EXPECT_EQ(TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort), "3.14");
    EXPECT_EQ(TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionLong), "3.14.15.92");

    // The library's own file declares the suite's version.
    Dl_info info{};
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&LanguageString::Get), &info), 0);
    ASSERT_TRUE(TsSystemInfo::GetApplicationVersion(major, minor, build, revision, info.dli_fname));
    EXPECT_EQ(major, 1);

    // A file that is no ELF, or declares nothing, gives false and keeps the numbers.
    TempDir dir;
    std::ofstream(dir.File("text")) << "not a program";
    major = -1;
    EXPECT_FALSE(TsSystemInfo::GetApplicationVersion(major, minor, build, revision, dir.File("text").c_str()));
    EXPECT_FALSE(TsSystemInfo::GetApplicationVersion(major, minor, build, revision, "/bin/sh"));
    EXPECT_FALSE(TsSystemInfo::GetApplicationVersion(major, minor, build, revision, dir.File("none").c_str()));
    EXPECT_EQ(major, -1);

    EXPECT_EQ(TsSystemInfo::GetApplicationName(), "utl_tests");
}

TEST(FileUtlTest, PathsSplitAndJoin)
{
    EXPECT_EQ(TsPathAppend("/data/", "/run.tart"), "/data/run.tart");
    EXPECT_EQ(TsPathAppend("", "run.tart"), "run.tart");
    EXPECT_EQ(TsPathAppend("/data", ""), "/data");
    EXPECT_EQ(TsGetDirectory("/model.tart"), "/");
    EXPECT_EQ(TsGetDirectory("model.tart"), "");
    EXPECT_EQ(TsGetFileName("/data/run/model.tart"), "model.tart");
    EXPECT_EQ(TsGetFileExtension("/data/run.d/model"), "");
    EXPECT_EQ(TsGetFileExtension("/home/u/.profile"), "");
    EXPECT_EQ(TsGetFileExtension("archive.tar.gz"), "gz");

    FNClass name("/data/run/model.tart");
    EXPECT_EQ(name.GetDirectory(), "/data/run/");
    EXPECT_EQ(name.GetNameAndExt(), "model.tart");
    name.SetNameAndExt("audit_trail.xsl");
    EXPECT_EQ(name.Merge(), "/data/run/audit_trail.xsl");
    name.SetExtension("xml");
    name.SetDirectory("/tmp");
    EXPECT_EQ(name.Merge(), "/tmp/audit_trail.xml");
}

TEST(FileUtlTest, FoldersFilesAndCopies)
{
    TempDir dir;
    const std::string deep = dir.File("a/b/c");
    EXPECT_EQ(FileExist(deep.c_str()), 0);
    ASSERT_TRUE(CreateFolder(deep.c_str()));
    EXPECT_EQ(FileExist(deep.c_str()), 1);

    const std::string source = dir.File("source.bin");
    std::string content(200000, '\0');
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(i * 7);
    std::ofstream(source, std::ios::binary) << content;
    chmod(source.c_str(), 0640);
    EXPECT_EQ(FileExist(source.c_str()), 2);

    const std::string target = dir.File("a/copy.bin");
    ASSERT_TRUE(TsCopyFile(source.c_str(), target.c_str(), true));
    EXPECT_EQ(ReadFile(target), content);
    struct stat info {};
    stat(target.c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0640u);

    // failIfExists keeps the existing target; without it the target is replaced.
    std::ofstream(target) << "keep";
    EXPECT_FALSE(TsCopyFile(source.c_str(), target.c_str(), true));
    EXPECT_EQ(ReadFile(target), "keep");
    ASSERT_TRUE(TsCopyFile(source.c_str(), target.c_str(), false));
    EXPECT_EQ(ReadFile(target), content);
    EXPECT_FALSE(TsCopyFile(dir.File("missing").c_str(), target.c_str(), false));
    EXPECT_EQ(ReadFile(target), content);
    // No temporary file is left behind.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.File("a")), {}), 2);

    EXPECT_EQ(TsGetExecutableDirectory(), TsGetDirectory(TsSystemInfo::GetExecutablePath().c_str()));
    EXPECT_EQ(FileExist(TsPathAppend(TsGetExecutableDirectory().c_str(), "utl_tests").c_str()), 2);
}

TEST(FileUtlTest, NearUniqueIdsDiffer)
{
    std::set<unsigned long long> ids;
    for (int i = 0; i < 10000; ++i)
        ids.insert(GetNearUniqueID());
    unsigned long long fromThread = 0;
    std::thread([&] { fromThread = GetNearUniqueID(); }).join();
    ids.insert(fromThread);
    EXPECT_EQ(ids.size(), 10001u);
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
    Log::WriteMessage("NTServiceApp", "Handler", "Stop message arrived at service handler.", Log::eRoutine, true);
    Log::SetMinimumImportance(0);
    Log::Flush();

    std::istringstream lines(ReadFile(file));
    std::vector<std::string> all;
    for (std::string line; std::getline(lines, line);)
        all.push_back(line);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_TRUE(std::regex_match(all[0], std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[1\] \d+:\d+ NTServiceApp::Run: Service started\.)")))
        << all[0];
    EXPECT_NE(all[1].find("[3] "), std::string::npos);
    EXPECT_NE(all[1].find("SysLog::Send: first\\nsecond"), std::string::npos);
    EXPECT_NE(all[2].find("Stop message arrived at service handler."), std::string::npos);
    EXPECT_EQ(Log::GetLogFile(), file);

    // The default file lies in the per-user data folder.
    setenv("XDG_CONFIG_HOME", dir.Path().c_str(), 1);
    Log::SetLogFile(nullptr);
    EXPECT_EQ(Log::GetLogFile(), dir.Path() + "/Tessmark/utl_tests/3.14/utl_tests.log");
    Log::WriteMessage("X", "Y", "into the default file", 4);
    EXPECT_NE(ReadFile(Log::GetLogFile()).find("X::Y: into the default file"), std::string::npos);
    unsetenv("XDG_CONFIG_HOME");
    Log::SetLogFile(dir.File("other.log").c_str());
}

TEST(TimeUtlTest, UtcOffsetFollowsTheZone)
{
    const char* old = std::getenv("TZ");
    const std::string saved = old ? old : "";
    setenv("TZ", "UTC", 1);
    EXPECT_EQ(TsTimeUtl::GetUtcOffset(), 0);
    setenv("TZ", "<+0530>-5:30", 1);
    EXPECT_EQ(TsTimeUtl::GetUtcOffset(), 5 * 3600 + 1800);
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    EXPECT_EQ(TsTimeUtl::GetUtcOffset(1736942400), 3600);   // January
    EXPECT_EQ(TsTimeUtl::GetUtcOffset(1752580800), 7200);   // July, summer time
    struct tm broken {};
    const time_t noon = 1736942400;   // 2025-01-15 12:00 UTC
    ASSERT_NE(tslocaltime_r(&noon, &broken), nullptr);
    EXPECT_EQ(broken.tm_hour, 13);
    EXPECT_EQ(tslocaltime_r(nullptr, &broken), nullptr);
    if (old)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}
