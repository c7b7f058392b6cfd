// InThread: a restartable computation on a low-priority thread that tells a
// window of its end by a posted event, and never after Stop. The events are
// delivered by hand (sendPostedEvents), so a test sees exactly what is queued.

#include "../frame/TestApplication.h"

#include <KORVAutlwin/progress/InThread.h>

#include <KORVAutl/Exception.h>

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <functional>
#include <thread>

#include <sys/resource.h>
#include <unistd.h>

namespace {

using namespace std::chrono_literals;

const int kDone = QEvent::registerEventType();

// Counts the completion notices that reach it, and on which thread.
class Receiver : public QObject
{
public:
    bool event(QEvent* event) override
    {
        if (event->type() != kDone)
            return QObject::event(event);
        ++notices;
        noticeThread = std::this_thread::get_id();
        return true;
    }

    /// Delivers what is queued for this receiver and returns the count so far.
    int Deliver()
    {
        QCoreApplication::sendPostedEvents(this, kDone);
        return notices;
    }

    int notices = 0;
    std::thread::id noticeThread;
};

// Waits, without handling events, until `condition` holds; false after 10 s.
bool WaitUntil(const std::function<bool()>& condition)
{
    const auto deadline = std::chrono::steady_clock::now() + 10s;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(1ms);
    }
    return true;
}

// A function that runs until it is stopped or released, and reports what it saw.
struct Controlled
{
    std::atomic<int> calls{0};
    std::atomic<bool> entered{false};
    std::atomic<bool> released{false};
    std::atomic<int> stopsSeen{0};
    std::atomic<bool> returned{false};

    std::function<float(bool&)> Function()
    {
        return [this](bool& stop) {
            const int call = ++calls;
            returned = false;
            entered = true;
            while (!released.load()) {
                if (InThread::StopRequested(stop)) {
                    ++stopsSeen;
                    returned = true;
                    return -1.0f;
                }
                std::this_thread::sleep_for(1ms);
            }
            returned = true;
            return static_cast<float>(call);
        };
    }
};

class InThreadTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
    Receiver receiver;
};

TEST_F(InThreadTest, GetBeforeStartReturnsTheStoredResultWithoutRunning)
{
    Controlled work;  // would never return unless stopped
    InThread thread(work.Function(), &receiver, kDone);
    thread.Stop();  // harmless before a start
    EXPECT_FALSE(thread.HasThread());
    EXPECT_EQ(thread.get(), 0.0f);
    EXPECT_EQ(work.calls.load(), 0);
    EXPECT_EQ(receiver.Deliver(), 0);
}

TEST_F(InThreadTest, RunToItsEndPostsOneNoticeButStopAfterTheEndRemovesIt)
{
    InThread finished([](bool&) { return 2.5f; }, &receiver, kDone);
    finished.Start();
    ASSERT_TRUE(WaitUntil([&] { return !finished.IsRunning(); }));
    EXPECT_EQ(finished.get(), 2.5f);
    EXPECT_EQ(receiver.Deliver(), 1);
    EXPECT_EQ(receiver.noticeThread, std::this_thread::get_id());
    EXPECT_EQ(receiver.Deliver(), 1) << "one notice per run";

    // The same, but Stop comes after the end and before the notice is handled.
    bool stopSeen = true;
    InThread stopped(
        [&](bool& stop) {
            stopSeen = InThread::StopRequested(stop);
            return 4.0f;
        },
        &receiver, kDone);
    stopped.Start();
    ASSERT_TRUE(WaitUntil([&] { return !stopped.IsRunning(); }));
    stopped.Stop();
    EXPECT_FALSE(stopped.HasThread());
    EXPECT_EQ(receiver.Deliver(), 1) << "the waiting notice was removed";
    EXPECT_FALSE(stopSeen);
    EXPECT_EQ(stopped.get(), 4.0f);
}

TEST_F(InThreadTest, StoppedRunPostsNothingAndStopWaitsForTheFunction)
{
    Controlled work;
    InThread thread(work.Function(), &receiver, kDone);
    thread.Start();
    ASSERT_TRUE(WaitUntil([&] { return work.entered.load(); }));
    thread.Stop();
    EXPECT_TRUE(work.returned.load()) << "Stop returned before the function";
    EXPECT_EQ(work.stopsSeen.load(), 1);
    EXPECT_EQ(receiver.Deliver(), 0);
    EXPECT_EQ(thread.get(), -1.0f);

    // The destructor stops too.
    Controlled other;
    {
        InThread scoped(other.Function(), &receiver, kDone);
        scoped.Start();
        ASSERT_TRUE(WaitUntil([&] { return other.entered.load(); }));
    }
    EXPECT_TRUE(other.returned.load());
    EXPECT_EQ(other.stopsSeen.load(), 1);
    EXPECT_EQ(receiver.Deliver(), 0);
}

