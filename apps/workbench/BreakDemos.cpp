#include "BreakDemos.h"
#include "DemoMenus.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QMenu>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kBatches = 400;                              // Set is called once per batch
constexpr auto kBatchTime = std::chrono::milliseconds(50); // 400 x 50 ms: about 20 seconds

// One batch of the pretend computation: arithmetic that never lets the event loop run.
double ComputeBatch(int batch)
{
    const auto until = Clock::now() + kBatchTime;
    double sum = 0.0;
    long k = static_cast<long>(batch) * 1000;
    while (Clock::now() < until)
        for (int i = 0; i < 500; ++i, ++k)
            sum += std::sin(k * 0.001) * std::cos(k * 0.003);
    return sum;
}

std::string Seconds(Clock::duration elapsed)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(elapsed).count());
    return text;
}

} // namespace

void AddBreakDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = SubmenuOf(frame, QObject::tr("&Progress"), QObject::tr("&Computations"));
    frame.AddCommand(menu, eDemoLongComputation, QObject::tr("&Long computation with a stop button"));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoLongComputation, [target] {
        const auto start = Clock::now();
        volatile double result = 0.0;
        int done = 0;
        bool stopped = false;
        {
            // Break route, gauge, art layout (no spinner); the window comes after a second.
            Progress progress(nullptr, "Long computation", 0.0f, static_cast<float>(kBatches), false, true, true);
            while (done < kBatches && !stopped) {
                result = result + ComputeBatch(done);
                ++done;
                stopped = !progress.Set(static_cast<float>(done));
            }
        }
        const std::string elapsed = Seconds(Clock::now() - start);
        if (stopped)
            target->SetMessageText("Long computation stopped after " + elapsed + ", at " +
                                   std::to_string(done * 100 / kBatches) + " %");
        else
            target->SetMessageText("Long computation finished in " + elapsed);
    });
}
