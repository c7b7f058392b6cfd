// Progress on the break route with the real companion process, whose trace shows what it handled.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <cstring>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>

using namespace korva::test;

namespace {

using Lines = std::vector<std::string>;
using Clock = std::chrono::steady_clock;

// Whether `pid` has ended and was reaped, within 5 s.
bool Reaped(pid_t pid) { return WaitFor([pid] { return kill(pid, 0) != 0; }, std::chrono::seconds(5)); }

class ProgressBreakRouteTest : public ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        setenv("KORVA_BREAKWIN_TRACE", mDir.File("trace").c_str(), 1);
        BreakWindowChannel::SetChannel(&mProcess);
    }
    void TearDown() override
    {
        ProgressFrameFixture::TearDown();
        unsetenv("KORVA_BREAKWIN_TRACE");
        unsetenv("KORVA_BREAKWIN");
    }

    Lines Taken()
    {
        Lines all;
        std::ifstream in(mDir.File("trace"));
        for (std::string line; std::getline(in, line);)
            if (!line.empty() && line[0] != '#')
                all.push_back(line);
        const Lines taken(all.begin() + static_cast<std::ptrdiff_t>(mTaken), all.end());
        mTaken = all.size();
        return taken;
    }

    BreakWindowProcess mProcess;
    std::size_t mTaken = 0;
};

} // namespace