TEST_F(InThreadTest, StartStopsARunningRunAndRestarts)
{
    Controlled work;
    InThread thread(work.Function(), &receiver, kDone);
    thread.Start();
    ASSERT_TRUE(WaitUntil([&] { return work.entered.load(); }));
    work.entered = false;
    thread.Start();
    EXPECT_EQ(work.stopsSeen.load(), 1) << "the first run was stopped";
    ASSERT_TRUE(WaitUntil([&] { return work.entered.load(); }));
    work.released = true;
    EXPECT_EQ(thread.get(), 2.0f);
    EXPECT_EQ(receiver.Deliver(), 1) << "only the second run reports";

    // Again after an ended run: the stop flag was cleared, the result is new.
    thread.Start();
    EXPECT_EQ(thread.get(), 3.0f);
    EXPECT_EQ(work.stopsSeen.load(), 1);
    EXPECT_EQ(receiver.Deliver(), 2);
}

TEST_F(InThreadTest, CopiesShareTheDataAndTakeTheThread)
{
    Controlled work;
    InThread source(work.Function(), &receiver, kDone);
    source.Start();
    ASSERT_TRUE(WaitUntil([&] { return work.entered.load(); }));

    InThread copy(source);
    EXPECT_FALSE(source.HasThread());
    EXPECT_TRUE(copy.HasThread());
    source.Stop();  // no longer its thread: the run goes on
    EXPECT_EQ(work.stopsSeen.load(), 0);
    EXPECT_FALSE(work.returned.load());

    // Assignment stops the target's own run before it takes the other's.
    Controlled otherWork;
    InThread target(otherWork.Function(), nullptr, 0);
    target.Start();
    ASSERT_TRUE(WaitUntil([&] { return otherWork.entered.load(); }));
    target = copy;
    EXPECT_EQ(otherWork.stopsSeen.load(), 1);
    EXPECT_FALSE(copy.HasThread());
    EXPECT_TRUE(target.HasThread());

    work.released = true;
    EXPECT_EQ(target.get(), 1.0f);
    // One result for all three.
    EXPECT_EQ(copy.get(), 1.0f);
    EXPECT_EQ(source.get(), 1.0f);
    EXPECT_EQ(receiver.Deliver(), 1);
}

TEST_F(InThreadTest, FailureOfTheFunctionComesBackFromGet)
{
    // An empty function fails on the thread with the system's text; the process lives on.
    InThread empty(std::function<float(bool&)>(), &receiver, kDone);
    empty.Start();
    for (int call = 0; call < 2; ++call) {
        try {
            empty.get();
            ADD_FAILURE() << "get did not throw";
        } catch (const Exception& exception) {
            EXPECT_STREQ(exception.Why(), "call to empty boost::function");
        }
    }
    EXPECT_EQ(receiver.Deliver(), 1) << "a failed run has ended too";

    // A run that throws keeps the last result; the next start clears the failure.
    int call = 0;
    InThread flaky(
        [&](bool&) -> float {
            if (++call == 2)
                throw Exception("bad data");
            return static_cast<float>(call);
        },
        nullptr, 0);
    flaky.Start();
    EXPECT_EQ(flaky.get(), 1.0f);
    flaky.Start();
    EXPECT_THROW(flaky.get(), Exception);
    flaky.Start();
    EXPECT_EQ(flaky.get(), 3.0f);
}

TEST_F(InThreadTest, RunsOnAThreadOfItsOwnAtTheLowestNicePriority)
{
    errno = 0;
    const int callerNice = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
    ASSERT_EQ(errno, 0);
    ASSERT_LT(callerNice, InThread::kThreadNice);

    int threadNice = 0;
    std::thread::id runThread;
    InThread thread(
        [&](bool&) {
            runThread = std::this_thread::get_id();
            threadNice = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
            return 0.0f;
        },
        nullptr, 0);
    thread.Start();
    thread.get();
    EXPECT_NE(runThread, std::this_thread::get_id());
    EXPECT_EQ(threadNice, InThread::kThreadNice);
    EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())), callerNice) << "the caller keeps its priority";
}

} // namespace
