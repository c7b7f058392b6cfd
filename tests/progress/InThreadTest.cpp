// InThread: a restartable low-priority computation posting its end to a window; notices are delivered by hand.

#include "ProgressTestSupport.h"

#include <KORVAutlwin/progress/InThread.h>

#include <KORVAutl/Exception.h>

#include <sys/resource.h>

using namespace std::chrono_literals;

namespace {

const auto kDone = static_cast<QEvent::Type>(QEvent::registerEventType());

// A function that runs until it is stopped (returns -1) or released (returns its call number).
struct Controlled
{
    std::atomic<int> calls{0}, stopsSeen{0};
    std::atomic<bool> entered{false}, released{false}, returned{false};

    std::function<float(bool&)> Function()
    {
        return [this](bool& stop) {
            const int call = ++calls;
            returned = false;
            entered = true;
            while (!released && !InThread::StopRequested(stop))
                std::this_thread::sleep_for(1ms);
            stopsSeen += !released;
            returned = true;
            return released ? float(call) : -1.0f;
        };
    }
    bool Entered() { return WaitFor([this] { return entered.exchange(false); }, 10s); }
};

class InThreadTest : public ::testing::Test
{
protected:
    void SetUp() override { korva::test::Application(); }
    int Deliver()
    {
        QCoreApplication::sendPostedEvents(&mReceiver, kDone);
        return mReceiver.count;
    }
    korva::test::EventCounter mReceiver{kDone};
};

TEST_F(InThreadTest, RunsAtTheLowestNicePriorityPostsOneNoticeAtItsEndButStopBeforeItIsHandledRemovesIt)
{
    Controlled never;  // would never return unless stopped
    InThread idle(never.Function(), &mReceiver, kDone);
    idle.Stop();  // harmless before a start
    EXPECT_TRUE(idle.get() == 0.0f && never.calls == 0) << "the stored result, without running";

    // A thread of its own at nice 19; the caller keeps its priority.
    auto Nice = [] { return getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())); };
    const int callerNice = Nice();
    ASSERT_LT(callerNice, InThread::kThreadNice);
    std::thread::id runThread;
    InThread finished([&](bool&) { runThread = std::this_thread::get_id(); return float(Nice()); }, &mReceiver, kDone);
    finished.Start();
    ASSERT_TRUE(WaitFor([&] { return !finished.IsRunning(); }, 10s));
    EXPECT_EQ(mReceiver.count, 0) << "posted, not sent from the thread";
    EXPECT_EQ(std::tuple(finished.get(), Nice()), std::tuple(float(InThread::kThreadNice), callerNice));
    EXPECT_NE(runThread, std::this_thread::get_id());
    EXPECT_EQ((std::vector<int>{Deliver(), Deliver()}), (std::vector<int>{1, 1})) << "one notice per run";

    std::atomic<bool> stopSeen{true};
    InThread stopped([&](bool& stop) { stopSeen = InThread::StopRequested(stop); return 4.0f; }, &mReceiver, kDone);
    stopped.Start();
    ASSERT_TRUE(WaitFor([&] { return !stopped.IsRunning(); }, 10s));
    stopped.Stop();
    EXPECT_FALSE(stopped.HasThread() || stopSeen);
    EXPECT_EQ(Deliver(), 1) << "the waiting notice was removed";
    EXPECT_EQ(stopped.get(), 4.0f);
}

TEST_F(InThreadTest, StopWaitsStartAndDestructorStopCopiesTakeTheThreadAndFailuresComeBackFromGet)
{
    Controlled work, other;
    InThread thread(work.Function(), &mReceiver, kDone);
    thread.Start();
    ASSERT_TRUE(work.Entered());
    thread.Stop();
    EXPECT_TRUE(work.returned) << "Stop returned before the function";
    EXPECT_EQ(thread.get(), -1.0f);
    thread.Start();
    ASSERT_TRUE(work.Entered());
    thread.Start();
    EXPECT_EQ(work.stopsSeen.load(), 2) << "the running run was stopped";
    ASSERT_TRUE(work.Entered());
    work.released = true;
    EXPECT_EQ(thread.get(), 3.0f);
    EXPECT_EQ(Deliver(), 1) << "only the run that ended reports";
    {
        InThread scoped(other.Function(), &mReceiver, kDone);
        scoped.Start();
        ASSERT_TRUE(other.Entered());
    }
    EXPECT_TRUE(other.returned && other.stopsSeen == 1);
    EXPECT_EQ(Deliver(), 1);

    // Copies share the data and take the thread.
    Controlled shared, otherWork;
    InThread source(shared.Function(), &mReceiver, kDone);
    source.Start();
    ASSERT_TRUE(shared.Entered());
    InThread copy(source);
    EXPECT_TRUE(!source.HasThread() && copy.HasThread());
    source.Stop();  // no longer its thread: the run goes on
    EXPECT_FALSE(shared.returned || shared.stopsSeen);
    // Assignment stops the target's own run before it takes the other's.
    InThread target(otherWork.Function(), nullptr, 0);
    target.Start();
    ASSERT_TRUE(otherWork.Entered());
    target = copy;
    EXPECT_TRUE(otherWork.stopsSeen == 1 && !copy.HasThread() && target.HasThread());
    shared.released = true;
    EXPECT_EQ((std::vector<float>{target.get(), copy.get(), source.get()}), std::vector<float>(3, 1.0f));
    EXPECT_EQ(Deliver(), 2);

    // An empty function fails on the thread with the system's text; the process lives on.
    InThread empty(std::function<float(bool&)>(), &mReceiver, kDone);
    empty.Start();
    for (int call = 0; call < 2; ++call)
        EXPECT_EQ(Thrown([&] { empty.get(); }), "call to empty boost::function");
    EXPECT_EQ(Deliver(), 3) << "a failed run has ended too";
    // A run that throws keeps the last result.
    int call = 0;
    InThread flaky([&](bool&) { return ++call == 2 ? throw Exception("bad data") : float(call); }, nullptr, 0);
    flaky.Start();
    EXPECT_EQ(flaky.get(), 1.0f);
    flaky.Start();
    EXPECT_THROW(flaky.get(), Exception);
    flaky.Start();
    EXPECT_EQ(flaky.get(), 3.0f);
}

} // namespace
