// Progress::MessageLoop: what it lets through (painting) and what it holds
// back (keyboard input from the platform's queue), how often it really lets the
// event loop run when called from a tight loop, and that it does nothing off
// the main thread.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/Progress.h>

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QTest>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

// The platform's input queue, where real key presses wait until the event loop
// takes them. Its header is part of Qt's platform plugin kit, which is not
// installed; QtGui exports the functions.
class QWindowSystemInterface
{
public:
    struct AsynchronousDelivery;
    template <typename Delivery>
    static bool handleKeyEvent(QWindow* window, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                               const QString& text, bool autorepeat, ushort count);
    static bool sendWindowSystemEvents(QEventLoop::ProcessEventsFlags flags);
};

namespace {

using korva::test::EventCounter;

void WaitForPumpInterval()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(3 * Progress::kPumpInterval));
}

TEST(ProgressMessageLoopTest, PaintsWhileKeyboardInputWaits)
{
    korva::test::Application();
    QWidget window;
    window.resize(200, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();

    EventCounter paints(QEvent::Paint);
    window.installEventFilter(&paints);
    EventCounter keys(QEvent::KeyPress);
    qApp->installEventFilter(&keys);

    ASSERT_TRUE((QWindowSystemInterface::handleKeyEvent<QWindowSystemInterface::AsynchronousDelivery>(
        window.windowHandle(), QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"), false, 1)));
    window.update();
    WaitForPumpInterval();
    Progress::MessageLoop();
    EXPECT_GE(paints.count, 1);
    EXPECT_EQ(keys.count, 0);

    // The key press was kept, not lost: it goes out with the queue's next full
    // delivery (as the platform plugin does when its next event comes in).
    QWindowSystemInterface::sendWindowSystemEvents(QEventLoop::AllEvents);
    EXPECT_GE(keys.count, 1);
    qApp->removeEventFilter(&keys);
}

TEST(ProgressMessageLoopTest, TightLoopLetsTheEventLoopRunOnlyEveryFewMilliseconds)
{
    korva::test::Application();
    EventCounter pumps(QEvent::User);
    bool waiting = false;
    int calls = 0;
    int delivered = 0;
    const auto start = std::chrono::steady_clock::now();
    const auto end = start + std::chrono::milliseconds(200);
    while (std::chrono::steady_clock::now() < end) {
        // One marker at a time: it arrives only when the event loop really runs.
        if (!waiting) {
            QCoreApplication::postEvent(&pumps, new QEvent(QEvent::User));
            waiting = true;
        }
        Progress::MessageLoop();
        ++calls;
        if (pumps.count != delivered) {
            delivered = pumps.count;
            waiting = false;
        }
    }
    const auto elapsed =
        std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
    EXPECT_GE(pumps.count, 2);
    // At most once per interval (plus one for a clock tick at either end).
    EXPECT_LE(pumps.count, elapsed / Progress::kPumpInterval + 2);
    EXPECT_GT(calls, 100 * pumps.count) << "most calls only read the clock";
}

TEST(ProgressMessageLoopTest, DoesNothingOffTheMainThread)
{
    korva::test::Application();
    int delivered = -1;
    int deliveredByOwnLoop = -1;
    std::thread worker([&] {
        QEventLoop loop;                     // this thread gets an event dispatcher of its own
        EventCounter counter(QEvent::User);  // and an object that lives here
        QCoreApplication::postEvent(&counter, new QEvent(QEvent::User));
        WaitForPumpInterval();
        Progress::MessageLoop();
        delivered = counter.count;
        QCoreApplication::processEvents();
        deliveredByOwnLoop = counter.count;
    });
    worker.join();
    EXPECT_EQ(delivered, 0);
    EXPECT_EQ(deliveredByOwnLoop, 1);
}

} // namespace
