// The service host as the manager sees it: the sample service runs as a child
// with a notify socket bound here, and its reports and its log are checked.

#include "operations/ServiceKit.h"

#include <KORVAutlwin/platform/ChildProcess.h>

#include <gtest/gtest.h>

#include <csignal>
#include <vector>

using service_kit::NotifyListener;

namespace {

const char* const kStartPending = "STATUS=Start pending\nEXTEND_TIMEOUT_USEC=10000000";
const char* const kRunning = "READY=1\nSTATUS=Running";
const char* const kStopPending = "STOPPING=1\nSTATUS=Stop pending\nEXTEND_TIMEOUT_USEC=10000000";
const char* const kStopped = "STATUS=Stopped\nEXIT_STATUS=0";

class ServiceHost : public ::testing::Test
{
protected:
    /// Starts the sample service with `arguments`; with `notify`, as a manager would.
    void Run(const std::vector<std::string>& arguments, bool notify = true)
    {
        ASSERT_GE(listener.Fd(), 0);
        std::vector<std::string> command = {"env", "-u", "NOTIFY_SOCKET"};
        if (notify)
            command = {"env", "NOTIFY_SOCKET=" + listener.path};
        for (const std::string& variable : {"XDG_CONFIG_HOME=" + folder.path, "KORVA_REGISTRY_DIR=" + folder.path,
                                            "DBUS_SYSTEM_BUS_ADDRESS=unix:path=" + folder.path + "/no-bus",
                                            service_kit::SampleService()})
            command.push_back(variable);
        command.insert(command.end(), arguments.begin(), arguments.end());
        ASSERT_EQ(pipe(errors), 0);
        ASSERT_EQ(child.Spawn("/usr/bin/env", command, {{errors[1], 2}}), 0);
        close(errors[1]);
    }
    std::string Errors()
    {
        std::string text;
        char buffer[512];
        for (ssize_t got; (got = read(errors[0], buffer, sizeof buffer)) > 0;)
            text.append(buffer, got);
        close(errors[0]);
        return text;
    }
    void ExpectNext(const char* message)
    {
        const auto next = listener.Next();
        ASSERT_TRUE(next.has_value()) << "no report, expected " << message;
        EXPECT_EQ(*next, message);
    }

    service_kit::TempFolder folder;
    NotifyListener listener{folder.path + "/notify"};
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
            EXPECT_FALSE(listener.Next(300).has_value());
    }
    child.Kill(SIGTERM);
    ExpectNext(kStopPending);
    ExpectNext(kStopped);
    EXPECT_EQ(child.Wait(), 0);
    const std::string log = service_kit::LogText(folder.path);
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
    const std::string log = service_kit::LogText(folder.path);
    EXPECT_NE(log.find("Service failed to initialize"), std::string::npos);
    EXPECT_NE(log.find("Service stopped."), std::string::npos);
    EXPECT_EQ(log.find("Service started."), std::string::npos);
}

TEST_F(ServiceHost, StartedByHandTellsTheUserAndEnds)
{
    Run({}, false);
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(Errors(), "sampleservice: This application is a service, to start it go to Control Panel | "
                        "Administrative Tools | Services.\n");
    EXPECT_FALSE(listener.Next(100).has_value());
    const std::string log = service_kit::LogText(folder.path);
    EXPECT_NE(log.find("Windows error - StartServiceCtrlDispatcher returned error 1063: "), std::string::npos);
    EXPECT_EQ(log.find("Service started."), std::string::npos);
}

} // namespace
