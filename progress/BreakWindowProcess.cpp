#include <KORVAutlwin/progress/BreakWindowProcess.h>

#include <KORVAutlwin/platform/ChildProcess.h>
#include <KORVAutlwin/progress/BreakStartInfo.h>

#include <KORVAutl/Log.h>
#include <KORVAutl/TsFileUtl.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace korva {

namespace {

constexpr const char* kClassName = "BreakWindowProcess";
constexpr int kCommandFd = 3;
constexpr int kReportFd = 4;
// How long a companion whose socket closed may take to end before it is killed.
constexpr auto kReapGrace = std::chrono::seconds(2);

void LogFailure(const char* function, const std::string& text)
{
    Log::WriteMessage(kClassName, function, text.c_str(), Log::eSystemCallFailed);
}

std::string SystemError(const char* call, int error)
{
    return std::string(call) + " failed: " + std::strerror(error) + ".";
}

// Receives one record; its size, 0 at the end of the connection, -1 on failure.
// A record longer than any of the protocol comes back longer than kMaxRecordSize.
ssize_t ReceiveRecord(int fd, unsigned char* buffer, std::size_t capacity)
{
    for (;;) {
        const ssize_t received = recv(fd, buffer, capacity, MSG_TRUNC);
        if (received >= 0 || errno != EINTR)
            return received;
    }
}

bool SendRecord(int fd, const BreakWire::Buffer& buffer, std::size_t size)
{
    for (;;) {
        // MSG_NOSIGNAL: a companion that is gone must not take this process with it.
        const ssize_t sent = send(fd, buffer.data(), size, MSG_NOSIGNAL);
        if (sent >= 0)
            return static_cast<std::size_t>(sent) == size;
        if (errno != EINTR)
            return false;
    }
}

// Receives one record of `fd` into `message`, with the failure in `why` otherwise.
enum EReceive { eReceived, eEnded, eTimedOut, eFailed };
EReceive ReceiveMessage(int fd, BreakWire::Message& message, std::string& why)
{
    unsigned char buffer[BreakWire::kMaxRecordSize + 1];
    const ssize_t received = ReceiveRecord(fd, buffer, sizeof buffer);
    if (received == 0) {
        why = "The break window closed its connection.";
        return eEnded;
    }
    if (received < 0) {
        why = SystemError("recv", errno);
        return errno == EAGAIN || errno == EWOULDBLOCK ? eTimedOut : eFailed;
    }
    const BreakWire::EDecode decoded = BreakWire::Decode(buffer, static_cast<std::size_t>(received), message);
    if (decoded == BreakWire::eDecoded)
        return eReceived;
    why = decoded == BreakWire::eWrongVersion ? "The break window speaks another version; it is given up."
                                              : "The break window sent a malformed record; it is given up.";
    return eFailed;
}

// Whether the counter `done` has reached `target`, across the wrap at 2^32.
bool Reached(std::uint32_t done, std::uint32_t target)
{
    return static_cast<std::int32_t>(done - target) >= 0;
}

} // namespace

// One companion and its connection. The main thread writes the records and
// reads their acknowledgements on the command socket; the reader thread reads
// the report socket, and at the end reaps the companion.
class BreakConnection
{
public:
    BreakConnection(int commandSocket, int reportSocket, ChildProcess child,
                    std::function<void(Progress&)> stopConfirmed)
        : fd(commandSocket), reportFd(reportSocket), pid(child.Pid()), confirmStop(std::move(stopConfirmed)),
          companion(std::move(child))
    {
        // A blocking read that gives up on its own: the acknowledgement's timeout.
        const timeval limit{BreakWindowProcess::kAcknowledgeTimeout / 1000,
                            (BreakWindowProcess::kAcknowledgeTimeout % 1000) * 1000};
        setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        reader = std::thread([this] { Read(); });
    }

    ~BreakConnection()
    {
        Lose(nullptr, false);
        if (reader.joinable())
            reader.join();
        close(fd);
        close(reportFd);
    }

    BreakConnection(const BreakConnection&) = delete;
    BreakConnection& operator=(const BreakConnection&) = delete;

    bool IsAlive() const { return alive.load(std::memory_order_acquire); }
    int GaugeWidth() const { return gaugeWidth.load(std::memory_order_relaxed); }

    std::uint32_t NextSequence()
    {
        // 0 stands for "no session".
        if (++sequence == 0)
            ++sequence;
        return sequence;
    }

