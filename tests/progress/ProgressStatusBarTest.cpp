// Progress on the status bar route, on both kinds of bar, and its message loop.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/SpinWindow.h>
#include <KORVAutlwin/progress/TsGauge.h>
#include <KORVAutlwin/progress/TsXTPGauge.h>

#include <QProgressBar>

using namespace korva::test;

namespace {

void WaitForPumpInterval()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(3 * Progress::kPumpInterval));
}

class ProgressStatusBarTest : public ProgressFrameFixture
{
protected:
    TsStatusBar& Bar() { return *qobject_cast<TsStatusBar*>(mFrame->GetMessageBar()); }
    std::pair<int, int> Panes()
    {
        return {Bar().CommandToIndex(Progress::kGaugePaneId), Bar().CommandToIndex(Progress::kSpinPaneId)};
    }
    TsGauge* Gauge() { return dynamic_cast<TsGauge*>(Progress::GetGauge()); }
    QWidget* HostedIn(unsigned int paneId)
    {
        for (QWidget* child : Bar().findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (Bar().CommandToIndex(paneId) >= 0 && Bar().GetWindowIndex(child) == Bar().CommandToIndex(paneId))
                return child;
        return nullptr;
    }
    std::string MessageText() const
    {
        if (auto* plain = qobject_cast<TsStatusBar*>(mFrame->GetMessageBar()))
            return plain->GetPaneText(plain->CommandToIndex(0));
        auto* xtp = qobject_cast<TsXTPStatusBar*>(mFrame->GetMessageBar());
        return xtp->GetPaneText(xtp->CommandToIndex(0));
    }
    static std::string Idle() { return LanguageString::Get(Progress::kIdleMessageId); }
};

} // namespace

TEST_F(ProgressStatusBarTest, OnlyTheFirstObjectOnTheMainThreadOfAMainFrameOwnsTheDisplayNeverASecondOrACopy)
{
    MakeFrame();
    // An object on a worker thread shows nothing and never blocks the display.
    bool workerActive = true, workerSet = false;
    std::thread([&] {
        Progress progress(nullptr, "Worker", 0.0f, 10.0f, true, false, true);
        workerActive = progress.IsActive() || Progress::IsProgressActive();
        workerSet = progress.Set(25.0f);
    }).join();
    EXPECT_TRUE(!workerActive && workerSet);
    EXPECT_EQ(Panes().second, -1);

    auto first = std::make_unique<Progress>(nullptr, "First", 0.0f, 4.0f, true, false, true, "Sure?", "Title", "Halt");
    EXPECT_TRUE(first->IsActive());
    first->PushSubRange(2.0f, 4.0f);
    first->SetCounter(0.25f);
    first->Set(0.5f);
    Progress second(nullptr, "Second", 0.0f, 10.0f, true, false, true);
    EXPECT_TRUE(!second.IsActive() && second.SetInfoStr("Not shown") && second.Set(4.0f));
    {
        // A copy takes the texts, the ranges, the value and the counter along, never the display.
        Progress copy(*first);
        EXPECT_EQ(std::tuple(copy.IsActive(), copy.GetStopButton(), copy.GetValue()), std::tuple(false, "Halt", 0.75f));
        copy.Set(0.0f);
        EXPECT_FLOAT_EQ(copy.GetValue(), 0.25f);
        copy.SetInfoStr("From the copy");
        copy.PopSubRange();
        EXPECT_EQ(first->GetRanges().size(), 2u);
        Progress assigned(nullptr, "Other", 0.0f, 1.0f);
        assigned = *first;
        EXPECT_FALSE(assigned.IsActive());
    }
    // Neither the second object nor the copies touch the first's display, not even at their ends.
    EXPECT_EQ(std::tuple(first->IsActive(), MessageText(), Gauge()->GetValue(), Panes().second != -1),
              std::tuple(true, "First", 0.75f, true));
    first.reset();
    EXPECT_FALSE(Progress::IsProgressActive() || second.IsActive());
    EXPECT_EQ(MessageText(), Idle());
    EXPECT_TRUE(Progress(nullptr, "Third", 0.0f, 1.0f, false, false, true).IsActive());

    // Without a main frame nothing is active.
    mApp->SetMainWnd(nullptr);
    mFrame.reset();
    QWidget plain;  // a main window that is not a main frame
    mApp->SetMainWnd(&plain);
    EXPECT_FALSE(Progress(nullptr, "Plain", 0.0f, 2.0f, true, false, true).IsActive());
    EXPECT_EQ(Progress::GetGauge(), nullptr);
    mApp->SetMainWnd(nullptr);
    EXPECT_FALSE(Progress(nullptr, "None", 0.0f, 2.0f, true, true, true).IsActive());
}

