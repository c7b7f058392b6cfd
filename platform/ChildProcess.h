#pragma once
/// \class korva::ChildProcess
/// A child process: started with a clean slate and reaped with EINTR handled.
///
/// Every start is the same: the signal mask is empty and every signal has its
/// default action in the child, whatever this process blocked or ignored; the
/// descriptors handed over sit at the numbers asked for, 0-2 are inherited, and
/// every other descriptor is closed on exec. The program is not searched on PATH.
///
/// The object is not thread-safe: a caller that waits on one thread and kills on
/// another guards it with a lock. Destroying it leaves the child alone.

#include <string>
#include <vector>

#include <signal.h>
#include <sys/types.h>

namespace korva {

class ChildProcess
{
public:
    /// One descriptor handed over: our `ours` becomes `theirs` in the child.
    struct Handover
    {
        int ours;
        int theirs;
    };

    ChildProcess() = default;
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// Starts `program` with `arguments` (argv[0] included) and `descriptors`
    /// handed over, in this process's environment. Returns 0, or the errno of
    /// the failure (a program that cannot be run counts: posix_spawn reports it).
    int Spawn(const std::string& program, const std::vector<std::string>& arguments,
              const std::vector<Handover>& descriptors = {});

    /// Starts `program` as Spawn does, but as nobody's child: an intermediate
    /// process starts it in a session of its own and ends at once, so the program
    /// outlives this process and is never reaped here. 0, or the errno of the failure.
    static int SpawnDetached(const std::string& program, const std::vector<std::string>& arguments);

    /// The process id while there is a child that was not reaped, else 0.
    pid_t Pid() const { return mReaped ? 0 : mPid; }
    /// Waits for the child to end and reaps it. Its exit code (0-255), or -1 when
    /// a signal ended it or there was no child to wait for.
    int Wait();
    /// Reaps the child if it has ended, without waiting; true when it is gone
    /// (also when there was none).
    bool HasEnded();
    /// Sends `signal` to a child that was not reaped yet; a
    /// reaped child's id may belong to another process already.
    void Kill(int signal = SIGKILL);

    /// The running program's own file, even when it was replaced or deleted since.
    static const char* OwnProgram() { return "/proc/self/exe"; }
    /// The arguments this process was started with, as the kernel keeps them
    /// (toolkits remove the ones they consumed from their own copy).
    static std::vector<std::string> OwnCommandLine();

private:
    pid_t mPid = 0;
    bool mReaped = true;
};

} // namespace korva
