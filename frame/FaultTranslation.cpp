#include <KORVAutlwin/frame/FaultTranslation.h>

#include <KORVAutlwin/frame/MiniDumper.h>
#include <KORVAutlwin/frame/TsSystemException.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <mutex>

#include <pthread.h>
#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

namespace korva {

namespace {

// One active guard of a thread; the innermost is where a fault jumps back to.
struct GuardFrame
{
    sigjmp_buf jump;
    GuardFrame* previous;
    volatile unsigned int code;
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

// Frees the thread's alternate stack when the thread ends.
struct AltStackOwner
{
    void* base = nullptr;
    std::size_t size = 0;

    ~AltStackOwner()
    {
        if (!base)
            return;
        stack_t off{};
        off.ss_flags = SS_DISABLE;
        sigaltstack(&off, nullptr);
        munmap(base, size);
    }
};

std::uintptr_t StackPointer(const void* context)
{
    if (!context)
        return 0;
    const auto* uc = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
    return static_cast<std::uintptr_t>(uc->uc_mcontext.gregs[REG_RSP]);
#elif defined(__aarch64__)
    return static_cast<std::uintptr_t>(uc->uc_mcontext.sp);
#else
    (void)uc;
    return 0;
#endif
}

bool IsStackOverflow(const siginfo_t* info, const void* context)
{
    if (tStackLow == 0)
        return false;
    const std::uintptr_t page = 4096;
    const std::uintptr_t low = tStackLow > tOverflowZone ? tStackLow - tOverflowZone : 0;
    const std::uintptr_t high = tStackLow + page;
    const auto inZone = [&](std::uintptr_t address) { return address >= low && address < high; };
    // The access that ran into the guard, or a stack pointer already past the end.
    return inZone(reinterpret_cast<std::uintptr_t>(info->si_addr)) || inZone(StackPointer(context));
}

// A signal is a fault of this thread when the kernel raised it, or when the
// process sent it to itself (raise, abort-like debug traps). One sent by
// another process is not translated.
bool IsOwnFault(const siginfo_t* info)
{
    return info->si_code > 0 || info->si_pid == getpid();
}

extern "C" void FaultHandler(int signal, siginfo_t* info, void* context)
{
    const bool overflow = signal == SIGSEGV && IsStackOverflow(info, context);
    const unsigned int code = FaultCodeOfSignal(signal, info->si_code, overflow);
    GuardFrame* frame = tInnermost;
    if (frame && IsOwnFault(info)) {
        frame->code = code;
        tInnermost = frame->previous;
        std::atomic_signal_fence(std::memory_order_seq_cst);
        // SA_NODEFER left the mask alone, so there is no mask to restore.
        siglongjmp(frame->jump, 1);
    }
    HandleCrash(signal, info, context, code);
}

void InstallHandlers()
{
    struct sigaction action{};
    action.sa_sigaction = FaultHandler;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (int signal : kFaultSignals)
        sigaction(signal, &action, nullptr);
}

void PrepareThread()
{
    static thread_local AltStackOwner owner;
    stack_t current{};
    if (sigaltstack(nullptr, &current) == 0 && (current.ss_flags & SS_DISABLE)) {
        const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t size = std::max<std::size_t>(kAltStackSize, static_cast<std::size_t>(sysconf(_SC_SIGSTKSZ)));
        // One inaccessible page below, so that an overflow of the handler itself is a clean crash.
        void* base = mmap(nullptr, size + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (base != MAP_FAILED) {
            mprotect(base, page, PROT_NONE);
            stack_t stack{};
            stack.ss_sp = static_cast<char*>(base) + page;
            stack.ss_size = size;
            if (sigaltstack(&stack, nullptr) == 0) {
                owner.base = base;
                owner.size = size + page;
            } else {
                munmap(base, size + page);
            }
        }
    }

    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        void* address = nullptr;
        std::size_t size = 0;
        std::size_t guard = 0;
        if (pthread_attr_getstack(&attributes, &address, &size) == 0) {
            pthread_attr_getguardsize(&attributes, &guard);
            tStackLow = reinterpret_cast<std::uintptr_t>(address);
            // Threads have their guard pages; the main stack has the kernel's gap of about 1 MiB.
            tOverflowZone = std::max<std::uintptr_t>(guard, 1024 * 1024);
        }
        pthread_attr_destroy(&attributes);
    }
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
    // No mask saved: the handlers use SA_NODEFER, so a fault leaves the mask as it was.
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