TEST_F(ProgressStatusBarTest, GaugeSpinIndicatorTextAndWaitCursorComeAndGoWithTheActiveObject)
{
    MakeFrame();
    auto progress = std::make_unique<Progress>(nullptr, "Computing", 0.0f, 10.0f, true, false, true);
    TsGauge* gauge = Gauge();
    ASSERT_NE(gauge, nullptr);
    // Gauge first, spin indicator beside it, the message pane after them.
    EXPECT_EQ(Panes(), std::make_pair(0, 1));
    EXPECT_EQ(HostedIn(Progress::kGaugePaneId), gauge);
    QPointer<SpinWindow> spin = qobject_cast<SpinWindow*>(HostedIn(Progress::kSpinPaneId));
    ASSERT_NE(spin, nullptr);
    EXPECT_FALSE(spin->IsRunning()) << "it moves with NextSpin";
    EXPECT_EQ(MessageText(), "Computing");
    // On display, values are held within the top range.
    progress->SetCounter(10.0f);
    EXPECT_TRUE(progress->Set(2.0f));
    EXPECT_EQ(std::make_pair(progress->GetValue(), gauge->GetValue()), std::make_pair(10.0f, 10.0f));
    EXPECT_TRUE(progress->SetInfoStr("Second step"));
    // The status bar route keeps its text.
    EXPECT_EQ(MessageText() + "|" + progress->GetInfoText(), "Second step|Computing");
    // The wait cursor lasts as long as the object; after a box put up the arrow, the next pump brings it back.
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    QGuiApplication::changeOverrideCursor(Qt::ArrowCursor);
    WaitForPumpInterval();
    Progress::MessageLoop();
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    // NextSpin moves the stripes at most once every 100 ms; SpinDone rests them.
    std::this_thread::sleep_for(std::chrono::milliseconds(SpinWindow::kStepInterval + 20));
    EXPECT_TRUE(progress->NextSpin() && progress->NextSpin());
    EXPECT_EQ(spin->GetPosition(), 1);
    EXPECT_TRUE(progress->SpinDone());
    EXPECT_EQ(spin->GetPosition(), 0);

    progress.reset();
    EXPECT_EQ(spin, nullptr) << "the spin indicator is deleted";
    EXPECT_EQ(Panes().second, -1);
    // The plain bar keeps its gauge between tasks, back at rest.
    EXPECT_EQ(std::tuple(HostedIn(Progress::kGaugePaneId), gauge->GetHigh(), gauge->GetValue(), MessageText()),
              std::tuple(static_cast<QWidget*>(gauge), 1.0f, 0.0f, Idle()));
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

TEST_F(ProgressStatusBarTest, InitProgressLeavesAnIdleGaugeWhichTheShortFormGivesBackAfterItsSpinIndicator)
{
    MakeFrame();
    Progress::InitProgress();
    TsGauge* gauge = Gauge();
    ASSERT_NE(gauge, nullptr);
    EXPECT_EQ(HostedIn(Progress::kGaugePaneId), gauge);
    Progress::InitProgress();
    EXPECT_EQ(Gauge(), gauge) << "once per status bar";
    {
        Progress progress("Waiting");
        EXPECT_EQ(Panes(), std::make_pair(-1, 0));
        EXPECT_FALSE(gauge->isVisible());
        auto* spin = qobject_cast<SpinWindow*>(HostedIn(Progress::kSpinPaneId));
        ASSERT_NE(spin, nullptr);
        EXPECT_TRUE(spin->IsRunning());
        // Without a gauge on display a value is not held within the range.
        progress.Set(3.0f);
        EXPECT_FLOAT_EQ(progress.GetValue(), 3.0f);
        progress.SpinDone();
        EXPECT_FALSE(spin->IsRunning());
    }
    EXPECT_TRUE(HostedIn(Progress::kGaugePaneId) == gauge && gauge->isVisible());
    EXPECT_EQ(Panes().second, -1);
    // The gauge goes with its frame; the next frame gets a new one.
    mApp->SetMainWnd(nullptr);
    mFrame.reset();
    EXPECT_EQ(Progress::GetGauge(), nullptr);
    MakeFrame();
    Progress progress(nullptr, "Again", 0.0f, 1.0f, false, false, true);
    EXPECT_EQ(HostedIn(Progress::kGaugePaneId), Gauge());
}

TEST_F(ProgressStatusBarTest, ShowProgressDialogOffForcesTheStatusBarRoute)
{
    MakeFrame();
    BreakWindowProcess window;
    BreakWindowChannel::SetChannel(&window);
    Progress::SetShowProgressDialog(false);
    {
        Progress progress(nullptr, "Forced", 0.0f, 4.0f, true, true, true);
        progress.Set(2.0f);
        EXPECT_EQ(std::tuple(progress.GetAllowBreak(), HostedIn(Progress::kGaugePaneId), Gauge()->GetValue(),
                             HostedIn(Progress::kSpinPaneId) != nullptr, Progress::GetBreakWindow()),
                  std::tuple(false, static_cast<QWidget*>(Gauge()), 2.0f, true, nullptr));
    }
    EXPECT_EQ(window.GetCompanionPid(), 0) << "never asked to come into being";
}

TEST_F(ProgressStatusBarTest, ToolkitBarHostsTheGaugeAndAMarqueeOnlyWhileActive)
{
    MakeFrame<XTPFrame>();
    auto& bar = *qobject_cast<TsXTPStatusBar*>(mFrame->GetMessageBar());
    Progress::InitProgress();
    auto* gauge = dynamic_cast<TsXTPGauge*>(Progress::GetGauge());
    ASSERT_NE(gauge, nullptr);
    EXPECT_EQ(std::pair(gauge->isVisible(), bar.CommandToIndex(Progress::kGaugePaneId)), std::pair(false, -1));
    {
        Progress progress(nullptr, "Toolkit", 0.0f, 2.0f, true, false, true);
        EXPECT_EQ(std::tuple(bar.GetWindowIndex(gauge), bar.CommandToIndex(Progress::kSpinPaneId), gauge->isVisible()),
                  std::tuple(0, 1, true));
        QProgressBar* marquee = nullptr;
        for (auto* candidate : bar.findChildren<QProgressBar*>())
            marquee = bar.GetWindowIndex(candidate) == 1 ? candidate : marquee;
        ASSERT_NE(marquee, nullptr);
        EXPECT_EQ(marquee->maximum(), 0);  // a busy bar that moves by itself
        progress.Set(1.0f);
        EXPECT_EQ(gauge->GetPosition(), 50);
    }
    // The marquee is deleted.
    EXPECT_EQ(std::tuple(bar.CommandToIndex(Progress::kGaugePaneId), bar.CommandToIndex(Progress::kSpinPaneId),
                         gauge->isVisible(), gauge->GetPosition(), bar.findChildren<QProgressBar*>().size(), MessageText()),
              std::tuple(-1, -1, false, 0, 1, Idle()));
}

TEST(ProgressMessageLoopTest, PaintsWhileKeyboardInputWaitsAndDoesNothingOffTheMainThread)
{
    Application();
    QWidget window;
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    EventCounter paints(QEvent::Paint), keys(QEvent::KeyPress);
    window.installEventFilter(&paints);
    qApp->installEventFilter(&keys);
    QueueKey(&window, Qt::Key_A);
    window.update();
    WaitForPumpInterval();
    Progress::MessageLoop();
    EXPECT_GE(paints.count, 1);
    EXPECT_EQ(keys.count, 0);
    // Kept, not lost: it goes out with the queue's next full delivery, as when the platform's next event comes.
    Queue::sendWindowSystemEvents(QEventLoop::AllEvents);
    EXPECT_GE(keys.count, 1);
    qApp->removeEventFilter(&keys);

    int delivered = -1, deliveredByOwnLoop = -1;
    std::thread([&] {
        QEventLoop loop;                     // this thread gets an event dispatcher of its own
        EventCounter counter(QEvent::User);  // and an object that lives here
        QCoreApplication::postEvent(&counter, new QEvent(QEvent::User));
        WaitForPumpInterval();
        Progress::MessageLoop();
        delivered = counter.count;
        QCoreApplication::processEvents();
        deliveredByOwnLoop = counter.count;
    }).join();
    EXPECT_EQ(std::make_pair(delivered, deliveredByOwnLoop), std::make_pair(0, 1));
}

TEST(ProgressMessageLoopTest, TightLoopLetsTheEventLoopRunOnlyEveryFewMilliseconds)
{
    Application();
    EventCounter pumps(QEvent::User);
    int calls = 0, posted = 0;
    const auto start = std::chrono::steady_clock::now();
    for (; std::chrono::steady_clock::now() < start + std::chrono::milliseconds(200); ++calls) {
        // One marker at a time: it arrives only when the event loop really runs.
        if (pumps.count == posted) {
            QCoreApplication::postEvent(&pumps, new QEvent(QEvent::User));
            ++posted;
        }
        Progress::MessageLoop();
    }
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    EXPECT_GE(pumps.count, 2);
    // At most once per interval (plus one for a clock tick at either end).
    EXPECT_LE(pumps.count, elapsed / Progress::kPumpInterval + 2);
    EXPECT_GT(calls, 100 * pumps.count) << "most calls only read the clock";
}
