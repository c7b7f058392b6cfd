// The break window in its companion process, run for real (offscreen): every
// message of a Progress arrives in order and is acknowledged, a stop confirmed
// over there makes the next Set return false, our end of the socket is
// close-on-exec, and a companion that dies, hangs or cannot start leaves
// Progress working without a window.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

using korva::test::ProgressFrameFixture;

namespace {

using Clock = std::chrono::steady_clock;

// The messages that the companion handled, in order, without the notes.
std::vector<std::string> TracedMessages(const std::string& path)
{
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);)
        if (!line.empty() && line[0] != '#')
            lines.push_back(line);
    return lines;
}

// Whether a process with `pid` exists (a zombie counts).
bool Exists(pid_t pid)
{
    return kill(pid, 0) == 0;
}

// Waits up to `limit` for `condition`.
template <typename Condition>
bool Eventually(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(5))
{
    const auto deadline = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

// Sets an environment variable for one scope.
class ScopedEnv
{
public:
    ScopedEnv(const char* name, const char* value) : mName(name)
    {
        if (const char* old = std::getenv(name))
            mOld = std::make_unique<std::string>(old);
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~ScopedEnv()
    {
        if (mOld)
            setenv(mName.c_str(), mOld->c_str(), 1);
        else
            unsetenv(mName.c_str());
    }

private:
    std::string mName;
    std::unique_ptr<std::string> mOld;
};

class BreakWindowProcessTest : public ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        mTrace = mDir.File("trace.txt");
        setenv("KORVA_BREAKWIN_TRACE", mTrace.c_str(), 1);
        mProcess = std::make_unique<BreakWindowProcess>();
        BreakWindowChannel::SetChannel(mProcess.get());
    }
    void TearDown() override
    {
        BreakWindowChannel::SetChannel(nullptr);
        mProcess.reset();
        unsetenv("KORVA_BREAKWIN_TRACE");
        ProgressFrameFixture::TearDown();
    }

    std::string mTrace;
    std::unique_ptr<BreakWindowProcess> mProcess;
};

} // namespace

TEST_F(BreakWindowProcessTest, EveryMessageIsHandledInOrderBeforeTheCallReturns)
{
    const QRect frame = mFrame->frameGeometry();
    const std::string geometry = std::to_string(frame.x()) + "," + std::to_string(frame.y()) + "," +
                                 std::to_string(frame.width()) + "," + std::to_string(frame.height());
    const std::vector<std::string> first = {"start 250 101 " + geometry + " Import|Really stop?|Importer|Halt",
                                            "range 0 4", "value 0", "value 1.5", "range 0 2", "value 0", "value 0",
                                            "range 0 4", "value 0", "value 2", "spinstep", "spinrest",
                                            "title Phase 2 – Ausgleich", "show 0", "show 1", "finish"};
    {
        Progress progress(nullptr, "Import", 0.0f, 4.0f, false, true, true, "Really stop?", "Importer", "Halt", 250);
        ASSERT_TRUE(mProcess->IsWindow());
        // Synchronous: what a call sent is in the trace when it returns.
        EXPECT_EQ(TracedMessages(mTrace), std::vector<std::string>(first.begin(), first.begin() + 3));

        progress.Set(1.5f);
        progress.PushSubRange(0.0f, 2.0f);
        progress.PopSubRange();
        progress.NextSpin();
        progress.SpinDone();
        progress.SetInfoStr("Phase 2 – Ausgleich");
        Progress::Hide();
        Progress::Show();
        EXPECT_EQ(TracedMessages(mTrace), std::vector<std::string>(first.begin(), first.end() - 1));
    }
    EXPECT_EQ(TracedMessages(mTrace), first);

    // The companion stays for the next client, which gets its own texts and switches.
    const pid_t companion = mProcess->GetCompanionPid();
    {
        Progress next(nullptr, "Export", 0.0f, 1.0f, true, true, false, nullptr, nullptr, nullptr, 0);
        EXPECT_EQ(mProcess->GetCompanionPid(), companion);
    }
    std::vector<std::string> both = first;
    both.push_back("start 0 110 " + geometry + " Export|Do you really want to stop?|MdiFrameTest|Stop");
    both.push_back("finish");
    EXPECT_EQ(TracedMessages(mTrace), both);
}

