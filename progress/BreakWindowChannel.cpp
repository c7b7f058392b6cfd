#include <KORVAutlwin/progress/BreakWindowChannel.h>

#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/InProcessBreakWindow.h>
#include <KORVAutlwin/progress/Progress.h>

#include <QApplication>
#include <QThread>

#include <cstdlib>
#include <cstring>

namespace {

BreakWindowChannel* gChannel = nullptr;
// Set once a break window was installed or made; from then on GetChannel
// returns what is there, even null.
bool gDecided = false;

// The process's own break window, kept to process end: the companion if it
// starts, else the dialog in this process.
BreakWindowChannel* MakeDefaultChannel()
{
    const char* choice = std::getenv("KORVA_BREAK_WINDOW");
    if (!choice || std::strcmp(choice, "inprocess") != 0) {
        auto* companion = new BreakWindowProcess;
        if (companion->Create())
            return companion;
        delete companion;
    }
    return new InProcessBreakWindow;
}

} // namespace

BreakWindowChannel::~BreakWindowChannel() = default;

BreakStartInfo BreakWindowChannel::StartInfo(const Progress& client, unsigned int delay, const QRect& mainWindow)
{
    BreakStartInfo info;
    info.delay = delay;
    info.mainWindow = mainWindow;
    info.allowBreak = client.GetAllowBreak();
    info.showSpin = client.GetShowSpin();
    info.showGauge = client.GetShowGauge();
    info.infoText = client.GetInfoText();
    info.stopQuestion = client.GetStopQuestion();
    info.stopTitle = client.GetStopTitle();
    info.stopButton = client.GetStopButton();
    return info;
}

BreakWindowChannel* BreakWindowChannel::GetChannel()
{
    if (!gDecided) {
        // Either kind needs the GUI thread of a widget application to be worth making.
        QCoreApplication* application = QCoreApplication::instance();
        if (!qobject_cast<QApplication*>(application) || QThread::currentThread() != application->thread())
            return gChannel;
        gDecided = true;
        gChannel = MakeDefaultChannel();
    }
    return gChannel;
}

BreakWindowChannel* BreakWindowChannel::SetChannel(BreakWindowChannel* channel)
{
    BreakWindowChannel* previous = gChannel;
    gChannel = channel;
    gDecided = true;
    return previous;
}

QWidget* BreakWindowChannel::GetWidget() const
{
    return nullptr;
}

int BreakWindowChannel::GetGaugeResolution() const
{
    return 0;
}

void BreakWindowChannel::SetBreakPressed(Progress& client)
{
    client.breakPressed.store(true, std::memory_order_relaxed);
}