TEST_F(ProgressBreakRouteTest, EveryCallSendsItsMessagesInOrderAndAConfirmedStopMakesEveryReportReturnFalse)
{
    const QRect frame = mFrame->frameGeometry();
    const std::string geometry = std::to_string(frame.x()) + "," + std::to_string(frame.y()) + "," +
                                 std::to_string(frame.width()) + "," + std::to_string(frame.height());
    auto progress = std::make_unique<Progress>(nullptr, "Import", 0.0f, 4.0f, true, true, true, "Really stop?",
                                               "Importer", "Halt", 250);
    EXPECT_EQ(Taken(), (Lines{"start 250 111 " + geometry + " Import|Really stop?|Importer|Halt", "range 0 4",
                              "value 0"}));
    progress->Set(1.0f);
    progress->Set(9.0f);  // held at the range's end
    progress->SetRange(0.0f, 10.0f);
    EXPECT_EQ(Taken(), (Lines{"value 1", "value 4", "range 0 10", "value 0"}));
    // The first half of 0..10: the gauge spans the whole operation in the half's units; popping leaves it at 5.
    progress->PushSubRange(0.0f, 5.0f);
    progress->Set(1.0f);
    progress->PopSubRange();
    EXPECT_EQ(Taken(), (Lines{"range 0 2", "value 0", "value 0", "value 1", "range 0 10", "value 0", "value 5"}));
    progress->NextSpin();
    progress->SpinDone();
    progress->SetInfoStr("Phase 2 – Ausgleich");
    Progress::Hide();
    Progress::Show();
    Progress::ForceCreate();
    EXPECT_EQ(Progress::GetBreakWindow(), &mProcess);
    EXPECT_EQ(Taken(), (Lines{"spinstep", "spinrest", "title Phase 2 – Ausgleich", "show 0", "show 1", "show 1",
                              "show 1"}));
    progress.reset();
    Progress::Hide();  // nothing active: nothing to hide
    EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    EXPECT_EQ(Taken(), Lines{"finish"});

    // The companion stays for the next client, which gets its own texts and switches.
    const pid_t companion = mProcess.GetCompanionPid();
    Progress(nullptr, "Export", 0.0f, 1.0f, true, true, false, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(Taken(), (Lines{"start 0 110 " + geometry + " Export|Do you really want to stop?|MdiFrameTest|Stop",
                              "finish"}));
    EXPECT_EQ(mProcess.GetCompanionPid(), companion);

    {
        Progress stopping(nullptr, "Long work", 0.0f, 10.0f, false, true, true);
        EXPECT_TRUE(stopping.Set(1.0f));
        // The report comes on the connection's thread, ahead of the acknowledgement: no waiting needed.
        ASSERT_TRUE(mProcess.PressStopInCompanion());
        EXPECT_TRUE(stopping.IsBreakPressed());
        Taken();
        EXPECT_FALSE(stopping.Set(2.0f) || stopping.NextSpin() || stopping.SetInfoStr("Stopping") ||
                     stopping.PushSubRange(2.0f, 4.0f) || stopping.PopSubRange() || stopping.SetRange(0.0f, 1.0f));
        const Lines sent = Taken();
        ASSERT_GE(sent.size(), 3u);
        EXPECT_EQ(sent[0] + "|" + sent[2], "value 2|title Stopping") << "the display goes on";
    }
    // Between clients a stop goes nowhere, and the next client starts afresh.
    EXPECT_TRUE(mProcess.PressStopInCompanion());
    Progress after(nullptr, "More work", 0.0f, 10.0f, false, true, true);
    EXPECT_TRUE(after.Set(1.0f));
}

TEST_F(ProgressBreakRouteTest, WithoutGaugeOnlyTheStartIsSentInactiveObjectsSendNothingAndAShortTaskShowsTheWindow)
{
    Progress::InitProgress();
    auto* gauge = dynamic_cast<TsGauge*>(Progress::GetGauge());
    ASSERT_NE(gauge, nullptr);
    auto& bar = *qobject_cast<TsStatusBar*>(mFrame->GetMessageBar());
    {
        Progress progress(nullptr, "Counting", 0.0f, 1.0f, true, true, false, nullptr, nullptr, nullptr, 40);
        // The status bar's gauge steps aside; the break window has its own spinner.
        EXPECT_FALSE(gauge->isVisible());
        EXPECT_EQ(std::make_pair(bar.CommandToIndex(Progress::kGaugePaneId), bar.CommandToIndex(Progress::kSpinPaneId)),
                  std::make_pair(-1, -1));
        progress.Set(0.5f);
        progress.SetRange(0.0f, 3.0f);
        {
            Progress inner(nullptr, "Inner", 0.0f, 1.0f, true, true, true);
            EXPECT_FALSE(inner.IsActive());
            inner.Set(0.5f);
            inner.NextSpin();
            inner.SpinDone();
            inner.SetInfoStr("Inner step");
            inner.PushSubRange(0.0f, 0.5f);
        }
        const Lines sent = Taken();
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ(sent[0].substr(0, 13), "start 40 110 ");
        Progress quick("Quick look");
        EXPECT_FALSE(quick.IsActive());
        EXPECT_EQ(Taken(), Lines{"show 1"});
    }
    EXPECT_TRUE(gauge->isVisible() && bar.CommandToIndex(Progress::kGaugePaneId) == 0);
}

TEST_F(ProgressBreakRouteTest, WithoutAWindowOrACompanionThatCannotStartOrIsOfAnotherVersionTheRouteShowsNothing)
{
    for (const bool none : {true, false}) {
        BreakWindowChannel::SetChannel(none ? nullptr : &mProcess);
        setenv("KORVA_BREAKWIN", "/nonexistent/breakwin", 1);
        Progress progress(nullptr, "No window", 0.0f, 2.0f, true, true, true);
        EXPECT_TRUE(progress.IsActive() && progress.Set(1.0f) && progress.SetInfoStr("Still counting"));
        EXPECT_FLOAT_EQ(progress.GetValue(), 1.0f);
        Progress::Hide();
        EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    }
    EXPECT_FALSE(mProcess.IsWindow());
    unsetenv("KORVA_BREAKWIN");
    std::map<std::string, std::string> display;
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        if (const char* value = std::getenv(name); value && !unsetenv(name))
            display[name] = value;
    EXPECT_FALSE(mProcess.Create()) << "no display: the companion says so and ends";
    for (const auto& [name, value] : display)
        setenv(name.c_str(), value.c_str(), 1);

    // A companion of another version: its "ready" is refused at once and it is ended.
    BreakWire::Buffer ready;
    const std::size_t size = BreakWire::Encode(BreakWire::Make(BreakWire::eReady), ready);
    const std::uint32_t newer = BreakWire::kMagic | (BreakWire::kVersion + 1);
    std::memcpy(ready.data(), &newer, sizeof newer);
    WriteFile(mDir.File("ready.bin"), std::string(reinterpret_cast<const char*>(ready.data()), size));
    const std::string script = mDir.File("old-breakwin"), pidFile = mDir.File("old.pid");
    WriteFile(script,
              "#!/bin/sh\necho $$ > '" + pidFile + "'\ncat '" + mDir.File("ready.bin") + "' >&3\nexec sleep 30\n");
    chmod(script.c_str(), 0755);
    setenv("KORVA_BREAKWIN", script.c_str(), 1);
    EXPECT_EQ(BreakWindowProcess::GetProgramPath(), script);
    const auto before = Clock::now();
    EXPECT_FALSE(mProcess.Create());
    EXPECT_LT(Clock::now() - before, std::chrono::seconds(5)) << "refused at once";
    const pid_t old = static_cast<pid_t>(std::atoi(ReadFile(pidFile).c_str()));
    ASSERT_GT(old, 0);
    EXPECT_NE(kill(old, 0), 0) << "ended and reaped";
    unsetenv("KORVA_BREAKWIN");
    EXPECT_TRUE(mProcess.Create()) << "the real one starts again";
}

TEST_F(ProgressBreakRouteTest, OurEndIsCloseOnExecAndAKilledOrHangingCompanionLeavesProgressWorkingUntilTheNextCreate)
{
    Progress progress(nullptr, "Doomed window", 0.0f, 100.0f, false, true, true);
    const int socket = mProcess.GetSocket();
    EXPECT_TRUE(fcntl(socket, F_GETFD) & FD_CLOEXEC);
    // The companion got its end as descriptor 3, a socket other than ours.
    const pid_t first = mProcess.GetCompanionPid();
    char link[256] = {};
    const std::string fd3 = "/proc/" + std::to_string(first) + "/fd/3";
    ASSERT_GT(readlink(fd3.c_str(), link, sizeof link - 1), 0);
    EXPECT_EQ(std::string(link).rfind("socket:", 0), 0u) << link;
    struct stat ours = {}, theirs = {};
    ASSERT_EQ(fstat(socket, &ours) | stat(fd3.c_str(), &theirs), 0);
    EXPECT_NE(ours.st_ino, theirs.st_ino);
    EXPECT_TRUE(mProcess.Create()) << "a running companion is kept";
    EXPECT_EQ(mProcess.GetCompanionPid(), first);

    ASSERT_EQ(kill(first, SIGKILL), 0);
    const auto before = Clock::now();
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(progress.Set(float(i)) && progress.NextSpin() && progress.SetInfoStr("still going"));
    // Far below the acknowledgement timeout: the death was noticed, not waited out.
    EXPECT_LT(Clock::now() - before, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout / 2));
    EXPECT_TRUE(!mProcess.IsWindow() && mProcess.GetCompanionPid() == 0);
    EXPECT_TRUE(Reaped(first) && Progress::GetBreakWindow() == nullptr);
    ASSERT_TRUE(mProcess.Create());
    EXPECT_TRUE(mProcess.GetCompanionPid() != first && progress.Set(60.0f));

    // A companion that stops answering is given up after the acknowledgement timeout.
    const pid_t hanging = mProcess.GetCompanionPid();
    ASSERT_EQ(kill(hanging, SIGSTOP), 0);
    const auto stopped = Clock::now();
    mProcess.SpinStep();
    const auto waited = Clock::now() - stopped;
    EXPECT_GE(waited, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout - 100));
    EXPECT_LT(waited, std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout * 2));
    EXPECT_TRUE(!mProcess.IsWindow() && Reaped(hanging)) << "given up, killed and reaped";
    const auto after = Clock::now();
    mProcess.SpinStep();
    EXPECT_LT(Clock::now() - after, std::chrono::milliseconds(100)) << "later calls return at once";
}

TEST(BreakWindowDefaultTest, TheProcessMakesItsOwnBreakWindowAtTheFirstNeed)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // In fresh processes, as the choice is made once; without a variable the companion serves (break-window-e2e.sh).
    for (const auto& [variable, value] : {std::pair{"KORVA_BREAK_WINDOW", "inprocess"},
                                          {"KORVA_BREAKWIN", "/nonexistent/breakwin"}}) {
        EXPECT_EXIT(
            {
                setenv(variable, value, 1);
                Application();
                BreakWindowChannel* channel = BreakWindowChannel::GetChannel();
                std::_Exit(dynamic_cast<InProcessBreakWindow*>(channel) && BreakWindowChannel::GetChannel() == channel
                               ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << variable;
    }
}
