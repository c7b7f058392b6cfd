#pragma once
// Fault signals and what a crash dump reads about the process.
//
// The handlers run on a per-thread alternate stack, so that a thread whose own
// stack overflowed can still be handled. Everything marked "signal-safe" may be
// called inside a handler: plain system calls on the caller's buffers, no
// allocation, no locks.

#include <cstddef>
#include <cstdint>

#include <signal.h>

namespace korva {

using FaultHandler = void (*)(int signal, siginfo_t* info, void* context);

/// Installs `handler` for `signal`, process-wide. It runs on the thread's
/// alternate stack and gets the signal's details and context. The fault signals
/// are blocked while it runs, so a fault inside the handler ends the process
/// instead of nesting; a handler that leaves other than by returning calls
/// RestoreInterruptedState first.
void InstallFaultHandler(int signal, FaultHandler handler);
/// Gives the calling thread the signal mask and the floating-point control state
/// (rounding, exception masks; not the raised flags) that the handler's `context`
/// saved, those of the interrupted code, as a return from the handler would. Signal-safe.
void RestoreInterruptedState(const void* context);
/// True when an exception thrown from the handler of `context` would unwind every
/// frame from the faulting one up to the frame that holds `anchor` (an address
/// inside a frame with a catch-all): each of them has unwind information, and
/// each that has cleanups or handlers has them for the point where it stopped.
/// False when the walk does not get there, or a frame would end the process
/// instead (a trapping instruction of code built without -fnon-call-exceptions,
/// a noexcept function). For the handler of a synchronous fault only.
bool CanThrowToFrame(const void* context, std::uintptr_t anchor);
/// Gives the calling thread an alternate signal stack of at least `size` bytes,
/// with an inaccessible page below it, unless it has one; it is freed when the
/// thread ends. False when it has none afterwards.
bool EnableAlternateStack(std::size_t size);
/// The lowest address of the calling thread's stack and the width of the region
/// below it where a fault means that the stack ran over; false when unknown.
bool GetStackLimit(std::uintptr_t& low, std::uintptr_t& overflowZone);
/// True when the kernel raised the signal of `info` or this process sent it to
/// itself; false for one that another process sent. Signal-safe.
bool IsOwnSignal(const siginfo_t* info);

/// Ends the process by `signal` with its default action (a core dump where the
/// system makes one); the exit code 128 + signal if that does not end it. Signal-safe.
[[noreturn]] void EndBySignal(int signal);
/// Blocks the calling thread until the process ends. Signal-safe.
[[noreturn]] void WaitForEnd();

/// The kernel's id of the calling thread. Signal-safe.
long CurrentThreadId();
/// This process's id. Signal-safe.
long CurrentProcessId();

/// The stack pointer and the program counter in a handler's `context`; 0 when unknown.
std::uintptr_t ContextStackPointer(const void* context);
std::uintptr_t ContextProgramCounter(const void* context);
/// One processor register of a context.
struct RegisterValue
{
    const char* name;
    std::uintptr_t value;
};
/// The registers in `context`, at most `capacity` of them into `registers`;
/// their count, 0 on a processor whose registers are not known here. Signal-safe.
std::size_t ContextRegisters(const void* context, RegisterValue* registers, std::size_t capacity);
/// The calling thread's context now, for a dump outside a handler, in storage
/// that the next call overwrites; null when it cannot be taken.
const void* CaptureContext();

/// Loads what Backtrace needs, so that its first use inside a handler allocates nothing.
void PrepareBacktrace();
/// The return addresses of the calling thread's stack, innermost first; their count.
int Backtrace(void** frames, int capacity);

/// Reads the process's memory map (the lines of /proc/self/maps) into `buffer`;
/// its size. `truncated` tells whether more was there. Signal-safe.
std::size_t ReadMemoryMap(char* buffer, std::size_t capacity, bool& truncated);
/// Reads the path of the running executable into `buffer`, without a
/// terminating zero; its length, 0 when unknown. Signal-safe.
std::size_t ReadExecutablePath(char* buffer, std::size_t capacity);

/// Creates or truncates the dump file `path`; its descriptor, or -1 with errno set. Signal-safe.
int CreateDumpFile(const char* path);
/// Writes all of `data` to `fd`; 0, or the errno of the failure. Signal-safe.
int WriteToFile(int fd, const void* data, std::size_t size);
/// Closes `fd`; 0, or the errno of the failure (an interruption is none). Signal-safe.
int CloseFile(int fd);

} // namespace korva
