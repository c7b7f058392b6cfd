#pragma once
// Processor faults as exceptions.
//
// A fault (SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP) raised while a thread runs
// inside RunWithFaultTranslation ends the body at once and comes out of the
// guard as a TsSystemException with the fault's code and text, so the event
// dispatch shows it like any other error and the program goes on.
//
// The handlers run on a per-thread alternate signal stack, so a stack overflow
// is caught too. A fault outside every guard is a crash: MiniDumper writes its
// dump (if it was initialised), then the signal's default action ends the process.
//
// What the jump back skips: destructors of objects between the faulting code and
// the guard do not run, locks taken there stay taken. That is the price of going
// on after a fault; the error dialog lets the user end the process instead.
// The exception appears at the guard, not at the faulting instruction: a catch
// inside `body` does not see it, so put the guard where it is to be caught.
// After a translated fault the thread's floating-point control state is the
// default one (the kernel resets it for the handler, and no return restores it).
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
