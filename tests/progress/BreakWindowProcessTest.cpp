// The break window in its companion process, run for real (offscreen): our end
// of the socket is close-on-exec, and a companion that dies, hangs or cannot
// start leaves Progress working without a window. (The messages themselves:
// ProgressBreakRouteTest.)

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>

#include <chrono>
#include <cstring>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

using korva::test::ProgressFrameFixture;

namespace {

using Clock = std::chrono::steady_clock;

// Whether the process `pid` has ended and was reaped, waiting up to 5 s.
bool Reaped(pid_t pid)
{
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (kill(pid, 0) == 0 && Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return kill(pid, 0) != 0;
}

// Sets an environment variable (null: removes it) for one scope.
class ScopedEnv
{
public:
    ScopedEnv(const char* name, const char* value) : mName(name)
    {
        if (const char* old = std::getenv(name))
            mOld = old;
        value ? setenv(name, value, 1) : unsetenv(name);
    }
    ~ScopedEnv() { mOld ? setenv(mName.c_str(), mOld->c_str(), 1) : unsetenv(mName.c_str()); }

private:
    std::string mName;
    std::optional<std::string> mOld;
};

class BreakWindowProcessTest : public ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        BreakWindowChannel::SetChannel(&mProcess);
    }

    BreakWindowProcess mProcess;
};

} // namespace

TEST_F(BreakWindowProcessTest, OurEndIsCloseOnExecAndTheCompanionHoldsOnlyItsOwn)
{
    ASSERT_TRUE(mProcess.Create());
    const int socket = mProcess.GetSocket();
    ASSERT_GE(socket, 0);
    EXPECT_NE(fcntl(socket, F_GETFD) & FD_CLOEXEC, 0);

    // The companion got its end as descriptor 3, a socket other than ours.
    const pid_t companion = mProcess.GetCompanionPid();
    char link[256] = {};
    const std::string fd3 = "/proc/" + std::to_string(companion) + "/fd/3";
    ASSERT_GT(readlink(fd3.c_str(), link, sizeof link - 1), 0);
    EXPECT_EQ(std::string(link).rfind("socket:", 0), 0u) << link;
    struct stat ours = {}, theirs = {};
    ASSERT_EQ(fstat(socket, &ours), 0);
    ASSERT_EQ(stat(fd3.c_str(), &theirs), 0);
    EXPECT_NE(ours.st_ino, theirs.st_ino);
    EXPECT_TRUE(mProcess.Create()) << "a running companion is kept";
    EXPECT_EQ(mProcess.GetCompanionPid(), companion);
}

TEST_F(BreakWindowProcessTest, AKilledCompanionLeavesProgressWorkingAndTheNextCreateStartsANewOne)
{
    Progress progress(nullptr, "Doomed window", 0.0f, 100.0f, false, true, true);
    const pid_t first = mProcess.GetCompanionPid();
    ASSERT_GT(first, 0);
    ASSERT_EQ(kill(first, SIGKILL), 0);

    const auto before = Clock::now();
    for (int i = 0; i < 50; ++i) {
        EXPECT_TRUE(progress.Set(static_cast<float>(i)));
        EXPECT_TRUE(progress.NextSpin());
        EXPECT_TRUE(progress.SetInfoStr("still going"));
    }
    // Far below the acknowledgement timeout: the death was noticed, not waited out.
    EXPECT_LT(Clock::now() - before, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout / 2));
    EXPECT_FALSE(mProcess.IsWindow());
    EXPECT_EQ(mProcess.GetCompanionPid(), 0);
    EXPECT_TRUE(Reaped(first));
    EXPECT_EQ(Progress::GetBreakWindow(), nullptr);

    ASSERT_TRUE(mProcess.Create());
    EXPECT_GT(mProcess.GetCompanionPid(), 0);
    EXPECT_NE(mProcess.GetCompanionPid(), first);
    EXPECT_TRUE(progress.Set(60.0f));
}

TEST_F(BreakWindowProcessTest, ACompanionThatStopsAnsweringIsGivenUpAfterTheTimeout)
{
    ASSERT_TRUE(mProcess.Create());
    const pid_t companion = mProcess.GetCompanionPid();
    ASSERT_EQ(kill(companion, SIGSTOP), 0);

    const auto before = Clock::now();
    mProcess.SpinStep();
    const auto waited = Clock::now() - before;
    EXPECT_GE(waited, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout - 100));
    EXPECT_LT(waited, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout * 2));
    EXPECT_FALSE(mProcess.IsWindow());
    EXPECT_TRUE(Reaped(companion)) << "killed and reaped";

    const auto after = Clock::now();
    mProcess.SpinStep();
    EXPECT_LT(Clock::now() - after, std::chrono::milliseconds(100)) << "later calls return at once";
}

