// breakwin: the break window of the suite's long computations, in a process of
// its own so that its event loop runs while the client's GUI thread computes.
// BreakWindowProcess starts it with its ends of two SOCK_SEQPACKET sockets and
// speaks BreakWire records over them. Descriptor 3 carries the commands: each
// protocol message is handled by the one BreakDialog and acknowledged at once,
// all waiting ones in one turn of the event loop. Descriptor 4 carries the
// reports: a confirmed stop, and the width of the gauge whenever it changes.
// The first record it sends is "ready", on descriptor 3. It never waits for the
// client (its writes queue while a socket is full) and ends when a socket
// closes or carries something it does not understand.
//
// KORVA_BREAKWIN_TRACE=<file> appends one line per handled message, for tests:
//   start <delay> <allowBreak><showSpin><showGauge> <x>,<y>,<width>,<height> <info>|<question>|<title>|<button>
//   title <text> / value <v> / range <low> <high> / show <0|1> / spinstep / spinrest / finish / pressstop
// and, after a start, the note "# stop <x> <y> <width> <height>": where the
// stop button lies in the window.

#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/BreakWire.h>
#include <KORVAutlwin/progress/TsGauge.h>

#include <QApplication>
#include <QPushButton>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int kCommandFd = 3;
constexpr int kReportFd = 4;

const char* const kUsage =
    "breakwin: the break window of long computations (the window with the Stop button).\n"
    "It is started by the library when a computation allows a stop, and talks to it over\n"
    "descriptors 3 and 4; it is not meant to be started by hand.\n";

bool IsConnection(int fd)
{
    int type = 0;
    socklen_t length = sizeof type;
    return getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_SEQPACKET;
}

// One socket's outgoing records. A record goes out at once; what the socket
// does not take waits, in order, until it does.
class Outlet
{
public:
    Outlet(int socket, std::function<void()> broken)
        : fd(socket), writer(socket, QSocketNotifier::Write), onBroken(std::move(broken))
    {
        writer.setEnabled(false);
        QObject::connect(&writer, &QSocketNotifier::activated, [this] { Flush(); });
    }

    void Send(const BreakWire::Message& message)
    {
        BreakWire::Buffer buffer;
        const std::size_t size = BreakWire::Encode(message, buffer);
        if (waiting.empty() && Write(buffer.data(), size))
            return;
        waiting.emplace_back(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(size));
        writer.setEnabled(true);
    }

    void Stop() { writer.setEnabled(false); }

    /// Records that went into the socket so far.
    std::uint32_t written = 0;

private:
    // True when the socket took the record (or is broken: nothing more will go).
    bool Write(const unsigned char* data, std::size_t size)
    {
        for (;;) {
            const ssize_t sent = send(fd, data, size, MSG_DONTWAIT | MSG_NOSIGNAL);
            if (sent >= 0) {
                ++written;
                return true;
            }
            if (errno == EINTR)
                continue;
            if (errno == EAGAIN || errno == EWOULDBLOCK)
                return false;
            onBroken();
            return true;
        }
    }

    void Flush()
    {
        while (!waiting.empty()) {
            if (!Write(waiting.front().data(), waiting.front().size()))
                return;
            waiting.pop_front();
        }
        writer.setEnabled(false);
    }

    const int fd;
    QSocketNotifier writer;
    std::function<void()> onBroken;
    std::deque<std::vector<unsigned char>> waiting;
};

class Companion : public QObject
{
public:
    Companion()
        : dialog([this] { ConfirmStop(); }), reader(kCommandFd, QSocketNotifier::Read),
          commands(kCommandFd, [this] { End(nullptr); }), reports(kReportFd, [this] { End(nullptr); })
    {
        if (const char* path = std::getenv("KORVA_BREAKWIN_TRACE"); path && *path)
            trace = std::fopen(path, "a");
        QObject::connect(&reader, &QSocketNotifier::activated, [this] { Read(); });
        // The user or the window manager may resize the window between messages.
        if (TsGauge* gauge = dialog.GetGauge())
            gauge->installEventFilter(this);
        commands.Send(BreakWire::Make(BreakWire::eReady));
    }

    ~Companion() override
    {
        if (trace)
            std::fclose(trace);
    }

    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Resize)
            ReportGaugeWidth();
        return QObject::eventFilter(watched, event);
    }

