// The break window in the client's own process, served only by the pumping of the work's reporting
// calls; the user's key and click come through the platform's queue, as while the main thread computes.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>
#include <KORVAutlwin/progress/TsGauge.h>

using namespace korva::test;

namespace {

class BreakDialogInProcessTest : public ProgressFrameFixture
{
};

TEST_F(BreakDialogInProcessTest, EscapeAnsweredNoGoesOnAStopConfirmedMakesTheNextSetFalseAndOtherWindowsGetNoInput)
{
    MakeFrame();
    InProcessBreakWindow window;
    BreakWindowChannel::SetChannel(&window);
    auto progress = std::make_unique<Progress>(nullptr, "Computing", 0.0f, 1000.0f, false, true, true,
                                               "Stop computing?", "Computing", "Stop", 50);
    BreakDialog* dialog = window.GetDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(window.GetWidget(), dialog);
    EventCounter frameKeys(QEvent::KeyPress);
    for (QWidget* widget : mFrame->findChildren<QWidget*>())
        widget->installEventFilter(&frameKeys);
    mFrame->installEventFilter(&frameKeys);

    // The work: Set in a tight loop, as a computation does, until Set answers false (true) or `during` does.
    auto compute = [&](const std::function<bool()>& during) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        for (int i = 0; std::chrono::steady_clock::now() < end; ++i) {
            if (!progress->Set(float(i % 1000)))
                return true;
            if (!during())
                return false;
        }
        return false;
    };
    QString asked;
    Answer(IDNO, &asked);
    bool pressed = false;
    EXPECT_FALSE(compute([&] {
        if (!pressed && dialog->isVisible() && QGuiApplication::focusWindow() == dialog->windowHandle()) {
            // A key for the main window, where it must not start anything, and Escape for the break window.
            QueueKey(mFrame.get(), Qt::Key_A);
            QueueKey(dialog, Qt::Key_Escape);
            pressed = true;
        }
        return asked.isEmpty() || dialog->IsQuestionOpen();  // on until the question has come and gone
    }));
    EXPECT_EQ(asked, "Stop computing?");
    EXPECT_EQ(frameKeys.count, 0);
    EXPECT_FALSE(progress->IsBreakPressed());

    Answer(IDYES);
    bool clicked = false;
    EXPECT_TRUE(compute([&] {
        if (!clicked && dialog->isVisible()) {
            QueueClick(dialog->GetStopButton());
            clicked = true;
        }
        return true;
    })) << "the click never reached the stop button";
    EXPECT_FALSE(progress->NextSpin());
    EXPECT_EQ(dialog->GetGauge()->GetCaption(), "Stopping...");

    // The end of the work ends the service; the next client is not stopped by the last one's answer.
    progress.reset();
    EXPECT_FALSE(dialog->IsServing());
    Progress next(nullptr, "Again", 0.0f, 1.0f, false, true, true, nullptr, nullptr, nullptr, 60000);
    EXPECT_TRUE(next.Set(0.5f));
    EXPECT_EQ(window.GetDialog(), dialog);
}

} // namespace
