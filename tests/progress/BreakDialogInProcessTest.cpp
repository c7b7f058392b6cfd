// The break window in the client's own process: a real Progress on the break
// route through InProcessBreakWindow, served only by the pumping of the work's
// reporting calls. The user's click and key reach the window through the
// platform's input queue, as they would while the main thread computes.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <chrono>
#include <functional>

using namespace korva::test;

namespace {

class BreakDialogInProcessTest : public ProgressFrameFixture
{
protected:
    void SetUp() override
    {
        ProgressFrameFixture::SetUp();
        MakeFrame();
        BreakWindowChannel::SetChannel(&mWindow);
    }

    // The work: Set in a tight loop, as a computation does, until Set answers
    // false (true), or `during`, called on every round, ends it or 10 s are
    // over (false).
    static bool ComputeUntilStopped(Progress& progress, const std::function<bool()>& during)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        for (int i = 0; std::chrono::steady_clock::now() < end; ++i) {
            if (!progress.Set(float(i % 1000)))
                return true;
            if (!during())
                return false;
        }
        return false;
    }

    InProcessBreakWindow mWindow;
};

TEST_F(BreakDialogInProcessTest, StopConfirmedMakesTheNextSetReturnFalse)
{
    auto progress = std::make_unique<Progress>(nullptr, "Computing", 0.0f, 1000.0f, false, true, true,
                                               "Stop computing?", "Computing", "Stop", 50);
    BreakDialog* dialog = mWindow.GetDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(mWindow.GetWidget(), dialog);
    EXPECT_TRUE(dialog->IsServing());

    Answer(IDYES);
    bool clicked = false;
    const bool stopped = ComputeUntilStopped(*progress, [&] {
        // The user clicks as soon as the window is there.
        if (!clicked && dialog->isVisible()) {
            QueueClick(dialog->GetStopButton());
            clicked = true;
        }
        return true;
    });
    ASSERT_TRUE(clicked) << "the window never came up";
    ASSERT_TRUE(stopped) << "the click never reached the stop button";
    EXPECT_TRUE(progress->IsBreakPressed());
    EXPECT_FALSE(progress->NextSpin());
    EXPECT_EQ(dialog->GetGauge()->GetCaption(), "Stopping...");

    // The end of the work ends the service; the window waits hidden for the next.
    progress.reset();
    EXPECT_FALSE(dialog->IsServing());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog->isVisible(); }, 2000));

    // The next client starts afresh and is not stopped by the last one's answer.
    Progress next(nullptr, "Again", 0.0f, 1.0f, false, true, true, nullptr, nullptr, nullptr, 60000);
    EXPECT_TRUE(dialog->GetStopButton()->isEnabled());
    EXPECT_TRUE(next.Set(0.5f));
    EXPECT_EQ(mWindow.GetDialog(), dialog);
}

TEST_F(BreakDialogInProcessTest, EscapeAnsweredNoGoesOnAndOtherWindowsGetNoInput)
{
    Progress progress(nullptr, "Computing", 0.0f, 1000.0f, false, true, true, "Stop computing?", "Computing", "Stop", 0);
    BreakDialog* dialog = mWindow.GetDialog();
    ASSERT_NE(dialog, nullptr);
    EventCounter frameKeys(QEvent::KeyPress);
    mFrame->installEventFilter(&frameKeys);
    for (QWidget* widget : mFrame->findChildren<QWidget*>())
        widget->installEventFilter(&frameKeys);

    QString asked;
    Answer(IDNO, &asked);
    bool pressed = false;
    const bool stopped = ComputeUntilStopped(progress, [&] {
        if (!pressed && dialog->isVisible() && QGuiApplication::focusWindow() == dialog->windowHandle()) {
            // A key for the main window, where it must not start anything, and
            // Escape for the break window.
            QueueKey(mFrame.get(), Qt::Key_A);
            QueueKey(dialog, Qt::Key_Escape);
            pressed = true;
        }
        // The work goes on until the question has come and gone.
        return asked.isEmpty() || dialog->IsQuestionOpen();
    });
    ASSERT_TRUE(pressed) << "the window never came up with the focus";
    EXPECT_FALSE(stopped);
    EXPECT_EQ(asked, "Stop computing?");
    EXPECT_FALSE(progress.IsBreakPressed());
    EXPECT_TRUE(progress.Set(1.0f));
    EXPECT_TRUE(dialog->GetStopButton()->isEnabled());
    EXPECT_EQ(frameKeys.count, 0);
}

} // namespace
