// SysLog::LogMessage over UDP to a local socket, in one run with its two peers:
// a raw send() loop of the same bytes on a connected socket (the physical
// limit) and glibc's syslog(3). The rate is items_per_second, by the wall clock.
//
// The UDP peer is a socket of this process that a thread drains. syslog(3)
// writes to /dev/log: when no daemon listens there, the run binds it for its
// own time (and drains it too); when one does, that row is skipped rather than
// flooding the machine's log.

#include <KORVAutlwin/operations/SysLog.h>

#include <benchmark/benchmark.h>

#include <atomic>
#include <cstring>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <syslog.h>
#include <unistd.h>

namespace {

const char* const kMessage = "Job 4711 finished: 12345 rows written to /data/results/out.csv in 0.53 s";

// The receiving end of both paths, drained by one thread for the whole run.
class Sinks
{
public:
    Sinks()
    {
        mUdp = socket(AF_INET, SOCK_DGRAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof address;
        bind(mUdp, reinterpret_cast<sockaddr*>(&address), sizeof address);
        getsockname(mUdp, reinterpret_cast<sockaddr*>(&address), &length);
        mPort = ntohs(address.sin_port);

        if (access("/dev/log", F_OK) != 0) {
            mDevLog = socket(AF_UNIX, SOCK_DGRAM, 0);
            sockaddr_un local{};
            local.sun_family = AF_UNIX;
            std::strcpy(local.sun_path, "/dev/log");
            if (bind(mDevLog, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0) {
                close(mDevLog);
                mDevLog = -1;
            }
        }
        mDrain = std::thread([this] { Drain(); });
    }

    ~Sinks()
    {
        mStop = true;
        mDrain.join();
        close(mUdp);
        if (mDevLog >= 0) {
            close(mDevLog);
            unlink("/dev/log");
        }
    }

    int Port() const { return mPort; }
    bool HasDevLog() const { return mDevLog >= 0; }

private:
    void Drain()
    {
        pollfd sockets[2] = {{mUdp, POLLIN, 0}, {mDevLog, POLLIN, 0}};
        char buffer[2048];
        while (!mStop)
            if (poll(sockets, mDevLog >= 0 ? 2 : 1, 100) > 0)
                for (const pollfd& s : sockets)
                    if (s.revents & POLLIN)
                        while (recv(s.fd, buffer, sizeof buffer, MSG_DONTWAIT) > 0) {
                        }
    }

    int mUdp = -1;
    int mDevLog = -1;
    int mPort = 0;
    std::atomic<bool> mStop{false};
    std::thread mDrain;
};

Sinks& TheSinks()
{
    static Sinks sinks;
    return sinks;
}

// SysLog reads its INI file once per process: point it at the UDP sink before the first message.
void PrepareSysLog()
{
    static const bool prepared = [] {
        char folder[] = "/tmp/korva-bench-syslog-XXXXXX";
        if (!mkdtemp(folder))
            return false;
        setenv("KORVA_REGISTRY_DIR", folder, 1);
        setenv("XDG_CONFIG_HOME", folder, 1);
        const std::string ini = std::string(folder) + "/SysLog.ini";
        std::ofstream(ini) << "[SysLogSettings]\nPort=" << TheSinks().Port() << "\n";
        SysLog::SetIniPath(ini.c_str());
        const bool connected = SysLog::LogMessage(SysLog::eInfo, "bench", "start");
        std::filesystem::remove_all(folder);
        return connected;
    }();
    if (!prepared)
        std::abort();
}

void BM_SysLog_LogMessage(benchmark::State& state)
{
    PrepareSysLog();
    for (auto _ : state)
        benchmark::DoNotOptimize(SysLog::LogMessage(SysLog::eInfo, "bench", kMessage));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SysLog_LogMessage)->UseRealTime();

void BM_SysLog_LogMessageTwoContexts(benchmark::State& state)
{
    PrepareSysLog();
    const std::vector<std::string> contexts = {"bench", "jobs"};
    for (auto _ : state)
        benchmark::DoNotOptimize(SysLog::LogMessage(SysLog::eInfo, contexts, kMessage));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_SysLog_LogMessageTwoContexts)->UseRealTime();

// The same bytes as LogMessage sends (local7, info), by hand.
void BM_RawSend(benchmark::State& state)
{
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in peer{};
    peer.sin_family = AF_INET;
    peer.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    peer.sin_port = htons(static_cast<uint16_t>(TheSinks().Port()));
    connect(fd, reinterpret_cast<sockaddr*>(&peer), sizeof peer);
    const std::string wire = std::string("<190>") + kMessage;
    for (auto _ : state)
        benchmark::DoNotOptimize(send(fd, wire.data(), wire.size(), 0));
    close(fd);
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_RawSend)->UseRealTime();

void BM_GlibcSyslog(benchmark::State& state)
{
    if (!TheSinks().HasDevLog()) {
        state.SkipWithError("/dev/log belongs to a running daemon: not flooding it");
        return;
    }
    openlog("bench", LOG_NDELAY, LOG_LOCAL7);
    for (auto _ : state)
        syslog(LOG_INFO, "%s", kMessage);
    closelog();
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_GlibcSyslog)->UseRealTime();

} // namespace
