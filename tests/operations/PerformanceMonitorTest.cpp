// The stopwatch's states, the processor monitor's leaky bucket, and a monitor
// sampling the machine's real load.
#include "utl/TempDir.h"

#include <KORVAutlwin/operations/CPerfTimer.h>
#include <KORVAutlwin/operations/ProcessorMonitor.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr std::int64_t kMillisecond = 1000000;

void Pause(int milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

TEST(CPerfTimer, IntervalsAddUpAndStoppedTimeStands)
{
    CPerfTimer timer;
    timer.Stop();  // on a reset timer: nothing
    EXPECT_EQ(timer.GetElapsedTicks(), 0);
    EXPECT_FALSE(timer.IsRunning());

    timer.Start();
    Pause(20);
    timer.Start();  // while running: nothing, the start stays where it was
    EXPECT_TRUE(timer.IsRunning());
    EXPECT_GE(timer.GetElapsedTicks(), 20 * kMillisecond);
    timer.Stop();
    const std::int64_t first = timer.GetElapsedTicks();
    const CPerfTimer copy = timer;
    Pause(10);
    timer.Stop();
    EXPECT_EQ(timer.GetElapsedTicks(), first);

    timer.Start();
    Pause(20);
    timer.Stop();
    const std::int64_t both = timer.GetElapsedTicks();
    EXPECT_GE(both, first + 20 * kMillisecond);
    EXPECT_LT(both, first + 10000 * kMillisecond);  // the time stopped didn't count
    EXPECT_EQ(copy.GetElapsedTicks(), first);
    EXPECT_DOUBLE_EQ(timer.GetElapsedMilliseconds(), static_cast<double>(both) / 1e6);
    timer.Reset();
    EXPECT_EQ(timer.GetElapsedTicks(), 0);
}

struct Bucket : ProcessorMonitor
{
    using ProcessorMonitor::CountHit;
};

struct BucketCase
{
    const char* name;
    int valueLimit;
    int hitLimit;
    std::vector<int> samples;
    std::string fired;  // one character a sample: '*' when the callback is due
};

const BucketCase kBuckets[] = {
    {"AlternatingNeverFills", 50, 10, {60, 40, 60, 40, 60, 40, 60, 40, 60, 40, 60, 40, 60, 40, 60, 40, 60, 40, 60, 40},
     "...................."},
    {"TenBusyInARowAndTenMore", 50, 10,
     {60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60, 60}, ".........*.........*"},
    {"OneQuietSecondDoesNotUndoTwoBusy", 50, 3, {60, 60, 40, 60, 60}, "....*"},
    {"SustainedQuietDrains", 50, 3, {60, 60, 40, 40, 40, 60, 60}, "......."},
    {"TheLimitItselfCounts", 50, 1, {50, 49, 51}, "*.*"},
    {"HitLimitZero", 50, 0, {60, 40, 60}, "*.*"},
    {"HitLimitBelowZero", 50, -3, {60, 60}, "**"},
};

TEST(ProcessorMonitor, LeakyBucket)
{
    for (const BucketCase& row : kBuckets) {
        SCOPED_TRACE(row.name);
        int hits = 0;
        std::string fired;
        for (const int sample : row.samples)
            fired += Bucket::CountHit(sample, row.valueLimit, row.hitLimit, hits) ? '*' : '.';
        EXPECT_EQ(fired, row.fired);
    }
}

struct Calls
{
    std::atomic<int> count{0};
    std::atomic<const ProcessorMonitor*> monitor{nullptr};
};

void Count(const ProcessorMonitor* monitor, void* param)
{
    auto* calls = static_cast<Calls*>(param);
    calls->monitor = monitor;
    ++calls->count;
}

TEST(ProcessorMonitor, SamplesTheRealLoadOnItsThread)
{
    Calls always;
    Calls never;
    {
        ProcessorMonitor busy;  // every sample is at or above 0 per cent
        ProcessorMonitor quiet;  // no sample reaches 101 per cent
        busy.Init(0, 1, Count, &always);
        quiet.Init(101, 1, Count, &never);
        busy.Init(50, 7, nullptr, nullptr);  // running already: nothing changes
        EXPECT_EQ(busy.GetHitLimit(), 1);

        ASSERT_TRUE(WaitFor([&] { return always.count >= 2 && quiet.GetLastValue() >= 0; }, std::chrono::seconds(10)));
        EXPECT_EQ(always.monitor.load(), &busy);
        EXPECT_GE(busy.GetLastValue(), 0);
        EXPECT_LE(busy.GetLastValue(), 100);
        EXPECT_LE(quiet.GetLastValue(), 100);
    }
    // Both threads have ended with their monitors.
    const int calls = always.count;
    Pause(1200);
    EXPECT_EQ(always.count, calls);
    EXPECT_EQ(never.count, 0);
}

} // namespace
