// A child starts clean whatever this process has set up: no blocked or ignored
// signal, and no descriptor but those handed over (also onto their own number).

#include <KORVAutlwin/platform/ChildProcess.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace {

TEST(ChildProcessTest, TheChildGetsTheHandedDescriptorsAndTheDefaultSignalStateOnly)
{
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    const int leaked = dup(ends[0]); // not close-on-exec
    sigset_t blocked, mask;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &mask);
    struct sigaction ignore{}, previous{};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGUSR2, &ignore, &previous);

    const std::string script = "grep -E '^Sig(Blk|Ign)' /proc/self/status >&" + std::to_string(ends[1]) +
                               "; [ -e /proc/self/fd/" + std::to_string(leaked) + " ] && exit 3; exit 0";
    korva::ChildProcess child;
    const int started = child.Spawn("/bin/sh", {"sh", "-c", script}, {{ends[1], ends[1]}});
    sigaction(SIGUSR2, &previous, nullptr);
    pthread_sigmask(SIG_SETMASK, &mask, nullptr);
    close(ends[1]);
    close(leaked);
    ASSERT_EQ(started, 0);

    std::string output;
    char buffer[256];
    for (ssize_t got; (got = read(ends[0], buffer, sizeof buffer)) > 0;)
        output.append(buffer, static_cast<std::size_t>(got));
    close(ends[0]);
    EXPECT_EQ(child.Wait(), 0);
    unsigned long long blockedSignals = ~0ULL, ignoredSignals = ~0ULL;
    ASSERT_EQ(std::sscanf(output.c_str(), "SigBlk: %llx SigIgn: %llx", &blockedSignals, &ignoredSignals), 2) << output;
    EXPECT_EQ(blockedSignals, 0u);
    // The C library's own signals 32 and 33 stay ignored after posix_spawn; no program may use them.
    EXPECT_EQ(ignoredSignals & ~(3ULL << 31), 0u) << output;
}

} // namespace
