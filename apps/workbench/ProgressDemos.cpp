#include "ProgressDemos.h"

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QMenu>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

// One item of the pretend computation: a few milliseconds of arithmetic.
double WorkOn(int item)
{
    const auto until = Clock::now() + std::chrono::milliseconds(5);
    double sum = 0.0;
    int k = item;
    while (Clock::now() < until)
        for (int i = 0; i < 200; ++i, ++k)
            sum += std::sin(k * 0.001) * std::cos(k * 0.002);
    return sum;
}

std::string Seconds(Clock::duration elapsed)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(elapsed).count());
    return text;
}

// Reading 20 %, fitting 70 % in one sub-range per component, writing 10 %.
// Returns false when the work was stopped (never on this route, which has no stop).
bool CalibrateModel(Progress& progress)
{
    constexpr int kSpectra = 200;
    constexpr int kComponents = 5;
    constexpr int kIterations = 100;
    constexpr int kReportLines = 50;
    volatile double result = 0.0;

    progress.SetInfoStr("Reading spectra...");
    progress.PushSubRange(0.0f, 0.2f);
    progress.SetRange(0.0f, static_cast<float>(kSpectra));
    for (int spectrum = 0; spectrum < kSpectra; ++spectrum) {
        result = result + WorkOn(spectrum);
        if (!progress.Set(static_cast<float>(spectrum + 1)))
            return false;
    }

    progress.PopPushSubRange(0.2f, 0.9f);
    progress.SetRange(0.0f, static_cast<float>(kComponents));
    for (int component = 0; component < kComponents; ++component) {
        progress.SetInfoStr(("Fitting component " + std::to_string(component + 1) + " of " +
                             std::to_string(kComponents) + "...").c_str());
        progress.PushSubRange(static_cast<float>(component), static_cast<float>(component + 1));
        for (int iteration = 0; iteration < kIterations; ++iteration) {
            result = result + WorkOn(iteration);
            if (!progress.Set(static_cast<float>(iteration + 1) / kIterations) || !progress.NextSpin())
                return false;
        }
        progress.PopSubRange();
    }

    progress.PopPushSubRange(0.9f, 1.0f);
    progress.SetInfoStr("Writing the report...");
    for (int line = 0; line < kReportLines; ++line) {
        result = result + WorkOn(line);
        if (!progress.Set(static_cast<float>(line + 1) / kReportLines))
            return false;
    }
    progress.PopSubRange();
    progress.SpinDone();
    return true;
}

} // namespace

void AddProgressDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = frame.AddCommandMenu(QObject::tr("&Progress"));
    frame.AddCommand(menu, eDemoNestedComputation, QObject::tr("&Nested computation"));
    frame.AddCommand(menu, eDemoSpinOnly, QObject::tr("&Waiting with the spin indicator"));

    TessmaMDIFrame* target = &frame;
    frame.OnCommand(eDemoNestedComputation, [target] {
        const auto start = Clock::now();
        bool finished = false;
        {
            Progress progress(nullptr, "Calibrating model", 0.0f, 1.0f, true, false, true);
            finished = CalibrateModel(progress);
        }
        target->SetMessageText(std::string(finished ? "Calibration finished in " : "Calibration stopped after ") +
                               Seconds(Clock::now() - start));
    });
    frame.OnCommand(eDemoSpinOnly, [target] {
        const auto start = Clock::now();
        {
            Progress progress("Waiting for the instrument...");
            for (int item = 0; item < 400; ++item) {
                WorkOn(item);
                progress.NextSpin();
            }
        }
        target->SetMessageText("The instrument answered after " + Seconds(Clock::now() - start));
    });
}
