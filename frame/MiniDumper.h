#pragma once
/// \class MiniDumper
/// The crash dump of the process.
///
/// After Initialize, a crash on any thread (a processor fault outside every
/// RunWithFaultTranslation guard, or a C++ exception that nobody caught) leaves
/// a text dump in the file that `dumpPath` names, and then the process ends as
/// the crash would have ended it (killed by the signal; abort for an exception).
///
/// The dump holds: the signal with its sub-code and the fault code, the fault
/// address, the registers of the failing thread, a backtrace with each address as
/// module path + offset, and the memory map (/proc/self/maps). An uncaught
/// exception gives a dump with the exception's text in place of the signal.
///
/// The dump is written from the signal handler with plain system calls into
/// static buffers. The three functions are the application's own and run there
/// too: keep them short, and do not let them wait for locks that the failed
/// thread may hold (allocation is usually fine; printing to a locked stream is not).
///
/// A stack overflow is caught on threads that have an alternate signal stack:
/// the thread that calls Initialize, threads that run RunWithFaultTranslation,
/// and threads that call korva::PrepareFaultHandling() themselves.

#include <functional>
#include <string>

#include <signal.h>

class MiniDumper
{
public:
    using DumpPathFunction = std::function<std::string()>;
    using DumpedFunction = std::function<void(const char* path)>;
    using FailedFunction = std::function<void(const char* path, unsigned long error)>;

    /// Installs the crash handling, once per process: a second call changes
    /// nothing and keeps the first functions. On a crash: `dumpPath` gives the
    /// file (an empty function or an empty name: no dump); the file is created or
    /// truncated; if that fails, `onFailed(path, errno)`; otherwise the dump is
    /// written and `onDumped(path)` is called, or `onFailed(path, errno)` when a
    /// write failed. Any of the functions may be empty.
    static void Initialize(DumpPathFunction dumpPath, DumpedFunction onDumped, FailedFunction onFailed);

    /// True after the first Initialize.
    static bool IsInitialized();
};

namespace korva {

/// The end of a crash, on the failing thread (called by the fault handler for a
/// fault outside every guard): writes the dump if MiniDumper was initialised,
/// then ends the process by `signal` with its default action. A second crash
/// while the first is being written ends the process at once.
[[noreturn]] void HandleCrash(int signal, const siginfo_t* info, const void* context, unsigned int code);

} // namespace korva