TEST_F(BreakWindowProcessTest, AStopConfirmedInTheCompanionMakesTheNextSetReturnFalse)
{
    {
        Progress progress(nullptr, "Long work", 0.0f, 10.0f, false, true, true);
        EXPECT_TRUE(progress.Set(1.0f));
        ASSERT_TRUE(mProcess->PressStopInCompanion());
        // The report travels ahead of the acknowledgement: no waiting needed.
        EXPECT_TRUE(progress.IsBreakPressed());
        EXPECT_FALSE(progress.Set(2.0f));
        EXPECT_FALSE(progress.NextSpin());
        EXPECT_TRUE(mProcess->IsWindow()) << "the window goes on until the work ends";
    }
    // Between clients a stop goes nowhere, and the next client starts afresh.
    EXPECT_TRUE(mProcess->PressStopInCompanion());
    Progress next(nullptr, "More work", 0.0f, 10.0f, false, true, true);
    EXPECT_TRUE(next.Set(1.0f));
    EXPECT_FALSE(next.IsBreakPressed());
    const std::vector<std::string> traced = TracedMessages(mTrace);
    EXPECT_EQ(std::count(traced.begin(), traced.end(), "pressstop"), 2);
}

TEST_F(BreakWindowProcessTest, OurEndIsCloseOnExecAndTheCompanionHoldsOnlyItsOwn)
{
    ASSERT_TRUE(mProcess->Create());
    const int socket = mProcess->GetSocket();
    ASSERT_GE(socket, 0);
    const int flags = fcntl(socket, F_GETFD);
    ASSERT_NE(flags, -1);
    EXPECT_NE(flags & FD_CLOEXEC, 0);

    // The companion got its end as descriptor 3, a socket other than ours.
    const pid_t companion = mProcess->GetCompanionPid();
    char link[256] = {};
    const std::string fd3 = "/proc/" + std::to_string(companion) + "/fd/3";
    ASSERT_GT(readlink(fd3.c_str(), link, sizeof link - 1), 0);
    EXPECT_EQ(std::string(link).rfind("socket:", 0), 0u) << link;
    struct stat ours = {}, theirs = {};
    ASSERT_EQ(fstat(socket, &ours), 0);
    ASSERT_EQ(stat(fd3.c_str(), &theirs), 0);
    EXPECT_NE(ours.st_ino, theirs.st_ino);
    EXPECT_TRUE(mProcess->Create()) << "a running companion is kept";
    EXPECT_EQ(mProcess->GetCompanionPid(), companion);
}

TEST_F(BreakWindowProcessTest, AKilledCompanionLeavesProgressWorkingAndTheNextCreateStartsANewOne)
{
    Progress progress(nullptr, "Doomed window", 0.0f, 100.0f, false, true, true);
    const pid_t first = mProcess->GetCompanionPid();
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
    EXPECT_FALSE(mProcess->IsWindow());
    EXPECT_EQ(mProcess->GetCompanionPid(), 0);
    EXPECT_TRUE(Eventually([&] { return !Exists(first); })) << "the dead companion is reaped";
    EXPECT_EQ(Progress::GetBreakWindow(), nullptr);

    ASSERT_TRUE(mProcess->Create());
    const pid_t second = mProcess->GetCompanionPid();
    EXPECT_GT(second, 0);
    EXPECT_NE(second, first);
    EXPECT_TRUE(progress.Set(60.0f));
}

TEST_F(BreakWindowProcessTest, ACompanionThatStopsAnsweringIsGivenUpAfterTheTimeout)
{
    ASSERT_TRUE(mProcess->Create());
    const pid_t companion = mProcess->GetCompanionPid();
    ASSERT_EQ(kill(companion, SIGSTOP), 0);

    const auto before = Clock::now();
    mProcess->SpinStep();
    const auto waited = Clock::now() - before;
    EXPECT_GE(waited, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout - 100));
    EXPECT_LT(waited, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout * 2));
    EXPECT_FALSE(mProcess->IsWindow());
    EXPECT_TRUE(Eventually([&] { return !Exists(companion); })) << "killed and reaped";

    const auto after = Clock::now();
    mProcess->SpinStep();
    EXPECT_LT(Clock::now() - after, std::chrono::milliseconds(100)) << "later calls return at once";
}

