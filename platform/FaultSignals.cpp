#include <KORVAutlwin/platform/FaultSignals.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <execinfo.h>
#include <unwind.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <ucontext.h>
#include <unistd.h>

namespace korva {

namespace {

// Frees the thread's alternate stack when the thread ends.
struct AlternateStackOwner
{
    void* base = nullptr;
    std::size_t size = 0;

    ~AlternateStackOwner()
    {
        if (!base)
            return;
        stack_t off{};
        off.ss_flags = SS_DISABLE;
        sigaltstack(&off, nullptr);
        munmap(base, size);
    }
};

// Reads `fd` into `buffer` up to `capacity`; the size read.
std::size_t ReadInto(int fd, char* buffer, std::size_t capacity)
{
    std::size_t size = 0;
    while (size < capacity) {
        const ssize_t got = read(fd, buffer + size, capacity - size);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        size += static_cast<std::size_t>(got);
    }
    return size;
}

#if defined(__x86_64__)
const char* const kRegisterNames[NGREG] = {"r8",  "r9",  "r10", "r11", "r12",    "r13",     "r14",    "r15",
                                           "rdi", "rsi", "rbp", "rbx", "rdx",    "rax",     "rcx",    "rsp",
                                           "rip", "efl", "csgsfs", "err", "trapno", "oldmask", "cr2"};
#elif defined(__aarch64__)
const char* const kRegisterNames[] = {"x0",  "x1",  "x2",  "x3",  "x4",  "x5",  "x6",  "x7",  "x8",
                                      "x9",  "x10", "x11", "x12", "x13", "x14", "x15", "x16", "x17",
                                      "x18", "x19", "x20", "x21", "x22", "x23", "x24", "x25", "x26",
                                      "x27", "x28", "x29", "x30", "sp",  "pc",  "pstate"};
#endif

// The program counter or the stack pointer of a context.
std::uintptr_t ContextValue(const void* context, bool programCounter)
{
    if (!context)
        return 0;
    const auto* uc = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
    return static_cast<std::uintptr_t>(uc->uc_mcontext.gregs[programCounter ? REG_RIP : REG_RSP]);
#elif defined(__aarch64__)
    return static_cast<std::uintptr_t>(programCounter ? uc->uc_mcontext.pc : uc->uc_mcontext.sp);
#else
    (void)uc;
    (void)programCounter;
    return 0;
#endif
}

// Pointer encodings of exception tables (the low four bits).
constexpr unsigned char kEncodingOmit = 0xff;
enum : unsigned char
{
    eAbsolute = 0x00,
    eUleb128 = 0x01,
    eUdata2 = 0x02,
    eUdata4 = 0x03,
    eUdata8 = 0x04,
    eSdata2 = 0x0a,
    eSdata4 = 0x0b,
    eSdata8 = 0x0c
};

bool ReadUleb128(const unsigned char*& p, std::uintptr_t& value)
{
    value = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        const unsigned char byte = *p++;
        value |= static_cast<std::uintptr_t>(byte & 0x7f) << shift;
        if (!(byte & 0x80))
            return true;
    }
    return false;
}

template <typename T> std::uintptr_t ReadRaw(const unsigned char*& p)
{
    T value;
    std::memcpy(&value, p, sizeof value);
    p += sizeof value;
    return static_cast<std::uintptr_t>(value);
}

// An offset of a call-site record; false for an encoding these tables do not use.
bool ReadOffset(const unsigned char*& p, unsigned char encoding, std::uintptr_t& value)
{
    switch (encoding) {
    case eAbsolute: value = ReadRaw<std::uintptr_t>(p); return true;
    case eUleb128: return ReadUleb128(p, value);
    case eUdata2: value = ReadRaw<std::uint16_t>(p); return true;
    case eUdata4: value = ReadRaw<std::uint32_t>(p); return true;
    case eUdata8: value = ReadRaw<std::uint64_t>(p); return true;
    case eSdata2: value = ReadRaw<std::int16_t>(p); return true;
    case eSdata4: value = ReadRaw<std::int32_t>(p); return true;
    case eSdata8: value = ReadRaw<std::int64_t>(p); return true;
    default: return false;
    }
}

// True when the call-site table of `lsda` has a record for `ip`. The C++
// personality ends the process at a frame that has a table but no record.
bool CallSiteCovers(const unsigned char* lsda, std::uintptr_t regionStart, std::uintptr_t ip)
{
    const unsigned char* p = lsda;
    if (*p++ != kEncodingOmit)
        return false; // a landing-pad base of its own: not what our compilers write
    std::uintptr_t skip = 0;
    if (*p++ != kEncodingOmit && !ReadUleb128(p, skip))
        return false;
    const unsigned char encoding = *p++;
    std::uintptr_t length = 0;
    if (!ReadUleb128(p, length))
        return false;
    const unsigned char* const end = p + length;
    while (p < end) {
        std::uintptr_t start = 0, size = 0, landingPad = 0, action = 0;
        if (!ReadOffset(p, encoding, start) || !ReadOffset(p, encoding, size) || !ReadOffset(p, encoding, landingPad) ||
            !ReadUleb128(p, action))
            return false;
        if (ip >= regionStart + start && ip < regionStart + start + size)
            return true;
    }
    return false;
}

struct ThrowWalk
{
    std::uintptr_t faultPc;
    std::uintptr_t anchor;
    bool started = false;
    bool reached = false;
};

_Unwind_Reason_Code CheckFrame(_Unwind_Context* context, void* argument)
{
    auto& walk = *static_cast<ThrowWalk*>(argument);
    int beforeInstruction = 0;
    std::uintptr_t ip = _Unwind_GetIPInfo(context, &beforeInstruction);
    // The handler's own frames and the signal frame come first.
    if (!walk.started) {
        if (!beforeInstruction || ip != walk.faultPc)
            return _URC_NO_REASON;
        walk.started = true;
    }
    if (_Unwind_GetCFA(context) > walk.anchor) {
        walk.reached = true;
        return _URC_END_OF_STACK;
    }
    if (!beforeInstruction)
        --ip; // a return address: the call lies before it
    const auto* lsda = static_cast<const unsigned char*>(_Unwind_GetLanguageSpecificData(context));
    if (lsda && !CallSiteCovers(lsda, _Unwind_GetRegionStart(context), ip))
        return _URC_END_OF_STACK;
    return _URC_NO_REASON;
}

} // namespace

