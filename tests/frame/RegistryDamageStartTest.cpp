// The start of an application with a damaged registry file.

#include "TestApplication.h"

#include <KORVAutlwin/frame/MuteInformUserComm.h>
#include <KORVAutlwin/frame/TsApp.h>
#include <KORVAutlwin/platform/Registry.h>

#include <KORVAutl/Log.h>
#include <KORVAutl/UserComm.h>

#include <algorithm>

TEST(RegistryDamageStartTest, StartKeepsTheDamagedFileAsideLogsItAndTellsTheUserOnce)
{
    korva::test::Application();
    TempDir dir;
    setenv("XDG_CONFIG_HOME", dir.File("user").c_str(), 1);
    setenv("KORVA_COMMON_APPDATA", dir.File("machine").c_str(), 1);
    setenv("KORVA_REGISTRY_DIR", dir.Path().c_str(), 1);
    korva::RegistryStore::Reset();
    const std::string garbage(8192, 'Z');
    WriteFile(dir.File("HKCU.sqlite"), garbage);
    const std::string oldLog = Log::GetLogFile();
    Log::SetLogFile(dir.File("app.log").c_str());

    MuteInformUserComm channel;
    {
        TsApp app("Analyst");
        app.SetRegistryLocation();
        // As applications do: the channel comes after the registry location.
        UserComm* const previous = UserComm::SetUserComm(&channel);
        QCoreApplication::processEvents();
        UserComm::SetUserComm(previous);
        EXPECT_TRUE(app.WriteProfileInt("Window", "Width", 640));
    }
    Log::Flush();
    Log::SetLogFile(oldLog.c_str());

    std::string aside;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
        if (entry.path().filename().string().rfind("HKCU.sqlite.corrupt-", 0) == 0)
            aside = entry.path().string();
    ASSERT_FALSE(aside.empty());
    EXPECT_TRUE(ReadFile(aside) == garbage);
    const std::string told = channel.GetInformUserMessages();
    EXPECT_NE(told.find(aside), std::string::npos) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    const std::string log = ReadFile(dir.File("app.log"));
    EXPECT_NE(log.find(aside), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1) << log;

    korva::RegistryStore::Reset();
    unsetenv("KORVA_REGISTRY_DIR");
    unsetenv("KORVA_COMMON_APPDATA");
    unsetenv("XDG_CONFIG_HOME");
}
