// Progress on the break route: every message of the break window protocol that
// it sends, in order, to a break window that records them and to the real
// companion (whose trace holds what it handled before the call returned); a
// confirmed stop; and the route without any break window.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <fstream>
#include <thread>

using namespace korva::test;

namespace {

using Lines = std::vector<std::string>;

class ProgressBreakRouteTest : public ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        BreakWindowChannel::SetChannel(&mWindow);
    }
    void TearDown() override
    {
        BreakWindowChannel::SetChannel(nullptr);
        mProcess.reset();
        unsetenv("KORVA_BREAKWIN_TRACE");
        ProgressFrameFixture::TearDown();
    }

    void UseCompanion()
    {
        setenv("KORVA_BREAKWIN_TRACE", mDir.File("trace").c_str(), 1);
        mProcess = std::make_unique<BreakWindowProcess>();
        BreakWindowChannel::SetChannel(mProcess.get());
    }

    // The messages handled since the last call (the companion's notes left out).
    Lines Taken()
    {
        Lines all = mWindow.messages;
        if (mProcess) {
            all.clear();
            std::ifstream in(mDir.File("trace"));
            for (std::string line; std::getline(in, line);)
                if (!line.empty() && line[0] != '#')
                    all.push_back(line);
        }
        const Lines taken(all.begin() + static_cast<std::ptrdiff_t>(mTaken), all.end());
        mTaken = all.size();
        return taken;
    }

    // The user confirms the stop in the window, on a thread other than the work's.
    void PressStop()
    {
        if (mProcess)
            ASSERT_TRUE(mProcess->PressStopInCompanion());
        else
            std::thread([this] { mWindow.PressStop(); }).join();
    }

    RecordingBreakWindow mWindow;
    std::unique_ptr<BreakWindowProcess> mProcess;
    std::size_t mTaken = 0;
};

class ProgressBreakTransportTest : public ProgressBreakRouteTest, public ::testing::WithParamInterface<bool>
{
protected:
    void SetUp() override
    {
        ProgressBreakRouteTest::SetUp();
        if (GetParam())
            UseCompanion();
    }
};

INSTANTIATE_TEST_SUITE_P(, ProgressBreakTransportTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "Companion" : "Recorder"; });

} // namespace

TEST_P(ProgressBreakTransportTest, EveryCallSendsItsMessagesInOrderBeforeItReturns)
{
    const std::string geometry = Geometry(mFrame->frameGeometry());
    auto progress = std::make_unique<Progress>(nullptr, "Import", 0.0f, 4.0f, true, true, true, "Really stop?",
                                               "Importer", "Halt", 250);
    ASSERT_TRUE(progress->IsActive());
    EXPECT_EQ(Taken(), (Lines{"start 250 111 " + geometry + " Import|Really stop?|Importer|Halt", "range 0 4",
                              "value 0"}));
    progress->Set(1.0f);
    progress->Set(9.0f);  // held at the range's end
    progress->SetRange(0.0f, 10.0f);
    EXPECT_EQ(Taken(), (Lines{"value 1", "value 4", "range 0 10", "value 0"}));

    // The first half of 0..10: the window's gauge spans the whole operation in
    // the sub-range's units, 0 to 2; popping leaves it where the half ended.
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
    EXPECT_EQ(Progress::GetBreakWindow(), BreakWindowChannel::GetChannel());
    EXPECT_EQ(Taken(), (Lines{"spinstep", "spinrest", "title Phase 2 – Ausgleich", "show 0", "show 1", "show 1",
                              "show 1"}));
    progress.reset();
    // Nothing active: nothing to hide.
    Progress::Hide();
    EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    EXPECT_EQ(Taken(), Lines{"finish"});

    // The window stays for the next client, which gets its own texts and switches.
    const pid_t companion = mProcess ? mProcess->GetCompanionPid() : 0;
    Progress(nullptr, "Export", 0.0f, 1.0f, true, true, false, nullptr, nullptr, nullptr, 0);
    EXPECT_EQ(Taken(), (Lines{"start 0 110 " + geometry + " Export|Do you really want to stop?|MdiFrameTest|Stop",
                              "finish"}));
    EXPECT_EQ(mProcess ? mProcess->GetCompanionPid() : 0, companion);
}