TEST_F(BreakWindowProcessTest, ACompanionThatCannotStartMakesCreateFalse)
{
    {
        ScopedEnv program("KORVA_BREAKWIN", "/nonexistent/breakwin");
        EXPECT_EQ(BreakWindowProcess::GetProgramPath(), "/nonexistent/breakwin");
        EXPECT_FALSE(mProcess.Create());
        // Progress takes that as no window at all.
        Progress progress(nullptr, "Without window", 0.0f, 1.0f, false, true, true);
        EXPECT_TRUE(progress.Set(0.5f));
        EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    }
    {
        // No display: the companion says so and ends.
        ScopedEnv platform("QT_QPA_PLATFORM", nullptr), display("DISPLAY", nullptr), wayland("WAYLAND_DISPLAY", nullptr);
        EXPECT_FALSE(mProcess.Create());
    }
    {
        // A companion of another version: its "ready" is refused at once and it is ended.
        const std::string script = mDir.File("old-breakwin"), pidFile = mDir.File("old.pid");
        BreakWire::Buffer buffer;
        const std::size_t size = BreakWire::Encode(BreakWire::Make(BreakWire::eReady), buffer);
        const std::uint32_t newer = BreakWire::kMagic | (BreakWire::kVersion + 1);
        std::memcpy(buffer.data(), &newer, sizeof newer);
        WriteFile(mDir.File("ready.bin"), std::string(reinterpret_cast<const char*>(buffer.data()), size));
        WriteFile(script, "#!/bin/sh\necho $$ > '" + pidFile + "'\ncat '" + mDir.File("ready.bin") +
                              "' >&3\nexec sleep 30\n");
        chmod(script.c_str(), 0755);
        ScopedEnv program("KORVA_BREAKWIN", script.c_str());
        const auto before = Clock::now();
        EXPECT_FALSE(mProcess.Create());
        EXPECT_LT(Clock::now() - before, std::chrono::seconds(5));
        const pid_t old = static_cast<pid_t>(std::atoi(ReadFile(pidFile).c_str()));
        ASSERT_GT(old, 0);
        EXPECT_NE(kill(old, 0), 0) << "ended and reaped";
    }
    EXPECT_FALSE(mProcess.IsWindow());
    EXPECT_TRUE(mProcess.Create()) << "the real one starts again";
}

TEST(BreakWindowDefaultTest, TheProcessMakesItsOwnBreakWindowAtTheFirstNeed)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Each row in a fresh process: the choice is made once per process.
    const struct { const char* variable; const char* value; bool companion; } rows[] = {
        {nullptr, nullptr, true},
        {"KORVA_BREAK_WINDOW", "inprocess", false},
        {"KORVA_BREAKWIN", "/nonexistent/breakwin", false},
    };
    for (const auto& row : rows) {
        EXPECT_EXIT(
            {
                if (row.variable)
                    setenv(row.variable, row.value, 1);
                korva::test::Application();
                BreakWindowChannel* channel = BreakWindowChannel::GetChannel();
                auto* process = dynamic_cast<BreakWindowProcess*>(channel);
                const bool right = row.companion ? process && process->IsWindow()
                                                 : dynamic_cast<InProcessBreakWindow*>(channel) != nullptr;
                std::_Exit(right && BreakWindowChannel::GetChannel() == channel ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << (row.value ? row.value : "no variable");
    }
    EXPECT_EXIT(
        {
            korva::test::Application();
            BreakWindowChannel::SetChannel(nullptr);
            std::_Exit(BreakWindowChannel::GetChannel() == nullptr ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(BreakWindowCompanionTest, StartedByHandItSaysWhatItIsFor)
{
    for (const char* argument : {" --help", ""}) {
        // Our own descriptor 3 (if any) must not look like a connection to it.
        const std::string command = "'" + BreakWindowProcess::GetProgramPath() + "'" + argument + " 3<&- 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        std::string output;
        char chunk[256];
        while (std::fgets(chunk, sizeof chunk, pipe))
            output += chunk;
        const int status = pclose(pipe);
        EXPECT_NE(output.find("not meant to be started by hand"), std::string::npos) << output;
        EXPECT_EQ(WEXITSTATUS(status), *argument ? 0 : 2);
    }
}
