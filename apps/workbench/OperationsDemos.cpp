#include "OperationsDemos.h"

#include <KORVAutl/Exception.h>
#include <KORVAutlwin/frame/TessmaMDIFrame.h>
#include <KORVAutlwin/operations/CPerfTimer.h>
#include <KORVAutlwin/operations/EventSource.h>
#include <KORVAutlwin/operations/ProcessorMonitor.h>
#include <KORVAutlwin/platform/ChildProcess.h>

#include <QMenu>
#include <QMetaObject>
#include <QObject>
#include <QTimer>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace {

const char* const kSource = "Workbench";
constexpr unsigned long kEventId = 1;
// Busy means 80 per cent or more, for five seconds net.
constexpr int kBusyPercent = 80;
constexpr int kBusySeconds = 5;

// Shows the load once a second while a monitor runs, and says so in the
// message bar when the monitor finds the processors busy.
class LoadWatch : public QObject
{
public:
    explicit LoadWatch(TessmaMDIFrame* frame)
        : QObject(frame), mFrame(frame)
    {
        connect(&mTimer, &QTimer::timeout, this, [this] { Show(); });
    }

    void Toggle()
    {
        if (mMonitor) {
            mTimer.stop();
            mMonitor.reset();  // waits for the monitor's thread
            mFrame->SetMessageText("Stopped watching the processor load.");
            return;
        }
        mBusyReports = 0;
        mMonitor = std::make_unique<ProcessorMonitor>();
        mMonitor->Init(kBusyPercent, kBusySeconds, &LoadWatch::Busy, this);
        mTimer.start(1000);
        mFrame->SetMessageText("Watching the processor load: the first sample comes in a second.");
    }

private:
    // On the monitor's thread: hand over to the window's thread.
    static void Busy(const ProcessorMonitor*, void* param)
    {
        auto* watch = static_cast<LoadWatch*>(param);
        QMetaObject::invokeMethod(watch, [watch] { ++watch->mBusyReports; watch->Show(); }, Qt::QueuedConnection);
    }

    void Show()
    {
        if (!mMonitor)
            return;
        const int load = mMonitor->GetLastValue();
        std::string text = load < 0 ? "No processor load yet." : "Processor load: " + std::to_string(load) + " %";
        if (mBusyReports > 0)
            text += "; busy (" + std::to_string(kBusyPercent) + " % or more for " + std::to_string(kBusySeconds) +
                    " seconds) " + std::to_string(mBusyReports) + " time(s)";
        mFrame->SetMessageText(text);
    }

    TessmaMDIFrame* mFrame;
    QTimer mTimer;
    std::unique_ptr<ProcessorMonitor> mMonitor;
    int mBusyReports = 0;
};

void WriteEvent(TessmaMDIFrame& frame)
{
    CPerfTimer timer;
    timer.Start();
    EventLog log(kSource);
    log.WriteEntry({"The workbench wrote this event on request.", "Operations menu"}, kEventId,
                   EventLog::eInformation);
    timer.Stop();
    char took[32];
    std::snprintf(took, sizeof took, "%.0f", timer.GetElapsedMicroseconds());
    frame.SetMessageText(std::string("Event ") + std::to_string(kEventId) + " written under the source " + kSource +
                         " in " + took + " \xc2\xb5s; read it with: journalctl -t " + kSource +
                         " -o verbose (entries go nowhere when journald isn't running)");
}

void RegisterSource(TessmaMDIFrame& frame)
{
    try {
        const std::string log = EventLog::LogNameFromSourceName(kSource);
        if (!log.empty()) {
            frame.SetMessageText(std::string("The event source ") + kSource + " is registered in the log " + log +
                                 ".");
            return;
        }
        EventSource source = EventLog::CreateEventSource(kSource, EventLog::APPLICATION_LOG);
        std::error_code unknown;
        const std::string program = std::filesystem::read_symlink(korva::ChildProcess::OwnProgram(), unknown);
        source.SetMessageFile(program.c_str());
        frame.SetMessageText(std::string("The event source ") + kSource + " is now registered in the log " +
                             source.GetLog() + ".");
    } catch (const Exception& error) {
        // HKEY_LOCAL_MACHINE is the machine's: only who may write it registers sources.
        frame.SetMessageText(std::string("The event source could not be registered: ") + error.Why());
    }
}

} // namespace

void AddOperationsDemos(TessmaMDIFrame& frame)
{
    QMenu* menu = frame.AddCommandMenu(QObject::tr("&Operations"));
    frame.AddCommand(menu, eDemoWriteEvent, QObject::tr("Write an &event"));
    frame.AddCommand(menu, eDemoRegisterSource, QObject::tr("&Register the event source"));
    frame.AddCommand(menu, eDemoProcessorLoad, QObject::tr("Watch the &processor load"));

    TessmaMDIFrame* target = &frame;
    auto* watch = new LoadWatch(target);
    frame.OnCommand(eDemoWriteEvent, [target] { WriteEvent(*target); });
    frame.OnCommand(eDemoRegisterSource, [target] { RegisterSource(*target); });
    frame.OnCommand(eDemoProcessorLoad, [watch] { watch->Toggle(); });
}
