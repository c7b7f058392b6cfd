// The break window in the client's own process: a real Progress on the break
// route through InProcessBreakWindow, served only by the pumping of the work's
// reporting calls. The user's click and key reach the window through the
// platform's input queue, as they would while the main thread computes.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/frame/MessageBoxTypes.h>
#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <QPushButton>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

// The platform's input queue, where real input waits until the event loop
// takes it. QtGui exports these functions; their header is not installed.
class QWindowSystemInterface
{
public:
    struct AsynchronousDelivery;
    template <typename Delivery>
    static bool handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                 Qt::MouseButtons state, Qt::MouseButton button, QEvent::Type type,
                                 Qt::KeyboardModifiers modifiers, Qt::MouseEventSource source);
    template <typename Delivery>
    static bool handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                               const QString& text, bool autorepeat, ushort count);
};

namespace {

using korva::test::EventCounter;
using korva::test::ProgressFrameFixture;

using Clock = std::chrono::steady_clock;

// A click queued by the platform, as a user's would be.
void QueueClick(QWidget* target)
{
    QWindow* window = target->window()->windowHandle();
    const QPointF local = target->mapTo(target->window(), target->rect().center());
    const QPointF global = target->mapToGlobal(target->rect().center());
    using Queue = QWindowSystemInterface;
    Queue::handleMouseEvent<Queue::AsynchronousDelivery>(window, local, global, Qt::LeftButton, Qt::LeftButton,
                                                         QEvent::MouseButtonPress, Qt::NoModifier,
                                                         Qt::MouseEventNotSynthesized);
    Queue::handleMouseEvent<Queue::AsynchronousDelivery>(window, local, global, Qt::NoButton, Qt::LeftButton,
                                                         QEvent::MouseButtonRelease, Qt::NoModifier,
                                                         Qt::MouseEventNotSynthesized);
}

void QueueKey(QWidget* target, int key)
{
    using Queue = QWindowSystemInterface;
    QWindow* window = target->window()->windowHandle();
    Queue::handleKeyEvent<Queue::AsynchronousDelivery>(window, QEvent::KeyPress, key, Qt::NoModifier, QString(),
                                                       false, 1);
    Queue::handleKeyEvent<Queue::AsynchronousDelivery>(window, QEvent::KeyRelease, key, Qt::NoModifier, QString(),
                                                       false, 1);
}

void AnswerQuestion(int answer)
{
    korva::test::WhenModal([answer](QWidget* box) {
        for (auto* button : box->findChildren<QPushButton*>())
            if (button->property("ctrlId").toInt() == answer)
                QTest::mouseClick(button, Qt::LeftButton);
    });
}

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
    // false (true), or `during`, called on every round, ends it or `limit` is
    // over (false).
    static bool ComputeUntilStopped(Progress& progress, std::chrono::milliseconds limit,
                                    const std::function<bool()>& during)
    {
        const auto end = Clock::now() + limit;
        for (int i = 0; Clock::now() < end; ++i) {
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
    ASSERT_TRUE(progress->IsActive());
    BreakDialog* dialog = mWindow.GetDialog();
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(mWindow.GetWidget(), dialog);
    EXPECT_TRUE(dialog->IsServing());

    AnswerQuestion(IDYES);
    bool clicked = false;
    const bool stopped = ComputeUntilStopped(*progress, std::chrono::seconds(10), [&] {
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
    EXPECT_FALSE(dialog->GetStopButton()->isEnabled());
    EXPECT_EQ(dialog->GetGauge()->GetCaption(), "Stopping...");
    EXPECT_EQ(dialog->windowTitle(), "Computing");

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
    auto progress = std::make_unique<Progress>(nullptr, "Computing", 0.0f, 1000.0f, false, true, true,
                                               "Stop computing?", "Computing", "Stop", 0);
    BreakDialog* dialog = mWindow.GetDialog();
    ASSERT_NE(dialog, nullptr);

    EventCounter frameKeys(QEvent::KeyPress);
    mFrame->installEventFilter(&frameKeys);
    for (QWidget* widget : mFrame->findChildren<QWidget*>())
        widget->installEventFilter(&frameKeys);

    QString asked;
    korva::test::WhenModal([&](QWidget* box) {
        asked = korva::test::BoxText(box);
        for (auto* button : box->findChildren<QPushButton*>())
            if (button->property("ctrlId").toInt() == IDNO)
                QTest::mouseClick(button, Qt::LeftButton);
    });
    bool pressed = false;
    const bool stopped = ComputeUntilStopped(*progress, std::chrono::seconds(10), [&] {
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
    EXPECT_FALSE(progress->IsBreakPressed());
    EXPECT_TRUE(progress->Set(1.0f));
    EXPECT_TRUE(dialog->GetStopButton()->isEnabled());
    EXPECT_EQ(frameKeys.count, 0);
}

} // namespace
