#include <KORVAutlwin/platform/SignalWait.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

namespace korva {

static_assert(sizeof(sigset_t) <= 128, "the saved mask must fit");

SignalWait::SignalWait(std::initializer_list<int> signalList) : mSignals(signalList)
{
    sigset_t set;
    sigemptyset(&set);
    for (int signal : mSignals)
        sigaddset(&set, signal);
    sigset_t old;
    if (const int error = pthread_sigmask(SIG_BLOCK, &set, &old)) {
        mError = error;
        return;
    }
    std::memcpy(mOldMask, &old, sizeof old);
    mSignalFd = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    if (mSignalFd < 0) {
        mError = errno;
        return;
    }
    mWakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (mWakeFd < 0)
        mError = errno;
}

SignalWait::~SignalWait()
{
    // Signals that came after the last Wait() are taken here: with the old mask
    // back, their default action would end the process.
    signalfd_siginfo info;
    while (mSignalFd >= 0 && read(mSignalFd, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    }
    if (mSignalFd >= 0)
        close(mSignalFd);
    if (mWakeFd >= 0)
        close(mWakeFd);
    sigset_t old;
    std::memcpy(&old, mOldMask, sizeof old);
    pthread_sigmask(SIG_SETMASK, &old, nullptr);
}

int SignalWait::Wait()
{
    if (!IsOpen())
        return -1;
    for (;;) {
        signalfd_siginfo info;
        const ssize_t got = read(mSignalFd, &info, sizeof info);
        if (got == static_cast<ssize_t>(sizeof info))
            return static_cast<int>(info.ssi_signo);
        if (got < 0 && errno != EAGAIN && errno != EINTR) {
            mError = errno;
            return -1;
        }
        std::uint64_t count = 0;
        if (read(mWakeFd, &count, sizeof count) == static_cast<ssize_t>(sizeof count))
            return 0;
        pollfd fds[2] = {{mSignalFd, POLLIN, 0}, {mWakeFd, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0 && errno != EINTR) {
            mError = errno;
            return -1;
        }
    }
}

void SignalWait::Wake()
{
    const std::uint64_t one = 1;
    // A failed write means the counter is full: a wake-up is pending anyway.
    if (mWakeFd >= 0 && write(mWakeFd, &one, sizeof one) < 0)
        return;
}

} // namespace korva
