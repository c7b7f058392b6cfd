#include <KORVAutlwin/operations/ProcessorMonitor.h>

#include <KORVAutlwin/platform/ProcessorLoad.h>

#include <chrono>

ProcessorMonitor::ProcessorMonitor() = default;

ProcessorMonitor::~ProcessorMonitor()
{
    if (!mThread)
        return;
    {
        std::lock_guard<std::mutex> lock(mWakeLock);
        mRun.exchange(0);
    }
    mWake.notify_all();
    mThread->join();
}

void ProcessorMonitor::Init(int valueLimit, int hitLimit, Callback callback, void* param)
{
    if (mThread)
        return;
    mValueLimit = valueLimit;
    mHitLimit = hitLimit;
    mCallback = callback;
    mParam = param;
    mThread = std::make_unique<std::thread>(ThreadProc, this);
}

bool ProcessorMonitor::CountHit(int value, int valueLimit, int hitLimit, int& hits)
{
    if (value >= valueLimit) {
        if (++hits >= hitLimit) {
            hits = 0;
            return true;
        }
    } else if (hits > 0) {
        --hits;
    }
    return false;
}

bool ProcessorMonitor::Pause()
{
    std::unique_lock<std::mutex> lock(mWakeLock);
    mWake.wait_for(lock, std::chrono::seconds(1), [this] { return mRun.load() != 1; });
    return mRun.load() == 1;
}

unsigned int ProcessorMonitor::ThreadProc(ProcessorMonitor* monitor)
{
    // Later changes of the fields don't reach the loop.
    const Callback callback = monitor->mCallback;
    void* const param = monitor->mParam;
    const int valueLimit = monitor->mValueLimit;
    const int hitLimit = monitor->mHitLimit;

    // The first reading is the starting point of the first sample.
    korva::ProcessorLoad load;
    if (!load.Collect() || monitor->mRun.load() != 1)
        return 0;
    int hits = 0;
    while (monitor->Pause()) {
        long value = 0;
        if (!load.Collect() || !load.GetPercent(value))
            continue;
        monitor->mLastValue.store(static_cast<int>(value), std::memory_order_relaxed);
        if (CountHit(static_cast<int>(value), valueLimit, hitLimit, hits) && callback)
            callback(monitor, param);
    }
    return 0;
}