void RestoreInterruptedState(const void* context)
{
    if (!context)
        return;
    const auto* uc = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
    // The kernel gave the handler the default state; the flags that the fault raised stay cleared.
    if (const auto* fpu = uc->uc_mcontext.fpregs) {
        const unsigned int mxcsr = fpu->mxcsr & ~0x3Fu;
        const unsigned short control = fpu->cwd;
        asm volatile("fnclex\n\tfldcw %0\n\tldmxcsr %1" : : "m"(control), "m"(mxcsr));
    }
#endif
    pthread_sigmask(SIG_SETMASK, &uc->uc_sigmask, nullptr);
}

bool CanThrowToFrame(const void* context, std::uintptr_t anchor)
{
    ThrowWalk walk{ContextProgramCounter(context), anchor};
    if (walk.faultPc == 0)
        return false;
    _Unwind_Backtrace(&CheckFrame, &walk);
    return walk.reached;
}

void InstallFaultHandler(int signal, FaultHandler handler)
{
    struct sigaction action{};
    action.sa_sigaction = handler;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    sigemptyset(&action.sa_mask);
    for (int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP})
        sigaddset(&action.sa_mask, fault);
    sigaction(signal, &action, nullptr);
}

bool EnableAlternateStack(std::size_t size)
{
    static thread_local AlternateStackOwner owner;
    stack_t current{};
    if (sigaltstack(nullptr, &current) != 0)
        return false;
    if (!(current.ss_flags & SS_DISABLE))
        return true;
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    size = std::max(size, static_cast<std::size_t>(sysconf(_SC_SIGSTKSZ)));
    // The page below is inaccessible, so that an overflow of the handler itself is a clean crash.
    void* base = mmap(nullptr, size + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED)
        return false;
    mprotect(base, page, PROT_NONE);
    stack_t stack{};
    stack.ss_sp = static_cast<char*>(base) + page;
    stack.ss_size = size;
    if (sigaltstack(&stack, nullptr) != 0) {
        munmap(base, size + page);
        return false;
    }
    owner.base = base;
    owner.size = size + page;
    return true;
}