private:
    void Read()
    {
        // A handler that ran an event loop of its own must not start a second
        // read inside the first; the outer one takes what is left.
        if (reading) {
            reader.setEnabled(false);
            return;
        }
        reading = true;
        unsigned char buffer[BreakWire::kMaxRecordSize + 1];
        while (!ended) {
            const ssize_t received = recv(kCommandFd, buffer, sizeof buffer, MSG_DONTWAIT | MSG_TRUNC);
            if (received < 0 && errno == EINTR)
                continue;
            if (received < 0 && (errno == EAGAIN || errno == EWOULDBLOCK))
                break;
            if (received <= 0) {
                End(nullptr);
                break;
            }
            BreakWire::Message message;
            const BreakWire::EDecode decoded = BreakWire::Decode(buffer, static_cast<std::size_t>(received), message);
            if (decoded != BreakWire::eDecoded) {
                End(decoded == BreakWire::eWrongVersion ? "a record of another version" : "a malformed record");
                break;
            }
            Handle(message);
            if (trace)
                TraceHandled(message);
            ReportGaugeWidth();
            // The client waits for this; the reports written before it are counted in.
            commands.Send(BreakWire::Make(BreakWire::eAcknowledge, message.sequence, reports.written));
        }
        reading = false;
        if (!ended)
            reader.setEnabled(true);
    }

    void Handle(const BreakWire::Message& message)
    {
        switch (message.type) {
        case BreakWire::eStart:
            session = message.sequence;
            dialog.Start(message.start);
            break;
        case BreakWire::eFinish:
            // A stop confirmed from now on belongs to nobody.
            session = 0;
            dialog.Finish();
            break;
        case BreakWire::eSpinStep:
            dialog.SpinStep();
            break;
        case BreakWire::eSpinRest:
            dialog.SpinRest();
            break;
        case BreakWire::eSetTitle:
            dialog.SetTitle(QString::fromStdString(message.text));
            break;
        case BreakWire::eGaugeValue:
            dialog.SetGaugeValue(message.first);
            break;
        case BreakWire::eGaugeRange:
            dialog.SetGaugeRange(message.first, message.second);
            break;
        case BreakWire::eShowWindow:
            dialog.ShowWindow(message.argument != 0);
            break;
        case BreakWire::ePressStop:
            // The tests' stand-in for a user who answers the stop question with Yes.
            ConfirmStop();
            break;
        default:
            // Records that only this side sends; acknowledged all the same.
            break;
        }
    }

    void TraceHandled(const BreakWire::Message& message)
    {
        switch (message.type) {
        case BreakWire::eStart: {
            const BreakStartInfo& info = message.start;
            const QRect& main = info.mainWindow;
            Trace("start " + std::to_string(info.delay) + " " + (info.allowBreak ? "1" : "0") +
                  (info.showSpin ? "1" : "0") + (info.showGauge ? "1" : "0") + " " + std::to_string(main.x()) + "," +
                  std::to_string(main.y()) + "," + std::to_string(main.width()) + "," + std::to_string(main.height()) +
                  " " + info.infoText + "|" + info.stopQuestion + "|" + info.stopTitle + "|" + info.stopButton);
            if (QPushButton* stop = dialog.GetStopButton()) {
                const QPoint at = stop->mapTo(&dialog, QPoint(0, 0));
                Trace("# stop " + std::to_string(at.x()) + " " + std::to_string(at.y()) + " " +
                      std::to_string(stop->width()) + " " + std::to_string(stop->height()));
            }
            break;
        }
        case BreakWire::eFinish:
            Trace("finish");
            break;
        case BreakWire::eSpinStep:
            Trace("spinstep");
            break;
        case BreakWire::eSpinRest:
            Trace("spinrest");
            break;
        case BreakWire::eSetTitle:
            Trace("title " + message.text);
            break;
        case BreakWire::eGaugeValue:
            Trace("value " + Number(message.first));
            break;
        case BreakWire::eGaugeRange:
            Trace("range " + Number(message.first) + " " + Number(message.second));
            break;
        case BreakWire::eShowWindow:
            Trace(message.argument != 0 ? "show 1" : "show 0");
            break;
        case BreakWire::ePressStop:
            Trace("pressstop");
            break;
        default:
            break;
        }
    }

    void ConfirmStop()
    {
        if (session != 0)
            reports.Send(BreakWire::Make(BreakWire::eStopConfirmed, 0, session));
    }

    // The client leaves out values that would fill the same width of the bar as
    // the last one it sent, so it must know the width: reported when it changes.
    void ReportGaugeWidth()
    {
        const TsGauge* gauge = dialog.GetGauge();
        const int width = gauge && !gauge->isHidden() ? gauge->contentsRect().width() : 0;
        if (width == reportedWidth || ended)
            return;
        reportedWidth = width;
        reports.Send(BreakWire::Make(BreakWire::eGaugeWidth, 0, static_cast<std::uint32_t>(std::max(width, 0))));
    }

    void End(const char* why)
    {
        if (ended)
            return;
        ended = true;
        if (why)
            std::fprintf(stderr, "breakwin: ends after %s.\n", why);
        reader.setEnabled(false);
        commands.Stop();
        reports.Stop();
        QCoreApplication::exit(0);
    }

    void Trace(const std::string& line)
    {
        std::fputs(line.c_str(), trace);
        std::fputc('\n', trace);
        std::fflush(trace);
    }

    static std::string Number(float value)
    {
        char text[32];
        std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
        return text;
    }

    BreakDialog dialog;
    QSocketNotifier reader;
    Outlet commands;
    Outlet reports;
    std::uint32_t session = 0;  // the sequence of the client's start; 0 between clients
    int reportedWidth = -1;
    std::FILE* trace = nullptr;
    bool reading = false;
    bool ended = false;
};

} // namespace

int main(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            std::fputs(kUsage, stdout);
            return 0;
        }
    }
    if (!IsConnection(kCommandFd) || !IsConnection(kReportFd)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    // Without a display Qt would abort; the client learns of it from the closed sockets.
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) {
        std::fputs("breakwin: no display.\n", stderr);
        return 1;
    }

    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Companion companion;
    return QApplication::exec();
}