    // Sends `message` and waits for its acknowledgement.
    bool RoundTrip(BreakWire::Message& message)
    {
        if (!IsAlive())
            return false;
        if (message.sequence == 0)
            message.sequence = NextSequence();
        BreakWire::Buffer buffer;
        const std::size_t size = BreakWire::Encode(message, buffer);
        if (!SendRecord(fd, buffer, size)) {
            Lose(SystemError("send", errno).c_str(), false);
            return false;
        }
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::milliseconds(BreakWindowProcess::kAcknowledgeTimeout);
        for (;;) {
            BreakWire::Message answer;
            std::string why;
            switch (ReceiveMessage(fd, answer, why)) {
            case eReceived:
                break;
            case eTimedOut:
                Lose("The break window did not acknowledge a message in time; it is given up.", true);
                return false;
            default:
                Lose(why.c_str(), false);
                return false;
            }
            if (answer.type != BreakWire::eAcknowledge || !Reached(message.sequence, answer.sequence)) {
                Lose("The break window answered out of turn; it is given up.", false);
                return false;
            }
            if (answer.sequence == message.sequence)
                return AwaitReports(answer.argument, deadline);
        }
    }

    // From now on a confirmed stop of the session `start` goes to `client` (null: to nobody).
    void Serve(Progress* served, std::uint32_t start)
    {
        std::lock_guard<std::mutex> lock(mutex);
        client = served;
        session = start;
    }

    // Gives the companion up: every later call returns at once and the reader
    // ends. `why` null is the orderly end. `killIt` for a companion that hangs.
    void Lose(const char* why, bool killIt)
    {
        const bool wasAlive = alive.exchange(false, std::memory_order_acq_rel);
        {
            std::lock_guard<std::mutex> lock(mutex);
            client = nullptr;
            session = 0;
            if (killIt)
                companion.Kill();
        }
        changed.notify_all();
        shutdown(fd, SHUT_RDWR);
        shutdown(reportFd, SHUT_RDWR);
        if (why && wasAlive)
            LogFailure("Connection", why);
    }

    const int fd;
    const int reportFd;
    const pid_t pid;

private:
    // The reports written before an acknowledgement are handled before its call
    // returns. They are on our socket already; the reader is at most a moment behind.
    bool AwaitReports(std::uint32_t written, std::chrono::steady_clock::time_point deadline)
    {
        if (Reached(reportsHandled.load(std::memory_order_acquire), written))
            return true;
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait_until(lock, deadline, [&] {
            return Reached(reportsHandled.load(std::memory_order_relaxed), written) || !IsAlive();
        });
        return IsAlive();
    }

    void Read()
    {
        for (;;) {
            BreakWire::Message report;
            std::string why;
            if (ReceiveMessage(reportFd, report, why) != eReceived) {
                Lose(why.c_str(), false);
                break;
            }
            if (report.type != BreakWire::eStopConfirmed && report.type != BreakWire::eGaugeWidth) {
                Lose("The break window sent a record that is no report; it is given up.", false);
                break;
            }
            {
                std::lock_guard<std::mutex> lock(mutex);
                if (report.type == BreakWire::eGaugeWidth)
                    gaugeWidth.store(static_cast<int>(report.argument), std::memory_order_relaxed);
                // A stop of a client that has finished meanwhile goes nowhere.
                else if (client && session != 0 && session == report.argument)
                    confirmStop(*client);
                reportsHandled.store(reportsHandled.load(std::memory_order_relaxed) + 1, std::memory_order_release);
            }
            changed.notify_all();
        }
        Reap();
    }