TEST_P(ProgressBreakTransportTest, ConfirmedStopMakesEveryReportReturnFalseWhileTheDisplayGoesOn)
{
    {
        Progress progress(nullptr, "Long work", 0.0f, 10.0f, false, true, true);
        EXPECT_TRUE(progress.Set(1.0f));
        PressStop();
        // The report travels ahead of the acknowledgement: no waiting needed.
        EXPECT_TRUE(progress.IsBreakPressed());
        Taken();
        EXPECT_FALSE(progress.Set(2.0f));
        EXPECT_FALSE(progress.NextSpin());
        EXPECT_FALSE(progress.SetInfoStr("Stopping"));
        EXPECT_FALSE(progress.PushSubRange(2.0f, 4.0f));
        EXPECT_FALSE(progress.PopSubRange());
        EXPECT_FALSE(progress.SetRange(0.0f, 1.0f));
        const Lines sent = Taken();
        ASSERT_GE(sent.size(), 3u);
        EXPECT_EQ(sent[0], "value 2");
        EXPECT_EQ(sent[2], "title Stopping");
        EXPECT_TRUE(progress.IsBreakPressed()) << "never goes back";
        EXPECT_TRUE(BreakWindowChannel::GetChannel()->IsWindow()) << "the window goes on until the work ends";
    }
    // Between clients a stop goes nowhere, and the next client starts afresh.
    EXPECT_TRUE(!mProcess || mProcess->PressStopInCompanion());
    Progress next(nullptr, "More work", 0.0f, 10.0f, false, true, true);
    EXPECT_TRUE(next.Set(1.0f));
    EXPECT_FALSE(next.IsBreakPressed());
}

TEST_F(ProgressBreakRouteTest, WithoutGaugeOnlyTheStartIsSentAndTheStatusGaugeStepsAside)
{
    Progress::InitProgress();
    auto* gauge = dynamic_cast<TsGauge*>(Progress::GetGauge());
    ASSERT_NE(gauge, nullptr);
    auto& bar = *qobject_cast<TsStatusBar*>(mFrame->GetMessageBar());
    {
        Progress progress(nullptr, "Counting", 0.0f, 1.0f, true, true, false, nullptr, nullptr, nullptr, 40);
        EXPECT_FALSE(gauge->isVisible());
        EXPECT_EQ(bar.CommandToIndex(Progress::kGaugePaneId), -1);
        EXPECT_EQ(bar.CommandToIndex(Progress::kSpinPaneId), -1) << "the break window has its own spinner";
        progress.Set(0.5f);
        progress.SetRange(0.0f, 3.0f);
        const Lines sent = Taken();
        ASSERT_EQ(sent.size(), 1u);
        EXPECT_EQ(sent[0].substr(0, 13), "start 40 110 ");
    }
    EXPECT_TRUE(gauge->isVisible());
    EXPECT_EQ(bar.CommandToIndex(Progress::kGaugePaneId), 0);
}

TEST_F(ProgressBreakRouteTest, InactiveObjectsSendNothingAndAShortTaskBringsTheWindowUp)
{
    Progress active(nullptr, "Outer", 0.0f, 1.0f, true, true, true);
    Taken();
    {
        Progress inner(nullptr, "Inner", 0.0f, 1.0f, true, true, true);
        EXPECT_FALSE(inner.IsActive());
        inner.Set(0.5f);
        inner.NextSpin();
        inner.SpinDone();
        inner.SetInfoStr("Inner step");
        inner.PushSubRange(0.0f, 0.5f);
    }
    EXPECT_EQ(Taken(), Lines{});
    EXPECT_EQ(mWindow.creates, 1);

    Progress quick("Quick look");
    EXPECT_FALSE(quick.IsActive());
    EXPECT_EQ(Taken(), Lines{"show 1"});
}

TEST_F(ProgressBreakRouteTest, WithoutBreakWindowTheRouteCountsAndShowsNothing)
{
    // No break window at all, and one that cannot come into being, are the same.
    for (bool none : {true, false}) {
        BreakWindowChannel::SetChannel(none ? nullptr : &mWindow);
        mWindow.exists = false;
        Progress progress(nullptr, "No window", 0.0f, 2.0f, true, true, true);
        EXPECT_TRUE(progress.IsActive());
        EXPECT_TRUE(progress.Set(1.0f));
        EXPECT_FLOAT_EQ(progress.GetValue(), 1.0f);
        EXPECT_TRUE(progress.SetInfoStr("Still counting"));
        Progress::Hide();
        Progress::Show();
        EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    }
    EXPECT_EQ(mWindow.creates, 1);
    EXPECT_EQ(Taken(), Lines{});
}
