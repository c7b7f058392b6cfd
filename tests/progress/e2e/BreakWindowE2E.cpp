// The computation of the break window's end-to-end check, in an application
// with a main frame:
//   break_window_e2e MARKER      long work on the main thread with the break
//                                window; prints "start", "busy 1", and after
//                                each stretch "set <n> true|false"
//   break_window_e2e --grab WINDOW FILE   saves a picture of the X window WINDOW
// Each stretch computes without ever returning to the event loop, for 30
// seconds or until the file MARKER<n> exists; a stopped run ends with exit code
// 0, a run that was never stopped with 1.

#include <KORVAutlwin/frame/GuardedApplication.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kStretches = 3;
constexpr auto kLongestStretch = std::chrono::seconds(30);

int Grab(int argc, char** argv)
{
    QGuiApplication application(argc, argv);
    const WId window = static_cast<WId>(std::strtoull(argv[2], nullptr, 0));
    QScreen* screen = QGuiApplication::primaryScreen();
    const QPixmap picture = screen ? screen->grabWindow(window) : QPixmap();
    return !picture.isNull() && picture.save(QString::fromLocal8Bit(argv[3]), "PNG") ? 0 : 1;
}

// Arithmetic until the marker appears; nothing here lets the event loop run.
double Compute(const std::string& marker)
{
    const auto until = Clock::now() + kLongestStretch;
    double sum = 0.0;
    long k = 0;
    while (Clock::now() < until && access(marker.c_str(), F_OK) != 0)
        for (int i = 0; i < 100000; ++i, ++k)
            sum += std::sin(k * 0.001) * std::cos(k * 0.002);
    return sum;
}

void Say(const std::string& line)
{
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--grab") == 0)
        return Grab(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: break_window_e2e MARKER | --grab WINDOW FILE\n");
        return 2;
    }
    const std::string marker = argv[1];

    korva::GuardedApplication application(argc, argv);
    WinApp app("BreakWindowE2E");
    app.SetRegistryKey("Tessmark");
    TessmaMDIFrame frame;
    app.SetMainWnd(&frame);
    frame.resize(640, 480);
    frame.show();
    QCoreApplication::processEvents();

    volatile double result = 0.0;
    bool stopped = false;
    {
        // The art layout: no spinner, a gauge, a stop button.
        Progress progress(nullptr, "Break window end-to-end", 0.0f, static_cast<float>(kStretches), false, true, true,
                          "Really stop the end-to-end work?", "Stop the end-to-end work", "Stop", 300);
        Say(std::string("start ") + (progress.Set(0.0f) ? "true" : "false"));
        for (int stretch = 1; stretch <= kStretches && !stopped; ++stretch) {
            Say("busy " + std::to_string(stretch));
            result = result + Compute(marker + std::to_string(stretch));
            const bool goOn = progress.Set(static_cast<float>(stretch));
            Say("set " + std::to_string(stretch) + (goOn ? " true" : " false"));
            stopped = !goOn;
        }
    }
    app.SetMainWnd(nullptr);
    return stopped ? 0 : 1;
}
