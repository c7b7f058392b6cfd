#pragma once
// Processor faults as exceptions.
//
// A fault (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP) raised while a thread runs
// inside RunWithFaultTranslation becomes a TsSystemException with the fault's
// code and text, so the event dispatch shows it like any other error and the
// program goes on.
//
// The exception is thrown from the signal handler at the faulting instruction,
// and every frame between there and the guard is unwound as for any throw:
// destructors run, locks held by RAII objects are released, Qt's emission state
// is cleaned up, and a catch on the way sees the fault. For that, the code that
// runs inside the guard is built with -fnon-call-exceptions (KORVAutl and
// KORVAutlwin pass it on to whoever links them); the signal mask and the
// floating-point control state of the faulting code are restored on the way out.
//
// Two cases cannot be unwound, and jump back to the guard instead (siglongjmp),
// skipping the destructors of every frame in between, whose locks stay taken and
// whose objects stay half made: a stack overflow, since no stack is left to run
// the cleanups on; and a fault in code that would end the process if thrown
// through (a frame built with exceptions but without -fnon-call-exceptions,
// whose faulting instruction has no place in its exception table, a noexcept
// function, a frame without unwind information). After such a jump the state
// those frames held is in doubt: the error dialog lets the user end the process.
// Frames built without exceptions at all (Qt Widgets) are crossed without
// cleanups of their own in either case.
//
// The handlers run on a per-thread alternate signal stack, so a stack overflow
// is caught too. A fault outside every guard is a crash: MiniDumper writes its
// dump (if it was initialised), then the signal's default action ends the process.
// A fault signal that another process sends is not translated: it ends the process.

#include <functional>

namespace korva {

/// Runs `body` on the calling thread. A processor fault inside it (SIGSEGV, SIGBUS, SIGFPE,
/// SIGILL, SIGTRAP) becomes a TsSystemException thrown from here with the table's code and
/// text. Guards nest. Installs the handlers and the thread's alternate signal stack on first use.
/// Exceptions thrown by `body` pass through unchanged.
void RunWithFaultTranslation(const std::function<void()>& body);

/// Installs the process-wide fault handlers (once) and the calling thread's alternate
/// signal stack (once per thread). RunWithFaultTranslation and MiniDumper::Initialize call
/// it; a thread that wants its own stack overflow to leave a dump calls it at its start.
void PrepareFaultHandling();

/// The fault code (TsSystemException's table) of signal `signal` with the details of
/// `info`; `stackOverflow` tells a SIGSEGV just below the thread's stack. 0 for a
/// signal that is no processor fault.
unsigned int FaultCodeOfSignal(int signal, int siCode, bool stackOverflow);

} // namespace korva
