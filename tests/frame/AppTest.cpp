#include "../utl/TempDir.h"
#include "TestApplication.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/frame/RegistrySection.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/platform/Registry.h>

#include <KORVAutl/Exception.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsSystemInfo.h>
#include <KORVAutl/XMLSection.h>

#include <QAbstractButton>
#include <QTest>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

namespace {

// Every folder the application object touches lies in a fresh temporary tree.
class AppTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        korva::test::Application();
        setenv("XDG_CONFIG_HOME", mDir.File("user").c_str(), 1);
        setenv("KORVA_COMMON_APPDATA", mDir.File("machine").c_str(), 1);
        setenv("KORVA_REGISTRY_DIR", mDir.File("registry").c_str(), 1);
        std::filesystem::create_directories(mDir.File("registry"));
        korva::RegistryStore::Reset();
    }
    void TearDown() override
    {
        korva::RegistryStore::Reset();
        unsetenv("KORVA_REGISTRY_DIR");
        unsetenv("KORVA_COMMON_APPDATA");
        unsetenv("XDG_CONFIG_HOME");
    }
    std::string Version() const { return TsSystemInfo::GetApplicationVersion(TsSystemInfo::eVersionShort); }

    TempDir mDir;
};

} // namespace

TEST_F(AppTest, SetRegistryLocationPlacesFilesFoldersAndRegistryBranch)
{
    {
        TsApp app("Analyst");
        ASSERT_TRUE(XMLSection::IsInitialized());
        app.SetRegistryLocation();
        EXPECT_EQ(std::string(GetRegistryBaseKeyName()), "SOFTWARE\\Tessmark\\Analyst\\" + Version());

        const std::string userFolder = mDir.File("user/Tessmark/Analyst/" + Version());
        EXPECT_EQ(app.GetAppDataDirectory(), userFolder);
        EXPECT_EQ(app.GetCommonSettingsFile(), mDir.File("machine/Tessmark/Analyst/" + Version() + "/Analyst.xml"));
        EXPECT_EQ(app.GetTessmarkCommonAppDataDirectory(), mDir.File("machine/Tessmark"));

        // A new file records which application and version wrote it.
        std::string value;
        ASSERT_TRUE(app.GetAppSettingsSection()->ReadKey("AppName", value));
        EXPECT_EQ(value, TsSystemInfo::GetApplicationName());
        ASSERT_TRUE(app.GetAppSettingsSection()->ReadKey("Version", value));
        EXPECT_EQ(value, Version());
        app.GetAppSettingsSection()->WriteInt("Answer", 42);

        // Profile values land in the registry branch of the application.
        EXPECT_TRUE(app.WriteProfileInt("Window", "Width", 640));
        EXPECT_EQ(TsGetRegKey(HKEY_CURRENT_USER, (std::string(GetRegistryBaseKeyName()) + "\\Window").c_str(),
                              "Width", ""),
                  "640");
        EXPECT_EQ(app.GetProfileInt("Window", "Missing", 7), 7);
        // No entry: the whole section goes.
        EXPECT_TRUE(app.WriteProfileString("Window", nullptr, nullptr));
        EXPECT_EQ(app.GetProfileInt("Window", "Width", 1), 1);
    }
    // The destructor flushed the settings and ended the XML use; a second start finds them.
    EXPECT_FALSE(XMLSection::IsInitialized());
    TsApp again("Analyst");
    again.SetRegistryLocation();
    int answer = 0;
    ASSERT_TRUE(again.GetAppSettingsSection()->ReadInt("Answer", answer));
    EXPECT_EQ(answer, 42);
}

TEST_F(AppTest, DamagedSettingsFileThrowsAndStaysAsItWas)
{
    const std::string folder = mDir.File("user/Tessmark/Analyst/" + Version());
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/Analyst.xml") << "<AppSettings><unclosed>";
    TsApp app("Analyst");
    try {
        app.SetRegistryLocation();
        FAIL() << "a damaged settings file must throw";
    } catch (const Exception& error) {
        EXPECT_NE(std::string(error.Why()).find("Analyst.xml"), std::string::npos) << error.Why();
    }
    EXPECT_EQ(ReadFile(folder + "/Analyst.xml"), "<AppSettings><unclosed>");
}

