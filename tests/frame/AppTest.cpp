// The application object: where its files, folders and registry branch lie,
// its settings with their defaults, and the muted information boxes.

#include "MdiFrameTestSupport.h"

#include <KORVAutlwin/frame/TsApp.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutl/XMLSection.h>

using namespace korva::test;

namespace {

class AppTest : public MdiFrameFixture
{
protected:
    AppTest() : MdiFrameFixture(nullptr) {}
    std::string Folder(const char* base) const
    {
        return mDir.File(std::string(base) + "/Tessmark/Analyst/" +
                         TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort));
    }
};

} // namespace

TEST_F(AppTest, SetRegistryLocationPlacesFilesFoldersAndRegistryBranch)
{
    const std::string version = TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort);
    {
        TsApp app("Analyst");
        ASSERT_TRUE(XMLSection::IsInitialized());
        app.SetRegistryLocation();
        EXPECT_EQ(std::string(GetRegistryBaseKeyName()), "SOFTWARE\\Tessmark\\Analyst\\" + version);
        EXPECT_EQ(app.GetAppDataDirectory(), Folder("user"));
        EXPECT_EQ(app.GetCommonSettingsFile(), Folder("machine") + "/Analyst.xml");
        EXPECT_EQ(app.GetTessmarkCommonAppDataDirectory(), mDir.File("machine/Tessmark"));

        // A new file records which application and version wrote it.
        std::string name, written;
        EXPECT_TRUE(app.GetAppSettingsSection()->ReadKey("AppName", name) && name == TsSystemInfo::GetApplicationName());
        EXPECT_TRUE(app.GetAppSettingsSection()->ReadKey("Version", written) && written == version);
        app.GetAppSettingsSection()->WriteInt("Answer", 42);

        // Profile values land in the registry branch of the application; no entry: the whole section goes.
        EXPECT_TRUE(app.WriteProfileInt("Window", "Width", 640));
        EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, (std::string(GetRegistryBaseKeyName()) + "\\Window").c_str(), "Width", ""),
                  "640");
        EXPECT_EQ(app.GetProfileInt("Window", "Missing", 7), 7);
        EXPECT_TRUE(app.WriteProfileString("Window", nullptr, nullptr));
        EXPECT_EQ(app.GetProfileInt("Window", "Width", 1), 1);
    }
    // The destructor flushed the settings and ended the XML use; a second start finds them.
    EXPECT_FALSE(XMLSection::IsInitialized());
    TsApp again("Analyst");
    again.SetRegistryLocation();
    int answer = 0;
    EXPECT_TRUE(again.GetAppSettingsSection()->ReadInt("Answer", answer) && answer == 42);
}

TEST_F(AppTest, DamagedSettingsFileThrowsAndStaysAsItWas)
{
    std::filesystem::create_directories(Folder("user"));
    WriteFile(Folder("user") + "/Analyst.xml", "<AppSettings><unclosed>");
    TsApp app("Analyst");
    const std::string why = Thrown([&] { app.SetRegistryLocation(); });
    EXPECT_NE(why.find("Analyst.xml"), std::string::npos) << why;
    EXPECT_EQ(ReadFile(Folder("user") + "/Analyst.xml"), "<AppSettings><unclosed>");
}

TEST_F(AppTest, GetAppSettingsTakesEachBranch)
{
    TempDir module;
    WriteFile(module.File("strings.txt"), "1\tx\n");
    WriteFile(module.File("defaults.xml"),
              "<Tessmark><AppSettings><Plot Colour=\"red\" Width=\"3\"/></AppSettings></Tessmark>");
    WriteFile(module.File("resources.txt"), "4711\tXML\tdefaults.xml\n");
    const korva::ResourceModule* previous =
        LanguageString::SetModule(korva::ResourceModule::LoadFromDirectory(module.Path()));
    std::filesystem::create_directories(Folder("machine"));
    const std::string commonFile = Folder("machine") + "/Analyst.xml";
    WriteFile(commonFile, "<Tessmark><AppSettings><Shared Server=\"db1\"/></AppSettings></Tessmark>");

    TsApp app("Analyst");
    app.SetRegistryLocation();
    using Section = std::unique_ptr<ConfigurationSection>;
    std::string value;
    // Embedded defaults: copied into the user's settings, once.
    Section(app.GetAppSettings("Plot", 4711))->WriteKey("Colour", "blue");
    EXPECT_TRUE(Section(app.GetAppSettings("Plot", 4711))->ReadKey("Colour", value) && value == "blue")
        << "found in the user's settings, not copied again";
    EXPECT_TRUE(Section(app.GetAppSettings("Plot", 4711))->ReadKey("Width", value) && value == "3");

    // Machine-wide file: a new, empty user section; the machine's file is untouched.
    EXPECT_FALSE(Section(app.GetAppSettings("Shared", 4711))->HasKey("Server"));
    EXPECT_TRUE(app.GetAppSettingsSection()->HasSection("Shared", -1));
    EXPECT_NE(ReadFile(commonFile).find("db1"), std::string::npos);

    // Missing everywhere: created in the user's settings.
    EXPECT_TRUE(Section(app.GetAppSettings("Fresh", 0))->WriteInt("N", 5));
    EXPECT_TRUE(app.GetAppSettingsSection()->HasSection("Fresh", -1));
    LanguageString::SetModule(previous);
}

TEST_F(AppTest, MutedInfoMessagesSuppressExactlyTheOkOnlyBoxes)
{
    TsApp app("Analyst");
    app.MuteInfoMessages(true);
    {
        DialogSpy spy;
        EXPECT_EQ(app.DoMessageBox("Saved.", MB_OK | MB_ICONASTERISK, 0), IDOK);
        EXPECT_EQ(spy.Count(), 0);
    }

    WhenModal([&](QWidget* box) { Click(box, IDNO); });
    EXPECT_EQ(app.DoMessageBox("Delete it?", MB_YESNO, 0), IDNO);

    // Unmuted, an OK box is shown too.
    app.MuteInfoMessages(false);
    DialogSpy spy;
    app.DoMessageBox("Saved.", MB_OK, 0);
    EXPECT_EQ(spy.Count(), 1);
}
