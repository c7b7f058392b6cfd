// The service host as the manager sees it: the sample service runs as a child
// with a notify socket bound here, and its reports and its log are checked.

#include "operations/ServiceKit.h"

#include <KORVAutlwin/platform/ChildProcess.h>

#include <gtest/gtest.h>

#include <csignal>
#include <optional>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

const char* const kStartPending = "STATUS=Start pending\nEXTEND_TIMEOUT_USEC=10000000";
const char* const kRunning = "READY=1\nSTATUS=Running";
const char* const kStopPending = "STOPPING=1\nSTATUS=Stop pending\nEXTEND_TIMEOUT_USEC=10000000";
const char* const kStopped = "STATUS=Stopped\nEXIT_STATUS=0";

class ServiceHost : public ::testing::Test
{
protected:
    void SetUp() override
    {
        // The manager's end of the notify protocol.
        notify = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        folder.File("notify").copy(address.sun_path, sizeof address.sun_path - 1);
        ASSERT_EQ(bind(notify, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    }
    void TearDown() override { close(notify); }

    /// Starts the sample service with `arguments`; with `manager`, as a manager would.
    void Run(const std::vector<std::string>& arguments, bool manager = true)
    {
        std::vector<std::string> command = {"env", "-u", "NOTIFY_SOCKET"};
        if (manager)
            command = {"env", "NOTIFY_SOCKET=" + folder.File("notify")};
        for (const std::string& word : {"XDG_CONFIG_HOME=" + folder.Path(), "KORVA_REGISTRY_DIR=" + folder.Path(),
                                        "DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + folder.File("no-bus"),
                                        service_kit::SampleService()})
            command.push_back(word);
        command.insert(command.end(), arguments.begin(), arguments.end());
        ASSERT_EQ(pipe(errors), 0);
        ASSERT_EQ(child.Spawn("/usr/bin/env", command, {{errors[1], 2}}), 0);
        close(errors[1]);
    }
    /// The next report, or nothing when none came within `timeoutMs`.
    std::optional<std::string> Next(int timeoutMs = 10000)
    {
        pollfd ready{notify, POLLIN, 0};
        char buffer[4096];
        const ssize_t got = poll(&ready, 1, timeoutMs) > 0 ? recv(notify, buffer, sizeof buffer, 0) : -1;
        return got < 0 ? std::nullopt : std::optional<std::string>(std::string(buffer, got));
    }
    void ExpectNext(const char* report) { EXPECT_EQ(Next().value_or("(no report)"), report); }
    std::string Log() const { return service_kit::LogText(folder.Path()); }

    TempDir folder;
    int notify = -1;
    korva::ChildProcess child;
    int errors[2] = {-1, -1};
};

TEST_F(ServiceHost, ControlsWhileRunningAndStopBySigterm)
{
    // A control, what the manager hears of it, and the handler's log line.
    const struct
    {
        int signal;
        const char* report;  // null: none
        const char* logLine;
    } rows[] = {
        {SIGUSR1, kRunning, "Interrogate message arrived at service handler."},
        {SIGHUP, nullptr, "Other message arrived at service handler."},
    };
    Run({});
    ExpectNext(kStartPending);
    ExpectNext(kRunning);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.logLine);
        child.Kill(row.signal);
        if (row.report)
            ExpectNext(row.report);
        else
            EXPECT_FALSE(Next(300).has_value());
    }
    child.Kill(SIGTERM);
    ExpectNext(kStopPending);
    ExpectNext(kStopped);
    EXPECT_EQ(child.Wait(), 0);
    const std::string log = Log();
    for (const auto& row : rows)
        EXPECT_NE(log.find(row.logLine), std::string::npos) << row.logLine;
    for (const char* line : {"Service dispatcher launched.", "Service started.", "Stop message arrived at service handler.",
                             "Service stopped."})
        EXPECT_NE(log.find(line), std::string::npos) << line;
    EXPECT_EQ(log.find("Shutdown message"), std::string::npos);
}

TEST_F(ServiceHost, FailingInitReportsStoppedWithItsCode)
{
    Run({"--fail-init=42"});
    ExpectNext(kStartPending);
    ExpectNext("STATUS=Stopped (error 1066, service-specific 42)\nEXIT_STATUS=42");
    EXPECT_EQ(child.Wait(), 42);
    const std::string log = Log();
    EXPECT_NE(log.find("Service failed to initialize"), std::string::npos);
    EXPECT_NE(log.find("Service stopped."), std::string::npos);
    EXPECT_EQ(log.find("Service started."), std::string::npos);
}

TEST_F(ServiceHost, StopWhileStartPendingWaitsForRunning)
{
    Run({"--slow-init=300"});
    ExpectNext(kStartPending);
    child.Kill(SIGTERM);
    for (const char* report : {kRunning, kStopPending, kStopped})
        ExpectNext(report);
    EXPECT_EQ(child.Wait(), 0);
}

TEST_F(ServiceHost, StartedByHandTellsTheUserAndEnds)
{
    Run({}, false);
    EXPECT_EQ(child.Wait(), 0);
    std::string said(512, '\0');
    said.resize(std::max<ssize_t>(0, read(errors[0], said.data(), said.size())));
    close(errors[0]);
    EXPECT_EQ(said, "sampleservice: This application is a service, to start it go to Control Panel | "
                    "Administrative Tools | Services.\n");
    EXPECT_FALSE(Next(100).has_value());
    EXPECT_NE(Log().find("Windows error - StartServiceCtrlDispatcher returned error 1063: "), std::string::npos);
    EXPECT_EQ(Log().find("Service started."), std::string::npos);
}

} // namespace