TEST_F(AppTest, GetAppSettingsTakesEachBranch)
{
    // The embedded defaults come from a language module made for this test.
    TempDir module;
    std::ofstream(module.File("strings.txt")) << "1\tx\n";
    std::ofstream(module.File("defaults.xml"))
        << "<Tessmark><AppSettings><Plot Colour=\"red\" Width=\"3\"/></AppSettings></Tessmark>";
    std::ofstream(module.File("resources.txt")) << "4711\tXML\tdefaults.xml\n";
    const korva::ResourceModule* previous =
        LanguageString::SetModule(korva::ResourceModule::LoadFromDirectory(module.Path()));

    // The machine-wide file knows the section "Shared".
    const std::string commonFolder = mDir.File("machine/Tessmark/Analyst/" + Version());
    std::filesystem::create_directories(commonFolder);
    const std::string commonFile = commonFolder + "/Analyst.xml";
    std::ofstream(commonFile) << "<Tessmark><AppSettings><Shared Server=\"db1\"/></AppSettings></Tessmark>";

    TsApp app("Analyst");
    app.SetRegistryLocation();
    std::string value;

    // Embedded defaults: copied into the user's settings, once.
    std::unique_ptr<ConfigurationSection> plot(app.GetAppSettings("Plot", 4711));
    ASSERT_TRUE(plot);
    ASSERT_TRUE(plot->ReadKey("Colour", value));
    EXPECT_EQ(value, "red");
    plot->WriteKey("Colour", "blue");
    std::unique_ptr<ConfigurationSection> plotAgain(app.GetAppSettings("Plot", 4711));
    ASSERT_TRUE(plotAgain->ReadKey("Colour", value));
    EXPECT_EQ(value, "blue");   // found in the user's settings, not copied again

    // Machine-wide file: a new, empty user section; the machine's content is not copied.
    std::unique_ptr<ConfigurationSection> shared(app.GetAppSettings("Shared", 4711));
    ASSERT_TRUE(shared);
    EXPECT_FALSE(shared->HasKey("Server"));
    EXPECT_TRUE(app.GetAppSettingsSection()->HasSection("Shared", -1));
    EXPECT_NE(ReadFile(commonFile).find("db1"), std::string::npos);   // the machine's file is untouched

    // Missing everywhere: created in the user's settings.
    std::unique_ptr<ConfigurationSection> fresh(app.GetAppSettings("Fresh", 0));
    ASSERT_TRUE(fresh);
    fresh->WriteInt("N", 5);
    EXPECT_TRUE(app.GetAppSettingsSection()->HasSection("Fresh", -1));

    LanguageString::SetModule(previous);
}

TEST_F(AppTest, PluginDirectoryFallsBackToTheDefault)
{
    TsApp app("Analyst");
    app.SetRegistryLocation();
    const std::string fallback = app.GetAppDataDirectory() + "/Plugins";
    EXPECT_EQ(app.GetPluginDirectory(), fallback);
    app.SetPluginDirectory(mDir.File("nowhere").c_str());
    EXPECT_EQ(app.GetPluginDirectory(), fallback);
    app.SetPluginDirectory(mDir.Path().c_str());
    EXPECT_EQ(app.GetPluginDirectory(), mDir.Path());
    EXPECT_EQ(app.GetFilePathInExeFolder("x.tart"), TsGetExecutableDirectory() + "/x.tart");
}

TEST_F(AppTest, MutedInfoMessagesSuppressExactlyTheOkOnlyBoxes)
{
    TsApp app("Analyst");
    app.MuteInfoMessages(true);
    bool shown = false;
    korva::test::WhenModal([&](QWidget*) { shown = true; }, std::chrono::milliseconds(300));
    EXPECT_EQ(app.DoMessageBox("Saved.", MB_OK | MB_ICONASTERISK, 0), IDOK);
    QTest::qWait(400);
    EXPECT_FALSE(shown);

    // A question is shown in the library's own box and answered with a real click.
    korva::test::WhenModal([&](QWidget* box) {
        shown = true;
        for (QAbstractButton* button : box->findChildren<QAbstractButton*>())
            if (button->property("ctrlId").toInt() == IDNO)
                QTest::mouseClick(button, Qt::LeftButton);
    });
    EXPECT_EQ(app.DoMessageBox("Delete it?", MB_YESNO, 0), IDNO);
    EXPECT_TRUE(shown);

    // Unmuted, an OK box is shown too; Escape answers it.
    app.MuteInfoMessages(false);
    shown = false;
    korva::test::WhenModal([&](QWidget* box) { shown = true; QTest::keyClick(box, Qt::Key_Escape); });
    EXPECT_EQ(app.DoMessageBox("Saved.", MB_OK, 0), IDOK);
    EXPECT_TRUE(shown);
}

TEST_F(AppTest, MainWindowAndAboutCommand)
{
    EXPECT_EQ(TsGetMainWnd(), nullptr);
    TsApp app("Analyst");
    QWidget window;
    app.SetMainWnd(&window);
    EXPECT_EQ(TsGetMainWnd(), &window);

    // The About command is the application's own and names the application.
    struct TextCatcher : CCmdUI
    {
        using CCmdUI::CCmdUI;
        std::string text;
        void SetText(const char* value) override { text = value; }
    } menuItem(ID_APP_ABOUT);
    ASSERT_TRUE(app.OnCmdMsg(ID_APP_ABOUT, CmdTarget::eUpdate, &menuItem));
    EXPECT_EQ(menuItem.text, "&About Analyst...");

    QString title;
    korva::test::WhenModal([&](QWidget* about) {
        title = about->windowTitle();
        QTest::keyClick(about, Qt::Key_Escape);
    });
    EXPECT_TRUE(app.ExecuteCommand(ID_APP_ABOUT));
    EXPECT_EQ(title, QStringLiteral("About Analyst"));
}
