// NTServiceControl over real D-Bus: a private dbus-daemon and SystemdPeer stand
// in for systemd, which cannot run here; the peer runs the sample service.

#include "operations/ServiceKit.h"
#include "operations/SystemdPeer.h"

#include <KORVAutlwin/operations/EventLog.h>
#include <KORVAutlwin/operations/EventSource.h>
#include <KORVAutlwin/operations/NTServiceControl.h>

#include <KORVAutlwin/platform/Registry.h>

#include <KORVAutl/Log.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

namespace {

const char* const kName = "sampleservice";

class ServiceControl : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_FALSE(bus.Address().empty()) << "dbus-daemon did not start; scripts/install-deps installs it";
        std::filesystem::create_directory(units);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.Address().c_str(), 1);
        setenv("KORVA_SYSTEMD_UNIT_DIR", units.c_str(), 1);
        setenv("KORVA_REGISTRY_DIR", folder.Path().c_str(), 1);
        korva::RegistryStore::Reset();
        setenv("XDG_CONFIG_HOME", (folder.Path() + "/service").c_str(), 1);
        Log::SetLogFile((folder.Path() + "/control.log").c_str());
        peer = std::make_unique<SystemdPeer>(bus.Address(), units, folder.Path());
        ASSERT_TRUE(peer->Ready());
    }
    void TearDown() override
    {
        peer.reset();
        korva::RegistryStore::Reset();
    }

    /// The log lines of this process written since the last call.
    std::string NewLogLines()
    {
        Log::Flush();
        const std::string all = ReadFile(folder.File("control.log")), fresh = all.substr(std::min(logSeen, all.size()));
        logSeen = all.size();
        return fresh;
    }
    static bool Has(const std::string& text, const std::string& line) { return text.find(line) != std::string::npos; }

    TempDir folder;
    PrivateBus bus{folder.Path()};
    std::string units = folder.Path() + "/units";
    std::unique_ptr<SystemdPeer> peer;
    size_t logSeen = 0;
};

TEST_F(ServiceControl, InstallStartInterrogateStopUninstall)
{
    NTServiceControl control(kName);
    ASSERT_TRUE(control.Install(service_kit::SampleService().c_str(), nullptr, true, nullptr, nullptr));
    EXPECT_TRUE(Has(ReadFile(units + "/sampleservice.service"), "Type=notify\nExecStart=" + service_kit::SampleService() + "\n"));
    EXPECT_EQ(EventLog::LogNameFromSourceName(kName), "Application");
    EXPECT_TRUE(control.IsInstalled());
    EXPECT_FALSE(control.Install(nullptr, nullptr, true, nullptr, nullptr));
    EXPECT_EQ(control.GetLastError(), 1073UL);
    EXPECT_TRUE(Has(NewLogLines(), "Service sampleservice already installed."));

    ASSERT_TRUE(control.Start());
    SERVICE_STATUS status;
    ASSERT_TRUE(control.QueryStatus(status));
    EXPECT_EQ(status.dwCurrentState, SERVICE_RUNNING);
    unsigned long state = 0;
    ASSERT_TRUE(control.Status(state));
    EXPECT_EQ(state, SERVICE_RUNNING);
    EXPECT_FALSE(control.Uninstall());
    EXPECT_EQ(control.GetLastError(), 1056UL);
    const std::string running = NewLogLines();
    EXPECT_TRUE(Has(running, "Service sampleservice started."));
    EXPECT_FALSE(Has(running, "Windows error"));

    ASSERT_TRUE(control.Stop());
    ASSERT_TRUE(control.QueryStatus(status));
    EXPECT_EQ(status.dwCurrentState, SERVICE_STOPPED);
    EXPECT_EQ(status.dwWin32ExitCode, 0UL);
    EXPECT_TRUE(Has(service_kit::LogText(folder.File("service")), "Interrogate message arrived at service handler."));

    ASSERT_TRUE(control.Uninstall());
    EXPECT_FALSE(std::filesystem::exists(units + "/sampleservice.service"));
    EXPECT_FALSE(EventLog::SourceExists(kName));
    EXPECT_FALSE(control.IsInstalled());
    EXPECT_EQ(control.GetLastError(), 1060UL);
    const std::string log = NewLogLines();
    for (const char* line : {"Service sampleservice stopped.",
                             "Service sampleservice uninstalled.", "Deletion of event source for service sampleservice succeeded."})
        EXPECT_TRUE(Has(log, line)) << line;
}