    void Reap()
    {
        const auto deadline = std::chrono::steady_clock::now() + kReapGrace;
        for (;;) {
            std::unique_lock<std::mutex> lock(mutex);
            if (companion.HasEnded())
                return;
            if (std::chrono::steady_clock::now() >= deadline) {
                companion.Kill();
                companion.Wait();
                return;
            }
            lock.unlock();
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    std::atomic<bool> alive{true};
    std::uint32_t sequence = 0;  // main thread only
    std::function<void(Progress&)> confirmStop;
    std::thread reader;
    std::atomic<int> gaugeWidth{0};
    std::atomic<std::uint32_t> reportsHandled{0};

    std::mutex mutex;
    std::condition_variable changed;
    Progress* client = nullptr;
    std::uint32_t session = 0;  // the sequence of the client's start
    ChildProcess companion;
};

} // namespace korva

using korva::BreakConnection;

BreakWindowProcess::BreakWindowProcess() = default;

BreakWindowProcess::~BreakWindowProcess()
{
    Disconnect();
}

std::string BreakWindowProcess::GetProgramPath()
{
    if (const char* named = std::getenv("KORVA_BREAKWIN"); named && *named)
        return named;
    return TsGetCompanionProgramPath("breakwin");
}

bool BreakWindowProcess::Create()
{
    if (IsWindow())
        return true;
    Disconnect();

    const std::string program = GetProgramPath();
    if (access(program.c_str(), X_OK) != 0) {
        korva::LogFailure("Create", "The break window program " + program + " cannot be run: " +
                                        std::strerror(errno) + ".");
        return false;
    }

    int commands[2];
    int reports[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, commands) != 0) {
        korva::LogFailure("Create", korva::SystemError("socketpair", errno));
        return false;
    }
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, reports) != 0) {
        korva::LogFailure("Create", korva::SystemError("socketpair", errno));
        close(commands[0]);
        close(commands[1]);
        return false;
    }
    const int ours = commands[0];
    korva::ChildProcess child;
    const int spawned =
        child.Spawn(program, {program}, {{commands[1], korva::kCommandFd}, {reports[1], korva::kReportFd}});
    close(commands[1]);
    close(reports[1]);
    if (spawned != 0) {
        korva::LogFailure("Create", korva::SystemError("posix_spawn", spawned));
        close(ours);
        close(reports[0]);
        return false;
    }

    // The companion's first record is "ready"; one that cannot show a window ends instead.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kReadyTimeout);
    bool ready = false;
    std::string failure = "The break window did not start in time.";
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0)
            break;
        pollfd waiting{ours, POLLIN, 0};
        const int polled = poll(&waiting, 1, static_cast<int>(left));
        if (polled < 0 && errno == EINTR)
            continue;
        if (polled <= 0)
            break;
        unsigned char buffer[BreakWire::kMaxRecordSize + 1];
        const ssize_t received = korva::ReceiveRecord(ours, buffer, sizeof buffer);
        BreakWire::Message message;
        if (received <= 0)
            failure = "The break window ended before it was ready (no display?).";
        else if (BreakWire::Decode(buffer, static_cast<std::size_t>(received), message) != BreakWire::eDecoded ||
                 message.type != BreakWire::eReady)
            failure = "The break window does not speak this version of its protocol.";
        else
            ready = true;
        break;
    }
    if (!ready) {
        korva::LogFailure("Create", failure + " (" + program + ")");
        close(ours);
        close(reports[0]);
        child.Kill();
        child.Wait();
        return false;
    }

    const pid_t pid = child.Pid();
    mConnection = std::make_unique<BreakConnection>(ours, reports[0], std::move(child), [](Progress& client) {
        BreakWindowChannel::SetBreakPressed(client);
    });
    Log::WriteMessage(korva::kClassName, "Create", ("The break window runs as process " + std::to_string(pid) + ".").c_str(),
                      Log::eMilestone);
    return true;
}

bool BreakWindowProcess::IsWindow() const
{
    return mConnection && mConnection->IsAlive();
}

void BreakWindowProcess::Disconnect()
{
    // Joins the reader, which reaps the companion once its socket is closed.
    mConnection.reset();
}

bool BreakWindowProcess::RoundTrip(BreakWire::Message message)
{
    return mConnection && mConnection->RoundTrip(message);
}

void BreakWindowProcess::Finish()
{
    RoundTrip(BreakWire::Make(BreakWire::eFinish));
    if (mConnection)
        mConnection->Serve(nullptr, 0);
}

void BreakWindowProcess::SpinStep()
{
    RoundTrip(BreakWire::Make(BreakWire::eSpinStep));
}

void BreakWindowProcess::SpinRest()
{
    RoundTrip(BreakWire::Make(BreakWire::eSpinRest));
}

void BreakWindowProcess::SetTitle(const char* title)
{
    RoundTrip(BreakWire::MakeTitle(title ? title : ""));
}

void BreakWindowProcess::SetGaugeValue(float value)
{
    RoundTrip(BreakWire::MakeGaugeValue(value));
}

void BreakWindowProcess::SetGaugeRange(float low, float high)
{
    RoundTrip(BreakWire::MakeGaugeRange(low, high));
}

void BreakWindowProcess::ShowWindow(bool show)
{
    RoundTrip(BreakWire::Make(BreakWire::eShowWindow, 0, show ? 1u : 0u));
}

void BreakWindowProcess::Start(unsigned int delay, Progress* client, const QRect& mainWindow)
{
    if (!IsWindow() || !client)
        return;
    BreakWire::Message message = BreakWire::MakeStart(StartInfo(*client, delay, mainWindow));
    message.sequence = mConnection->NextSequence();
    mConnection->Serve(client, message.sequence);
    RoundTrip(std::move(message));
}

pid_t BreakWindowProcess::GetCompanionPid() const
{
    return IsWindow() ? mConnection->pid : 0;
}

int BreakWindowProcess::GetSocket() const
{
    return IsWindow() ? mConnection->fd : -1;
}

int BreakWindowProcess::GetGaugeResolution() const
{
    return IsWindow() ? mConnection->GaugeWidth() : 0;
}

bool BreakWindowProcess::PressStopInCompanion()
{
    return RoundTrip(BreakWire::Make(BreakWire::ePressStop));
}
