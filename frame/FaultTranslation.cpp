#include <KORVAutlwin/frame/FaultTranslation.h>

#include <KORVAutlwin/frame/MiniDumper.h>
#include <KORVAutlwin/frame/TsSystemException.h>
#include <KORVAutlwin/platform/FaultSignals.h>

#include <atomic>
#include <cstdint>
#include <mutex>

#include <setjmp.h>

namespace korva {

namespace {

// One active guard of a thread; the innermost is where a fault goes.
struct GuardFrame
{
    // Only for a fault that cannot be unwound (see the header).
    sigjmp_buf jump;
    GuardFrame* previous;
    volatile unsigned int code;
    // An address inside the guard's frame: frames below it lie between the fault and the guard.
    std::uintptr_t anchor;
};

// Static TLS: plain loads on the hot path, and no lazy allocation when the
// signal handler reads it.
#define KORVA_STATIC_TLS __attribute__((tls_model("initial-exec")))
thread_local GuardFrame* tInnermost KORVA_STATIC_TLS = nullptr;
thread_local bool tPrepared KORVA_STATIC_TLS = false;
// The lowest usable byte of the thread's stack and the width of the region
// below it where a fault counts as a stack overflow.
thread_local std::uintptr_t tStackLow KORVA_STATIC_TLS = 0;
thread_local std::uintptr_t tOverflowZone KORVA_STATIC_TLS = 0;

constexpr int kFaultSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP};

// Room for the handler, the unwinder of the backtrace and the application's dump callbacks.
constexpr std::size_t kAltStackSize = 256 * 1024;

bool IsStackOverflow(const siginfo_t* info, const void* context)
{
    if (tStackLow == 0)
        return false;
    const std::uintptr_t page = 4096;
    const std::uintptr_t low = tStackLow > tOverflowZone ? tStackLow - tOverflowZone : 0;
    const std::uintptr_t high = tStackLow + page;
    const auto inZone = [&](std::uintptr_t address) { return address >= low && address < high; };
    // The access that ran into the guard, or a stack pointer already past the end.
    return inZone(reinterpret_cast<std::uintptr_t>(info->si_addr)) || inZone(ContextStackPointer(context));
}

extern "C" void FaultHandler(int signal, siginfo_t* info, void* context)
{
    const bool overflow = signal == SIGSEGV && IsStackOverflow(info, context);
    const unsigned int code = FaultCodeOfSignal(signal, info->si_code, overflow);
    GuardFrame* frame = tInnermost;
    // A signal that another process sent is not translated.
    if (frame && IsOwnSignal(info)) {
        // The mask and floating-point state of the interrupted code come back, as a return from here would restore them.
        // The guard pops itself when the exception passes it.
        if (!overflow && CanThrowToFrame(context, frame->anchor)) {
            RestoreInterruptedState(context);
            throw TsSystemException(code);
        }
        // No stack left to run the cleanups on, or a frame on the way that cannot be
        // unwound from here: back to the guard, past everything in between.
        frame->code = code;
        tInnermost = frame->previous;
        std::atomic_signal_fence(std::memory_order_seq_cst);
        RestoreInterruptedState(context);
        siglongjmp(frame->jump, 1);
    }
    HandleCrash(signal, info, context, code);
}

void InstallHandlers()
{
    for (int signal : kFaultSignals)
        InstallFaultHandler(signal, FaultHandler);
}

void PrepareThread()
{
    EnableAlternateStack(kAltStackSize);
    GetStackLimit(tStackLow, tOverflowZone);
    tPrepared = true;
}

} // namespace

void PrepareFaultHandling()
{
    static std::once_flag installed;
    std::call_once(installed, InstallHandlers);
    if (!tPrepared)
        PrepareThread();
}

unsigned int FaultCodeOfSignal(int signal, int siCode, bool stackOverflow)
{
    switch (signal) {
    case SIGSEGV:
        return stackOverflow ? TsSystemException::eStackOverflow : TsSystemException::eAccessViolation;
    case SIGFPE:
        switch (siCode) {
        case FPE_INTDIV: return TsSystemException::eIntegerDivideByZero;
        case FPE_INTOVF: return TsSystemException::eIntegerOverflow;
        case FPE_FLTDIV: return TsSystemException::eFloatDivideByZero;
        case FPE_FLTOVF: return TsSystemException::eFloatOverflow;
        case FPE_FLTUND: return TsSystemException::eFloatUnderflow;
        case FPE_FLTRES: return TsSystemException::eFloatInexactResult;
        case FPE_FLTSUB: return TsSystemException::eArrayBoundsExceeded;
        default: return TsSystemException::eFloatInvalidOperation;
        }
    case SIGILL:
        return siCode == ILL_PRVOPC || siCode == ILL_PRVREG ? TsSystemException::ePrivilegedInstruction
                                                             : TsSystemException::eIllegalInstruction;
    case SIGBUS:
        return siCode == BUS_ADRALN ? TsSystemException::eDatatypeMisalignment : TsSystemException::eInPageError;
    case SIGTRAP:
        // x86's int3 arrives as SI_KERNEL, not TRAP_BRKPT: everything but a single step is a breakpoint.
        return siCode == TRAP_TRACE ? TsSystemException::eSingleStep : TsSystemException::eBreakpoint;
    default:
        return 0;
    }
}

void RunWithFaultTranslation(const std::function<void()>& body)
{
    if (!tPrepared)
        PrepareFaultHandling();
    GuardFrame frame;
    frame.previous = tInnermost;
    frame.code = 0;
    frame.anchor = reinterpret_cast<std::uintptr_t>(&frame);
    // No mask saved: the handler restores the interrupted code's mask itself.
    if (sigsetjmp(frame.jump, 0) != 0) {
        // Back from a fault: the handler has already popped this guard.
        throw TsSystemException(frame.code);
    }
    tInnermost = &frame;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    try {
        body();
    } catch (...) {
        tInnermost = frame.previous;
        throw;
    }
    tInnermost = frame.previous;
}

} // namespace korva