TEST_F(ServiceControl, FailuresOfTheServiceReachTheCaller)
{
    NTServiceControl control(kName);
    // Stopped: interrogation fails with 1062 and the manager's record answers.
    ASSERT_TRUE(control.Install((service_kit::SampleService() + " --fail-init=42").c_str(), nullptr, true, nullptr,
                                nullptr));
    NewLogLines();
    unsigned long state = 0;
    ASSERT_TRUE(control.Status(state));
    EXPECT_EQ(state, SERVICE_STOPPED);
    EXPECT_TRUE(Has(NewLogLines(), "Windows error - ControlService returned error 1062: The service has not been started."));
    EXPECT_FALSE(control.Stop());
    EXPECT_EQ(control.GetLastError(), 1062UL);

    // A service whose init fails has started; its status tells how it ended.
    EXPECT_TRUE(control.Start());
    SERVICE_STATUS status;
    ASSERT_TRUE(control.QueryStatus(status));
    EXPECT_EQ(status.dwCurrentState, SERVICE_STOPPED);
    EXPECT_EQ(status.dwWin32ExitCode, 1066UL);
    EXPECT_EQ(status.dwServiceSpecificExitCode, 42UL);
    ASSERT_TRUE(control.Uninstall());

    // A program that cannot be run: the Windows error first, then the start line.
    ASSERT_TRUE(control.Install((folder.Path() + "/missing").c_str(), nullptr, true, nullptr, nullptr));
    NewLogLines();
    EXPECT_FALSE(control.Start());
    EXPECT_EQ(control.GetLastError(), 3UL);
    const std::string log = NewLogLines();
    const auto error = log.find("Windows error - StartService returned error 3: The service binary file could not be found.");
    ASSERT_NE(error, std::string::npos);
    EXPECT_GT(log.find("Service sampleservice started."), error);
}

TEST_F(ServiceControl, StopDuringShutdownIsAShutdown)
{
    NTServiceControl control(kName);
    ASSERT_TRUE(control.Install(service_kit::SampleService().c_str(), nullptr, true, nullptr, nullptr));
    ASSERT_TRUE(control.Start());
    peer->SetSystemState("stopping");
    ASSERT_TRUE(control.Stop());
    const std::string log = service_kit::LogText(folder.Path() + "/service");
    EXPECT_TRUE(Has(log, "Shutdown message arrived at service handler."));
    EXPECT_FALSE(Has(log, "Stop message arrived at service handler."));
}

TEST_F(ServiceControl, EventSourceOfAnotherLogDoesNotFailInstall)
{
    EventLog::CreateEventSource("SAMPLESERVICE", EventLog::SYSTEM_LOG);
    NTServiceControl control(kName);
    EXPECT_TRUE(control.Install(service_kit::SampleService().c_str(), nullptr, true, nullptr, nullptr));
    EXPECT_TRUE(Has(NewLogLines(), "Creation of event source for service sampleservice failed."));
    EXPECT_EQ(EventLog::LogNameFromSourceName(kName), "System");
}

TEST_F(ServiceControl, BadNamesAndAMissingManager)
{
    const char* const invalid = "OpenService returned error 123: The specified service name is invalid.";
    const struct
    {
        const char* name;
        unsigned long error;
        const char* line;
    } rows[] = {{"bad/name", 123, invalid}, {"", 123, invalid}, {"two words", 123, invalid},
                {"nosuchservice", 1060, "OpenService returned error 1060: The specified service does not exist."}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        NTServiceControl control(row.name);
        EXPECT_FALSE(control.IsInstalled());
        EXPECT_EQ(control.GetLastError(), row.error);
        EXPECT_TRUE(Has(NewLogLines(), row.line));
        EXPECT_FALSE(control.Start());
        EXPECT_FALSE(Has(NewLogLines(), "started."));
    }
    NTServiceControl badInstall("bad/name");
    EXPECT_FALSE(badInstall.Install(service_kit::SampleService().c_str(), nullptr, true, nullptr, nullptr));
    EXPECT_TRUE(Has(NewLogLines(), "Windows error - CreateService returned error 123: The specified service name is invalid."));
    NTServiceControl unknownAccount(kName);
    EXPECT_FALSE(unknownAccount.Install(service_kit::SampleService().c_str(), nullptr, true, "korva-nobody-here", nullptr));
    EXPECT_EQ(unknownAccount.GetLastError(), 1057UL);
    EXPECT_TRUE(std::filesystem::is_empty(units));

    setenv("DBUS_SYSTEM_BUS_ADDRESS", ("unix:path=" + folder.Path() + "/no-bus").c_str(), 1);
    NTServiceControl control(kName);
    EXPECT_FALSE(control.OpenSCM());
    EXPECT_EQ(control.GetLastError(), 1065UL);
    EXPECT_TRUE(control.CloseSCM());
    const std::string log = NewLogLines();
    EXPECT_TRUE(Has(log, "Windows error - OpenSCManager returned error 1065: The specified database does not exist.."));
    EXPECT_TRUE(Has(log, "[4] ") && Has(log, "NTServiceControl::CloseSCM: Service Control Manager not opened."));
}

// The one test against the machine's own manager; it changes nothing there.
TEST(ServiceControlSystem, UnknownServiceOnTheRealManager)
{
    std::ifstream init("/proc/1/comm");
    std::string pid1;
    std::getline(init, pid1);
    if (pid1 != "systemd")
        GTEST_SKIP() << "systemd is not PID 1 here (PID 1 is \"" << pid1 << "\")";
    NTServiceControl control("korva-no-such-service-here");
    EXPECT_FALSE(control.IsInstalled());
    EXPECT_EQ(control.GetLastError(), 1060UL);
    SERVICE_STATUS status;
    EXPECT_FALSE(control.QueryStatus(status));
}

} // namespace
