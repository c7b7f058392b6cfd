// breakwin: the break window of the suite's long computations, in a process of
// its own so that its event loop runs while the client's GUI thread computes.
// BreakWindowProcess starts it with its end of a SOCK_SEQPACKET socket as
// descriptor 3 and speaks BreakWire records over it: each protocol message is
// handled by the one BreakDialog and then acknowledged; a confirmed stop is
// reported unasked. The first record it sends is "ready". It never waits for
// the client (its writes queue while the socket is full) and ends when the
// socket closes or carries something it does not understand.
//
// KORVA_BREAKWIN_TRACE=<file> appends one line per handled message, for tests:
//   start <delay> <allowBreak><showSpin><showGauge> <x>,<y>,<width>,<height> <info>|<question>|<title>|<button>
//   title <text> / value <v> / range <low> <high> / show <0|1> / spinstep / spinrest / finish / pressstop
// and, after a start, the note "# stop <x> <y> <width> <height>": where the
// stop button lies in the window.

#include <KORVAutlwin/progress/BreakDialog.h>
#include <KORVAutlwin/progress/BreakWire.h>

#include <QApplication>
#include <QPushButton>
#include <QSocketNotifier>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int kConnectionFd = 3;

const char* const kUsage =
    "breakwin: the break window of long computations (the window with the Stop button).\n"
    "It is started by the library when a computation allows a stop, and talks to it over\n"
    "descriptor 3; it is not meant to be started by hand.\n";

bool IsConnection(int fd)
{
    int type = 0;
    socklen_t length = sizeof type;
    return getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_SEQPACKET;
}

class Companion
{
public:
    Companion()
        : dialog([this] { ConfirmStop(); }), reader(kConnectionFd, QSocketNotifier::Read),
          writer(kConnectionFd, QSocketNotifier::Write)
    {
        if (const char* path = std::getenv("KORVA_BREAKWIN_TRACE"); path && *path)
            trace = std::fopen(path, "a");
        writer.setEnabled(false);
        QObject::connect(&reader, &QSocketNotifier::activated, [this] { Read(); });
        QObject::connect(&writer, &QSocketNotifier::activated, [this] { Flush(); });
        Queue(BreakWire::Make(BreakWire::eReady));
    }

    ~Companion()
    {
        if (trace)
            std::fclose(trace);
    }

    Companion(const Companion&) = delete;
    Companion& operator=(const Companion&) = delete;

private:
    void Read()
    {
        // The dialog may run an event loop of its own (the stop question); no
        // second read may start inside a handler.
        reader.setEnabled(false);
        unsigned char buffer[BreakWire::kMaxRecordSize + 1];
        while (!ended) {
            const ssize_t received = recv(kConnectionFd, buffer, sizeof buffer, MSG_DONTWAIT | MSG_TRUNC);
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
            Queue(BreakWire::Make(BreakWire::eAcknowledge, message.sequence));
        }
        if (!ended)
            reader.setEnabled(true);
    }

    void Handle(const BreakWire::Message& message)
    {
        switch (message.type) {
        case BreakWire::eStart: {
            const BreakStartInfo& info = message.start;
            session = message.sequence;
            dialog.Start(info);
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
            // A stop confirmed from now on belongs to nobody.
            session = 0;
            dialog.Finish();
            Trace("finish");
            break;
        case BreakWire::eSpinStep:
            dialog.SpinStep();
            Trace("spinstep");
            break;
        case BreakWire::eSpinRest:
            dialog.SpinRest();
            Trace("spinrest");
            break;
        case BreakWire::eSetTitle:
            dialog.SetTitle(QString::fromStdString(message.text));
            Trace("title " + message.text);
            break;
        case BreakWire::eGaugeValue:
            dialog.SetGaugeValue(message.first);
            Trace("value " + Number(message.first));
            break;
        case BreakWire::eGaugeRange:
            dialog.SetGaugeRange(message.first, message.second);
            Trace("range " + Number(message.first) + " " + Number(message.second));
            break;
        case BreakWire::eShowWindow:
            dialog.ShowWindow(message.argument != 0);
            Trace(message.argument != 0 ? "show 1" : "show 0");
            break;
        case BreakWire::ePressStop:
            // The tests' stand-in for a user who answers the stop question with Yes.
            ConfirmStop();
            Trace("pressstop");
            break;
        default:
            // Records that only this side sends; acknowledged all the same.
            break;
        }
    }

    void ConfirmStop()
    {
        if (session != 0)
            Queue(BreakWire::Make(BreakWire::eStopConfirmed, 0, session));
    }

    void Queue(const BreakWire::Message& message)
    {
        BreakWire::Buffer buffer;
        const std::size_t size = BreakWire::Encode(message, buffer);
        outgoing.emplace_back(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(size));
        Flush();
    }

    // Writes what is queued without ever blocking; the rest waits until the socket takes it.
    void Flush()
    {
        while (!outgoing.empty() && !ended) {
            const std::vector<unsigned char>& record = outgoing.front();
            const ssize_t sent = send(kConnectionFd, record.data(), record.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
            if (sent < 0 && errno == EINTR)
                continue;
            if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
                writer.setEnabled(true);
                return;
            }
            if (sent < 0) {
                End(nullptr);
                return;
            }
            outgoing.pop_front();
        }
        writer.setEnabled(false);
    }

    void End(const char* why)
    {
        if (ended)
            return;
        ended = true;
        if (why)
            std::fprintf(stderr, "breakwin: ends after %s.\n", why);
        reader.setEnabled(false);
        writer.setEnabled(false);
        QCoreApplication::exit(0);
    }

    void Trace(const std::string& line)
    {
        if (!trace)
            return;
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
    QSocketNotifier writer;
    std::deque<std::vector<unsigned char>> outgoing;
    std::uint32_t session = 0;  // the sequence of the client's start; 0 between clients
    std::FILE* trace = nullptr;
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
    if (!IsConnection(kConnectionFd)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    // Without a display Qt would abort; the client learns of it from the closed socket.
    if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) {
        std::fputs("breakwin: no display.\n", stderr);
        return 1;
    }

    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    Companion companion;
    return QApplication::exec();
}
