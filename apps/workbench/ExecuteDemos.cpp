#include "ExecuteDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/progress/ExecuteWithProgress.h>
#include <KORVAutlwin/progress/InThread.h>

#include <QEvent>
#include <QMenu>
#include <QObject>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

std::string Seconds(Clock::duration elapsed)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(elapsed).count());
    return text;
}

// Pi by the Leibniz series: slow on purpose, and it looks at the stop flag
// every few thousand terms.
float ApproximatePi(bool& stop)
{
    constexpr long kTerms = 1'500'000'000;
    double sum = 0.0;
    for (long term = 0; term < kTerms; ++term) {
        if (term % 4096 == 0 && InThread::StopRequested(stop))
            break;
        sum += (term % 2 == 0 ? 4.0 : -4.0) / static_cast<double>(2 * term + 1);
    }
    return static_cast<float>(sum);
}

// Receives the completion notice of the computation and owns it, so that the
// computation stops before the receiver goes.
class ComputationHost : public QObject
{
public:
    explicit ComputationHost(TessmaMDIFrame* frame)
        : QObject(frame), mFrame(frame), mDoneEvent(QEvent::registerEventType()),
          mComputation(ApproximatePi, this, mDoneEvent)
    {
    }

    void Start()
    {
        mStarted = Clock::now();
        mComputation.Start();
        mFrame->SetMessageText("Computing pi in the background...");
    }

    bool event(QEvent* event) override
    {
        if (event->type() != mDoneEvent)
            return QObject::event(event);
        char value[32];
        std::snprintf(value, sizeof value, "%.7f", static_cast<double>(mComputation.get()));
        mFrame->SetMessageText(std::string("Pi computed in the background: ") + value + " after " +
                               Seconds(Clock::now() - mStarted));
        return true;
    }

private:
    TessmaMDIFrame* mFrame;
    int mDoneEvent;
    InThread mComputation;
    Clock::time_point mStarted;
};

} // namespace

void AddExecuteDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, QObject::tr("&Progress"), QObject::tr("&Background"));
    frame.AddCommand(menu, eDemoExportWithCancel, QObject::tr("Export with a cancel button"));
    frame.AddCommand(menu, eDemoComputeInThread, QObject::tr("&Compute in the background"));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoExportWithCancel, [target] {
        constexpr int kParts = 100;
        std::atomic<bool> cancelled{false};
        std::atomic<int> written{0};
        const auto start = Clock::now();
        ExecuteWithProgress(
            [&] {
                // 100 parts of 50 ms each.
                for (int part = 0; part < kParts && !cancelled.load(); ++part) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(50));
                    written.store(part + 1);
                }
            },
            [&] { cancelled.store(true); }, "Exporting the results", target);
        if (cancelled.load())
            target->SetMessageText("Export cancelled after " + std::to_string(written.load()) + " of " +
                                   std::to_string(kParts) + " parts, " + Seconds(Clock::now() - start));
        else
            target->SetMessageText("Export finished in " + Seconds(Clock::now() - start));
    });

    auto* host = new ComputationHost(target);
    frame.OnCommand(eDemoComputeInThread, [host] { host->Start(); });
}
