// Progress::MessageLoop: what it lets through (painting) and what it holds
// back (keyboard input from the platform's queue), how often it really lets the
// event loop run when called from a tight loop, and that it does nothing off
// the main thread.

#include "ProgressTestSupport.h"

#include <chrono>
#include <thread>

using namespace korva::test;

namespace {

void WaitForPumpInterval()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(3 * Progress::kPumpInterval));
}

TEST(ProgressMessageLoopTest, PaintsWhileKeyboardInputWaits)
{
    Application();
    QWidget window;
    window.resize(200, 100);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QCoreApplication::processEvents();
    EventCounter paints(QEvent::Paint), keys(QEvent::KeyPress);
    window.installEventFilter(&paints);
    qApp->installEventFilter(&keys);

    QueueKey(&window, Qt::Key_A, false);
    window.update();
    WaitForPumpInterval();
    Progress::MessageLoop();
    EXPECT_GE(paints.count, 1);
    EXPECT_EQ(keys.count, 0);

    // The key press was kept, not lost: it goes out with the queue's next full
    // delivery (as the platform plugin does when its next event comes in).
    Queue::sendWindowSystemEvents(QEventLoop::AllEvents);
    EXPECT_GE(keys.count, 1);
    qApp->removeEventFilter(&keys);
}

TEST(ProgressMessageLoopTest, TightLoopLetsTheEventLoopRunOnlyEveryFewMilliseconds)
{
    Application();
    EventCounter pumps(QEvent::User);
    int calls = 0, posted = 0;
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() < start + std::chrono::milliseconds(200)) {
        // One marker at a time: it arrives only when the event loop really runs.
        if (pumps.count == posted) {
            QCoreApplication::postEvent(&pumps, new QEvent(QEvent::User));
            ++posted;
        }
        Progress::MessageLoop();
        ++calls;
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
    Application();
    int delivered = -1, deliveredByOwnLoop = -1;
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