TEST_F(BreakWindowProcessTest, ACompanionThatCannotStartMakesCreateFalse)
{
    {
        ScopedEnv program("KORVA_BREAKWIN", "/nonexistent/breakwin");
        EXPECT_EQ(BreakWindowProcess::GetProgramPath(), "/nonexistent/breakwin");
        EXPECT_FALSE(mProcess->Create());
    }
    {
        // No display: the companion says so and ends.
        ScopedEnv platform("QT_QPA_PLATFORM", nullptr);
        ScopedEnv display("DISPLAY", nullptr);
        ScopedEnv wayland("WAYLAND_DISPLAY", nullptr);
        EXPECT_FALSE(mProcess->Create());
    }
    {
        // A companion of another version: its "ready" is refused at once and it is ended.
        const std::string script = mDir.File("old-breakwin");
        const std::string pidFile = mDir.File("old.pid");
        const std::string record = mDir.File("ready.bin");
        BreakWire::Buffer buffer;
        const std::size_t size = BreakWire::Encode(BreakWire::Make(BreakWire::eReady), buffer);
        const std::uint32_t newer = BreakWire::kMagic | (BreakWire::kVersion + 1);
        std::memcpy(buffer.data(), &newer, sizeof newer);
        WriteFile(record, std::string(reinterpret_cast<const char*>(buffer.data()), size));
        WriteFile(script, "#!/bin/sh\necho $$ > '" + pidFile + "'\ncat '" + record + "' >&3\nexec sleep 30\n");
        chmod(script.c_str(), 0755);
        ScopedEnv program("KORVA_BREAKWIN", script.c_str());
        const auto before = Clock::now();
        EXPECT_FALSE(mProcess->Create());
        EXPECT_LT(Clock::now() - before, std::chrono::seconds(5));
        const pid_t old = static_cast<pid_t>(std::atoi(ReadFile(pidFile).c_str()));
        ASSERT_GT(old, 0);
        EXPECT_FALSE(Exists(old)) << "ended and reaped";
    }
    EXPECT_FALSE(mProcess->IsWindow());

    // Progress takes that as no window at all.
    {
        ScopedEnv program("KORVA_BREAKWIN", "/nonexistent/breakwin");
        Progress progress(nullptr, "Without window", 0.0f, 1.0f, false, true, true);
        EXPECT_TRUE(progress.Set(0.5f));
        EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    }
    EXPECT_TRUE(mProcess->Create()) << "the real one starts again";
}

TEST(BreakWindowDefaultTest, TheProcessMakesItsOwnBreakWindowAtTheFirstNeed)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Each check in a fresh process: the choice is made once per process.
    EXPECT_EXIT(
        {
            korva::test::Application();
            BreakWindowChannel* channel = BreakWindowChannel::GetChannel();
            auto* process = dynamic_cast<BreakWindowProcess*>(channel);
            std::_Exit(process && process->IsWindow() && BreakWindowChannel::GetChannel() == channel ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("KORVA_BREAK_WINDOW", "inprocess", 1);
            korva::test::Application();
            std::_Exit(dynamic_cast<InProcessBreakWindow*>(BreakWindowChannel::GetChannel()) ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
    EXPECT_EXIT(
        {
            setenv("KORVA_BREAKWIN", "/nonexistent/breakwin", 1);
            korva::test::Application();
            std::_Exit(dynamic_cast<InProcessBreakWindow*>(BreakWindowChannel::GetChannel()) ? 0 : 1);
        },
        ::testing::ExitedWithCode(0), "");
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
    const std::string program = BreakWindowProcess::GetProgramPath();
    for (const char* argument : {" --help", ""}) {
        // Our own descriptor 3 (if any) must not look like a connection to it.
        const std::string command = "'" + program + "'" + argument + " 3<&- 2>&1";
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
