// Progress on the break route: every message of the break window protocol that
// it sends, in order, to a break window that records them; a stop pressed on
// another thread; and the route without any break window.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/TsGauge.h>

#include <memory>
#include <thread>

using korva::test::BreakMessage;
using korva::test::ProgressFrameFixture;
using korva::test::RecordingBreakWindow;

namespace {

using Channel = BreakWindowChannel;

BreakMessage Start(unsigned int delay) { return {Channel::eStart, static_cast<float>(delay)}; }
BreakMessage Range(float low, float high) { return {Channel::eGaugeRange, low, high}; }
BreakMessage Value(float value) { return {Channel::eGaugeValue, value}; }
BreakMessage Title(const char* text) { return {Channel::eSetTitle, 0.0f, 0.0f, text}; }
BreakMessage ShowWindow(bool show) { return {Channel::eShowWindow, show ? 1.0f : 0.0f}; }
const BreakMessage kSpinStep{Channel::eSpinStep};
const BreakMessage kSpinRest{Channel::eSpinRest};
const BreakMessage kFinish{Channel::eFinish};

class ProgressBreakRouteTest : public ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        BreakWindowChannel::SetChannel(&mWindow);
    }

    RecordingBreakWindow mWindow;
};

} // namespace

TEST_F(ProgressBreakRouteTest, EveryCallSendsItsMessagesInOrder)
{
    auto progress = std::make_unique<Progress>(nullptr, "Import", 0.0f, 4.0f, true, true, true, "Really stop?",
                                               "Importer", "Halt", 250);
    ASSERT_TRUE(progress->IsActive());
    EXPECT_EQ(mWindow.creates, 1);
    EXPECT_EQ(mWindow.startTexts, (std::vector<std::string>{"Import", "Really stop?", "Importer", "Halt"}));
    EXPECT_EQ(mWindow.startSwitches, (std::vector<bool>{true, true, true}));
    EXPECT_EQ(mWindow.startGeometry, mFrame->frameGeometry());
    EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{Start(250), Range(0, 4), Value(0)}));
    mWindow.messages.clear();

    progress->Set(1.0f);
    progress->Set(9.0f);  // held at the range's end
    progress->SetRange(0.0f, 10.0f);
    EXPECT_EQ(mWindow.messages,
              (std::vector<BreakMessage>{Value(1), Value(4), Range(0, 10), Value(0)}));
    mWindow.messages.clear();

    // The first half of 0..10: the window's gauge spans the whole operation in
    // the sub-range's units, 0 to 2; popping leaves it where the half ended.
    progress->PushSubRange(0.0f, 5.0f);
    progress->Set(1.0f);
    progress->PopSubRange();
    EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{Range(0, 2), Value(0), Value(0), Value(1), Range(0, 10),
                                                           Value(0), Value(5)}));
    mWindow.messages.clear();

    progress->NextSpin();
    progress->SpinDone();
    progress->SetInfoStr("Phase 2");
    Progress::Hide();
    Progress::Show();
    Progress::ForceCreate();
    EXPECT_EQ(Progress::GetBreakWindow(), &mWindow);
    EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{kSpinStep, kSpinRest, Title("Phase 2"), ShowWindow(false),
                                                           ShowWindow(true), ShowWindow(true), ShowWindow(true)}));
    mWindow.messages.clear();

    progress.reset();
    EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{kFinish}));
    EXPECT_EQ(mWindow.creates, 1);
    // Nothing active: nothing to hide.
    Progress::Hide();
    EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    EXPECT_EQ(mWindow.messages.size(), 1u);
}

TEST_F(ProgressBreakRouteTest, ConfirmedStopMakesEveryReportReturnFalseWhileTheDisplayGoesOn)
{
    Progress progress(nullptr, "Long work", 0.0f, 10.0f, false, true, true);
    EXPECT_TRUE(progress.Set(1.0f));
    std::thread([this] { mWindow.PressStop(); }).join();

    EXPECT_TRUE(progress.IsBreakPressed());
    mWindow.messages.clear();
    EXPECT_FALSE(progress.Set(2.0f));
    EXPECT_FALSE(progress.NextSpin());
    EXPECT_FALSE(progress.SetInfoStr("Stopping"));
    EXPECT_FALSE(progress.PushSubRange(2.0f, 4.0f));
    EXPECT_FALSE(progress.PopSubRange());
    EXPECT_FALSE(progress.SetRange(0.0f, 1.0f));
    EXPECT_EQ(mWindow.messages.front(), Value(2));
    EXPECT_EQ(mWindow.messages[2], Title("Stopping"));
    EXPECT_TRUE(progress.IsBreakPressed()) << "never goes back";
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
        EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{Start(40)}));
    }
    EXPECT_TRUE(gauge->isVisible());
    EXPECT_EQ(bar.CommandToIndex(Progress::kGaugePaneId), 0);
}

TEST_F(ProgressBreakRouteTest, InactiveObjectsSendNothingAndAShortTaskBringsTheWindowUp)
{
    Progress active(nullptr, "Outer", 0.0f, 1.0f, true, true, true);
    mWindow.messages.clear();
    {
        Progress inner(nullptr, "Inner", 0.0f, 1.0f, true, true, true);
        EXPECT_FALSE(inner.IsActive());
        inner.Set(0.5f);
        inner.NextSpin();
        inner.SpinDone();
        inner.SetInfoStr("Inner step");
        inner.PushSubRange(0.0f, 0.5f);
    }
    EXPECT_TRUE(mWindow.messages.empty());
    EXPECT_EQ(mWindow.creates, 1);

    Progress quick("Quick look");
    EXPECT_FALSE(quick.IsActive());
    EXPECT_EQ(mWindow.messages, (std::vector<BreakMessage>{ShowWindow(true)}));
}

TEST_F(ProgressBreakRouteTest, WithoutBreakWindowTheRouteCountsAndShowsNothing)
{
    BreakWindowChannel::SetChannel(nullptr);
    {
        Progress progress(nullptr, "No window", 0.0f, 2.0f, true, true, true);
        EXPECT_TRUE(progress.IsActive());
        EXPECT_TRUE(progress.Set(1.0f));
        EXPECT_FLOAT_EQ(progress.GetValue(), 1.0f);
        EXPECT_TRUE(progress.SetInfoStr("Still counting"));
        Progress::Hide();
        Progress::Show();
        EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    }

    // A break window that cannot come into being is treated the same.
    mWindow.exists = false;
    BreakWindowChannel::SetChannel(&mWindow);
    {
        Progress progress(nullptr, "Window failed", 0.0f, 2.0f, true, true, true);
        EXPECT_TRUE(progress.Set(1.0f));
        EXPECT_EQ(Progress::GetBreakWindow(), nullptr);
    }
    EXPECT_EQ(mWindow.creates, 1);
    EXPECT_TRUE(mWindow.messages.empty());
}