bool GetStackLimit(std::uintptr_t& low, std::uintptr_t& overflowZone)
{
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return false;
    void* address = nullptr;
    std::size_t size = 0;
    std::size_t guard = 0;
    const bool known = pthread_attr_getstack(&attributes, &address, &size) == 0;
    if (known) {
        pthread_attr_getguardsize(&attributes, &guard);
        low = reinterpret_cast<std::uintptr_t>(address);
        // Threads have their guard pages; the main stack has the kernel's gap of about 1 MiB.
        overflowZone = std::max<std::uintptr_t>(guard, 1024 * 1024);
    }
    pthread_attr_destroy(&attributes);
    return known;
}

bool IsOwnSignal(const siginfo_t* info)
{
    return info->si_code > 0 || info->si_pid == getpid();
}

void EndBySignal(int signal)
{
    struct sigaction action{};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    raise(signal);
    _exit(128 + signal);
}

void WaitForEnd()
{
    for (;;)
        pause();
}

long CurrentThreadId()
{
    return static_cast<long>(syscall(SYS_gettid));
}

long CurrentProcessId()
{
    return static_cast<long>(getpid());
}

std::uintptr_t ContextStackPointer(const void* context)
{
    return ContextValue(context, false);
}

std::uintptr_t ContextProgramCounter(const void* context)
{
    return ContextValue(context, true);
}

std::size_t ContextRegisters(const void* context, RegisterValue* registers, std::size_t capacity)
{
    if (!context)
        return 0;
    const auto* uc = static_cast<const ucontext_t*>(context);
#if defined(__x86_64__)
    const std::size_t count = std::min<std::size_t>(NGREG, capacity);
    for (std::size_t i = 0; i < count; ++i)
        registers[i] = {kRegisterNames[i], static_cast<std::uintptr_t>(uc->uc_mcontext.gregs[i])};
    return count;
#elif defined(__aarch64__)
    const std::uintptr_t values[] = {uc->uc_mcontext.sp, uc->uc_mcontext.pc, uc->uc_mcontext.pstate};
    const std::size_t count = std::min<std::size_t>(34, capacity);
    for (std::size_t i = 0; i < count; ++i)
        registers[i] = {kRegisterNames[i], i < 31 ? static_cast<std::uintptr_t>(uc->uc_mcontext.regs[i]) : values[i - 31]};
    return count;
#else
    (void)uc;
    (void)registers;
    (void)capacity;
    return 0;
#endif
}

const void* CaptureContext()
{
    static ucontext_t context;
    return getcontext(&context) == 0 ? &context : nullptr;
}

void PrepareBacktrace()
{
    // The first backtrace loads the unwinder library.
    void* frames[2];
    backtrace(frames, 2);
}

int Backtrace(void** frames, int capacity)
{
    return backtrace(frames, capacity);
}

std::size_t ReadMemoryMap(char* buffer, std::size_t capacity, bool& truncated)
{
    truncated = false;
    const int fd = open("/proc/self/maps", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return 0;
    const std::size_t size = ReadInto(fd, buffer, capacity);
    char probe;
    truncated = size == capacity && ReadInto(fd, &probe, 1) > 0;
    close(fd);
    return size;
}

std::size_t ReadExecutablePath(char* buffer, std::size_t capacity)
{
    const ssize_t length = readlink("/proc/self/exe", buffer, capacity);
    return length > 0 && static_cast<std::size_t>(length) < capacity ? static_cast<std::size_t>(length) : 0;
}

int CreateDumpFile(const char* path)
{
    int fd;
    do
        fd = open(path, O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0666);
    while (fd < 0 && errno == EINTR);
    return fd;
}

int WriteToFile(int fd, const void* data, std::size_t size)
{
    const char* bytes = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t written = write(fd, bytes, size);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return written < 0 ? errno : EIO;
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
    return 0;
}

int CloseFile(int fd)
{
    return close(fd) != 0 && errno != EINTR ? errno : 0;
}

} // namespace korva
