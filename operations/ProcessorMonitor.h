#pragma once
/// \class ProcessorMonitor
/// Watches the machine's total processor load on a thread of its own, one sample
/// a second, and calls back when the load has been high for long enough.
///
/// A sample at or above the value limit adds a hit, one below it takes a hit off
/// (never below 0): a leaky bucket, so that a single quiet second doesn't undo
/// several busy ones while sustained quiet drains it. When the hits reach the hit
/// limit they go back to 0 and the callback runs, on the monitor's thread; it is
/// expected to return quickly. A hit limit of 1 or less fires on every busy sample.
///
/// The load is the share of time, in whole per cent, that the processors spent
/// outside idle and I/O wait between two readings of /proc/stat. Without it the
/// thread ends at once: no sample, no callback.

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

class ProcessorMonitor
{
public:
    using Callback = void (*)(const ProcessorMonitor*, void*);

    ProcessorMonitor();
    /// Asks the thread to end and waits for it: at most until its current sample
    /// or callback is done.
    ~ProcessorMonitor();
    ProcessorMonitor(const ProcessorMonitor&) = delete;
    ProcessorMonitor& operator=(const ProcessorMonitor&) = delete;

    /// Stores the limits, the callback (may be null) and its parameter, and starts
    /// the thread. Nothing when the thread exists already.
    void Init(int valueLimit, int hitLimit, Callback callback, void* param);

    void* GetParam() const { return mParam; }
    int GetValueLimit() const { return mValueLimit; }
    int GetHitLimit() const { return mHitLimit; }
    /// The latest sample in per cent; -1 before the first.
    int GetLastValue() const { return mLastValue.load(std::memory_order_relaxed); }

protected:
    /// The thread's work: sample once a second until asked to end.
    static unsigned int ThreadProc(ProcessorMonitor* monitor);
    /// One step of the bucket for a sample of `value`: true when the callback is due.
    static bool CountHit(int value, int valueLimit, int hitLimit, int& hits);

private:
    /// Waits a second, or less when asked to end; true while the thread is to go on.
    bool Pause();

    Callback mCallback = nullptr;
    std::unique_ptr<std::thread> mThread;
    std::atomic<int> mRun{1};
    void* mParam = nullptr;
    int mValueLimit = -1;
    int mHitLimit = -1;
    std::atomic<int> mLastValue{-1};
    std::mutex mWakeLock;  // with mWake, ends the pause early when the monitor goes
    std::condition_variable mWake;
};
