#include <KORVAutlwin/platform/ChildProcess.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace korva {

namespace {

// Everything posix_spawn needs for one start, made beforehand: the detached
// start calls posix_spawn in a forked child, where nothing may allocate.
class SpawnPlan
{
public:
    SpawnPlan(const std::string& program, const std::vector<std::string>& arguments,
              const std::vector<ChildProcess::Handover>& descriptors)
        : mProgram(program), mArguments(arguments)
    {
        for (std::string& argument : mArguments)
            mArgv.push_back(argument.data());
        mArgv.push_back(nullptr);

        posix_spawnattr_init(&mAttributes);
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&mAttributes, &none);
        posix_spawnattr_setsigdefault(&mAttributes, &all);
        posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

        // Each descriptor goes through a copy above every target, so that no dup2
        // overwrites the source of another, and none lands on itself (which would
        // leave close-on-exec set).
        int above = 3;
        for (const ChildProcess::Handover& handover : descriptors)
            above = std::max(above, handover.theirs + 1);
        posix_spawn_file_actions_init(&mActions);
        for (const ChildProcess::Handover& handover : descriptors) {
            const int copy = fcntl(handover.ours, F_DUPFD_CLOEXEC, above);
            if (copy < 0) {
                mError = errno;
                return;
            }
            mCopies.push_back(copy);
            posix_spawn_file_actions_adddup2(&mActions, copy, handover.theirs);
        }
        // Descriptors that are not close-on-exec must not slip through either.
        for (int fd = 3; fd < above; ++fd)
            if (std::none_of(descriptors.begin(), descriptors.end(), [fd](const auto& h) { return h.theirs == fd; }))
                posix_spawn_file_actions_addclose(&mActions, fd);
        posix_spawn_file_actions_addclosefrom_np(&mActions, above);
    }

    ~SpawnPlan()
    {
        posix_spawn_file_actions_destroy(&mActions);
        posix_spawnattr_destroy(&mAttributes);
        for (int copy : mCopies)
            close(copy);
    }

    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    int Spawn(pid_t& pid)
    {
        if (mError != 0)
            return mError;
        return posix_spawn(&pid, mProgram.c_str(), &mActions, &mAttributes, mArgv.data(), environ);
    }

private:
    std::string mProgram;
    std::vector<std::string> mArguments;
    std::vector<char*> mArgv;
    std::vector<int> mCopies;
    posix_spawn_file_actions_t mActions;
    posix_spawnattr_t mAttributes;
    int mError = 0;
};

} // namespace

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : mPid(std::exchange(other.mPid, 0)), mReaped(std::exchange(other.mReaped, true))
{
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept
{
    mPid = std::exchange(other.mPid, 0);
    mReaped = std::exchange(other.mReaped, true);
    return *this;
}

int ChildProcess::Spawn(const std::string& program, const std::vector<std::string>& arguments,
                        const std::vector<Handover>& descriptors)
{
    SpawnPlan plan(program, arguments, descriptors);
    pid_t pid = 0;
    const int error = plan.Spawn(pid);
    if (error == 0) {
        mPid = pid;
        mReaped = false;
    }
    return error;
}

int ChildProcess::SpawnDetached(const std::string& program, const std::vector<std::string>& arguments)
{
    SpawnPlan plan(program, arguments, {});
    ChildProcess middle;
    middle.mPid = fork();
    if (middle.mPid == 0) {
        // Only async-signal-safe calls here; posix_spawn is made of system calls.
        setsid();
        pid_t pid = 0;
        _exit(plan.Spawn(pid));
    }
    if (middle.mPid < 0)
        return errno;
    middle.mReaped = false;
    // The middle process's exit code is the errno of its start.
    const int code = middle.Wait();
    return code < 0 ? ECHILD : code;
}

int ChildProcess::Wait()
{
    if (mReaped)
        return -1;
    int status = 0;
    pid_t result;
    do
        result = waitpid(mPid, &status, 0);
    while (result < 0 && errno == EINTR);
    mReaped = true;
    return result == mPid && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool ChildProcess::HasEnded()
{
    if (mReaped)
        return true;
    pid_t result;
    do
        result = waitpid(mPid, nullptr, WNOHANG);
    while (result < 0 && errno == EINTR);
    mReaped = result != 0;
    return mReaped;
}

void ChildProcess::Kill(int signal)
{
    if (!mReaped)
        kill(mPid, signal);
}

std::vector<std::string> ChildProcess::OwnCommandLine()
{
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::vector<std::string> arguments;
    for (std::size_t start = 0; start < content.size();) {
        std::size_t end = content.find('\0', start);
        if (end == std::string::npos)
            end = content.size();
        arguments.push_back(content.substr(start, end - start));
        start = end + 1;
    }
    return arguments;
}

} // namespace korva
