// The program of break-window-e2e.sh: `break_window_e2e MARKER` computes on the main thread with the break
// window, printing "start", "busy <n>" and "set <n> true|false"; stretch n ends after 30 s or once the file
// MARKER<n> exists; exit code 0 when stopped. `break_window_e2e --grab WINDOW FILE` saves a picture of WINDOW.

#include <KORVAutlwin/frame/GuardedApplication.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/frame/WinApp.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QPixmap>
#include <QScreen>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "--grab") == 0) {
        QGuiApplication application(argc, argv);
        QScreen* screen = QGuiApplication::primaryScreen();
        const QPixmap picture = screen ? screen->grabWindow(std::strtoull(argv[2], nullptr, 0)) : QPixmap();
        return !picture.isNull() && picture.save(QString::fromLocal8Bit(argv[3]), "PNG") ? 0 : 1;
    }
    if (argc != 2) {
        std::fprintf(stderr, "usage: break_window_e2e MARKER | --grab WINDOW FILE\n");
        return 2;
    }
    korva::GuardedApplication application(argc, argv);
    WinApp app("BreakWindowE2E");
    app.SetRegistryKey("Tessmark");
    TessmaMDIFrame frame;
    app.SetMainWnd(&frame);
    frame.resize(640, 480);
    frame.show();
    QCoreApplication::processEvents();

    bool stopped = false;
    {
        // The art layout: no spinner, a gauge, a stop button.
        Progress progress(nullptr, "Break window end-to-end", 0.0f, 3.0f, false, true, true,
                          "Really stop the end-to-end work?", "Stop the end-to-end work", "Stop", 300);
        std::printf("start %s\n", progress.Set(0.0f) ? "true" : "false");
        volatile double sum = 0.0;
        for (int stretch = 1; stretch <= 3 && !stopped; ++stretch) {
            std::printf("busy %d\n", stretch);
            std::fflush(stdout);
            // Arithmetic until the marker appears; nothing here lets the event loop run.
            const std::string marker = argv[1] + std::to_string(stretch);
            const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
            for (long k = 0; std::chrono::steady_clock::now() < until && access(marker.c_str(), F_OK) != 0;)
                for (int i = 0; i < 100000; ++i, ++k)
                    sum = sum + std::sin(k * 0.001) * std::cos(k * 0.002);
            stopped = !progress.Set(static_cast<float>(stretch));
            std::printf("set %d %s\n", stretch, stopped ? "false" : "true");
            std::fflush(stdout);
        }
    }
    app.SetMainWnd(nullptr);
    return stopped ? 0 : 1;
}
