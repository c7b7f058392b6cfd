// One message of the break window protocol as a synchronous round trip to the
// real companion process (offscreen), side by side with the floor of any such
// design: a plain SOCK_SEQPACKET ping-pong between two threads of one process,
// the peer answering each record at once.
//
// Wall time per round trip; the counters median_us and p99_us come from timing
// every single round trip (the mean hides the distribution's tail).

#include <KORVAutlwin/progress/BreakWindowProcess.h>
#include <KORVAutlwin/progress/BreakWire.h>
#include <KORVAutlwin/progress/Progress.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>
#include <vector>

#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

// The companion, started once for the whole program and serving one client.
BreakWindowProcess* Companion()
{
    static BreakWindowProcess* process = [] {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        auto* made = new BreakWindowProcess;
        if (!made->Create())
            return static_cast<BreakWindowProcess*>(nullptr);
        // Without an application object this Progress stays inactive; it only
        // lends its texts and switches to the start message.
        static Progress client(nullptr, "Round trips", 0.0f, 1.0f, false, true, true);
        made->Start(60000, &client, {});
        made->SetGaugeRange(0.0f, 1.0f);
        return made;
    }();
    return process;
}

// Runs `roundTrip` once per iteration, timing each one.
void Measure(benchmark::State& state, const std::function<void()>& roundTrip)
{
    std::vector<double> micros;
    micros.reserve(1 << 16);
    for (auto _ : state) {
        const auto start = Clock::now();
        roundTrip();
        micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    if (micros.empty())
        return;
    std::sort(micros.begin(), micros.end());
    state.counters["median_us"] = micros[micros.size() / 2];
    state.counters["p99_us"] = micros[micros.size() * 99 / 100];
}

void BM_Companion_SpinStep(benchmark::State& state)
{
    BreakWindowProcess* process = Companion();
    if (!process) {
        state.SkipWithError("the companion does not start");
        return;
    }
    Measure(state, [process] { process->SpinStep(); });
    if (!process->IsWindow())
        state.SkipWithError("the companion was lost");
}
BENCHMARK(BM_Companion_SpinStep)->UseRealTime();

void BM_Companion_SetGaugeValue(benchmark::State& state)
{
    BreakWindowProcess* process = Companion();
    if (!process) {
        state.SkipWithError("the companion does not start");
        return;
    }
    float value = 0.0f;
    Measure(state, [process, &value] {
        value = value >= 1.0f ? 0.0f : value + 0.001f;
        process->SetGaugeValue(value);
    });
    if (!process->IsWindow())
        state.SkipWithError("the companion was lost");
}
BENCHMARK(BM_Companion_SetGaugeValue)->UseRealTime();

// The peer: the same record size, answered by a thread that does nothing else.
void BM_SocketpairPingPong(benchmark::State& state)
{
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        state.SkipWithError("socketpair failed");
        return;
    }
    std::thread echo([fd = ends[1]] {
        unsigned char record[BreakWire::kMaxRecordSize];
        for (;;) {
            const ssize_t received = recv(fd, record, sizeof record, 0);
            if (received <= 0)
                return;
            // Acknowledge with a header-sized record, as the companion does.
            if (send(fd, record, BreakWire::kHeaderSize, MSG_NOSIGNAL) < 0)
                return;
        }
    });
    BreakWire::Buffer record;
    const std::size_t size = BreakWire::Encode(BreakWire::MakeGaugeValue(0.5f), record);
    unsigned char answer[BreakWire::kMaxRecordSize];
    bool failed = false;
    Measure(state, [&] {
        if (send(ends[0], record.data(), size, MSG_NOSIGNAL) != static_cast<ssize_t>(size) ||
            recv(ends[0], answer, sizeof answer, 0) <= 0)
            failed = true;
    });
    shutdown(ends[0], SHUT_RDWR);
    echo.join();
    close(ends[0]);
    close(ends[1]);
    if (failed)
        state.SkipWithError("the ping-pong broke");
}
BENCHMARK(BM_SocketpairPingPong)->UseRealTime();

} // namespace
