// Progress::Set in the innermost loop of a computation, side by side with
// QProgressDialog::setValue doing the same loop.
//
//  - inactive: a Progress made while another owns the display (nested work).
//    It does no window work at all.
//  - active, status bar route: the gauge in the main frame's status bar; the
//    event loop runs at most every few milliseconds. The counter gauge_paints_per_s
//    tells how often the gauge really repainted during the loop (wall time).
//  - active, break route: the break window in its companion process, on the
//    screen. The counter gauge_values_per_s tells how many values reached the
//    companion's gauge per second (wall time), bar_width the width of its bar.
//  - QProgressDialog, window-modal on the frame as Qt recommends for work on the
//    GUI thread: every setValue lets the event loop run.
//
// Offscreen; the settings go to a temporary folder.

#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/Progress.h>
#include <KORVAutlwin/progress/TsGaugeBase.h>

#include <QApplication>
#include <QEvent>
#include <QProgressBar>
#include <QProgressDialog>

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

constexpr int kSteps = 1000000;

char gFolder[64] = "/tmp/korva-progress-bench-XXXXXX";

// The application, its object and a main frame, made on first use and kept to
// process end (the benchmark library brings its own main).
TessmaMDIFrame& Frame()
{
    static TessmaMDIFrame* frame = [] {
        const std::string folder = ::mkdtemp(gFolder) ? gFolder : "/tmp";
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(gFolder, ignored);
        });
        setenv("XDG_CONFIG_HOME", folder.c_str(), 1);
        setenv("KORVA_REGISTRY_DIR", folder.c_str(), 1);
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        static int argc = 1;
        static char name[] = "bench_progress";
        static char* argv[] = {name, nullptr};
        new QApplication(argc, argv);
        auto* app = new WinApp("ProgressBench");
        auto* made = new TessmaMDIFrame;
        app->SetMainWnd(made);
        made->resize(800, 600);
        made->GetMessageBar();
        made->show();
        QCoreApplication::processEvents();
        return made;
    }();
    return *frame;
}

// Counts the paint events of one widget.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget* widget) : mWidget(widget) { widget->installEventFilter(this); }
    ~PaintCounter() override { mWidget->removeEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            ++count;
        return QObject::eventFilter(watched, event);
    }
    long long count = 0;

private:
    QWidget* mWidget;
};

void ReportPaints(benchmark::State& state, const PaintCounter& paints, std::chrono::steady_clock::duration wall)
{
    const double seconds = std::chrono::duration<double>(wall).count();
    state.counters["gauge_paints_per_s"] = seconds > 0.0 ? static_cast<double>(paints.count) / seconds : 0.0;
}

void Progress_Set_Inactive(benchmark::State& state)
{
    Frame();
    Progress outer(nullptr, "Outer work", 0.0f, 1.0f, false, false, true);
    Progress inner(nullptr, "Inner work", 0.0f, static_cast<float>(kSteps), false, false, true);
    if (inner.IsActive() || !outer.IsActive())
        state.SkipWithError("the inner object should be the inactive one");
    int step = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(inner.Set(static_cast<float>(step)));
        if (++step == kSteps)
            step = 0;
    }
}
BENCHMARK(Progress_Set_Inactive);

void Progress_Set_ActiveStatusBar(benchmark::State& state)
{
    Frame();
    Progress progress(nullptr, "Computing", 0.0f, static_cast<float>(kSteps), true, false, true);
    if (!progress.IsActive() || !Progress::GetGauge()) {
        state.SkipWithError("no status bar gauge");
        return;
    }
    PaintCounter paints(Progress::GetGauge()->GetWnd());
    int step = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        benchmark::DoNotOptimize(progress.Set(static_cast<float>(step)));
        if (++step == kSteps)
            step = 0;
    }
    ReportPaints(state, paints, std::chrono::steady_clock::now() - start);
}
BENCHMARK(Progress_Set_ActiveStatusBar);

// The companion, counting the gauge values that it is sent.
class CountingBreakWindow : public BreakWindowChannel
{
public:
    bool Create() override { return companion.Create(); }
    bool IsWindow() const override { return companion.IsWindow(); }
    void Finish() override { companion.Finish(); }
    void SpinStep() override { companion.SpinStep(); }
    void SpinRest() override { companion.SpinRest(); }
    void SetTitle(const char* title) override { companion.SetTitle(title); }
    void SetGaugeValue(float value) override
    {
        companion.SetGaugeValue(value);
        ++values;
        lastValue = value;
    }
    void SetGaugeRange(float low, float high) override { companion.SetGaugeRange(low, high); }
    void ShowWindow(bool show) override { companion.ShowWindow(show); }
    void Start(unsigned int delay, Progress* client, const QRect& mainWindow) override
    {
        companion.Start(delay, client, mainWindow);
    }
    int GetGaugeResolution() const override { return companion.GetGaugeResolution(); }

    BreakWindowProcess companion;
    long long values = 0;
    float lastValue = 0.0f;
};

void Progress_Set_BreakRoute(benchmark::State& state)
{
    Frame();
    static CountingBreakWindow* window = new CountingBreakWindow;
    BreakWindowChannel::SetChannel(window);
    auto progress = std::make_unique<Progress>(nullptr, "Computing", 0.0f, static_cast<float>(kSteps), false, true, true);
    if (!progress->IsActive() || !window->IsWindow()) {
        state.SkipWithError("the break window does not start");
        return;
    }
    Progress::Show();
    window->values = 0;
    int step = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        benchmark::DoNotOptimize(progress->Set(static_cast<float>(step)));
        if (++step == kSteps)
            step = 0;
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    state.counters["gauge_values_per_s"] = seconds > 0.0 ? static_cast<double>(window->values) / seconds : 0.0;
    state.counters["bar_width"] = window->GetGaugeResolution();
    const float last = progress->GetValue();
    progress.reset();
    if (window->lastValue != last)
        state.SkipWithError("the break window did not end with the last value");
}
BENCHMARK(Progress_Set_BreakRoute);

void QProgressDialog_setValue(benchmark::State& state)
{
    QProgressDialog dialog(QStringLiteral("Computing"), QString(), 0, kSteps, &Frame());
    dialog.setWindowModality(Qt::WindowModal);
    dialog.setMinimumDuration(0);
    dialog.setValue(0);
    dialog.setValue(1);  // shown from here on
    QProgressBar* bar = dialog.findChild<QProgressBar*>();
    PaintCounter paints(bar ? static_cast<QWidget*>(bar) : &dialog);
    int step = 2;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        dialog.setValue(step);
        if (++step == kSteps)
            step = 0;
    }
    ReportPaints(state, paints, std::chrono::steady_clock::now() - start);
}
BENCHMARK(QProgressDialog_setValue);

} // namespace
